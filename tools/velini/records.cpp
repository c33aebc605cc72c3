#include "tools/velini/records.h"

#include <algorithm>
#include <unordered_set>

#include "inifile/first_records.h"

namespace vel::velini {

using inifile::isFirst;

namespace {

template <typename Record>
const Record* findCounting(const std::vector<Record>& records, std::string_view key) {
  const auto found = std::ranges::find_if(
      records, [key](const Record& record) { return record.counts && record.key == key; });
  return found != records.end() ? &*found : nullptr;
}

}  // namespace

const Option* Section::find(std::string_view optionKey) const {
  return findCounting(options, optionKey);
}

const Section* Records::find(std::string_view name) const {
  return findCounting(sections, keyOf(dialect->sections, name));
}

const Option* Records::find(const Section& section, std::string_view name) const {
  return section.find(keyOf(dialect->options, name));
}

void Records::complete() {
  if (dialect->hasOptionsBeforeSections && !sections.empty() && sections[0].key.empty() &&
      sections[0].options.empty())
    sections.erase(sections.begin());
  for (Section& section : sections) {
    std::unordered_set<std::string_view> later;
    for (auto option = section.options.rbegin(); option != section.options.rend(); ++option)
      option->counts = later.insert(option->key).second;
  }
}

Records recordsOf(const VelClIniFile& file) {
  Records records;
  for (auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    Section copy{section->getName(), {}, keyOf(Names::AnyCase, section->getName()), isFirst(file, *section)};
    for (auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      copy.options.push_back({option->getName(), option->getValue(), option->getComment(),
                              keyOf(Names::AnyCase, option->getName()), isFirst(file, *section, *option)});
    records.sections.push_back(std::move(copy));
  }
  return records;
}

}  // namespace vel::velini
