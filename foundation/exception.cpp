// Implements the exception classes. They hold only pointers and numbers, so that copying one while the stack
// unwinds, perhaps because memory ran out, cannot fail. Cause and origin are not copied: pass strings that
// outlive the exception, such as literals.
#include <cstdint>

#include "base/short_text.h"
#include "vel_include/vel_error.h"

VelClExceptionABase::VelClExceptionABase() noexcept : VelClExceptionABase(nullptr) {}

VelClExceptionABase::VelClExceptionABase(const char* cause) noexcept
    : cause_(vel::textOrEmpty(cause)), origin_(nullptr), line_(0) {}

VelClExceptionABase::VelClExceptionABase(const VelClExceptionABase& other) noexcept = default;
VelClExceptionABase& VelClExceptionABase::operator=(const VelClExceptionABase& other) noexcept = default;
VelClExceptionABase::~VelClExceptionABase() = default;

const char* VelClExceptionABase::getCause() const {
  return cause_;
}

void VelClExceptionABase::setOrigin(const char* origin, unsigned int line) noexcept {
  origin_ = origin;
  line_ = line;
}

VelClException::VelClException(unsigned long id, VelEnErrorClass errorClass, VelEnErrorSeverity severity,
                               VelEnErrorAction action, const char* cause) noexcept
    : VelClExceptionABase(cause),
      errorId_(static_cast<std::uint32_t>(id)),
      errorClass_(errorClass),
      severity_(severity),
      action_(action) {}

VelClException::VelClException(const _VelStUserError& error, const char* cause) noexcept
    : VelClException(error.errorId, error.errorClass, error.severity, error.action, cause) {}

VelClException::VelClException(const VelClException& other) noexcept = default;
VelClException& VelClException::operator=(const VelClException& other) noexcept = default;
VelClException::~VelClException() = default;

bool VelClException::isVelException() const {
  return true;
}
const char* VelClException::getCause() const {
  return VelClExceptionABase::getCause();
}

VelClExceptionFatal::VelClExceptionFatal(unsigned long id, VelEnErrorClass errorClass,
                                         VelEnErrorAction action, const char* cause) noexcept
    : VelClException(id, errorClass, VelEnErrorSeverity::FATAL, action, cause) {}

VelClExceptionFatal::VelClExceptionFatal(const VelClExceptionFatal& other) noexcept = default;
VelClExceptionFatal::~VelClExceptionFatal() = default;

bool VelClExceptionFatal::isVelException() const {
  return true;
}
const char* VelClExceptionFatal::getCause() const {
  return VelClException::getCause();
}
