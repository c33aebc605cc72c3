#include "tools/veltrace/text_writer.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iostream>

#include "base/digits.h"
#include "base/short_text.h"
#include "util/dump_line.h"

namespace vel::veltrace {
namespace {

using util::HexForm;

/// Deeper calls are shown as being this deep.
constexpr std::uint32_t kDeepestShown = 64;
/// Room for a line without long data: columns, indentation, colours, two texts and a value.
constexpr std::size_t kLineRoom = 4096;
/// Texts of records have at most 340 characters, each of which may be escaped.
static_assert(kLineRoom > 64 + 2 * kDeepestShown + 64 + 4 * 2 * 340 + 128 + 16);
/// C strings are written in pieces of this size.
constexpr std::size_t kPiece = std::size_t{16} * 1024;

constexpr std::uint64_t repeated(std::uint8_t byte) {
  return 0x0101010101010101ULL * byte;
}

/// Whether eight bytes are printable ASCII.
bool areAllPrintable(std::uint64_t bytes) {
  // The highest bit of a byte is set by the subtraction if it is below 0x20, by the addition if it is 0x7F.
  return (((bytes - repeated(0x20)) | (bytes + repeated(1)) | bytes) & repeated(0x80)) == 0;
}

/// C0 controls, DEL, and the C1 controls in UTF-8, of which `next` is the second byte.
bool isControl(unsigned char byte, unsigned char next) {
  return byte < 0x20 || byte == 0x7F || (byte == 0xC2 && next >= 0x80 && next < 0xA0);
}

char* writeNumber(char* out, std::uint32_t number, std::ptrdiff_t width) {
  char digits[12];
  char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  for (; width > end - digits; --width) *out++ = ' ';
  return std::copy(digits, end, out);
}

char* copy(char* out, std::string_view text) {
  copyShort(out, text.data(), text.size());
  return out + text.size();
}

/// Writes blanks in blocks of 16: up to 15 more than `count`, which the caller overwrites.
char* writeBlanks(char* out, std::size_t count) {
  for (std::size_t done = 0; done < count; done += 16) std::memset(out + done, ' ', 16);
  return out + count;
}

/// With a constant length the loops are unrolled.
[[gnu::flatten]] char* writeFullLine(char* out, std::uint64_t offset, const std::uint8_t* bytes) {
  return util::writeLine<HexForm>(out, offset, bytes, HexForm::kBytes);
}

}  // namespace

char* writeSafely(char* out, std::string_view text) {
  std::size_t at = 0;
  std::uint64_t bytes = 0;
  for (; at + sizeof bytes <= text.size(); at += sizeof bytes, out += sizeof bytes) {
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    if (!areAllPrintable(bytes)) break;
    std::memcpy(out, &bytes, sizeof bytes);
  }
  const std::size_t rest = text.size() - at;
  if (rest < sizeof bytes && at != 0) {
    // The last eight bytes, some of which have been written.
    std::memcpy(&bytes, text.data() + text.size() - sizeof bytes, sizeof bytes);
    if (areAllPrintable(bytes)) {
      std::memcpy(out + rest - sizeof bytes, &bytes, sizeof bytes);
      return out + rest;
    }
  }
  for (; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (isControl(byte, at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0)) {
      const auto digits = hexPair(byte);
      out = copy(out, {"\\x", 2});
      out = copy(out, {digits.data(), digits.size()});
    } else {
      *out++ = text[at];
    }
  }
  return out;
}

TextWriter::TextWriter(tools::OutputBuffer& output, const VelClConsoleUI& styles, bool showsDumps)
    : EventWriter(output),
      function_(styles.style(std::cout, VelEnTextStyle::EMPHASIS)),
      plain_(styles.style(std::cout, VelEnTextStyle::PLAIN)),
      showsDumps_(showsDumps) {
  writeTime(timeText_, 1);
}

void TextWriter::begin() {
  append("       TIME PROCESS  THREAD DET  CMP EVENT\n");
}

/// Seconds with three decimals, always 11 characters.
char* TextWriter::writeTime(char* out, std::uint32_t time) {
  if (time != time_) {
    time_ = time;
    char* const point = writeNumber(timeText_, time / 1000, 7);
    const std::uint32_t milliseconds = time % 1000;
    point[0] = '.';
    point[1] = static_cast<char>('0' + milliseconds / 100);
    point[2] = static_cast<char>('0' + milliseconds / 10 % 10);
    point[3] = static_cast<char>('0' + milliseconds % 10);
  }
  std::memcpy(out, timeText_, 11);
  return out + 11;
}

char* TextWriter::writeColumns(char* out, const VelStTraceRecord& record) {
  const std::uint32_t slot = record.threadId + record.processId + record.componentId * 5 +
                             static_cast<std::uint32_t>(record.detail) * 17;
  Columns& columns = columns_[slot % kColumns];
  if (columns.size == 0 || record.processId != columns.process || record.threadId != columns.thread ||
      record.detail != columns.detail || record.componentId != columns.component)
    makeColumns(columns, record);
  std::memcpy(out, columns.text, sizeof columns.text);
  return out + columns.size;
}

void TextWriter::makeColumns(Columns& columns, const VelStTraceRecord& record) {
  columns.process = record.processId;
  columns.thread = record.threadId;
  columns.detail = record.detail;
  columns.component = record.componentId;
  char* out = columns.text;
  *out++ = ' ';
  out = writeNumber(out, record.processId, 7);
  *out++ = ' ';
  out = writeNumber(out, record.threadId, 7);
  *out++ = ' ';
  const std::string_view detail = detailName(record.detail);
  out = copy(out, detail);
  out = copy(out, std::string_view("     ").substr(detail.size()));
  out = writeNumber(out, record.componentId, 3);
  *out++ = ' ';
  columns.size = static_cast<std::size_t>(out - columns.text);
}

char* TextWriter::writeFunction(char* out, const Event& event) const {
  if (*function_ == '\0') return writeSafely(out, event.function);
  out = writeSafely(copy(out, function_), event.function);
  return copy(out, plain_);
}

void TextWriter::write(const Event& event) {
  const VelStTraceRecord& record = *event.record;
  const std::size_t indentation = 2 * std::size_t{std::min(event.level, kDeepestShown)};
  char* out = output_.reserve(kLineRoom);
  out = writeColumns(writeTime(out, record.timeStamp), record);
  writeBlanks(out, indentation + 2);
  out += indentation;
  if (event.isEntry() || event.isExit()) *out = event.isEntry() ? '>' : '<';
  out = writeFunction(out + 2, event);
  if (!event.message.empty()) {
    *out++ = ':';
    *out++ = ' ';
    out = writeSafely(out, event.message);
  }
  if (event.hasDuration) {
    out = copy(out, " (");
    out = writeNumber(out, event.durationMs, 0);
    out = copy(out, " ms)");
  }
  switch (record.type) {
    case VelEnTraceDataType::FUNCTION_ENTRY:
    case VelEnTraceDataType::FUNCTION_EXIT:
    case VelEnTraceDataType::DATA_NONE:
      break;
    case VelEnTraceDataType::C_STRING:
      output_.commit(out);
      return appendText(event);
    case VelEnTraceDataType::DATA:
    case VelEnTraceDataType::DATA_CLIPPED:
    case VelEnTraceDataType::UTF16_STRING:
      *out++ = ' ';
      *out++ = '[';
      out = writeNumber(out, record.dataSize, 0);
      out = copy(out, record.type == VelEnTraceDataType::DATA_CLIPPED ? ", clipped]\n" : "]\n");
      output_.commit(out);
      if (showsDumps_) appendData(event.data(), indentation + 4);
      return;
    case VelEnTraceDataType::DATA_NULL:
      out = copy(out, " = null");
      break;
    default:
      out = copy(out, " = ");
      out += std::min<std::size_t>(velTraceRecordGetValueText(&record, out, 128), 127);
  }
  *out++ = '\n';
  output_.commit(out);
}

void TextWriter::appendText(const Event& event) {
  append(" = \"");
  for (std::string_view rest = event.data(); !rest.empty();) {
    // A character that is split between two pieces is not taken for a control character.
    const std::string_view piece = rest.substr(0, kPiece);
    output_.commit(writeSafely(output_.reserve(4 * kPiece + 8), piece));
    rest.remove_prefix(piece.size());
  }
  append("\"\n");
}

void TextWriter::appendData(std::string_view data, std::size_t indentation) {
  constexpr std::size_t kLine = util::LineLayout<HexForm>::kMaxLength + 1;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(data.data());
  for (std::size_t offset = 0; offset < data.size(); offset += HexForm::kBytes) {
    char* out = output_.reserve(2 * kDeepestShown + 4 + 16 + kLine);
    out = writeBlanks(out, indentation);
    const std::size_t count = std::min(data.size() - offset, HexForm::kBytes);
    output_.commit(count == HexForm::kBytes ? writeFullLine(out, offset, bytes + offset)
                                            : util::writeLine<HexForm>(out, offset, bytes + offset, count));
  }
}

}  // namespace vel::veltrace
