// veltrace: shows traces. The library's reader finds the records; this file reads the command line and passes
// the records that the filter selects to a writer.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/byte_files.h"
#include "tools/catalog_tool.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/translation.h"
#include "tools/veltrace/chrome_writer.h"
#include "tools/veltrace/merged_traces.h"
#include "tools/veltrace/record_filter.h"
#include "tools/veltrace/statistics.h"
#include "tools/veltrace/text_writer.h"
#include "tools/veltrace/texts.h"
#include "vel_include/vel_filesys.h"

namespace {

using namespace vel::veltrace;

constexpr int kExitNotRead = 1;
constexpr int kExitDamaged = 2;
constexpr int kExitNotWritten = 3;
/// How long to wait at once for more of the traces that are followed.
constexpr std::uint32_t kWaitMs = 500;
constexpr std::uint32_t kLargestContext = 100'000;

vel::platform::SystemError outputError = 0;

/// Writes past std::cout, which would copy everything once more.
bool writeToStandardOutput(const char* bytes, std::size_t size) {
  outputError = vel::platform::writeBytes(vel::platform::kStandardOutput, bytes, size);
  return outputError == 0;
}

/// Control characters in texts must not reach a terminal, see safe_terminal.h.
bool writeToTerminal(const char* bytes, std::size_t size) {
  return static_cast<bool>(std::cout.write(bytes, static_cast<std::streamsize>(size)).flush());
}

/// The records before a hit, for -context. Their memory is reused.
class History {
 public:
  void resize(std::size_t count) { copies_.resize(count); }
  void add(const Event& event) {
    if (copies_.empty()) return;
    copies_[(first_ + size_) % copies_.size()].take(event);
    if (size_ < copies_.size())
      ++size_;
    else
      first_ = (first_ + 1) % copies_.size();
  }
  /// Writes and forgets all.
  void writeTo(EventWriter& writer) {
    for (std::size_t i = 0; i < size_; ++i) writer.write(copies_[(first_ + i) % copies_.size()].event);
    size_ = 0;
  }

 private:
  struct Copy {
    void take(const Event& original) {
      event = original;
      record = *original.record;
      texts.assign(original.function).append(1, '\0').append(original.message).append(1, '\0');
      texts.append(original.data());
      const std::string_view all = texts;
      event.function = all.substr(0, original.function.size());
      event.message = all.substr(original.function.size() + 1, original.message.size());
      record.data = reinterpret_cast<const unsigned char*>(texts.data()) + original.function.size() +
                    original.message.size() + 2;
      event.record = &record;
    }
    Event event;
    VelStTraceRecord record{};
    std::string texts;
  };
  std::vector<Copy> copies_;
  std::size_t first_ = 0, size_ = 0;
};

class Tool : public vel::tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd) {}

  /// Returns the exit code.
  int run();

 private:
  const char* valueOf(const char* switchName) const;
  [[noreturn]] void refuseValue(TextId text, const char* value, std::size_t position = 0) const;
  std::uint32_t numberOf(const char* switchName, std::uint32_t otherwise, std::uint32_t largest) const;
  void readList(const char* switchName, NumberList& list, std::uint32_t largest) const;
  void readPattern(const char* switchName, TextPattern& pattern) const;
  void readTime(const char* switchName, std::uint32_t& time) const;
  void readFilter();
  void readForm();
  bool openTraces();
  void writeStatistics();
  void showAll();
  void follow();
  void handle(Trace& trace);
  void show(const Event& event, bool isHit);
  void reportSkipped(const Trace& trace, std::uint64_t size, std::uint64_t offset) const;
  void reportRestarts();
  void reportEnds();
  void fail(int exitCode) {
    if (exitCode_ == 0) exitCode_ = exitCode;
  }

  vel::tools::OutputBuffer output_{writeToStandardOutput};
  vel::tools::OutputBuffer terminal_{writeToTerminal};
  std::unique_ptr<EventWriter> writer_;
  std::unique_ptr<VelClConsoleUI> styles_;
  MergedTraces traces_;
  RecordFilter filter_;
  Statistics statistics_;
  History history_;
  std::uint32_t context_ = 0;
  std::uint32_t after_ = 0;  ///< records to show after the last hit
  bool isInGroup_ = false, hasGroup_ = false;
  bool isFollowing_ = false;
  bool countsOnly_ = false;
  std::uint32_t timeoutSeconds_ = 0;
  int exitCode_ = 0;
};

const char* Tool::valueOf(const char* switchName) const {
  const char* value = nullptr;
  hasArgString(switchName, value);
  return value;
}

/// Ends the process. The position is where the value is invalid, from 1.
void Tool::refuseValue(TextId id, const char* value, std::size_t position) const {
  if (position == 0) fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, text(id).c_str(), value);
  fatal(CONUI_ARG_VALUE_TYPE_MISMATCH, (text(id) + ' ' + std::to_string(position)).c_str(), value);
}

std::uint32_t Tool::numberOf(const char* switchName, std::uint32_t otherwise, std::uint32_t largest) const {
  const char* const value = valueOf(switchName);
  if (value == nullptr) return otherwise;
  std::uint32_t number = 0;
  const std::size_t position = parseNumber(value, largest, number);
  if (position != 0) refuseValue(kCountExpected, value, position);
  return number;
}

void Tool::readList(const char* switchName, NumberList& list, std::uint32_t largest) const {
  const char* const value = valueOf(switchName);
  std::size_t position = 0;
  if (value != nullptr && !list.parse(value, largest, position))
    refuseValue(kNumbersExpected, value, position);
}

void Tool::readPattern(const char* switchName, TextPattern& pattern) const {
  const char* const value = valueOf(switchName);
  std::size_t position = 0;
  if (value != nullptr && !pattern.parse(value, position)) refuseValue(kInvalidPattern, value, position);
}

void Tool::readTime(const char* switchName, std::uint32_t& time) const {
  const char* const value = valueOf(switchName);
  std::size_t position = 0;
  if (value != nullptr && !parseTime(value, time, position)) refuseValue(kTimeExpected, value, position);
}

void Tool::readFilter() {
  readList("process", filter_.processes, UINT32_MAX);
  readList("thread", filter_.threads, UINT32_MAX);
  readList("component", filter_.components, 255);
  readPattern("function", filter_.function);
  readPattern("message", filter_.message);
  readTime("from", filter_.fromMs);
  readTime("to", filter_.toMs);
  filter_.onlyLonger = valueOf("longer") != nullptr;
  filter_.longerMs = numberOf("longer", 0, UINT32_MAX);
  if (const char* const detail = valueOf("detail")) {
    int level = 0;
    while (level < 4 && std::strcmp(detail, detailName(static_cast<VelEnTraceDetail>(level))) != 0) ++level;
    if (level == 4) refuseValue(kDetailExpected, detail);
    filter_.detail = static_cast<VelEnTraceDetail>(level);
  }
  std::size_t position = 0;
  const char* const bytes = valueOf("data");
  if (bytes != nullptr && !parseBytes(bytes, filter_.data, position))
    refuseValue(kInvalidBytes, bytes, position);
}

/// Sets the form of the output. Where there are colours, and which, is decided by the library's conventions.
void Tool::readForm() {
  const char* const mode = valueOf("color") != nullptr ? valueOf("color") : "auto";
  if (std::strcmp(mode, "auto") != 0 && std::strcmp(mode, "always") != 0 && std::strcmp(mode, "never") != 0)
    refuseValue(kColorExpected, mode);
  const char* const arguments[] = {vel::tools::kToolName, "-color", mode};
  styles_ = std::make_unique<VelClConsoleUI>(static_cast<int>(std::size(arguments)), arguments);
  styles_->useConventions();
  const std::string form = valueOf("format") != nullptr ? valueOf("format") : "text";
  const bool isTerminal = vel::platform::isTerminal(vel::platform::kStandardOutput);
  vel::tools::OutputBuffer& output = isTerminal ? terminal_ : output_;
  if (form == "text")
    writer_ = std::make_unique<TextWriter>(output_, *styles_, !hasArgSwitch("nodump"));
  else if (form == "json")
    writer_ = makeJsonWriter(output);
  else if (form == "csv")
    writer_ = makeCsvWriter(output);
  else if (form == "chrome")
    writer_ = makeChromeWriter(output);
  else
    refuseValue(kFormatExpected, form.c_str());
}

/// Lack of memory ends a tool in the same way wherever it occurs.
void throwIfOutOfMemory(const VelClStatus& status) {
  if (status.getClass() == VelEnErrorClass::OUT_OF_MEMORY) throw std::bad_alloc();
}

bool Tool::openTraces() {
  std::vector<const char*> files = freeArguments();
  refuseRepeatedInput(files);
  if (files.empty()) files.push_back("-");
  std::uint32_t reading = hasArgSwitch("recover") ? TRACE_READ_RECOVER : TRACE_READ_PLAIN;
  if (isFollowing_) reading |= TRACE_READ_FOLLOW;
  for (const char* file : files) {
    const bool isInput = std::strcmp(file, "-") == 0;
    if (isInput && isFollowing_) refuse(kFollowFile);
    const VelClStatus status =
        traces_.open(isInput ? nullptr : file, isInput ? vel::tools::kStandardStream : file, reading);
    if (status.isOk()) {
      // Others are passed over by the reader, unless they may be context. Recovery reports what it skips with
      // the record after it.
      const VelStTraceSelection selection = filter_.selection();
      if (context_ == 0 && (reading & TRACE_READ_RECOVER) == 0)
        traces_.all().back().reader.select(&selection);
      continue;
    }
    throwIfOutOfMemory(status);
    report(kNotOpened, file);
    fail(kExitNotRead);
  }
  return !traces_.all().empty();
}

int Tool::run() {
  begin();
  countsOnly_ = hasArgSwitch("stats");
  isFollowing_ = hasArgSwitch("follow");
  if (countsOnly_ && (isFollowing_ || valueOf("format") != nullptr || valueOf("context") != nullptr))
    refuse(kStatsAlone);
  if (!isFollowing_ && valueOf("timeout") != nullptr) refuse(kFollowFile);
  timeoutSeconds_ = numberOf("timeout", 0, UINT32_MAX / 1000);
  context_ = numberOf("context", 0, kLargestContext);
  history_.resize(context_);
  readFilter();
  readForm();
  if (!openTraces()) return exitCode_;
  if (!countsOnly_) writer_->begin();
  showAll();
  if (isFollowing_) follow();
  if (countsOnly_)
    writeStatistics();
  else
    writer_->end();
  output_.flush();
  terminal_.flush();
  reportEnds();
  return exitCode_;
}

void Tool::writeStatistics() {
  for (const Trace& trace : traces_.all()) {
    std::uint64_t places = 0;
    const std::uint64_t bytes = trace.reader.getSkippedBytes(&places);
    statistics_.addSkipped(bytes, places);
  }
  statistics_.write(output_);
}

void Tool::showAll() {
  while (Trace* const trace = traces_.next()) handle(*trace);
}

void Tool::follow() {
  std::uint64_t idleMs = 0;
  while (timeoutSeconds_ == 0 || idleMs < timeoutSeconds_ * std::uint64_t{1000}) {
    output_.flush();
    terminal_.flush();
    if (traces_.wait(kWaitMs)) {
      idleMs = 0;
      reportRestarts();
      showAll();
    } else {
      idleMs += kWaitMs;
    }
  }
}

void Tool::reportRestarts() {
  for (Trace& trace : traces_.all()) {
    if (trace.reader.getRestarts() == trace.reportedRestarts) continue;
    trace.reportedRestarts = trace.reader.getRestarts();
    report(kRestarted, trace.name.c_str());
  }
}

void Tool::handle(Trace& trace) {
  const VelStTraceRecord& record = *trace.record;
  if (record.skipped != 0) reportSkipped(trace, record.skipped, record.offset - record.skipped);
  const CallLevels::State state = trace.levels.next(record);
  const bool isCandidate = filter_.matches(record);
  if (!isCandidate && context_ == 0) return;
  Event event{.record = &record,
              .file = trace.name,
              .function = {},
              .message = {},
              .level = state.level,
              .durationMs = state.durationMs,
              .hasDuration = state.hasDuration};
  event.function = trace.reader.getFunction();
  event.message = trace.reader.getMessage();
  show(event, isCandidate && filter_.matches(event));
}

void Tool::show(const Event& event, bool isHit) {
  if (countsOnly_) {
    if (isHit) statistics_.add(event);
    return;
  }
  if (!isHit && after_ == 0) {
    history_.add(event);
    isInGroup_ = false;
    return;
  }
  if (context_ != 0 && !isInGroup_ && hasGroup_ && isHit) writer_->separate();
  if (isHit) history_.writeTo(*writer_);
  writer_->write(event);
  after_ = isHit ? context_ : after_ - 1;
  isInGroup_ = hasGroup_ = true;
}

void Tool::reportSkipped(const Trace& trace, std::uint64_t size, std::uint64_t offset) const {
  const std::string place = std::to_string(size) + " @ " + std::to_string(offset);
  error(std::cerr, text(kSkipped).c_str(), trace.name.c_str(), place.c_str());
}

void Tool::reportEnds() {
  for (Trace& trace : traces_.all()) {
    std::uint64_t skipped = 0;
    const std::uint64_t end = trace.reader.getOffset(&skipped);
    if (skipped != 0) reportSkipped(trace, skipped, end - skipped);
    const VelClStatus& status = trace.reader.getStatus();
    if (status.isOk()) continue;
    throwIfOutOfMemory(status);
    const bool isUnreadable = status.getErrorId() == FILE_COULD_NOT_READ;
    const TextId id = isUnreadable                                        ? kNotRead
                      : status.getErrorId() == TRACEFORMAT_UNEXPECTED_EOF ? kIncomplete
                                                                          : kDamaged;
    const std::string place = std::to_string(status.getPosition() - 1);
    error(std::cerr, text(id).c_str(), trace.name.c_str(), isUnreadable ? nullptr : place.c_str());
    fail(isUnreadable ? kExitNotRead : kExitDamaged);
  }
}

/// Whoever reads the output has seen enough.
bool isBrokenPipe() {
  return outputError == EPIPE || outputError == EINVAL;
}

}  // namespace

const char* const vel::tools::kToolName = "veltrace";

int vel::tools::toolMain(int argc, char** argv) {
  velFileSetBinaryMode(vel::platform::kStandardInput, true);
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  if (vel::tools::answerStandardSwitches(argc, argv,
                                         {kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]}))
    return std::cout.good() ? 0 : kExitNotWritten;
  Tool tool(argc, argv);
  try {
    return tool.run();
  } catch (const OutputFailure&) {
    if (isBrokenPipe()) return 0;
    tool.report(kNotWritten);
    return kExitNotWritten;
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
}
