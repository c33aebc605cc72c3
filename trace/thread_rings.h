// The rings of an environment: the one of its buffer manager, and a buffer for each further thread.
//
// Recording takes no lock, so that a program with one thread pays nothing for others, and threads do not wait
// for each other:
//
//   ring     belongs to the first thread that traces, its owner, until that thread ends
//   shares   one for every other thread; a thread that ends leaves its share to the next new one
//
// Only the thread to which a ring or share belongs writes to it, and moves its write position over an entry
// when the entry is complete. Whoever has the SaveLock reads up to that position and moves the save position:
//
//   |####### saved #######|####### unsaved #######|..... written by its thread .....|
//                         save, moved under lock   write, moved by its thread
//
// The ring is always saved first: where it has wrapped, the file ends within an entry whose rest is in the
// ring.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "trace/file_name.h"
#include "vel_include/vel_trace.h"

namespace vel::trace {

class ThreadRings;

/// What one thread has of one environment.
struct ThreadShare {
  std::atomic<ThreadRings*> rings;  ///< null when the environment has gone, and the thread may free the share
  ThreadShare* nextOfThread;        ///< used by its thread alone
  ThreadShare* nextOfRings;
  std::int32_t nestingLevel;
  bool inUse;  ///< belongs to a thread
  // The buffer; the owner of the ring has none.
  unsigned char* data;
  std::size_t capacity;
  std::size_t saved;
  std::atomic<std::size_t> written;
};

/// Where an entry may be built; null if there is no room. `share` is null for the ring.
struct Place {
  unsigned char* bytes;
  ThreadShare* share;
};

class ThreadRings final : public VelClTraceBufferManager {
 public:
  ThreadRings(VelClTraceEnvironment& environment, char* buffer, std::size_t size);
  ThreadRings(const ThreadRings&) = delete;
  ThreadRings& operator=(const ThreadRings&) = delete;
  /// Saves nothing, and does not access the ring, which may have been freed already.
  ~ThreadRings();

  static ThreadRings& of(const VelClTraceEnvironment& environment) {
    return static_cast<ThreadRings&>(*environment.manager_);
  }
  /// Prepares what lives as long as the library.
  static void prepare();
  /// Gives back the shares of a thread: `first` is the first of them.
  static void threadEnded(void* first);

  /// Attaches the handler to the ring and the shares.
  void attach(VelTraceOverflowHandler handler, void* context);
  /// Returns room for more than `size` bytes of the calling thread; follow with commit().
  Place reserve(std::uint32_t thread, std::size_t size) {
    if (!isOwner(thread)) [[unlikely]]
      return reserveInShare(size);
    return {VelClTraceBufferManager::reserve(size), nullptr};
  }
  /// Appends the `size` bytes that were stored at the place.
  void commit(const Place& place, std::size_t size) {
    if (place.share != nullptr) [[unlikely]]
      commitToShare(*place.share, size);
    else
      VelClTraceBufferManager::commit(size);
  }
  /// Appends an entry for which there is no place. Returns false if that was impossible, because this thread
  /// is just saving.
  bool write(std::uint32_t thread, const VelClTraceEntry& entry);
  /// Saves the unsaved bytes of all threads, unless this thread is just doing so.
  void flush();

  FileName& fileName() { return fileName_; }
  /// The nesting level of the calling thread; `substitute` if it has none here.
  std::int32_t& nestingLevel(std::int32_t& substitute);
  /// Whether threads other than the calling one may be tracing.
  bool isUsedByOthers();

 private:
  bool isOwner(std::uint32_t thread) const { return owner_.load(std::memory_order_relaxed) == thread; }
  ThreadShare* shareOfThread();
  ThreadShare* adoptShare();
  ThreadShare* adopted(ThreadShare* share);
  ThreadShare* freeShare() const;
  ThreadShare* makeShare();
  Place reserveInShare(std::size_t size);
  static void commitToShare(ThreadShare& share, std::size_t size) {
    share.written.store(share.written.load(std::memory_order_relaxed) + size, std::memory_order_release);
  }
  void saveAll();
  void continueInChild();
  static void inChild();

  VelClTraceEnvironment* environment_;
  VelTraceOverflowHandler saver_;
  void* saverContext_;
  ThreadRings* next_;    ///< of all environments
  ThreadShare* shares_;  ///< the owner's is the last
  ThreadShare* ofOwner_;
  FileName fileName_;
  /// Every thread reads what is below for each entry, so it is kept off the cache line that the owner writes.
  [[maybe_unused]] char unused_[64];
  std::atomic<std::uint32_t> owner_;  ///< the ID of the thread that writes to the ring, or 0
};

}  // namespace vel::trace
