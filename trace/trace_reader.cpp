// Reads a trace record by record: the plain functions on which VelClTraceReader stands. Bytes come from
// trace_window.cpp; trace_recovery.cpp finds the records of a damaged trace.
#include "vel_include/vel_trace_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/short_text.h"
#include "foundation/allocator.h"
#include "foundation/status.h"
#include "platform/clocks.h"
#include "trace/text_compression.h"
#include "trace/trace_data_text.h"
#include "trace/trace_recovery.h"
#include "trace/trace_ring_image.h"
#include "trace/trace_type_names.h"
#include "trace/trace_window.h"
#include "vel_include/vel_util.h"

using vel::trace::RecordHead;
using vel::trace::Recovery;
using vel::trace::TraceWindow;

static_assert(sizeof(VelStTraceRecord) == 64, "programs are compiled with this layout");

namespace vel::trace {

/// Decodes texts, and remembers them: a program records the same few texts over and over.
class TextDecoder {
 public:
  struct Text {
    std::size_t storedSize = 0;
    std::size_t size = 0;
    unsigned char stored[kMaxCompressedSize + 1];
    char text[kMaxPlainSize + 2 * kSlack];
  };

  /// The result is valid until the next call for a text of the same slot.
  const Text& decode(const unsigned char* stored, std::size_t size) {
    Text& known = texts_[slotOf(stored, size)];
    if (known.storedSize == size && std::memcmp(known.stored, stored, size) == 0) return known;
    known.storedSize = size;
    copyShort(known.stored, stored, size);
    known.size = decompress(stored, size, known.text);
    return known;
  }

 private:
  static constexpr std::size_t kSlots = 64;
  /// Differs for most texts of different call sites: their beginnings, their ends, or their sizes differ.
  static std::size_t slotOf(const unsigned char* stored, std::size_t size) {
    std::uint32_t first = 0, last = 0;
    if (size >= sizeof first) {
      std::memcpy(&first, stored, sizeof first);
      std::memcpy(&last, stored + size - sizeof last, sizeof last);
    }
    return (first * 0x9E3779B1U + last * 0x85EBCA77U + static_cast<std::uint32_t>(size)) >> 26;
  }

  Text texts_[kSlots];
};

/// A text of the current record.
class RecordText {
 public:
  void set(const unsigned char* bytes, std::size_t count) {
    stored_ = bytes;
    storedSize_ = count;
    text_ = nullptr;
  }
  const char* get(bool isCompressed, TextDecoder& decoder, size_t* length) {
    if (text_ == nullptr) fetch(isCompressed, decoder);
    if (length != nullptr) *length = size_;
    return text_;
  }

 private:
  void fetch(bool isCompressed, TextDecoder& decoder) {
    text_ = plain_;
    size_ = storedSize_;
    if (isCompressed && storedSize_ != 0) {
      const TextDecoder::Text& known = decoder.decode(stored_, storedSize_);
      text_ = known.text;
      size_ = known.size;
      return;
    }
    if (storedSize_ != 0) std::memcpy(plain_, stored_, storedSize_);
    plain_[storedSize_] = '\0';
  }

  const unsigned char* stored_ = nullptr;
  std::size_t storedSize_ = 0;
  const char* text_ = nullptr;
  std::size_t size_ = 0;
  char plain_[kMaxCompressedSize + 1] = "";
};

/// How often a followed file is looked at.
inline constexpr std::uint32_t kPollMs = 20;

}  // namespace vel::trace

struct VelStTraceReader {
  explicit VelStTraceReader(std::uint32_t reading) : recovers_((reading & TRACE_READ_RECOVER) != 0) {}

  VelClStatus open(std::string_view name, bool isFollowed);
  VelClStatus openBytes(const void* bytes, std::size_t size);
  /// Returns null after the last record and after a failure.
  const VelStTraceRecord* next();
  const VelClStatus& failure() const { return failure_; }
  void select(const VelStTraceSelection* selection) {
    hasSelection_ = selection != nullptr;
    if (hasSelection_) selection_ = *selection;
  }
  const char* getFunction(size_t* size) { return function_.get(record_.isCompressed != 0, functions_, size); }
  const char* getMessage(size_t* size) { return message_.get(record_.isCompressed != 0, messages_, size); }
  std::uint64_t getSkippedBytes(std::uint64_t* places) const;
  std::uint64_t getOffset(std::uint64_t* skipped) const;
  bool wait(std::uint32_t milliseconds);
  std::uint64_t getRestarts() const { return restarts_; }

 private:
  VelClStatus openRing();
  bool readNext(RecordHead& head);
  bool recoverNext(RecordHead& head);
  void setRecord(const RecordHead& head);
  bool isSelected(const RecordHead& head) const;
  void countSkipped();
  bool fail(unsigned long id, VelEnErrorClass errorClass);
  bool failUnlessAtEnd();
  bool refresh();

  TraceWindow window_;
  vel::trace::RingImage ring_;
  const vel::trace::DataLengths& lengths_ = vel::trace::DataLengths::table();
  Recovery recovery_{window_, lengths_};
  VelStTraceSelection selection_{};
  bool hasSelection_ = false;
  VelStTraceRecord record_{};
  vel::trace::RecordText function_, message_;
  vel::trace::TextDecoder functions_, messages_;
  VelClStatus failure_;
  std::uint64_t place_ = 0;     ///< the end of the last record
  std::uint64_t position_ = 0;  ///< what has been read, or searched for records; not below place_
  std::uint64_t skippedBytes_ = 0;
  std::uint64_t skippedPlaces_ = 0;
  std::uint64_t restarts_ = 0;
  bool recovers_;
};

VelClStatus VelStTraceReader::open(std::string_view name, bool isFollowed) {
  if (name == "-") {
    window_.openStandardInput();
    return openRing();
  }
  const vel::platform::SystemError error = window_.open(name, isFollowed);
  if (error == 0) return isFollowed ? VelClStatus() : openRing();
  const VelEnErrorClass errorClass = error == ENOENT   ? VelEnErrorClass::IO_NOT_EXISTENT
                                     : error == EACCES ? VelEnErrorClass::IO_PERMISSION_DENIED
                                                       : VelEnErrorClass::IO_PROBLEM;
  return {FILE_COULD_NOT_OPEN, errorClass, static_cast<std::uint32_t>(error), name};
}

VelClStatus VelStTraceReader::openBytes(const void* bytes, std::size_t size) {
  window_.openBytes(bytes, size);
  return openRing();
}

/// If the input is a ring, reads its bytes from memory instead. Where a record begins, recovery finds out.
VelClStatus VelStTraceReader::openRing() {
  if (!vel::trace::isRing(window_)) return {};
  if (!vel::trace::readRing(window_, ring_))
    return {TRACEFORMAT_FILE_CORRUPTED, VelEnErrorClass::INVALID_DATA, 0, window_.name(), 1};
  window_.openBytes(ring_.bytes.get(), ring_.size);
  recovers_ = true;
  return {};
}

const VelStTraceRecord* VelStTraceReader::next() {
  function_.set(nullptr, 0);
  message_.set(nullptr, 0);
  if (!failure_.isOk()) return nullptr;
  window_.drop(position_);
  RecordHead head{};
  if (!(recovers_ ? recoverNext(head) : readNext(head))) return nullptr;
  setRecord(head);
  return &record_;
}

/// Reads the next selected record from the position on. Returns false at the end, and if there is a failure.
bool VelStTraceReader::readNext(RecordHead& head) {
  while (window_.ensure(position_, vel::trace::kHeadLength)) {
    head = RecordHead::at(window_.at(position_));
    if (!head.isPossible(lengths_)) return fail(TRACEFORMAT_FILE_CORRUPTED, VelEnErrorClass::INVALID_DATA);
    if (!window_.ensure(position_, head.size())) break;
    if (isSelected(head)) return true;
    position_ += head.size();
    place_ = position_;
    window_.drop(position_);
  }
  return failUnlessAtEnd();
}

/// A record that is not selected counts as found, so that damage after it is reported with the next one.
bool VelStTraceReader::recoverNext(RecordHead& head) {
  while (recovery_.find(place_, position_, head) == Recovery::Result::Found) {
    if (isSelected(head)) return true;
    countSkipped();
    position_ += head.size();
    place_ = position_;
    window_.drop(position_);
  }
  return window_.error() != 0 && failUnlessAtEnd();
}

bool VelStTraceReader::isSelected(const RecordHead& head) const {
  if (!hasSelection_) return true;
  const VelStTraceSelection& wanted = selection_;
  if (wanted.keepsFunctions != 0 && head.type() - 1 < 2) return true;
  return head.process - wanted.firstProcess <= wanted.lastProcess - wanted.firstProcess &&
         head.thread - wanted.firstThread <= wanted.lastThread - wanted.firstThread &&
         head.time - wanted.firstTime <= wanted.lastTime - wanted.firstTime &&
         static_cast<VelEnTraceDetail>(head.detail()) <= wanted.detail &&
         (wanted.components[head.component / 8] >> head.component % 8 & 1) != 0;
}

void VelStTraceReader::countSkipped() {
  if (position_ == place_) return;
  skippedBytes_ += position_ - place_;
  ++skippedPlaces_;
}

bool VelStTraceReader::fail(unsigned long id, VelEnErrorClass errorClass) {
  failure_ = {id, errorClass, static_cast<std::uint32_t>(window_.error()), window_.name(), position_ + 1};
  return false;
}

/// A failure to read counts more than the record that is incomplete because of it.
bool VelStTraceReader::failUnlessAtEnd() {
  if (window_.error() != 0) return fail(FILE_COULD_NOT_READ, VelEnErrorClass::IO_READ_PROBLEM);
  if (position_ == window_.end() || window_.isFollowed()) return false;
  return fail(TRACEFORMAT_UNEXPECTED_EOF, VelEnErrorClass::IO_READ_PROBLEM);
}

void VelStTraceReader::setRecord(const RecordHead& head) {
  const unsigned char* const texts = window_.at(position_) + vel::trace::kHeadLength;
  record_ = {.offset = position_,
             .size = head.size(),
             .skipped = position_ - place_,
             .timeStamp = head.time,
             .processId = head.process,
             .threadId = head.thread,
             .componentId = head.component,
             .detail = static_cast<VelEnTraceDetail>(head.detail()),
             .type = static_cast<VelEnTraceDataType>(head.type()),
             .dataSize = head.dataLength,
             .isCompressed = head.isCompressed() ? 1U : 0U,
             .data = texts + head.textLength()};
  message_.set(texts, head.messageLength);
  function_.set(texts + head.messageLength, head.originLength);
  countSkipped();
  position_ += head.size();
  place_ = position_;
}

std::uint64_t VelStTraceReader::getSkippedBytes(std::uint64_t* places) const {
  const std::uint64_t atEnd = position_ - place_;
  if (places != nullptr) *places = skippedPlaces_ + (atEnd != 0 ? 1 : 0);
  return skippedBytes_ + atEnd;
}

std::uint64_t VelStTraceReader::getOffset(std::uint64_t* skipped) const {
  if (skipped != nullptr) *skipped = position_ - place_;
  return position_;
}

bool VelStTraceReader::wait(std::uint32_t milliseconds) {
  if (!window_.isFollowed() || !failure_.isOk()) return false;
  while (!refresh()) {
    if (milliseconds == 0) return false;
    const std::uint32_t step = std::min(milliseconds, vel::trace::kPollMs);
    vel::platform::sleepMilliseconds(step);
    milliseconds -= step;
  }
  return true;
}

/// What was not read of a file that has been replaced or truncated belongs to no record.
bool VelStTraceReader::refresh() {
  const std::uint64_t end = window_.end();
  window_.drop(position_);
  const TraceWindow::Change change = window_.refresh();
  if (change == TraceWindow::Change::Restarted) {
    if (end > place_) {
      skippedBytes_ += end - place_;
      ++skippedPlaces_;
    }
    place_ = position_ = 0;
    recovery_.restart();
    ++restarts_;
  }
  return change != TraceWindow::Change::None;
}

namespace {

using OwnedReader = vel::OwnedObject<VelStTraceReader>;

void writeAddress(vel::trace::TextBuffer& out, const VelStTraceRecord& record) {
  const void* address = nullptr;
  if (record.dataSize != sizeof address) return;
  std::memcpy(&address, record.data, sizeof address);
  out.append(VelClStrepAddress(address).getAsCString());
}

}  // namespace

VelStStatus* velTraceReaderOpen(const char* name, size_t nameSize, uint32_t reading,
                                VelStTraceReader** reader) {
  *reader = nullptr;
  return vel::plainStatus([&] {
    OwnedReader opened(vel::create<VelStTraceReader>(reading));
    VelClStatus status = opened->open({name, nameSize}, (reading & TRACE_READ_FOLLOW) != 0);
    if (status.isOk()) *reader = opened.release();
    return status;
  });
}

VelStStatus* velTraceReaderOpenBytes(const void* bytes, size_t size, uint32_t reading,
                                     VelStTraceReader** reader) {
  *reader = nullptr;
  return vel::plainStatus([&] {
    OwnedReader opened(vel::create<VelStTraceReader>(reading));
    VelClStatus status = opened->openBytes(bytes, size);
    if (status.isOk()) *reader = opened.release();
    return status;
  });
}

void velTraceReaderClose(VelStTraceReader* reader) {
  vel::destroy(reader);
}

VelStStatus* velTraceReaderNext(VelStTraceReader* reader, const VelStTraceRecord** record) {
  return vel::plainStatus([&] {
    *record = nullptr;
    *record = reader->next();
    return *record != nullptr ? VelClStatus() : reader->failure();
  });
}

void velTraceReaderSelect(VelStTraceReader* reader, const VelStTraceSelection* selection) {
  reader->select(selection);
}

const char* velTraceReaderGetFunction(VelStTraceReader* reader, size_t* size) {
  return reader->getFunction(size);
}

const char* velTraceReaderGetMessage(VelStTraceReader* reader, size_t* size) {
  return reader->getMessage(size);
}

size_t velTraceRecordGetValueText(const VelStTraceRecord* record, char* out, size_t capacity) {
  const auto type = static_cast<unsigned int>(record->type);
  vel::trace::TextBuffer value;
  if (record->type == VelEnTraceDataType::ADDRESS) writeAddress(value, *record);
  if (vel::trace::isValueType(type) && vel::trace::fitsValue(type, record->dataSize))
    vel::trace::writeValue(value, type, record->data, record->dataSize);
  const std::string_view text = value.text();
  if (capacity != 0) out[text.copy(out, capacity - 1)] = '\0';
  return text.size();
}

const char* velTraceGetTypeName(VelEnTraceDataType type) {
  const auto* const names = vel::trace::typeNamesOf(static_cast<unsigned int>(type));
  return names != nullptr && !names->longName.empty() ? names->longName.data() : "";
}

uint64_t velTraceReaderGetSkippedBytes(const VelStTraceReader* reader, uint64_t* places) {
  return reader->getSkippedBytes(places);
}

uint64_t velTraceReaderGetOffset(const VelStTraceReader* reader, uint64_t* skipped) {
  return reader->getOffset(skipped);
}

bool velTraceReaderWait(VelStTraceReader* reader, uint32_t milliseconds) {
  return reader->wait(milliseconds);
}

uint64_t velTraceReaderGetRestarts(const VelStTraceReader* reader) {
  return reader->getRestarts();
}
