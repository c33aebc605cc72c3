// Compares the look-ups with the tables they are generated from, and passes exceptions across the library's
// boundary.
#include "vel_include/vel_error.h"

#include "platform/test/test.h"

namespace {

unsigned int messageOf(const std::string& kind, int value) {
  if (kind == "identifier") return velErrorGetIdAsMessageId(static_cast<unsigned long>(value));
  if (kind == "class") return velErrorGetClassAsMessageId(static_cast<VelEnErrorClass>(value));
  if (kind == "severity") return velErrorGetSeverityAsMessageId(static_cast<VelEnErrorSeverity>(value));
  return velErrorGetActionAsMessageId(static_cast<VelEnErrorAction>(value));
}

TEST(ErrorMessages, AgreeWithTheTableForEveryValueAndItsNeighbours) {
  std::map<std::string, std::map<int, unsigned int>> facts;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "errors.tsv"))
    facts[row.at(0)][std::stoi(row.at(2))] = static_cast<unsigned int>(std::stoul(row.at(3)));
  ASSERT_EQ(facts.size(), 4U);
  ASSERT_EQ(facts["identifier"].size(), 59U);
  for (const auto& [kind, known] : facts)
    for (const auto& entry : known)
      for (const int value : {entry.first - 1, entry.first, entry.first + 1}) {
        const auto found = known.find(value);
        EXPECT_EQ(messageOf(kind, value), found != known.end() ? found->second : 0U) << kind << ' ' << value;
      }
  // Intentional: the messages of these two actions are in the opposite order to their values.
  EXPECT_EQ(velErrorGetActionAsMessageId(VelEnErrorAction::RETRYDELAY), 146U);
  EXPECT_EQ(velErrorGetActionAsMessageId(VelEnErrorAction::USER), 145U);
}

TEST(PlatformErrors, AreThoseOfTheTable) {
  std::map<std::int32_t, std::string> facts;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "platform_errors.tsv"))
    facts[std::stoi(row.at(0))] = row.at(1);
  ASSERT_EQ(facts.size(), 576U);
  for (std::int32_t code = -10; code < 6200; ++code) {
    const char* name = velWinGetErrorAsString(static_cast<std::uint32_t>(code));
    const auto found = facts.find(code);
    EXPECT_EQ(name != nullptr ? name : "", found != facts.end() ? found->second : "") << code;
  }
  for (const unsigned long code : {0x80000000UL, 0x7FFFFFFFUL})
    EXPECT_EQ(velWinGetErrorAsString(code), nullptr);
}

TEST(Exception, KeepsItsDataWhenCaughtByItsBase) {
  VelClExceptionFatal thrown(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM, VelEnErrorAction::ABORT,
                             nullptr);
  EXPECT_EQ(thrown.getOrigin(), nullptr);
  EXPECT_EQ(thrown.getLine(), 0);
  thrown.setOrigin("here, line 7", 7);
  thrown.setNewId(FILE_COULD_NOT_RENAME);
  try {
    throw thrown;
  } catch (const VelClExceptionABase& caught) {
    EXPECT_STREQ(caught.getCause(), "");
    EXPECT_STREQ(caught.getOrigin(), "here, line 7");
    const auto& full = dynamic_cast<const VelClException&>(caught);
    EXPECT_EQ(full.getId(), static_cast<unsigned long>(FILE_COULD_NOT_RENAME));
    EXPECT_EQ(full.getSeverity(), VelEnErrorSeverity::FATAL);
    EXPECT_TRUE(caught.isVelException());
    EXPECT_TRUE(VelClException(full).isVelException());
  }
}

}  // namespace
