// Searching a text for a pattern, matching names against wildcards, dumps, random numbers, and arrays of
// bits.
#ifndef VEL_UTIL_H_
#define VEL_UTIL_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <concepts>
#include <iosfwd>
#endif

/// Whether the whole of `text` matches `pattern`, in which "*" stands for any run of bytes, also none,
/// and "?" for exactly one byte. Null counts as "". There is no escape character. Without `caseSensitive`
/// bytes are compared by their toupper values in the process's locale. Takes time in proportion to the
/// product of both lengths at the worst.
VEL_C_API bool velMatchesWildcardPattern(const char* pattern, const char* text, bool caseSensitive);

#if defined(VEL_HAS_CLASSES)

/// A pattern that finds itself in texts. The pattern is not copied: the caller keeps it alive.
class VEL_API VelClStringMatchABase {
 public:
  /// What `flag` means is the derived class's matter.
  VelClStringMatchABase(const char* pattern, bool flag);
  virtual ~VelClStringMatchABase();

  /// A pointer into `text` to where the pattern was found, or null.
  virtual const char* getPattern(const char* text) const = 0;

 protected:
  /// What the constructor was given.
  const char* pattern_;
  bool flag_;
};

/// Finds the first occurrence of a plain text, by a bad-character shift table built once per
/// pattern (after R. N. Horspool, Practical fast searching in strings, 1980). An empty
/// pattern is found at the start of every text.
class VEL_API VelClStringSearch : public VelClStringMatchABase {
 public:
  /// Ignoring case, a folded copy of the pattern is kept (allocated by the memory manager), and
  /// bytes are compared by their toupper values: the pattern's in the process's locale of this moment, the
  /// text's in that of the search. Only bytes above 0x7F can differ between the two.
  VelClStringSearch(const char* pattern, bool ignoreCase);
  VelClStringSearch(const VelClStringSearch&) = delete;
  VelClStringSearch& operator=(const VelClStringSearch&) = delete;
  ~VelClStringSearch() override;

  const char* getPattern(const char* text) const override;
  /// Searches the first `length` bytes, which need not be terminated.
  const char* getPattern(const char* text, unsigned int length) const;

 private:
  /// How far the search may move on when a byte lies under the pattern's last one; the entry of
  /// byte 0 is the pattern's length.
  uint32_t shift_[256];
};

/// Matches whole texts against a wildcard pattern.
class VEL_API VelClStringMatchWildcards : public VelClStringMatchABase {
 public:
  // The flag has the opposite sense of VelClStringSearch's. Keep.
  /// See velMatchesWildcardPattern.
  VelClStringMatchWildcards(const char* pattern, bool caseSensitive);
  ~VelClStringMatchWildcards() override;

  /// `text` itself when all of it matches, else null.
  const char* getPattern(const char* text) const override;
};

/// The place of a regular expression search, which this library does not have: it never finds
/// anything.
class VEL_API VelClGrep : public VelClStringMatchABase {
 public:
  /// The arguments have no effect.
  VelClGrep(const char* pattern, bool flag);
  VelClGrep(int options, const char* pattern);
  ~VelClGrep() override;

  const char* getPattern(const char* text) const override;
  /// Always null.
  const char* getPattern(const char* text, int options) const;

 private:
  void init(const char* pattern, int options);

  int32_t state_;
};

/// A piece of memory as one line of text, made at construction; nothing is allocated.
class VEL_API VelClStringRepresentationABase {
 public:
  virtual ~VelClStringRepresentationABase();

  /// The line, terminated and without a line break; valid as long as this object.
  virtual const char* getAsCString() const = 0;

 protected:
  VelClStringRepresentationABase() = default;
  VelClStringRepresentationABase(const VelClStringRepresentationABase&) = default;
  VelClStringRepresentationABase& operator=(const VelClStringRepresentationABase&) = default;
};

/// A line of a hexadecimal dump, 16 bytes at most; whatever is behind them is left out:
///
///   00000010: 41 42 43 44 45 46 47 48  49 4A __ __ __ __ __ __ | ABCDEFGHIJ______
///
/// The address has 8 to 16 digits. Underscores stand where bytes are missing; on the right a "." stands for
/// every byte that is no printable ASCII character, whatever the locale.
class VEL_API VelClStrepHexDump : public VelClStringRepresentationABase {
 public:
  /// Without an address. `data` may be null when `count` is 0.
  VelClStrepHexDump(const void* data, size_t count);
  /// With the address `offset`.
  VelClStrepHexDump(size_t offset, const void* data, size_t count);
  VelClStrepHexDump(const VelClStrepHexDump&) = default;
  VelClStrepHexDump& operator=(const VelClStrepHexDump&) = default;
  ~VelClStrepHexDump() override;

  const char* getAsCString() const override;

 private:
  char text_[86];
};

/// A line of a binary dump, 8 bytes at most, highest bit first:
///
///   00000008: 01000001 00001010 ________ ________  ________ ________ ________ ________ | A.______
class VEL_API VelClStrepBinDump : public VelClStringRepresentationABase {
 public:
  /// Without an address, and with one; see VelClStrepHexDump.
  VelClStrepBinDump(const void* data, size_t count);
  VelClStrepBinDump(size_t offset, const void* data, size_t count);
  VelClStrepBinDump(const VelClStrepBinDump&) = default;
  VelClStrepBinDump& operator=(const VelClStrepBinDump&) = default;
  ~VelClStrepBinDump() override;

  const char* getAsCString() const override;

 private:
  char text_[102];
};

// The destructor is not virtual: the table of virtual functions has one slot, and programs rely on that.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
/// An address as a stream prints it: "0x1ab", and "0" for null. Do not delete a derived object through it.
class VEL_API VelClStrepAddress {
 public:
  /// Any address; nothing is read there.
  explicit VelClStrepAddress(const void* address);

  /// Valid as long as this object.
  virtual const char* getAsCString() const;

 private:
  char text_[19];
};
#pragma GCC diagnostic pop

/// Print `count` bytes in the lines above, each with its offset from `data`, to standard output or to
/// `stream`; nothing for 0 bytes. velDump and velDumpHex are the same: hexadecimal. Many lines are
/// written at once.
VEL_API void velDump(const char* data, size_t count);
VEL_API void velDump(std::ostream& stream, const char* data, size_t count);
VEL_API void velDumpHex(const char* data, size_t count);
VEL_API void velDumpHex(std::ostream& stream, const char* data, size_t count);
VEL_API void velDumpBin(const char* data, size_t count);
VEL_API void velDumpBin(std::ostream& stream, const char* data, size_t count);

/// What can be dumped beside characters: unsigned numbers of 16, 32 and 64 bits. `unsigned long` counts with
/// the size that it has.
template <typename Element>
concept VelDumpElement = std::same_as<Element, unsigned short> || std::same_as<Element, unsigned int> ||
    std::same_as<Element, unsigned long> || std::same_as<Element, unsigned long long>;

/// The same for `count` elements. Their bytes are shown as they lie in memory.
template <VelDumpElement Element>
void velDump(const Element* data, size_t count) {
  velDump(reinterpret_cast<const char*>(data), count * sizeof(Element));
}
template <VelDumpElement Element>
void velDump(std::ostream& stream, const Element* data, size_t count) {
  velDump(stream, reinterpret_cast<const char*>(data), count * sizeof(Element));
}
template <VelDumpElement Element>
void velDumpHex(const Element* data, size_t count) {
  velDump(data, count);
}
template <VelDumpElement Element>
void velDumpHex(std::ostream& stream, const Element* data, size_t count) {
  velDump(stream, data, count);
}
template <VelDumpElement Element>
void velDumpBin(const Element* data, size_t count) {
  velDumpBin(reinterpret_cast<const char*>(data), count * sizeof(Element));
}
template <VelDumpElement Element>
void velDumpBin(std::ostream& stream, const Element* data, size_t count) {
  velDumpBin(stream, reinterpret_cast<const char*>(data), count * sizeof(Element));
}

/// The places of dumps for debugging; in this library they take the arguments of the functions above and do
/// nothing.
inline void velDebugImpDump(const char*, size_t) {}
inline void velDebugImpDump(std::ostream&, const char*, size_t) {}
template <VelDumpElement Element>
void velDebugImpDump(const Element*, size_t) {}
template <VelDumpElement Element>
void velDebugImpDump(std::ostream&, const Element*, size_t) {}

/// Nothing, for whatever the functions above take.
template <typename... Arguments>
requires requires(Arguments&&... arguments) {
  velDebugImpDump(arguments...);
}
void velDebugDump(Arguments&&...) {}
template <typename... Arguments>
requires requires(Arguments&&... arguments) {
  velDebugImpDump(arguments...);
}
void velDebugDumpHex(Arguments&&...) {}
template <typename... Arguments>
requires requires(Arguments&&... arguments) {
  velDebugImpDump(arguments...);
}
void velDebugDumpBin(Arguments&&...) {}

/// Pseudo-random 32-bit numbers, fast and well spread, but not for secrets: who knows the state knows all
/// numbers. The generator is IBAA (indirection, barrel shift, accumulate and add) by Robert J. Jenkins Jr.,
/// ISAAC, 1996, filled by the multiplicative congruential generator of S. K. Park and K. W. Miller, 1988, in
/// 32-bit arithmetic that wraps. An object takes about 2 KB, allocates nothing and must not be used by two
/// threads at once. A copy goes on with the same numbers as its original.
class VEL_API VelClRandomNumberGenerator {
 public:
  /// Seeds with the system's milliseconds: two objects of the same tick give the same numbers.
  VelClRandomNumberGenerator();
  /// Equal seeds give equal numbers, on every system. The lowest bit does not count: 6 and 7 are the same
  /// seed.
  explicit VelClRandomNumberGenerator(unsigned long seed);

  /// The next number, from 0 to 4294967295.
  unsigned long getRandomNumber() const;
  /// The next number scaled to 0 to `max`, both included. Scaling truncates: `max` itself comes only from
  /// 4294967295, once in 2^32 numbers. For evenly spread ranges use VelClRandomBitGenerator with <random>.
  unsigned long getRandomNumber(unsigned long max) const;

 private:
  void init(unsigned long seed) const;
  void ibaa() const;
  uint32_t next() const;

  mutable uint32_t memory_[256];
  mutable uint32_t results_[256];  ///< handed out from the last to the first
  mutable uint32_t accumulator_;
  mutable uint32_t previous_;
  mutable uint32_t unused_;
};

/// A random number generator in the form that the standard library's distributions and algorithms take: a
/// UniformRandomBitGenerator. It draws from `source`, which must live longer.
///
///   VelClRandomNumberGenerator numbers(4711);
///   VelClRandomBitGenerator bits(numbers);
///   const int dots = std::uniform_int_distribution<int>(1, 6)(bits);
class VelClRandomBitGenerator {
 public:
  /// The form that the standard asks for: numbers of 32 bits, their limits and the next one.
  using result_type = uint32_t;

  /// `source` is not copied.
  explicit VelClRandomBitGenerator(const VelClRandomNumberGenerator& source) : source_(&source) {}

  // In parentheses, because windows.h may have made macros of both names.
  /// See result_type.
  static constexpr result_type(min)() { return 0; }
  static constexpr result_type(max)() { return 0xFFFFFFFF; }
  result_type operator()() { return static_cast<result_type>(source_->getRandomNumber()); }

 private:
  const VelClRandomNumberGenerator* source_;
};

/// What can be written to a stream of bytes and read from it again. Open streams in binary mode.
class VEL_API VelClPersistencyABase {
 public:
  virtual ~VelClPersistencyABase();

  /// Both report failures through the stream's state.
  virtual void write(std::ostream& stream) const = 0;
  virtual void read(std::istream& stream) = 0;

 protected:
  VelClPersistencyABase() = default;
  VelClPersistencyABase(const VelClPersistencyABase&) = default;
  VelClPersistencyABase& operator=(const VelClPersistencyABase&) = default;
};

/// An array of bits, all 0 at first. Its size is fixed; it takes size / 8 + 1 bytes from the memory manager,
/// bit 0 being the lowest bit of the first byte.
///
/// Persistent form: the number of bits in 8 bytes, low byte first, and the size / 8 + 1 bytes. Arrays above
/// 17179869175 bits cannot be persisted: the stream fails.
class VEL_API VelClBitArray : public VelClPersistencyABase {
 public:
  /// Allocation failures throw and, in an assignment, leave the array as it was.
  explicit VelClBitArray(size_t bitCount);
  VelClBitArray(const VelClBitArray& other);
  /// Takes over the other's size, too.
  VelClBitArray& operator=(const VelClBitArray& other);
  ~VelClBitArray() override;

  void write(std::ostream& stream) const override;
  // The bytes are never allocated anew and as many are read as this array had. Keep.
  /// Reads an array of the same size. From another one's stream it takes over the number of bits, but no more
  /// bytes than it has; bits without a byte are 0. Without a complete number of bits nothing changes.
  void read(std::istream& stream) override;

  // Only bytes count, as many as this array has: 8 bits can equal 15, and 8 bits can equal the start of 64.
  /// Compares bytes, as many as this array has.
  bool operator==(const VelClBitArray& other) const;

  /// Of the construction, an assignment or a read.
  size_t getNumOfBits() const { return static_cast<size_t>(bitCount_); }
  /// How many bits are 1.
  size_t getNumOfSetBits() const;
  /// Makes all bits 0.
  void resetAll();

  /// Indexes from 0; where there is no bit, nothing changes and test is false.
  bool test(size_t index) const { return hasBit(index) && (bits_[index / 8] & maskOf(index)) != 0; }
  void set(size_t index) {
    if (hasBit(index)) bits_[index / 8] = static_cast<unsigned char>(bits_[index / 8] | maskOf(index));
  }
  void reset(size_t index) {
    if (hasBit(index)) bits_[index / 8] = static_cast<unsigned char>(bits_[index / 8] & ~maskOf(index));
  }
  void flip(size_t index) {
    if (hasBit(index)) bits_[index / 8] = static_cast<unsigned char>(bits_[index / 8] ^ maskOf(index));
  }

 private:
  static unsigned int maskOf(size_t index) { return 1U << index % 8; }
  /// A number of bits from a stream can promise more than there are bytes.
  bool hasBit(size_t index) const { return index < bitCount_ && index / 8 < allocated_; }
  uint64_t getNumOfBytes() const { return bitCount_ / 8 + 1; }
  uint64_t usableBytes() const;

  uint64_t bitCount_;
  unsigned char* bits_;
  uint64_t allocated_;  ///< in bytes
};

#endif

#endif
