// Dumps: any bytes become a dump and bytes again, and any text is read as one. The input is a byte of options
// and the bytes.
#include <cstring>
#include <sstream>
#include <string>

#include "fuzz/bytes.h"
#include "tools/veldump/dump_parser.h"
#include "tools/veldump/dump_writer.h"
#include "vel_include/vel_util.h"

namespace {

using fuzz::require;
using vel::veldump::DumpParser;
using vel::veldump::OutputBuffer;

/// What is in the buffer, as long as it is not full. There is one: it is large.
class Output : public OutputBuffer {
 public:
  static Output& cleared() {
    static Output output;
    output.commit(output.begin_);
    return output;
  }
  std::string text() { return std::string(begin_, static_cast<const char*>(reserve(0))); }

 private:
  const char* begin_ = reserve(0);
};

/// Whether all of the lines are a dump.
bool parse(std::string_view text, OutputBuffer& output) {
  DumpParser parser(output);
  bool isDump = true;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    isDump = parser.takeLine(text.substr(begin, end - begin)) && isDump;
    begin = end + 1;
  }
  return isDump && parser.canEnd();
}

template <typename Form>
std::string dumped(const std::vector<std::uint8_t>& bytes, std::uint64_t offset, bool squeeze) {
  Output& output = Output::cleared();
  vel::veldump::DumpWriter<Form> writer(output, offset, squeeze);
  const std::size_t whole = writer.write(bytes.data(), bytes.size());
  writer.finish(bytes.data() + whole, bytes.size() - whole);
  return output.text();
}

template <typename Form>
void requireRoundTrip(const std::vector<std::uint8_t>& bytes, std::uint64_t offset,
                      void (*toStream)(std::ostream&, const char*, std::size_t)) {
  const char* const data = reinterpret_cast<const char*>(bytes.data());
  for (const bool squeeze : {false, true}) {
    const std::string dump = dumped<Form>(bytes, offset, squeeze);
    Output& output = Output::cleared();
    require(parse(dump, output));
    require(output.text() == std::string(data, bytes.size()));
  }
  std::ostringstream stream;
  toStream(stream, data, bytes.size());
  require(stream.str() == dumped<Form>(bytes, 0, false));
}

/// A "*" before a far address stands for more bytes than a run should write.
bool hasFarAddress(std::string_view text) {
  for (std::size_t i = text.find(": "); i != std::string_view::npos; i = text.find(": ", i + 1)) {
    const std::size_t begin = text.find_last_of('\n', i) + 1;
    if (i - begin > 4 && text.substr(begin, i - begin - 4).find_first_not_of('0') != std::string_view::npos)
      return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes input(data, size);
  const std::uint64_t option = input.number();
  const std::vector<std::uint8_t> bytes(input.rest().begin(), input.rest().end());
  if (bytes.size() > 2000) return 0;
  requireRoundTrip<vel::util::HexForm>(bytes, option << (option % 8 * 7), velDumpHex);
  requireRoundTrip<vel::util::BinaryForm>(bytes, option << (option % 8 * 7), velDumpBin);
  const std::string text(bytes.begin(), bytes.end());
  if (!hasFarAddress(text)) parse(text, Output::cleared());
  return 0;
}
