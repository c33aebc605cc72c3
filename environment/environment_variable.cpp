// Environment variables of this process.
#include <algorithm>
#include <cstring>

#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "platform/environment.h"
#include "vel_include/vel_environment.h"

namespace {

/// The systems' own calls disagree about odd names.
bool isPossibleName(const char* name) noexcept {
  return *name != '\0' && std::strchr(name, '=') == nullptr;
}

/// Sets a variable; an empty value removes it.
bool assign(const char* name, const char* value, const char* appended) {
  if (!isPossibleName(name)) return false;
  vel::String assignment(name);
  assignment.append("=").append(value).append(appended);
  return vel::platform::putEnvironment(assignment.data()) == 0;
}

}  // namespace

VelClEnvironmentVariableABase::VelClEnvironmentVariableABase(const char* name) {
  initName(name);
}

void VelClEnvironmentVariableABase::initName(const char* name) {
  const size_t length = std::min(std::strlen(vel::textOrEmpty(name)), kMaxNameLength);
  std::memmove(name_, vel::textOrEmpty(name), length);
  name_[length] = '\0';
}

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

void VelClEnvironmentVariable::resetValue() {
  setNewValue(nullptr);
}
