// Small functions that the library and its users share: decimal text, text search, sleeping,
// clocks, byte order and the library's identity.
#ifndef VEL_HELPERS_H_
#define VEL_HELPERS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

/// The library's level, "VELLibR5-24", and the date of that level; literals.
VEL_C_API const char* velLibraryGetLevel(void);
VEL_C_API const char* velLibraryGetTod(void);
/// Whether this is a build for users; always true.
VEL_C_API bool velLibraryIsShipCode(void);

/// Decimal text of a number into the caller's buffer: 12 bytes for the 32-bit functions and 21
/// for the 64-bit ones always suffice. They return the number of characters before the
/// terminating NUL. velLtoa and velULtoa take the low 32 bits where long is wider.
VEL_C_API unsigned int velItoa(int value, char* out);
VEL_C_API unsigned int velLtoa(long value, char* out);
VEL_C_API unsigned int velULtoa(unsigned long value, char* out);
VEL_C_API unsigned int velI64toa(long long value, char* out);
VEL_C_API unsigned int velW64toa(unsigned long long value, char* out);

/// The first occurrence of `pattern` in `text`, or null. Ignoring case it is one forward pass that
/// never compares a character twice: after a mismatch it goes on behind the mismatching
/// character, so that "ab" is not found in "aab".
VEL_C_API char* velStrFind(const char* text, const char* pattern, bool ignoreCase);
/// How many times `c` occurs in `text`.
VEL_C_API unsigned int velStrCount(const char* text, char c);
/// Copies the characters before the first `stop`, or all of them, and terminates `out`, which
/// must have room for them; returns their number.
VEL_C_API unsigned int velStrCopyUntil(char* out, const char* text, char stop);

/// Suspend the calling thread. The count is converted to milliseconds in 32-bit arithmetic and
/// wraps there: at most about 49.7 days.
VEL_C_API void velSleepMilliSeconds(unsigned long count);
VEL_C_API void velSleepSeconds(unsigned long count);
VEL_C_API void velSleepMinutes(unsigned long count);
VEL_C_API void velSleepHours(unsigned long count);

/// Milliseconds since the system started, 32 bits: wraps after about 49.7 days. It advances with the system's
/// tick, by 1 to 16 at a time; VelClTiming measures finer.
VEL_C_API unsigned long velGetTimeStamp(void);

/// The family of the operating system: 512 for Windows NT and its successors, 513 for consumer
/// Windows, 514 for a 16-bit host, 0 for anything else.
VEL_C_API unsigned int velGetOperatingSystemId(void);

/// Change the byte order of 16-bit units in place. An odd last byte is left alone. This library
/// runs on little-endian hosts, so the two conversions between host and little do nothing.
VEL_C_API void velEndianConvertW16LittleToBig(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16BigToLittle(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16HostToBig(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16BigToHost(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16HostToLittle(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16LittleToHost(void* buffer, size_t byteCount);

#if defined(VEL_HAS_CLASSES)

/// A stopwatch on the system's high-resolution counter, which never runs backwards. It runs from
/// its construction on. Where the counter cannot be read all times are 0.0.
class VEL_API VelClTiming {
 public:
  VelClTiming();

  /// Seconds since a fixed but unknown moment, usually the system's start.
  double wallClockTime() const;
  /// Measures from now on.
  void start();
  /// Seconds since the construction or the last start.
  double elapsed() const;
  /// The elapsed seconds, and measures from now on: no time is lost between two laps.
  double restart();

 private:
  /// Clears the state; with `readFrequency` reads the counter's frequency too.
  void init(bool readFrequency);

  int64_t frequency_;  ///< counts per second, 0 without a counter
  double start_;       ///< wallClockTime of the last start
};

#endif

#endif
