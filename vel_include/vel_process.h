// Environment variables of this process, and the identifiers of processes and threads.
#ifndef VEL_PROCESS_H_
#define VEL_PROCESS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// Names one environment variable. The value is never kept: each question reads the environment of
/// the C runtime again. On Windows names ignore letter case.
/// The environment is shared by all threads, and nothing here locks it.
class VEL_API VelClEnvironmentVariableABase {
 public:
  /// The longest name in characters; longer names are cut.
  static constexpr size_t kMaxNameLength = 40;

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
  explicit VelClEnvironmentVariableQueryOnly(const char* name);
  /// The same name as another object's.
  explicit VelClEnvironmentVariableQueryOnly(const VelClEnvironmentVariableABase& other);

  /// Points the object at another variable.
  void setNewName(const char* name);
};

/// Reads and changes a variable. Values of any length are handled; the text handed to the system
/// is built in memory from the memory manager.
class VEL_API VelClEnvironmentVariable : public VelClEnvironmentVariableABase {
 public:
  /// Sets the variable at once, as setNewValue does; hasValue tells whether it worked.
  VelClEnvironmentVariable(const char* name, const char* value);

  /// Sets the variable; null or "" removes it. False when the system refuses the change, as it
  /// does for a name that is empty or holds "=".
  bool setNewValue(const char* value);
  /// Puts `text` behind the current value, with no separator. False as for setNewValue.
  bool appendValue(const char* text);
  /// Removes the variable.
  void resetValue();
};

/// Names a process by its identifier.
class VEL_API VelClProcessProperty {
 public:
  /// The current process.
  VelClProcessProperty();
  explicit VelClProcessProperty(unsigned int id) : id_(id) {}

  unsigned int getProcessId() const { return id_; }

 private:
  uint32_t id_;
};

/// Names a thread by its identifier, the system's number and not the runtime's handle.
class VEL_API VelClThreadProperty {
 public:
  /// The current thread.
  VelClThreadProperty();
  explicit VelClThreadProperty(unsigned int id) : id_(id) {}

  unsigned int getThreadId() const { return id_; }

 private:
  uint32_t id_;
};

#endif

#endif
