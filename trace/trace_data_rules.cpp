#include "trace/trace_data_rules.h"

#include "trace/trace_data_text.h"
#include "vel_include/vel_trace_entry.h"

namespace vel::trace {

DataFault dataFaultOf(unsigned int type, std::uint32_t length) {
  switch (static_cast<VelEnTraceDataType>(type)) {
    case VelEnTraceDataType::DATA:
    case VelEnTraceDataType::DATA_CLIPPED:
    case VelEnTraceDataType::UTF16_STRING:
    case VelEnTraceDataType::C_STRING:
      return DataFault::None;
    case VelEnTraceDataType::ADDRESS:
      return length == sizeof(std::uint64_t) ? DataFault::None : DataFault::AddressSize;
    default:
      break;
  }
  if (length > kMaxShortDataSize) return DataFault::TooLong;
  switch (static_cast<VelEnTraceDataType>(type)) {
    case VelEnTraceDataType::FUNCTION_ENTRY:
    case VelEnTraceDataType::FUNCTION_EXIT:
      return length == kNestingLevelSize ? DataFault::None : DataFault::LevelSize;
    case VelEnTraceDataType::DATA_NONE:
      return length == 0 ? DataFault::None : DataFault::NotEmpty;
    case VelEnTraceDataType::DATA_NULL:
      return DataFault::None;
    default:
      if (!isValueType(type)) return DataFault::UnknownType;
      return fitsValue(type, length) ? DataFault::None : DataFault::ValueSize;
  }
}

const DataLengths& DataLengths::table() {
  static const DataLengths lengths;
  return lengths;
}

DataLengths::DataLengths() {
  for (unsigned int type = 0; type < kTypes; ++type) {
    Row& row = rows_[type];
    for (std::uint32_t length = 0; length <= kMaxShortDataSize; ++length)
      if (dataFaultOf(type, length) == DataFault::None)
        row.suits[length / 64] |= std::uint64_t{1} << length % 64;
    row.hasAnyLength = dataFaultOf(type, kMaxShortDataSize + 1) == DataFault::None;
  }
}

}  // namespace vel::trace
