// Creates scratch directories in the system's directory for temporary files.
#include "platform/test/scratch_directory.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace vel::test {

namespace fs = std::filesystem;

ScratchDirectory::ScratchDirectory() {
  std::random_device random;
  do path_ = (fs::temp_directory_path() / ("veltest" + std::to_string(random()))).string();
  while (!fs::create_directory(path_));
}

/// Makes all entries writable first, since Windows does not remove read-only files, nor Linux the contents of
/// read-only directories.
ScratchDirectory::~ScratchDirectory() {
  std::error_code ignored;
  for (auto walk = fs::recursive_directory_iterator(path_, ignored);
       walk != fs::recursive_directory_iterator(); walk.increment(ignored))
    if (!walk->is_symlink(ignored))
      fs::permissions(walk->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
  fs::remove_all(path_, ignored);
}

std::string ScratchDirectory::write(const std::string& entry, const std::string& bytes) const {
  std::string name = path(entry);
  fs::create_directories(utf8Path(name).parent_path());
  if (!(std::ofstream(utf8Path(name), std::ios::binary) << bytes).flush())
    throw std::runtime_error("cannot write " + name);
  return name;
}

std::string readFile(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(utf8Path(path), std::ios::binary).rdbuf();
  return bytes.str();
}

std::string backSlashed(std::string path) {
  std::ranges::replace(path, '/', '\\');
  return path.starts_with('\\') ? "C:" + path : path;
}

}  // namespace vel::test
