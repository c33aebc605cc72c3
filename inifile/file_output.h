// A stream to a new file, which replaces the old one of its name when it is complete.
#pragma once

#include <ostream>
#include <streambuf>

#include "foundation/allocator.h"
#include "platform/file_identity.h"
#include "platform/replacing.h"

namespace vel::inifile {

class ReplacementBuffer : public std::streambuf {
 public:
  ReplacementBuffer() = default;
  ReplacementBuffer(const ReplacementBuffer&) = delete;
  ReplacementBuffer& operator=(const ReplacementBuffer&) = delete;
  /// Drops a file that was not closed.
  ~ReplacementBuffer() override;

  /// Begins a new file; the old one stays until close(true).
  bool open(const char* name);
  bool isOpen() const { return replacement_.descriptor >= 0; }
  /// Replaces the old file if `isComplete`, otherwise drops the new one. Returns whether the old file was
  /// replaced.
  bool close(bool isComplete);
  /// Valid after closing, too.
  const platform::Replacement& replacement() const { return replacement_; }

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  platform::Replacement replacement_{};
  Vector<char> buffer_;
};

/// Every write fails while no file is open.
class FileOutput : public std::ostream {
 public:
  FileOutput() : std::ostream(nullptr) { init(&buffer_); }

  bool open(const char* name);
  bool isOpen() const { return buffer_.isOpen(); }
  /// Flushes and replaces the old file. Returns false, with the old file in place, if anything failed.
  bool close() { return buffer_.close(flush().good()); }
  /// Whether the file has the owner and the permissions of the one that it replaced.
  bool keepsRights() const { return buffer_.replacement().keepsRights; }
  /// The identity of the file to be replaced; all zeros if a new file is created.
  const platform::FileIdentity& replaced() const { return buffer_.replacement().old; }

 private:
  ReplacementBuffer buffer_;
};

}  // namespace vel::inifile
