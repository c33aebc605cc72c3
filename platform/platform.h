// The seam to the operating system: free functions on plain types, implemented once per system
// in windows/ and posix/. Each does one system thing, retries interrupted calls, and reports the
// system's own number. Classes, error identifiers and messages stand above the seam; so do all
// rules of names, quoting and wildcards.
//
// File names arrive in either style. On POSIX systems back-slash names are translated: see
// posix/native_path.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

// ---- Files and attributes (files.cpp) --------------------------------------------------------

/// The runtime's errno after a failure, 0 after success.
using SystemError = int;

inline constexpr std::uint32_t kAttributeReadOnly = 0x1;
inline constexpr std::uint32_t kAttributeHidden = 0x2;
inline constexpr std::uint32_t kAttributeDirectory = 0x10;
/// What a missing entry has: all bits.
inline constexpr std::uint32_t kAttributesUnreadable = 0xFFFFFFFF;

struct EntryStatus {
  std::uint64_t sizeInBytes;
  std::int64_t changed;   ///< creation on Windows, status change on POSIX; seconds since 1970
  std::int64_t accessed;  ///< seconds since 1970
  std::int64_t modified;  ///< seconds since 1970
};

bool entryExists(const char* name) noexcept;
bool isWritable(const char* name) noexcept;
std::uint32_t attributesOf(const char* name) noexcept;
bool statusOf(const char* name, EntryStatus& status) noexcept;
/// Copies contents and permissions, also over an existing target unless that is read-only (EACCES,
/// for every user) or the source itself under another name; `writable` gives the owner write permission.
/// The copy is made beside the target and takes its place, so that a failed one changes nothing; a link is
/// replaced itself, but not one to a directory (EISDIR), device or pipe (EINVAL). Only where the directory
/// takes no new file is an existing target overwritten in place.
SystemError copyFile(const char* from, const char* to, bool writable = false) noexcept;
/// Sets or clears write permission and nothing else; clearing read-only gives it to the owner.
SystemError setReadOnly(const char* name, bool readOnly) noexcept;
/// Removes a file, which is made writable first, and gets its permissions back when it cannot be removed.
/// Never a directory. A link goes itself; what it leads to is left alone.
SystemError removeFile(const char* name) noexcept;
/// Refuses an existing target with EEXIST, also when it appears at the last moment.
SystemError renameFile(const char* from, const char* to) noexcept;
/// The current directory in back-slash style with its drive, without a final separator unless it
/// is the root. False when it does not fit or cannot be had.
bool currentDirectory(char* out, std::size_t capacity) noexcept;
/// The directory for scratch files that the system knows beyond TMP and TEMP; never null.
const char* fallbackTmpDirectory() noexcept;
/// The drive of absolute names in slash style: "C:" where they are the system's own, else "".
const char* driveOfSlashNames() noexcept;
/// Creates a file that did not exist, for this user alone, and opens it for reading and writing bytes.
/// Children do not inherit the descriptor. -1 with the reason in `error`: EEXIST for any entry of that
/// name, also a link that leads nowhere.
int createExclusively(const char* name, SystemError& error) noexcept;

// ---- Appending to files (append.cpp) ---------------------------------------------------------

/// The thread's last errors of the runtime and of the system, where they are not the same.
struct LastErrors {
  int runtime;
  std::uint32_t system;
};
LastErrors lastErrors() noexcept;
void setLastErrors(const LastErrors& errors) noexcept;

struct Bytes {
  const char* data;
  std::size_t size;
};

/// Which files are appended to. OwnFile is for names that other users know or can guess, in directories where
/// they may make files: on POSIX systems it refuses links and everything but a regular file of this user
/// that has one name and that nobody else may write to. (On Windows scratch directories are each user's own.)
enum class AppendTo { AnyFile, OwnFile };
/// Creates a missing file for this user alone. Children do not inherit the descriptor, and nothing is waited
/// for. -1 with the reason in `error`: ELOOP or EACCES for a link, EPERM for a file that is not the own.
int openForAppending(const char* name, AppendTo target, SystemError& error) noexcept;
/// Appends both pieces in one call of the system, so that those of other processes stay before or behind
/// them, and returns how many bytes were written; the reason is in `error` when these are not all. No failure
/// raises a signal.
std::uint64_t appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                          SystemError& error) noexcept;
/// 0, or -1 for a failure.
int closeAppended(int descriptor) noexcept;

// ---- Replacing files (replacing.cpp) ---------------------------------------------------------

/// Tells entries apart that exist at the same time; all zeros for none.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;

  bool operator==(const FileIdentity&) const = default;
};

/// A file that is written beside the one whose place it takes. While it is written no other user can read it.
struct Replacement {
  int descriptor = -1;      ///< for writing bytes
  bool isBeside = false;    ///< false when the target is no file and is written to itself
  bool keepsRights = true;  ///< after success: whether owner and permissions are those of the old file
  FileIdentity old;         ///< the file that is replaced; zeros for a new one
  // The rest is for replacing.cpp.
  int directory = -1;         ///< of both names, held open; -1 where the system has no such descriptors
  int heldTarget = -1;        ///< likewise, so that no other file can have its identity meanwhile
  char temporary[4200] = "";  ///< the system's own spelling; "" as long as the file has no name
  char target[4100];
};

/// Begins to replace a file, or to create one. It keeps permissions and, where the system allows it, the
/// owner; a link stays and leads to the new contents. EACCES for a read-only file. Children do not inherit
/// the descriptor.
SystemError startReplacement(const char* name, Replacement& replacement) noexcept;
/// Puts what was written into place, in one step and when it is safely stored. After a failure the old file
/// is there as before and the new one is gone; only when the directory could not be stored is the new one in
/// place, but may be lost with the power. A target that became another file meanwhile is a failure
/// (ECANCELED), and so is a new one that was there first (EEXIST).
SystemError finishReplacement(Replacement& replacement) noexcept;
void dropReplacement(Replacement& replacement) noexcept;
/// For programs that own their process: before SIGHUP, SIGINT or SIGTERM ends it, the file that was begun
/// last and has a name is removed. Signals that are ignored stay so. Other systems remove it by themselves.
void removeUnfinishedOnSignals() noexcept;

// ---- Signals (ending_signals.cpp) ------------------------------------------------------------

/// Holds back SIGHUP, SIGINT and SIGTERM from this thread for a moment that must not be interrupted. Returns
/// what to release, 0 for nothing; other systems have no such signals.
std::uint32_t holdEndingSignals() noexcept;
/// Those that came meanwhile take effect.
void releaseEndingSignals(std::uint32_t held) noexcept;

// ---- Locking files (file_lock.cpp) -----------------------------------------------------------

/// Tells files apart, also a file from one that was there before and had its number, and from what it was
/// before a change; all zeros for a missing one.
struct FileState {
  FileIdentity identity;
  std::uint64_t sizeInBytes = 0;
  std::uint64_t changed = 0;  ///< when, in the system's smallest unit; as fine as its clock for files is

  bool operator==(const FileState&) const = default;
};

/// Of an open file, and of what a name leads to. False when the system cannot tell.
bool stateOf(int descriptor, FileState& state) noexcept;
bool stateAt(const char* name, FileState& state) noexcept;

enum class LockResult {
  Locked,
  Busy,         ///< somebody else has the lock
  Unsupported,  ///< the file system has no locks; everything else is as if it were locked
  Failed
};

/// A lock, and the state of the locked file.
struct FileLock {
  void* system = nullptr;  ///< the object that is the lock on Windows
  int descriptor = -1;     ///< the locked file or directory on POSIX
  FileState file;
};

/// Locks the file that a name leads to, or the place where it is to be made. Waits for nothing. The lock ends
/// with the process at the latest, shuts out other locks (also of this process) and nothing else, is not
/// inherited, and leaves nothing on disk. A device or pipe needs no lock. POSIX: an advisory lock of the
/// file, or of its directory; Windows: a named object for the file's full name.
LockResult tryLockFile(const char* name, FileLock& lock) noexcept;
void unlockFile(FileLock& lock) noexcept;

// ---- Directories (directories.cpp) -----------------------------------------------------------

enum class WalkStep { Entry, End, Failed };

/// What to do about a link (on Windows a junction, too) in the place of a directory.
enum class DirectoryLink { Follow, Refuse };

/// An open directory: its listing, and the place where operations on its entries start from,
/// whatever its path leads to by then.
struct DirectoryHandle {
  void* system = nullptr;    ///< null when nothing is open
  std::uint32_t listed = 0;  ///< how many of "." and ".." were listed, where the system need not list them
};

/// One directory entry, described alike on every system. A link is never a directory.
struct DirectoryEntry {
  std::uint32_t attributes;
  char name[261];  ///< cut to 260 characters, terminated
  /// The system's own spelling, terminated, for openEntry and removeEntry.
  alignas(2) unsigned char systemName[522];
};

/// ENOTDIR for everything but a directory, a refused link included.
SystemError openDirectory(const char* name, DirectoryLink link, DirectoryHandle& directory) noexcept;
void closeDirectory(DirectoryHandle& directory) noexcept;
/// Of what was opened, wherever its name leads by now.
SystemError identityOf(const DirectoryHandle& directory, FileIdentity& identity) noexcept;
/// Of this process's root; on Windows of the root of the drive or share that the name leads to. EACCES for a
/// root that this process may not even look at.
SystemError identityOfRoot(const char* name, FileIdentity& identity) noexcept;
/// Moves to the next entry. The end of the list is not an error; after Failed, errno (on Windows the
/// last error) has the reason.
WalkStep nextEntry(DirectoryHandle& directory, DirectoryEntry& entry) noexcept;
/// Opens a directory in a directory; never follows a link. ENOTDIR as above.
SystemError openEntry(const DirectoryHandle& directory, const DirectoryEntry& entry,
                      DirectoryHandle& opened) noexcept;
/// Removes a file, a link itself, or, if the entry's attributes say so, an empty directory.
SystemError removeEntry(const DirectoryHandle& directory, const DirectoryEntry& entry) noexcept;
SystemError makeDirectory(const char* name) noexcept;
/// Removes an empty directory or the link in its place.
SystemError removeDirectory(const char* name) noexcept;
SystemError changeDirectory(const char* name) noexcept;

// ---- Descriptors (descriptors.cpp) -----------------------------------------------------------

enum class DescriptorMode { NotOpen, Text, Binary, Other };

/// Sets the translation mode and returns the one before.
DescriptorMode setDescriptorMode(int descriptor, DescriptorMode mode) noexcept;
bool isTerminal(int descriptor) noexcept;

// ---- Console (console.cpp) -------------------------------------------------------------------

/// Waits for one key at the console, without echo and without Enter, and drops it, with all that one key
/// may send. The terminal is restored afterwards, also when a signal ends or stops the process meanwhile.
/// Windows: true at once when the process has no console. POSIX: the console is standard input; false, with
/// nothing read, when that is no terminal.
bool waitForConsoleKey() noexcept;

// ---- Environment (environment.cpp) -----------------------------------------------------------

/// Null when the variable is not set. For variables that the program asks for by name.
const char* environmentValue(const char* name) noexcept;
/// The same for variables that steer this library: in a program that has more rights than its caller (POSIX:
/// setuid, setgid, capabilities) none of them is set.
const char* settingValue(const char* name) noexcept;
/// `assignment` is "NAME=value", where an empty value removes the variable; it is copied.
bool putEnvironment(char* assignment) noexcept;

// ---- Processes (processes.cpp) ---------------------------------------------------------------

std::uint32_t currentProcessId() noexcept;
std::uint32_t currentThreadId() noexcept;

namespace detail {
extern std::uint32_t forks;
}
/// Another number in the child of a fork than in its parent; on Windows always the same. Costs no call.
inline std::uint32_t forkCount() noexcept {
  return detail::forks;
}

// ---- Launching and ending processes (launching.cpp) ------------------------------------------

struct Launch {
  char* commandLine;       ///< the text that Windows takes
  char* const* arguments;  ///< the same text split, which POSIX takes: at least the program, null at the end
  bool newConsole;         ///< Windows: a console window of its own
};

enum class EndResult { Ended, CannotOpen, Failed };

/// Both return the system's own number, 0 on success and 2 for a program that is not found. The program
/// inherits environment, current directory and, when it is waited for, the standard streams; no other
/// descriptor. A process that a POSIX signal ended has the exit code 128 plus the signal's number.
std::uint32_t launchAndWait(const Launch& launch, std::uint32_t& exitCode) noexcept;
/// Without console; on POSIX in a new session, with null streams, and never a zombie of this process.
std::uint32_t launchDetached(const Launch& launch, std::uint32_t& processId) noexcept;
/// Unconditionally and without waiting. Numbers that name no single process cannot be opened.
EndResult endProcess(std::uint32_t id) noexcept;
/// Whether a launch would find this name, which has a directory.
bool programExists(const char* name) noexcept;
/// The full path of a program without directory. Windows: the system's search. POSIX: the current directory,
/// then PATH; "x.EXE" is looked for as given, then as "x". False when the path does not fit.
bool searchProgram(const char* name, char* out, std::size_t capacity) noexcept;

// ---- Dynamic libraries (dynamic_libraries.cpp) -----------------------------------------------

using Procedure = int (*)();

/// The full path of a library without directory. Windows: the system's search. POSIX: the program's
/// directory, the current directory, then PATH; "x.DLL" is looked for as given, then as "x.so" and
/// "libx.so". False when the path does not fit.
bool searchLibrary(const char* name, char* out, std::size_t capacity) noexcept;
/// Null with the system's own number when there is no such library, or the loader refuses it. POSIX
/// tries the same three names. Nobody is asked about a file that is no library.
void* loadLibrary(const char* name, std::uint32_t& error) noexcept;
/// The same for a name in ASCII without directory, which is looked for only where libraries are installed,
/// never in the current directory or along PATH. Windows: the folder of this library, that of the program,
/// the system's.
void* loadInstalledLibrary(const char* name, std::uint32_t& error) noexcept;
Procedure findProcedure(void* library, const char* name) noexcept;
void freeLibrary(void* library) noexcept;

// ---- Clocks and sleeping (clocks.cpp) --------------------------------------------------------

/// Milliseconds since the system started, wrapping at 32 bits.
std::uint32_t tickCount() noexcept;
/// Counts per second of performanceCounter; 0 without a counter.
std::int64_t performanceFrequency() noexcept;
bool performanceCounter(std::int64_t& value) noexcept;
/// Sleeps the whole time, also when signals arrive.
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

// ---- System (system.cpp) ---------------------------------------------------------------------

/// The Windows platform identifier: 2 for the NT family, 1 for consumer Windows, 0 for a 16-bit host;
/// -1 on any other system or when the query fails.
int windowsPlatformId() noexcept;
/// The function itself behind an import thunk; everything else unchanged.
const void* resolveImportThunk(const void* function) noexcept;
/// Shows a stop message with an OK button and waits for it, where the system has message boxes. The text is
/// given in pieces; joining them takes no memory from the process's heap. What the system has no memory for
/// is cut.
void showStopMessage(const char* title, const char* const* pieces, std::size_t count) noexcept;

// ---- Message catalogs (catalogs.cpp) ---------------------------------------------------------

enum class CatalogOwner {
  ThisLibrary,  ///< found beside this library rather than where someone else may have put a file
  Other
};

/// A descriptor for reading the bytes of a catalog library's file (byte_files.h), or -1 when there is no such
/// file with contents. Windows: the loader's search, also for libraries that are loaded already. POSIX: a
/// name without directory is looked for beside the program, in the current directory, along PATH, and beside
/// this library, first as it is spelled and then in any letter case. This library's own catalog is looked for
/// beside this library, beside the program, along PATH, and only then in the current directory; on Windows,
/// by the loader.
int openCatalog(const char* fileName, CatalogOwner owner) noexcept;

// ---- Languages and code pages (languages.cpp) ------------------------------------------------

/// Windows language numbers; on POSIX from LC_ALL, LC_MESSAGES, LANG (user) or LANG (system),
/// 1033 when they say nothing.
std::uint32_t userLanguage() noexcept;
std::uint32_t systemLanguage() noexcept;
/// The user's language by ISO codes, "de-DE" or "de_DE", the territory only where the settings name one.
/// False when they say nothing, or the tag does not fit.
bool userLanguageTag(char* out, std::size_t capacity) noexcept;
/// Whether single-byte texts of this process are in fact UTF-8.
bool ansiIsUtf8() noexcept;
/// Converts to the process's single-byte code page, "?" for what it lacks. Returns the bytes
/// written, at most `capacity`, never part of a character; no terminator. Not for UTF-8.
std::size_t utf16ToAnsi(const char16_t* text, std::size_t length, char* out, std::size_t capacity) noexcept;

// ---- Code pages (code_pages.cpp) -------------------------------------------------------------

/// The process's ANSI and OEM code page. POSIX: the locale's code set by its CCSID, 1208 for UTF-8, for both;
/// 0 for one that has none. Where the program sets no locale, the environment's counts.
std::uint32_t ansiCodePage() noexcept;
std::uint32_t oemCodePage() noexcept;
/// Converts to one of these code pages, "?" for what it lacks. Returns the bytes written, without terminator;
/// 0 when the text is empty, the target too small or the code page unknown.
std::size_t utf16ToCodePage(std::uint32_t codePage, const char16_t* text, std::size_t length, char* out,
                            std::size_t capacity) noexcept;

}  // namespace vel::platform
