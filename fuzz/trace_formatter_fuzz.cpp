// Formats any bytes as a trace file, by any format string. The input is a byte of options, the format string
// with its terminator, and the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <streambuf>
#include <string>

#include "vel_include/vel_error.h"
#include "vel_include/vel_filesys.h"
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

/// The file that all inputs are written to.
class InputFile {
 public:
  InputFile() { static_cast<void>(velTmpFileCreate(nullptr, "FUZZ", name_)); }
  ~InputFile() { VelClFile(name_, nullptr).remove(); }

  const char* name() const { return name_; }
  void write(const std::string& bytes) const {
    std::ofstream(name_, std::ios::binary | std::ios::trunc) << bytes;
  }

 private:
  char name_[VEL_MAX_PATH_LENGTH + 1] = {};
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
    if (exception.getId() != TRACEFORMAT_UNEXPECTED_EOF && exception.getId() != TRACEFORMAT_FILE_CORRUPTED)
      std::abort();
  }
  // An entry has 20 bytes at least, and a byte of the format costs a line's indentation at most.
  if (formatter.getNumOfEntries() > inputSize / 20 || sink.count > (inputSize + 1) * (inputSize + 1) * 4096)
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile file;
  static VelClTraceEnvironment environment("fuzz", nullptr, true);
  if (size == 0) return 0;
  const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t end = std::min(input.find('\0'), input.size());
  const std::string format = input.substr(0, end);
  file.write(end < input.size() ? input.substr(end + 1) : "");
  environment.setFilename(file.name());
  environment.getSettings().setDetailLevel((data[0] & 64) != 0 ? "LOW" : "HIGH");
  VelClTraceFormatter formatter(environment, nullptr);
  formatter.setFormatString(format.c_str());
  choose(formatter, data[0]);
  formatOrFail(formatter, size);
  return 0;
}
