// Formats records: every type of data, format strings and options. Damaged files of any kind are tested by
// fuzz/trace_formatter_fuzz.cpp.
#include <iomanip>

#include "platform/test/thrown.h"
#include "trace/test/trace_fixture.h"
#include "vel_include/vel_messages.h"

namespace {

using Bytes = std::string;

Bytes number32(std::uint64_t number) {
  Bytes bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

struct Record {
  int type;
  Bytes data = {};
  int missing = 0;  ///< bytes that the head counts but the file does not contain
  char component = 7;
  std::string origin = "f";
  int detail = 1;
  std::uint32_t thread = 30;
};

/// Returns a file of these records. Records of function entries and exits are written without a message.
Bytes fileOf(const std::vector<Record>& records) {
  Bytes file;
  for (const auto& [type, data, missing, component, origin, detail, thread] : records) {
    const Bytes message = type == 1 || type == 2 ? "" : "m";
    file += {static_cast<char>(type | detail << 6), component, static_cast<char>(message.size()),
             static_cast<char>(origin.size())};
    file += number32(10) + number32(20) + number32(thread) +
            number32(data.size() + static_cast<std::size_t>(missing)) + message + origin + data;
  }
  return file;
}

class TraceFormatter : public vel::test::TraceTest {
 protected:
  TraceFormatter() : environment_(environment()), formatter_(*environment_, nullptr) {
    environment_->getSettings().setDetailLevel("MED");
  }

  /// Returns the text, and the exception that ended it in brackets.
  static std::string format(VelClTraceFormatter& formatter) {
    std::ostringstream text;
    const std::string fault = vel::test::thrown([&] { formatter.format(text); });
    return text.str() + (fault == "-" ? "" : '[' + fault + ']');
  }
  std::string format(const Bytes& file, const std::string& formatString) {
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << file;
    formatter_.setFormatString(formatString.c_str());
    return format(formatter_);
  }

  void expectTexts(const char* table) {
    for (const auto& row : vel::test::readTexts(std::string(VEL_TEST_DATA "test/") + table))
      EXPECT_EQ(format(fileOf({{std::stoi(row[0]), row[1], std::stoi(row[2])}}), row[3]), row.at(4))
          << row[0] << ' ' << row[1];
  }

  std::unique_ptr<VelClTraceEnvironment> environment_;
  VelClTraceFormatter formatter_;
};

TEST_F(TraceFormatter, FormatsEveryDataTypeAndDirectiveAndReportsDamage) {
  expectTexts("formatted.tsv");
  const std::string dashes(20000, '-'), text(20000, 'x');
  EXPECT_EQ(format(fileOf({{8, text}}), dashes + "%d" + dashes), dashes + '"' + text + '"' + dashes);
}

TEST_F(TraceFormatter, ReadsAllRecordsOfAFile) {
  const Record a{12, "A"}, text{8, "d"};
  const std::string shown = "0x41/65/'A';";
  EXPECT_EQ(format("", "%d;"), "");
  // Hidden data is skipped, whatever its length.
  EXPECT_EQ(format(fileOf({a, {.type = 8, .data = Bytes(200000, 'x'), .detail = 3}, a}), "%d;"),
            shown + shown);
  EXPECT_EQ(format(fileOf({a, {.type = 8, .data = "abc", .missing = -4, .detail = 3}}), "%d;"),
            shown + "[1000702 502 6 6 , VelClTraceFormatter::skipEntry, line 186]");
  EXPECT_EQ(format(fileOf({a, {0}}), "%d;"),
            shown + "[1000703 202 6 6 , VelClTraceFormatter::formatData, line 541]");
  // Without "%d" the data is read as the next record, here as a truncated head.
  EXPECT_EQ(format(fileOf({text, text}), "%m"), "m");
  const Bytes one = fileOf({a});
  for (std::size_t size = 0; size < one.size() - 1; ++size)
    EXPECT_EQ(format(one + one.substr(0, size), "%d;"), shown) << size;
}

TEST_F(TraceFormatter, FormatsExtremeLongDoubles) {
  expectTexts("formatted_extremes.tsv");
}

TEST_F(TraceFormatter, UsesTheNumberFormatOfTheStream) {
  std::ofstream(file_, std::ios::binary)
      << fileOf({{20, Bytes("\0\0\0\0\0\0\xF8\x3F", 8)}, {19, Bytes("\0\0\xC0\x3F", 4)}});
  formatter_.setFormatString("%d;");
  std::ostringstream text;
  formatter_.format(text << std::fixed << std::setprecision(2));
  formatter_.format(text << std::scientific << std::setprecision(1));
  formatter_.format(text << std::setprecision(1'000'000));
  const std::string zeros(7999, '0');
  EXPECT_EQ(text.str(), "1.50;1.50;1.5e+00;1.5e+00;1.5" + zeros + "e+00;1.5" + zeros + "e+00;");
}

TEST_F(TraceFormatter, PrintsAllDigitsOfTheLargestLongDoubleInFixedFormat) {
  std::ofstream(file_, std::ios::binary) << fileOf({{21, Bytes(8, '\xFF') + "\xFE\x7F"}});
  formatter_.setFormatString("%d;");
  std::ostringstream text;
  formatter_.format(text << std::fixed << std::setprecision(0));
  formatter_.format(text << std::setprecision(1'000'000));
  // 2 to the power of 16384 less 2 to the power of 16320 has 4933 digits.
  const std::string zeros(8000, '0'), shown = text.str(), number = shown.substr(0, 4933);
  EXPECT_TRUE(number.starts_with("118973149535723176502126")) << number;
  EXPECT_TRUE(number.ends_with("604419552086811989770240")) << number;
  EXPECT_EQ(shown, number + ";" + number + "." + zeros + ";");
}

TEST_F(TraceFormatter, ThrowsForAMissingFileAndForADirectory) {
  const std::string fault = "[1000701 503 6 6 , VelClTraceFormatter::format, line 837]";
  EXPECT_EQ(format(formatter_), fault);
  environment_->setFilename(directory_.path().c_str());
  EXPECT_EQ(format(formatter_), fault);
}

// The indentation follows the nesting level that a record stores, and is bounded.
TEST_F(TraceFormatter, AppliesIndentationNestingLevelAndDumps) {
  std::map<std::pair<std::string, std::string>, std::pair<Bytes, std::string>> files;
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/formatted_with_settings.tsv")) {
    auto& [file, text] = files[{row[0], row[3]}];
    file += fileOf({{std::stoi(row[1]), row[2]}});
    text += row.at(4);
  }
  for (const auto& [asked, contents] : files) {
    const auto has = [&settings = asked.first](const char* name) {
      return settings.find(name) != settings.npos;
    };
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << contents.first;
    VelClTraceFormatter formatter(*environment_, nullptr);
    formatter.setFormatString(asked.second.c_str());
    formatter.setDisplayIndentation(has("indent") ? ". " : nullptr);
    formatter.setShowNestingLevel(has("nest"));
    formatter.setShowHex(has("hex"));
    formatter.setShowBinary(has("binary"));
    EXPECT_EQ(format(formatter), contents.second);
  }
}

TEST_F(TraceFormatter, HidesRecordsByFilterAndSettings) {
  const Bytes yes(100, 'x');
  std::ofstream(file_, std::ios::binary)
      << fileOf({{.type = 1, .data = number32(1), .component = 0, .origin = "a"},
                 {.type = 10, .data = yes, .component = 0, .origin = "a"},
                 {.type = 10, .data = yes, .component = 7, .origin = "a", .detail = 2, .thread = 31},
                 {.type = 1, .data = number32(2), .component = 0, .origin = "b"},
                 {.type = 10, .data = yes, .component = 8, .origin = "b", .detail = 3},
                 {.type = 2, .data = number32(1), .component = 0, .origin = "b"},
                 {.type = 10, .data = yes, .component = 8, .origin = "a", .thread = 31},
                 {.type = 2, .data = number32(0), .component = 0, .origin = "a"}});
  struct Row {
    void (*choose)(VelClTraceFormatter&, VelClTraceFilter&);
    const char* text;
  };
  const Row rows[] = {
      {[](auto&, auto&) {}, "aFE abTRUE abTRUE bFE bbTRUE bFX abTRUE aFX "},
      {[](auto& formatter, auto&) { formatter.setShowFunctionRecords(false); },
       "abTRUE abTRUE bbTRUE abTRUE "},
      // A function entry always shows its name, and does not make the next name a repeated one.
      {[](auto& formatter, auto&) { formatter.setShowRepeatedFunctionNames(false); },
       "aFE abTRUE bTRUE bFE bbTRUE FX abTRUE FX "},
      {[](auto&, auto& filter) { filter.setDetail("MED"); }, "aFE abTRUE abTRUE bFE bFX abTRUE aFX "},
      {[](auto&, auto& filter) { filter.disableComponentId(8); }, "aFE abTRUE abTRUE bFE bFX aFX "},
      {[](auto&, auto& filter) { filter.setThreadId(31U); }, "abTRUE abTRUE "},
      {[](auto&, auto& filter) { filter.setProcessId(21U); }, ""},
  };
  for (const Row& row : rows) {
    VelClTraceFilter filter;
    filter.setDetail(VelEnTraceDetail::HIGH);
    VelClTraceFormatter formatter(*environment_, &filter);
    row.choose(formatter, filter);
    formatter.setFormatString("%f%x%d ");
    EXPECT_EQ(format(formatter), row.text);
    EXPECT_EQ(formatter.getNumOfEntries(), 8U);
  }
}

TEST_F(TraceFormatter, UsesTheWordsOfTheCatalogAttachedLast) {
  const char* texts[193] = {"[VEL_MSGTAB_SIGNATURE] 193", "[TEST]"};
  texts[189] = "octets";
  texts[190] = " cut";
  texts[191] = "null!";
  texts[192] = "depth ";
  VelClMessageCatalog catalog(texts, std::size(texts));
  VelClMessageCatalog other(texts, std::size(texts));
  formatter_.attachVelMessageCatalog(other);
  for (int i = 0; i < 2; ++i) formatter_.attachVelMessageCatalog(catalog);
  formatter_.setShowNestingLevel(true);
  // Intentional: the level of a function exit has the built-in word.
  EXPECT_EQ(format(fileOf({{1, number32(1)}, {6}, {5}, {2, number32(0)}}), "%x%d;"),
            "FEdepth 1;DAnull!;DA (0 octets) cut\n;FXNesting level: 0;");
}

}  // namespace
