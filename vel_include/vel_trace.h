// Traces a program from within: entries are recorded in a ring buffer in memory, the ring is saved to a file,
// and the formatter renders the file as text. Environment variables that begin with the trace key in upper
// case select what is traced and where it goes; for the key abc: ABC_TRACE_ACTIVE=yes, ABC_TRACE_DETAIL=HIGH,
// ABC_TRACE_FILE=abc.trc. VelClTraceEnvironment lists all of them.
//
//   velTraceCreateInstance("abc", NULL);
//   if (velTraceIsEnabled())
//     velTraceDump(VelEnTraceDetail::LOW, 3, VelEnTraceDataType::C_STRING, "main", "file", name,
//     strlen(name));
//
// Any number of threads may trace at the same time. No entry is lost or mixed with another one; the entries
// of each thread are in the file in the order in which it traced them. Enabling, disabling and flushing are
// possible at any time; create and delete the instance, and change settings, while no other thread traces.
// Tracing never disturbs the program: bytes that cannot be saved are lost and counted, and saving preserves
// errno.
//
// vel_trace_entry.h describes a single entry, and vel_trace_formatter.h renders a trace file; this header
// includes both.
#ifndef VEL_TRACE_H_
#define VEL_TRACE_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"
#include "vel_trace_entry.h"

#if defined(VEL_HAS_CLASSES)
#include <atomic>
#include <iosfwd>
#include <type_traits>

#include "vel_filesys.h"
#include "vel_trace_formatter.h"
#endif

#if defined(__cplusplus)
class VelClTraceInstance;
namespace vel::trace {
class ThreadRings;
}
#else
typedef struct VelClTraceInstance VelClTraceInstance;
#endif

/// Creates the process's trace instance. If one exists already, that one is returned and the key is ignored.
/// A null instance name means "VELTRACEINSTANCE0". The instance starts enabled only if <KEY>_TRACE_ACTIVE is
/// on. Memory is allocated by the memory manager, which throws when memory runs out.
VEL_C_API VelClTraceInstance* velTraceCreateInstance(const char* key, const char* instance);
/// Saves the unsaved bytes and ends tracing; does nothing without an instance. The same happens when the
/// process ends or the library is unloaded.
VEL_C_API void velTraceDeleteInstance(void);
/// True if entries are recorded now: test it before preparing one. C++ programs test
/// `VelClTraceInstance::getInstance() != nullptr`, which costs one load and one branch.
VEL_C_API bool velTraceIsEnabled(void);
/// Returns the enabled instance, or null.
VEL_C_API VelClTraceInstance* VelClTraceInstance_getInstance(void);
/// Saves the unsaved bytes. Does nothing when no instance is enabled.
VEL_C_API void velTraceFlush(void);
/// Records one entry, if `detail` and `componentId` pass the filter. `size` is the length of `data` in bytes.
/// Texts may be null, which counts as "", and are cut at 255 stored bytes. Null data changes the type to
/// DATA_NULL; data longer than the ring is cut and gets the type DATA_CLIPPED. The types FUNCTION_ENTRY and
/// FUNCTION_EXIT update the nesting level and ignore message and data. Component 0 always passes; components
/// above 255 never do. Does nothing when no instance is enabled.
VEL_C_API void velTraceDump(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                            const char* origin, const char* message, const void* data, size_t size);
/// Return how many bytes of the instance's trace could not be written to its file so far, and the runtime's
/// errno of the last failure, or 0 if there was none. Both return 0 without an instance.
VEL_C_API uint64_t velTraceGetLostBytes(void);
VEL_C_API int velTraceGetLastSystemError(void);
/// Prints "[file:line] " and the arguments as printf does, adds a line break if `format` contains none, and
/// flushes standard output. Null texts are not allowed.
VEL_C_API void vel_tprintf(const char* file, int line, const char* format, ...);

#if defined(VEL_HAS_CLASSES)

/// Prints "[file:line] ".
VEL_API void vel_tprint(std::ostream& stream, const char* file, int line);

/// Selects the entries of interest. The settings test detail and component when an entry is recorded; the
/// formatter tests every property when an entry is shown.
class VEL_API VelClTraceFilter {
 public:
  /// Passes the details LOW and OFF, of every process, thread and component.
  VelClTraceFilter();

  /// Get and set the most detailed level that passes.
  VelEnTraceDetail getDetail() const { return detail_; }
  void setDetail(VelEnTraceDetail detail) { detail_ = detail; }
  /// Accepts HIGH, MED and LOW in any case, with any text after them; everything else, including null, means
  /// OFF.
  void setDetail(const char* text);
  /// Returns "OFF", "LOW", "MED" or "HIGH", or null for any other number.
  static const char* getDetailAsCString(VelEnTraceDetail detail);

  /// Select one process or thread; 0 selects all. A text is read as a decimal number, and counts as 0 if it
  /// does not begin with one.
  void setProcessId(unsigned int id) { processId_ = id; }
  void setProcessId(const char* text);
  void setThreadId(unsigned int id) { threadId_ = id; }
  void setThreadId(const char* text);
  unsigned int getProcessId() const { return processId_; }
  unsigned int getThreadId() const { return threadId_; }

  /// Tell whether an entry with this property passes.
  bool matchesDetail(VelEnTraceDetail detail) const { return detail <= detail_; }
  bool matchesProcessId(unsigned int id) const { return processId_ == 0 || processId_ == id; }
  bool matchesThreadId(unsigned int id) const { return threadId_ == 0 || threadId_ == id; }
  /// Always true for component 0, and false for ids above 255.
  bool matchesCompId(unsigned short id) const {
    return id == 0 || (id < kComponents && (components_[id / 8] >> id % 8 & 1) != 0);
  }
  /// True if a single process, or a single thread, is selected.
  bool usesProcessIdFilter() const { return processId_ != 0; }
  bool usesThreadIdFilter() const { return threadId_ != 0; }
  /// True if any component from 1 to 255 is excluded.
  bool usesCompIdFilter() const;

  /// Include or exclude one component. Ids above 255 are ignored.
  void enableComponentId(unsigned short id) { setBits(id, id, true); }
  void disableComponentId(unsigned short id) { setBits(id, id, false); }
  /// Include or exclude all components from 0 to 255.
  void enableAllComponentIds() { setBits(0, kComponents - 1, true); }
  void disableAllComponentIds() { setBits(0, kComponents - 1, false); }
  /// Include or exclude the components `from` to `to`, both inclusive; do nothing if `from` is greater than
  /// `to`.
  void enableComponentIdSet(unsigned short from, unsigned short to) { setBits(from, to, true); }
  void disableComponentIdSet(unsigned short from, unsigned short to) { setBits(from, to, false); }
  /// Same, but does nothing if `from` is 0, and changes `from` alone if `to` is 0.
  void setComponentIdSet(unsigned short from, unsigned short to, bool enable);
  /// Applies a comma-separated list of items: "7", "10.20" for a range, "*" for 1 to 255. A "-" before an
  /// item excludes it instead of including it. It applies to that item only: "-3,4" excludes 3 and includes
  /// 4. It does not form a range: "10-20" excludes 20. Other characters are ignored, as are items that begin
  /// above 255, and a null list.
  void enableComponentIds(const char* list);

 private:
  static constexpr unsigned int kComponents = 256;
  void setBits(unsigned int from, unsigned int to, bool enable);

  VelEnTraceDetail detail_;
  uint32_t processId_;
  uint32_t threadId_;
  unsigned char components_[kComponents / 8];  ///< component n: bit n % 8 of byte n / 8
};

/// The settings as a plain record, which can be placed in memory that the caller provides.
struct VEL_API _VelStTraceSettings {
  uint32_t signature;       ///< set once a VelClTraceSettings has initialised the record
  uint32_t flags;           ///< bits private to VelClTraceSettings
  VelClTraceFilter filter;  ///< detail and components

  /// Leaves signature and flags uninitialised; VelClTraceSettings sets them.
  _VelStTraceSettings() {}  // NOLINT(cppcoreguidelines-pro-type-member-init)
};

/// Selects what is recorded, and how. Initially only compression and autosave are on.
class VEL_API VelClTraceSettings {
 public:
  VelClTraceSettings();
  /// Resets and uses a record that the caller owns; the record must outlive this object.
  explicit VelClTraceSettings(void* record);
  VelClTraceSettings(const VelClTraceSettings&) = delete;
  VelClTraceSettings& operator=(const VelClTraceSettings&) = delete;

  /// True if texts are packed to 6 bits per character.
  bool usesCompression() const { return hasFlag(COMPRESSION); }
  /// True if the ring is saved to the trace file when it is full, on flush and at the end.
  bool usesAutosave() const { return hasFlag(AUTOSAVE); }
  /// True if an old trace file is removed at the start.
  bool usesAutoclear() const { return hasFlag(AUTOCLEAR); }
  /// True if every entry is saved immediately.
  bool usesAutoflush() const { return hasFlag(AUTOFLUSH); }
  /// True if the trace facility reports its actions on standard output.
  bool isVerbose() const { return hasFlag(VERBOSE); }

  /// Switch these on and off.
  void enableCompression(bool enable) { setFlag(COMPRESSION, enable); }
  // Intentional: the environment attaches the writer of the trace file in its constructor.
  /// Read only when the environment is constructed; later calls change usesAutosave() and nothing else.
  void enableAutosave(bool enable) { setFlag(AUTOSAVE, enable); }
  /// Switch these on and off.
  void enableAutoclear(bool enable) { setFlag(AUTOCLEAR, enable); }
  void enableAutoflush(bool enable) { setFlag(AUTOFLUSH, enable); }
  void enableVerbose(bool enable) { setFlag(VERBOSE, enable); }

  /// The detail of the filter, see VelClTraceFilter::setDetail.
  VelEnTraceDetail getDetailLevel() const { return record_->filter.getDetail(); }
  void setDetailLevel(const char* text) { record_->filter.setDetail(text); }
  /// Excludes all components, then applies the list, see VelClTraceFilter::enableComponentIds.
  void initComponentIds(const char* list);
  /// The filter, and its decision on an entry of this detail and component.
  VelClTraceFilter& getFilter() const { return record_->filter; }
  bool isToBeDumped(VelEnTraceDetail detail, unsigned short componentId) const {
    return record_->filter.matchesDetail(detail) && record_->filter.matchesCompId(componentId);
  }

  /// Return "[VEL: TRACE: " and "]\n", which enclose every report in verbose mode.
  static const char* getVerbosePrefix();
  static const char* getVerboseSuffix();

 private:
  enum VelEnFlag : uint32_t { COMPRESSION = 1, AUTOSAVE = 2, AUTOCLEAR = 4, AUTOFLUSH = 8, VERBOSE = 16 };
  bool hasFlag(VelEnFlag flag) const { return (record_->flags & flag) != 0; }
  void setFlag(VelEnFlag flag, bool enable) {
    record_->flags = enable ? record_->flags | flag : record_->flags & ~static_cast<uint32_t>(flag);
  }
  void init();

  _VelStTraceSettings* record_;
  _VelStTraceSettings own_;
};

/// The name of a resource: type, key and instance joined with ":", of 255 characters at most. A backslash
/// becomes ":". Letters, digits and "_-@" are kept, and every other character is mapped to one of them.
class VEL_API VelClResourceKeyABase {
 public:
  VelClResourceKeyABase(const VelClResourceKeyABase& other);
  VelClResourceKeyABase& operator=(const VelClResourceKeyABase& other);
  virtual ~VelClResourceKeyABase();

  /// Returns the whole name.
  const char* getAsCstring() const { return name_; }
  /// Returns the name after the type.
  const char* getPart() const { return part_; }

 protected:
  /// A null type or instance is left out; a null key counts as "".
  VelClResourceKeyABase(const char* type, const char* key, const char* instance);

 private:
  bool matches(const char* name) const;
  void add(const char* part);

  uint64_t length_;
  char name_[256];
  const char* part_;
};

/// The name of a semaphore: type "SEM32".
class VEL_API VelClResourceKeySemaphore : public VelClResourceKeyABase {
 public:
  /// A null instance is left out.
  VelClResourceKeySemaphore(const char* key, const char* instance);
  VelClResourceKeySemaphore(const VelClResourceKeySemaphore&) = default;
  VelClResourceKeySemaphore& operator=(const VelClResourceKeySemaphore&) = default;
  ~VelClResourceKeySemaphore() override;
};

/// Placeholder for a lock around the ring. It does nothing, because one process and one thread at a time
/// write to a ring.
class VEL_API VelClTraceBufferAccessSemaphore {
 public:
  /// The key is ignored.
  explicit VelClTraceBufferAccessSemaphore(const VelClResourceKeySemaphore&) {}
};

/// The bytes to be saved: the first piece followed by the second holds the unsaved bytes in order. The pieces
/// point into the ring and are valid during the call.
struct _VelStTraceBufferCallBackInfo {
  void* context;          ///< the context that was attached with the handler
  const char* first;      ///< never null
  uint64_t firstLength;   ///< in bytes, may be 0
  const char* second;     ///< null if the bytes are in one piece
  uint64_t secondLength;  ///< in bytes
};

/// Saves the pieces; called from write and flush.
typedef void (*VelTraceOverflowHandler)(const _VelStTraceBufferCallBackInfo& info);

/// A ring buffer of trace bytes, in memory that the caller owns. Without a handler it keeps the newest bytes
/// and overwrites the oldest; with a handler, unsaved bytes are passed to it before they are overwritten.
///
///   header   data start                                          data end
///   | 48     |                                                          |
///   |--------|....saved....|######### unsaved #########|....saved........|
///                          ^ save position             ^ write position
///
/// In the child of a fork() the bytes that its parent has not saved yet count as saved, because the parent
/// saves them.
///
/// Use a manager in one thread at a time. VelClTraceEnvironment gives each thread memory of its own.
class VEL_API VelClTraceBufferManager {
 public:
  /// `buffer` has `size` bytes, of which 48 are the header; it needs at least 49 and the alignment of a
  /// pointer, and must outlive the manager. Memory that a manager has initialised before keeps its contents;
  /// any other memory is treated as empty.
  VelClTraceBufferManager(const VelClResourceKeySemaphore& key, char* buffer, size_t size);
  VelClTraceBufferManager(const VelClTraceBufferManager&) = delete;
  VelClTraceBufferManager& operator=(const VelClTraceBufferManager&) = delete;
  /// Saves nothing, and does not access the ring, which may have been freed already.
  ~VelClTraceBufferManager();

  /// Returns the room for data in bytes, without the header.
  size_t getDataBufferSize() const;
  /// Sets the handler, of which there is at most one; `context` is passed to every call.
  void attachOverflowHandler(VelTraceOverflowHandler handler, void* context);
  /// Without a handler the oldest bytes are overwritten.
  void detachOverflowHandler() { handler_ = nullptr; }

  /// Appends an entry: its record and its data. An entry longer than the ring wraps around it more than once.
  void write(const VelClTraceEntry& entry);
  /// Returns the write position when more than `size` contiguous bytes there are already saved, else null.
  /// Writes nothing; follow with commit().
  unsigned char* reserve(size_t size);
  /// Appends the `size` bytes that the caller stored at the reserved position.
  void commit(size_t size);
  /// Passes the unsaved bytes to the handler, if anything was written since the last flush.
  void flush();

 private:
  struct Header;
  void write(const char* data, size_t length);
  void fill(const char* data, size_t length);
  size_t room() const;
  void append(const char* data, size_t length);
  void overflow() { callHandler(); }
  void callHandler();

  const VelClResourceKeySemaphore* key_;
  Header* header_;
  VelTraceOverflowHandler handler_;
  void* context_;
  bool dirty_;
  uint32_t forkCount_;
};

/// The state of one trace key: the settings, the ring and the trace file's name. Environment variables
/// configure it; their names begin with the first 24 characters of the key in upper case:
///
///   <KEY>_TRACE_ACTIVE     yes: trace
///   <KEY>_TRACE_DETAIL     HIGH, MED, LOW or OFF; LOW at first
///   <KEY>_TRACE_AUTOSAVE   yes: save to the trace file; on at first
///   <KEY>_TRACE_AUTOFLUSH  yes: save every entry at once
///   <KEY>_TRACE_AUTOCLEAR  yes: remove an old trace file at the start
///   <KEY>_TRACE_COMPRESS   yes: pack texts; on at first
///   <KEY>_TRACE_COMPSET    components, see VelClTraceFilter::enableComponentIds; all at first
///   <KEY>_TRACE_BUFSIZE    the ring's size in kilobytes, 4 to 16384; 65535 bytes at first
///   <KEY>_TRACE_FILE       the trace file's name, in which "%p" stands for the number of the process;
///                          <key>trace.trc in the directory for scratch files at first
///   <KEY>_TRACE_FORMAT     the formatter's format string
///   <KEY>_TRACE_VERBOSE    yes: report these settings, and every save, on standard output
///
/// "yes" may be ON, YES, TRUE or 1 in any case. Other values do not switch anything off, except in
/// <KEY>_TRACE_ACTIVE. Invalid values select the minimum: detail OFF, 4 kilobytes. A program on Linux that
/// has more privileges than its caller (setuid, setgid, capabilities) ignores all these variables.
///
/// On Linux a trace file under the default name is written only if it is the user's own: it must not be a
/// link, have a second name, belong to another user, or be writable by others. A file named by a variable or
/// a call is used without these checks.
///
/// The trace file does not begin with a header and is only appended to, so processes can share it. However, a
/// record that wraps around the end of the ring is saved in two parts, and another process may write between
/// them. Give each process its own file where that matters, by "%p" in its name. A failed save may leave part
/// of a record in the file; remove the file in that case.
///
/// If the file ends within a record when the environment first saves to it, because a program was killed, the
/// environment leaves that file as it is and goes on in one whose name has a dot and the number of the
/// process added. The child of a fork() does the same.
class VEL_API VelClTraceEnvironment : public VelClResourceKeySemaphore {
 public:
  /// A null key counts as ""; a null instance means "VELTRACEINSTANCE0". In controller mode, used to read a
  /// trace, an old trace file is never removed.
  VelClTraceEnvironment(const char* key, const char* instance, bool controllerMode);
  VelClTraceEnvironment(const VelClTraceEnvironment&) = delete;
  VelClTraceEnvironment& operator=(const VelClTraceEnvironment&) = delete;
  /// Saves the unsaved bytes.
  ~VelClTraceEnvironment() override;

  /// Make the environment active, or query it; initially <KEY>_TRACE_ACTIVE decides.
  void activate() { active_ = true; }
  bool isActive() const { return active_; }
  /// Appends an entry to the ring.
  void add(const VelClTraceEntry& entry);
  /// Appends an entry made of these values, see velTraceDump; it is built directly in the ring if there is
  /// room.
  void add(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type, const char* origin,
           const char* message, const void* data, size_t size);
  /// Saves the unsaved bytes; without autosave they stay in the ring as well.
  void flush();

  /// Returns the ring's room for entries in bytes.
  uint64_t getBufferSize() const { return manager_->getDataBufferSize(); }
  /// Returns the name of the trace file.
  const VelClFilename& getFilename() const { return filename_; }
  /// Sets the file for saving and formatting from now on. A name of more than 260 characters is cut.
  void setFilename(const char* name);
  /// Returns the text of setFormatString or <KEY>_TRACE_FORMAT; if neither was set, a format that shows
  /// everything.
  const char* getFormatString() const { return format_; }
  /// Sets the format. Cut at 512 characters; null counts as "".
  void setFormatString(const char* format);
  /// Returns the settings, for reading and changing.
  VelClTraceSettings& getSettings() const { return *settings_; }
  /// Returns the identifier of the process.
  unsigned int getProcessId() const { return processId_; }
  /// Returns velGetTimeStamp().
  unsigned long getTimeStamp() const;
  /// True if the ring is in memory shared by processes; always false.
  bool usesSharedMemory() const { return sharedMemory_; }
  /// True if constructed in controller mode.
  bool isController() const { return controllerMode_; }

  /// Adds to the totals for the compression rate: the sizes of a text in bytes before and after compression.
  /// The totals have 32 bits and wrap.
  void recordCompressionRate(size_t before, size_t after) const;
  /// Returns the compressed size divided by the plain size, or 0.0 if nothing was recorded.
  float getCompressionRate() const;

  /// Return the number of bytes that could not be written to the trace file, and the errno of the last
  /// failure.
  uint64_t getLostBytes() const;
  int getLastSystemError() const;

 private:
  friend class vel::trace::ThreadRings;
  VEL_LOCAL void continueInChild(bool hasTraced);
  VEL_LOCAL void countLost(uint64_t bytes);
  void determineSettingsFromEnvVars(const char* key);
  void report(const char* key) const;
  static void save(const _VelStTraceBufferCallBackInfo& info);
  void append(const _VelStTraceBufferCallBackInfo& info);

  VelClTraceBufferManager* manager_;
  VelClTraceSettings* settings_;
  uint32_t bufferSize_;
  uint32_t processId_;
  VelClFilename filename_;
  char format_[513];
  char* buffer_;
  bool active_;
  bool sharedMemory_;
  bool controllerMode_;
  mutable uint32_t plainTotal_;
  mutable uint32_t compressedTotal_;
  uint64_t lostBytes_;
  int lastSystemError_;
  bool isDefaultFile_;  ///< the name is the default one: no variable and no call has set it
};

/// Receives entries, from several threads at the same time if the program has them. `context` is the value
/// registered with the callback; the other arguments are those of velTraceDump.
typedef void (*VelTraceCallback)(void* context, VelEnTraceDetail detail, unsigned short componentId,
                                 VelEnTraceDataType type, const char* origin, const char* message,
                                 const void* data, size_t size);

/// The enabled instance, or null when nothing is traced. Read it through VelClTraceInstance::getInstance.
extern VEL_API VelClTraceInstance* gs_pclVelTraceInstance;

/// The trace of the process.
class VEL_API VelClTraceInstance {
 public:
  VelClTraceInstance(const VelClTraceInstance&) = delete;
  VelClTraceInstance& operator=(const VelClTraceInstance&) = delete;

  /// Same as velTraceCreateInstance. The library owns the instance.
  static VelClTraceInstance* createInstance(const char* key, const char* instance);
  /// Same, in controller mode, for programs that read a trace.
  static VelClTraceInstance* createControllerInstance(const char* key, const char* instance);
  /// Same as velTraceDeleteInstance.
  static void deleteInstance();
  /// Returns the instance, enabled or not, or null if it has not been created.
  static VelClTraceInstance* getSingletonInstance();
  /// Returns the enabled instance, or null.
  static VelClTraceInstance* getInstance() {
    return std::atomic_ref(gs_pclVelTraceInstance).load(std::memory_order_acquire);
  }

  /// Switch recording on, which requires an active environment, and off. Switching off saves the unsaved
  /// bytes first.
  void enable();
  void disable();
  /// Makes the environment active. It does not enable recording: call enable() afterwards.
  void activate();
  /// True if the environment is active.
  bool isActive() const;
  /// True if any instance is enabled.
  bool isEnabled() const { return getInstance() != nullptr; }
  /// Saves the unsaved bytes, if the environment is active.
  void flush();
  /// Returns the environment of the key; the instance owns it.
  VelClTraceEnvironment& getEnvironment() const { return *environment_; }

  /// Redirects every entry to `callback` instead of the ring. The callback must serialise the entries of
  /// several threads itself.
  void registerUserCallback(VelTraceCallback callback, void* context);
  /// True if entries go to the ring.
  bool usesVelBackEnd() const { return callback_ == &dumpImp; }
  /// Passes an entry to the back end unchanged, even when no instance is enabled; the ring's back end applies
  /// the filter. See velTraceDump.
  void dump(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type, const char* origin,
            const char* message, const void* data, size_t size) {
    callback_(context_, detail, componentId, type, origin, message, data, size);
  }
  /// Records a function's entry (FUNCTION_ENTRY) or exit (any other type), with the resulting nesting level
  /// of the calling thread as data.
  // Intentional: only LOW is lowered; MEDIUM and HIGH are filtered as usual.
  /// The detail LOW becomes OFF, so that such records pass every filter of details.
  void dumpFunction(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                    const char* origin);

 private:
  VelClTraceInstance(const char* key, const char* instance, bool controllerMode);
  ~VelClTraceInstance();
  static VelClTraceInstance* create(const char* key, const char* instance, bool controllerMode);
  static void dumpImp(void* context, VelEnTraceDetail detail, unsigned short componentId,
                      VelEnTraceDataType type, const char* origin, const char* message, const void* data,
                      size_t size);

  static VelClTraceInstance* cv_pclSingletonInstance;

  [[maybe_unused]] uint32_t unused_[2];
  VelClTraceEnvironment* environment_;
  VelTraceCallback callback_;
  void* context_;
  int32_t nestingLevel_;
};

/// Deletes the trace instance on destruction. The library holds one such object, which is destroyed when the
/// library is unloaded.
class VEL_API VelClTraceAutomaticInstanceDestructor {
 public:
  ~VelClTraceAutomaticInstanceDestructor();
};

/// Traces a function's entry and, at the end of the scope, its exit. `origin` is not copied: pass a literal.
class VelClTraceFunction {
 public:
  /// Records the entry.
  VelClTraceFunction(VelEnTraceDetail detail, unsigned short componentId, const char* origin)
      : detail_(detail), componentId_(componentId), origin_(origin) {
    record(VelEnTraceDataType::FUNCTION_ENTRY);
  }
  VelClTraceFunction(const VelClTraceFunction&) = delete;
  VelClTraceFunction& operator=(const VelClTraceFunction&) = delete;
  ~VelClTraceFunction() { record(VelEnTraceDataType::FUNCTION_EXIT); }

 private:
  void record(VelEnTraceDataType type) const {
    if (VelClTraceInstance* instance = VelClTraceInstance::getInstance())
      instance->dumpFunction(detail_, componentId_, type, origin_);
  }

  VelEnTraceDetail detail_;
  unsigned short componentId_;
  const char* origin_;
};

/// Returns the data type for a number, a bool or a pointer, and DATA for every other type.
template <typename Value>
constexpr VelEnTraceDataType velTraceTypeOf() {
  if constexpr (std::is_pointer_v<Value>) return VelEnTraceDataType::ADDRESS;
  if constexpr (std::is_same_v<Value, bool>) return VelEnTraceDataType::BOOLEAN_VALUE;
  if constexpr (std::is_same_v<Value, float>) return VelEnTraceDataType::FLOAT_32;
  if constexpr (std::is_same_v<Value, double>) return VelEnTraceDataType::FLOAT_64;
  if constexpr (std::is_same_v<Value, long double>) return VelEnTraceDataType::LONG_DOUBLE;
  if constexpr (!std::is_integral_v<Value> || sizeof(Value) > 8) return VelEnTraceDataType::DATA;
  // SIGNED_8, UNSIGNED_8, SIGNED_16 and so on are consecutive.
  const int bytesAsPower = sizeof(Value) == 1 ? 0 : sizeof(Value) == 2 ? 1 : sizeof(Value) == 4 ? 2 : 3;
  return static_cast<VelEnTraceDataType>(static_cast<int>(VelEnTraceDataType::SIGNED_8) + 2 * bytesAsPower +
                                         (std::is_signed_v<Value> ? 0 : 1));
}

/// Traces one value with its own data type; costs one load and one branch when nothing is enabled. For a
/// pointer its address is recorded, not the object it points to.
template <typename Value>
void velTraceValue(VelEnTraceDetail detail, unsigned short componentId, const char* origin,
                   const char* message, const Value& value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  if (VelClTraceInstance* instance = VelClTraceInstance::getInstance())
    instance->dump(detail, componentId, velTraceTypeOf<std::remove_cv_t<Value>>(), origin, message, &value,
                   sizeof value);
}

#endif

#endif
