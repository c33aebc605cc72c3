// Tracing a program from within: entries land in a ring in memory, the ring is saved to a file, and the
// formatter makes text of the file. What is traced, and where to, is set by environment variables that begin
// with the trace key in upper case, for the key abc: ABC_TRACE_ACTIVE=yes, ABC_TRACE_DETAIL=HIGH,
// ABC_TRACE_FILE=abc.trc; VelClTraceEnvironment has all of them.
//
//   velTraceCreateInstance("abc", NULL);
//   if (velTraceIsEnabled())
//     velTraceDump(VelEnTraceDetail::LOW, 3, VelEnTraceDataType::C_STRING, "main", "file", name,
//     strlen(name));
//
// Trace calls come from one thread, or from threads that take turns; nothing here locks. Tracing never
// harms the program: what cannot be saved is lost and counted, and saving leaves errno as it was.
//
// What an entry is stands in vel_trace_entry.h, what makes text of a file in vel_trace_formatter.h; this
// header includes both.
#ifndef VEL_TRACE_H_
#define VEL_TRACE_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"
#include "vel_trace_entry.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>
#include <type_traits>

#include "vel_filesys.h"
#include "vel_trace_formatter.h"
#endif

#if defined(__cplusplus)
class VelClTraceInstance;
#else
typedef struct VelClTraceInstance VelClTraceInstance;
#endif

/// Creates the process's trace instance; when there is one, that one is returned and the key is ignored.
/// A null instance name means "VELTRACEINSTANCE0". It starts enabled only if <KEY>_TRACE_ACTIVE is. Memory
/// comes from the memory manager, whose failure throws.
VEL_C_API VelClTraceInstance* velTraceCreateInstance(const char* key, const char* instance);
/// Saves what is not saved yet and ends tracing; without an instance it does nothing. The end of the process,
/// or the unload of the library, does the same.
VEL_C_API void velTraceDeleteInstance(void);
/// Whether entries are recorded now: ask before preparing one. C++ programs ask
/// `VelClTraceInstance::getInstance() != nullptr`, which costs one load and one branch.
VEL_C_API bool velTraceIsEnabled(void);
/// The enabled instance, or null.
VEL_C_API VelClTraceInstance* VelClTraceInstance_getInstance(void);
/// Saves what is not saved yet. Does nothing when no instance is enabled.
VEL_C_API void velTraceFlush(void);
/// Records one entry, if `detail` and `componentId` pass the filter. Texts may be null, which counts as "",
/// and are cut at 255 stored bytes. Data of null makes the type DATA_NULL, data longer than the ring is cut,
/// with the type DATA_CLIPPED. The types FUNCTION_ENTRY and FUNCTION_EXIT count the nesting level and ignore
/// message and data. Component 0 always passes; components above 255 never do. Does nothing when no instance
/// is enabled.
VEL_C_API void velTraceDump(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                            const char* origin, const char* message, const void* data, size_t size);
/// How many bytes of the instance's trace could not be written to its file so far, and the runtime's errno
/// of the last failure, 0 without one. Both 0 without an instance.
VEL_C_API uint64_t velTraceGetLostBytes(void);
VEL_C_API int velTraceGetLastSystemError(void);
/// Prints "[file:line] ", then as printf does, then a line break if `format` holds none anywhere, and flushes
/// standard output. Null texts are not allowed.
VEL_C_API void vel_tprintf(const char* file, int line, const char* format, ...);

#if defined(VEL_HAS_CLASSES)

/// Prints "[file:line] ".
VEL_API void vel_tprint(std::ostream& stream, const char* file, int line);

/// Which entries are of interest. The settings ask it for detail and component when an entry is made, the
/// formatter for everything when an entry is shown.
class VEL_API VelClTraceFilter {
 public:
  /// Passes detail low and off, of every process, thread and component.
  VelClTraceFilter();

  /// The most detailed level that passes.
  VelEnTraceDetail getDetail() const { return detail_; }
  void setDetail(VelEnTraceDetail detail) { detail_ = detail; }
  /// HIGH, MED and LOW in any letter case, with anything behind them; all else, also null, means OFF.
  void setDetail(const char* text);
  /// "OFF", "LOW", "MED" or "HIGH"; null for any other number.
  static const char* getDetailAsCString(VelEnTraceDetail detail);

  /// 0 means any. Texts are decimal numbers; text without one counts as 0.
  void setProcessId(unsigned int id) { processId_ = id; }
  void setProcessId(const char* text);
  void setThreadId(unsigned int id) { threadId_ = id; }
  void setThreadId(const char* text);
  unsigned int getProcessId() const { return processId_; }
  unsigned int getThreadId() const { return threadId_; }

  /// Whether an entry with this property passes.
  bool matchesDetail(VelEnTraceDetail detail) const { return detail <= detail_; }
  bool matchesProcessId(unsigned int id) const { return processId_ == 0 || processId_ == id; }
  bool matchesThreadId(unsigned int id) const { return threadId_ == 0 || threadId_ == id; }
  /// Always true for component 0, and false for ids above 255.
  bool matchesCompId(unsigned short id) const {
    return id == 0 || (id < kComponents && (components_[id / 8] >> id % 8 & 1) != 0);
  }
  /// Whether a process, or a thread, is chosen.
  bool usesProcessIdFilter() const { return processId_ != 0; }
  bool usesThreadIdFilter() const { return threadId_ != 0; }
  /// Whether a component from 1 to 255 is shut out.
  bool usesCompIdFilter() const;

  /// Ids above 255 are ignored.
  void enableComponentId(unsigned short id) { setBits(id, id, true); }
  void disableComponentId(unsigned short id) { setBits(id, id, false); }
  /// From 0 to 255.
  void enableAllComponentIds() { setBits(0, kComponents - 1, true); }
  void disableAllComponentIds() { setBits(0, kComponents - 1, false); }
  /// From one id to another, both included; nothing when `from` is above `to`.
  void enableComponentIdSet(unsigned short from, unsigned short to) { setBits(from, to, true); }
  void disableComponentIdSet(unsigned short from, unsigned short to) { setBits(from, to, false); }
  /// The same, but nothing for a `from` of 0, and `from` alone for a `to` of 0.
  void setComponentIdSet(unsigned short from, unsigned short to, bool enable);
  /// Applies a list of items separated by ",": "7", "10.20" for a range, "*" for 1 to 255, each of them
  /// behind "-" to shut out instead of in. "-" marks its own item only: "-3,4" shuts 3 out and lets 4 in.
  /// It is no range sign: "10-20" shuts 20 out. Other characters, and items that begin above 255, are
  /// ignored; so is null.
  void enableComponentIds(const char* list);

 private:
  static constexpr unsigned int kComponents = 256;
  void setBits(unsigned int from, unsigned int to, bool enable);

  VelEnTraceDetail detail_;
  uint32_t processId_;
  uint32_t threadId_;
  unsigned char components_[kComponents / 8];  ///< component n: bit n % 8 of byte n / 8
};

/// The settings in a form that can lie in anybody's memory.
struct VEL_API _VelStTraceSettings {
  uint32_t signature;       ///< tells that a VelClTraceSettings has initialised the record
  uint32_t flags;           ///< VelClTraceSettings knows the bits
  VelClTraceFilter filter;  ///< detail and components

  /// Leaves signature and flags as they are in memory.
  _VelStTraceSettings() {}  // NOLINT(cppcoreguidelines-pro-type-member-init)
};

/// What is recorded, and how. Only compression and autosave are on at first.
class VEL_API VelClTraceSettings {
 public:
  VelClTraceSettings();
  /// Works on a record that the caller owns, and resets it; it must live longer.
  explicit VelClTraceSettings(void* record);
  VelClTraceSettings(const VelClTraceSettings&) = delete;
  VelClTraceSettings& operator=(const VelClTraceSettings&) = delete;

  /// Texts are packed to 6 bits a character.
  bool usesCompression() const { return hasFlag(COMPRESSION); }
  /// The ring is saved to the trace file when it is full, on flush and at the end.
  bool usesAutosave() const { return hasFlag(AUTOSAVE); }
  /// An old trace file is removed at the start.
  bool usesAutoclear() const { return hasFlag(AUTOCLEAR); }
  /// Every entry is saved at once.
  bool usesAutoflush() const { return hasFlag(AUTOFLUSH); }
  /// The trace facility reports what it does on standard output.
  bool isVerbose() const { return hasFlag(VERBOSE); }

  /// Switch these on and off.
  void enableCompression(bool enable) { setFlag(COMPRESSION, enable); }
  // The trace file's writer is attached when the environment is built. Keep.
  /// The environment has looked at autosave when it was built: this only changes what usesAutosave tells.
  void enableAutosave(bool enable) { setFlag(AUTOSAVE, enable); }
  /// Switch these on and off.
  void enableAutoclear(bool enable) { setFlag(AUTOCLEAR, enable); }
  void enableAutoflush(bool enable) { setFlag(AUTOFLUSH, enable); }
  void enableVerbose(bool enable) { setFlag(VERBOSE, enable); }

  /// The filter's detail, see VelClTraceFilter::setDetail.
  VelEnTraceDetail getDetailLevel() const { return record_->filter.getDetail(); }
  void setDetailLevel(const char* text) { record_->filter.setDetail(text); }
  /// Shuts all components out, then applies the list.
  void initComponentIds(const char* list);
  /// What entries are asked, as isToBeDumped does.
  VelClTraceFilter& getFilter() const { return record_->filter; }
  bool isToBeDumped(VelEnTraceDetail detail, unsigned short componentId) const {
    return record_->filter.matchesDetail(detail) && record_->filter.matchesCompId(componentId);
  }

  /// "[VEL: TRACE: " and "]\n", the frame of every report in verbose mode.
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

/// The name of a resource, made of type, key and instance with ":" between them, of 255 characters at most. A
/// back-slash becomes ":", every other character except letters, digits and "_-@" becomes one of these.
class VEL_API VelClResourceKeyABase {
 public:
  VelClResourceKeyABase(const VelClResourceKeyABase& other);
  VelClResourceKeyABase& operator=(const VelClResourceKeyABase& other);
  virtual ~VelClResourceKeyABase();

  /// The whole name.
  const char* getAsCstring() const { return name_; }
  /// The name behind the type.
  const char* getPart() const { return part_; }

 protected:
  /// Null texts are left out; a key of null counts as "".
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

/// The place of a lock around the ring. The ring belongs to one process and one thread at a time: it does
/// nothing.
class VEL_API VelClTraceBufferAccessSemaphore {
 public:
  /// The key is not used.
  explicit VelClTraceBufferAccessSemaphore(const VelClResourceKeySemaphore&) {}
};

/// What the ring hands to be saved: the first piece, then the second, are the unsaved bytes in order. The
/// pieces lie in the ring and are valid during the call.
struct _VelStTraceBufferCallBackInfo {
  void* context;          ///< what was attached with the handler
  const char* first;      ///< never null
  uint64_t firstLength;   ///< in bytes, may be 0
  const char* second;     ///< null when there is none
  uint64_t secondLength;  ///< in bytes
};

/// Takes the pieces; called within write and flush.
typedef void (*VelTraceOverflowHandler)(const _VelStTraceBufferCallBackInfo& info);

/// The ring of bytes that trace entries pass through, in memory that the caller owns. Without a handler it
/// keeps the newest bytes and overwrites the oldest; with one, bytes are handed over before that.
///
///   header   data start                                          data end
///   | 48     |                                                          |
///   |--------|....saved....|######### unsaved #########|....saved........|
///                          ^ save position             ^ write position
///
/// In the child of a fork() what its parent has not saved yet counts as saved: the parent hands it over.
class VEL_API VelClTraceBufferManager {
 public:
  /// `size` bytes, of which 48 are the header; at least 49, aligned for pointers. Memory that a manager has
  /// initialised before keeps its contents, all other is taken as empty.
  VelClTraceBufferManager(const VelClResourceKeySemaphore& key, char* buffer, size_t size);
  VelClTraceBufferManager(const VelClTraceBufferManager&) = delete;
  VelClTraceBufferManager& operator=(const VelClTraceBufferManager&) = delete;
  /// Saves nothing, and touches no memory of the ring: that may be gone.
  ~VelClTraceBufferManager();

  /// In bytes, without the header.
  size_t getDataBufferSize() const;
  /// One handler at a time; `context` comes back with every call.
  void attachOverflowHandler(VelTraceOverflowHandler handler, void* context);
  /// Without a handler the oldest bytes are overwritten.
  void detachOverflowHandler() { handler_ = nullptr; }

  /// Appends an entry: its record and its data. One that is longer than the ring goes around it more than
  /// once.
  void write(const VelClTraceEntry& entry);
  /// Where the next entry goes, if more than `size` bytes may be overwritten there that nobody waits for;
  /// otherwise null. Nothing is written yet.
  unsigned char* reserve(size_t size);
  /// Appends what was put there.
  void commit(size_t size);
  /// Hands over what has not been saved yet, if anything was written since the last flush.
  void flush();

 private:
  struct Header;
  void write(const char* data, size_t length);
  void fill(const char* data, size_t length);
  size_t room() const;
  void append(const char* data, size_t length);
  void overflow() { handOver(); }
  void handOver();

  const VelClResourceKeySemaphore* key_;
  Header* header_;
  VelTraceOverflowHandler handler_;
  void* context_;
  bool dirty_;
  uint32_t forkCount_;
};

/// What belongs to one trace key: the settings, the ring and the trace file's name. Environment variables,
/// named by the first 24 characters of the key in upper case, set:
///
///   <KEY>_TRACE_ACTIVE     yes: trace
///   <KEY>_TRACE_DETAIL     HIGH, MED, LOW or OFF; LOW at first
///   <KEY>_TRACE_AUTOSAVE   yes: save to the trace file; on at first
///   <KEY>_TRACE_AUTOFLUSH  yes: save every entry at once
///   <KEY>_TRACE_AUTOCLEAR  yes: remove an old trace file at the start
///   <KEY>_TRACE_COMPRESS   yes: pack texts; on at first
///   <KEY>_TRACE_COMPSET    components, see VelClTraceFilter::enableComponentIds; all at first
///   <KEY>_TRACE_BUFSIZE    the ring's size in kilobytes, 4 to 16384; 65535 bytes at first
///   <KEY>_TRACE_FILE       the trace file's name; <key>trace.trc in the directory for scratch files at first
///   <KEY>_TRACE_FORMAT     the formatter's format string
///   <KEY>_TRACE_VERBOSE    yes: report all this, and every save, on standard output
///
/// "yes" may be ON, YES, TRUE or 1 in any letter case. Other values switch nothing off, except in
/// <KEY>_TRACE_ACTIVE. Values that make no sense count as the least: detail OFF, 4 kilobytes. In a program on
/// Linux that has more rights than its caller (setuid, setgid, capabilities) all these variables are ignored.
///
/// On Linux a trace file that no variable and no call has named is written only if it is the user's own: no
/// link, no second name, not of another user, and not writable for others. A file that is named is taken as
/// it is.
///
/// The trace file is appended to and has no header, so that processes can share it; but a record that wraps
/// around the end of the ring is saved in two parts, between which another process may write. Give each
/// process a file of its own where that matters. A save that fails may leave a part of a record in the file;
/// remove the file then.
class VEL_API VelClTraceEnvironment : public VelClResourceKeySemaphore {
 public:
  /// A null key counts as ""; a null instance means "VELTRACEINSTANCE0". In controller mode, for
  /// reading a trace, an old trace file is never removed.
  VelClTraceEnvironment(const char* key, const char* instance, bool controllerMode);
  VelClTraceEnvironment(const VelClTraceEnvironment&) = delete;
  VelClTraceEnvironment& operator=(const VelClTraceEnvironment&) = delete;
  /// Saves what is not saved yet.
  ~VelClTraceEnvironment() override;

  /// <KEY>_TRACE_ACTIVE, or what was activated since.
  void activate() { active_ = true; }
  bool isActive() const { return active_; }
  /// Puts an entry into the ring.
  void add(const VelClTraceEntry& entry);
  /// The same for an entry that is made of these; it is built where it will stand, if there is room.
  void add(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type, const char* origin,
           const char* message, const void* data, size_t size);
  /// Saves what is not saved yet; without autosave it stays in the ring, too.
  void flush();

  /// The ring's room for entries, in bytes.
  uint64_t getBufferSize() const { return manager_->getDataBufferSize(); }
  /// The trace file's.
  const VelClFilename& getFilename() const { return filename_; }
  /// For saving and formatting from now on. Longer names than 260 characters are cut.
  void setFilename(const char* name) {
    filename_ = name;
    isDefaultFile_ = false;
  }
  /// Of setFormatString or <KEY>_TRACE_FORMAT; without these, one that shows everything.
  const char* getFormatString() const { return format_; }
  /// Cut at 512 characters; null counts as "".
  void setFormatString(const char* format);
  /// To read and to change.
  VelClTraceSettings& getSettings() const { return *settings_; }
  /// Of the process that made the environment.
  unsigned int getProcessId() const { return processId_; }
  /// velGetTimeStamp.
  unsigned long getTimeStamp() const;
  /// Whether the ring lies in memory that processes share; always false.
  bool usesSharedMemory() const { return sharedMemory_; }
  /// Whether it was made in controller mode.
  bool isController() const { return controllerMode_; }

  /// Count texts for the compression rate: their sizes in bytes before and after compression. The totals
  /// have 32 bits and wrap.
  void recordCompressionRate(size_t before, size_t after) const;
  /// Compressed size divided by plain size, 0.0 when nothing was recorded.
  float getCompressionRate() const;

  /// What could not be written to the trace file, and the errno of the last failure.
  uint64_t getLostBytes() const { return lostBytes_; }
  int getLastSystemError() const { return lastSystemError_; }

 private:
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
  bool isDefaultFile_;  ///< no variable and no call has named the file
};

/// Where entries go. `context` is what was registered with it; the other arguments are those of
/// velTraceDump.
typedef void (*VelTraceCallback)(void* context, VelEnTraceDetail detail, unsigned short componentId,
                                 VelEnTraceDataType type, const char* origin, const char* message,
                                 const void* data, size_t size);

/// The enabled instance, or null: nothing is traced. Read it through VelClTraceInstance::getInstance.
extern VEL_API VelClTraceInstance* gs_pclVelTraceInstance;

/// The process's trace.
class VEL_API VelClTraceInstance {
 public:
  VelClTraceInstance(const VelClTraceInstance&) = delete;
  VelClTraceInstance& operator=(const VelClTraceInstance&) = delete;

  /// See velTraceCreateInstance. The instance belongs to the library.
  static VelClTraceInstance* createInstance(const char* key, const char* instance);
  /// The same in controller mode, for programs that read a trace.
  static VelClTraceInstance* createControllerInstance(const char* key, const char* instance);
  /// See velTraceDeleteInstance.
  static void deleteInstance();
  /// The instance, enabled or not, or null when there is none.
  static VelClTraceInstance* getSingletonInstance();
  /// The enabled instance, or null.
  static VelClTraceInstance* getInstance() { return gs_pclVelTraceInstance; }

  /// Switch recording on, which needs an active environment, and off; off saves first.
  void enable();
  void disable();
  /// Makes the environment active; enable comes afterwards.
  void activate();
  /// Whether the environment is active.
  bool isActive() const;
  /// Whether any instance is enabled.
  bool isEnabled() const { return gs_pclVelTraceInstance != nullptr; }
  /// Saves what is not saved yet, if the environment is active.
  void flush();
  /// The environment of the key, owned by the instance.
  VelClTraceEnvironment& getEnvironment() const { return *environment_; }

  /// Hands every entry to another back end instead of the ring; serialise the entries of several threads
  /// there.
  void registerUserCallback(VelTraceCallback callback, void* context);
  /// Whether entries go to the ring.
  bool usesVelBackEnd() const { return callback_ == &dumpImp; }
  /// Hands an entry to the back end as it is, also when nothing is enabled. See velTraceDump.
  void dump(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type, const char* origin,
            const char* message, const void* data, size_t size) {
    callback_(context_, detail, componentId, type, origin, message, data, size);
  }
  /// Records a function's entry (FUNCTION_ENTRY) or exit (any other type) with the nesting level behind it.
  // Only LOW is lowered. Keep.
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

/// Deletes the trace instance when it goes: the library has one, which is destroyed at its unload.
class VEL_API VelClTraceAutomaticInstanceDestructor {
 public:
  ~VelClTraceAutomaticInstanceDestructor();
};

/// Traces a function's entry and, at the end of its scope, its exit. `origin` is a literal.
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

/// The data type of a number, a bool or a pointer; DATA for everything else.
template <typename Value>
constexpr VelEnTraceDataType velTraceTypeOf() {
  if constexpr (std::is_pointer_v<Value>) return VelEnTraceDataType::ADDRESS;
  if constexpr (std::is_same_v<Value, bool>) return VelEnTraceDataType::BOOLEAN_VALUE;
  if constexpr (std::is_same_v<Value, float>) return VelEnTraceDataType::FLOAT_32;
  if constexpr (std::is_same_v<Value, double>) return VelEnTraceDataType::FLOAT_64;
  if constexpr (std::is_same_v<Value, long double>) return VelEnTraceDataType::LONG_DOUBLE;
  if constexpr (!std::is_integral_v<Value> || sizeof(Value) > 8) return VelEnTraceDataType::DATA;
  // SIGNED_8, UNSIGNED_8, SIGNED_16 and so on follow one another.
  const int bytesAsPower = sizeof(Value) == 1 ? 0 : sizeof(Value) == 2 ? 1 : sizeof(Value) == 4 ? 2 : 3;
  return static_cast<VelEnTraceDataType>(static_cast<int>(VelEnTraceDataType::SIGNED_8) + 2 * bytesAsPower +
                                         (std::is_signed_v<Value> ? 0 : 1));
}

/// Traces one value with the data type that it has; costs one load and one branch when nothing is enabled.
/// A pointer is traced itself, not what it leads to.
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
