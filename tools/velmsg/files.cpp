#include "tools/velmsg/files.h"

#include <algorithm>
#include <cstring>

#include "platform/descriptors.h"
#include "platform/replacing_file.h"
#include "vel_include/vel_filesys.h"

namespace vel::velmsg {
namespace {

/// More than the largest catalog needs. Endless input ends here.
constexpr std::size_t kMaxSourceSize = std::size_t{512} << 20;

bool readBytes(int descriptor, std::string& bytes) {
  std::size_t size = 0;
  do {
    const std::size_t before = bytes.size();
    if (before > kMaxSourceSize) return false;
    bytes.resize(before + std::max<std::size_t>(before, 65536));
    if (platform::readBytes(descriptor, bytes.data() + before, bytes.size() - before, size) != 0)
      return false;
    bytes.resize(before + size);
  } while (size != 0);
  return true;
}

}  // namespace

bool readFile(const char* name, std::string& bytes) {
  if (std::strcmp(name, "-") == 0) {
    velFileSetBinaryMode(platform::kStandardInput, true);
    return readBytes(platform::kStandardInput, bytes);
  }
  platform::ReadableFile file;
  return file.open(name, platform::PipeWithoutWriter::Wait) == 0 && readBytes(file.descriptor(), bytes);
}

const char* writeOutputs(const std::vector<Output>& outputs, std::vector<const char*>& changedRights) {
  std::vector<platform::ReplacingFile> files(outputs.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    const Output& output = outputs[i];
    if (files[i].start(output.name) != 0 || files[i].write(output.bytes.data(), output.bytes.size()) != 0)
      return output.name;
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].finish() != 0) return outputs[i].name;
    if (!files[i].keepsRights()) changedRights.push_back(outputs[i].name);
  }
  return nullptr;
}

}  // namespace vel::velmsg
