// Edits any text: a change leaves all other bytes and options as they are, the value round-trips, and a
// refused change does nothing. The input is a byte of options, a section's name, an option's name and a
// value, each NUL-terminated, and the text.
#include "base/ascii.h"
#include "fuzz/bytes.h"
#include "fuzz/ini_model.h"

namespace fuzz::inifile_editor {

namespace {

struct Input {
  std::string section, option, value, text;
};

std::string textOf(const VelClIniFileEditor& editor) {
  return {editor.getText(), editor.getLength()};
}

/// Returns `text` without the bytes that both texts begin and end with.
std::string difference(const std::string& text, const std::string& other) {
  const auto front = std::mismatch(text.begin(), text.end(), other.begin(), other.end());
  const auto back = std::mismatch(text.rbegin(), std::make_reverse_iterator(front.first), other.rbegin(),
                                  std::make_reverse_iterator(front.second));
  return {front.first, back.first.base()};
}

/// Whether all lines and options are far below their maximum lengths.
bool isSmall(const Input& input) {
  return longestLine(input.text) < 400 && input.value.size() < 100 && input.option.size() < 100;
}

void setValue(VelClIniFileEditor& editor, const Input& input, bool allowContinuation) {
  const VelClIniFile& before = editor.getIniFile();
  const bool hadSection = before.getExistingSection(input.section.c_str()) != nullptr;
  const VelClIniFileOption* const old = findOption(before, input.section, input.option);
  const bool wasThere = old != nullptr;
  const auto rest = modelOf(before, old);
  if (!editor.setValue(input.section.c_str(), input.option.c_str(), input.value.c_str()))
    return require({!wasThere || !isSmall(input), textOf(editor) == input.text});
  const VelClIniFile& file = editor.getIniFile();
  const VelClIniFileOption* const option = findOption(file, input.section, input.option);
  require(option != nullptr);
  require(option->getValue() == input.value);
  if (hadSection) require(modelOf(file, option) == rest);
  const std::string text = textOf(editor);
  // An option that is added removes nothing. A new value stays within its line, except that it replaces
  // continuation lines.
  if (!wasThere) require(difference(input.text, text).empty());
  if (wasThere && !allowContinuation)
    require({difference(input.text, text).find('\n') == std::string::npos,
             difference(text, input.text).find('\n') == std::string::npos});
  VelClIniFileEditor again("unused");
  again.loadFromBuffer(text.data(), text.size(), allowContinuation);
  require(modelOf(again.getIniFile()) == modelOf(file));
}

/// Returns the options of `file` that `source` does not have.
std::vector<IniOption> optionsWithout(const VelClIniFile& file, const VelClIniFile& source) {
  std::vector<IniOption> options;
  for (const auto& section : modelOf(file))
    for (const auto& option : section.options)
      if (findOption(source, section.name, option.name) == nullptr) options.push_back(option);
  return options;
}

/// Merges the file whose text is the value.
void merge(VelClIniFileEditor& editor, const Input& input) {
  VelClIniFile source("unused");
  source.loadFromBuffer(input.value.data(), input.value.size(), '\n', true, true);
  const auto rest = optionsWithout(editor.getIniFile(), source);
  if (!editor.merge(source)) return require(textOf(editor) == input.text);
  require(optionsWithout(editor.getIniFile(), source) == rest);
  for (const auto& section : modelOf(source))
    for (const auto& option : section.options) {
      const auto* const wanted = findOption(source, section.name, option.name);
      if (wanted == nullptr) continue;
      const auto* const merged = findOption(editor.getIniFile(), section.name, option.name);
      require(merged != nullptr);
      require(std::string_view(merged->getValue()) == wanted->getValue());
    }
}

/// Deletes the option or makes it a comment: for the model that is the same.
void removeOption(VelClIniFileEditor& editor, const Input& input, bool isCommentedOut) {
  const VelClIniFileOption* const option = findOption(editor.getIniFile(), input.section, input.option);
  const bool wasThere = option != nullptr;
  const auto rest = modelOf(editor.getIniFile(), option);
  const char *const section = input.section.c_str(), *const name = input.option.c_str();
  const bool isDone =
      isCommentedOut ? editor.commentOutOption(section, name) : editor.deleteOption(section, name);
  if (isDone) return require({wasThere, modelOf(editor.getIniFile()) == rest});
  require({textOf(editor) == input.text, !wasThere || !isSmall(input)});
}

/// Gives the option, or with an empty name its section, the name in the value.
void rename(VelClIniFileEditor& editor, const Input& input) {
  const bool isOption = !input.option.empty();
  auto model = modelOf(editor.getIniFile());
  const auto section = std::ranges::find_if(model, [&](const auto& each) {
    return vel::equalsIgnoringAsciiCase(each.name.c_str(), input.section.c_str());
  });
  const char* const name = input.section.c_str();
  const bool isDone = isOption ? editor.renameOption(name, input.option.c_str(), input.value.c_str())
                               : editor.renameSection(name, input.value.c_str());
  if (!isDone) return require(textOf(editor) == input.text);
  require(section != model.end());
  if (!isOption) section->name = input.value;
  const auto option = std::ranges::find_if(section->options, [&](const auto& each) {
    return isOption && vel::equalsIgnoringAsciiCase(each.name.c_str(), input.option.c_str());
  });
  require(!isOption || option != section->options.end());
  if (isOption) option->name = input.value;
  require(modelOf(editor.getIniFile()) == model);
}

void changeSection(VelClIniFileEditor& editor, const Input& input, bool isAdded) {
  const char* const name = input.section.c_str();
  const bool wasThere = editor.getIniFile().getExistingSection(name) != nullptr;
  const bool isDone = isAdded ? editor.addSection(name) : editor.deleteSection(name);
  require(!isDone || wasThere != isAdded);
  const std::string text = textOf(editor);
  if (!isDone) return require(text == input.text);
  // The deleted or added bytes are in one place.
  require((isAdded ? difference(input.text, text) : difference(text, input.text)).empty());
}

void run(Bytes bytes) {
  const unsigned int options = bytes.byte();
  Input input;
  for (std::string* part : {&input.section, &input.option, &input.value}) *part = bytes.text();
  input.text = bytes.rest();
  const bool allowContinuation = (options & 4) != 0;
  VelClIniFileEditor editor("unused");
  editor.loadFromBuffer(input.text.data(), input.text.size(), allowContinuation);
  switch (options & 3) {
    case 0:
      return setValue(editor, input, allowContinuation);
    case 1:
      return merge(editor, input);
    case 2:
      return removeOption(editor, input, (options & 8) != 0);
    default:
      if ((options & 16) != 0) return rename(editor, input);
      return changeSection(editor, input, (options & 8) != 0);
  }
}

const Target target("inifile_editor", run);

}  // namespace

}  // namespace fuzz::inifile_editor
