// Reads trace files record by record, for programs that evaluate what others traced: any size, damaged ones,
// and files that are still being written. VelClTraceFormatter renders whole files as text instead.
#ifndef VEL_TRACE_READER_H_
#define VEL_TRACE_READER_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"
#include "vel_status.h"
#include "vel_trace_entry.h"

#if defined(VEL_HAS_CLASSES)
#include <iterator>
#include <string_view>
#include <utility>
#endif

/// One record of a trace. Everything is valid until the next record is read or the reader is closed.
typedef struct VelStTraceRecord {
  uint64_t offset;            ///< of its first byte in the input
  uint64_t size;              ///< of the whole record in bytes
  uint64_t skipped;           ///< bytes directly before it that belong to no record; only with recovery
  uint32_t timeStamp;         ///< milliseconds, see velGetTimeStamp; wraps after 49.7 days
  uint32_t processId;         ///< process number
  uint32_t threadId;          ///< thread number
  uint32_t componentId;       ///< component, 0 to 255
  VelEnTraceDetail detail;    ///< level of detail
  VelEnTraceDataType type;    ///< content, or type of the data
  uint32_t dataSize;          ///< size of the data in bytes
  uint32_t isCompressed;      ///< 1 if the texts are stored compressed, else 0
  const unsigned char* data;  ///< the data, not aligned; not null, even if its size is 0
} VelStTraceRecord;

/// Which records are wanted: those whose numbers are all within these limits, which are included.
typedef struct VelStTraceSelection {
  uint32_t firstProcess;    ///< process numbers
  uint32_t lastProcess;     ///< from 0 to UINT32_MAX for all
  uint32_t firstThread;     ///< thread numbers
  uint32_t lastThread;      ///< from 0 to UINT32_MAX for all
  uint32_t firstTime;       ///< time stamps
  uint32_t lastTime;        ///< from 0 to UINT32_MAX for all
  VelEnTraceDetail detail;  ///< the highest level of detail
  uint32_t keepsFunctions;  ///< not 0: function records are wanted in any case, to follow calls
  uint8_t components[32];   ///< a bit for each component: bit n mod 8 of byte n / 8
} VelStTraceSelection;

/// Ways to read a trace, bits that may be combined. With recovery, damaged bytes are skipped, and a record is
/// returned only if what follows confirms it, so that no record is made up from bytes that were none. Damage
/// within the texts, the data, or a single number of a record cannot be detected in general, because records
/// have no checksum.
// clang-format off
enum VelEnTraceReading VEL_ENUM_TYPE(uint32_t) {
  TRACE_READ_PLAIN = 0,    ///< damage ends reading with a failure
  TRACE_READ_RECOVER = 1,  ///< damaged bytes are skipped
  TRACE_READ_FOLLOW = 2    ///< the end of the file is not the end of the trace, see velTraceReaderWait
};
// clang-format on

/// Reads one trace. Several threads may use several readers, but only one at a time may use the same reader.
typedef struct VelStTraceReader VelStTraceReader;

/// Opens a trace file; `name` is UTF-8 of `nameSize` bytes, or "-" for standard input, which is read as it
/// is. `reading` is a combination of VelEnTraceReading. A file that is followed need not exist yet. Returns
/// FILE_COULD_NOT_OPEN and sets `reader` to null if the file cannot be opened, or is a directory.
///
/// Instead of a trace, the input may be the memory of a ring, header included, also one that is being
/// written: its records are found by recovery, and offsets count from its oldest byte. A ring is not
/// followed. One whose header contradicts itself is refused: TRACEFORMAT_FILE_CORRUPTED.
///
/// A file is read in blocks of 256 KiB. Memory is bounded: a record whose data is longer than 16 MiB, the
/// largest size of a ring, counts as damaged. Records cost no allocation.
VEL_C_API VelStStatus* velTraceReaderOpen(const char* name, size_t nameSize, uint32_t reading,
                                          VelStTraceReader** reader);
/// Opens a trace or a ring in memory, which must outlive the reader; only a ring is copied.
VEL_C_API VelStStatus* velTraceReaderOpenBytes(const void* bytes, size_t size, uint32_t reading,
                                               VelStTraceReader** reader);
/// Closes a reader; null is ignored.
VEL_C_API void velTraceReaderClose(VelStTraceReader* reader);

/// Reads the next record and sets `record` to it, or to null at the end, or if a followed file has no further
/// complete record at present. After a failure, which is returned again by each call, `record` is null:
///
/// - TRACEFORMAT_FILE_CORRUPTED: the record at the position (of VelClStatus, from 1) is damaged
/// - TRACEFORMAT_UNEXPECTED_EOF: the last record, at the position, is incomplete
/// - FILE_COULD_NOT_READ: the system failed to read the file
///
/// With recovery only the last of these occurs.
VEL_C_API VelStStatus* velTraceReaderNext(VelStTraceReader* reader, const VelStTraceRecord** record);

/// Passes over all records but those that are wanted, in much less time than it takes to return them. Null
/// selects all, as at the start. The selection is copied. Bytes that recovery skips before a record that is
/// not wanted are counted, but not in `skipped` of a record.
VEL_C_API void velTraceReaderSelect(VelStTraceReader* reader, const VelStTraceSelection* selection);

/// Return a text of the current record, decoded and NUL-terminated, and its size in bytes unless `size` is
/// null. It is as the program passed it, so it may contain any bytes but NUL. "" if there is no record.
VEL_C_API const char* velTraceReaderGetFunction(VelStTraceReader* reader, size_t* size);
VEL_C_API const char* velTraceReaderGetMessage(VelStTraceReader* reader, size_t* size);
/// Writes the value of a record as trcctl shows it, such as "0x2A/42" or "TRUE", NUL-terminated, and returns
/// its length; "" if the type of the record is not a value. A text that does not fit `capacity` bytes is cut,
/// and the length is that of the whole text. `out` is not used if `capacity` is 0.
VEL_C_API size_t velTraceRecordGetValueText(const VelStTraceRecord* record, char* out, size_t capacity);
/// Returns the name of a type, such as "DATA" or "FUNCTION ENTRY"; "" for a number that is not a type.
VEL_C_API const char* velTraceGetTypeName(VelEnTraceDataType type);

/// Returns how many bytes were skipped so far, and sets `places`, unless null, to the number of places.
VEL_C_API uint64_t velTraceReaderGetSkippedBytes(const VelStTraceReader* reader, uint64_t* places);
/// Returns the offset of the next byte to read: at the end, the size of the input. The bytes that were
/// skipped at the end, of which no record tells, are those directly before it; their number is set to
/// `skipped` unless null.
VEL_C_API uint64_t velTraceReaderGetOffset(const VelStTraceReader* reader, uint64_t* skipped);

/// For a followed file: waits until there may be more to read, at most this many milliseconds, and returns
/// whether there may. The file may appear late, be truncated, or be replaced by another one of its name
/// (rotation), which is read from its start when the old one has been read to its end. Returns false at once
/// for any other input.
VEL_C_API bool velTraceReaderWait(VelStTraceReader* reader, uint32_t milliseconds);
/// Returns how often a followed file has been truncated or replaced. Offsets start again at 0 each time.
VEL_C_API uint64_t velTraceReaderGetRestarts(const VelStTraceReader* reader);

#if defined(VEL_HAS_CLASSES)

/// Reads a trace:
///
///   VelClTraceReader reader;
///   VelClStatus status = reader.open("service.trc");
///   for (const VelStTraceRecord& record : reader) use(record, reader.getMessage());
///   if (!reader.getStatus().isOk()) report(reader.getStatus().getText());
///
/// The members are described at the plain functions above. Only open reports failures by its result; a
/// failure to read ends the loop and is kept.
class VelClTraceReader {
 public:
  /// Constructs a reader without input.
  VelClTraceReader() noexcept = default;
  /// Moves the input, with its place, to another reader.
  VelClTraceReader(VelClTraceReader&& other) noexcept
      : reader_(std::exchange(other.reader_, nullptr)),
        record_(std::exchange(other.record_, nullptr)),
        status_(std::move(other.status_)) {}
  /// Same; closes what was open.
  VelClTraceReader& operator=(VelClTraceReader other) noexcept {
    std::swap(reader_, other.reader_);
    std::swap(record_, other.record_);
    std::swap(status_, other.status_);
    return *this;
  }
  VelClTraceReader(const VelClTraceReader&) = delete;
  ~VelClTraceReader() { velTraceReaderClose(reader_); }

  /// Open a file, or bytes in memory, instead of what was open before.
  VelClStatus open(std::string_view name, uint32_t reading = TRACE_READ_PLAIN) noexcept {
    close();
    return VelClStatus(velTraceReaderOpen(name.data(), name.size(), reading, &reader_));
  }
  VelClStatus openBytes(const void* bytes, size_t size, uint32_t reading = TRACE_READ_PLAIN) noexcept {
    close();
    return VelClStatus(velTraceReaderOpenBytes(bytes, size, reading, &reader_));
  }
  /// Closes the input.
  void close() noexcept {
    velTraceReaderClose(std::exchange(reader_, nullptr));
    record_ = nullptr;
    status_ = VelClStatus();
  }

  /// Reads the next record. Returns false at the end and after a failure, see getStatus.
  bool next() noexcept {
    record_ = nullptr;
    if (reader_ == nullptr) return false;
    if (VelStStatus* const failure = velTraceReaderNext(reader_, &record_)) status_ = VelClStatus(failure);
    return record_ != nullptr;
  }
  /// Selects the records to read; null for all. Call it after open.
  void select(const VelStTraceSelection* selection) noexcept {
    if (reader_ != nullptr) velTraceReaderSelect(reader_, selection);
  }
  /// Returns the current record; null before the first one and after the last.
  const VelStTraceRecord* getRecord() const noexcept { return record_; }
  /// Return the texts of the current record.
  std::string_view getFunction() const noexcept { return textOf(&velTraceReaderGetFunction); }
  std::string_view getMessage() const noexcept { return textOf(&velTraceReaderGetMessage); }
  /// Returns the failure that ended reading, or success.
  const VelClStatus& getStatus() const noexcept { return status_; }
  /// Waits for more of a followed file.
  bool wait(uint32_t milliseconds) noexcept {
    return reader_ != nullptr && velTraceReaderWait(reader_, milliseconds);
  }
  /// Return what was skipped, the offset, and how often a followed file was truncated or replaced.
  uint64_t getSkippedBytes(uint64_t* places = nullptr) const noexcept {
    return reader_ != nullptr ? velTraceReaderGetSkippedBytes(reader_, places) : 0;
  }
  uint64_t getOffset(uint64_t* skipped = nullptr) const noexcept {
    return reader_ != nullptr ? velTraceReaderGetOffset(reader_, skipped) : 0;
  }
  uint64_t getRestarts() const noexcept {
    return reader_ != nullptr ? velTraceReaderGetRestarts(reader_) : 0;
  }

  /// Visits the records that are left, one after another.
  class Iterator {
   public:
    /// What the standard library asks of an iterator.
    using iterator_category = std::input_iterator_tag;
    using value_type = VelStTraceRecord;        ///< the type of records
    using difference_type = ptrdiff_t;          ///< not used
    using pointer = const VelStTraceRecord*;    ///< a record
    using reference = const VelStTraceRecord&;  ///< a record

    /// Null is the end.
    explicit Iterator(VelClTraceReader* reader = nullptr) noexcept : reader_(reader) {}
    /// Return the current record.
    reference operator*() const noexcept { return *reader_->getRecord(); }
    pointer operator->() const noexcept { return reader_->getRecord(); }
    /// Read the next record.
    Iterator& operator++() noexcept {
      if (!reader_->next()) reader_ = nullptr;
      return *this;
    }
    void operator++(int) noexcept { ++*this; }
    /// True if both are at the end, or both are not.
    bool operator==(const Iterator& other) const noexcept { return reader_ == other.reader_; }

   private:
    VelClTraceReader* reader_;
  };
  /// Reads the next record and returns its iterator.
  Iterator begin() noexcept { return Iterator(next() ? this : nullptr); }
  Iterator end() const noexcept { return Iterator(); }

 private:
  std::string_view textOf(const char* (*get)(VelStTraceReader*, size_t*)) const noexcept {
    if (record_ == nullptr) return {};
    size_t size = 0;
    const char* const text = get(reader_, &size);
    return {text, size};
  }

  VelStTraceReader* reader_ = nullptr;
  const VelStTraceRecord* record_ = nullptr;
  VelClStatus status_;
};

#endif

#endif
