// The ring of trace bytes: keeps entries in the caller's memory and hands the unsaved ones to the overflow
// handler. Writing them to a file is trace_file_writer.cpp's work.
//
// The ring knows bytes, not entries. Its unsaved bytes are those from the save position to the write
// position, in one piece or, if writing has wrapped around, in two:
//
//   |..........|save ######### write|..........|       first piece: save to write
//   |##### write|..........|save ##############|       first piece: save to the end, second: start to write
//
// An entry is written in one of three ways:
//
// - It is shorter than the room before the end of the ring: its bytes are copied there (append).
// - It is as long as that room, or longer: the room is filled, the unsaved bytes are handed over, and
//   writing goes on at the start (fill). So the write position never stays one past the end.
// - It is known beforehand to be shorter than the room: the caller builds it in place (reserve, commit),
//   which saves a copy.
//
// Without a handler nothing is handed over; the save position stays, and new bytes overwrite the oldest ones.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

#include "platform/processes.h"
#include "vel_include/vel_trace.h"

/// The first bytes of the ring's memory. One thread writes to a ring; another one may save it meanwhile, see
/// thread_rings.h. So the writer moves the write position over bytes that are complete, and the saver moves
/// the save position over bytes that are saved; each reads the other's position once.
struct VelClTraceBufferManager::Header {
  char signature[4];
  uint32_t unused;
  uint64_t dataSize;
  char* dataStart;
  char* dataEnd;  ///< the last byte, which belongs to the data
  char* save;     ///< the first unsaved byte; one past the last byte after a wrap
  char* write;    ///< where the next byte goes

  char* savePosition() { return std::atomic_ref(save).load(std::memory_order_acquire); }
  char* writePosition() { return std::atomic_ref(write).load(std::memory_order_acquire); }
  void setSavePosition(char* position) { std::atomic_ref(save).store(position, std::memory_order_release); }
  void setWritePosition(char* position) { std::atomic_ref(write).store(position, std::memory_order_release); }
  /// Bytes from `place` to the end of the ring. 0 past the end, where threads that use one manager without a
  /// lock can leave the write position: they may damage entries, but must never write outside the ring.
  size_t roomAt(const char* place) const {
    return place <= dataEnd ? static_cast<size_t>(dataEnd + 1 - place) : 0;
  }
  /// In the child of a fork(), counts all bytes that the parent wrote as saved: the parent saves them itself,
  /// and the file would have them twice.
  void dropBytesOfParent(uint32_t& forkCount, bool& dirty) {
    if (forkCount == vel::platform::forkCount()) return;
    forkCount = vel::platform::forkCount();
    setSavePosition(write);
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
  // A ring that another manager has initialised keeps its contents.
  if (std::memcmp(header_->signature, kSignature, sizeof kSignature) == 0) return;
  std::memcpy(header_->signature, kSignature, sizeof kSignature);
  header_->dataSize = size - sizeof(Header);
  header_->dataStart = buffer + sizeof(Header);
  header_->dataEnd = buffer + size - 1;
  header_->save = header_->dataStart;
  header_->write = header_->dataStart;
}

// Does not flush: the owner may have freed the ring's memory already.
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
  write(entry.getEntryData(), entry.getSizeOfEntryData());
  write(static_cast<const char*>(entry.getDumpData()), entry.getDumpDataLength());
  std::atomic_ref(dirty_).store(true, std::memory_order_release);
}

// With a handler, the bytes after the write position are saved and may be overwritten. After a time without
// one, the save position and unsaved bytes may follow there. Equal positions do not tell whether nothing or
// everything is unsaved, so they count as everything being unsaved.
unsigned char* VelClTraceBufferManager::reserve(size_t size) {
  header_->dropBytesOfParent(forkCount_, dirty_);
  char* const place = header_->writePosition();
  const char* const save = header_->savePosition();
  const bool free = handler_ != nullptr && (save < place || save > header_->dataEnd);
  return free && size < header_->roomAt(place) ? reinterpret_cast<unsigned char*>(place) : nullptr;
}

void VelClTraceBufferManager::commit(size_t size) {
  const VelClTraceBufferAccessSemaphore access(*key_);
  header_->setWritePosition(header_->write + size);
  std::atomic_ref(dirty_).store(true, std::memory_order_release);
}

void VelClTraceBufferManager::flush() {
  const VelClTraceBufferAccessSemaphore access(*key_);
  header_->dropBytesOfParent(forkCount_, dirty_);
  // Cleared before the write position is read: an entry that its thread adds meanwhile sets it again.
  if (std::atomic_ref(dirty_).exchange(false, std::memory_order_acquire)) callHandler();
}

void VelClTraceBufferManager::write(const char* data, size_t length) {
  // Data longer than the ring wraps around more than once; each time the handler saves what it fills.
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
  // Another thread may have moved the position since the caller computed the room.
  length = std::min(length, header_->roomAt(place));
  std::memcpy(place, data, length);
  header_->setWritePosition(place + length);
}

void VelClTraceBufferManager::fill(const char* data, size_t length) {
  append(data, length);
  overflow();
  header_->setWritePosition(header_->dataStart);
}

/// Passes the unsaved bytes to the handler and then counts them as saved, whether or not it could save them:
/// tracing goes on without the bytes that are lost.
void VelClTraceBufferManager::callHandler() {
  if (handler_ == nullptr) return;
  // Clipped to the end, since threads that trace concurrently without a lock may have left positions past it.
  char* const end = header_->dataEnd + 1;
  char* const save = std::min(header_->savePosition(), end);
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
  header_->setSavePosition(write);
}
