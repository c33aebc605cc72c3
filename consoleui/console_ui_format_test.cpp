// Aligned output and the settings behind it.
#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_process.h"

namespace {

constexpr const char* kQuoteStrings = "VEL_CONSOLEUI_QUOTE_STRINGS";

/// A user interface whose output is kept.
class Tool {
 public:
  Tool() : ui_(3, kArguments) {
    ui_.init(nullptr, nullptr, nullptr, nullptr);
    ui_.setOutputStream(stream_);
  }

  VelClConsoleUI* operator->() { return &ui_; }
  /// What was written since the last call.
  std::string take() {
    std::string text = stream_.str();
    stream_.str("");
    return text;
  }

 private:
  static constexpr const char* kArguments[] = {"D:\\TOOLS\\trcctl.exe", "-a", "b", nullptr};
  std::ostringstream stream_;
  VelClConsoleUI ui_;
};

std::string blanks(std::size_t count) {
  return std::string(count, ' ');
}

class Format : public testing::Test {
 protected:
  void SetUp() override { VelClEnvironmentVariable(kQuoteStrings, nullptr).resetValue(); }
  void TearDown() override { SetUp(); }
};

TEST_F(Format, PlacesTheLabelInItsColumn) {
  constexpr auto kLeft = VelEnFormatStyle::LEFT;
  constexpr auto kRight = VelEnFormatStyle::RIGHT;
  constexpr auto kCentred = VelEnFormatStyle::CENTRED;
  struct Row {
    VelEnFormatStyle style;
    unsigned int width;
    char fill;
    const char* label;
    std::string column;
  };
  const Row rows[] = {
      {kLeft, 36, '.', "Trace file", "Trace file" + std::string(26, '.')},
      {kLeft, 12, '_', "Trace file", "Trace file__"},
      {kLeft, 10, '.', "Trace file", "Trace file"},
      {kLeft, 9, '.', "Trace file", "Trace file"},
      {kLeft, 0, '.', "x", "x"},
      {kLeft, 3, '.', "", "..."},
      {kRight, 12, '_', "Trace file", "  Trace file"},
      {kRight, 5, '_', "Trace file", "Trace file"},
      {kCentred, 36, '_', "Trace file", blanks(13) + "Trace file" + blanks(13)},
      {kCentred, 36, '_', "Trace files", blanks(13) + "Trace files" + blanks(12)},
      // The right margin is short by the odd remainders of both.
      {kCentred, 35, '_', "Trace file", blanks(12) + "Trace file" + blanks(11)},
      {kCentred, 35, '_', "Trace files", blanks(12) + "Trace files" + blanks(10)},
      {kCentred, 5, '_', "abc", " abc"},
      {kCentred, 5, '_', "abcd", "abcd"},
      {kCentred, 5, '_', "abcde", "abcde"},
      {kCentred, 5, '_', "abcdefgh", "abcdefgh"},
      {kCentred, 0, '_', "a", "a"},
  };
  Tool tool;
  for (const Row& row : rows) {
    tool->setFormatStyle(row.style);
    tool->setFormatWidth(row.width);
    tool->setFormatFillChar(row.fill);
    tool->format(row.label);
    EXPECT_EQ(tool.take(), "  " + row.column + ": ") << row.label << " in " << row.width;
  }
}

TEST_F(Format, WritesValuesOfEveryKind) {
  Tool tool;
  tool->format(180UL, "x");
  EXPECT_EQ(tool.take(), "  Trace file..........................: x\n");
  tool->setFormatWidth(1);
  const auto written = [&](auto value) {
    tool->format("n", value);
    return tool.take();
  };
  EXPECT_EQ(written(""), "  n: \n");
  EXPECT_EQ(written(static_cast<const char*>(nullptr)), "  n: \n");
  EXPECT_EQ(written(INT_MIN), "  n: -2147483648\n");
  EXPECT_EQ(written(UINT_MAX), "  n: 4294967295\n");
  EXPECT_EQ(written(-1L), "  n: -1\n");
  EXPECT_EQ(written(4294967295UL), "  n: 4294967295\n");
  EXPECT_EQ(written(LLONG_MIN), "  n: -9223372036854775808\n");
  EXPECT_EQ(written(ULLONG_MAX), "  n: 18446744073709551615\n");
  tool->formatBool("n", true);
  tool->formatBool(180UL, false);
  EXPECT_EQ(tool.take(), "  n: YES\n  Trace file: NO\n");
}

TEST_F(Format, QuotesTextsOnRequest) {
  struct Row {
    const char* value;
    const char* line;
  };
  for (const Row& row :
       {Row{"on", "  n: \"a b\"\n"}, Row{"1", "  n: \"a b\"\n"}, Row{"maybe", "  n: a b\n"}}) {
    VelClEnvironmentVariable(kQuoteStrings, row.value);
    Tool tool;
    tool->setFormatWidth(1);
    tool->format("n", "a b");
    EXPECT_EQ(tool.take(), row.line) << row.value;
    tool->format("n", 5);
    EXPECT_EQ(tool.take(), "  n: 5\n");
  }
}

TEST_F(Format, DumpsSixteenBytesALine) {
  unsigned char bytes[33];
  for (unsigned int i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<unsigned char>(0xF0 + i);
  const std::string first = "F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF\n";
  const std::string second = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n";
  Tool tool;
  tool->setFormatWidth(6);
  const auto dumped = [&](const char* label, const void* data, std::size_t size) {
    tool->dump(label, data, size);
    return tool.take();
  };
  EXPECT_EQ(dumped("Bytes", bytes, 0), "  Bytes.: \n");
  EXPECT_EQ(dumped("Bytes", nullptr, 5), "  Bytes.: \n");
  EXPECT_EQ(dumped("Bytes", bytes, 1), "  Bytes.: F0\n");
  EXPECT_EQ(dumped("Bytes", bytes, 16), "  Bytes.: " + first);
  EXPECT_EQ(dumped("Bytes", bytes, 33), "  Bytes.: " + first + blanks(10) + second + blanks(10) + "10\n");
  EXPECT_EQ(dumped("All bytes", bytes, 17), "  All bytes: " + first + blanks(13) + "00\n");
}

TEST_F(Format, NamesErrorsAndTellsExceptions) {
  Tool tool;
  tool->setFormatWidth(0);
  tool->formatErrId(0);
  tool->formatErrId(1000401);
  tool->formatErrId(1000501);
  tool->formatErrId(4294967295UL);
  EXPECT_EQ(tool.take(),
            "  Error ID: NO_ERROR (0)\n  Error ID: FILE_COULD_NOT_COPY (1000401)\n"
            "  Error ID: 1000501\n  Error ID: 4294967295\n");
  VelClException full(INIFILE_INVAL_OPTION, VelEnErrorClass::USER_ERROR, VelEnErrorSeverity::PANIC,
                      VelEnErrorAction::USER, "cause");
  full.setOrigin("here", 4294967295U);
  const VelClException plain(_VelStUserError(), nullptr);
  const VelClException unknown(5, static_cast<VelEnErrorClass>(555), static_cast<VelEnErrorSeverity>(3),
                               static_cast<VelEnErrorAction>(-9), "");
  struct Row {
    const VelClException& exception;
    bool verbose;
    const char* lines;
  };
  const Row rows[] = {
      {full, false,
       "  Error ID: INIFILE_INVAL_OPTION (1000002)\n  Error Class: USER_ERROR\n"
       "  Error Severity: PANIC\n  Recommended Action: USER\n"},
      {full, true,
       "  Error ID: INIFILE_INVAL_OPTION (1000002)\n  Error Class: USER_ERROR\n"
       "  Error Severity: PANIC\n  Recommended Action: USER\n  Cause for exception: cause\n"
       "  Exception occured in function: here\n  Exception occured in line: 4294967295\n"},
      {plain, false, "  Error ID: NO_ERROR (0)\n"},
      {plain, true,
       "  Error ID: NO_ERROR (0)\n  Error Class: UNKNOWN\n  Error Severity: NONE\n"
       "  Recommended Action: IGNORE\n"},
      {unknown, false, "  Error ID: 5\n  Error Class: 555\n  Error Severity: 3\n  Recommended Action: -9\n"},
  };
  for (const Row& row : rows) {
    tool->format(row.exception, row.verbose);
    EXPECT_EQ(tool.take(), row.lines);
  }
}

TEST_F(Format, KeepsItsStreamInQuietMode) {
  Tool tool;
  std::ostringstream other;
  tool->getParams().setQuietMode(true);
  tool->setOutputStream(other);
  tool->info("unheard");
  tool->displayTitle("Tool", nullptr);
  EXPECT_EQ(tool.take(), "\nTRCCTL - Tool\n");
  tool->getParams().forceOutputStream(other);
  tool->displayTitle("Tool", "again");
  EXPECT_EQ(other.str(), "\nTRCCTL - Tool   again\n");
}

TEST(ConsoleUIParams, NamesTheProcess) {
  struct Row {
    const char* argv0;
    const char* name;
  };
  const Row rows[] = {
      {"D:\\TOOLS\\trcctl.exe", "TRCCTL"},
      {"a.b\\tool.exe", "TOOL"},
      {"./tool", "TOOL"},
      {"/usr/bin/my-tool_2.5.tar", "MY-TOOL_2"},
      {"abcdefghijklmnopqrstuvwxyz.exe", "ABCDEFGHIJKLMNOPQRSTUVWXY"},
      {".hidden", ""},
      {"dir\\", ""},
      {"", ""},
      {nullptr, ""},
  };
  for (const Row& row : rows) {
    const VelClConsoleUIParams params(row.argv0);
    EXPECT_STREQ(params.getProcessName(), row.name);
    EXPECT_EQ(params.getIndentation(), std::string(row.name).size());
  }
}

TEST(ConsoleUIParams, CopiesItsTexts) {
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

TEST(ConsoleUI, LeavesOutMissingTexts) {
  Tool tool;
  tool->info("one", nullptr, "three");
  EXPECT_NE(tool.take().find("  one: three\n"), std::string::npos);
}

TEST(ConsoleUI, FallsBackToATableOfTheTools) {
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  std::ostringstream stream;
  VelClConsoleUI ui(0, nullptr, VelClFilename("absent"), 0, table, size);
  ui.setOutputStream(stream);
  ui.formatBool("", true);
  EXPECT_EQ(stream.str(), "  " + std::string(36, '.') + ": YES\n");
}

}  // namespace
