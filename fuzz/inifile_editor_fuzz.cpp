// Edits any text: one change leaves every other byte and every other option, the value comes back, and a
// refusal changes nothing. The input is a byte of options, a section's name, an option's name and a value,
// each terminated, and the text.
#include <algorithm>
#include <cstring>
#include <string>

#include "fuzz/bytes.h"
#include "vel_include/vel_inifile.h"

namespace {

using fuzz::require;

struct Input {
  std::string section;
  std::string option;
  std::string value;
  std::string text;
};

std::string textOf(const VelClIniFileEditor& editor) {
  return {editor.getText(), editor.getLength()};
}

const VelClIniFileOption* find(const VelClIniFile& file, const Input& input) {
  const VelClIniFileSection* const section = file.getExistingSection(input.section.c_str());
  return section != nullptr ? file.getExistingOption(*section, input.option.c_str()) : nullptr;
}

/// Every section, and every option but one.
std::string shown(const VelClIniFile& file, const VelClIniFileOption* without) {
  std::string text;
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    text += std::string("[") + section->getName() + "]\n";
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (option != without)
        text +=
            std::string(option->getName()) + '\0' + option->getValue() + '\0' + option->getComment() + '\n';
  }
  return text;
}

/// What is left of a text between those of its bytes that another one begins and ends with as well.
std::string difference(const std::string& text, const std::string& other) {
  const auto front = std::mismatch(text.begin(), text.end(), other.begin(), other.end());
  const auto back = std::mismatch(text.rbegin(), std::make_reverse_iterator(front.first), other.rbegin(),
                                  std::make_reverse_iterator(front.second));
  return {front.first, back.first.base()};
}

/// No limit of lines and options is near.
bool isSmall(const Input& input) {
  std::size_t longest = 0;
  for (std::size_t begin = 0; begin <= input.text.size();) {
    const std::size_t end = std::min(input.text.find('\n', begin), input.text.size());
    longest = std::max(longest, end - begin);
    begin = end + 1;
  }
  return longest < 400 && input.value.size() < 100 && input.option.size() < 100;
}

void setValue(VelClIniFileEditor& editor, const Input& input, bool allowContinuation) {
  const bool wasThere = find(editor.getIniFile(), input) != nullptr;
  const bool hadSection = editor.getIniFile().getExistingSection(input.section.c_str()) != nullptr;
  const std::string rest = shown(editor.getIniFile(), find(editor.getIniFile(), input));
  if (!editor.setValue(input.section.c_str(), input.option.c_str(), input.value.c_str())) {
    require(!wasThere || !isSmall(input));
    require(textOf(editor) == input.text);
    return;
  }
  const VelClIniFileOption* const changed = find(editor.getIniFile(), input);
  require(changed != nullptr && changed->getValue() == input.value);
  if (hadSection) require(shown(editor.getIniFile(), changed) == rest);
  const std::string text = textOf(editor);
  // A value changes within its line, but continuation lines go with it. Nothing that is added takes any away.
  if (!wasThere) require(difference(input.text, text).empty());
  if (wasThere && !allowContinuation) {
    require(difference(input.text, text).find('\n') == std::string::npos);
    require(difference(text, input.text).find('\n') == std::string::npos);
  }
  VelClIniFileEditor again("unused");
  again.loadFromBuffer(text.data(), text.size(), allowContinuation);
  require(shown(again.getIniFile(), nullptr) == shown(editor.getIniFile(), nullptr));
}

/// Every option that `source` has none of the names of.
std::string shownWithout(const VelClIniFile& file, const VelClIniFile& source) {
  std::string text;
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    const VelClIniFileSection* const merged = source.getExistingSection(section->getName());
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (merged == nullptr || source.getExistingOption(*merged, option->getName()) == nullptr)
        text +=
            std::string(option->getName()) + '\0' + option->getValue() + '\0' + option->getComment() + '\n';
  }
  return text;
}

/// The value is the text of the file to merge.
void merge(VelClIniFileEditor& editor, const Input& input) {
  VelClIniFile source("unused");
  source.loadFromBuffer(input.value.data(), input.value.size(), '\n', true, true);
  const std::string rest = shownWithout(editor.getIniFile(), source);
  if (!editor.merge(source)) return require(textOf(editor) == input.text);
  require(shownWithout(editor.getIniFile(), source) == rest);
  for (const auto* section = source.getFirstSection(); section != nullptr; section = section->getNext())
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext()) {
      if (source.getExistingSection(section->getName()) != section ||
          source.getExistingOption(*section, option->getName()) != option)
        continue;
      const auto* const found = find(editor.getIniFile(), {section->getName(), option->getName(), "", ""});
      require(found != nullptr && std::strcmp(found->getValue(), option->getValue()) == 0);
    }
}

void removeOption(VelClIniFileEditor& editor, const Input& input) {
  const VelClIniFileOption* const option = find(editor.getIniFile(), input);
  const std::string rest = shown(editor.getIniFile(), option);
  if (editor.deleteOption(input.section.c_str(), input.option.c_str())) {
    require(option != nullptr && shown(editor.getIniFile(), nullptr) == rest);
  } else {
    require(textOf(editor) == input.text);
    require(option == nullptr || !isSmall(input));
  }
}

void changeSection(VelClIniFileEditor& editor, const Input& input, bool isAdded) {
  const char* const name = input.section.c_str();
  const bool wasThere = editor.getIniFile().getExistingSection(name) != nullptr;
  const bool isDone = isAdded ? editor.addSection(name) : editor.deleteSection(name);
  require(!isDone || wasThere != isAdded);
  const std::string text = textOf(editor);
  if (!isDone) return require(text == input.text);
  // What is taken away, or added, is in one place.
  require((isAdded ? difference(input.text, text) : difference(text, input.text)).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned int options = bytes.number();
  Input input;
  for (std::string* part : {&input.section, &input.option, &input.value}) *part = bytes.text();
  input.text = bytes.rest();
  const bool allowContinuation = (options & 4) != 0;
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer(input.text.data(), input.text.size(), allowContinuation);
  switch (options & 3) {
    case 0:
      setValue(editor, input, allowContinuation);
      break;
    case 1:
      merge(editor, input);
      break;
    case 2:
      removeOption(editor, input);
      break;
    default:
      changeSection(editor, input, (options & 8) != 0);
  }
  return 0;
}
