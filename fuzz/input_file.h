// A file that a fuzz target writes its inputs to.
#pragma once

#include <fstream>
#include <string_view>

#include "vel_include/vel_filesys.h"

namespace fuzz {

class InputFile {
 public:
  explicit InputFile(const char* extension) : name_(VelClTmpFilename("FUZZ")) {
    name_.setNewExtension(extension);
  }
  ~InputFile() {
    file_.close();
    VelClFile(name_, nullptr).remove();
  }

  const char* name() const { return name_.getAsCString(); }
  /// Keeps the file open, which saves most of the time. Not for files that the system itself loads.
  void rewrite(std::string_view bytes) {
    if (bytes.size() != size_) {
      file_.close();
      file_.open(name(), std::ios::binary | std::ios::trunc);
    }
    file_.seekp(0);
    file_ << bytes << std::flush;
    size_ = bytes.size();
  }
  void write(std::string_view bytes) {
    rewrite(bytes);
    size_ = std::string_view::npos;
    file_.close();
  }

 private:
  VelClFilename name_;
  std::ofstream file_;
  std::size_t size_ = std::string_view::npos;
};

}  // namespace fuzz
