#include "tools/velmsg/po_file.h"

#include "platform/test/test.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

PoFile readWell(std::string_view text) {
  PoFile po;
  Diagnostics diagnostics;
  EXPECT_TRUE(readPo(text, 0, po, diagnostics)) << text;
  return po;
}

TEST(PoFile, HasEveryPartOfAnEntry) {
  const PoFile po = readWell(
      "\xEF\xBB\xBF# translator\r\n#. author\n#: a.mc:1 b.mc:2\n#, fuzzy,no-c-format ,\n#| msgid \"old\"\n"
      "\tmsgctxt \"A\" msgid\n\"one\\n\"  # not a text\n  \"two\"\nmsgstr \"ein\" \"s\\n\"\n\"zwei\"\n"
      "#~ msgctxt \"B\"\n#~ msgid \"gone\"\n#~| msgid \"older\"\n#~ msgstr \"weg\"\n");
  ASSERT_EQ(po.entries.size(), 2U);
  const PoEntry& entry = po.entries[0];
  EXPECT_THAT(entry.comments, testing::ElementsAre("translator"));
  EXPECT_THAT(entry.extracted, testing::ElementsAre("author"));
  EXPECT_THAT(entry.references, testing::ElementsAre("a.mc:1 b.mc:2"));
  EXPECT_THAT(entry.flags, testing::ElementsAre("fuzzy", "no-c-format"));
  EXPECT_THAT(entry.previous, testing::ElementsAre("msgid \"old\""));
  EXPECT_EQ(entry.context, "A");
  EXPECT_EQ(entry.id, "one\ntwo");
  EXPECT_EQ(entry.text, "eins\nzwei");
  EXPECT_FALSE(entry.isObsolete);
  EXPECT_EQ(std::pair(entry.position.line, entry.position.column), std::pair(std::size_t{6}, std::size_t{2}));
  EXPECT_EQ(entry.textPosition.line, 9U);
  EXPECT_TRUE(po.entries[1].isObsolete);
  EXPECT_EQ(po.entries[1].text, "weg");
  EXPECT_THAT(po.entries[1].previous, testing::ElementsAre("msgid \"older\""));
}

TEST(PoFile, HasAHeader) {
  const PoFile po = readWell(
      "msgid \"\"\nmsgstr \"Language:  de_AT \\nX-Language: 5\\nContent-Type: text/plain; "
      "charset=ISO-8859-1\\n\"\n\nmsgctxt \"\"\nmsgid \"\"\nmsgstr \"S\xE4tze\"\n");
  EXPECT_EQ(po.headerField("Language"), "de_AT");
  EXPECT_EQ(po.headerField("X-Language"), "5");
  EXPECT_EQ(po.headerField("Lang"), "");
  EXPECT_EQ(po.entries.at(1).text, "Sätze");
  EXPECT_FALSE(po.entries[1].isHeader());
}

TEST(PoFile, TakesEscapesForBytesOfItsCharset) {
  const std::tuple<const char*, std::string, const char*> rows[] = {
      {"UTF-8", "S\xC3\\244tze \\xE6\\227\\245\\xe6", nullptr},
      {"UTF-8", "Sätze \\xE6\\227\\245\\\\ä", "Sätze 日\\ä"},
      {"UTF-8", "\\357\\273\\277x", "\uFEFFx"},
      {"ISO-8859-1", "S\xE4tze S\\344t\"\n\"ze \xE4\\377\\376", "Sätze Sätze äÿþ"},
      {"EUC-JP", "\\306\\374\xCB\xDC", "日本"},
      {"EUC-JP", "\\306x", nullptr},
      {"EUC-KR", "\xC7\xD1\\n\\261\\333~", "한\n글~"},
      {"Shift_JIS", "\\203A\\203\\\\\x83\x5C x", "アソソ x"},
  };
  for (const auto& [charset, text, expected] : rows) {
    PoFile po;
    Diagnostics diagnostics;
    const std::string file = std::string("msgid \"\"\nmsgstr \"charset=") + charset +
                             "\\n\"\n\nmsgid \"a\"\nmsgstr \"" + text + "\"\n";
    EXPECT_EQ(readPo(file, 0, po, diagnostics), expected != nullptr) << file;
    EXPECT_EQ(po.entries.back().text, expected != nullptr ? expected : "charset=UTF-8\n") << file;
  }
}

TEST(PoFile, ReportsEveryMistake) {
  struct Row {
    std::string text;
    std::size_t line, column;
    unsigned long id;
  };
  const std::string entry = "msgid \"a\"\nmsgstr \"b\"\n";
  const Row rows[] = {
      {"nonsense \"a\"\n", 1, 1, kPoKeywordExpected},
      {"\"a\"\n", 1, 1, kPoKeywordExpected},
      {"msgid \"ä\" ?\nmsgstr \"\"\n", 1, 11, kPoKeywordExpected},
      {"domain \"x\"\n", 1, 1, kPoKeywordExpected},
      {"msgid \"a\nmsgstr \"b\"\n", 1, 7, kPoStringNotEnded},
      {"msgid \"a\\\"\nmsgstr \"b\"\n", 1, 7, kPoStringNotEnded},
      {"msgid \"a\\q\"\nmsgstr \"b\"\n", 1, 9, kPoWrongEscape},
      {"msgid \"\\x\"\nmsgstr \"b\"\n", 1, 8, kPoWrongEscape},
      {"msgid \"\\8\"\nmsgstr \"b\"\n", 1, 8, kPoWrongEscape},
      {"msgid \"a\"\nmsgid_plural \"b\"\nmsgstr[0] \"c\"\nmsgstr[1] \"d\"\n", 2, 1, kPoPlural},
      {"msgid \"a\"\nmsgstr[0] \"c\"\n", 2, 1, kPoPlural},
      {"msgid \"a\"\n", 1, 1, kPoIncomplete},
      {"msgid\nmsgstr \"a\"\n", 1, 1, kPoIncomplete},
      {"msgid \"a\"\nmsgstr\n\n" + entry, 1, 1, kPoIncomplete},
      {"msgstr \"a\"\n", 1, 1, kPoIncomplete},
      {"msgctxt \"a\"\nmsgstr \"a\"\n", 2, 1, kPoIncomplete},
      {"msgctxt \"a\"\nmsgctxt \"b\"\n" + entry, 1, 1, kPoIncomplete},
      {entry + "msgstr \"c\"\n", 3, 1, kPoIncomplete},
      {"msgid \"\\377\"\nmsgstr \"b\"\n", 1, 1, kPoIllFormedText},
      {"msgid \"\xFF\"\nmsgstr \"b\"\n", 1, 8, kIllFormedSource},
      {"msgid \"\"\nmsgstr \"charset=UTF-88\\n\"\n", 0, 0, kPoUnknownCharset},
      // The charset is searched in bytes that are not UTF-8.
      {"msgid \"\"\nmsgstr \"charset=ISO-8859-1\\n\"\n" + entry + std::string(100, '\xA8'), 5, 1,
       kPoKeywordExpected},
  };
  for (const Row& row : rows) {
    PoFile po;
    Diagnostics diagnostics;
    EXPECT_FALSE(readPo(row.text, 3, po, diagnostics)) << row.text;
    ASSERT_EQ(diagnostics.size(), 1U) << row.text;
    const SourcePosition& position = diagnostics[0].position;
    EXPECT_EQ(std::tuple(position.file, position.line, position.column, diagnostics[0].text),
              std::tuple(std::size_t{3}, row.line, row.column, row.id))
        << row.text;
  }
  // The entries around a mistake are read, and several mistakes are reported.
  PoFile po;
  Diagnostics diagnostics;
  EXPECT_FALSE(
      readPo(entry + "msgid \"c\n" + entry + "msgid \"\\q\"\nmsgstr \"d\"\n" + entry, 0, po, diagnostics));
  EXPECT_EQ(diagnostics.size(), 2U);
  EXPECT_EQ(po.entries.size(), 3U);
}

TEST(PoFile, ReadsBackWhatItWrites) {
  PoFile po;
  PoEntry entry;
  entry.flags = {"fuzzy", "no-c-format"};
  entry.comments = {"", "one", " , fuzzy"};
  entry.extracted = {"author"};
  entry.references = {"a.mc:3"};
  entry.previous = {"msgid \"x\""};
  for (int c = 0; c < 128; ++c) entry.id += {static_cast<char>(c), '1'};
  entry.context = entry.id;
  entry.text = "\n\nä\n";
  po.entries.push_back(entry);
  entry.isObsolete = true;
  po.entries.push_back(entry);
  const std::string text = writePo(po);
  EXPECT_EQ(writePo(readWell(text)), text);
  EXPECT_EQ(readWell(text).entries[0].id, entry.id);
  EXPECT_EQ(readWell(text).entries[1].text, entry.text);
  EXPECT_EQ(readWell(text).entries[0].comments, entry.comments);
}

}  // namespace
}  // namespace vel::velmsg
