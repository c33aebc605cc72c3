// Dumps: any bytes round-trip through a dump, and any text can be parsed as one. The input is a byte of
// options and the bytes.
#include "fuzz/bytes.h"
#include "tools/veldump/dump_parser.h"
#include "tools/veldump/dump_writer.h"
#include "vel_include/vel_util.h"

namespace fuzz::dump {

namespace {

using vel::tools::OutputBuffer;
using vel::veldump::DumpParser;

constexpr std::uint64_t kMaxRepeated = 100'000;
constexpr std::size_t kManyBytes = 24'000;

/// The bytes that the buffer has written.
std::string written;

bool keep(const char* bytes, std::size_t size) {
  written.append(bytes, size);
  return true;
}

/// Returns the bytes that `write(output)` writes. There is only one buffer, because it is large.
template <typename Write>
std::string collect(Write write) {
  static OutputBuffer output(keep);
  written.clear();
  write(output);
  output.flush();
  return written;
}

/// Parses a dump. Returns false if it is malformed or its "*" repeat more than `repeatable` bytes.
bool parse(std::string_view text, OutputBuffer& output, std::uint64_t repeatable) {
  const std::uint64_t limit = repeatable;
  DumpParser parser(output, repeatable);
  bool isDump = true;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    isDump = parser.parseLine(text.substr(begin, end - begin)) && isDump;
    begin = end + 1;
  }
  require({repeatable <= limit, written.size() <= text.size() + limit});
  return isDump && parser.canEnd();
}

template <typename Form>
std::string dumped(const std::vector<std::uint8_t>& bytes, std::uint64_t offset, bool squeeze) {
  return collect([&](OutputBuffer& output) {
    static const vel::veldump::LinePainter plain;
    vel::veldump::DumpWriter<Form> writer(output, plain, offset, squeeze);
    const std::size_t whole = writer.write(bytes.data(), bytes.size());
    writer.finish(bytes.data() + whole, bytes.size() - whole);
  });
}

template <typename Form>
void requireRoundTrip(const std::vector<std::uint8_t>& bytes, std::uint64_t offset,
                      void (*toStream)(std::ostream&, const char*, std::size_t)) {
  const char* const data = reinterpret_cast<const char*>(bytes.data());
  for (const bool squeeze : {false, true}) {
    const std::string dump = dumped<Form>(bytes, offset, squeeze);
    const std::string parsed = collect([&](auto& output) { require(parse(dump, output, bytes.size())); });
    require(parsed == std::string(data, bytes.size()));
  }
  std::ostringstream stream;
  toStream(stream, data, bytes.size());
  require(stream.str() == dumped<Form>(bytes, 0, false));
}

/// Repeats the bytes until their dump is larger than the buffer.
std::vector<std::uint8_t> repeated(const std::vector<std::uint8_t>& bytes) {
  std::vector<std::uint8_t> many;
  while (!bytes.empty() && many.size() < kManyBytes) many.insert(many.end(), bytes.begin(), bytes.end());
  return many;
}

void run(Bytes input) {
  const std::uint64_t option = input.byte();
  std::vector<std::uint8_t> bytes(input.rest().begin(), input.rest().end());
  const std::string text(bytes.begin(), bytes.end());
  collect([&](auto& output) { parse(text, output, kMaxRepeated); });
  // One option makes dumps larger than the buffer.
  if (option == 0x5A)
    bytes = repeated(bytes);
  else
    requireRoundTrip<vel::util::HexForm>(bytes, option << (option % 8 * 7), velDumpHex);
  requireRoundTrip<vel::util::BinaryForm>(bytes, option << (option % 8 * 7), velDumpBin);
}

const Target target("dump", run);

}  // namespace

}  // namespace fuzz::dump
