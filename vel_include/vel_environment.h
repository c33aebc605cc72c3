// The environment variables of the process.
#ifndef VEL_ENVIRONMENT_H_
#define VEL_ENVIRONMENT_H_

#include <stddef.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// Names one environment variable. The value is not stored: every getter reads the environment of the C
/// runtime again. On Windows names are compared ignoring case. The environment is shared by all threads, and
/// nothing here locks it.
class VEL_API VelClEnvironmentVariableABase {
 public:
  /// The longest name in characters; longer names are cut.
  static constexpr size_t kMaxNameLength = 40;

  /// Returns the name, of at most kMaxNameLength characters.
  const char* getName() const { return name_; }
  /// Returns the value, or null if the variable is not set. The C runtime or the library owns the text, which
  /// is valid until the variable changes. On Windows characters that the ANSI code page lacks are "?".
  const char* getValue() const;
  /// True if the variable is set, even to an empty value.
  bool hasValue() const;
  /// True if the variable enables something: its value is ON, YES, TRUE or 1, in any case and without
  /// surrounding blanks.
  bool hasValueEnabled() const;

 protected:
  /// A null name counts as "".
  explicit VelClEnvironmentVariableABase(const char* name);
  /// Replaces the name; null counts as "".
  void initName(const char* name);

 private:
  char name_[kMaxNameLength + 1];
};

/// Reads a variable, but cannot change it.
class VEL_API VelClEnvironmentVariableQueryOnly : public VelClEnvironmentVariableABase {
 public:
  /// Uses the name "?", which no variable has.
  VelClEnvironmentVariableQueryOnly();
  /// A null name counts as "".
  explicit VelClEnvironmentVariableQueryOnly(const char* name);
  /// Copies the name of another object.
  explicit VelClEnvironmentVariableQueryOnly(const VelClEnvironmentVariableABase& other);

  /// Selects another variable; null counts as "".
  void setNewName(const char* name);
};

/// Reads and changes a variable. The text passed to the system is built in memory from the memory manager, so
/// only the system limits the length of a value.
class VEL_API VelClEnvironmentVariable : public VelClEnvironmentVariableABase {
 public:
  /// Sets the variable immediately, as setNewValue does; test hasValue for success.
  VelClEnvironmentVariable(const char* name, const char* value);

  /// Sets the variable; null or "" removes it. Returns false and leaves the variable unchanged if the system
  /// refuses the change: for a name that is empty or contains "=", and on Windows for a value of more than
  /// 32,766 characters.
  bool setNewValue(const char* value);
  /// Appends `text` to the current value, without a separator. Fails like setNewValue.
  bool appendValue(const char* text);
  /// Removes the variable.
  void resetValue();
};

#endif

#endif
