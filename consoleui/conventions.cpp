// Decides where colours are on, once, when the conventions are switched on. What is not standard output or
// standard error never gets any: it may be a file that the program writes, or a text that it collects.
#include "consoleui/conventions.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <sstream>

#include "base/short_text.h"
#include "platform/descriptors.h"
#include "platform/environment.h"

namespace vel::consoleui {
namespace {

/// Control sequences of terminals (ECMA-48: select graphic rendition), in the order of VelEnTextStyle.
constexpr const char* kSequences[] = {"\x1B[0m",  "\x1B[1m",    "\x1B[36m",
                                      "\x1B[32m", "\x1B[1;33m", "\x1B[1;31m"};

enum class ColorMode { Auto, Always, Never };

constexpr struct {
  const char* name;
  ColorMode mode;
} kColorModes[] = {{"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};

/// Copies the choices that the program's header had.
VelStConventions knownChoices(const VelStConventions& choices) {
  VelStConventions known;
  std::memcpy(&known, &choices, std::min(choices.structSize, sizeof known));
  return known;
}

BuiltInSwitches builtInSwitches(const VelStConventions& choices) {
  return {"help", choices.version != nullptr ? "version" : "", choices.colors ? "color" : ""};
}

bool environmentAllowsColors() {
  const char* const terminal = platform::environmentValue("TERM");
  return *textOrEmpty(platform::environmentValue("NO_COLOR")) == '\0' &&
         std::strcmp(textOrEmpty(terminal), "dumb") != 0;
}

/// Terminals of Windows need a preparation, with -color always, too.
bool hasColors(ColorMode mode, int descriptor) {
  if (mode == ColorMode::Never || (mode == ColorMode::Auto && !environmentAllowsColors())) return false;
  return platform::enableTerminalSequences(descriptor) || mode == ColorMode::Always;
}

std::optional<String> copyOf(const char* text) {
  return text != nullptr ? std::optional<String>(text) : std::nullopt;
}

const char* textOf(const std::optional<String>& text) {
  return text.has_value() ? text->c_str() : nullptr;
}

}  // namespace

Conventions::Conventions(const VelStConventions& choices, int argc, const char* const* argv)
    : choices_(knownChoices(choices)),
      argc_(argc),
      argv_(argv),
      standards_{Standard{&std::cout, platform::kStandardOutput, std::cout.rdbuf()},
                 {&std::cerr, platform::kStandardError, std::cerr.rdbuf()},
                 {&std::clog, platform::kStandardError, std::clog.rdbuf()}} {
  add(nullptr);
}

void Conventions::complete(const Abbreviations& abbreviations) {
  add(&abbreviations);
}

void Conventions::add(const Abbreviations* abbreviations) {
  lines_.emplace_back(create<CommandLine>(argc_, argv_, builtInSwitches(choices_), abbreviations));
  if (choices_.colors) chooseColors();
}

void Conventions::keep(OwnedObject<Conventions> replaced) {
  if (replaced) standards_ = replaced->standards_;
  replaced_ = std::move(replaced);
}

/// Intentional: a faulty switch counts as auto. The message about it is coloured like any other.
void Conventions::chooseColors() {
  ColorMode mode = ColorMode::Auto;
  colorFault_ = ColorFault::None;
  if (line().color().has_value()) {
    const char* const value = *line().color();
    const auto* const found = std::ranges::find_if(kColorModes, [value](const auto& row) {
      return value != nullptr && std::strcmp(row.name, value) == 0;
    });
    if (found != std::end(kColorModes))
      mode = found->mode;
    else
      colorFault_ = value == nullptr ? ColorFault::NoValue : ColorFault::InvalidValue;
  }
  outputHasColors_ = hasColors(mode, platform::kStandardOutput);
  errorsHaveColors_ = hasColors(mode, platform::kStandardError);
}

void Conventions::setTexts(const InitTexts& texts) {
  title_ = copyOf(texts.title);
  description_ = copyOf(texts.description);
  level_ = copyOf(texts.level);
  date_ = copyOf(texts.date);
}

InitTexts Conventions::texts() const {
  return {textOf(title_), textOf(description_), textOf(level_), textOf(date_)};
}

/// Returns the descriptor of a standard stream, or -1 if the stream is none, or the program has redirected
/// it: then its text goes where control sequences may not be expected.
int Conventions::descriptorOf(const std::ostream& stream) const {
  const auto standard = std::ranges::find(standards_, &stream, &Standard::stream);
  if (standard == standards_.end() || stream.rdbuf() != standard->buffer) return -1;
  return dynamic_cast<const std::stringbuf*>(standard->buffer) == nullptr ? standard->descriptor : -1;
}

const char* Conventions::style(const std::ostream& stream, VelEnTextStyle style) const {
  const int descriptor = descriptorOf(stream);
  const bool on = descriptor == platform::kStandardOutput  ? outputHasColors_
                  : descriptor == platform::kStandardError ? errorsHaveColors_
                                                           : false;
  const auto index = static_cast<std::size_t>(style);
  return on && index < std::size(kSequences) ? kSequences[index] : "";
}

bool Conventions::isTerminal(const std::ostream& stream) const {
  const int descriptor = descriptorOf(stream);
  return descriptor != -1 && platform::isTerminal(descriptor);
}

}  // namespace vel::consoleui
