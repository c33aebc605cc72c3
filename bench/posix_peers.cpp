#include "bench/posix_peers.h"

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <initializer_list>
#include <vector>

namespace bench {

namespace {

void removeEntries(int place, const char* name) {
  const int descriptor = openat(place, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  DIR* const directory = fdopendir(descriptor);
  while (const dirent* const entry = readdir(directory)) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    if (entry->d_type == DT_DIR)
      removeEntries(descriptor, entry->d_name);
    else
      unlinkat(descriptor, entry->d_name, 0);
  }
  closedir(directory);
  unlinkat(place, name, AT_REMOVEDIR);
}

int countEntries(int place, const char* name) {
  int files = 0;
  DIR* const directory = fdopendir(openat(place, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  while (const dirent* const entry = readdir(directory)) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    if (entry->d_type == DT_DIR)
      files += countEntries(dirfd(directory), entry->d_name);
    else
      files += entry->d_type == DT_REG ? 1 : 0;
  }
  closedir(directory);
  return files;
}

}  // namespace

double processorTime() {
  double seconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime})
      seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  }
  return seconds;
}

void setVariable(const char* name, const char* value) {
  value != nullptr ? setenv(name, value, 1) : unsetenv(name);
}

int countWritableFiles(const char* path) {
  int files = 0;
  DIR* const directory = opendir(path);
  while (const dirent* const entry = readdir(directory)) {
    struct stat status {};
    fstatat(dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW);
    files += S_ISREG(status.st_mode) && (status.st_mode & 0222) != 0 ? 1 : 0;
  }
  closedir(directory);
  return files;
}

int countFiles(const char* directory) {
  return countEntries(AT_FDCWD, directory);
}

bool isRegularFile(const char* name) {
  struct statx status {};
  return statx(AT_FDCWD, name, 0, STATX_BASIC_STATS | STATX_BTIME, &status) == 0 && S_ISREG(status.stx_mode);
}

void removeTreeByCalls(const char* path) {
  removeEntries(AT_FDCWD, path);
}

bool spawnAndWait(const char* program) {
  char* const arguments[] = {const_cast<char*>(program), nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, program, nullptr, nullptr, arguments, environ) != 0) return false;
  int status = 0;
  waitpid(child, &status, 0);
  return true;
}

bool runTool(std::initializer_list<const char*> arguments) {
  std::vector<char*> pointers;
  for (const char* argument : arguments) pointers.push_back(const_cast<char*>(argument));
  pointers.push_back(nullptr);
  pid_t child = 0;
  int status = 0;
  if (posix_spawnp(&child, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) return false;
  return waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace bench
