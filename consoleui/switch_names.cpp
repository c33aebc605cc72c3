// Reads names from usage strings with the cursor. It ends a name at "-", so that it finds two switches in
// "-dry-run"; the check of a command line compares the whole name, and so does this.
#include "consoleui/switch_names.h"

#include <algorithm>
#include <cstring>

#include "consoleui/edit_distance.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {
namespace {

constexpr std::size_t kMaxSuggestions = 3;
constexpr std::size_t kMinBeginning = 2;

struct Candidate {
  std::string_view name;
  std::size_t distance;
};

/// Returns the distance, or a value above `limit` if the names do not resemble each other. A name that only
/// lacks its end counts as one mistake.
std::size_t distanceOf(std::string_view candidate, std::string_view name, std::size_t limit) {
  const std::size_t distance = editDistance(candidate, name);
  return distance > limit && name.size() >= kMinBeginning && candidate.starts_with(name) ? 1 : distance;
}

}  // namespace

SwitchNames switchNamesOf(const char* usage, bool withTagged) {
  SwitchNames names;
  VelClUsageCursor element(usage);
  const char* end = nullptr;
  for (bool more = element.setToFirst(); more; more = element.setToNext()) {
    const char* const position = element.getAsCString();
    if (!element.isSwitch() || position < end || (element.isTagged() && !withTagged)) continue;
    const std::size_t length = std::strcspn(position + 1, "[]<>(){}|= \r\n");
    end = position + 1 + length;
    const std::string_view name(position + 1, length);
    if (length > 0 && std::ranges::find(names, name) == names.end()) names.push_back(name);
  }
  return names;
}

std::string_view completedName(const SwitchNames& names, std::string_view beginning) {
  if (beginning.empty() || std::ranges::find(names, beginning) != names.end()) return beginning;
  std::string_view found;
  for (const std::string_view name : names) {
    if (!name.starts_with(beginning)) continue;
    if (!found.empty()) return {};
    found = name;
  }
  return found;
}

std::string_view Abbreviations::meaningOf(std::string_view typed, bool hasTwoDashes) const {
  if (std::ranges::find(whole, typed) != whole.end()) return typed;
  const std::string_view found = completedName(hasTwoDashes ? twoDashes : oneDash, typed);
  return found.empty() ? typed : found;
}

SwitchNames similarNames(const SwitchNames& names, std::string_view name) {
  const std::size_t limit = std::max<std::size_t>(1, std::min(name.size(), kMaxComparedLength) / 3);
  Vector<Candidate> candidates;
  for (const std::string_view candidate : names) {
    const std::size_t distance = distanceOf(candidate, name, limit);
    // One mistake in a name of one letter leaves nothing in common.
    if (distance <= limit && distance < candidate.size()) candidates.push_back({candidate, distance});
  }
  std::ranges::stable_sort(candidates, {}, &Candidate::distance);
  if (candidates.size() > kMaxSuggestions) candidates.resize(kMaxSuggestions);
  SwitchNames similar;
  for (const Candidate& candidate : candidates) similar.push_back(candidate.name);
  return similar;
}

}  // namespace vel::consoleui
