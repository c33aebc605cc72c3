// The settings of a console user interface. Usage and help are owned copies from the memory manager; the
// answer to a prompt and the process name are in arrays of the object itself.
#include <algorithm>
#include <cstring>
#include <iostream>

#include "base/ascii.h"
#include "base/enabled_rule.h"
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "platform/environment.h"
#include "vel_include/vel_consoleui.h"

namespace {

char* newText(const char* text) {
  if (text == nullptr) text = "";
  return vel::copyText(text, std::strlen(text)).release();
}

/// Copies before it frees, because the new text may be the old one or a part of it.
void replaceText(char*& target, const char* text) {
  char* copy = newText(text);
  VelClMemoryManager::free(target);
  target = copy;
}

/// Returns the name after the last separator. Both kinds count on every system: argument 0 comes from
/// whatever program started this one.
const char* baseName(const char* path) {
  const char* name = path;
  for (const char* p = path; *p != '\0'; ++p)
    if (*p == '\\' || *p == '/') name = p + 1;
  return name;
}

}  // namespace

VelClConsoleUIParams::VelClConsoleUIParams(const char* argv0)
    : usage_(nullptr),
      help_(nullptr),
      indentation_(0),
      quiet_(false),
      hideTaggedLines_(false),
      disableTaggedLines_(false),
      quoteStrings_(vel::isEnabledValue(vel::platform::settingValue("VEL_CONSOLEUI_QUOTE_STRINGS"))),
      formatWidth_(36),
      formatStyle_(VelEnFormatStyle::LEFT),
      fillChar_('.'),
      output_(&std::cout),
      errors_(&std::cerr) {
  input_[0] = '\0';
  setProcessName(vel::textOrEmpty(argv0));
  // The first text has an owner until the second one is there: the destructor does not run if that allocation
  // fails.
  vel::OwnedText usage(newText(""));
  help_ = newText("");
  usage_ = usage.release();
}

VelClConsoleUIParams::~VelClConsoleUIParams() {
  VelClMemoryManager::free(usage_);
  VelClMemoryManager::free(help_);
}

void VelClConsoleUIParams::setUsage(const char* usage) {
  replaceText(usage_, usage);
}
void VelClConsoleUIParams::setHelp(const char* help) {
  replaceText(help_, help);
}

void VelClConsoleUIParams::setUsageHelp(const char* usage, const char* help) {
  // Each text is copied before the old text of the other is freed, since it may be a part of that.
  vel::OwnedText newHelp(newText(help));
  setUsage(usage);
  VelClMemoryManager::free(help_);
  help_ = newHelp.release();
}

void VelClConsoleUIParams::setProcessName(const char* argv0) {
  const char* name = baseName(argv0);
  // Intentional: the name ends at its first dot, even if that is not the extension's: "tool.v2.exe" is TOOL.
  const std::size_t length = std::min(std::strcspn(name, "."), kMaxProcessNameLength);
  std::transform(name, name + length, processName_, vel::toAsciiUpper);
  processName_[length] = '\0';
  indentation_ = static_cast<std::uint32_t>(length);
}

void VelClConsoleUIParams::setOutputStream(std::ostream& stream) {
  if (!quiet_) output_ = &stream;
}

void VelClConsoleUIParams::flushOutputStream() {
  output_->flush();
}

void VelClConsoleUIParams::setInput(const char* text) {
  if (text == nullptr) text = "";
  const std::size_t length = std::min(std::strlen(text), kMaxInputLength);
  // The text may be the present input itself, so the ranges may overlap.
  std::memmove(input_, text, length);
  input_[length] = '\0';
}
