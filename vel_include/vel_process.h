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

/// A procedure of a dynamic library; without the library's header its real type is not known. Cast it before
/// the call.
typedef int (*VelProcedure)(void);

/// Loads a dynamic library; the search is that of VelClDllFile. Returns a handle for the other two functions,
/// or null if the library cannot be loaded (the reason is not reported) or the name is null. Memory is
/// allocated by the memory manager, which throws when memory runs out.
VEL_C_API void* velDllProcLoaderOpen(const char* fileName);
/// Returns the procedure of this name, or null if the library does not export it or an argument is null. The
/// procedure is valid until the handle is closed.
VEL_C_API VelProcedure velDllProcLoaderGetProcedure(void* handle, const char* procedureName);
/// Releases the library and the handle; null is ignored.
VEL_C_API void velDllProcLoaderClose(void* handle);

#if defined(VEL_HAS_CLASSES)

/// Identifies a process by its process ID.
class VEL_API VelClProcessProperty {
 public:
  /// Identifies the current process.
  VelClProcessProperty();
  /// Identifies any process; the ID is not checked.
  explicit VelClProcessProperty(unsigned int id) : id_(id) {}

  /// Returns the process ID.
  unsigned int getProcessId() const { return id_; }

 private:
  uint32_t id_;
};

/// Identifies a thread by its thread ID, which the system has assigned (on Linux the result of gettid(), not
/// a pthread_t).
class VEL_API VelClThreadProperty {
 public:
  /// Identifies the current thread.
  VelClThreadProperty();
  /// Identifies any thread; the ID is not checked.
  explicit VelClThreadProperty(unsigned int id) : id_(id) {}

  /// Returns the thread ID.
  unsigned int getThreadId() const { return id_; }

 private:
  uint32_t id_;
};

/// Ends a process. The process with this ID need not exist.
class VEL_API VelClProcess : public VelClProcessProperty {
 public:
  /// Refers to the current process.
  VelClProcess();
  /// Refers to any process; the ID is not checked.
  explicit VelClProcess(unsigned int id);

  /// Ends the process immediately, with exit code 0 on Windows and by SIGKILL on Linux; it may still be
  /// ending when the call returns. Returns true and does nothing for a process that does not exist or that
  /// this process is not permitted to end. The same applies to the ID 0 and, on Linux, to IDs above
  /// 2147483647, which do not identify a single process. Returns false with PROCESS_COULD_NOT_KILL and class
  /// INVALID_DATA if the system fails.
  bool kill();

  /// The error of the last kill.
  const _VelStError& getLastError() const { return lastError_; }

 private:
  _VelStError lastError_;
};

/// The file of a program, located along the search path of the system when the object is constructed.
/// On Linux a name that ends in ".EXE" is looked up with and then without it. The search first tries both
/// forms as spelled in every directory, then both ignoring case, and considers only files with execute
/// permission. The permission is not checked on Windows, or for a name with a directory.
class VEL_API VelClExeFile : public VelClFile {
 public:
  /// A name without extension gets "EXE". A name without a directory is searched: on Windows in the order of
  /// the system, on Linux in the current directory and then along PATH. If a file is found its full path
  /// replaces the name (on Linux in slash style), otherwise the name stays. A name with a directory is
  /// searched, without the directory, only if the program is not there and the environment variable
  /// VEL_NEWPROCESS_USEPATH is ON, YES, TRUE or 1 in any case. A file whose full path has more than 260
  /// characters counts as not found.
  explicit VelClExeFile(const VelClFilename& name);
  VelClExeFile(const VelClExeFile&) = default;
  VelClExeFile& operator=(const VelClExeFile&) = default;
  ~VelClExeFile() override;

  /// Returns true if a search found the file, false if it was not found or its name has a directory that it
  /// is in.
  bool isFoundInSystemPath() const { return foundInSystemPath_; }

  /// Returns "EXE", without a dot.
  static const char* getDefaultFileType();
  /// Returns "PATH".
  static const char* getSystemPathEnvironmentVariable();

 protected:
  /// The kind of file that is searched for.
  enum VelEnKind : int32_t {
    PROGRAM = 0,  ///< an executable file
    LIBRARY = 1   ///< a dynamic library
  };
  /// Searches only a name without a directory; VEL_NEWPROCESS_USEPATH has no effect.
  VelClExeFile(const VelClFilename& name, const char* defaultType, VelEnKind kind);

 private:
  void search(VelEnKind kind);

  bool foundInSystemPath_;
};

/// Starts a program with arguments, once or several times. The arguments are joined into one command line,
/// which the C runtime of the program splits again. On Linux the library splits it by the same rules: blanks
/// and tabs separate arguments, quotes group text and are removed, and a backslash makes a following quote an
/// ordinary character but is itself ordinary before anything else.
/// The program inherits the environment, the current directory and no open files; VelClNewSyncProcess also
/// passes on the standard streams.
class VEL_API VelClNewProcessABase {
 public:
  VelClNewProcessABase(const VelClNewProcessABase&) = delete;
  VelClNewProcessABase& operator=(const VelClNewProcessABase&) = delete;
  virtual ~VelClNewProcessABase();

  /// Starts the program, clears the last error and returns true. On failure returns false; getLastError is
  /// PROCESS_COULD_NOT_LAUNCH with class UNKNOWN_PROCESS, and getResult is the system's own error code: 2 for
  /// a missing program on every system, otherwise a Windows error code or an errno. The arguments are kept
  /// for another launch.
  virtual bool launch() = 0;

  /// Appends an argument. A text with a blank is enclosed in quotes, with an additional backslash if it ends
  /// in one. Nothing else is changed, so a text with tabs or quotes is split as it is. Null is ignored. ""
  /// adds only a separator: getArgumentCount counts it, but the program receives no argument; write "\"\""
  /// for an empty argument. Numbers are written in decimal; give a literal a suffix, 5L or 5UL. Throws only
  /// if an allocation fails, which leaves the arguments unchanged.
  void addArgument(const char* text);
  void addArgument(long value);
  void addArgument(unsigned long value);

  /// Returns how often an argument was added, the program's name included. "" counts, although the program
  /// does not receive it.
  unsigned int getArgumentCount() const { return argumentCount_; }
  /// Call before launch: gives the program its own console window (initially off). Has no effect on Linux,
  /// where programs do not have such windows.
  void setNewConsole(bool newConsole) { newConsole_ = newConsole; }
  /// Returns the value set by setNewConsole.
  bool hasNewConsole() const { return newConsole_; }
  /// Returns, after launch, the exit code (VelClNewSyncProcess), the process ID
  /// (VelClNewAsyncProcess), or the system's error code. 0 before launch.
  unsigned long getResult() const { return result_; }
  /// The error of the last launch.
  const _VelStError& getLastError() const { return lastError_; }

 protected:
  /// Writes the program's name as the first argument. `exe` is not copied and must outlive the object.
  explicit VelClNewProcessABase(const VelClExeFile& exe);

  /// Returns the program's file.
  const VelClExeFile& getExeFile() const { return exe_; }
  /// Returns the command line, NUL-terminated; the object owns it, and it is valid until the next argument is
  /// added.
  char* getArgs() { return commandLine_; }
  /// Sets the last error to PROCESS_COULD_NOT_LAUNCH in advance, and writes the command line's NUL again: a
  /// derived class may have overwritten it through getArgs.
  void prepareLaunch();
  /// Sets the result to the system's error code and returns false.
  bool fail(unsigned long systemError);
  /// Sets the result, clears the last error and returns true.
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

/// Starts a program and waits until it ends.
class VEL_API VelClNewSyncProcess : public VelClNewProcessABase {
 public:
  /// `exe` is not copied and must outlive the object.
  explicit VelClNewSyncProcess(const VelClExeFile& exe);
  ~VelClNewSyncProcess() override;

  /// Returns true if the program was started and has ended, whatever its exit code. On Linux the exit code of
  /// a program ended by a signal is 128 plus the number of the signal. If other code of this process
  /// reaps every child (waitpid(-1)), the exit code can be lost; the call then returns false with ECHILD.
  bool launch() override;
};

/// Starts a program detached from this one and does not wait for it. The program runs without a console
/// unless setNewConsole(true) was called. On Linux it runs in a new session, has /dev/null as its standard
/// streams, and does not become a zombie of this process.
class VEL_API VelClNewAsyncProcess : public VelClNewProcessABase {
 public:
  /// `exe` is not copied and must outlive the object.
  explicit VelClNewAsyncProcess(const VelClExeFile& exe);
  ~VelClNewAsyncProcess() override;

  /// Returns true if the program was started; getResult is then its process ID.
  bool launch() override;
};

/// A dynamic library, loaded for the lifetime of the object. On Linux "x.DLL" is looked up as given, then as
/// "x.so" and "libx.so".
class VEL_API VelClDllFile : public VelClExeFile {
 public:
  /// A name without extension gets ".DLL". A name without a directory is searched: on Windows in the order of
  /// the system; on Linux in the program's directory, the current directory, and along PATH; after that the
  /// system's loader searches its usual places. On failure getLastError has class RESOURCE_MISSING and, as
  /// its identifier, the error code of the system, which is not an identifier of this library. On Linux that
  /// is an errno: 2 for a missing file, 8 for a file that the loader rejects.
  explicit VelClDllFile(const VelClFilename& name);
  VelClDllFile(const VelClDllFile&) = delete;
  VelClDllFile& operator=(const VelClDllFile&) = delete;
  ~VelClDllFile() override;

  /// True if the library is loaded.
  bool isValid() const { return handle_ != nullptr; }
  /// Returns the system's handle of the library, or null.
  void* getHandle() const { return handle_; }

  /// Returns ".DLL", with its dot.
  static const char* getDefaultFileType();
  /// Returns "PATH".
  static const char* getSystemPathEnvironmentVariable();

 private:
  void load();

  void* handle_;
};

/// A dynamic library whose procedures are looked up by name.
class VEL_API VelClDllProcLoaderFile : public VelClDllFile {
 public:
  /// Loads the library, see VelClDllFile.
  explicit VelClDllProcLoaderFile(const VelClFilename& name);
  ~VelClDllProcLoaderFile() override;

  /// Returns null if the library is not loaded or does not export the procedure. Valid as long as this
  /// object.
  VelProcedure getProcedure(const char* name) const;
};

#endif

#endif
