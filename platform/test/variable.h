// Sets environment variables for the duration of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/test/child_process.h"

namespace vel::test {

/// Sets the variable, or unsets it for null, until the end of this object.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* const before = std::getenv(name); before != nullptr) before_ = before;
    set(value);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { set(before_ ? before_->c_str() : nullptr); }

  void set(const char* value) const { setVariable(name_, value); }

 private:
  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace vel::test
