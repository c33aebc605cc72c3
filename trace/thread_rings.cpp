// Gives each thread memory of its own to trace to, and saves all of it.
#include "trace/thread_rings.h"

#include <algorithm>
#include <new>

#include "platform/processes.h"
#include "platform/thread_value.h"
#include "trace/save_lock.h"
#include "vel_include/vel_memmgr.h"

namespace vel::trace {

namespace {

constexpr std::size_t kMaxShareSize = std::size_t{64} * 1024;

/// All environments; guarded by the SaveLock.
constinit ThreadRings* allRings = nullptr;

/// A list of the shares of one thread: the value of the thread is the first one.
class OwnShares {
 public:
  static void prepare() { value(); }
  static ThreadShare* first() { return static_cast<ThreadShare*>(value().get()); }
  static bool setFirst(ThreadShare* share) { return value().set(share); }
  static ThreadShare* find(const ThreadRings* rings) {
    ThreadShare* share = first();
    while (share != nullptr && share->rings.load(std::memory_order_relaxed) != rings)
      share = share->nextOfThread;
    return share;
  }
  /// Adds a share that belongs to the thread from now on. Without room for a value the thread does not find
  /// it again, so it gives the share back.
  static bool add(ThreadShare* share) {
    share->nextOfThread = first();
    share->nestingLevel = 0;
    share->inUse = setFirst(share);
    return share->inUse;
  }
  /// Frees the shares whose environments have gone.
  static void freeOrphans() {
    ThreadShare* kept = nullptr;
    for (ThreadShare* share = first(); share != nullptr;) {
      ThreadShare* const next = share->nextOfThread;
      if (share->rings.load(std::memory_order_relaxed) == nullptr) {
        VelClMemoryManager::free(share);
      } else {
        share->nextOfThread = kept;
        kept = share;
      }
      share = next;
    }
    setFirst(kept);
  }

 private:
  static const platform::ThreadValue& value() {
    static const platform::ThreadValue firstShare(&ThreadRings::threadEnded);
    return firstShare;
  }
};

ThreadShare* newShare(ThreadRings* rings, std::size_t capacity) {
  auto* const block = static_cast<unsigned char*>(VelClMemoryManager::malloc(sizeof(ThreadShare) + capacity));
  return ::new (block)
      ThreadShare{rings, nullptr, nullptr, 0, false, block + sizeof(ThreadShare), capacity, 0, 0};
}

}  // namespace

void ThreadRings::prepare() {
  OwnShares::prepare();
  platform::setForkHandlers({&SaveLock::lockForFork, &SaveLock::unlockAfterFork, &ThreadRings::inChild});
}

ThreadRings::ThreadRings(VelClTraceEnvironment& environment, char* buffer, std::size_t size)
    : VelClTraceBufferManager(environment, buffer, size),
      environment_(&environment),
      saver_(nullptr),
      saverContext_(nullptr),
      next_(nullptr),
      shares_(newShare(this, 0)),
      ofOwner_(shares_),
      unused_{},
      owner_(0) {
  const SaveLock lock;
  next_ = allRings;
  allRings = this;
}

// Shares of threads that live are freed by these threads, which have them in their lists.
ThreadRings::~ThreadRings() {
  const SaveLock lock;
  ThreadRings** place = &allRings;
  while (*place != this) place = &(*place)->next_;
  *place = next_;
  for (ThreadShare* share = shares_; share != nullptr;) {
    ThreadShare* const next = share->nextOfRings;
    if (share->inUse)
      share->rings.store(nullptr, std::memory_order_relaxed);
    else
      VelClMemoryManager::free(share);
    share = next;
  }
  OwnShares::freeOrphans();
}

void ThreadRings::attach(VelTraceOverflowHandler handler, void* context) {
  attachOverflowHandler(handler, context);
  saver_ = handler;
  saverContext_ = context;
}

/// A share is written from its start to its end, and then again from its start.
Place ThreadRings::reserveInShare(std::size_t size) {
  ThreadShare* const share = shareOfThread();
  if (share == ofOwner_) return {VelClTraceBufferManager::reserve(size), nullptr};
  if (share == nullptr || size > share->capacity) return {nullptr, nullptr};
  std::size_t written = share->written.load(std::memory_order_relaxed);
  if (share->capacity - written < size) {
    const SaveLock lock;
    if (lock.isNested()) return {nullptr, nullptr};
    saveAll();
    share->saved = written = 0;
    share->written.store(0, std::memory_order_relaxed);
  }
  return {share->data + written, share};
}

bool ThreadRings::write(std::uint32_t thread, const VelClTraceEntry& entry) {
  const SaveLock lock;
  if (lock.isNested()) return false;
  if (isOwner(thread)) {
    VelClTraceBufferManager::write(entry);
    return true;
  }
  // Longer than a share, or there is none, since memory ran out. Earlier entries of the thread come first.
  saveAll();
  saver_({saverContext_, entry.getEntryData(), entry.getSizeOfEntryData(),
          static_cast<const char*>(entry.getDumpData()), entry.getDumpDataLength()});
  return true;
}

void ThreadRings::flush() {
  const SaveLock lock;
  if (!lock.isNested()) saveAll();
}

void ThreadRings::saveAll() {
  VelClTraceBufferManager::flush();
  for (ThreadShare* share = shares_; share != nullptr; share = share->nextOfRings) {
    const std::size_t written = share->written.load(std::memory_order_acquire);
    if (written == share->saved) continue;
    saver_({saverContext_, reinterpret_cast<const char*>(share->data + share->saved), written - share->saved,
            nullptr, 0});
    share->saved = written;
  }
}

std::int32_t& ThreadRings::nestingLevel(std::int32_t& substitute) {
  ThreadShare* const share = isOwner(platform::currentThreadId()) ? ofOwner_ : shareOfThread();
  return share == nullptr ? substitute : share->nestingLevel;
}

bool ThreadRings::isUsedByOthers() {
  const SaveLock lock;
  const ThreadShare* const own = OwnShares::find(this);
  for (const ThreadShare* share = shares_; share != nullptr; share = share->nextOfRings)
    if (share->inUse && share != own) return true;
  return false;
}

// What all threads have traced is saved when a thread begins to trace, and when such a thread ends. So its
// entries are in the file after those that the program traced before it began, and before those that it
// traced after it has waited for the thread's end.

/// Returns null if the thread has none and cannot get one now.
ThreadShare* ThreadRings::shareOfThread() {
  ThreadShare* const share = OwnShares::find(this);
  return share != nullptr ? share : adoptShare();
}

ThreadShare* ThreadRings::adoptShare() {
  {
    const SaveLock lock;
    if (lock.isNested()) return nullptr;
    OwnShares::freeOrphans();
    saveAll();
    if (ThreadShare* const share = freeShare()) return adopted(share);
  }
  ThreadShare* const share = makeShare();
  if (share == nullptr) return nullptr;
  const SaveLock lock;
  share->nextOfRings = shares_;
  shares_ = share;
  return adopted(share);
}

ThreadShare* ThreadRings::adopted(ThreadShare* share) {
  if (!OwnShares::add(share)) return nullptr;
  if (share == ofOwner_) owner_.store(platform::currentThreadId(), std::memory_order_relaxed);
  return share;
}

/// The ring is given away first: it may be larger than a share.
ThreadShare* ThreadRings::freeShare() const {
  if (!ofOwner_->inUse) return ofOwner_;
  ThreadShare* share = shares_;
  while (share != nullptr && share->inUse) share = share->nextOfRings;
  return share;
}

/// Allocates a share, or returns null if memory runs out: tracing must not disturb the program. Not called
/// with the lock, since an allocator of the program may trace; its thread then finds a share without room.
ThreadShare* ThreadRings::makeShare() {
  ThreadShare none{this, OwnShares::first(), nullptr, 0, true, nullptr, 0, 0, 0};
  OwnShares::setFirst(&none);
  ThreadShare* share = nullptr;
  try {
    share = newShare(this, std::min(kMaxShareSize, getDataBufferSize()));
  } catch (...) {  // NOLINT(bugprone-empty-catch)
  }
  OwnShares::setFirst(none.nextOfThread);
  return share;
}

void ThreadRings::threadEnded(void* first) {
  const SaveLock lock;
  for (auto* share = static_cast<ThreadShare*>(first); share != nullptr;) {
    ThreadShare* const next = share->nextOfThread;
    ThreadRings* const rings = share->rings.load(std::memory_order_relaxed);
    if (rings == nullptr) {
      VelClMemoryManager::free(share);
    } else {
      rings->saveAll();
      share->inUse = false;
      if (share == rings->ofOwner_) rings->owner_.store(0, std::memory_order_relaxed);
    }
    share = next;
  }
}

void ThreadRings::inChild() {
  for (ThreadRings* rings = allRings; rings != nullptr; rings = rings->next_) rings->continueInChild();
  SaveLock::unlockAfterFork();
}

/// The parent saves what was traced before the fork. The other threads do not exist here.
void ThreadRings::continueInChild() {
  const bool hasTraced = shares_->inUse || ofOwner_->inUse;
  ThreadShare* const own = OwnShares::find(this);
  for (ThreadShare* share = shares_; share != nullptr; share = share->nextOfRings) {
    share->saved = 0;
    share->written.store(0, std::memory_order_relaxed);
    share->inUse = share == own;
  }
  owner_.store(ofOwner_->inUse ? platform::currentThreadId() : 0, std::memory_order_relaxed);
  static_cast<void>(VelClTraceBufferManager::reserve(0));  // notices the fork
  environment_->continueInChild(hasTraced);
}

}  // namespace vel::trace
