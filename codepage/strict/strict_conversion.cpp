// VelClStrictConversion: passes a text, in pieces of any size, through a reader and a writer, and handles the
// faults that stop them according to the policy.
//
//   source -> [kept_] -> reader -> units_ -> writer -> output buffer -> sink
//
// Readers and writers decide what is a fault. A character that is divided between two pieces
// is kept in kept_ until the next piece completes it. The shift state is in the reader and in the writer.
#include "vel_include/vel_strict_conversion.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "base/digits.h"
#include "codepage/conversion.h"
#include "codepage/strict/checked_converter.h"
#include "codepage/strict/strict_reader.h"
#include "codepage/strict/strict_writer.h"

namespace {

using vel::codepage::kLineFeed;
using vel::codepage::kMaxUnits;
using vel::codepage::kNextLine;
using vel::codepage::Output;

/// The most units per block if a handler hears of every fault. The position of an unmappable character is
/// found by decoding its block again, so in large blocks the time for many faults would grow with their
/// square.
constexpr std::size_t kMaxUnitsBetweenFaults = 512;

template <typename T>
T* allocate(std::size_t count) {
  return static_cast<T*>(VelClMemoryManager::malloc(count * sizeof(T)));
}

/// Returns the CCSID of the same value with the properties from the table. A CCSID that was constructed from
/// a misspelt name has a value but no properties.
VelClCCSID withProperties(const VelClCCSID& ccsid) {
  return VelClCCSID(ccsid.getCCSID());
}

/// Writes a backslash, a letter, and `value` in `digits` hexadecimal digits.
void escape(vel::codepage::Writer& writer, Output& output, char letter, unsigned int value, int digits) {
  writer.writeOrSubstitute(U'\\', output);
  writer.writeOrSubstitute(static_cast<unsigned char>(letter), output);
  for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
    writer.writeOrSubstitute(static_cast<unsigned char>(vel::kUpperHexDigits[value >> shift & 0xF]), output);
}

void foldNextLines(char16_t* units, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) units[i] = units[i] == kNextLine ? kLineFeed : units[i];
}

/// Counts the units that meet a condition. The counter is as wide as the units, so that compilers vectorise
/// the loop well; kMaxUnits keeps it from overflowing.
template <typename Condition>
std::uint16_t countUnits(const char16_t* begin, const char16_t* end, Condition condition) {
  static_assert(kMaxUnits <= 0xFFFF);
  std::uint16_t count = 0;
  for (; begin != end; ++begin) count = static_cast<std::uint16_t>(count + (condition(*begin) ? 1 : 0));
  return count;
}

/// After an exception of a sink or a handler, bytes are lost, so that the conversion must not go on.
class StopUnlessDone {
 public:
  explicit StopUnlessDone(bool& hasStopped) : hasStopped_(hasStopped) {}
  StopUnlessDone(const StopUnlessDone&) = delete;
  StopUnlessDone& operator=(const StopUnlessDone&) = delete;
  ~StopUnlessDone() { hasStopped_ = hasStopped_ || !isDone_; }

  void done() { isDone_ = true; }

 private:
  bool& hasStopped_;
  bool isDone_ = false;
};

}  // namespace

VelClConversionSink::~VelClConversionSink() = default;
VelClConversionFaultHandler::~VelClConversionFaultHandler() = default;

VelClStrictConversion::VelClStrictConversion(const VelClCCSID& source, const VelClCCSID& target,
                                             VelEnPolicy policy)
    : source_(withProperties(source)),
      policy_(policy),
      foldsNextLine_(false),
      reader_(nullptr),
      writer_(nullptr),
      units_(nullptr),
      outputBuffer_(nullptr) {
  // The destructor does not run if this constructor throws, so locals own everything until the
  // last allocation has succeeded.
  vel::OwnedObject<vel::codepage::Reader> reader(vel::codepage::makeReader(source_));
  vel::OwnedObject<vel::codepage::Writer> writer(vel::codepage::makeWriter(withProperties(target)));
  vel::OwnedBlock units(allocate<char16_t>(kMaxUnits));
  outputBuffer_ = allocate<char>(Output::kCapacity);
  units_ = static_cast<char16_t*>(units.release());
  writer_ = writer.release();
  reader_ = reader.release();
  restart();
}

VelClStrictConversion::~VelClStrictConversion() {
  vel::destroy(reader_);
  vel::destroy(writer_);
  VelClMemoryManager::free(units_);
  VelClMemoryManager::free(outputBuffer_);
}

VelClStrictConversion::VelEnRoute VelClStrictConversion::getRouteToUcs2(const VelClCCSID& source) {
  return vel::codepage::CheckedToUnicode(withProperties(source)).getRoute();
}

VelClStrictConversion::VelEnRoute VelClStrictConversion::getRouteFromUcs2(const VelClCCSID& target) {
  return vel::codepage::CheckedFromUnicode(withProperties(target)).getRoute();
}

void VelClStrictConversion::restart() {
  hasStopped_ = false;
  followsLines_ = false;
  keptSize_ = 0;
  offset_ = 0;
  line_ = 1;
  column_ = 1;
  std::ranges::fill(faultCounts_, 0);
  firstFault_ = {};
  if (!isSupported()) return;
  reader_->restart();
  // A text that was not finished may have left the writer in double-byte mode. finish() resets the mode; the
  // shift-in that it writes is discarded.
  struct : VelClConversionSink {
    void write(const char*, size_t) override {}
  } nowhere;
  Output output(nowhere, outputBuffer_);
  writer_->finish(output);
}

uint64_t VelClStrictConversion::getFaultCount() const {
  return std::accumulate(std::begin(faultCounts_), std::end(faultCounts_), uint64_t{0});
}

bool VelClStrictConversion::convert(const char* source, size_t size, VelClConversionSink& sink) {
  Output output(sink, outputBuffer_);
  return run(source, size, false, output);
}

bool VelClStrictConversion::finish(VelClConversionSink& sink) {
  Output output(sink, outputBuffer_);
  return run(nullptr, 0, true, output);
}

bool VelClStrictConversion::convert(const char* source, size_t size, VelClConversionSink& sink,
                                    VelClConversionFaultHandler& handler) {
  Output output(sink, outputBuffer_, &handler);
  return run(source, size, false, output);
}

bool VelClStrictConversion::finish(VelClConversionSink& sink, VelClConversionFaultHandler& handler) {
  Output output(sink, outputBuffer_, &handler);
  return run(nullptr, 0, true, output);
}

bool VelClStrictConversion::run(const char* source, size_t size, bool isLast, Output& output) {
  if (!isSupported()) return false;
  StopUnlessDone stop(hasStopped_);
  followsLines_ = followsLines_ || output.handler() != nullptr;
  if (!hasStopped_ && (keptSize_ == 0 || convertKept(source, size, isLast, output))) {
    const size_t converted = convertBlock(source, size, isLast, output);
    if (!hasStopped_ && converted < size) {
      keptSize_ = size - converted;
      std::memcpy(kept_, source + converted, keptSize_);
    }
  }
  if (isLast) writer_->finish(output);
  output.flush();
  stop.done();
  return !hasStopped_;
}

// Completes the character in kept_, which the previous piece began, with bytes of this piece, and converts
// it. Advances `source` and `size` past the bytes used. Returns false if nothing is left to convert.
bool VelClStrictConversion::convertKept(const char*& source, size_t& size, bool isLast, Output& output) {
  const size_t added = std::min(size, sizeof kept_ - keptSize_);
  if (added != 0) std::memcpy(kept_ + keptSize_, source, added);
  const size_t before = keptSize_;
  const size_t whole = before + added;
  const size_t converted = convertBlock(kept_, whole, isLast, output);
  keptSize_ = 0;
  if (hasStopped_) return false;
  if (converted < before) {
    // The character is still incomplete, so all the bytes that were added belong to it.
    keptSize_ = whole - converted;
    std::memmove(kept_, kept_ + converted, keptSize_);
    return false;
  }
  source += converted - before;
  size -= converted - before;
  return size != 0;
}

// Converts whole characters, and handles faults, until the reader needs more bytes. Returns the number of
// bytes that were consumed.
size_t VelClStrictConversion::convertBlock(const char* source, size_t size, bool isLast, Output& output) {
  const char* const begin = source;
  const size_t capacity = output.handler() == nullptr ? kMaxUnits : kMaxUnitsBetweenFaults;
  while (!hasStopped_) {
    const vel::codepage::ReadResult result = reader_->read(source, size, isLast, units_, capacity);
    if (foldsNextLine_) foldNextLines(units_, result.units);
    if (!writeUnits(source, size, result.units, output)) break;
    source += result.consumed;
    size -= result.consumed;
    offset_ += result.consumed;
    if (result.fault != VelEnFault::NONE) {
      handleIllFormed(result.fault, source, result.faultSize, output);
      if (hasStopped_) break;
      source += result.faultSize;
      size -= result.faultSize;
      offset_ += result.faultSize;
    } else if (result.consumed == 0) {
      break;
    }
  }
  return static_cast<size_t>(source - begin);
}

// Writes the first `count` of units_, and handles unmappable characters. `source` and `size` are the bytes
// that they were read from. Returns false if the conversion has stopped.
bool VelClStrictConversion::writeUnits(const char* source, size_t size, size_t count, Output& output) {
  size_t written = 0;
  while (true) {
    const size_t next = written + writer_->write(units_ + written, count - written, output);
    advance(written, next);
    if (next == count) return true;
    written = next + handleUnmappable(source, size, next, output);
    if (hasStopped_) return false;
    advance(next, written);
  }
}

// Counts and handles the unmappable character at `unit`. Returns the number of its units.
size_t VelClStrictConversion::handleUnmappable(const char* source, size_t size, size_t unit, Output& output) {
  const vel::codepage::Character character = vel::codepage::decodeFirst(units_ + unit);
  // Without a handler, only the first fault is reported with its offset, and finding that may mean to decode
  // the source again.
  const bool isReported = getFaultCount() == 0 || output.handler() != nullptr;
  const size_t before = isReported ? reader_->sizeBefore(source, size, unit) : 0;
  const VelStFault fault =
      describe(VelEnFault::NOT_REPRESENTABLE, offset_ + before, character.value, nullptr, 0);
  const VelEnPolicy policy = decide(fault, output);
  if (policy == VelEnPolicy::STOP) {
    offset_ += before;
  } else if (policy == VelEnPolicy::REPLACE) {
    writer_->writeOrSubstitute(character.value, output);
  } else if (policy == VelEnPolicy::ESCAPE) {
    const bool isLong = character.value > 0xFFFF;
    escape(*writer_, output, isLong ? 'U' : 'u', character.value, isLong ? 8 : 4);
  }
  return character.units;
}

// Counts and handles bytes that are not a character. The end in double-byte mode is a fault without bytes.
void VelClStrictConversion::handleIllFormed(VelEnFault kind, const char* bytes, size_t size, Output& output) {
  const VelEnPolicy policy = decide(describe(kind, offset_, 0, bytes, size), output);
  if (policy == VelEnPolicy::STOP || size == 0) return;
  column_ += 1;
  if (policy == VelEnPolicy::REPLACE) writer_->writeOrSubstitute(vel::kReplacementCharacter, output);
  if (policy != VelEnPolicy::ESCAPE) return;
  for (size_t i = 0; i < size; ++i) escape(*writer_, output, 'x', static_cast<unsigned char>(bytes[i]), 2);
}

VelClStrictConversion::VelStFault VelClStrictConversion::describe(VelEnFault kind, uint64_t offset,
                                                                  uint32_t character, const char* bytes,
                                                                  size_t size) const {
  VelStFault fault{kind, offset, line_, column_, character, static_cast<uint32_t>(size), {}};
  if (size != 0) std::memcpy(fault.bytes, bytes, std::min(size, sizeof fault.bytes));
  return fault;
}

// Counts a fault, keeps the first one, and returns what the handler, or else the policy, says about it.
VelClStrictConversion::VelEnPolicy VelClStrictConversion::decide(const VelStFault& fault,
                                                                 const Output& output) {
  if (getFaultCount() == 0) firstFault_ = fault;
  ++faultCounts_[static_cast<int32_t>(fault.kind)];
  const VelEnPolicy policy = output.handler() == nullptr ? policy_ : output.handler()->handle(fault);
  hasStopped_ = policy == VelEnPolicy::STOP;
  return policy;
}

// Moves line and column past these units. Without a handler, they are reported for the first fault only, and
// not counted after it.
void VelClStrictConversion::advance(size_t firstUnit, size_t endUnit) {
  if (getFaultCount() != 0 && !followsLines_) return;
  const char16_t* const begin = units_ + firstUnit;
  const char16_t* const end = units_ + endUnit;
  const char16_t other = source_.isEBCDIC() ? kNextLine : kLineFeed;
  const auto endsLine = [other](char16_t unit) { return unit == kLineFeed || unit == other; };
  const auto lines = countUnits(begin, end, endsLine);
  const char16_t* lineBegin = begin;
  if (lines != 0) {
    line_ += lines;
    column_ = 1;
    lineBegin = end;
    while (!endsLine(lineBegin[-1])) --lineBegin;
  }
  // A surrogate pair is one character, and its low surrogate is not counted.
  const auto lows = countUnits(lineBegin, end, [](char16_t unit) { return vel::isLowSurrogate(unit); });
  column_ += static_cast<uint64_t>(end - lineBegin - lows);
}
