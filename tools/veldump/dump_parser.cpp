// Parses the lines of a dump. Only address and digits count; the characters on the right are ignored, because
// nobody who edits a dump by hand keeps them consistent. "__" is in the places of missing bytes, at the end
// of a line only.
//
// A line "*" stands for repetitions of the line before it. Their number follows from the address of the next
// line, so a line of a few bytes can stand for terabytes. Therefore the number is limited.
#include "tools/veldump/dump_parser.h"

#include <utility>

#include "util/dump_line.h"

namespace vel::veldump {

namespace {

using util::BinaryForm;
using util::HexForm;
using util::LineLayout;

bool isMissing(std::string_view group) {
  return group.find_first_not_of(util::kMissing) == std::string_view::npos;
}

}  // namespace

/// Decodes the digits of a line. Its form fixes the column of every digit, so nothing is searched for.
template <typename Form>
bool DumpParser::decodeGroups(std::string_view text, DumpLine& line) {
  using Layout = LineLayout<Form>;
  static_assert(Form::kBytes <= DumpLine::kMaxBytes);
  if (text.size() <= Layout::kBar || text[Layout::kBar] != '|') return false;
  line.capacity = Form::kBytes;
  line.count = 0;
  bool missing = false;
  for (std::size_t i = 0; i < Form::kBytes; ++i) {
    const std::string_view group = text.substr(Layout::groupAt(i), Form::kDigits);
    missing = missing || isMissing(group);
    if (missing ? !isMissing(group) : !parseNumber(group, Form::kBase, line.bytes[i])) return false;
    if (text[Layout::groupAt(i) + Form::kDigits] != ' ') return false;
    line.count += missing ? 0 : 1;
  }
  return line.count > 0;
}

bool DumpParser::decodeOwn(std::string_view text, DumpLine& line) {
  const std::string_view groups = parseAddress(text, ": ", line.address);
  // Both forms differ in the number of digits of a byte, so the first blank tells which one it is.
  return groups.find(' ') == HexForm::kDigits ? decodeGroups<HexForm>(groups, line)
                                              : decodeGroups<BinaryForm>(groups, line);
}

bool DumpParser::decode(std::string_view text, DumpLine& line) {
  constexpr struct {
    Writer writer;
    bool (*decode)(std::string_view text, DumpLine& line);
  } kWriters[] = {
      {Writer::Veldump, &decodeOwn}, {Writer::Xxd, &decodeXxd}, {Writer::Hexdump, &decodeHexdump}};
  for (const auto& [writer, decodeLine] : kWriters) {
    if ((writer_ != Writer::Unknown && writer_ != writer) || !decodeLine(text, line)) continue;
    // The line that ends a dump does not begin one.
    if (line.count == 0 && writer_ == Writer::Unknown) return false;
    writer_ = writer;
    return true;
  }
  return false;
}

/// Whether the line continues where the last one ended. After a "*" whole lines may be between the two.
bool DumpParser::follows(const DumpLine& line) const {
  if (!started_) return true;
  const std::uint64_t end = previous_->address + previous_->count;
  if (!squeezed_) return line.address == end;
  return line.address >= end && (line.address - end) % previous_->count == 0;
}

/// Writes the repetitions that a "*" stands for, up to the address of the next line.
bool DumpParser::repeatUpTo(std::uint64_t address) {
  const std::uint64_t size = address - previous_->address - previous_->count;
  beyondLimit_ = size > repeatable_;
  if (beyondLimit_) return false;
  repeatable_ -= size;
  for (; previous_->address + previous_->count < address; previous_->address += previous_->count)
    output_.append(reinterpret_cast<const char*>(previous_->bytes), previous_->count);
  return true;
}

bool DumpParser::parseLine(std::string_view text) {
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text == "*") {
    // Only a full line can have been repeated.
    if (!started_ || squeezed_ || ended_ || previous_->count != previous_->capacity) return false;
    squeezed_ = true;
    return true;
  }
  DumpLine& line = *next_;
  if (ended_ || !decode(text, line) || !follows(line)) return false;
  isReversed_ = line.isReversed;
  if (isReversed_) return false;
  if (squeezed_ && !repeatUpTo(line.address)) return false;
  output_.append(reinterpret_cast<const char*>(line.bytes), line.count);
  ended_ = line.count == 0;
  std::swap(previous_, next_);
  started_ = true;
  squeezed_ = false;
  return true;
}

}  // namespace vel::veldump
