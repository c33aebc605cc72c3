// The processes around a program: identifiers, programs started and ended, and dynamic libraries loaded by
// name.
#ifndef VEL_PROCESS_H_
#define VEL_PROCESS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_environment.h"
#include "vel_error.h"
#include "vel_export.h"
#include "vel_filesys.h"

/// A procedure of a dynamic library, as far as its type is known without its header.
typedef int (*VelProcedure)(void);

/// Loads a dynamic library, see VelClDllProcLoaderFile for how it is found. Returns a handle for the
/// functions below, or null when the library cannot be loaded (the reason is lost). Memory comes from the
/// memory manager, whose failure throws.
VEL_C_API void* velDllProcLoaderOpen(const char* fileName);
/// The procedure of this name, or null when the library has none. It is valid until the handle is closed.
VEL_C_API VelProcedure velDllProcLoaderGetProcedure(void* handle, const char* procedureName);
/// Releases library and handle; null is ignored.
VEL_C_API void velDllProcLoaderClose(void* handle);

#if defined(VEL_HAS_CLASSES)

/// Names a process by its identifier.
class VEL_API VelClProcessProperty {
 public:
  /// The current process.
  VelClProcessProperty();
  /// Any process; whether it exists is not asked.
  explicit VelClProcessProperty(unsigned int id) : id_(id) {}

  /// The system's number.
  unsigned int getProcessId() const { return id_; }

 private:
  uint32_t id_;
};

/// Names a thread by its identifier, the system's number and not the runtime's handle.
class VEL_API VelClThreadProperty {
 public:
  /// The current thread.
  VelClThreadProperty();
  /// Any thread; whether it exists is not asked.
  explicit VelClThreadProperty(unsigned int id) : id_(id) {}

  /// The system's number.
  unsigned int getThreadId() const { return id_; }

 private:
  uint32_t id_;
};

/// A running process.
class VEL_API VelClProcess : public VelClProcessProperty {
 public:
  /// The current process.
  VelClProcess();
  /// Any process; whether it exists is not asked.
  explicit VelClProcess(unsigned int id);

  /// Ends the process at once, with exit code 0 on Windows and by SIGKILL on Linux; it may still be
  /// ending on return. A process that does not exist, or that this one may not end, counts as ended:
  /// true, and nothing happens. So do 0 and, on Linux, numbers above 2147483647, which name no single
  /// process. False with PROCESS_COULD_NOT_KILL and class INVALID_DATA when the system fails.
  bool kill();

  /// Of the last kill.
  const _VelStError& getLastError() const { return lastError_; }

 private:
  _VelStError lastError_;
};

/// A program's file, completed along the system's search path when the object is built.
/// On Linux a program is looked for under the name as given, then without ".EXE", first as it is spelled and
/// then in any letter case; only files with permission to run count in a search.
class VEL_API VelClExeFile : public VelClFile {
 public:
  /// A name without extension gets "EXE". A name without directory is searched: on Windows in the
  /// system's order, on Linux in the current directory, then along PATH. A file that is
  /// found replaces the name by its full path (on Linux in slash style), otherwise the name stays. A
  /// name with a directory is searched, without it, only if the program is not there and the
  /// environment variable VEL_NEWPROCESS_USEPATH is ON, YES, TRUE or 1 in any letter case. A full
  /// path of more than 260 characters counts as not found.
  explicit VelClExeFile(const VelClFilename& name);
  VelClExeFile(const VelClExeFile&) = default;
  VelClExeFile& operator=(const VelClExeFile&) = default;
  ~VelClExeFile() override;

  /// Whether a search, and not the name alone, led to the file.
  bool isFoundInSystemPath() const { return foundInSystemPath_; }

  /// "EXE", without a dot.
  static const char* getDefaultFileType();
  /// "PATH".
  static const char* getSystemPathEnvironmentVariable();

 protected:
  /// What is searched for.
  enum VelEnKind : int32_t {
    PROGRAM = 0,  ///< an executable file
    LIBRARY = 1   ///< a dynamic library
  };
  /// Searches a name without directory and no other; VEL_NEWPROCESS_USEPATH has no effect.
  VelClExeFile(const VelClFilename& name, const char* defaultType, VelEnKind kind);

 private:
  void search(VelEnKind kind);

  bool foundInSystemPath_;
};

/// Starts a program with arguments, once or several times. The arguments become one command line, which
/// the program's C runtime splits again; on Linux the library splits it by the same rules:
/// blanks and tabs separate, quotes keep text together and are dropped, and a back-slash makes the
/// following quote an ordinary character but is itself ordinary before anything else.
/// The program inherits environment, current directory and standard streams, and no other open file.
class VEL_API VelClNewProcessABase {
 public:
  VelClNewProcessABase(const VelClNewProcessABase&) = delete;
  VelClNewProcessABase& operator=(const VelClNewProcessABase&) = delete;
  virtual ~VelClNewProcessABase();

  /// False with PROCESS_COULD_NOT_LAUNCH, class UNKNOWN_PROCESS and the system's own error code as result:
  /// 2 for a missing program on every system, otherwise a Windows error code or an errno. The
  /// arguments stay for another launch.
  virtual bool launch() = 0;

  /// Appends an argument. A text with a blank is put in quotes, with one more back-slash when it
  /// ends in one; nothing else is changed, so a text with tabs or quotes is split as it stands. Null
  /// is ignored; "" leaves only its separator, and the program does not see it: write "\"\"" for an
  /// empty argument. Numbers are written in decimal; for a literal say which, 5L or 5UL.
  /// Only a failed allocation throws, and leaves the arguments as they were.
  void addArgument(const char* text);
  void addArgument(long value);
  void addArgument(unsigned long value);

  /// Arguments so far; the program's name is the first.
  unsigned int getArgumentCount() const { return argumentCount_; }
  /// Set before launch: the program gets a console window of its own (off at first). Linux has no such
  /// windows, and nothing changes there.
  void setNewConsole(bool newConsole) { newConsole_ = newConsole; }
  /// What setNewConsole set.
  bool hasNewConsole() const { return newConsole_; }
  /// After launch: the exit code of VelClNewSyncProcess, the process identifier of
  /// VelClNewAsyncProcess, or the system's error code. 0 before.
  unsigned long getResult() const { return result_; }
  /// Of the last launch.
  const _VelStError& getLastError() const { return lastError_; }

 protected:
  /// Writes the program's name as first argument. `exe` is not copied and must outlive the object.
  explicit VelClNewProcessABase(const VelClExeFile& exe);

  /// The program.
  const VelClExeFile& getExeFile() const { return exe_; }
  /// The command line, terminated; owned by the object and valid until the next argument.
  char* getArgs() { return commandLine_; }
  /// Presets the last error to PROCESS_COULD_NOT_LAUNCH, and terminates the command line.
  void prepareLaunch();
  /// Keep the outcome of a launch; they return false and true.
  bool fail(unsigned long systemError);
  bool succeed(unsigned long result);

 private:
  void appendArgument(const char* before, const char* text, const char* after);
  char* reserve(size_t length);

  _VelStError lastError_;
  bool newConsole_;
  const VelClExeFile& exe_;
  char* commandLine_;
  size_t length_;
  size_t capacity_;
  uint32_t argumentCount_;
  uint32_t result_;
};

/// Starts a program and waits for its end.
class VEL_API VelClNewSyncProcess : public VelClNewProcessABase {
 public:
  /// `exe` is not copied and must outlive the object.
  explicit VelClNewSyncProcess(const VelClExeFile& exe);
  ~VelClNewSyncProcess() override;

  /// True when the program was started and has ended, whatever its exit code. On Linux the exit code
  /// of a program that a signal ended is 128 plus the signal's number, and a handler of SIGCHLD that waits
  /// for every child can, when it runs in another thread, take the exit code away: false then, with ECHILD.
  bool launch() override;
};

/// Starts a program detached from this one and does not wait: without a console unless it gets its own;
/// on Linux in a new session, with /dev/null as its standard streams, and as nobody's zombie.
class VEL_API VelClNewAsyncProcess : public VelClNewProcessABase {
 public:
  /// `exe` is not copied and must outlive the object.
  explicit VelClNewAsyncProcess(const VelClExeFile& exe);
  ~VelClNewAsyncProcess() override;

  bool launch() override;
};

/// A dynamic library, loaded as long as the object lives.
/// On Linux "x.DLL" is looked for as given, then as "x.so" and "libx.so".
class VEL_API VelClDllFile : public VelClExeFile {
 public:
  /// A name without extension gets ".DLL". A name without directory is searched: on Windows in the
  /// system's order, on Linux in the program's directory, the current directory, and along PATH; then
  /// the system's loader looks where it usually does. On failure getLastError has the system's own
  /// error code as identifier, which is none of the library's, and class RESOURCE_MISSING. On Linux
  /// that is an errno: 2 for a missing file, 8 for one that the loader refuses.
  explicit VelClDllFile(const VelClFilename& name);
  VelClDllFile(const VelClDllFile&) = delete;
  VelClDllFile& operator=(const VelClDllFile&) = delete;
  ~VelClDllFile() override;

  /// Whether the library is loaded.
  bool isValid() const { return handle_ != nullptr; }
  /// The system's handle of the library, or null.
  void* getHandle() const { return handle_; }

  /// ".DLL", with its dot.
  static const char* getDefaultFileType();
  /// "PATH".
  static const char* getSystemPathEnvironmentVariable();

 private:
  void load();

  void* handle_;
};

/// A dynamic library whose procedures are asked for by name.
class VEL_API VelClDllProcLoaderFile : public VelClDllFile {
 public:
  /// Loads it as VelClDllFile does.
  explicit VelClDllProcLoaderFile(const VelClFilename& name);
  ~VelClDllProcLoaderFile() override;

  /// Null when the library is not loaded or has no such procedure. Valid as long as this object.
  VelProcedure getProcedure(const char* name) const;
};

#endif

#endif
