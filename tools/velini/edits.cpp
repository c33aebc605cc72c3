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

bool hasValue(const std::vector<const char*>& arguments, std::size_t index) {
  return index + 1 < arguments.size() && !VelClUsageCursor::isSwitchIndicator(arguments[index + 1]);
}

/// Returns the value of the first -section, or null.
const char* firstSection(const std::vector<const char*>& arguments) {
  for (std::size_t i = 1; i + 1 < arguments.size(); ++i)
    if (std::string_view(arguments[i]) == kSwitches[0].name) return arguments[i + 1];
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
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const EditSwitch* const row = rowOf(arguments[i]);
    if (row == nullptr) continue;
    const char* value = nullptr;
    if (row->argument != Argument::None) {
      if (!hasValue(arguments, i)) return Mistake{kValueRequired, row->name};
      value = arguments[++i];
    }
    if (row->argument == Argument::Section)
      section = value;
    else if (const auto mistake = readStep(*row, value, section, steps); mistake.has_value())
      return mistake;
  }
  return std::nullopt;
}

std::vector<const char*> withoutRepeats(const std::vector<const char*>& arguments) {
  std::vector<const char*> first;
  std::set<const EditSwitch*> known;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const EditSwitch* const row = i != 0 ? rowOf(arguments[i]) : nullptr;
    if (row == nullptr || known.insert(row).second)
      first.push_back(arguments[i]);
    else if (row->argument != Argument::None && hasValue(arguments, i))
      ++i;
  }
  return first;
}

}  // namespace vel::velini
