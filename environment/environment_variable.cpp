// Implements reading and changing environment variables of this process. The rule for values that count as
// enabled is in base/enabled_rule.h.
#include <algorithm>
#include <cstring>

#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "platform/environment.h"
#include "vel_include/vel_environment.h"

namespace {

/// Whether a variable can have this name. The systems' own calls disagree about empty names and names with
/// "=" (Windows keeps some internally), so they are refused before the system is called.
bool isPossibleName(const char* name) noexcept {
  return *name != '\0' && std::strchr(name, '=') == nullptr;
}

/// Sets a variable to both texts joined; an empty value removes it on every system. Returns whether it was
/// set.
bool assign(const char* name, const char* value, const char* appended) {
  if (!isPossibleName(name)) return false;
  // All three are copied before the system is called, so `value` may be the variable's present value.
  vel::String assignment(name);
  assignment.append("=").append(value).append(appended);
  return vel::platform::putEnvironment(assignment.data()) == 0;
}

}  // namespace

VelClEnvironmentVariableABase::VelClEnvironmentVariableABase(const char* name) {
  initName(name);
}

// Cuts a name that is too long. `name` may be this object's own, so it is moved and not copied.
void VelClEnvironmentVariableABase::initName(const char* name) {
  const size_t length = std::min(std::strlen(vel::textOrEmpty(name)), kMaxNameLength);
  std::memmove(name_, vel::textOrEmpty(name), length);
  name_[length] = '\0';
}

// Reads the environment each time and keeps no copy: other objects and the program itself may change the
// variable.
const char* VelClEnvironmentVariableABase::getValue() const {
  return isPossibleName(name_) ? vel::platform::environmentValue(name_) : nullptr;
}

bool VelClEnvironmentVariableABase::hasValue() const {
  return getValue() != nullptr;
}

bool VelClEnvironmentVariableABase::hasValueEnabled() const {
  return vel::isEnabledValue(getValue());
}

VelClEnvironmentVariableQueryOnly::VelClEnvironmentVariableQueryOnly() : VelClEnvironmentVariableABase("?") {}

VelClEnvironmentVariableQueryOnly::VelClEnvironmentVariableQueryOnly(const char* name)
    : VelClEnvironmentVariableABase(name) {}

VelClEnvironmentVariableQueryOnly::VelClEnvironmentVariableQueryOnly(
    const VelClEnvironmentVariableABase& other)
    : VelClEnvironmentVariableABase(other.getName()) {}

void VelClEnvironmentVariableQueryOnly::setNewName(const char* name) {
  initName(name);
}

VelClEnvironmentVariable::VelClEnvironmentVariable(const char* name, const char* value)
    : VelClEnvironmentVariableABase(name) {
  setNewValue(value);
}

bool VelClEnvironmentVariable::setNewValue(const char* value) {
  return assign(getName(), vel::textOrEmpty(value), "");
}

bool VelClEnvironmentVariable::appendValue(const char* text) {
  return assign(getName(), vel::textOrEmpty(getValue()), vel::textOrEmpty(text));
}

// Null is the empty value, which removes the variable.
void VelClEnvironmentVariable::resetValue() {
  setNewValue(nullptr);
}
