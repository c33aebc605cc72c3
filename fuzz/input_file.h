// The file that a fuzz target writes its inputs to.
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
  ~InputFile() { VelClFile(name_, nullptr).remove(); }

  const char* name() const { return name_.getAsCString(); }
  void write(std::string_view bytes) const {
    std::ofstream(name(), std::ios::binary | std::ios::trunc) << bytes;
  }

 private:
  VelClFilename name_;
};

}  // namespace fuzz
