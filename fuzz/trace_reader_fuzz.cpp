// Reads any bytes as a trace, plainly and with recovery, from memory and in pieces that a followed file grows
// by. The first byte says how many records, which are valid, are put before and after the other bytes.
#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_trace_reader.h"

namespace fuzz::trace_reader {

namespace {

struct Found {
  std::vector<std::uint64_t> offsets;
  std::uint64_t end = 0;
};

/// Reads what is there, and checks each record: it lies within the input, after the one before it.
void readAll(VelClTraceReader& reader, std::uint64_t size, Found& found) {
  while (reader.next()) {
    const VelStTraceRecord& record = *reader.getRecord();
    const std::string_view function = reader.getFunction(), message = reader.getMessage();
    char value[64];
    require({record.offset == found.end + record.skipped, record.offset + record.size <= size,
             record.size >= 20 + std::uint64_t{record.dataSize}, function.size() <= 340,
             message.size() <= 340, function.data()[function.size()] == '\0',
             message.data()[message.size()] == '\0'});
    velTraceRecordGetValueText(&record, value, sizeof value);
    require(*velTraceGetTypeName(record.type) != '\0');
    // Reads all of the data, so that sanitizers see whether it is there.
    require(std::count(record.data, record.data + record.dataSize, 0) <= std::ptrdiff_t{record.dataSize});
    found.offsets.push_back(record.offset);
    found.end = record.offset + record.size;
  }
}

Found readMemory(const std::vector<char>& bytes, std::uint32_t reading) {
  VelClTraceReader reader;
  if (!reader.openBytes(bytes.data(), bytes.size(), reading).isOk()) return {};
  Found found;
  readAll(reader, bytes.size(), found);
  const unsigned long id = reader.getStatus().getErrorId();
  const bool recovers = (reading & TRACE_READ_RECOVER) != 0;
  require(recovers || id == 0 || id == TRACEFORMAT_FILE_CORRUPTED || id == TRACEFORMAT_UNEXPECTED_EOF);
  // The bytes of a ring are fewer than those of the input.
  const bool isRing = std::string_view(bytes.data(), bytes.size()).starts_with("VELT");
  require(!recovers || (id == 0 && (isRing || reader.getOffset() == bytes.size())));
  return found;
}

/// Returns records of one thread, as a program without compression writes them.
std::string validRecords(unsigned int count) {
  std::string bytes;
  for (unsigned int i = 0; i < count; ++i) {
    const unsigned char head[] = {
        0x44, 7, 1, 1, static_cast<unsigned char>(i), 1, 0, 0, 9, 1, 0, 0, 9, 2, 0, 0, 3, 0, 0, 0};
    bytes.append(reinterpret_cast<const char*>(head), sizeof head);
    bytes += "mfabc";
  }
  return bytes;
}

void run(Bytes input) {
  const unsigned int count = input.byte() % 16;
  const std::string around = validRecords(count);
  std::string all = around;
  all.append(input.rest()).append(around);
  const std::vector<char> bytes(all.begin(), all.end());
  const Found plain = readMemory(bytes, TRACE_READ_PLAIN);
  readMemory(bytes, TRACE_READ_RECOVER);
  require(plain.offsets.size() >= count);
  // Undamaged traces are read alike.
  if (plain.end == bytes.size() && input.rest().empty())
    require(readMemory(bytes, TRACE_READ_RECOVER).offsets == plain.offsets);

  static InputFile file("TRC");
  file.write("");
  VelClTraceReader follower;
  Found followed;
  require(follower.open(file.name(), TRACE_READ_FOLLOW).isOk());
  const std::string_view view = all;
  for (const std::size_t end : {all.size() / 3, all.size() / 3 * 2 + 1, all.size()}) {
    file.write(view.substr(0, std::min(end, all.size())));
    follower.wait(0);
    readAll(follower, all.size(), followed);
  }
}

const Target target("trace_reader", run);

}  // namespace

}  // namespace fuzz::trace_reader
