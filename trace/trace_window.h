// The part of a trace that is in memory: a window that moves over a file, or all bytes of a trace in memory.
//
//   offsets   0 ........ start_ ....... keep_ ................. end_ ........ end of the file
//                        |   dropped    |  bytes in the window   |
//
// Bytes before keep_ are given up when room is needed. Pointers into the window are valid until the next
// ensure() that has to read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/allocator.h"
#include "platform/byte_files.h"
#include "platform/file_identity.h"

namespace vel::trace {

class TraceWindow {
 public:
  TraceWindow() = default;
  TraceWindow(const TraceWindow&) = delete;
  TraceWindow& operator=(const TraceWindow&) = delete;

  /// Opens a file. With `isFollowed`, a file that does not exist is opened by refresh() once it does.
  platform::SystemError open(std::string_view name, bool isFollowed);
  void openStandardInput();
  void openBytes(const void* bytes, std::size_t size);

  /// Gets the bytes from `offset` on, which is not below what was dropped, into the window. Returns false if
  /// the input ends before.
  bool ensure(std::uint64_t offset, std::uint64_t count) {
    return offset + count <= end_ || read(offset + count);
  }
  const unsigned char* at(std::uint64_t offset) const { return first_ + (offset - start_); }
  /// The end of the bytes in the window. It is the end of the input if ensure() returned false.
  std::uint64_t end() const { return end_; }
  /// Bytes before `offset` are not needed any more.
  void drop(std::uint64_t offset) { keep_ = offset; }

  /// The error that ended reading, or 0.
  platform::SystemError error() const { return error_; }
  bool isFollowed() const { return isFollowed_; }
  const char* name() const { return name_.get() == nullptr ? "" : name_.get(); }

  /// What refresh() has found.
  enum class Change { None, More, Restarted };
  /// Looks for more of a followed file: bytes after end(), the file itself if it did not exist, or the start
  /// of the file that is now under its name, after which offsets begin at 0.
  Change refresh();

 private:
  bool read(std::uint64_t end);
  bool readBlock();
  void makeRoom();
  Change reopen();

  const unsigned char* first_ = nullptr;
  std::uint64_t start_ = 0;
  std::uint64_t keep_ = 0;
  std::uint64_t end_ = 0;
  OwnedBlock buffer_;
  std::size_t capacity_ = 0;
  OwnedText name_;
  OwnedObject<platform::ReadableFile> file_;
  int descriptor_ = -1;
  platform::FileIdentity identity_;
  platform::SystemError error_ = 0;
  bool isFollowed_ = false;
  bool isAtEnd_ = false;  ///< the system has told that the input ends; never for a followed file
};

}  // namespace vel::trace
