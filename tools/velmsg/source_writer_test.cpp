#include "tools/velmsg/source_writer.h"

#include "platform/test/test.h"
#include "tools/velmsg/test/random_source.h"

namespace vel::velmsg {
namespace {

TEST(SourceWriter, WritesWhatReadsBackAsTheSame) {
  std::mt19937 random(16);
  for (int i = 0; i < 2000; ++i) {
    const MessageSource source = test::randomSource(random);
    const std::string text = writeMessageSource(source);
    const MessageSource read = test::readSource(text);
    ASSERT_EQ(test::describe(read), test::describe(source)) << i << "\n" << text;
    ASSERT_EQ(writeMessageSource(read), text) << i;
  }
}

TEST(SourceWriter, HasOneLayout) {
  const MessageSource source = test::readSource(
      "; // header\r\nLanguageNames = (German=1031:G English=0x409)\r\nSeverityNames=(Plain=0)\r\n"
      ";// first\r\nMessageId=1 SymbolicName=A Severity=Plain\r\nLanguage=English\r\nYes\r\n.\r\n"
      "Language=German\r\nJa\r\n\r\n.\r\n;/* of b */\r\nMessageIdTypedef=DWORD "
      "OutputBase=10\r\nMessageId=\r\n"
      "Severity=Error Facility=System\r\nLanguage=German\r\n.\r\n;end");
  EXPECT_EQ(writeMessageSource(source),
            "; // header\nSeverityNames=(Plain=0x0)\nLanguageNames=(German=0x407:G)\n"
            "LanguageNames=(English=0x409)\n\n;// first\nMessageId=1\nSeverity=Plain\nSymbolicName=A\n"
            "Language=English\nYes\n.\nLanguage=German\nJa\n\n.\n\nMessageIdTypedef=DWORD\nOutputBase=10\n"
            ";/* of b */\nMessageId=1\nSeverity=Error\nFacility=System\nLanguage=German\n.\n\n;end\n");
}

}  // namespace
}  // namespace vel::velmsg
