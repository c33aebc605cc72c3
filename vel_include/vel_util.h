// Text search, wildcard patterns, hexadecimal and binary dumps, random numbers, and bit arrays.
#ifndef VEL_UTIL_H_
#define VEL_UTIL_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <concepts>
#include <iosfwd>
#endif

/// True if the whole of `text` matches `pattern`, in which "*" matches any run of bytes, including an empty
/// one, and "?" matches exactly one byte. Null counts as "". "*" and "?" cannot be escaped. Without
/// `caseSensitive`, bytes are compared by their toupper values in the locale of the process. In the worst
/// case the time is proportional to the product of both lengths.
VEL_C_API bool velMatchesWildcardPattern(const char* pattern, const char* text, bool caseSensitive);

#if defined(VEL_HAS_CLASSES)

/// The base class of patterns that are searched for in texts. The pattern is not copied: the caller keeps it
/// alive.
class VEL_API VelClStringMatchABase {
 public:
  /// The derived class defines the meaning of `flag`.
  VelClStringMatchABase(const char* pattern, bool flag);
  virtual ~VelClStringMatchABase();

  /// Returns a pointer to the match in `text`, or null.
  virtual const char* getPattern(const char* text) const = 0;

 protected:
  /// The arguments of the constructor.
  const char* pattern_;
  bool flag_;
};

/// Finds the first occurrence of a plain text, using a bad-character shift table built once per pattern (R.
/// N. Horspool, Practical fast searching in strings, 1980). An empty pattern is found at the start of every
/// text.
class VEL_API VelClStringSearch : public VelClStringMatchABase {
 public:
  /// With `ignoreCase`, the object keeps a folded copy of the pattern (allocated by the memory manager) and
  /// compares bytes by their toupper values: the pattern's in the process locale at the time of construction,
  /// the text's in that at the time of the search. Only bytes above 0x7F can differ between the two.
  VelClStringSearch(const char* pattern, bool ignoreCase);
  VelClStringSearch(const VelClStringSearch&) = delete;
  VelClStringSearch& operator=(const VelClStringSearch&) = delete;
  ~VelClStringSearch() override;

  const char* getPattern(const char* text) const override;
  /// Searches the first `length` bytes, which need not be NUL-terminated.
  const char* getPattern(const char* text, unsigned int length) const;

 private:
  /// How far the search may advance for each byte found under the pattern's last one; the entry of byte 0 is
  /// the pattern's length.
  uint32_t shift_[256];
};

/// Matches whole texts against a wildcard pattern.
class VEL_API VelClStringMatchWildcards : public VelClStringMatchABase {
 public:
  // Intentional: callers rely on this flag having the opposite sense of VelClStringSearch's.
  /// See velMatchesWildcardPattern for the meaning of both arguments.
  /// @warning The flag has the opposite sense of that of VelClStringSearch, which ignores the case if it is
  /// set.
  VelClStringMatchWildcards(const char* pattern, bool caseSensitive);
  ~VelClStringMatchWildcards() override;

  /// Returns `text` itself if all of it matches, else null.
  const char* getPattern(const char* text) const override;
};

/// Placeholder for a regular expression search, which this library does not provide.
/// @warning It compiles and runs but never finds anything, not even a text without special characters: every
/// search returns null. Use VelClStringSearch, VelClStringMatchWildcards, or <regex>.
class VEL_API VelClGrep : public VelClStringMatchABase {
 public:
  /// The arguments are ignored.
  VelClGrep(const char* pattern, bool flag);
  VelClGrep(int options, const char* pattern);
  ~VelClGrep() override;

  const char* getPattern(const char* text) const override;
  /// Always returns null.
  const char* getPattern(const char* text, int options) const;

 private:
  void init(const char* pattern, int options);

  int32_t state_;
};

/// Renders a piece of memory as one line of text. The line is built at construction; nothing is allocated.
class VEL_API VelClStringRepresentationABase {
 public:
  virtual ~VelClStringRepresentationABase();

  /// Returns the line, NUL-terminated and without a line break; valid as long as this object.
  virtual const char* getAsCString() const = 0;

 protected:
  VelClStringRepresentationABase() = default;
  VelClStringRepresentationABase(const VelClStringRepresentationABase&) = default;
  VelClStringRepresentationABase& operator=(const VelClStringRepresentationABase&) = default;
};

/// A line of a hexadecimal dump, of 16 bytes at most; further bytes are ignored:
///
///   00000010: 41 42 43 44 45 46 47 48  49 4A __ __ __ __ __ __ | ABCDEFGHIJ______
///
/// The address has 8 to 16 digits. Underscores mark missing bytes; in the right column "." replaces every
/// byte that is not a printable ASCII character, independent of the locale.
class VEL_API VelClStrepHexDump : public VelClStringRepresentationABase {
 public:
  /// Omits the address. `data` may be null if `count` is 0.
  VelClStrepHexDump(const void* data, size_t count);
  /// Uses `offset` as the address.
  VelClStrepHexDump(size_t offset, const void* data, size_t count);
  VelClStrepHexDump(const VelClStrepHexDump&) = default;
  VelClStrepHexDump& operator=(const VelClStrepHexDump&) = default;
  ~VelClStrepHexDump() override;

  const char* getAsCString() const override;

 private:
  char text_[86];
};

/// A line of a binary dump, of 8 bytes at most, highest bit first:
///
///   00000008: 01000001 00001010 ________ ________  ________ ________ ________ ________ | A.______
class VEL_API VelClStrepBinDump : public VelClStringRepresentationABase {
 public:
  /// Without and with an address, see VelClStrepHexDump.
  VelClStrepBinDump(const void* data, size_t count);
  VelClStrepBinDump(size_t offset, const void* data, size_t count);
  VelClStrepBinDump(const VelClStrepBinDump&) = default;
  VelClStrepBinDump& operator=(const VelClStrepBinDump&) = default;
  ~VelClStrepBinDump() override;

  const char* getAsCString() const override;

 private:
  char text_[102];
};

// Intentional: the destructor is not virtual. The vtable has exactly one slot, and programs rely on that.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
/// An address as a stream prints it: "0x1ab", and "0" for null. Do not delete a derived object through it.
class VEL_API VelClStrepAddress {
 public:
  /// Accepts any address; the memory there is not read.
  explicit VelClStrepAddress(const void* address);

  /// Returns the text, valid as long as this object.
  virtual const char* getAsCString() const;

 private:
  char text_[19];
};
#pragma GCC diagnostic pop

/// Print `count` bytes as lines of a dump, each with its offset from `data`, to standard output or to
/// `stream`; print nothing for 0 bytes. velDump and velDumpHex are the same: hexadecimal. Lines are written
/// to the stream in batches.
VEL_API void velDump(const char* data, size_t count);
VEL_API void velDump(std::ostream& stream, const char* data, size_t count);
VEL_API void velDumpHex(const char* data, size_t count);
VEL_API void velDumpHex(std::ostream& stream, const char* data, size_t count);
VEL_API void velDumpBin(const char* data, size_t count);
VEL_API void velDumpBin(std::ostream& stream, const char* data, size_t count);

/// The element types that can be dumped besides characters: unsigned integers of 16, 32 and 64 bits.
/// `unsigned long` is dumped with its size on the platform.
template <typename Element>
concept VelDumpElement = std::same_as<Element, unsigned short> || std::same_as<Element, unsigned int> ||
    std::same_as<Element, unsigned long> || std::same_as<Element, unsigned long long>;

/// Same for `count` elements. Their bytes are shown in memory order.
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

/// Placeholders for dumps in debugging builds: in this library they accept the arguments of the functions
/// above and do nothing.
inline void velDebugImpDump(const char*, size_t) {}
inline void velDebugImpDump(std::ostream&, const char*, size_t) {}
template <VelDumpElement Element>
void velDebugImpDump(const Element*, size_t) {}
template <VelDumpElement Element>
void velDebugImpDump(std::ostream&, const Element*, size_t) {}

/// Do nothing, for any arguments that the functions above accept.
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

/// A fast generator of well distributed pseudo-random 32-bit numbers. Not for secrets: anyone who knows the
/// state can compute every number.
/// The generator is IBAA (indirection, barrel shift, accumulate and add) by Robert J. Jenkins Jr., ISAAC,
/// 1996, seeded by the multiplicative congruential generator of S. K. Park and K. W. Miller, 1988, in 32-bit
/// arithmetic that wraps. An object has about 2 KB, allocates nothing, and must not be used by two threads at
/// the same time. A copy continues with the same numbers as its original.
class VEL_API VelClRandomNumberGenerator {
 public:
  /// Seeds with the system's milliseconds: two objects constructed in the same clock tick give the same
  /// numbers.
  VelClRandomNumberGenerator();
  /// Equal seeds give equal numbers, on every system. The lowest bit is ignored: 6 and 7 are the same seed.
  explicit VelClRandomNumberGenerator(unsigned long seed);

  /// Returns the next number, from 0 to 4294967295.
  unsigned long getRandomNumber() const;
  /// Returns the next number scaled to the range 0 to `max`, both inclusive. Scaling truncates: `max` itself
  /// results only from 4294967295, once in 2^32 numbers. For a uniform distribution use
  /// VelClRandomBitGenerator with <random>.
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

/// Adapts the generator to the distributions and algorithms of the standard library: a
/// UniformRandomBitGenerator. It draws from `source`, which must outlive it.
///
///   VelClRandomNumberGenerator numbers(4711);
///   VelClRandomBitGenerator bits(numbers);
///   const int dots = std::uniform_int_distribution<int>(1, 6)(bits);
class VelClRandomBitGenerator {
 public:
  /// The members that the standard requires: the type of the numbers, their limits and the next number.
  using result_type = uint32_t;

  /// `source` is not copied.
  explicit VelClRandomBitGenerator(const VelClRandomNumberGenerator& source) : source_(&source) {}

  // The parentheses prevent expansion where windows.h has defined both names as macros.
  /// See result_type.
  static constexpr result_type(min)() { return 0; }
  static constexpr result_type(max)() { return 0xFFFFFFFF; }
  result_type operator()() { return static_cast<result_type>(source_->getRandomNumber()); }

 private:
  const VelClRandomNumberGenerator* source_;
};

/// The base class of objects that can be written to a byte stream and read back. Open streams in binary mode.
class VEL_API VelClPersistencyABase {
 public:
  virtual ~VelClPersistencyABase();

  /// Both report failures through the state of the stream.
  virtual void write(std::ostream& stream) const = 0;
  virtual void read(std::istream& stream) = 0;

 protected:
  VelClPersistencyABase() = default;
  VelClPersistencyABase(const VelClPersistencyABase&) = default;
  VelClPersistencyABase& operator=(const VelClPersistencyABase&) = default;
};

/// An array of bits, initially all 0, of a fixed size. It allocates size / 8 + 1 bytes from the memory
/// manager; bit 0 is the lowest bit of the first byte.
///
/// Persistent form: the number of bits in 8 bytes, low byte first, followed by the size / 8 + 1 bytes. An
/// array of more than 17179869175 bits cannot be persisted: the stream fails.
class VEL_API VelClBitArray : public VelClPersistencyABase {
 public:
  /// A failed allocation throws; in an assignment it leaves the array unchanged.
  explicit VelClBitArray(size_t bitCount);
  VelClBitArray(const VelClBitArray& other);
  /// Copies the size as well.
  VelClBitArray& operator=(const VelClBitArray& other);
  ~VelClBitArray() override;

  void write(std::ostream& stream) const override;
  // Intentional: a stream never makes the array allocate, so a hostile bit count costs no memory.
  /// Reads an array of the same size. From a stream with another size it adopts the number of bits, but reads
  /// no more bytes than this array has; bits without a byte are 0. If the number of bits is incomplete
  /// nothing changes.
  void read(std::istream& stream) override;

  // Intentional: whole bytes are compared, so 8 bits can equal 15, and can equal the start of 64.
  /// Compares as many bytes as this array has.
  bool operator==(const VelClBitArray& other) const;

  /// Returns the number of bits set by construction, assignment or reading.
  size_t getNumOfBits() const { return static_cast<size_t>(bitCount_); }
  /// Returns how many bits are 1.
  size_t getNumOfSetBits() const;
  /// Sets all bits to 0.
  void resetAll();

  /// Access one bit by its index from 0. If the index is too large, nothing changes and test returns false.
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
  /// A number of bits read from a stream can exceed the allocated bytes.
  bool hasBit(size_t index) const { return index < bitCount_ && index / 8 < allocated_; }
  uint64_t getNumOfBytes() const { return bitCount_ / 8 + 1; }
  uint64_t usableBytes() const;

  uint64_t bitCount_;
  unsigned char* bits_;
  uint64_t allocated_;  ///< in bytes
};

#endif

#endif
