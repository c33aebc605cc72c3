// velconv: converts text between code pages.
//
// Files are converted in chunks, one after the other and into one output. An output file replaces the old one
// only after the last of them, so a conversion that stops leaves the old file in place. Conversion, and what
// becomes of characters that cannot be converted, is the work of the library's strict conversion; the tool
// reports.
#include <cstring>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/digits.h"
#include "platform/byte_files.h"
#include "platform/replacing.h"
#include "tools/catalog_tool.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velconv/ccsids.h"
#include "tools/velconv/output_file.h"
#include "tools/velconv/texts.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_strict_conversion.h"

namespace {

using namespace vel::velconv;
using vel::tools::kStandardStream;
using Conversion = VelClStrictConversion;
using Fault = Conversion::VelEnFault;

constexpr int kExitChanged = 1;
constexpr int kExitFailed = 2;
constexpr std::size_t kChunkSize = std::size_t{256} * 1024;

/// The console user interface with the tool's own texts.
class Tool : public vel::tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd), chunk_(kChunkSize) {}

  /// Returns the exit code.
  int run();
  /// Reports an error and returns the exit code for it.
  int fail(TextId id) const;

 private:
  int list() const;
  void warnWithoutIcu() const;
  void readSwitches();
  VelClCCSID ccsidOf(const char* switchName) const;
  Conversion::VelEnPolicy policy() const;
  int convertAll();
  bool convert(const char* file, OutputFile& output);
  bool convertBytes(int descriptor, OutputFile& output);
  void reportFirstFault(const char* file) const;
  void reportCounts(const char* file) const;

  std::vector<char> chunk_;
  std::optional<Conversion> conversion_;
  const char* output_ = nullptr;
  bool counts_ = false;
};

int Tool::fail(TextId id) const {
  report(id);
  return kExitFailed;
}

int Tool::run() {
  begin();
  if (hasArgSwitch("list")) return list();
  readSwitches();
  if (conversion_->isSupported()) return convertAll();
  report(kNoWay);
  warnWithoutIcu();
  return kExitFailed;
}

/// Without ICU, code pages that most users expect have no conversion. The warning goes to standard error.
void Tool::warnWithoutIcu() const {
  constexpr unsigned int kCcsidThatEveryIcuHas = 819;
  _VelStError error{};
  const void* const converter = velGetICUConverter(kCcsidThatEveryIcuHas, error);
  velDeleteICUConverter(converter);
  if (converter == nullptr && error.errorId == ICU_UNSUPPORTED_ERROR) warning(text(kNeedsIcu).c_str());
}

int Tool::list() const {
  for (const char* other : {"from", "to", "out", "policy", "count", "foldnel"})
    if (hasArgSwitch(other)) refuse(kListAlone);
  if (!freeArguments().empty()) refuse(kListAlone);
  listCcsids(std::cout);
  std::cout.flush();
  warnWithoutIcu();
  return std::cout.good() ? 0 : fail(kNotWritten);
}

void Tool::readSwitches() {
  if (!hasArgSwitch("from") || !hasArgSwitch("to")) refuse(kBothNeeded);
  conversion_.emplace(ccsidOf("from"), ccsidOf("to"), policy());
  conversion_->setNextLineFolding(hasArgSwitch("foldnel"));
  counts_ = hasArgSwitch("count");
  if (hasArgString("out", output_) && output_ == kStandardStream) output_ = nullptr;
}

VelClCCSID Tool::ccsidOf(const char* switchName) const {
  const char* name = "";
  hasArgString(switchName, name);
  VelClCCSID ccsid(VelClCCSID::CCSID_UNKNOWN);
  if (!parseCcsid(name, ccsid)) fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kUnknownCcsid).c_str(), name);
  return ccsid;
}

Conversion::VelEnPolicy Tool::policy() const {
  // In the order of the enumeration.
  constexpr const char* kNames[] = {"stop", "skip", "replace", "escape"};
  const char* name = kNames[0];
  hasArgString("policy", name);
  for (std::size_t i = 0; i < std::size(kNames); ++i)
    if (std::strcmp(name, kNames[i]) == 0) return static_cast<Conversion::VelEnPolicy>(i);
  fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kUnknownPolicy).c_str(), name);
}

int Tool::convertAll() {
  std::vector<const char*> names = freeArguments();
  if (names.empty()) names.push_back(kStandardStream);
  OutputFile output(output_);
  bool isClean = true;
  for (const char* name : names) {
    if (!convert(name, output)) return kExitFailed;
    isClean = isClean && conversion_->getFaultCount() == 0;
  }
  output.finish();
  if (!output.keepsRights()) report(kRightsChanged, output_);
  return isClean ? 0 : kExitChanged;
}

/// Converts one file and reports on it. Returns false if the conversion cannot go on with the next one.
bool Tool::convert(const char* file, OutputFile& output) {
  const bool isInput = file == kStandardStream;
  vel::platform::ReadableFile opened;
  if (!isInput && opened.open(file, vel::platform::PipeWithoutWriter::Wait) != 0)
    return report(kNotOpened, file), false;
  const int descriptor = isInput ? vel::platform::kStandardInput : opened.descriptor();
  // A progress bar would mix with output that is shown on the same terminal.
  const bool isShown = output_ == nullptr && vel::platform::isTerminal(vel::platform::kStandardOutput);
  // The size of a pipe is not known, so no progress bar is shown for it.
  const std::uint64_t expected = isShown ? 0 : vel::platform::bytesLeft(descriptor);
  if (expected > 0) progressStart(expected, file);
  const bool isRead = convertBytes(descriptor, output);
  progressStop();
  if (!isRead) report(kNotRead, file);
  if (conversion_->getFaultCount() != 0) reportFirstFault(file);
  if (counts_) reportCounts(file);
  return isRead && !conversion_->hasStopped();
}

/// Converts the bytes of one file. Returns false if not all of them could be read. Each file begins anew, so
/// a character cannot extend from one file into the next.
bool Tool::convertBytes(int descriptor, OutputFile& output) {
  conversion_->restart();
  std::size_t size = 0;
  bool isRead = true;
  do {
    isRead = vel::platform::readBytes(descriptor, chunk_.data(), chunk_.size(), size) == 0;
    if (!isRead || size == 0) break;
    progressStep(size);
  } while (conversion_->convert(chunk_.data(), size, output));
  conversion_->finish(output);
  return isRead;
}

/// Shows the bytes of an ill-formed sequence, or an unmappable character as "U+20AC", with offset, line and
/// column.
void Tool::reportFirstFault(const char* file) const {
  constexpr TextId kKinds[] = {kTextEnd, kInvalid, kIncomplete, kNotRepresentable};
  const Conversion::VelStFault& fault = conversion_->getFirstFault();
  std::string what;
  for (std::uint32_t i = 0; i < fault.size; ++i) {
    const auto digits = vel::hexPair(fault.bytes[i]);
    what += {digits[0], digits[1], ' '};
  }
  // Characters have four digits at least, and six beyond U+FFFF.
  for (int shift = fault.character > 0xFFFF ? 20 : 12; fault.character != 0 && shift >= 0; shift -= 4)
    what += vel::kUpperHexDigits[fault.character >> shift & 0xF];
  if (fault.character != 0) what = "U+" + what;
  if (what.ends_with(' ')) what.pop_back();
  const VelClMessage place(getMessageCatalog(), kFirstFault, std::to_string(fault.offset).c_str(),
                           std::to_string(fault.line).c_str(), std::to_string(fault.column).c_str());
  error(std::cerr, text(kKinds[static_cast<int>(fault.kind)]).c_str(), file, place.getAsCString(),
        what.empty() ? nullptr : what.c_str());
}

void Tool::reportCounts(const char* file) const {
  const auto count = [this](Fault kind) { return std::to_string(conversion_->getFaultCount(kind)); };
  const VelClMessage counts(getMessageCatalog(), kCounts, std::to_string(conversion_->getOffset()).c_str(),
                            count(Fault::INVALID_SEQUENCE).c_str(), count(Fault::INCOMPLETE).c_str(),
                            count(Fault::NOT_REPRESENTABLE).c_str());
  std::cerr << file << ": " << counts << '\n';
}

}  // namespace

const char* const vel::tools::kToolName = "velconv";

int vel::tools::toolMain(int argc, char** argv) {
  // An interrupted conversion must not leave the unfinished file.
  vel::platform::removeUnfinishedOnSignals();
  velFileSetBinaryMode(vel::platform::kStandardInput, true);
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  if (vel::tools::answerStandardSwitches(argc, argv,
                                         {kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]}))
    return std::cout.good() ? 0 : kExitFailed;
  const std::vector<const char*> arguments = vel::tools::withStandardStream(argc, argv);
  Tool tool(argc, arguments.data());
  try {
    return tool.run();
  } catch (const OutputFailure&) {
    return tool.fail(kNotWritten);
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
}
