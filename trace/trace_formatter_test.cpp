// What the formatter makes of records: every type of data, formats, options, and files that are damaged.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>

#include "trace/test/trace_fixture.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_messages.h"

namespace {

using Bytes = std::string;

Bytes zeros(std::size_t count) {
  return Bytes(count, '\0');
}

Bytes number32(std::uint32_t number) {
  Bytes bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

/// What a record has unless a test says otherwise.
struct Fields {
  unsigned int type = 0;
  Bytes data = {};
  std::string origin = "f";
  std::string message = "m";
  unsigned int detail = 1;
  unsigned int component = 0;
  std::uint32_t thread = 30;
  int missing = 0;  ///< how many bytes of data the file lacks
};

Bytes record(const Fields& fields) {
  Bytes bytes = {static_cast<char>(fields.type | fields.detail << 6), static_cast<char>(fields.component),
                 static_cast<char>(fields.message.size()), static_cast<char>(fields.origin.size())};
  bytes += number32(10) + number32(20) + number32(fields.thread);
  bytes +=
      number32(static_cast<std::uint32_t>(fields.data.size()) + static_cast<std::uint32_t>(fields.missing));
  return bytes + fields.message + fields.origin + fields.data;
}

Bytes entryOf(std::uint32_t nestingLevel, const std::string& origin = "f") {
  return record({.type = 1, .data = number32(nestingLevel), .origin = origin, .message = ""});
}

Bytes exitOf(std::uint32_t nestingLevel, const std::string& origin = "f") {
  return record({.type = 2, .data = number32(nestingLevel), .origin = origin, .message = ""});
}

/// What an exception tells, "1000703 202 VelClTraceFormatter::formatData, line 541".
std::string describe(const VelClException& exception) {
  EXPECT_EQ(exception.getSeverity(), VelEnErrorSeverity::FATAL);
  EXPECT_EQ(exception.getAction(), VelEnErrorAction::TERMINATE);
  EXPECT_STREQ(exception.getCause(), "");
  const std::string origin = exception.getOrigin();
  EXPECT_TRUE(origin.ends_with(", line " + std::to_string(exception.getLine())));
  return std::to_string(exception.getId()) + ' ' + std::to_string(static_cast<int>(exception.getClass())) +
         ' ' + origin.substr(origin.find("::") + 2);
}

class TraceFormatter : public vel::test::TraceTest {
 protected:
  TraceFormatter() : environment_(environment()), formatter_(*environment_, nullptr) {
    environment_->getSettings().setDetailLevel("HIGH");
  }

  /// The text, and the fault that ended it in brackets.
  std::string format() {
    std::ostringstream text;
    try {
      formatter_.format(text);
    } catch (const VelClException& exception) {
      text << '[' << describe(exception) << ']';
    }
    return text.str();
  }
  std::string format(const Bytes& file, const char* formatString) {
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << file;
    formatter_.setFormatString(formatString);
    return format();
  }

  std::unique_ptr<VelClTraceEnvironment> environment_;
  VelClTraceFormatter formatter_;
};

TEST_F(TraceFormatter, ShowsEveryTypeOfData) {
  const Bytes x87One = zeros(7) + "\x80\xFF\x3F";
  struct Row {
    unsigned int type;
    Bytes data;
    std::string text;
  };
  const Row rows[] = {
      {3, "", ""},
      {4, "", "\n"},
      {4, "A\x7F", "\n00000000: 41 7F __ __ __ __ __ __  __ __ __ __ __ __ __ __ | A.______________"},
      {5, Bytes(17, 'B'),
       "\n00000000: 42 42 42 42 42 42 42 42  42 42 42 42 42 42 42 42 | BBBBBBBBBBBBBBBB\n"
       "00000010: 42 __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | B_______________"},
      {6, "", "*** Illegal NULL pointer ***"},
      {7, "\x10\x2A" + zeros(6), "0x2a10"},
      {7, zeros(8), "0"},
      {8, "", "\"\""},
      {8, Bytes(20000, 'x'), '"' + Bytes(20000, 'x') + '"'},
      {9, "a", "\n00000000: 61 __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | a_______________"},
      {10, zeros(1), "FALSE"},
      {10, "\x80", "TRUE"},
      {11, "'", "0x27/39/'''"},
      {11, ".", "0x2E/46/'.'"},
      {11, "\x7F", "0x7F/127"},
      {11, "\x80", "0x80/-128"},
      {12, "\xFF", "0xFF/255"},
      {13, zeros(2), "0x0/0"},
      {14, "\x01\x80", "0x8001/32769"},
      {15, Bytes(4, '\xFF'), "0xFFFFFFFF/-1"},
      {16, Bytes(4, '\xFF'), "0xFFFFFFFF/4294967295"},
      {17, Bytes(8, '\xFF'), "0xFFFFFFFFFFFFFFFF/-1"},
      {18, Bytes(8, '\xFF'), "0xFFFFFFFFFFFFFFFF/18446744073709551615"},
      {18, "\x01" + zeros(7) + "more", "0x1/1"},
      {19, Bytes("\xDB\x0F\x49\x40"), "3.14159"},
      {19, zeros(2) + "\x80\x7F", "inf"},
      {20, "\x11\x2D\x44\x54\xFB\x21\x09\x40", "3.14159"},
      {20, zeros(6) + "\x59\x40", "100"},
      {21, zeros(6) + "\x59\x40", "100"},
      {21, x87One, "1"},
      {21, x87One + "??", "1"},
      {21, x87One + "??????", "1"},
      {21, zeros(10), "0"},
      {21, zeros(7) + "\x80\xFF\x7F", "inf"},
      // Not what the x87 calls a number: no leading bit, or one where none may be.
      {21, zeros(8) + "\xFF\x3F", "nan"},
      {21, zeros(7) + "\x80" + zeros(2), "nan"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(format(record({.type = row.type, .data = row.data}), "%d"), row.text) << row.type;
}

TEST_F(TraceFormatter, WalksTheFormat) {
  const Bytes entry = record({.type = 8, .data = "d", .component = 7});
  const Bytes clipped = record({.type = 5, .data = "A"});
  const std::string line = "\n00000000: 41 __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | A_______________";
  const std::string longText(20000, '-');
  struct Row {
    Bytes file;
    std::string format;
    std::string text;
  };
  const Row rows[] = {
      {entry, "%f,%m,%x,%X,%c,%p,%s,%t,%l,%d", "f,m,cpsz,C string,7,20,10,30,LOW,\"d\""},
      {entry, "%d%n\\n\\t\\\\\\q%%%q.", "\"d\"\n\n\t\\q%%."},
      {entry, "%d%", "\"d\""},
      {entry, "%d\\", "\"d\""},
      {entry, longText + "%d" + longText, longText + "\"d\"" + longText},
      {clipped, "%x%d", "DA (1 Bytes) *** Clipped ***" + line},
      {clipped, "%X%d", "DATA (1 Bytes) *** Clipped ***" + line},
      {record({.type = 22}), "%x%X.%d", ".[1000703 202 formatData, line 541]"},
      {record({.type = 23}), "<%X%d", "<[1000703 203 getTypeAsCString, line 602]"},
      // Without "%d" the data is taken for a record, here for the head of one that is cut off.
      {entry + entry, "%m", "m"},
      {entry, "%d%d", "\"d\"\"[1000702 502 formatCString, line 323]"},
      {entryOf(3, "g"), "%f%n   P: %p, T: %s, D: %l, C: %c%n   Data: %m (%x: %d%n)",
       "g\n   P: 20, T: 10, D: LOW, C: 0\n   Data:  (FE: \n)"},
      {"", "%d", ""},
  };
  for (const Row& row : rows) EXPECT_EQ(format(row.file, row.format.c_str()), row.text) << row.format;
}

TEST_F(TraceFormatter, ReportsDamage) {
  const Bytes before = record({.type = 12, .data = "A"});
  struct Row {
    Bytes file;
    const char* fault;
  };
  const Row rows[] = {
      {record({.type = 0}), "1000703 202 formatData, line 541"},
      {record({.type = 31, .data = "x"}), "1000703 202 formatData, line 541"},
      {record({.type = 1, .data = "abc"}), "1000703 202 formatData, line 405"},
      {record({.type = 2, .data = "abcde"}), "1000703 202 formatData, line 405"},
      {record({.type = 3, .data = "x"}), "1000703 202 formatData, line 433"},
      {record({.type = 7, .data = "abcd"}), "1000703 202 formatData, line 364"},
      {record({.type = 6, .data = Bytes(128, 'x')}), "1000703 202 formatData, line 377"},
      {record({.type = 12, .data = Bytes(128, 'x')}), "1000703 202 formatData, line 377"},
      {record({.type = 10}), "1000703 202 formatData, line 502"},
      {record({.type = 18, .data = "1234567"}), "1000703 202 formatData, line 502"},
      {record({.type = 21, .data = "12345678901"}), "1000703 202 formatData, line 502"},
      {record({.type = 12, .data = Bytes(126, 'x'), .missing = 1}), "1000702 502 formatEntry, line 644"},
      {record({.type = 1, .data = "abc", .missing = 1}), "1000702 502 formatEntry, line 644"},
      {record({.type = 7, .data = "1234567", .missing = 1}), "1000702 502 formatAdrs, line 247"},
      {record({.type = 4, .data = "", .missing = -1}), "1000702 502 formatHexDump, line 277"},
      {record({.type = 9, .data = Bytes(15, 'x'), .missing = 1}), "1000702 502 formatHexDump, line 277"},
      {record({.type = 8, .data = "abc", .missing = -4}), "1000702 502 formatCString, line 323"},
      {record({.type = 8, .data = "abc", .detail = 3, .missing = -4}), "1000702 502 skipEntry, line 186"},
  };
  environment_->getSettings().setDetailLevel("MED");
  for (const Row& row : rows) {
    const std::string text = format(before + row.file, "%d;");
    EXPECT_THAT(text, testing::StartsWith("0x41/65/'A';")) << row.fault;
    EXPECT_THAT(text, testing::EndsWith(std::string("[") + row.fault + ']'));
  }
  // A record whose head or texts are cut off is none.
  const Bytes whole = before + before;
  for (std::size_t size = before.size(); size < whole.size() - 1; ++size)
    EXPECT_EQ(format(whole.substr(0, size), "%d;"), "0x41/65/'A';") << size;
}

TEST_F(TraceFormatter, OpensFilesOnly) {
  const std::string fault = "[1000701 503 format, line 837]";
  EXPECT_EQ(format(), fault);
  environment_->setFilename(directory_.path().c_str());
  EXPECT_EQ(format(), fault);
}

TEST_F(TraceFormatter, IndentsByTheLevelBehindTheData) {
  formatter_.setDisplayIndentation(". ");
  formatter_.setShowNestingLevel(true);
  const Bytes file = entryOf(1) + entryOf(2) + record({.type = 4, .data = "A"}) + exitOf(1) +
                     exitOf(0xFFFFFFFF) + entryOf(0x80000000);
  EXPECT_EQ(format(file, "%x%n%d%n"),
            "FE\nNesting level: 1\n. "
            "FE\n. Nesting level: 2\n. . "
            "DA (1 Bytes)\n. . \n. . 00000000: 41 __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | "
            "A_______________\n. . "
            "FX\n. . Nesting level: 1\n. "
            "FX\n. Nesting level: 4294967295\n"
            "FE\nNesting level: 2147483648\n");
  formatter_.setShowNestingLevel(false);
  EXPECT_EQ(format(entryOf(0x7FFFFFFF), "%d%n").size(), 1 + 2 * 1024);
}

TEST_F(TraceFormatter, ShowsTheBytesOfValues) {
  formatter_.setShowHex(true);
  formatter_.setShowBinary(true);
  formatter_.setDisplayIndentation("> ");
  const Bytes file = entryOf(1) + record({.type = 13, .data = "AB"}) + record({.type = 6}) +
                     record({.type = 21, .data = zeros(7) + "\x80\xFF\x3F"});
  EXPECT_EQ(format(file, "%d;"),
            ";0x4241/16961"
            "\n> HEX: 41 42 __ __ __ __ __ __  __ __ __ __ __ __ __ __ | AB______________"
            "\n> BIN: 01000001 01000010 ________ ________  ________ ________ ________ ________ | AB______"
            ";*** Illegal NULL pointer ***;1"
            "\n> HEX: 00 00 00 00 00 00 00 80  FF 3F __ __ __ __ __ __ | .........?______"
            "\n> BIN: 00000000 00000000 00000000 00000000  00000000 00000000 00000000 10000000 | ........"
            "\n> BIN: 11111111 00111111 ________ ________  ________ ________ ________ ________ | .?______;");
}

TEST_F(TraceFormatter, HidesWhatIsNotWanted) {
  const auto note = [](const char* origin, unsigned int detail, unsigned int component,
                       std::uint32_t thread) {
    return record({.type = 10,
                   .data = Bytes(100, 'x'),
                   .origin = origin,
                   .detail = detail,
                   .component = component,
                   .thread = thread});
  };
  std::ofstream(file_, std::ios::binary) << entryOf(1, "a") + note("a", 1, 0, 30) + note("a", 2, 7, 31) +
                                                entryOf(2, "b") + note("b", 3, 8, 30) + exitOf(1, "b") +
                                                note("a", 1, 8, 31) + exitOf(0, "a");
  struct Row {
    void (*choose)(VelClTraceFormatter&, VelClTraceFilter&);
    const char* text;
  };
  const Row rows[] = {
      {[](auto&, auto&) {}, "aFE ab ab bFE bb bFX ab aFX "},
      {[](auto& formatter, auto&) { formatter.setShowFunctionRecords(false); }, "ab ab bb ab "},
      // The name of an entry is always shown, and does not count as the last one.
      {[](auto& formatter, auto&) { formatter.setShowRepeatedFunctionNames(false); },
       "aFE ab b bFE bb FX ab FX "},
      {[](auto&, auto& filter) { filter.setDetail("MED"); }, "aFE ab ab bFE bFX ab aFX "},
      {[](auto&, auto& filter) { filter.disableComponentId(8); }, "aFE ab ab bFE bFX aFX "},
      {[](auto&, auto& filter) { filter.setThreadId(31U); }, "ab ab "},
      {[](auto&, auto& filter) { filter.setProcessId(21U); }, ""},
  };
  for (const Row& row : rows) {
    VelClTraceFilter filter;
    filter.setDetail(VelEnTraceDetail::HIGH);
    VelClTraceFormatter formatter(*environment_, &filter);
    row.choose(formatter, filter);
    // The values of the notes are of no interest here, but the format must show them.
    formatter.setFormatString("%f%x %d");
    std::ostringstream stream;
    formatter.format(stream);
    std::string text = stream.str();
    for (std::size_t at = 0; (at = text.find("TRUE", at)) != std::string::npos;) text.erase(at, 4);
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(formatter.getNumOfEntries(), 8U);
  }
}

TEST_F(TraceFormatter, TakesItsWordsFromACatalog) {
  const Bytes file = entryOf(1) + record({.type = 6}) + record({.type = 5}) + exitOf(0);
  const char* texts[193] = {"[VEL_MSGTAB_SIGNATURE] 193", "[TEST]"};
  texts[189] = "octets";
  texts[190] = " cut";
  texts[191] = "null!";
  texts[192] = "depth ";
  VelClMessageCatalog catalog(texts, std::size(texts));
  VelClMessageCatalog other(texts, std::size(texts));
  formatter_.attachVelMessageCatalog(other);
  formatter_.attachVelMessageCatalog(catalog);
  formatter_.setShowNestingLevel(true);
  // An exit's level keeps the built-in word.
  EXPECT_EQ(format(file, "%x%d;"), "FEdepth 1;DAnull!;DA (0 octets) cut\n;FXNesting level: 0;");
}

/// Counts what is formatted and keeps nothing.
class CountingBuffer : public std::streambuf {
 public:
  std::streamsize count = 0;

 protected:
  std::streamsize xsputn(const char*, std::streamsize size) override {
    count += size;
    return size;
  }
  int_type overflow(int_type c) override {
    ++count;
    return traits_type::not_eof(c);
  }
};

/// A trace of every data type, in a file whose bytes can be changed.
class DamagedTrace : public TraceFormatter {
 protected:
  DamagedTrace() : whole_(vel::test::readFile(VEL_TRACE_SAMPLE)) {
    formatter_.setDisplayIndentation("  ");
    formatter_.setShowNestingLevel(true);
    formatter_.setShowHex(true);
    formatter_.setShowBinary(true);
    formatter_.setFormatString("%f%n%m %c %p %s %t %l %X %x%n%d\\n");
  }

  /// Fails for everything but an end by text or by one of the file's errors.
  void expectAnEnd(const std::string& where) {
    CountingBuffer buffer;
    std::ostream stream(&buffer);
    try {
      formatter_.format(stream);
    } catch (const VelClException& exception) {
      EXPECT_TRUE(exception.getId() == TRACEFORMAT_UNEXPECTED_EOF ||
                  exception.getId() == TRACEFORMAT_FILE_CORRUPTED)
          << where;
      describe(exception);
    }
    EXPECT_LE(formatter_.getNumOfEntries(), whole_.size() / 20) << where;
    EXPECT_LT(buffer.count, 1000000) << where;
  }

  const Bytes whole_;
};

TEST_F(DamagedTrace, EndsAtEveryLength) {
  ASSERT_GT(whole_.size(), 500U);
  for (std::size_t size = 0; size <= whole_.size(); ++size) {
    std::ofstream(file_, std::ios::binary | std::ios::trunc)
        .write(whole_.data(), static_cast<std::streamsize>(size));
    expectAnEnd("length " + std::to_string(size));
  }
}

TEST_F(DamagedTrace, EndsWithEveryByteChanged) {
  std::ofstream(file_, std::ios::binary) << whole_;
  std::fstream file(file_, std::ios::binary | std::ios::in | std::ios::out);
  for (std::size_t place = 0; place < whole_.size(); ++place) {
    const auto put = [&](char byte) {
      file.seekp(static_cast<std::streamoff>(place)).put(byte).flush();
      ASSERT_TRUE(file.good());
    };
    for (const int change : {1, 2, 4, 8, 16, 32, 64, 128, 127, 255}) {
      put(static_cast<char>(whole_[place] ^ change));
      expectAnEnd("byte " + std::to_string(place) + " changed by " + std::to_string(change));
    }
    put(whole_[place]);
  }
}

}  // namespace
