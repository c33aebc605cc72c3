// What the formatter makes of records: every type of data, formats, and options. Files that are damaged are
// fuzz/trace_formatter_fuzz.cpp's matter.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "platform/test/table.h"
#include "platform/test/thrown.h"
#include "trace/test/trace_fixture.h"
#include "vel_include/vel_messages.h"

namespace {

using Bytes = std::string;

/// "4D*3" as three bytes 4D, "4D00" as two bytes.
Bytes dataOf(const std::string& text) {
  const std::size_t star = std::min(text.find('*'), text.size());
  const Bytes bytes = vel::test::bytesOf(text.substr(0, star));
  return star == text.size() ? bytes : Bytes(std::stoul(text.substr(star + 1)), bytes.front());
}

Bytes number32(std::uint64_t number) {
  Bytes bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

/// A record from "type/data/component/origin/detail/thread/how many bytes of data the file lacks". What is
/// empty has a default; the ends of functions have no message.
Bytes recordOf(const std::string& text) {
  std::string fields[7] = {"", "", "0", "f", "1", "30", "0"};
  std::istringstream stream(text);
  std::string field;
  for (int i = 0; std::getline(stream, field, '/'); ++i)
    if (!field.empty()) fields[i] = field;
  const int type = std::stoi(fields[0]);
  const Bytes data = dataOf(fields[1]);
  const Bytes message = type == 1 || type == 2 ? "" : "m";
  const Bytes head = {static_cast<char>(type | std::stoi(fields[4]) << 6),
                      static_cast<char>(std::stoi(fields[2])), static_cast<char>(message.size()),
                      static_cast<char>(fields[3].size())};
  return head + number32(10) + number32(20) + number32(std::stoul(fields[5])) +
         number32(data.size() + static_cast<std::size_t>(std::stoll(fields[6]))) + message + fields[3] + data;
}

/// Records with blanks between them.
Bytes fileOf(const std::string& text) {
  std::istringstream words(text);
  Bytes file;
  for (std::string word; words >> word;) file += recordOf(word);
  return file;
}

class TraceFormatter : public vel::test::TraceTest {
 protected:
  TraceFormatter() : environment_(environment()), formatter_(*environment_, nullptr) {
    environment_->getSettings().setDetailLevel("MED");
  }

  /// The text, and the fault that ended it in brackets.
  std::string format() {
    std::ostringstream text;
    const std::string fault = vel::test::thrown([&] { formatter_.format(text); });
    return text.str() + (fault == "-" ? "" : '[' + fault + ']');
  }
  std::string format(const Bytes& file, const std::string& formatString) {
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << file;
    formatter_.setFormatString(formatString.c_str());
    return format();
  }

  void expectTexts(const char* table) {
    for (const auto& row : vel::test::readTable(std::string(VEL_TEST_DATA "test/") + table))
      EXPECT_EQ(format(fileOf(row[0]), row[1]), vel::test::unescaped(row[2])) << row[0];
  }

  std::unique_ptr<VelClTraceEnvironment> environment_;
  VelClTraceFormatter formatter_;
};

// Every type of data, every directive of formats, every fault of records.
TEST_F(TraceFormatter, MakesTextOfRecords) {
  expectTexts("formatted.tsv");
  const std::string dashes(20000, '-');
  EXPECT_EQ(format(fileOf("8/78*20000"), dashes + "%d" + dashes),
            dashes + '"' + std::string(20000, 'x') + '"' + dashes);
}

TEST_F(TraceFormatter, MakesTextOfExtremeLongDoubles) {
  expectTexts("formatted_extremes.tsv");
}

TEST_F(TraceFormatter, PrintsNumbersInTheFormOfTheStream) {
  const Bytes records = fileOf("20/000000000000F83F 19/0000C03F");
  std::ofstream(file_, std::ios::binary) << records;
  formatter_.setFormatString("%d;");
  std::ostringstream text;
  text << std::fixed << std::setprecision(2);
  formatter_.format(text);
  text << std::scientific << std::setprecision(1);
  formatter_.format(text);
  text << std::setprecision(1'000'000);
  formatter_.format(text);
  const std::string zeros(7999, '0');
  EXPECT_EQ(text.str(), "1.50;1.50;1.5e+00;1.5e+00;1.5" + zeros + "e+00;1.5" + zeros + "e+00;");
}

TEST_F(TraceFormatter, PrintsTheLargestLongDoubleInFullInFixedForm) {
  std::ofstream(file_, std::ios::binary) << fileOf("21/FFFFFFFFFFFFFFFFFE7F");
  formatter_.setFormatString("%d;");
  std::ostringstream text;
  text << std::fixed << std::setprecision(0);
  formatter_.format(text);
  text << std::setprecision(1'000'000);
  formatter_.format(text);
  // 2 to the power of 16384 less 2 to the power of 16320 has 4933 digits.
  const std::string zeros(8000, '0'), shown = text.str(), number = shown.substr(0, 4933);
  EXPECT_TRUE(number.starts_with("118973149535723176502126")) << number;
  EXPECT_TRUE(number.ends_with("604419552086811989770240")) << number;
  EXPECT_TRUE(shown == number + ";" + number + "." + zeros + ";") << shown.size();
}

TEST_F(TraceFormatter, EndsBeforeARecordWhoseHeadOrTextsAreCutOff) {
  const Bytes one = fileOf("12/41");
  for (std::size_t size = 0; size < one.size() - 1; ++size)
    EXPECT_EQ(format(one + one.substr(0, size), "%d;"), "0x41/65/'A';") << size;
}

TEST_F(TraceFormatter, OpensFilesOnly) {
  const std::string fault = "[1000701 503 6 6 , VelClTraceFormatter::format, line 837]";
  EXPECT_EQ(format(), fault);
  environment_->setFilename(directory_.path().c_str());
  EXPECT_EQ(format(), fault);
}

// Indentation is by the level behind the data, and bounded; values show their bytes on request.
TEST_F(TraceFormatter, FollowsItsSettings) {
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/formatted_with_settings.tsv")) {
    const auto has = [&row](const char* setting) { return row[0].find(setting) != std::string::npos; };
    formatter_.setDisplayIndentation(has("indent") ? ". " : nullptr);
    formatter_.setShowNestingLevel(has("nest"));
    formatter_.setShowHex(has("hex"));
    formatter_.setShowBinary(has("binary"));
    EXPECT_EQ(format(fileOf(row[1]), row[2]), row.at(3));
  }
}

TEST_F(TraceFormatter, HidesWhatIsNotWanted) {
  std::ofstream(file_, std::ios::binary) << fileOf(
      "1/01000000//a 10/78*100//a 10/78*100/7/a/2/31 1/02000000//b "
      "10/78*100/8/b/3 2/01000000//b 10/78*100/8/a//31 2/00000000//a");
  struct Row {
    void (*choose)(VelClTraceFormatter&, VelClTraceFilter&);
    const char* text;
  };
  const Row rows[] = {
      {[](auto&, auto&) {}, "aFE abTRUE abTRUE bFE bbTRUE bFX abTRUE aFX "},
      {[](auto& formatter, auto&) { formatter.setShowFunctionRecords(false); },
       "abTRUE abTRUE bbTRUE abTRUE "},
      // The name of an entry is always shown, and does not count as the last one.
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
    std::ostringstream stream;
    formatter.format(stream);
    EXPECT_EQ(stream.str(), row.text);
    EXPECT_EQ(formatter.getNumOfEntries(), 8U);
  }
}

TEST_F(TraceFormatter, TakesItsWordsFromACatalog) {
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
  // An exit's level keeps the built-in word.
  EXPECT_EQ(format(fileOf("1/01000000 6 5 2/00000000"), "%x%d;"),
            "FEdepth 1;DAnull!;DA (0 octets) cut\n;FXNesting level: 0;");
}

}  // namespace
