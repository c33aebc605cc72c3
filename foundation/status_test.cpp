// Failures as values: their parts, their text, sharing, and what happens without memory.
#include "vel_include/vel_status.h"

#include <cerrno>
#include <cstdlib>

#include "foundation/status.h"
#include "platform/test/test.h"
#include "vel_include/vel_memmgr.h"

namespace {

TEST(Status, OfSuccessHasNoParts) {
  const VelClStatus ok;
  EXPECT_TRUE(ok.isOk());
  EXPECT_EQ(ok.getErrorId(), 0U);
  EXPECT_EQ(ok.getClass(), VelEnErrorClass::UNKNOWN);
  EXPECT_EQ(ok.getName(), "");
  EXPECT_EQ(ok.getText(), "NO_ERROR");
  EXPECT_EQ(velStatusShare(nullptr), nullptr);
  velStatusFree(nullptr);
}

TEST(Status, SharesOneFailureAmongCopies) {
  std::string name(3000, 'n');
  VelClStatus copy;
  {
    VelClStatus failure(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_WRITE_PROBLEM, 28, name, 7);
    name.assign(3000, '-');
    copy = failure;
    const VelClStatus moved = std::move(failure);
    EXPECT_TRUE(failure.isOk());  // NOLINT(bugprone-use-after-move): success is what a move leaves behind
    EXPECT_EQ(moved.getName().data(), copy.getName().data());
  }
  EXPECT_FALSE(copy.isOk());
  EXPECT_EQ(copy.getErrorId(), static_cast<unsigned long>(FILE_COULD_NOT_COPY));
  EXPECT_EQ(copy.getClass(), VelEnErrorClass::IO_WRITE_PROBLEM);
  EXPECT_EQ(copy.getSystemError(), 28U);
  EXPECT_EQ(copy.getPosition(), 7U);
  EXPECT_EQ(copy.getName(), std::string(3000, 'n'));
  VelStStatus* const plain = copy.release();
  EXPECT_TRUE(copy.isOk());
  velStatusFree(plain);
}

TEST(Status, HasATextOfOneLine) {
  struct {
    VelClStatus status;
    const char* text;
  } const rows[] = {
      {{PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME}, "PATH_INVALID (IO_INVALID_NAME)"},
      {{FILE_COULD_NOT_REMOVE, VelEnErrorClass::IO_PROBLEM, 0, "a\nb\x1B[2J\x7F/ä"},
       "FILE_COULD_NOT_REMOVE (IO_PROBLEM): a\\x0Ab\\x1B[2J\\x7F/ä"},
      {{INIFILE_INVAL_SECTION, VelEnErrorClass::INVALID_DATA, 0, "x.ini", 12},
       "INIFILE_INVAL_SECTION (INVALID_DATA): x.ini: 12"},
      {{4711, static_cast<VelEnErrorClass>(9999)}, "4711 (9999)"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.status.getText(), row.text);

  // The system's words differ between systems; 5 is a common number: input/output error, or access denied.
  const std::string text = VelClStatus(FILE_COULD_NOT_READ, VelEnErrorClass::IO_PROBLEM, 5, "f").getText();
  EXPECT_THAT(text, testing::StartsWith("FILE_COULD_NOT_READ (IO_PROBLEM): f: "));
  EXPECT_THAT(text, testing::EndsWith(" (5)"));
  EXPECT_GT(text.size(), std::strlen("FILE_COULD_NOT_READ (IO_PROBLEM): f:  (5)"));
}

TEST(Status, CutsItsTextBetweenCharacters) {
  const VelClStatus status(PATH_INVALID, VelEnErrorClass::LOGIC, 0, "aä\x01");
  VelStStatus* const plain = VelClStatus(status).release();
  const std::string whole = "PATH_INVALID (LOGIC): aä\\x01";
  for (std::size_t capacity = 1; capacity <= whole.size() + 2; ++capacity) {
    std::string out(capacity + 1, '#');
    EXPECT_EQ(velStatusGetText(plain, out.data(), capacity), whole.size());
    EXPECT_EQ(out[capacity], '#');
    const std::string cut = out.substr(0, out.find('\0'));
    EXPECT_EQ(cut, whole.substr(0, cut.size()));
    EXPECT_THAT(cut, testing::Not(testing::EndsWith("\xC3")));
    EXPECT_GE(cut.size() + 4, std::min(capacity - 1, whole.size()));
  }
  velStatusFree(plain);
}

void* noMemory(std::size_t) {
  return nullptr;
}

TEST(Status, SaysSoWhenThereIsNoMemoryForIt) {
  VelClMemoryManager::setNewMemoryManager(noMemory, nullptr, std::free);
  {
    const VelClStatus status(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM, 5, "name");
    const VelClStatus copy = status;  // NOLINT(performance-unnecessary-copy-initialization): tests the copy
    EXPECT_EQ(copy.getErrorId(), static_cast<unsigned long>(MEMMGR_RUNTIME_OUT_OF_MEMORY));
    EXPECT_EQ(copy.getClass(), VelEnErrorClass::OUT_OF_MEMORY);
    EXPECT_EQ(copy.getName(), "");
  }
  VelClMemoryManager::setNewMemoryManager(std::malloc, std::realloc, std::free);
}

}  // namespace
