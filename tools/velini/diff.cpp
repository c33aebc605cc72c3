// Compares all values of an option if it may repeat in the dialect, otherwise the one that programs find.
//
//   plain   "-" or "+", section, option and value, separated by tabs; without option and value for a section
//           that only one file has
//   ini     lines of INI files after "-", "+" or, for the header of a section that both files have, a blank
//   json    {"section": {"option": {"old": "a", "new": "b"}}}; several values are a list
#include "tools/velini/diff.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/json_text.h"

namespace vel::velini {

namespace {

using OptionValues = std::vector<const Option*>;

/// The values of an option in both files; there can be none in one of them.
struct OptionPair {
  OptionValues left;
  OptionValues right;

  bool isEqual() const {
    return std::ranges::equal(
        left, right, {}, [](const Option* option) { return option->value; },
        [](const Option* option) { return option->value; });
  }
};

/// A section, which only one of the files can have, and its options that differ.
struct SectionPair {
  const Section* left;
  const Section* right;
  std::vector<OptionPair> options;

  const std::string& name() const { return (left != nullptr ? left : right)->name; }
};

class Comparison {
 public:
  Comparison(const Records& left, const Records& right) : left_(left), right_(right) {}

  /// Returns the sections that differ: those of the left file in order, then those that only the right one
  /// has.
  std::vector<SectionPair> run(const char* only) const {
    std::vector<SectionPair> pairs;
    const auto compare = [&](const Section* left, const Section* right) {
      SectionPair pair{left, right, optionsOf(left, right)};
      if (left == nullptr || right == nullptr || !pair.options.empty()) pairs.push_back(std::move(pair));
    };
    const std::string key = only != nullptr ? keyOf(left_.dialect->sections, only) : "";
    for (const Section& section : left_.sections)
      if (section.counts && (only == nullptr || section.key == key))
        compare(&section, right_.find(section.name));
    for (const Section& section : right_.sections)
      if (section.counts && (only == nullptr || section.key == key) && left_.find(section.name) == nullptr)
        compare(nullptr, &section);
    return pairs;
  }

 private:
  std::vector<OptionPair> optionsOf(const Section* left, const Section* right) const {
    std::vector<OptionPair> pairs;
    std::unordered_map<std::string_view, std::size_t> indexes;
    const auto collect = [&](const Records& records, const Section* section, OptionValues OptionPair::*side) {
      if (section == nullptr) return;
      for (const Option& option : section->options) {
        if (!option.counts && !records.dialect->mayRepeat) continue;
        const auto [found, isNew] = indexes.try_emplace(option.key, pairs.size());
        if (isNew) pairs.emplace_back();
        (pairs[found->second].*side).push_back(&option);
      }
    };
    collect(left_, left, &OptionPair::left);
    collect(right_, right, &OptionPair::right);
    std::erase_if(pairs, [](const OptionPair& pair) { return pair.isEqual(); });
    return pairs;
  }

  const Records& left_;
  const Records& right_;
};

void writePlain(std::ostream& out, const SectionPair& section) {
  const std::string name = plainText(section.name());
  if (section.left == nullptr || section.right == nullptr)
    out << (section.left != nullptr ? "-\t" : "+\t") << name << '\n';
  const auto write = [&](const char* sign, const OptionValues& values) {
    for (const Option* option : values)
      out << sign << '\t' << name << '\t' << plainText(option->name) << '\t' << plainText(option->value)
          << '\n';
  };
  for (const OptionPair& option : section.options) {
    write("-", option.left);
    write("+", option.right);
  }
}

void writeIni(std::ostream& out, const Dialect& dialect, const SectionPair& section) {
  const char* const sign = section.left == nullptr ? "+" : section.right == nullptr ? "-" : " ";
  out << sign << iniHeader(dialect, section.name()) << '\n';
  for (const OptionPair& option : section.options) {
    for (const Option* value : option.left) out << '-' << iniOption(dialect, *value) << '\n';
    for (const Option* value : option.right) out << '+' << iniOption(dialect, *value) << '\n';
  }
}

std::string jsonValues(const char* name, const OptionValues& values) {
  if (values.size() == 1) return std::string("\"") + name + "\": " + tools::jsonText(values[0]->value);
  std::string text = std::string("\"") + name + "\": [";
  for (const Option* value : values) text += (value != values[0] ? ", " : "") + tools::jsonText(value->value);
  return text + "]";
}

void writeJson(std::ostream& out, const std::vector<SectionPair>& sections) {
  const char* separator = "\n";
  out << '{';
  for (const SectionPair& section : sections) {
    out << separator << tools::jsonText(section.name()) << ": {";
    const char* between = "";
    for (const OptionPair& option : section.options) {
      out << between << tools::jsonText((option.left.empty() ? option.right : option.left)[0]->name) << ": {";
      if (!option.left.empty()) out << jsonValues("old", option.left);
      if (!option.left.empty() && !option.right.empty()) out << ", ";
      if (!option.right.empty()) out << jsonValues("new", option.right);
      out << '}';
      between = ", ";
    }
    out << '}';
    separator = ",\n";
  }
  out << "\n}\n";
}

}  // namespace

bool writeDifferences(std::ostream& out, Form form, const Records& left, const Records& right,
                      const char* section) {
  const std::vector<SectionPair> pairs = Comparison(left, right).run(section);
  if (form == Form::Json) writeJson(out, pairs);
  for (const SectionPair& pair : pairs) {
    if (form == Form::Plain) writePlain(out, pair);
    if (form == Form::Ini) writeIni(out, *left.dialect, pair);
  }
  return !pairs.empty();
}

}  // namespace vel::velini
