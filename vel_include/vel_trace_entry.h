// A single trace entry: its properties, its record in ring and file, and how it is read back.
#ifndef VEL_TRACE_ENTRY_H_
#define VEL_TRACE_ENTRY_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>
#endif

#if defined(__cplusplus)

/// The level of detail of an entry. A filter passes entries up to its own level.
enum class VelEnTraceDetail : int32_t {
  OFF = 0,  ///< for an entry: passes every filter; for a filter: passes only such entries
  /// From the fewest entries to all entries.
  LOW = 1,
  MEDIUM = 2,
  HIGH = 3
};

/// The content of an entry and, for data, how it is rendered.
enum class VelEnTraceDataType : int32_t {
  NOTHING = 0,         ///< no type; invalid in a trace file
  FUNCTION_ENTRY = 1,  ///< the data is the nesting level, 4 bytes
  FUNCTION_EXIT = 2,   ///< the data is the nesting level, 4 bytes
  DATA_NONE = 3,       ///< a message only; its data pointer must not be null, its size must be 0
  DATA = 4,            ///< any bytes, shown as a dump
  DATA_CLIPPED = 5,    ///< replaces any type if the data is longer than the ring
  DATA_NULL = 6,       ///< replaces any type if the data pointer is null
  ADDRESS = 7,         ///< the 8 bytes of a pointer
  C_STRING = 8,        ///< characters without their terminator
  UTF16_STRING = 9,    ///< shown as a dump
  BOOLEAN_VALUE = 10,  ///< 1 byte
  /// Numbers of this many bits, little-endian.
  SIGNED_8 = 11,
  UNSIGNED_8 = 12,
  SIGNED_16 = 13,
  UNSIGNED_16 = 14,
  SIGNED_32 = 15,
  UNSIGNED_32 = 16,
  SIGNED_64 = 17,
  UNSIGNED_64 = 18,
  FLOAT_32 = 19,
  FLOAT_64 = 20,
  LONG_DOUBLE =
      21  ///< 8, 10, 12 or 16 bytes in the format of long double; if more than 8, the first 10 are used
};

#else

/// C programs pass the numbers of the C++ enumerations.
typedef int32_t VelEnTraceDetail;
typedef int32_t VelEnTraceDataType;

#endif

#if defined(VEL_HAS_CLASSES)

class VelClTraceEnvironment;

/// One event in the format of the ring and the file, little-endian and without padding:
///
///   byte  0     bits 0-4 data type, bit 5 texts are compressed, bits 6-7 detail
///         1     component id
///         2, 3  lengths of message and origin as stored
///         4     time stamp in milliseconds, process id, thread id, length of the data: 4 bytes each
///         20    message, origin, data
///
/// Compressed texts have 6 bits per character, high bits first: the index of the character in "
/// ,&*:_~()<>A-Za-z", or 63 followed by its 8 bits. The last byte is padded with 1 bits.
class VEL_API VelClTraceEntry {
 public:
  /// Builds the record. The data is not copied and must be valid until the entry is written. See
  /// velTraceDump.
  VelClTraceEntry(const VelClTraceEnvironment& environment, VelEnTraceDetail detail,
                  unsigned short componentId, VelEnTraceDataType type, const char* origin,
                  const char* message, const void* data, size_t size);
  VelClTraceEntry(const VelClTraceEntry&) = delete;
  VelClTraceEntry& operator=(const VelClTraceEntry&) = delete;
  virtual ~VelClTraceEntry();

  /// Return the fields of byte 0 of the record.
  VelEnTraceDataType getType() const { return static_cast<VelEnTraceDataType>(record_[0] & 0x1F); }
  VelEnTraceDetail getDetail() const { return static_cast<VelEnTraceDetail>(record_[0] >> 6); }
  bool isCompressed() const { return (record_[0] & 0x20) != 0; }
  // Intentional: callers rely on a new type clearing the compression flag.
  /// Sets the type and preserves only the detail: call setCompressFlag() afterwards.
  void setType(VelEnTraceDataType type);
  void setDetail(VelEnTraceDetail detail);
  /// Marks the texts as compressed.
  void setCompressFlag() { record_[0] |= 0x20; }

  /// Return the numbers in the record.
  unsigned short getComponentId() const { return record_[1]; }
  unsigned long getTimeStamp() const { return numberAt(4); }
  unsigned int getProcessId() const { return numberAt(8); }
  unsigned int getThreadId() const { return numberAt(12); }
  /// Returns the length of the data in bytes.
  unsigned int getDumpDataLength() const { return numberAt(16); }
  /// Returns the data; null in an entry read from a file.
  const void* getDumpData() const { return dumpData_; }

  /// Return the record, and its length in bytes without the data.
  const char* getEntryData() const { return reinterpret_cast<const char*>(record_); }
  size_t getSizeOfEntryData() const { return static_cast<size_t>(entrySize_); }
  /// Return the texts as stored, without a terminating NUL, and their lengths in bytes.
  const char* getCompressedMessage() const { return getEntryData() + kHeadLength; }
  unsigned int getCompressedMessageLength() const { return record_[2]; }
  const char* getCompressedOrigin() const { return getCompressedMessage() + record_[2]; }
  unsigned int getCompressedOriginLength() const { return record_[3]; }

 protected:
  /// Sizes in bytes: of the fixed part of the record, and the maximum for each text as stored.
  static constexpr size_t kHeadLength = 20;
  static constexpr size_t kMaxTextLength = 255;

  /// Constructs an empty record: all bytes are 0.
  explicit VelClTraceEntry(const VelClTraceEnvironment& environment);
  /// Reads a 4-byte number of the record.
  uint32_t numberAt(size_t offset) const {
    return record_[offset] | static_cast<uint32_t>(record_[offset + 1]) << 8 |
           static_cast<uint32_t>(record_[offset + 2]) << 16 |
           static_cast<uint32_t>(record_[offset + 3]) << 24;
  }

  /// The record is described above.
  const VelClTraceEnvironment* environment_;
  unsigned char
      record_[kHeadLength + 2 * kMaxTextLength + 2 + 8];  ///< sized for compression, which stores whole words
  uint64_t entrySize_;
  const void* dumpData_;
};

/// An entry read back from a trace file.
class VEL_API VelClTraceFileEntry : public VelClTraceEntry {
 public:
  /// The environment accumulates the compression rate.
  explicit VelClTraceFileEntry(const VelClTraceEnvironment& environment);
  ~VelClTraceFileEntry() override;

  /// Reads an entry without its data, which the caller reads or skips. Returns false at the end of the file:
  /// the record is then all 0 if its fixed part was incomplete, and contains the bytes that were read if its
  /// texts were.
  bool read(std::istream& stream);

  /// Return the decoded texts, NUL-terminated, and their lengths.
  const char* getOrigin() const { return origin_; }
  unsigned int getOriginLength() const { return originLength_; }
  const char* getMessage() const { return message_; }
  unsigned int getMessageLength() const { return messageLength_; }

 private:
  unsigned int decode(const char* stored, unsigned int length, char* text) const;

  char origin_[512];
  uint32_t originLength_;
  char message_[512];
  uint32_t messageLength_;
};

#endif

#endif
