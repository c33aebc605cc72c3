// Finds the first record of a name in a list that keeps the file's order. Names are compared without regard
// to the case of ASCII letters. The index stands beside the list, and is made when a long list is first
// asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/ascii.h"
#include "foundation/allocator.h"

namespace vel::inifile {

/// Depends on a number drawn once per process, so that no file can be made to fill one place of an index.
std::uint32_t hashOf(const char* name) noexcept;

/// `Record` has getName and getNext.
template <typename Record>
class NameIndex {
 public:
  /// Takes over the whole list.
  NameIndex(Record* first, std::size_t count) : slots_(sizeFor(count)) {
    for (Record* before = nullptr; first != nullptr; before = first, first = first->getNext())
      add(first, before);
  }

  Record* find(const char* name) const noexcept { return slots_[findSlot(name, hashOf(name))].record; }

  /// A record that was appended to the list, or is about to be, behind `before`.
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

  /// The first record of a name, about to be taken from the list: gives the one before it. Another one of the
  /// same name takes its place.
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
  struct Slot {
    Record* record;
    Record* before;  ///< in the list
    std::uint32_t hash;
    bool isRepeated;
  };

  /// Most names are asked for as they are written.
  static bool isSameName(const char* a, const char* b) noexcept {
    return std::strcmp(a, b) == 0 || equalsIgnoringAsciiCase(a, b);
  }

  static std::size_t sizeFor(std::size_t count) noexcept {
    std::size_t size = 16;
    while (count * 4 >= size * 3) size *= 2;
    return size;
  }

  std::size_t next(std::size_t at) const noexcept { return (at + 1) & (slots_.size() - 1); }

  /// Where the name is, or would be.
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

  /// Moves those behind an emptied slot up, so that every search still passes no empty one.
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
