#include "trace/trace_recovery.h"

#include <cstring>

#include "trace/text_compression.h"

namespace vel::trace {
namespace {

/// How many plausible records must follow one of an unknown process, and how many are followed at most to
/// find out whether records are part of a record's data.
constexpr unsigned int kChain = 3;
constexpr unsigned int kLongestChain = 1024;
/// The largest difference in time, in milliseconds, between a record and a damaged one after it whose thread
/// is unknown.
constexpr std::uint32_t kCloseMs = 60'000;
/// Before and after the fields of a head that identify process and thread.
constexpr std::size_t kTimeAt = 4;
constexpr std::size_t kProcessAt = 8;
constexpr std::size_t kProcessEnd = 16;

std::uint32_t numberAt(const unsigned char* bytes) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

/// Whether `time` is later, in a clock that wraps.
bool isLater(std::uint32_t time, std::uint32_t than) {
  return static_cast<std::int32_t>(time - than) > 0;
}

/// Whether the bytes are what storeText() makes of a text. A text of the largest size may have been cut, so
/// its last character is not checked.
bool isStoredText(const unsigned char* stored, std::size_t length, bool compressed) {
  if (!compressed) return std::memchr(stored, '\0', length) == nullptr;
  char text[kMaxPlainSize + 2 * kSlack];
  unsigned char again[kMaxCompressedSize + kSlack];
  const std::size_t plain = decompress(stored, length, text);
  if (std::memchr(text, '\0', plain) != nullptr) return false;
  const std::size_t size = compress(text, plain, again);
  const bool isCut = length == kMaxCompressedSize;
  return (size == length || isCut) && std::memcmp(stored, again, isCut ? length - 2 : length) == 0;
}

/// Whether a record can begin with this byte.
bool isFirstByte(unsigned char byte) {
  const unsigned int type = byte & 0x1FU;
  return type != 0 && type <= static_cast<unsigned int>(VelEnTraceDataType::LONG_DOUBLE);
}

}  // namespace

Recovery::Result Recovery::find(std::uint64_t place, std::uint64_t& offset, RecordHead& head) {
  isWaiting_ = false;
  while (window_.ensure(offset, 1)) {
    if (isBelieved(offset, offset == place, head)) {
      known_.add(head);
      claim_ = {};
      last_ = {offset, offset + head.size(), head.time};
      return Result::Found;
    }
    if (isWaiting_ || (offset == place && window_.isFollowed() && isCutOff(offset))) return Result::Waiting;
    window_.drop(++offset);
    offset = nextPossible(offset);
  }
  return Result::End;
}

std::uint64_t Recovery::nextPossible(std::uint64_t offset) const {
  while (offset < window_.end() && !isFirstByte(*window_.at(offset))) ++offset;
  return offset;
}

/// Reads a head whose whole record is there.
bool Recovery::headAt(std::uint64_t offset, RecordHead& head) {
  if (!window_.ensure(offset, kHeadLength)) {
    isWaiting_ = isWaiting_ || window_.isFollowed();
    return false;
  }
  head = RecordHead::at(window_.at(offset));
  if (!head.isPossible(lengths_)) return false;
  if (window_.ensure(offset, head.size())) return true;
  // A false length would keep the search waiting for bytes that never come.
  isWaiting_ = isWaiting_ || (window_.isFollowed() && (known_.isEmpty() || knows(head)));
  return false;
}

bool Recovery::isPlausible(std::uint64_t offset, RecordHead& head) {
  if (!headAt(offset, head)) return false;
  if (offset == plausibleAt_) return true;
  if (!hasIntactTexts(offset, head)) return false;
  plausibleAt_ = offset;
  return true;
}

bool Recovery::hasIntactTexts(std::uint64_t offset, const RecordHead& head) {
  const unsigned char* const texts = window_.at(offset) + kHeadLength;
  return isStoredText(texts, head.messageLength, head.isCompressed()) &&
         isStoredText(texts + head.messageLength, head.originLength, head.isCompressed());
}

bool Recovery::isBelieved(std::uint64_t offset, bool isInPlace, RecordHead& head) {
  if (!isPlausible(offset, head)) return false;
  const std::uint64_t end = offset + head.size();
  if (isInPlace) {
    if ((isConfirmed(end, head) || resemblesHead(end, head)) && !swallowsRecord(offset, head))
      return !isOutOfTime(end, head);
    if (known_.isEmpty() || knows(head)) claim_ = {offset, end, head.time};
    return false;
  }
  if (offset < claim_.end && !isBeyondClaim(offset)) return false;
  const bool isFound =
      knows(head) ? isConfirmed(end, head) || resemblesHead(end, head) : hasChainOfProcess(end, head);
  return isFound && !swallowsRecord(offset, head);
}

/// Whether the time of a record in its place must be damaged: the records before and after it are close in
/// time, but it is not.
bool Recovery::isOutOfTime(std::uint64_t end, const RecordHead& head) {
  RecordHead after{};
  if (last_.end != end - head.size() || last_.end == 0 || !isPlausible(end, after)) return false;
  const std::uint32_t between = after.time - last_.time;
  return between < kCloseMs && head.time - (last_.time - kCloseMs) > between + 2 * kCloseMs;
}

/// Whether what is at the end of a record shows that its length is right.
bool Recovery::isConfirmed(std::uint64_t end, const RecordHead& before) {
  if (isAtEnd(end)) return true;
  RecordHead head{};
  if (!isPlausible(end, head)) return false;
  return head.process == before.process || known_.hasProcess(head.process) ||
         hasChain(end + head.size(), kChain);
}

/// Whether there are `count` plausible records, or fewer up to the end of the input. The last one may be
/// incomplete.
bool Recovery::hasChain(std::uint64_t offset, unsigned int count) {
  RecordHead head{};
  for (; count > 0 && !isAtEnd(offset); --count) {
    if (!isPlausible(offset, head)) return isCutOff(offset);
    offset += head.size();
  }
  return true;
}

/// Whether the input may end within a record that begins here.
bool Recovery::isCutOff(std::uint64_t offset) {
  if (!window_.ensure(offset, kHeadLength)) return isFirstByte(*window_.at(offset));
  const RecordHead head = RecordHead::at(window_.at(offset));
  return head.isPossible(lengths_) && !window_.ensure(offset, head.size());
}

/// Whether a chain of records follows a record whose thread is unknown: one of them is of the same process,
/// unless that process is known already.
bool Recovery::hasChainOfProcess(std::uint64_t offset, const RecordHead& before) {
  bool isSame = known_.hasProcess(before.process);
  if (!hasChain(offset, kChain)) return false;
  RecordHead head{};
  for (unsigned int left = kChain; left > 0 && !isSame && !isAtEnd(offset); --left) {
    if (!isPlausible(offset, head)) return false;
    isSame = head.process == before.process && head.time - before.time < kCloseMs;
    offset += head.size();
  }
  return isSame;
}

/// Whether a damaged or incomplete head follows: its thread is right, or its process and its time or thread.
bool Recovery::resemblesHead(std::uint64_t offset, const RecordHead& before) {
  if (window_.ensure(offset, kProcessEnd)) {
    const unsigned char* const bytes = window_.at(offset);
    const std::uint32_t process = numberAt(bytes + kProcessAt);
    const std::uint32_t thread = numberAt(bytes + kProcessAt + 4);
    const bool isClose = numberAt(bytes + kTimeAt) - before.time < kCloseMs;
    // Zeros are what damaged disks and sparse files have.
    if (thread == before.thread && thread != 0) return true;
    if (process != before.process && !known_.hasProcess(process)) return isClose && isCutOff(offset);
    return isClose || known_.hasThread(process, thread);
  }
  // The input ends within the head.
  const auto rest = static_cast<std::size_t>(window_.end() - offset);
  const unsigned char* const bytes = window_.at(offset);
  return isFirstByte(*bytes) && (rest < kProcessAt || numberAt(bytes + kTimeAt) - before.time < kCloseMs);
}

/// Whether the data of a record, because of a damaged length, contains the records after it: there is one of
/// a known thread, later than the record, and from it a chain of records leads to the end of the data.
bool Recovery::swallowsRecord(std::uint64_t offset, const RecordHead& head) {
  const std::uint64_t end = offset + head.size();
  RecordHead inner{};
  for (std::uint64_t at = offset + kHeadLength + head.textLength(); at + kHeadLength <= end; ++at) {
    const unsigned char* const bytes = window_.at(at);
    if (!isFirstByte(*bytes) || numberAt(bytes + kProcessAt) != head.process) continue;
    inner = RecordHead::at(bytes);
    if (!isLater(inner.time, head.time) || at + inner.size() > end || !isPlausible(at, inner)) continue;
    std::uint64_t next = at + inner.size();
    for (unsigned int left = kLongestChain; left > 0 && next < end && isPlausible(next, inner); --left)
      next += inner.size();
    if (next == end) return true;
  }
  return false;
}

/// Whether a plausible record within the bytes of one that was not confirmed cannot be part of its data.
bool Recovery::isBeyondClaim(std::uint64_t offset) {
  if (offset == failedNext_) {
    failedNext_ = offset + RecordHead::at(window_.at(offset)).size();
    return false;
  }
  std::uint64_t at = offset, second = 0;
  RecordHead head{};
  for (unsigned int left = kLongestChain; left > 0 && at < claim_.end; --left) {
    if (!isPlausible(at, head)) break;
    if (isLater(head.time, claim_.time)) return true;
    at += head.size();
    if (second == 0) second = at;
  }
  if (at > claim_.end) return true;
  failedNext_ = second;
  return false;
}

}  // namespace vel::trace
