// The library's own catalog against the built-in table that comes from the same source.

#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "messages/insert_formatter.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "platform/test/scratch_directory.h"

namespace {

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

constexpr const char* kBuiltIn[] = {
#include "built_in_messages.inc"
};
constexpr std::size_t kLastId = 220;
static_assert(std::size(kBuiltIn) == kLastId + 1);

constexpr std::uint32_t kEnglish = 0x409;
constexpr std::uint32_t kGerman = 0x407;
constexpr const char* kVariables[10] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};

/// The low bytes of the texts, which are UTF-16; both languages are within Latin-1.
std::vector<std::string> catalogTexts(std::uint32_t language) {
  const std::string bytes = vel::test::readFile("qammsg50.DLL");
  const std::vector<std::uint8_t> file(bytes.begin(), bytes.end());
  std::vector<std::string> texts(1);
  MessageTable table{};
  if (!PortableExecutable(file.data(), file.size()).findMessageTable(language, table)) return texts;
  const MessageResource resource(table.data, table.sizeInBytes);
  MessageResource::Cursor cursor;
  for (MessageResource::Entry entry{}; resource.next(cursor, entry);) {
    EXPECT_EQ(entry.id, texts.size());
    EXPECT_TRUE(entry.unicode);
    texts.emplace_back();
    for (std::size_t i = 0; i < entry.sizeInBytes; i += 2) texts.back() += static_cast<char>(entry.text[i]);
  }
  return texts;
}

std::string expanded(const std::string& text) {
  char out[4096];
  const auto result =
      vel::messages::expandResourceText(text.data(), text.size(), kVariables, out, sizeof out);
  return result.complete ? out : "<failed>";
}

std::string substituted(const char* text) {
  char out[4097];
  vel::messages::expandTableText(text, kVariables, 10, out, sizeof out - 1);
  // The formatter of libraries writes line breaks as CR LF, that of tables leaves them alone.
  return std::regex_replace(out, std::regex("\n"), "\r\n");
}

TEST(LibraryCatalog, EnglishReadsLikeTheBuiltInTable) {
  const auto texts = catalogTexts(kEnglish);
  ASSERT_EQ(texts.size(), kLastId + 1);
  for (std::size_t id = 1; id <= kLastId; ++id)
    EXPECT_EQ(expanded(texts[id]), substituted(kBuiltIn[id])) << id;
}

TEST(LibraryCatalog, GermanTranslatesTextsAndKeepsNames) {
  const auto texts = catalogTexts(kGerman);
  ASSERT_EQ(texts.size(), kLastId + 1);
  EXPECT_EQ(expanded(texts[22]), "Leider keine weitere Hilfe verf\xFCgbar");
  EXPECT_EQ(expanded(texts[192]), "Schachtelungsebene: ");
  for (std::size_t id = 1; id <= kLastId; ++id) {
    const bool isName = (id >= 47 && id <= 149) || (id >= 153 && id <= 172) || id >= 200;
    if (isName || (id >= 8 && id <= 10) || id <= 2 || id == 151) {
      EXPECT_EQ(expanded(texts[id]), substituted(kBuiltIn[id])) << id;
    }
  }
}

}  // namespace
