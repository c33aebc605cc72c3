// The environment of a trace key: owns the settings and the ring, and initialises them from environment
// variables. Saving the ring's bytes to the file is trace_file_writer.cpp's work.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>

#include "base/ascii.h"
#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "platform/environment.h"
#include "platform/processes.h"
#include "trace/file_name.h"
#include "trace/record.h"
#include "trace/thread_rings.h"
#include "trace/verbose_line.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_trace.h"

namespace {

using vel::trace::ThreadRings;
using vel::trace::VerboseLine;

constexpr char kDefaultInstance[] = "VELTRACEINSTANCE0";
constexpr char kDefaultFormat[] = "%f%n   P: %p, T: %s, D: %l, C: %c%n   Data: %m (%x: %d%n)";
// Intentional: callers get a default of 65535 bytes, one less than 64 KiB.
constexpr std::uint32_t kDefaultBufferSize = 65535;
constexpr std::int32_t kSmallestBuffer = 4096;
constexpr std::int32_t kMaxBufferSize = 0x1000000;
/// With the longest suffix, 16 characters, a name then has 40, the most that a variable's name may have.
constexpr std::size_t kMaxVariableKeyLength = 24;

/// Reads the environment variables of a key. Their names are the
/// beginning of the key in upper case and a suffix.
class Variables {
 public:
  explicit Variables(const char* key) {
    for (; *key != '\0' && keyLength_ < kMaxVariableKeyLength; ++key)
      name_[keyLength_++] = vel::toAsciiUpper(*key);
  }

  /// Returns null when the variable is not set. Valid until the environment changes.
  const char* value(const char* suffix) {
    std::memcpy(name_ + keyLength_, suffix, std::strlen(suffix) + 1);
    // No variable can have a '=' in its name, but systems disagree about what a query for one returns.
    return std::strchr(name_, '=') == nullptr ? vel::platform::settingValue(name_) : nullptr;
  }
  bool isEnabled(const char* suffix) { return vel::isEnabledValue(value(suffix)); }

 private:
  std::size_t keyLength_ = 0;
  char name_[VelClEnvironmentVariableABase::kMaxNameLength + 1] = {};
};

/// Converts a number of kilobytes to a buffer size within the limits. Intentional: computed with 32 bits and
/// compared as signed, so negative numbers and those from 2 GiB on give the smallest buffer.
std::uint32_t bufferSizeFrom(const char* kilobytes) {
  const auto bytes = static_cast<std::int32_t>(static_cast<std::uint32_t>(vel::parseInt32(kilobytes)) << 10);
  return static_cast<std::uint32_t>(std::clamp(bytes, kSmallestBuffer, kMaxBufferSize));
}

}  // namespace

VelClTraceEnvironment::VelClTraceEnvironment(const char* key, const char* instance, bool controllerMode)
    : VelClResourceKeySemaphore(key, instance == nullptr ? kDefaultInstance : instance),
      manager_(nullptr),
      settings_(nullptr),
      bufferSize_(kDefaultBufferSize),
      processId_(vel::platform::currentProcessId()),
      format_{},
      buffer_(nullptr),
      active_(false),
      sharedMemory_(false),
      controllerMode_(controllerMode),
      plainTotal_(0),
      compressedTotal_(0),
      lostBytes_(0),
      lastSystemError_(0),
      isDefaultFile_(false) {
  // The destructor does not run when the constructor throws, so local
  // owners release what was allocated before.
  vel::OwnedObject<VelClTraceSettings> settings(vel::create<VelClTraceSettings>());
  settings_ = settings.get();
  determineSettingsFromEnvVars(vel::textOrEmpty(key));
  vel::OwnedText buffer(static_cast<char*>(VelClMemoryManager::malloc(bufferSize_)));
  std::memset(buffer.get(), 0, bufferSize_);
  auto* const rings = vel::create<ThreadRings>(*this, buffer.get(), bufferSize_);
  manager_ = rings;
  buffer_ = buffer.release();
  static_cast<void>(settings.release());
  // Autosave is always on here: it is on by default, and no variable can switch it off.
  rings->attach(&save, this);
  // The settings have been read, and with them the name, before there was a place for it.
  if (!isDefaultFile_) rings->fileName().setPattern(Variables(vel::textOrEmpty(key)).value("_TRACE_FILE"));
  if (!controllerMode_ && settings_->usesAutoclear()) VelClFile(filename_, nullptr).remove();
}

VelClTraceEnvironment::~VelClTraceEnvironment() {
  flush();
  vel::destroy(&ThreadRings::of(*this));
  VelClMemoryManager::free(buffer_);
  vel::destroy(settings_);
}

void VelClTraceEnvironment::add(const VelClTraceEntry& entry) {
  ThreadRings& rings = ThreadRings::of(*this);
  const std::size_t length = entry.getSizeOfEntryData();
  const std::size_t dataLength = entry.getDumpDataLength();
  const std::uint32_t thread = vel::platform::currentThreadId();
  const vel::trace::Place place = rings.reserve(thread, length + dataLength);
  if (place.bytes != nullptr) {
    std::memcpy(place.bytes, entry.getEntryData(), length);
    if (dataLength != 0) std::memcpy(place.bytes + length, entry.getDumpData(), dataLength);
    rings.commit(place, length + dataLength);
  } else if (!rings.write(thread, entry)) {
    countLost(length + dataLength);
  }
  if (settings_->usesAutoflush()) rings.flush();
}

void VelClTraceEnvironment::add(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                                const char* origin, const char* message, const void* data, size_t size) {
  // The length of the record is not known before its texts are compressed. If the longest one fits, the
  // record is built in place; otherwise an entry is built outside and copied, wrapping where it has to.
  vel::trace::Event event{detail, componentId, type, origin, message, data, size};
  fitData(event, getBufferSize());
  ThreadRings& rings = ThreadRings::of(*this);
  const std::uint32_t thread = vel::platform::currentThreadId();
  const vel::trace::Place place =
      rings.reserve(thread, vel::trace::kMaxRecordSize + vel::trace::kSlack + event.size);
  if (place.bytes == nullptr) [[unlikely]] {
    add(VelClTraceEntry(*this, detail, componentId, type, origin, message, data, size));
    return;
  }
  const std::size_t length = buildRecord(*this, event, thread, place.bytes);
  vel::trace::copyData(place.bytes + length, event);
  rings.commit(place, length + event.size);
  if (settings_->usesAutoflush()) rings.flush();
}

void VelClTraceEnvironment::flush() {
  ThreadRings::of(*this).flush();
}

void VelClTraceEnvironment::setFormatString(const char* format) {
  // The last byte of format_ is never written and stays NUL.
  std::strncpy(format_, vel::textOrEmpty(format), sizeof format_ - 1);
}

void VelClTraceEnvironment::countLost(uint64_t bytes) {
  std::atomic_ref(lostBytes_).fetch_add(bytes, std::memory_order_relaxed);
}

uint64_t VelClTraceEnvironment::getLostBytes() const {
  return std::atomic_ref(const_cast<uint64_t&>(lostBytes_)).load(std::memory_order_relaxed);
}

int VelClTraceEnvironment::getLastSystemError() const {
  return std::atomic_ref(const_cast<int&>(lastSystemError_)).load(std::memory_order_relaxed);
}

unsigned long VelClTraceEnvironment::getTimeStamp() const {
  return velGetTimeStamp();
}

// Intentional: totals have 32 bits and wrap.
void VelClTraceEnvironment::recordCompressionRate(size_t before, size_t after) const {
  plainTotal_ += static_cast<std::uint32_t>(before);
  compressedTotal_ += static_cast<std::uint32_t>(after);
}

float VelClTraceEnvironment::getCompressionRate() const {
  if (plainTotal_ == 0) return 0.0F;
  return static_cast<float>(compressedTotal_) / static_cast<float>(plainTotal_);
}

/// Intentional: only _TRACE_ACTIVE switches off. Callers see that a "NO" in any other variable changes
/// nothing: compression and autosave stay on by default.
void VelClTraceEnvironment::determineSettingsFromEnvVars(const char* key) {
  Variables variables(key);
  active_ = variables.isEnabled("_TRACE_ACTIVE");
  if (const char* detail = variables.value("_TRACE_DETAIL")) settings_->setDetailLevel(detail);
  if (variables.isEnabled("_TRACE_AUTOSAVE")) settings_->enableAutosave(true);
  if (variables.isEnabled("_TRACE_AUTOFLUSH")) settings_->enableAutoflush(true);
  if (variables.isEnabled("_TRACE_AUTOCLEAR")) settings_->enableAutoclear(true);
  if (variables.isEnabled("_TRACE_COMPRESS")) settings_->enableCompression(true);
  if (const char* components = variables.value("_TRACE_COMPSET")) settings_->initComponentIds(components);
  if (const char* kilobytes = variables.value("_TRACE_BUFSIZE")) bufferSize_ = bufferSizeFrom(kilobytes);
  const char* const file = variables.value("_TRACE_FILE");
  isDefaultFile_ = file == nullptr;
  if (isDefaultFile_)
    filename_.setNew(velGetTmpDirectory(), vel::String(key).append("trace.trc").c_str());
  else
    filename_ = vel::trace::FileName::expanded(file, processId_);
  const char* format = variables.value("_TRACE_FORMAT");
  setFormatString(format == nullptr ? kDefaultFormat : format);
  if (!variables.isEnabled("_TRACE_VERBOSE")) return;
  settings_->enableVerbose(true);
  report(key);
}

/// Lists the settings in verbose mode.
void VelClTraceEnvironment::report(const char* key) const {
  VerboseLine() << "key: " << key;
  VerboseLine() << "active: " << active_;
  VerboseLine() << "resource key: " << getAsCstring();
  VerboseLine() << "compression: " << settings_->usesCompression();
  VerboseLine() << "autosave: " << settings_->usesAutosave();
  VerboseLine() << "autoflush: " << settings_->usesAutoflush();
  VerboseLine() << "autoclear: " << settings_->usesAutoclear();
  VerboseLine() << "detail: " << static_cast<std::int32_t>(settings_->getDetailLevel());
  VerboseLine() << "buffersize: " << bufferSize_;
  VerboseLine() << "process id: " << processId_;
  VerboseLine() << "format: " << format_;
  VerboseLine() << "file: " << filename_.getAsCString();
  VerboseLine() << "sharedMemory: " << sharedMemory_;
}
