// veldump: shows the bytes of files, compares two files, and turns dumps back into bytes.
//
// Both directions read a file in chunks of 64 KiB. A line may be cut by the end of a chunk: its bytes are
// moved to the front, and the next read continues after them. So a dump takes little memory for a file of any
// size. Formatting is dump_writer.h's work, parsing dump_parser.cpp's, comparing comparison.h's.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "platform/byte_files.h"
#include "tools/catalog_tool.h"
#include "tools/ccsids.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/translation.h"
#include "tools/veldump/byte_source.h"
#include "tools/veldump/comparison.h"
#include "tools/veldump/dump_parser.h"
#include "tools/veldump/dump_writer.h"
#include "tools/veldump/texts.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"

namespace {

using namespace vel::veldump;
using vel::util::BinaryForm;
using vel::util::HexForm;

constexpr int kExitNotRead = 1;
constexpr int kExitNotWritten = 2;
constexpr int kExitBeyondLimit = 3;
/// With -compare, because 1 then means that the files differ.
constexpr int kExitDifferent = 1;
constexpr int kExitNotCompared = 4;
constexpr std::uint64_t kDefaultLimit = std::uint64_t{1} << 30;
constexpr std::size_t kChunkSize = std::size_t{64} * 1024;

/// Writes past std::cout: a dump is large, and with -reverse the bytes must arrive unchanged, see
/// safe_terminal.h.
bool writeToStandardOutput(const char* bytes, std::size_t size) {
  return vel::platform::writeBytes(vel::platform::kStandardOutput, bytes, size) == 0;
}

/// The console user interface with the tool's own texts.
class Tool : public vel::tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd), chunk_(kChunkSize) {}

  /// Returns the exit code.
  int run();

 private:
  void readSwitches();
  std::uint64_t countOf(const char* switchName, std::uint64_t otherwise) const;
  std::uint64_t widthOfElements() const;
  Range rangeOf(std::uint64_t width) const;
  void readAppearance();
  std::vector<const char*> files() const;
  int compare(const char* first, const char* second);
  bool openForComparison(ByteSource& source, const char* file, Range& range) const;
  void writeHeading(const char* file);
  bool handle(const char* file);
  template <typename Form>
  bool dump(ByteSource& source, std::uint64_t offset);
  bool reverse(ByteSource& source, const char* file);
  bool parseLines(DumpParser& parser, std::size_t& size, std::uint64_t& lineNumber);
  void reportLine(const DumpParser& parser, const char* file, std::uint64_t lineNumber);
  bool fillChunk(ByteSource& source, std::size_t& size);

  std::vector<std::uint8_t> chunk_;
  OutputBuffer output_{writeToStandardOutput};
  LinePainter painter_;
  Range range_;
  std::uint64_t limit_ = kDefaultLimit;  ///< number of bytes that lines "*" may still stand for
  int exitCode_ = 0;
  bool binary_ = false;
  bool squeeze_ = false;
  bool reverse_ = false;
  bool compare_ = false;
  bool hasHeading_ = false;
};

/// Returns the size of elements in bytes, saturated.
std::uint64_t scaled(std::uint64_t count, std::uint64_t width) {
  constexpr std::uint64_t kMax = Range().length;
  return count > kMax / width ? kMax : count * width;
}

bool parseCount(const char* text, std::uint64_t& count) {
  const bool hexadecimal = std::strncmp(text, "0x", 2) == 0 || std::strncmp(text, "0X", 2) == 0;
  const char* const digits = text + (hexadecimal ? 2 : 0);
  const char* const end = digits + std::strlen(digits);
  const auto [stop, error] = std::from_chars(digits, end, count, hexadecimal ? 16 : 10);
  return error == std::errc() && stop == end;
}

std::uint64_t Tool::countOf(const char* switchName, std::uint64_t otherwise) const {
  const char* number = nullptr;
  std::uint64_t count = otherwise;
  if (hasArgString(switchName, number) && !parseCount(number, count))
    fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kNumberExpected).c_str(), number);
  return count;
}

std::uint64_t Tool::widthOfElements() const {
  const std::uint64_t width = countOf("width", 1);
  if (width == 1 || width == 2 || width == 4 || width == 8) return width;
  fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kWidthExpected).c_str());
}

/// Returns the range of -offset and -length; an offset below zero counts from the end.
Range Tool::rangeOf(std::uint64_t width) const {
  Range range;
  const char* offset = nullptr;
  if (hasArgString("offset", offset)) {
    range.isFromEnd = *offset == '-';
    if (!parseCount(offset + (range.isFromEnd ? 1 : 0), range.offset))
      fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kNumberExpected).c_str(), offset);
  }
  range.offset = scaled(range.offset, width);
  range.length = scaled(countOf("length", Range().length), width);
  return range;
}

/// Sets code page and colours. Where there are colours, and which, is decided by the library's conventions.
void Tool::readAppearance() {
  const char* page = nullptr;
  VelClCCSID ccsid(VelClCCSID::CCSID_UNKNOWN);
  if (hasArgString("codepage", page) && !(vel::tools::parseCcsid(page, ccsid) && painter_.useCodePage(ccsid)))
    fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kUnknownCodePage).c_str(), page);
  const char* mode = "auto";
  hasArgString("color", mode);
  if (std::strcmp(mode, "auto") != 0 && std::strcmp(mode, "always") != 0 && std::strcmp(mode, "never") != 0)
    fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kColorExpected).c_str(), mode);
  const char* const arguments[] = {vel::tools::kToolName, "-color", mode};
  VelClConsoleUI styles(static_cast<int>(std::size(arguments)), arguments);
  styles.useConventions();
  compare_ ? painter_.colorMarks(styles) : painter_.colorKinds(styles);
}

void Tool::readSwitches() {
  binary_ = hasArgSwitch("bin");
  squeeze_ = hasArgSwitch("squeeze");
  reverse_ = hasArgSwitch("reverse");
  // A dump tells its form, its addresses and its length, so no switch may say otherwise.
  if (reverse_)
    for (const char* other : {"bin", "squeeze", "offset", "length", "width", "codepage", "color", "compare"})
      if (hasArgSwitch(other)) refuse(kReverseAlone);
  compare_ = hasArgSwitch("compare");
  if (compare_ && (squeeze_ || freeArguments().size() != 2)) refuse(kTwoFiles);
  if (!reverse_ && hasArgSwitch("limit")) refuse(kLimitBelongs);
  refuseRepeatedInput(freeArguments());
  limit_ = countOf("limit", kDefaultLimit);
  const std::uint64_t width = widthOfElements();
  range_ = rangeOf(width);
  if (!reverse_) readAppearance();
}

std::vector<const char*> Tool::files() const {
  std::vector<const char*> names = freeArguments();
  if (names.empty()) names.push_back(nullptr);
  for (const char*& name : names)
    if (name != nullptr && std::strcmp(name, "-") == 0) name = nullptr;
  return names;
}

int Tool::run() {
  begin();
  readSwitches();
  const std::vector<const char*> names = files();
  if (compare_) return compare(names[0], names[1]);
  hasHeading_ = names.size() > 1 && !reverse_;
  // A file that cannot be read does not keep the others from being shown.
  for (const char* name : names)
    if (!handle(name) && exitCode_ == 0) exitCode_ = kExitNotRead;
  output_.flush();
  return exitCode_;
}

bool Tool::openForComparison(ByteSource& source, const char* file, Range& range) const {
  if (!source.isOpen()) {
    report(kNotOpened, file);
    return false;
  }
  // A file that ends before the range has no bytes to compare.
  source.narrow(range);
  return true;
}

/// Returns the exit code.
int Tool::compare(const char* first, const char* second) {
  ByteSource a(first), b(second);
  Range rangeOfA = range_, rangeOfB = range_;
  if (!openForComparison(a, first, rangeOfA) || !openForComparison(b, second, rangeOfB))
    return kExitNotCompared;
  // A progress bar would mix with output that is shown on the same terminal.
  const bool isShown = vel::platform::isTerminal(vel::platform::kStandardOutput);
  const std::uint64_t expected = isShown ? 0 : std::max(a.expectedBytes(), b.expectedBytes());
  if (expected > 0) progressStart(expected, first);
  const auto run = [&](auto comparison) {
    return comparison.run(a, rangeOfA.offset, b, rangeOfB.offset,
                          [this](std::size_t size) { progressStep(size); });
  };
  const bool areEqual =
      binary_ ? run(Comparison<BinaryForm>(output_, painter_)) : run(Comparison<HexForm>(output_, painter_));
  progressStop();
  output_.flush();
  if (a.hasFailed()) report(kNotRead, first);
  if (b.hasFailed()) report(kNotRead, second);
  if (a.hasFailed() || b.hasFailed()) return kExitNotCompared;
  return areEqual ? 0 : kExitDifferent;
}

void Tool::writeHeading(const char* file) {
  const std::string heading = std::string("==> ") + file + " <==\n";
  output_.append(heading.data(), heading.size());
}

/// Handles one file; null is standard input. Returns false if it could not be read to its end, or is not a
/// dump.
bool Tool::handle(const char* file) {
  ByteSource source(file);
  if (file == nullptr) file = vel::tools::translated(kTexts[kStandardInputName]);
  if (!source.isOpen()) {
    report(kNotOpened, file);
    return false;
  }
  if (hasHeading_) writeHeading(file);
  // A progress bar would mix with output that is shown on the same terminal.
  Range range = range_;
  const bool isLong = source.narrow(range) && !vel::platform::isTerminal(vel::platform::kStandardOutput);
  const std::uint64_t expected = isLong ? source.expectedBytes() : 0;
  if (expected > 0) progressStart(expected, file);
  if (reverse_) return reverse(source, file) && !source.hasFailed();
  const bool complete =
      binary_ ? dump<BinaryForm>(source, range.offset) : dump<HexForm>(source, range.offset);
  progressStop();
  if (!complete) report(kNotRead, file);
  return complete;
}

/// Reads after the `size` bytes that are left in the chunk, and adds to `size`. Returns false at the end.
bool Tool::fillChunk(ByteSource& source, std::size_t& size) {
  const std::size_t count = source.read(chunk_.data() + size, chunk_.size() - size);
  size += count;
  progressStep(count);
  return count > 0;
}

template <typename Form>
bool Tool::dump(ByteSource& source, std::uint64_t offset) {
  DumpWriter<Form> writer(output_, painter_, offset, squeeze_);
  std::size_t size = 0;
  while (fillChunk(source, size)) {
    const std::size_t written = writer.write(chunk_.data(), size);
    size -= written;
    std::memmove(chunk_.data(), chunk_.data() + written, size);
  }
  writer.finish(chunk_.data(), size);
  return !source.hasFailed();
}

/// A chunk that is full of one line ends the loop: no line of a dump is so long.
bool Tool::reverse(ByteSource& source, const char* file) {
  DumpParser parser(output_, limit_);
  std::size_t size = 0;
  std::uint64_t lineNumber = 0;
  bool good = true;
  while (good && size < chunk_.size() && fillChunk(source, size)) good = parseLines(parser, size, lineNumber);
  const std::string_view last(reinterpret_cast<const char*>(chunk_.data()), size);
  if (good && !last.empty()) {
    ++lineNumber;
    good = parser.parseLine(last);
  }
  progressStop();
  if (source.hasFailed()) {
    report(kNotRead, file);
  } else if (!good || !parser.canEnd()) {
    reportLine(parser, file, lineNumber);
    return false;
  }
  return true;
}

/// Reports why a line was refused. The output is flushed first, so that it ends where the report says.
void Tool::reportLine(const DumpParser& parser, const char* file, std::uint64_t lineNumber) {
  output_.flush();
  const TextId fault = parser.isBeyondLimit() ? kBeyondLimit
                       : parser.isReversed()  ? kReversedGroups
                                              : kNoDumpLine;
  if (parser.isBeyondLimit()) exitCode_ = kExitBeyondLimit;
  error(std::cerr, text(fault).c_str(), file, std::to_string(lineNumber).c_str());
}

/// Parses the whole lines in the chunk and moves the rest to its start.
bool Tool::parseLines(DumpParser& parser, std::size_t& size, std::uint64_t& lineNumber) {
  std::string_view text(reinterpret_cast<const char*>(chunk_.data()), size);
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    ++lineNumber;
    if (!parser.parseLine(text.substr(0, end))) return false;
    text.remove_prefix(end + 1);
  }
  size = text.size();
  std::memmove(chunk_.data(), text.data(), size);
  return true;
}

}  // namespace

const char* const vel::tools::kToolName = "veldump";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardInput, true);
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  if (vel::tools::answerStandardSwitches(argc, argv,
                                         {kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]}))
    return std::cout.good() ? 0 : kExitNotWritten;
  Tool tool(argc, argv);
  try {
    return tool.run();
  } catch (const vel::tools::OutputFailure&) {
    tool.report(kNotWritten);
    return kExitNotWritten;
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
}
