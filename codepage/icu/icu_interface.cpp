// VelClIcuInterface: translates ICU's status numbers into identifiers, classes, actions and severities of the
// library, by a table that is generated from icu_errors.tsv.
#include <algorithm>
#include <iterator>

#include "vel_include/vel_codepage.h"

struct VelClIcuInterface::_VelStIcuRc2VelIdMap {
  std::int32_t status;
  std::uint32_t errorId;
  VelEnErrorClass errorClass;
  VelEnErrorAction action;
  VelEnErrorSeverity severity;
};

namespace {

// The numbers are those of ICU 3.2. U_ERROR_LIMIT, the last one, is a different number in every version.
constexpr VelClIcuInterface::_VelStIcuRc2VelIdMap kMap[] = {
// clang-format off
#include "icu_errors.inc"
    // clang-format on
};

// Intentional: callers see these origins in messages and traces; they are fixed texts, not positions in this
// file.
constexpr const char* kHandleOrigin = "VelClIcuInterface::handleIcuErrorCode, line 325";
constexpr unsigned int kHandleLine = 325;
constexpr const char* kUnexpectedOrigin = "VelClIcuInterface::getVelEntryForIcuError, line 252";
constexpr unsigned int kUnexpectedLine = 252;

[[noreturn]] void throwFrom(VelClException exception, const char* origin, unsigned int line) {
  exception.setOrigin(origin, line);
  throw exception;
}

}  // namespace

const VelClIcuInterface::_VelStIcuRc2VelIdMap& VelClIcuInterface::getVelEntryForIcuError(int32_t status) {
  const auto* const row = std::ranges::find(kMap, status, &_VelStIcuRc2VelIdMap::status);
  if (row == std::end(kMap)) {
    throwFrom(VelClException(ICU_UNEXPECTED_ICU_ERROR, VelEnErrorClass::UNKNOWN, VelEnErrorSeverity::INTERNAL,
                             VelEnErrorAction::ABORT, "Unexpected ICU error"),
              kUnexpectedOrigin, kUnexpectedLine);
  }
  return *row;
}

bool VelClIcuInterface::isIcuError(int32_t status) {
  return status > 0;
}

unsigned long VelClIcuInterface::getVelErrorIdForIcuError(int32_t status) {
  return getVelEntryForIcuError(status).errorId;
}

VelEnErrorClass VelClIcuInterface::getVelErrorClassForIcuError(int32_t status) {
  return getVelEntryForIcuError(status).errorClass;
}

VelEnErrorAction VelClIcuInterface::getVelErrorActionForIcuError(int32_t status) {
  return getVelEntryForIcuError(status).action;
}

VelEnErrorSeverity VelClIcuInterface::getVelErrorSeverityForIcuError(int32_t status) {
  return getVelEntryForIcuError(status).severity;
}

void VelClIcuInterface::mapIcuError(_VelStError& error, int32_t status) {
  const _VelStIcuRc2VelIdMap& row = getVelEntryForIcuError(status);
  error = _VelStError(row.errorId, row.errorClass);
}

void VelClIcuInterface::mapIcuError(_VelStUserError& error, int32_t status) {
  const _VelStIcuRc2VelIdMap& row = getVelEntryForIcuError(status);
  error = _VelStUserError(row.errorId, row.errorClass, row.severity, row.action);
}

void VelClIcuInterface::handleIcuErrorCode(int32_t status) {
  if (!isIcuError(status)) return;
  _VelStUserError error;
  mapIcuError(error, status);
  throwFrom(VelClException(error, ""), kHandleOrigin, kHandleLine);
}
