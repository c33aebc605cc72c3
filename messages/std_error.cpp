// The standard category of the library's error identifiers, and the standard conditions of error classes.
#include "vel_include/vel_std_error.h"

#include <algorithm>
#include <string>

#include "vel_include/vel_helpers.h"
#include "vel_include/vel_messages.h"

namespace {

class Category : public std::error_category {
 public:
  const char* name() const noexcept override { return "qamc5032"; }
  std::string message(int value) const override {
    const auto id = static_cast<std::uint32_t>(value);
    const unsigned int text = velErrorGetIdAsMessageId(id);
    // Not from a catalog: the name of an identifier is the same in every language.
    if (text != 0) return velMsgCatGetBuiltInTable(nullptr)[text];
    char number[12];
    velULtoa(id, number);
    return number;
  }
};

struct ConditionRow {
  VelEnErrorClass errorClass;
  std::errc condition;
};

constexpr ConditionRow kConditions[] = {
    {VelEnErrorClass::FUNCTION_NOT_SUPPORTED, std::errc::function_not_supported},
    {VelEnErrorClass::FUNCTION_NOT_ENABLED, std::errc::operation_not_permitted},
    {VelEnErrorClass::OUT_OF_MEMORY, std::errc::not_enough_memory},
    {VelEnErrorClass::INVALID_DATA, std::errc::invalid_argument},
    {VelEnErrorClass::DATA_OUT_OF_BOUNDS, std::errc::result_out_of_range},
    {VelEnErrorClass::INVALID_POINTER, std::errc::bad_address},
    {VelEnErrorClass::UNKNOWN_PROCESS, std::errc::no_such_process},
    {VelEnErrorClass::IO_PROBLEM, std::errc::io_error},
    {VelEnErrorClass::IO_WRITE_PROBLEM, std::errc::io_error},
    {VelEnErrorClass::IO_READ_PROBLEM, std::errc::io_error},
    {VelEnErrorClass::IO_PERMISSION_DENIED, std::errc::permission_denied},
    {VelEnErrorClass::IO_NOT_EXISTENT, std::errc::no_such_file_or_directory},
    {VelEnErrorClass::IO_ALREADY_IN_USE, std::errc::file_exists},
    {VelEnErrorClass::IO_STILL_IN_USE, std::errc::device_or_resource_busy},
    {VelEnErrorClass::IO_INVALID_NAME, std::errc::invalid_argument},
};

}  // namespace

const std::error_category& velErrorCategory() noexcept {
  static const Category category;
  return category;
}

std::error_condition velErrorCondition(VelEnErrorClass errorClass) noexcept {
  const auto* const row = std::ranges::find(kConditions, errorClass, &ConditionRow::errorClass);
  return row != std::end(kConditions) ? std::make_error_condition(row->condition) : std::error_condition();
}
