// Finds the records of a damaged trace. Records have no checksum and no mark, so a record is believed because
// of what it contains and of what follows it:
//
//   - It is plausible: its type is known, its data has a length that suits the type, and its texts are what
//     the recording side makes of texts.
//   - It is confirmed: at its end is another plausible record of a process that is known, or a chain of
//     several plausible records of an unknown one, or the end of the input. It also counts as confirmed if
//     the bytes at its end resemble the head of a record whose other fields are damaged.
//   - It is in its place, directly after the record before. Anywhere else, process and thread must be known,
//     or a chain of plausible records must follow.
//
// A plausible record that is not confirmed has a damaged length, or lost bytes, or damage reaches into its
// end. It is skipped. Records that begin within it are believed only if they cannot be part of its data:
// because they are later than the record, or overlap its end. So the dump of a trace in the data of a record
// does not come out as records.
#pragma once

#include <array>
#include <cstdint>

#include "trace/trace_record_head.h"
#include "trace/trace_window.h"

namespace vel::trace {

class Recovery {
 public:
  Recovery(TraceWindow& window, const DataLengths& lengths) : window_(window), lengths_(lengths) {}

  enum class Result { Found, End, Waiting };
  /// Finds the next record at or after `offset`, which is set to its offset, or to the end of the input.
  /// `place` is the end of the record before. Waiting means that a followed file does not have enough bytes
  /// yet to tell; call again with the same arguments.
  Result find(std::uint64_t place, std::uint64_t& offset, RecordHead& head);
  /// Offsets begin at 0 again, in a file of the same processes.
  void restart() {
    plausibleAt_ = failedNext_ = kNowhere;
    claim_ = last_ = {};
  }

 private:
  /// Processes and threads of the records found so far. An entry may replace another one.
  class Known {
   public:
    bool hasProcess(std::uint32_t process) const { return contains(processes_[slot(process)], process); }
    bool hasThread(std::uint32_t process, std::uint32_t thread) const {
      return contains(threads_[slot(process ^ thread * 31)], pair(process, thread));
    }
    bool isEmpty() const { return isEmpty_; }
    void add(const RecordHead& head) {
      processes_[slot(head.process)] = std::uint64_t{head.process} + 1;
      threads_[slot(head.process ^ head.thread * 31)] = pair(head.process, head.thread) + 1;
      isEmpty_ = false;
    }

   private:
    static constexpr std::size_t kSlots = 256;
    static std::size_t slot(std::uint32_t number) { return number * 2654435761U >> 24; }
    static std::uint64_t pair(std::uint32_t process, std::uint32_t thread) {
      return std::uint64_t{process} << 32 | thread;
    }
    /// 0 marks a free entry.
    static bool contains(std::uint64_t entry, std::uint64_t number) { return entry == number + 1; }

    std::array<std::uint64_t, kSlots> processes_{};
    std::array<std::uint64_t, kSlots> threads_{};
    bool isEmpty_ = true;
  };

  struct Claim {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    std::uint32_t time = 0;
  };

  bool headAt(std::uint64_t offset, RecordHead& head);
  bool isPlausible(std::uint64_t offset, RecordHead& head);
  bool hasIntactTexts(std::uint64_t offset, const RecordHead& head);
  bool knows(const RecordHead& head) const {
    return known_.hasProcess(head.process) && known_.hasThread(head.process, head.thread);
  }
  bool isBelieved(std::uint64_t offset, bool isInPlace, RecordHead& head);
  bool isOutOfTime(std::uint64_t end, const RecordHead& head);
  bool isConfirmed(std::uint64_t end, const RecordHead& before);
  bool resemblesHead(std::uint64_t offset, const RecordHead& before);
  bool hasChain(std::uint64_t offset, unsigned int count);
  bool isCutOff(std::uint64_t offset);
  bool hasChainOfProcess(std::uint64_t offset, const RecordHead& before);
  bool swallowsRecord(std::uint64_t offset, const RecordHead& head);
  bool isBeyondClaim(std::uint64_t offset);
  bool isAtEnd(std::uint64_t offset) { return offset == window_.end() && !window_.ensure(offset, 1); }
  std::uint64_t nextPossible(std::uint64_t offset) const;

  static constexpr std::uint64_t kNowhere = UINT64_MAX;

  TraceWindow& window_;
  const DataLengths& lengths_;
  Known known_;
  std::uint64_t plausibleAt_ = kNowhere;  ///< the last offset that was found plausible
  Claim claim_;                           ///< a plausible record that was not confirmed
  Claim last_;                            ///< the record found last
  std::uint64_t failedNext_ = kNowhere;   ///< the next record of a chain that failed, which fails, too
  bool isWaiting_ = false;                ///< a decision depends on bytes that a followed file does not have
};

}  // namespace vel::trace
