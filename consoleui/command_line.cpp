// Values are never copied: they point into the vector that the program got, so that they live as long as the
// process. Only names that a "=" follows, and names that replace others, are copies.
#include "consoleui/command_line.h"

#include <cstring>

#include "base/ascii.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {
namespace {

bool isText(const char* argument, const char* text) {
  return std::strcmp(argument, text) == 0;
}

/// Returns the switch with one dash. "---a", "--5" and "--=a" stay as they are, and are unknown: without a
/// dash "--5" would be a number.
const char* withOneDash(const char* argument) {
  if (argument[1] != '-') return argument;
  const char c = argument[2];
  return c == '-' || c == '=' || c == '\0' || isAsciiDigit(c) ? argument : argument + 1;
}

/// Returns the "=" that ends the name of a switch, or null.
const char* endOfName(const char* name) {
  return *name == '-' || *name == '=' ? nullptr : std::strchr(name, '=');
}

}  // namespace

CommandLine::CommandLine(int argc, const char* const* argv, const BuiltInSwitches& builtIn)
    : builtIn_(builtIn) {
  bool switchesEnded = false;
  for (int i = 0; argv != nullptr && i < argc && argv[i] != nullptr; ++i) {
    const char* const argument = argv[i];
    if (i == 0 || switchesEnded || isText(argument, "-")) {
      add(argument, {argument, true, false});
    } else if (isText(argument, "--")) {
      switchesEnded = true;
      lastBeforeEnd_ = arguments_.back();
    } else if (!VelClUsageCursor::isSwitchIndicator(argument)) {
      add(argument, {argument, false, false});
    } else if (!consumeBuiltIn(argument)) {
      bool usesFollowing = false;
      addSwitch(argument, i + 1 < argc ? argv[i + 1] : nullptr, usesFollowing);
      if (usesFollowing) ++i;
    }
  }
  Vector<bool> isData;
  for (const ArgumentOrigin& origin : origins_) isData.push_back(origin.isData);
  arguments_.push_back(nullptr);
  marks_.emplace(arguments_.data(), std::move(isData));
}

void CommandLine::add(const char* text, const ArgumentOrigin& origin) {
  arguments_.push_back(text);
  origins_.push_back(origin);
}

/// Only the spelling with two dashes is built in, so that a program may have a switch -version of its own.
bool CommandLine::consumeBuiltIn(const char* typed) {
  if (typed[1] != '-') return false;
  const std::string_view name(typed + 2);
  if (name.empty()) return false;
  const bool isHelp = name == builtIn_.help;
  const bool isVersion = name == builtIn_.version;
  if (!isHelp && !isVersion) return false;
  (isHelp ? hasHelp_ : hasVersion_) = true;
  add(typed, {typed, false, false});
  return true;
}

void CommandLine::addSwitch(const char* typed, const char* following, bool& usesFollowing) {
  const char* const text = withOneDash(typed);
  const char* const equals = endOfName(text + 1);
  const char* const end = equals != nullptr ? equals : text + std::strlen(text);
  const std::string_view name(text + 1, static_cast<std::size_t>(end - text - 1));
  if (!name.empty() && name == builtIn_.color) {
    usesFollowing =
        equals == nullptr && following != nullptr && !VelClUsageCursor::isSwitchIndicator(following);
    color_ = equals != nullptr ? equals + 1 : usesFollowing ? following : nullptr;
    return;
  }
  add(equals != nullptr ? switchNamed(name) : text, {typed, false, false});
  if (equals != nullptr) add(equals + 1, {typed, true, true});
}

/// Returns a copy with a "-", which lives as long as this object.
const char* CommandLine::switchNamed(std::string_view name) {
  OwnedText text(static_cast<char*>(VelClMemoryManager::malloc(name.size() + 2)));
  text[0] = '-';
  std::memcpy(text.get() + 1, name.data(), name.size());
  text[name.size() + 1] = '\0';
  names_.push_back(std::move(text));
  return names_.back().get();
}

void CommandLine::rename(int index, std::string_view name) {
  const char*& argument = arguments_[static_cast<std::size_t>(index)];
  const bool isLastBeforeEnd = argument == lastBeforeEnd_;
  argument = switchNamed(name);
  if (isLastBeforeEnd) lastBeforeEnd_ = argument;
}

const ArgumentOrigin* CommandLine::originOf(const char* argument) const {
  for (std::size_t i = 0; i < origins_.size(); ++i)
    if (arguments_[i] == argument) return &origins_[i];
  return nullptr;
}

bool CommandLine::hasAttachedValue(const char* argument) const {
  const ArgumentOrigin* const origin = originOf(argument);
  return origin != nullptr && origin != &origins_.back() && !origin->isAttached && (origin + 1)->isAttached;
}

}  // namespace vel::consoleui
