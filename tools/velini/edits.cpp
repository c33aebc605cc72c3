#include "tools/velini/edits.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>

namespace vel::velini {

namespace {

/// What follows a switch. Sections are no edit, but are repeated with them. In an assignment the first "="
/// ends the name, which cannot have one; the value can.
enum class Argument { None, Option, Assignment, Name, File, Section };

struct EditSwitch {
  const char* name;
  EditKind kind;
  Argument argument;
};

constexpr EditSwitch kSwitches[] = {
    {"-section", EditKind::Set, Argument::Section},
    {"-set", EditKind::Set, Argument::Assignment},
    {"-add", EditKind::Add, Argument::Assignment},
    {"-delete", EditKind::Delete, Argument::Option},
    {"-delsection", EditKind::DeleteSection, Argument::None},
    {"-rename", EditKind::Rename, Argument::Assignment},
    {"-renamesection", EditKind::RenameSection, Argument::Name},
    {"-comment", EditKind::CommentOut, Argument::Option},
    {"-merge", EditKind::Set, Argument::File},
};

/// Returns the row of a switch, or null.
const EditSwitch* rowOf(std::string_view argument) {
  const auto* const found = std::ranges::find(kSwitches, argument, &EditSwitch::name);
  return found != std::end(kSwitches) ? found : nullptr;
}

/// An argument, the value of its switch, and where to read on.
struct Given {
  const EditSwitch* row;  ///< null if it is none of the switches
  const char* value;      ///< null if there is none
  std::size_t next;
};

bool isValue(const char* argument) {
  return std::strcmp(argument, "-") == 0 || !VelClUsageCursor::isSwitchIndicator(argument);
}

/// Splits the spellings of useConventions. After "--" nothing is a switch.
Given givenAt(const std::vector<const char*>& arguments, std::size_t index) {
  const std::string_view argument(arguments[index]);
  if (argument == "--") return {nullptr, nullptr, arguments.size()};
  std::string_view name = argument.substr(argument.starts_with("--") ? 1 : 0);
  const std::size_t equalSign = name.find('=');
  const EditSwitch* const row = rowOf(name.substr(0, equalSign));
  if (row == nullptr) return {nullptr, nullptr, index + 1};
  if (equalSign != std::string_view::npos) return {row, name.data() + equalSign + 1, index + 1};
  const bool hasValue =
      row->argument != Argument::None && index + 1 < arguments.size() && isValue(arguments[index + 1]);
  return hasValue ? Given{row, arguments[index + 1], index + 2} : Given{row, nullptr, index + 1};
}

/// Returns the value of the first -section, or null.
const char* firstSection(const std::vector<const char*>& arguments) {
  Given given{};
  for (std::size_t i = 1; i < arguments.size(); i = given.next) {
    given = givenAt(arguments, i);
    if (given.row != nullptr && given.row->argument == Argument::Section) return given.value;
  }
  return nullptr;
}

std::optional<Mistake> readStep(const EditSwitch& row, const char* value, const char* section,
                                std::vector<Step>& steps) {
  if (row.argument == Argument::File) {
    steps.emplace_back(value);
    return std::nullopt;
  }
  if (section == nullptr) return Mistake{kSectionRequired, nullptr};
  Edit edit{row.kind, section, "", ""};
  if (row.argument == Argument::Option) edit.option = value;
  if (row.argument == Argument::Name) edit.value = value;
  if (row.argument == Argument::Assignment) {
    const char* const equalSign = std::strchr(value, '=');
    if (equalSign == nullptr) return Mistake{kAssignmentExpected, value};
    edit.option.assign(value, equalSign);
    edit.value = equalSign + 1;
  }
  steps.emplace_back(std::move(edit));
  return std::nullopt;
}

}  // namespace

std::optional<Mistake> readSteps(const std::vector<const char*>& arguments, std::vector<Step>& steps) {
  const char* section = firstSection(arguments);
  Given given{};
  for (std::size_t i = 1; i < arguments.size(); i = given.next) {
    given = givenAt(arguments, i);
    const EditSwitch* const row = given.row;
    if (row == nullptr) continue;
    if (row->argument != Argument::None && given.value == nullptr) return Mistake{kValueRequired, row->name};
    if (row->argument == Argument::Section)
      section = given.value;
    else if (const auto mistake = readStep(*row, given.value, section, steps); mistake.has_value())
      return mistake;
  }
  return std::nullopt;
}

/// A query is for one section, so without edits the check finds a second -section, too. A repetition with a
/// value that it must not have stays, so that the check refuses it.
std::vector<const char*> withoutRepeats(const std::vector<const char*>& arguments) {
  std::vector<const char*> first(arguments.begin(), arguments.begin() + (arguments.empty() ? 0 : 1));
  std::set<const EditSwitch*> known;
  bool hasEdits = false;
  Given given{};
  for (std::size_t i = 1; i < arguments.size(); i = given.next) {
    given = givenAt(arguments, i);
    hasEdits = hasEdits || (given.row != nullptr && given.row->argument != Argument::Section);
    const bool hasUnwantedValue =
        given.row != nullptr && given.row->argument == Argument::None && given.value != nullptr;
    if (given.row == nullptr || hasUnwantedValue || known.insert(given.row).second)
      first.insert(first.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i),
                   arguments.begin() + static_cast<std::ptrdiff_t>(given.next));
  }
  return hasEdits ? first : arguments;
}

}  // namespace vel::velini
