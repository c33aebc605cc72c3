// Small helper functions that the library shares with its users: numbers as decimal text, text search,
// sleeping, clocks, byte order and the identity of the library.
#ifndef VEL_HELPERS_H_
#define VEL_HELPERS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

/// Return the level of the library, "VELLibR5-24", and the date of that level; both are literals.
VEL_C_API const char* velLibraryGetLevel(void);
VEL_C_API const char* velLibraryGetTod(void);
/// Returns true for a release build; always true.
VEL_C_API bool velLibraryIsShipCode(void);

/// Write a number as decimal text into the caller's buffer. 12 bytes for the 32-bit functions and 21 for the
/// 64-bit ones always suffice. They return the number of characters before the terminating NUL. Where long is
/// wider, velLtoa and velULtoa convert its low 32 bits.
VEL_C_API unsigned int velItoa(int value, char* out);
VEL_C_API unsigned int velLtoa(long value, char* out);
VEL_C_API unsigned int velULtoa(unsigned long value, char* out);
VEL_C_API unsigned int velI64toa(long long value, char* out);
VEL_C_API unsigned int velW64toa(unsigned long long value, char* out);

/// Returns the first occurrence of `pattern` in `text`, or null.
/// Intentional: with `ignoreCase` the search is one forward pass that never compares a character twice.
/// @warning With `ignoreCase` a text that is there may not be found. After a mismatch the search continues
/// after the mismatching character, so velStrFind("aab", "ab", true) returns null. It is reliable only if the
/// first character of the pattern does not occur again in the pattern and is not repeated in the text before
/// a match. VelClStringSearch finds every text.
VEL_C_API char* velStrFind(const char* text, const char* pattern, bool ignoreCase);
/// Returns how many times `c` occurs in `text`.
VEL_C_API unsigned int velStrCount(const char* text, char c);
/// Copies the characters before the first `stop`, or all of them if the text does not contain it, and a
/// terminating NUL to `out`, which must have room for them. Returns the number of characters.
VEL_C_API unsigned int velStrCopyUntil(char* out, const char* text, char stop);

/// Suspend the calling thread. The time is converted to milliseconds in 32-bit arithmetic, which wraps after
/// about 49.7 days.
VEL_C_API void velSleepMilliSeconds(unsigned long count);
VEL_C_API void velSleepSeconds(unsigned long count);
VEL_C_API void velSleepMinutes(unsigned long count);
VEL_C_API void velSleepHours(unsigned long count);

/// Milliseconds since the system started, 32 bits: wraps after about 49.7 days. The value advances with the
/// clock tick of the system, by 1 to 16 at a time; VelClTiming has a finer resolution.
VEL_C_API unsigned long velGetTimeStamp(void);

/// Returns the family of the operating system: 512 for Windows NT and its successors, 513 for consumer
/// Windows, 514 for a 16-bit host, 0 for anything else.
VEL_C_API unsigned int velGetOperatingSystemId(void);

/// Swap the bytes of 16-bit units in place, if the two byte orders differ. `byteCount` is in bytes; an odd
/// last byte is left unchanged. The library runs on little-endian hosts, so the two conversions between host
/// and little-endian do nothing.
VEL_C_API void velEndianConvertW16LittleToBig(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16BigToLittle(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16HostToBig(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16BigToHost(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16HostToLittle(void* buffer, size_t byteCount);
VEL_C_API void velEndianConvertW16LittleToHost(void* buffer, size_t byteCount);

#if defined(VEL_HAS_CLASSES)

/// A stopwatch on the system's high-resolution counter, which is monotonic. It starts at construction. If the
/// counter cannot be read all times are 0.0.
class VEL_API VelClTiming {
 public:
  VelClTiming();

  /// Returns seconds since a fixed but arbitrary moment, usually the start of the system.
  double wallClockTime() const;
  /// Restarts the measurement now.
  void start();
  /// Returns seconds since construction or the last start.
  double elapsed() const;
  /// Returns the elapsed seconds and restarts the measurement at the same moment, so no time is lost between
  /// two laps.
  double restart();

 private:
  /// Clears the state; with `readFrequency` also reads the counter's frequency.
  void init(bool readFrequency);

  int64_t frequency_;  ///< counts per second, 0 if the system does not provide a counter
  double start_;       ///< wallClockTime of the last start
};

#endif

#endif
