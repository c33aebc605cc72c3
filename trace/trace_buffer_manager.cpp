// The ring of trace bytes.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

#include "platform/processes.h"
#include "vel_include/vel_trace.h"

/// Lies at the start of the ring's memory. Threads that trace without taking turns damage entries, but never
/// write outside the ring: a position is read once, checked, and then used.
struct VelClTraceBufferManager::Header {
  char signature[4];
  uint32_t unused;
  uint64_t dataSize;
  char* dataStart;
  char* dataEnd;  ///< the last byte, which belongs to the data
  char* save;     ///< the first byte not handed over yet; one past the last byte after a wrap
  char* write;    ///< where the next byte goes

  static char* readOnce(char*& position) { return std::atomic_ref(position).load(std::memory_order_relaxed); }
  char* writePosition() { return readOnce(write); }
  /// Two threads that commit to the same place leave a position beyond the end.
  size_t roomAt(const char* place) const {
    return place <= dataEnd ? static_cast<size_t>(dataEnd + 1 - place) : 0;
  }
  /// The parent of a fork saves what it has written itself.
  void dropBytesOfParent(uint32_t& forkCount, bool& dirty) {
    if (forkCount == vel::platform::forkCount()) return;
    forkCount = vel::platform::forkCount();
    save = write;
    dirty = false;
  }
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
      dirty_(false),
      forkCount_(vel::platform::forkCount()) {
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
  header_->dropBytesOfParent(forkCount_, dirty_);
  dirty_ = true;
  write(entry.getEntryData(), entry.getSizeOfEntryData());
  write(static_cast<const char*>(entry.getDumpData()), entry.getDumpDataLength());
}

// What stands behind the write position has been handed over, unless there was no handler for a while: then
// the save position can be there, too.
unsigned char* VelClTraceBufferManager::reserve(size_t size) {
  header_->dropBytesOfParent(forkCount_, dirty_);
  char* const place = header_->writePosition();
  const bool free = handler_ != nullptr && (header_->save < place || header_->save > header_->dataEnd);
  return free && size < header_->roomAt(place) ? reinterpret_cast<unsigned char*>(place) : nullptr;
}

void VelClTraceBufferManager::commit(size_t size) {
  const VelClTraceBufferAccessSemaphore access(*key_);
  dirty_ = true;
  header_->write += size;
}

void VelClTraceBufferManager::flush() {
  const VelClTraceBufferAccessSemaphore access(*key_);
  header_->dropBytesOfParent(forkCount_, dirty_);
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
  return header_->roomAt(header_->writePosition());
}

void VelClTraceBufferManager::append(const char* data, size_t length) {
  char* const place = header_->writePosition();
  length = std::min(length, header_->roomAt(place));
  std::memcpy(place, data, length);
  header_->write = place + length;
}

void VelClTraceBufferManager::fill(const char* data, size_t length) {
  append(data, length);
  overflow();
  header_->write = header_->dataStart;
}

/// Without a handler nothing is ever handed over, and the oldest bytes are overwritten.
void VelClTraceBufferManager::handOver() {
  if (handler_ == nullptr) return;
  char* const end = header_->dataEnd + 1;
  char* const save = std::min(Header::readOnce(header_->save), end);
  char* const write = std::min(header_->writePosition(), end);
  _VelStTraceBufferCallBackInfo info{context_, save, 0, nullptr, 0};
  if (save >= write) {
    info.firstLength = static_cast<uint64_t>(end - save);
    info.second = header_->dataStart;
    info.secondLength = static_cast<uint64_t>(write - header_->dataStart);
  } else {
    info.firstLength = static_cast<uint64_t>(write - save);
  }
  handler_(info);
  header_->save = write;
}
