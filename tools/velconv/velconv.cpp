// velconv: converts text between code pages.
//
// Files are converted in chunks, one after the other and into one output. An output file replaces the old one
// only after the last of them, so a conversion that stops leaves the old file in place. Conversion, and what
// becomes of characters that cannot be converted, is the work of the library's strict conversion; the tool
// reports.
#include <charconv>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/digits.h"
#include "platform/byte_files.h"
#include "platform/replacing.h"
#include "tools/catalog_tool.h"
#include "tools/ccsids.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velconv/ccsid_list.h"
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
class Tool : public vel::tools::CatalogTool, private VelClConversionFaultHandler {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd), chunk_(kChunkSize) {}

  /// Returns the exit code.
  int run();
  /// Reports an error and returns the exit code for it.
  int fail(TextId id) const;

 private:
  int list(void (*write)(std::ostream& out)) const;
  void warnWithoutIcu() const;
  void readSwitches();
  VelClCCSID ccsidOf(const char* switchName) const;
  Conversion::VelEnPolicy policy() const;
  std::uint64_t faultLimit() const;
  int convertAll();
  bool convert(const char* file, OutputFile& output);
  bool convertBytes(int descriptor, OutputFile& output);
  Conversion::VelEnPolicy handle(const Conversion::VelStFault& fault) override;
  void reportFault(const Conversion::VelStFault& fault) const;
  void reportFaults() const;
  void reportCounts(const char* file) const;

  std::vector<char> chunk_;
  std::optional<Conversion> conversion_;
  const char* output_ = nullptr;
  std::optional<std::uint64_t> faultLimit_;  ///< of each file; without it, only the first fault is reported
  Conversion::VelEnPolicy policy_ = Conversion::VelEnPolicy::STOP;
  bool counts_ = false;
  const char* file_ = nullptr;  ///< the one that is being converted
};

int Tool::fail(TextId id) const {
  report(id);
  return kExitFailed;
}

int Tool::run() {
  begin();
  if (hasArgSwitch("list")) return list(&listCcsids);
  if (hasArgSwitch("names")) return list(&listNames);
  if (hasArgSwitch("kernels")) return list(&showKernels);
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

int Tool::list(void (*write)(std::ostream& out)) const {
  int switches = 0;
  for (const char* each :
       {"from", "to", "out", "policy", "faults", "count", "foldnel", "list", "names", "kernels"})
    switches += hasArgSwitch(each) ? 1 : 0;
  if (switches > 1 || !freeArguments().empty()) refuse(kListAlone);
  write(std::cout);
  std::cout.flush();
  if (write != &showKernels) warnWithoutIcu();
  return std::cout.good() ? 0 : fail(kNotWritten);
}

void Tool::readSwitches() {
  if (!hasArgSwitch("from") || !hasArgSwitch("to")) refuse(kBothNeeded);
  refuseRepeatedInput(freeArguments());
  policy_ = policy();
  if (hasArgSwitch("faults")) faultLimit_ = faultLimit();
  conversion_.emplace(ccsidOf("from"), ccsidOf("to"), policy_);
  conversion_->setNextLineFolding(hasArgSwitch("foldnel"));
  counts_ = hasArgSwitch("count");
  if (hasArgString("out", output_) && std::strcmp(output_, "-") == 0) output_ = nullptr;
}

VelClCCSID Tool::ccsidOf(const char* switchName) const {
  const char* name = "";
  hasArgString(switchName, name);
  VelClCCSID ccsid(VelClCCSID::CCSID_UNKNOWN);
  if (!vel::tools::parseCcsid(name, ccsid))
    fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kUnknownCcsid).c_str(), name);
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

std::uint64_t Tool::faultLimit() const {
  const char* number = "";
  hasArgString("faults", number);
  std::uint64_t limit = 0;
  const char* const end = number + std::strlen(number);
  const auto [stop, error] = std::from_chars(number, end, limit);
  if (error == std::errc() && stop == end) return limit;
  fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(kNumberExpected).c_str(), number);
}

int Tool::convertAll() {
  std::vector<const char*> names = freeArguments();
  if (names.empty()) names.push_back(kStandardStream);
  OutputFile output(output_);
  bool isClean = true;
  for (const char* name : names) {
    if (!convert(vel::tools::fileNamed(name), output)) return kExitFailed;
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
  file_ = file;
  const bool isRead = convertBytes(descriptor, output);
  progressStop();
  if (!isRead) report(kNotRead, file);
  reportFaults();
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
  } while (faultLimit_ ? conversion_->convert(chunk_.data(), size, output, *this)
                       : conversion_->convert(chunk_.data(), size, output));
  faultLimit_ ? conversion_->finish(output, *this) : conversion_->finish(output);
  return isRead;
}

/// Reports faults while a file is converted, since there may be too many to keep them.
Conversion::VelEnPolicy Tool::handle(const Conversion::VelStFault& fault) {
  if (conversion_->getFaultCount() <= *faultLimit_) {
    progressStop();
    reportFault(fault);
  }
  return policy_;
}

/// Reports what is left after the conversion: the first fault, or the number of faults beyond the limit.
void Tool::reportFaults() const {
  const std::uint64_t count = conversion_->getFaultCount();
  if (!faultLimit_ && count != 0) reportFault(conversion_->getFirstFault());
  if (faultLimit_ && count > *faultLimit_)
    error(std::cerr, text(kMoreFaults).c_str(), file_, std::to_string(count - *faultLimit_).c_str());
}

/// Shows the bytes of an ill-formed sequence, or an unmappable character as "U+20AC", with offset, line and
/// column.
void Tool::reportFault(const Conversion::VelStFault& fault) const {
  constexpr TextId kKinds[] = {kTextEnd, kInvalid, kIncomplete, kNotRepresentable};
  std::string what;
  for (std::uint32_t i = 0; i < fault.size; ++i) {
    const auto digits = vel::hexPair(fault.bytes[i]);
    what += {digits[0], digits[1], ' '};
  }
  // Characters have four digits at least.
  const int digits = fault.character > 0xFFFFF ? 6 : fault.character > 0xFFFF ? 5 : 4;
  for (int shift = 4 * (digits - 1); fault.character != 0 && shift >= 0; shift -= 4)
    what += vel::kUpperHexDigits[fault.character >> shift & 0xF];
  if (fault.character != 0) what = "U+" + what;
  if (what.ends_with(' ')) what.pop_back();
  const VelClMessage place(getMessageCatalog(), kFaultPlace, std::to_string(fault.offset).c_str(),
                           std::to_string(fault.line).c_str(), std::to_string(fault.column).c_str());
  error(std::cerr, text(kKinds[static_cast<int>(fault.kind)]).c_str(), file_, place.getAsCString(),
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
  Tool tool(argc, argv);
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
