// A stream into a file that replaces another one when it is complete.
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
  /// What is not complete is dropped.
  ~ReplacementBuffer() override;

  bool open(const char* name);
  bool isOpen() const { return replacement_.descriptor >= 0; }
  /// Puts the file into place if `isComplete`; the old one stays otherwise.
  bool close(bool isComplete);
  /// Also after closing.
  const platform::Replacement& replacement() const { return replacement_; }

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  platform::Replacement replacement_{};
  Vector<char> buffer_;
};

/// Every write fails as long as no file is open.
class FileOutput : public std::ostream {
 public:
  FileOutput() : std::ostream(nullptr) { init(&buffer_); }

  bool open(const char* name);
  bool isOpen() const { return buffer_.isOpen(); }
  /// False, with the old file in place, when anything went wrong.
  bool close() { return buffer_.close(flush().good()); }
  /// Whether the file has the owner and the permissions of the one that it replaced.
  bool keepsRights() const { return buffer_.replacement().keepsRights; }
  /// The file that is replaced; zeros for a new one.
  const platform::FileIdentity& replaced() const { return buffer_.replacement().old; }

 private:
  ReplacementBuffer buffer_;
};

}  // namespace vel::inifile
