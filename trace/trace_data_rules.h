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

}  // namespace vel::trace
