#include "tools/velmsg/source_editor.h"

#include "platform/test/test.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_writer.h"
#include "tools/velmsg/test/random_source.h"

namespace vel::velmsg {
namespace {

/// Reads a source, sets texts, and returns the edited file.
std::string edited(const std::string& text, const std::string& po, std::uint16_t language) {
  const MessageSource before = test::readSource(text);
  MessageSource wanted = before;
  PoFile file;
  Diagnostics diagnostics;
  EXPECT_TRUE(readPo(po, 0, file, diagnostics));
  EXPECT_TRUE(importPo(wanted, file, {referenceLanguage(before), language, false}, diagnostics));
  return editSource(text, before, wanted).value_or("not possible");
}

TEST(SourceEditor, KeepsTheLayout) {
  const std::string begin = "; x\r\nSeverityNames=(P=0)\r\nLanguageNames=(E=0x409:E\r\n  G=0x407:G )\r\n",
                    id = "\r\nMessageId=1\r\n", german = "Language=G\r\nalt\r\n.\r\n;c\r\n",
                    english = "Language=E\r\na\r\n.",
                    rest = "\r\n\r\nMessageId = +1  Severity = P ; why\r\nLanguage=E\r\nb\r\n.";
  const std::string text = begin + id + english + "\r\n" + german + rest;
  struct Row {
    std::string context, id, text;
    std::uint16_t language;
    std::string expected;
  };
  const Row rows[] = {
      {"1", "a", "neu\\nzwei", 0x407,
       begin + id + english + "\r\nLanguage=G\r\nneu\r\nzwei\r\n.\r\n;c\r\n" + rest},
      {"1", "a", "\\n", 0x409, begin + id + "Language=E\r\n\r\n.\r\n" + german + rest},
      {"2", "b", "B", 0x407, text + "\r\nLanguage=G\r\nB\r\n.\r\n"},
      {"1", "a", "n", 0x40C,
       begin + "LanguageNames=(French=0x40c:MSG0040C)\r\n" + id + english +
           "\r\nLanguage=G\r\nalt\r\n.\r\nLanguage=French\r\nn\r\n.\r\n;c\r\n" + rest},
  };
  for (const Row& row : rows) {
    const std::string po =
        "msgctxt \"" + row.context + "\"\nmsgid \"" + row.id + "\"\nmsgstr \"" + row.text + "\"\n";
    EXPECT_EQ(edited(text, po, row.language), row.expected);
  }
  // A new first text would need a line of its own.
  EXPECT_EQ(edited("LanguageNames=(G=0x407) MessageId=1 Language=English\na\n.\n",
                   "msgctxt \"1\"\nmsgid \"a\"\nmsgstr \"b\"\n", 0x40C),
            "not possible");
}

TEST(SourceEditor, ChangesRandomSources) {
  std::mt19937 random(11);
  for (int i = 0; i < 500; ++i) {
    const MessageSource source = test::randomSource(random);
    MessageSource few = source;
    // Without some texts and with other ones.
    for (SourceMessage& message : few.messages) {
      const std::size_t kept = message.texts[random() % message.texts.size()].language;
      std::erase_if(message.texts,
                    [&](const SourceText& text) { return text.language != kept && random() % 3 == 0; });
      for (SourceText& text : message.texts)
        if (random() % 3 == 0) text.text += "more\n";
    }
    const std::string text = writeMessageSource(few);
    const auto edited = editSource(text, test::readSource(text), source);
    ASSERT_TRUE(edited) << text;
    ASSERT_EQ(test::describe(test::readSource(*edited)), test::describe(source));
  }
}

}  // namespace
}  // namespace vel::velmsg
