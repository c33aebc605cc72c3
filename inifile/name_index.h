// Finds the first record of a name: a hash table with linear probing beside a singly linked list. The list
// owns the records and keeps the order of the file; the model builds the index when a long list is searched
// for the first time. Names are compared without regard to the case of ASCII letters.
//
// Only the first record of each name has a slot, which also tells its predecessor in the list and whether the
// name has occurred again:
//
//   list    Port -> Host -> port -> Path
//   slots   {Port, before: null, repeated}  {Host, before: Port}  {Path, before: port}
//
// The predecessor lets a record be unlinked without a search of the list. Only when a repeated name loses its
// first record is the list searched, for the record that takes over the slot.
//
// Removal moves the slots that follow back (Knuth, The Art of Computer Programming, volume 3, section 6.4,
// algorithm R) instead of marking the slot as deleted: searches do not slow down as records are added and
// removed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/ascii.h"
#include "foundation/allocator.h"

namespace vel::inifile {

/// Hashes a name without regard to the case of ASCII letters. The key is drawn once per process: nobody can
/// write a file whose names all collide, which would make every search as slow as that of a list.
std::uint32_t hashOf(const char* name) noexcept;

/// `Record` must have getName() and getNext(). The table has a power of two of slots and is at most three
/// quarters full, so every search ends at an empty slot.
template <typename Record>
class NameIndex {
 public:
  /// Indexes the whole list, which has `count` records. May throw as the memory manager does.
  NameIndex(Record* first, std::size_t count) : slots_(sizeFor(count)) {
    for (Record* before = nullptr; first != nullptr; before = first, first = first->getNext())
      add(first, before);
  }

  /// Returns the first record of a name, or null.
  Record* find(const char* name) const noexcept { return slots_[findSlot(name, hashOf(name))].record; }

  /// Adds a record that was appended to the list after `before`, or is about to be. When it throws, nothing
  /// has changed.
  void add(Record* record, Record* before) {
    if (used_ * 4 >= slots_.size() * 3) grow();
    const std::uint32_t hash = hashOf(record->getName());
    Slot& slot = slots_[findSlot(record->getName(), hash)];
    if (slot.record != nullptr) {
      slot.isRepeated = true;
      return;
    }
    slot = {record, before, hash, false};
    ++used_;
  }

  /// Removes a record that is about to be unlinked and is the first of its name. Returns its predecessor in
  /// the list, or null. Its slot passes to the next record of the same name, if any.
  Record* remove(const Record* record) noexcept {
    const std::size_t at = findSlot(record->getName(), hashOf(record->getName()));
    Record* const before = slots_[at].before;
    Record* next = record->getNext();
    if (next != nullptr) setBefore(next, before);
    Record* beforeNext = before;
    while (slots_[at].isRepeated && next != nullptr &&
           !equalsIgnoringAsciiCase(next->getName(), record->getName())) {
      beforeNext = next;
      next = next->getNext();
    }
    if (slots_[at].isRepeated && next != nullptr)
      slots_[at].record = next, slots_[at].before = beforeNext;
    else
      closeGap(at);
    return before;
  }

 private:
  /// The hash is kept so that a probe compares names only where they are almost certainly equal.
  struct Slot {
    Record* record;
    Record* before;  ///< the predecessor in the list
    std::uint32_t hash;
    bool isRepeated;  ///< stays set when the later records are gone; costs a search at most
  };

  /// Most names are searched for as they are written, and strcmp is faster than ignoring case.
  static bool isSameName(const char* a, const char* b) noexcept {
    return std::strcmp(a, b) == 0 || equalsIgnoringAsciiCase(a, b);
  }

  static std::size_t sizeFor(std::size_t count) noexcept {
    std::size_t size = 16;
    while (count * 4 >= size * 3) size *= 2;
    return size;
  }

  std::size_t next(std::size_t at) const noexcept { return (at + 1) & (slots_.size() - 1); }

  /// Returns the slot of the name, or the empty slot where it belongs.
  std::size_t findSlot(const char* name, std::uint32_t hash) const noexcept {
    std::size_t at = hash & (slots_.size() - 1);
    while (slots_[at].record != nullptr &&
           (slots_[at].hash != hash || !isSameName(slots_[at].record->getName(), name)))
      at = next(at);
    return at;
  }

  void setBefore(const Record* record, Record* before) noexcept {
    Slot& slot = slots_[findSlot(record->getName(), hashOf(record->getName()))];
    if (slot.record == record) slot.before = before;
  }

  void grow() {
    Vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    for (const Slot& slot : old)
      if (slot.record != nullptr) slots_[findSlot(slot.record->getName(), slot.hash)] = slot;
  }

  /// Closes a gap: moves following slots back, so that no search ends at the empty slot too early. A slot is
  /// not moved if its home, the slot that its hash selects, is after the gap.
  void closeGap(std::size_t gap) noexcept {
    --used_;
    slots_[gap].record = nullptr;
    for (std::size_t at = next(gap); slots_[at].record != nullptr; at = next(at)) {
      const std::size_t home = slots_[at].hash & (slots_.size() - 1);
      const std::size_t mask = slots_.size() - 1;
      if (((at - home) & mask) < ((at - gap) & mask)) continue;
      slots_[gap] = slots_[at];
      slots_[at].record = nullptr;
      gap = at;
    }
  }

  Vector<Slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace vel::inifile
