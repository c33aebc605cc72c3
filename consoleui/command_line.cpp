// Values are never copied: they point into the vector that the program got, so that they live as long as the
// process. Only names that a "=" follows, and names that replace their beginnings, are copies.
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

CommandLine::CommandLine(int argc, const char* const* argv, const BuiltInSwitches& builtIn,
                         const Abbreviations* abbreviations)
    : builtIn_(builtIn), abbreviations_(abbreviations) {
  bool switchesEnded = false;
  for (int i = 0; argv != nullptr && i < argc && argv[i] != nullptr; ++i) {
    const char* const argument = argv[i];
    if (i == 0 || switchesEnded || isText(argument, "-")) {
      add(argument, {argument, true, false, false});
    } else if (isText(argument, "--")) {
      switchesEnded = true;
      origins_.back().isCutOff = true;
    } else if (!VelClUsageCursor::isSwitchIndicator(argument)) {
      add(argument, {argument, false, false, false});
    } else {
      bool usesFollowing = false;
      addSwitch(argument, i + 1 < argc ? argv[i + 1] : nullptr, usesFollowing);
      if (usesFollowing) ++i;
    }
  }
  abbreviations_ = nullptr;
  Vector<bool> isData;
  for (const ArgumentOrigin& origin : origins_) isData.push_back(origin.isData);
  arguments_.push_back(nullptr);
  marks_.emplace(arguments_.data(), std::move(isData));
}

void CommandLine::add(const char* text, const ArgumentOrigin& origin) {
  arguments_.push_back(text);
  origins_.push_back(origin);
}

/// Whether the switch is answered if it has two dashes. With one dash it is the program's own.
bool CommandLine::isAnswered(std::string_view name) const {
  return !name.empty() && (name == builtIn_.help || name == builtIn_.version);
}

void CommandLine::addSwitch(const char* typed, const char* following, bool& usesFollowing) {
  const char* const text = withOneDash(typed);
  const char* const equals = endOfName(text + 1);
  const char* const end = equals != nullptr ? equals : text + std::strlen(text);
  const std::string_view beginning(text + 1, static_cast<std::size_t>(end - text - 1));
  const bool hasTwoDashes = text != typed;
  const bool isWhole = abbreviations_ == nullptr || beginning.empty() ||
                       (hasTwoDashes && isAnswered(beginning)) || beginning == builtIn_.color;
  const std::string_view name = isWhole ? beginning : abbreviations_->meaningOf(beginning, hasTwoDashes);
  if (!name.empty() && name == builtIn_.color) {
    usesFollowing =
        equals == nullptr && following != nullptr && !VelClUsageCursor::isSwitchIndicator(following);
    color_ = equals != nullptr ? equals + 1 : usesFollowing ? following : nullptr;
    origins_.back().isCutOff = true;
    return;
  }
  const bool isAnswer = hasTwoDashes && isAnswered(name);
  if (isAnswer && equals == nullptr) (name == builtIn_.help ? hasHelp_ : hasVersion_) = true;
  const char* given = text;
  if (isAnswer || equals != nullptr || name != beginning) given = switchNamed(name, isAnswer);
  add(given, {typed, false, false, false});
  if (equals != nullptr) add(equals + 1, {typed, true, true, false});
}

/// Returns a copy with its dashes, which lives as long as this object.
const char* CommandLine::switchNamed(std::string_view name, bool hasTwoDashes) {
  const std::string_view dashes = hasTwoDashes ? "--" : "-";
  OwnedText text(static_cast<char*>(VelClMemoryManager::malloc(dashes.size() + name.size() + 1)));
  std::memcpy(text.get(), dashes.data(), dashes.size());
  std::memcpy(text.get() + dashes.size(), name.data(), name.size());
  text[dashes.size() + name.size()] = '\0';
  names_.push_back(std::move(text));
  return names_.back().get();
}

}  // namespace vel::consoleui
