// Copies standard input to a temporary file.
#include "tools/spooled_input.h"

#include <array>

#include "platform/byte_files.h"

namespace vel::tools {

SpooledInput::SpooledInput(const char* extension) : complete_(false), file_(VelClFilename(), nullptr) {
  char name[VEL_MAX_PATH_LENGTH + 1];
  complete_ = spool(name);
  if (*name == '\0') return;
  file_ = VelClFile(VelClFilename(name), nullptr);
  // The function that creates the file chooses its extension.
  VelClFilename wanted(name);
  wanted.setNewExtension(extension);
  complete_ = file_.renameAs(wanted) && complete_;
}

SpooledInput::~SpooledInput() {
  if (file_.getFilename().getLength() != 0) file_.remove();
}

bool SpooledInput::spool(char* name) {
  velFileSetBinaryMode(platform::kStandardInput, true);
  const int descriptor = velTmpFileCreate(nullptr, "VEL", name);
  if (descriptor < 0) return false;
  const platform::ReadableFile closer(descriptor);
  std::array<char, 65536> bytes;
  std::size_t size = 0;
  while (platform::readBytes(platform::kStandardInput, bytes.data(), bytes.size(), size) == 0) {
    if (size == 0) return true;
    if (platform::writeBytes(descriptor, bytes.data(), size) != 0) return false;
  }
  return false;
}

}  // namespace vel::tools
