// Checks exported files with the checker of gettext.
#include "platform/test/test.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/test/random_source.h"

namespace vel::velmsg {
namespace {

test::ChildResult checkPo(const std::string& file) {
  // The shell answers 127 if gettext is not installed.
  return test::runChild("/bin/sh", {"-c", "LC_ALL=C exec msgfmt -c -o /dev/null \"$0\"", file});
}

TEST(PoChecker, AcceptsExportedFiles) {
  const test::ScratchDirectory directory;
  std::mt19937 random(7);
  for (int i = 0; i < 30; ++i) {
    const MessageSource source = test::randomSource(random, test::Texts::Checkable);
    for (const SourceLanguage& language : source.languages) {
      const std::string text = writePo(exportPo(source, referenceLanguage(source), language.number));
      const test::ChildResult result = checkPo(directory.write("a.po", text));
      if (result.exitCode == 127) GTEST_SKIP() << "gettext is not installed";
      ASSERT_EQ(result.exitCode, 0) << result.errors << text;
      ASSERT_EQ(result.errors, "") << text;
    }
  }
}

TEST(PoChecker, AgreesOnMistakes) {
  const test::ScratchDirectory directory;
  const std::string header = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
  const char* const rows[] = {
      "nonsense \"a\"\n",
      "msgid \"a\nmsgstr \"b\"\n",
      "msgid \"a\\q\"\nmsgstr \"b\"\n",
      "msgid \"a\"\n",
      "msgid\nmsgstr \"a\"\n",
      "msgstr \"a\"\n",
      "msgctxt \"a\"\nmsgctxt \"b\"\nmsgid \"a\"\nmsgstr \"b\"\n",
  };
  for (const char* const row : rows) {
    const test::ChildResult result = checkPo(directory.write("a.po", header + row));
    if (result.exitCode == 127) GTEST_SKIP() << "gettext is not installed";
    PoFile po;
    Diagnostics diagnostics;
    EXPECT_FALSE(readPo(header + row, 0, po, diagnostics)) << row;
    EXPECT_NE(result.exitCode, 0) << row;
  }
}

}  // namespace
}  // namespace vel::velmsg
