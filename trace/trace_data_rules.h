// The rules about the length of an entry's data, which both the formatter and the reader check.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::trace {

/// Data of values, function records and the like, in bytes. Types whose data may
/// be longer are shown as a dump or as text.
inline constexpr std::size_t kMaxShortDataSize = 127;
/// The size of the nesting level, which is the data of function records.
inline constexpr std::uint32_t kNestingLevelSize = 4;

/// Why data does not suit its type.
enum class DataFault { None, AddressSize, TooLong, LevelSize, NotEmpty, ValueSize, UnknownType };

/// Checks the length of data against its type. Intentional: a type without data to show (DATA_NULL) may have
/// any short length.
DataFault dataFaultOf(unsigned int type, std::uint32_t length);

/// The same rule as a table, for those who check very many records.
class DataLengths {
 public:
  /// The table, which is made once.
  static const DataLengths& table();
  bool suit(unsigned int type, std::uint32_t length) const {
    const Row& row = rows_[type % kTypes];
    return length <= kMaxShortDataSize ? (row.suits[length / 64] >> length % 64 & 1) != 0 : row.hasAnyLength;
  }

 private:
  DataLengths();

  static constexpr std::size_t kTypes = 32;  ///< as many as a record has bits for
  struct Row {
    std::uint64_t suits[2] = {};  ///< a bit for each short length
    bool hasAnyLength = false;
  };
  Row rows_[kTypes];
};

}  // namespace vel::trace
