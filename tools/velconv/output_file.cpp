// Writes the converted bytes. A failure is an exception, because it arrives in the middle of a conversion,
// through a sink whose functions return nothing.
#include "tools/velconv/output_file.h"

#include "platform/byte_files.h"
#include "platform/replacing.h"

namespace vel::velconv {

OutputFile::OutputFile(const char* name) : descriptor_(platform::kStandardOutput) {
  if (name == nullptr) return;
  if (platform::startReplacement(name, replacement_) != 0) throw OutputFailure();
  descriptor_ = replacement_.descriptor;
}

OutputFile::~OutputFile() {
  if (descriptor_ != platform::kStandardOutput && replacement_.descriptor != -1)
    platform::dropReplacement(replacement_);
}

void OutputFile::write(const char* bytes, std::size_t size) {
  if (platform::writeBytes(descriptor_, bytes, size) != 0) throw OutputFailure();
}

void OutputFile::finish() {
  if (descriptor_ == platform::kStandardOutput) return;
  if (platform::finishReplacement(replacement_) != 0) throw OutputFailure();
}

}  // namespace vel::velconv
