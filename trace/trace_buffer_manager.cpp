// The ring of trace bytes.
#include <cstdint>
#include <cstring>

#include "vel_include/vel_trace.h"

/// Lies at the start of the ring's memory.
struct VelClTraceBufferManager::Header {
  char signature[4];
  uint32_t unused;
  uint64_t dataSize;
  char* dataStart;
  char* dataEnd;  ///< the last byte, which belongs to the data
  char* save;     ///< the first byte not handed over yet; one past the last byte after a wrap
  char* write;    ///< where the next byte goes
};

namespace {

constexpr char kSignature[] = {'V', 'E', 'L', 'T'};

}  // namespace

VelClTraceBufferManager::VelClTraceBufferManager(const VelClResourceKeySemaphore& key, char* buffer,
                                                 size_t size)
    : key_(&key),
      header_(reinterpret_cast<Header*>(buffer)),
      handler_(nullptr),
      context_(nullptr),
      dirty_(false) {
  static_assert(sizeof(Header) == 48);
  if (std::memcmp(header_->signature, kSignature, sizeof kSignature) == 0) return;
  std::memcpy(header_->signature, kSignature, sizeof kSignature);
  header_->dataSize = size - sizeof(Header);
  header_->dataStart = buffer + sizeof(Header);
  header_->dataEnd = buffer + size - 1;
  header_->save = header_->dataStart;
  header_->write = header_->dataStart;
}

VelClTraceBufferManager::~VelClTraceBufferManager() {
  header_ = nullptr;
  handler_ = nullptr;
  context_ = nullptr;
}

size_t VelClTraceBufferManager::getDataBufferSize() const {
  return static_cast<size_t>(header_->dataSize);
}

void VelClTraceBufferManager::attachOverflowHandler(VelTraceOverflowHandler handler, void* context) {
  handler_ = handler;
  context_ = context;
}

void VelClTraceBufferManager::write(const VelClTraceEntry& entry) {
  const VelClTraceBufferAccessSemaphore access(*key_);
  dirty_ = true;
  write(entry.getEntryData(), entry.getSizeOfEntryData());
  write(static_cast<const char*>(entry.getDumpData()), entry.getDumpDataLength());
}

// What stands behind the write position has been handed over, unless there was no handler for a while: then
// the save position can be there, too.
unsigned char* VelClTraceBufferManager::reserve(size_t size) {
  const bool free =
      handler_ != nullptr && (header_->save < header_->write || header_->save > header_->dataEnd);
  return free && size < room() ? reinterpret_cast<unsigned char*>(header_->write) : nullptr;
}

void VelClTraceBufferManager::commit(size_t size) {
  const VelClTraceBufferAccessSemaphore access(*key_);
  dirty_ = true;
  header_->write += size;
}

void VelClTraceBufferManager::flush() {
  const VelClTraceBufferAccessSemaphore access(*key_);
  if (!dirty_) return;
  handOver();
  dirty_ = false;
}

void VelClTraceBufferManager::write(const char* data, size_t length) {
  // Once around the ring is the rule; more than once only what is longer than the ring.
  for (size_t rest = room(); length >= rest; rest = room()) {
    fill(data, rest);
    data += rest;
    length -= rest;
  }
  if (length != 0) append(data, length);
}

size_t VelClTraceBufferManager::room() const {
  return static_cast<size_t>(header_->dataEnd + 1 - header_->write);
}

void VelClTraceBufferManager::append(const char* data, size_t length) {
  std::memcpy(header_->write, data, length);
  header_->write += length;
}

void VelClTraceBufferManager::fill(const char* data, size_t length) {
  append(data, length);
  overflow();
  header_->write = header_->dataStart;
}

/// Without a handler nothing is ever handed over, and the oldest bytes are overwritten.
void VelClTraceBufferManager::handOver() {
  if (handler_ == nullptr) return;
  _VelStTraceBufferCallBackInfo info{context_, header_->save, 0, nullptr, 0};
  if (header_->save >= header_->write) {
    info.firstLength = static_cast<uint64_t>(header_->dataEnd + 1 - header_->save);
    info.second = header_->dataStart;
    info.secondLength = static_cast<uint64_t>(header_->write - header_->dataStart);
  } else {
    info.firstLength = static_cast<uint64_t>(header_->write - header_->save);
  }
  handler_(info);
  header_->save = header_->write;
}
