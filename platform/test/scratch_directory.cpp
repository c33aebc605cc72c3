// Scratch directories live in the system's directory for temporary files.
#include "platform/test/scratch_directory.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace vel::test {

namespace fs = std::filesystem;

namespace {

fs::path makeDirectory() {
  std::random_device random;
  const fs::path base = fs::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    fs::path candidate = base / ("veltest" + std::to_string(random()));
    if (fs::create_directory(candidate)) return candidate;
  }
  throw std::runtime_error("no scratch directory in " + base.string());
}

/// Read-only entries would otherwise stay behind: files on Windows, contents of directories on Linux.
void makeWritable(const fs::path& entry) {
  std::error_code ignored;
  fs::permissions(entry, fs::perms::owner_all, fs::perm_options::add | fs::perm_options::nofollow, ignored);
  if (ignored) fs::permissions(entry, fs::perms::owner_all, fs::perm_options::add, ignored);
}

}  // namespace

ScratchDirectory::ScratchDirectory()
    : path_(makeDirectory().string()), separator_(static_cast<char>(fs::path::preferred_separator)) {}

ScratchDirectory::~ScratchDirectory() {
  std::error_code ignored;
  makeWritable(path_);
  for (auto walk = fs::recursive_directory_iterator(path_, ignored);
       walk != fs::recursive_directory_iterator(); walk.increment(ignored))
    if (!walk->is_symlink(ignored)) makeWritable(walk->path());
  fs::remove_all(path_, ignored);
}

std::string ScratchDirectory::write(const std::string& entry, const std::string& bytes) const {
  std::string name = path(entry);
  fs::create_directories(fs::path(name).parent_path());
  std::ofstream file(name, std::ios::binary);
  file << bytes;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + name);
  return name;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

}  // namespace vel::test
