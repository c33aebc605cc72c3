// Starts the children of every kind of test.
#include "platform/test/posix/spawn.h"

#include <signal.h>
#include <unistd.h>

namespace vel::test {

namespace {

std::vector<std::string> changedEnvironment(const std::vector<std::pair<std::string, std::string>>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
  for (const auto& [name, value] : changes) {
    const std::string start = name + "=";
    std::erase_if(result, [&start](const std::string& entry) { return entry.starts_with(start); });
    if (!value.empty()) result.push_back(start + value);
  }
  return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

bool spawn(pid_t& child, std::vector<std::string> command,
           const std::vector<std::pair<std::string, std::string>>& environmentChanges,
           const SpawnActions& actions) {
  std::vector<std::string> environment = changedEnvironment(environmentChanges);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  if (actions.isSeparate()) {
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  }
  const int error = posix_spawn(&child, command.front().c_str(), &actions.files(), &attributes,
                                pointersTo(command).data(), pointersTo(environment).data());
  posix_spawnattr_destroy(&attributes);
  return error == 0;
}

}  // namespace vel::test
