// Formats any bytes as a trace file, by any format string. The input is a byte of options, the format string
// with its terminator, and the file.
#include <ostream>
#include <streambuf>

#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_trace.h"

namespace {

/// Reads what is written, so that the sanitizers see it, and counts it.
class Sink : public std::streambuf {
 public:
  std::size_t count = 0;
  unsigned int sum = 0;

 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    for (std::streamsize i = 0; i < size; ++i) sum += static_cast<unsigned char>(text[i]);
    count += static_cast<std::size_t>(size);
    return size;
  }
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

void choose(VelClTraceFormatter& formatter, unsigned int options) {
  formatter.setDisplayIndentation((options & 1) != 0 ? ". " : nullptr);
  formatter.setShowNestingLevel((options & 2) != 0);
  formatter.setShowFunctionRecords((options & 4) == 0);
  formatter.setShowRepeatedFunctionNames((options & 8) == 0);
  formatter.setShowHex((options & 16) != 0);
  formatter.setShowBinary((options & 32) != 0);
}

void formatOrFail(VelClTraceFormatter& formatter, std::size_t inputSize) {
  Sink sink;
  std::ostream stream(&sink);
  try {
    formatter.format(stream);
  } catch (const VelClException& exception) {
    fuzz::require(exception.getId() == TRACEFORMAT_UNEXPECTED_EOF ||
                  exception.getId() == TRACEFORMAT_FILE_CORRUPTED);
  }
  // An entry has 20 bytes at least, and a byte of the format costs a line's indentation at most.
  fuzz::require(formatter.getNumOfEntries() <= inputSize / 20);
  fuzz::require(sink.count <= (inputSize + 1) * (inputSize + 1) * 4096);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::InputFile file("TRC");
  static VelClTraceEnvironment environment("fuzz", nullptr, true);
  fuzz::Bytes input(data, size);
  const unsigned int options = input.number();
  const fuzz::Text format = input.text();
  file.rewrite(input.rest());
  environment.setFilename(file.name());
  environment.getSettings().setDetailLevel((options & 64) != 0 ? "LOW" : "HIGH");
  VelClTraceFormatter formatter(environment, nullptr);
  formatter.setFormatString(format);
  choose(formatter, options);
  formatOrFail(formatter, size);
  return 0;
}
