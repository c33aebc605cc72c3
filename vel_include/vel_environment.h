// The environment variables of the process.
#ifndef VEL_ENVIRONMENT_H_
#define VEL_ENVIRONMENT_H_

#include <stddef.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// Names one environment variable. The value is never kept: each question reads the environment of
/// the C runtime again. On Windows names ignore letter case.
/// The environment is shared by all threads, and nothing here locks it.
class VEL_API VelClEnvironmentVariableABase {
 public:
  /// The longest name in characters; longer names are cut.
  static constexpr size_t kMaxNameLength = 40;

  /// At most kMaxNameLength characters.
  const char* getName() const { return name_; }
  /// The value, or null when the variable is not set. The runtime owns the text; it is valid until
  /// the variable changes.
  const char* getValue() const;
  /// Whether the variable is set; an empty value counts as set.
  bool hasValue() const;
  /// Whether the variable switches something on: its value is ON, YES, TRUE or 1, in any
  /// letter case and without blanks around it.
  bool hasValueEnabled() const;

 protected:
  /// Null counts as "".
  explicit VelClEnvironmentVariableABase(const char* name);
  /// Replaces the name; null counts as "".
  void initName(const char* name);

 private:
  char name_[kMaxNameLength + 1];
};

/// Reads a variable and never changes it.
class VEL_API VelClEnvironmentVariableQueryOnly : public VelClEnvironmentVariableABase {
 public:
  /// The name "?", which no variable has.
  VelClEnvironmentVariableQueryOnly();
  /// Null counts as "".
  explicit VelClEnvironmentVariableQueryOnly(const char* name);
  /// The same name as another object's.
  explicit VelClEnvironmentVariableQueryOnly(const VelClEnvironmentVariableABase& other);

  /// Points the object at another variable.
  void setNewName(const char* name);
};

/// Reads and changes a variable. The text handed to the system is built in memory from the memory manager, so
/// that only the system bounds the length of a value.
class VEL_API VelClEnvironmentVariable : public VelClEnvironmentVariableABase {
 public:
  /// Sets the variable at once, as setNewValue does; hasValue tells whether it worked.
  VelClEnvironmentVariable(const char* name, const char* value);

  /// Sets the variable; null or "" removes it. False, with the variable as it was, when the system refuses
  /// the change, as it does for a name that is empty or holds "=", and on Windows for a value of more than
  /// 32,766 characters.
  bool setNewValue(const char* value);
  /// Puts `text` behind the current value, with no separator. False as for setNewValue.
  bool appendValue(const char* text);
  /// Removes the variable.
  void resetValue();
};

#endif

#endif
