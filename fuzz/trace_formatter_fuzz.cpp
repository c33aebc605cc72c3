// Formats any bytes as a trace file, with any format string. The input is a byte of options, the
// NUL-terminated format string, and the file.
#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_trace.h"

namespace fuzz::trace_formatter {

namespace {

void choose(VelClTraceFormatter& formatter, unsigned int options) {
  formatter.setDisplayIndentation((options & 1) != 0 ? ". " : nullptr);
  formatter.setShowNestingLevel((options & 2) != 0);
  formatter.setShowFunctionRecords((options & 4) == 0);
  formatter.setShowRepeatedFunctionNames((options & 8) == 0);
  formatter.setShowHex((options & 16) != 0);
  formatter.setShowBinary((options & 32) != 0);
}

void formatOrFail(VelClTraceFormatter& formatter, std::size_t inputSize) {
  std::ostringstream stream;
  try {
    formatter.format(stream);
  } catch (const VelClException& exception) {
    require(exception.getId() == TRACEFORMAT_UNEXPECTED_EOF ||
            exception.getId() == TRACEFORMAT_FILE_CORRUPTED);
  }
  // An entry has 20 bytes at least, and a byte of the format costs a line's indentation at most.
  require(formatter.getNumOfEntries() <= inputSize / 20);
  require(stream.str().size() <= (inputSize + 1) * (inputSize + 1) * 4096);
}

void run(Bytes input) {
  static InputFile file("TRC");
  static VelClTraceEnvironment environment("fuzz", nullptr, true);
  const std::size_t inputSize = input.rest().size();
  const unsigned int options = input.byte();
  const Text format = input.text();
  file.rewrite(input.rest());
  environment.setFilename(file.name());
  environment.getSettings().setDetailLevel((options & 64) != 0 ? "LOW" : "HIGH");
  VelClTraceFormatter formatter(environment, nullptr);
  formatter.setFormatString(format);
  choose(formatter, options);
  formatOrFail(formatter, inputSize);
}

const Target target("trace_formatter", run);

}  // namespace

}  // namespace fuzz::trace_formatter
