// The list of all marks. A program has one command line, so the list has one entry, or none.
#include "consoleui/argument_marks.h"

#include <atomic>
#include <thread>
#include <utility>

namespace vel::consoleui {
namespace {

// Both are constant-initialised, so that cursors may be used before and after main.
constinit std::atomic_flag listIsLocked = ATOMIC_FLAG_INIT;
constinit std::atomic<ArgumentMarks*> first = nullptr;

/// Spins: a lock is held for some instructions, and two threads hardly ever meet. Not every system can
/// constant-initialise a mutex.
class ListLock {
 public:
  ListLock() noexcept {
    while (listIsLocked.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  ListLock(const ListLock&) = delete;
  ListLock& operator=(const ListLock&) = delete;
  ~ListLock() { listIsLocked.clear(std::memory_order_release); }
};

}  // namespace

ArgumentMarks::ArgumentMarks(const char* const* arguments, Vector<bool> isData)
    : arguments_(arguments), isData_(std::move(isData)), next_(nullptr) {
  const ListLock lock;
  next_ = first;
  first = this;
}

ArgumentMarks::~ArgumentMarks() {
  const ListLock lock;
  if (first == this) {
    first = next_;
    return;
  }
  ArgumentMarks* before = first;
  while (before->next_ != this) before = before->next_;
  before->next_ = next_;
}

bool ArgumentMarks::isData(const char* const* arguments, std::int32_t index) noexcept {
  if (first == nullptr || index < 0) return false;
  const ListLock lock;
  for (const ArgumentMarks* marks = first; marks != nullptr; marks = marks->next_)
    if (marks->arguments_ == arguments)
      return static_cast<std::size_t>(index) < marks->isData_.size() &&
             marks->isData_[static_cast<std::size_t>(index)];
  return false;
}

}  // namespace vel::consoleui
