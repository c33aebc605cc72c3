// What belongs to one trace key, and the environment variables that set it up.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "base/ascii.h"
#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "platform/platform.h"
#include "trace/record.h"
#include "trace/verbose_line.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_trace.h"

namespace {

using vel::trace::VerboseLine;

constexpr char kDefaultInstance[] = "VELTRACEINSTANCE0";
constexpr char kDefaultFormat[] = "%f%n   P: %p, T: %s, D: %l, C: %c%n   Data: %m (%x: %d%n)";
// One less than 64 KiB. Keep.
constexpr std::uint32_t kDefaultBufferSize = 65535;
constexpr std::int32_t kSmallestBuffer = 4096;
constexpr std::int32_t kLargestBuffer = 0x1000000;
/// With the longest suffix a name has the 40 characters of a variable's name.
constexpr std::size_t kLongestVariableKey = 24;

/// The variables of a key.
class Variables {
 public:
  explicit Variables(const char* key) {
    for (; *key != '\0' && keyLength_ < kLongestVariableKey; ++key)
      name_[keyLength_++] = vel::toAsciiUpper(*key);
  }

  /// Null when it is not set.
  const char* value(const char* suffix) {
    std::memcpy(name_ + keyLength_, suffix, std::strlen(suffix) + 1);
    // The systems' own calls disagree about keys such as "a=b".
    return std::strchr(name_, '=') == nullptr ? vel::platform::settingValue(name_) : nullptr;
  }
  bool isEnabled(const char* suffix) { return vel::isEnabledValue(value(suffix)); }

 private:
  std::size_t keyLength_ = 0;
  char name_[VelClEnvironmentVariableABase::kMaxNameLength + 1] = {};
};

/// A number of kilobytes as bytes, shifted in 32 bits and compared with its sign.
std::uint32_t bufferSizeFrom(const char* kilobytes) {
  const auto bytes = static_cast<std::int32_t>(static_cast<std::uint32_t>(vel::parseInt32(kilobytes)) << 10);
  return static_cast<std::uint32_t>(std::clamp(bytes, kSmallestBuffer, kLargestBuffer));
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
  // What is made before a later allocation fails goes back.
  vel::OwnedObject<VelClTraceSettings> settings(vel::create<VelClTraceSettings>());
  settings_ = settings.get();
  determineSettingsFromEnvVars(vel::textOrEmpty(key));
  vel::OwnedText buffer(static_cast<char*>(VelClMemoryManager::malloc(bufferSize_)));
  std::memset(buffer.get(), 0, bufferSize_);
  manager_ = vel::create<VelClTraceBufferManager>(*this, buffer.get(), bufferSize_);
  buffer_ = buffer.release();
  static_cast<void>(settings.release());
  // Autosave is on here: no variable switches it off.
  manager_->attachOverflowHandler(&save, this);
  if (!controllerMode_ && settings_->usesAutoclear()) VelClFile(filename_, nullptr).remove();
}

VelClTraceEnvironment::~VelClTraceEnvironment() {
  manager_->flush();
  VelClMemoryManager::free(buffer_);
  vel::destroy(manager_);
  vel::destroy(settings_);
}

void VelClTraceEnvironment::add(const VelClTraceEntry& entry) {
  manager_->write(entry);
  if (settings_->usesAutoflush()) manager_->flush();
}

void VelClTraceEnvironment::add(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                                const char* origin, const char* message, const void* data, size_t size) {
  vel::trace::Event event{detail, componentId, type, origin, message, data, size};
  fitData(event, getBufferSize());
  unsigned char* const place =
      manager_->reserve(vel::trace::kLongestRecord + vel::trace::kSlack + event.size);
  if (place == nullptr) {
    add(VelClTraceEntry(*this, detail, componentId, type, origin, message, data, size));
    return;
  }
  const std::size_t length = buildRecord(*this, event, place);
  vel::trace::copyData(place + length, event);
  manager_->commit(length + event.size);
  if (settings_->usesAutoflush()) manager_->flush();
}

void VelClTraceEnvironment::flush() {
  manager_->flush();
}

void VelClTraceEnvironment::setFormatString(const char* format) {
  std::strncpy(format_, vel::textOrEmpty(format), sizeof format_ - 1);
}

unsigned long VelClTraceEnvironment::getTimeStamp() const {
  return velGetTimeStamp();
}

void VelClTraceEnvironment::recordCompressionRate(size_t before, size_t after) const {
  plainTotal_ += static_cast<std::uint32_t>(before);
  compressedTotal_ += static_cast<std::uint32_t>(after);
}

float VelClTraceEnvironment::getCompressionRate() const {
  if (plainTotal_ == 0) return 0.0F;
  return static_cast<float>(compressedTotal_) / static_cast<float>(plainTotal_);
}

/// Only ACTIVE can switch off; the other flags are on already or get set. Keep.
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
    filename_ = file;
  const char* format = variables.value("_TRACE_FORMAT");
  setFormatString(format == nullptr ? kDefaultFormat : format);
  if (!variables.isEnabled("_TRACE_VERBOSE")) return;
  settings_->enableVerbose(true);
  report(key);
}

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
