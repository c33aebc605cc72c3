// Tests aligned output and its settings.
#include <climits>

#include "platform/test/test.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_process.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using vel::test::readTexts;

/// A user interface with labels of this width, whose output is captured.
class Tool {
 public:
  explicit Tool(unsigned int width = 36, const char* mustQuote = nullptr)
      : mustQuote_("VEL_CONSOLEUI_QUOTE_STRINGS", mustQuote) {
    ui_.init(nullptr, nullptr, nullptr, nullptr);
    ui_.setOutputStream(stream_);
    ui_.setFormatWidth(width);
  }

  VelClConsoleUI* operator->() { return &ui_; }
  /// Returns the output since the last call.
  std::string output() { return std::exchange(stream_, std::ostringstream()).str(); }

 private:
  static constexpr const char* kArguments[] = {"D:\\TOOLS\\trcctl.exe", "-a", "b", nullptr};
  VelClEnvironmentVariable mustQuote_;
  std::ostringstream stream_;
  VelClConsoleUI ui_{3, kArguments};
};

TEST(Format, AlignsTheLabelInItsColumn) {
  const std::map<std::string, uint32_t> styles = {{"left", 0}, {"right", 1}, {"centred", 2}, {"3", 3}};
  Tool tool;
  tool->setFormatFillChar('_');
  // Intentional: the right margin of a centred label is short by the odd remainders of label and column.
  for (const auto& row : readTexts(VEL_TEST_DATA "test/labels.tsv")) {
    const uint32_t style = styles.at(row[0]);
    tool->setFormatWidth(static_cast<unsigned int>(std::stoul(row[1])));
    tool->setFormatStyle(style);
    tool->format(row[2].c_str());
    tool->setFormatStyle(VelEnFormatStyle{style});
    tool->format(row[2].c_str());
    const std::string expected = "  " + row.at(3) + ": ";
    EXPECT_EQ(tool.output(), expected + expected) << row[2] << " in " << row[1];
  }
  tool->setFormatStyle(2);
  EXPECT_EQ(tool->getParams().getFormatStyle(), VelEnFormatStyle::CENTRED);
}

TEST(Format, WritesValuesOfEveryKind) {
  Tool tool;
  tool->format(180UL, "x");
  EXPECT_EQ(tool.output(), "  Trace file..........................: x\n");
  tool->setFormatWidth(1);
  const auto format = [&](auto... values) { (tool->format("n", values), ...); };
  format("", static_cast<const char*>(nullptr), INT_MIN, UINT_MAX, -1L, 4294967295UL, LLONG_MIN, ULLONG_MAX);
  tool->formatBool("n", true);
  tool->formatBool(180UL, false);
  EXPECT_EQ(tool.output(),
            "  n: \n  n: \n  n: -2147483648\n  n: 4294967295\n  n: -1\n  n: 4294967295\n"
            "  n: -9223372036854775808\n  n: 18446744073709551615\n  n: YES\n  Trace file: NO\n");
}

TEST(Format, TreatsNullAndNumberZeroAsAnEmptyLabel) {
  Tool tool(1);
  for (const VelClUIText& label : {VelClUIText(""), VelClUIText(nullptr), VelClUIText(0UL)}) {
    tool->format(label);
    tool->format(label, "x");
    tool->format(label, 5);
    tool->formatBool(label, true);
    tool->dump(label, "x", 1);
    EXPECT_EQ(tool.output(), "  .:   .: x\n  .: 5\n  .: YES\n  .: 78\n");
  }
}

TEST(Format, QuotesTextsOnRequest) {
  for (const auto& [request, text] : {std::pair("on", "\"a b\""), std::pair("maybe", "a b")}) {
    Tool tool(1, request);
    tool->format("n", "a b");
    tool->format("n", 5);
    EXPECT_EQ(tool.output(), std::string("  n: ") + text + "\n  n: 5\n") << request;
  }
}

TEST(Format, DumpsSixteenBytesALine) {
  unsigned char bytes[33];
  for (unsigned int i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<unsigned char>(0xF0 + i);
  const std::string first = "F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF\n";
  const std::string second = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n";
  Tool tool(6);
  tool->dump("Bytes", nullptr, 5);
  for (const std::size_t size : {0U, 1U, 16U, 33U}) tool->dump("Bytes", bytes, size);
  tool->dump("All bytes", bytes, 17);
  EXPECT_EQ(tool.output(), "  Bytes.: \n  Bytes.: \n  Bytes.: F0\n  Bytes.: " + first + "  Bytes.: " + first +
                               "          " + second + "          10\n  All bytes: " + first +
                               "             00\n");
}

TEST(Format, NamesErrorsAndDescribesExceptions) {
  Tool tool(0);
  for (const unsigned long id : {0UL, 1000401UL, 1000501UL, 4294967295UL}) tool->formatErrId(id);
  EXPECT_EQ(tool.output(),
            "  Error ID: NO_ERROR (0)\n  Error ID: FILE_COULD_NOT_COPY (1000401)\n"
            "  Error ID: 1000501\n  Error ID: 4294967295\n");
  VelClException full(INIFILE_INVAL_OPTION, VelEnErrorClass::USER_ERROR, VelEnErrorSeverity::PANIC,
                      VelEnErrorAction::USER, "cause");
  full.setOrigin("here", 4294967295U);
  const VelClException plain(_VelStUserError(), nullptr);
  const VelClException unknown(5, static_cast<VelEnErrorClass>(555), static_cast<VelEnErrorSeverity>(3),
                               static_cast<VelEnErrorAction>(-9), "");
  const std::string head =
      "  Error ID: INIFILE_INVAL_OPTION (1000002)\n  Error Class: USER_ERROR\n"
      "  Error Severity: PANIC\n  Recommended Action: USER\n";
  for (const bool detailed : {false, true}) tool->format(full, detailed);
  EXPECT_EQ(tool.output(), head + head +
                               "  Cause for exception: cause\n  Exception occured in function: here\n"
                               "  Exception occured in line: 4294967295\n");
  for (const bool detailed : {false, true}) tool->format(plain, detailed);
  tool->format(unknown, false);
  EXPECT_EQ(tool.output(),
            "  Error ID: NO_ERROR (0)\n"
            "  Error ID: NO_ERROR (0)\n  Error Class: UNKNOWN\n  Error Severity: NONE\n"
            "  Recommended Action: IGNORE\n"
            "  Error ID: 5\n  Error Class: 555\n  Error Severity: 3\n  Recommended Action: -9\n");
}

/// An exception that a program derives.
struct HostException : VelClException {
  explicit HostException(const char* cause) : VelClException(_VelStUserError(), "base"), hostCause(cause) {}
  const char* getCause() const override { return hostCause; }
  const char* hostCause;
};

TEST(Format, ShowsTheCauseOfADerivedException) {
  Tool tool;
  tool->format(HostException("host"), true);
  EXPECT_THAT(tool.output(), HasSubstr(": host\n"));
  tool->format(HostException(nullptr), true);
  EXPECT_THAT(tool.output(), Not(HasSubstr("Cause")));
}

TEST(Format, KeepsItsStreamInQuietMode) {
  Tool tool;
  std::ostringstream other;
  tool->getParams().setQuietMode(true);
  tool->setOutputStream(other);
  tool->warning("one", nullptr, "three");
  EXPECT_THAT(tool.output(), HasSubstr("  one: three\n"));
  tool->info("unheard");
  tool->displayTitle("Tool", nullptr);
  EXPECT_EQ(tool.output(), "\nTRCCTL - Tool\n");
  tool->getParams().forceOutputStream(other);
  tool->displayTitle("Tool", "again");
  EXPECT_EQ(other.str(), "\nTRCCTL - Tool   again\n");
}

TEST(ConsoleUIParams, DeriveTheProcessNameFromThePath) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/process_names.tsv")) {
    const VelClConsoleUIParams params(row[0].c_str());
    EXPECT_EQ(params.getProcessName(), row.at(1));
    EXPECT_EQ(params.getIndentation(), row[1].size());
  }
  EXPECT_STREQ(VelClConsoleUIParams(nullptr).getProcessName(), "");
}

TEST(ConsoleUIParams, CopyTheirTexts) {
  VelClConsoleUIParams params("tool");
  EXPECT_STREQ(params.getUsage(), "");
  std::string text = "some usage";
  params.setUsage(text.c_str());
  text = "overwritten";
  params.setUsage(params.getUsage() + 5);
  EXPECT_STREQ(params.getUsage(), "usage");
  params.setUsageHelp("new", params.getUsage());
  EXPECT_STREQ(params.getUsage(), "new");
  EXPECT_STREQ(params.getHelp(), "usage");
  params.setUsage(nullptr);
  EXPECT_STREQ(params.getUsage(), "");
}

TEST(ConsoleUI, UsesTheGivenTableWithoutACatalog) {
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  std::ostringstream stream;
  VelClConsoleUI ui(0, nullptr, VelClFilename("absent"), 0, table, size);
  ui.setOutputStream(stream);
  ui.formatBool("", true);
  EXPECT_EQ(stream.str(), "  " + std::string(36, '.') + ": YES\n");
}

// Without a catalog the words for yes and no begin with the same letter.
TEST(ConsoleUI, YesOrNoWithoutWordsGivesTheDefaultAtTheEndOfInput) {
  const VelClConsoleUI ui(0, nullptr, VelClFilename("absent"), 0);
  const vel::test::Streams noInput;
  for (const bool answer : {false, true}) EXPECT_EQ(ui.promptYesNo("Sure", answer), answer);
}

}  // namespace
