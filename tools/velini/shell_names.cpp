// Makes names of shell variables. A script evaluates what velini writes, so a file with an option named PATH
// or LD_PRELOAD could take control of the script. No list of the variables that control shells, loaders and
// programs is complete. But by convention names without a lower-case letter belong to the system, and nearly
// all that matter are among them: those need a prefix that the script chooses. Lists are needed only for the
// other variables, and for prefixes that belong to the system as well.
#include "tools/velini/shell_names.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "base/ascii.h"

namespace vel::velini {

namespace {

/// Variables of shells, in lower case. Some programs read them in any case.
constexpr std::string_view kSteering[] = {
    "aliases",   "argv",      "auto_resume", "builtins",  "cdpath",     "commands", "dirstack",    "fignore",
    "fpath",     "functions", "galiases",    "histchars", "mailpath",   "manpath",  "module_path", "modules",
    "nameddirs", "options",   "parameters",  "path",      "pipestatus", "prompt",   "psvar",       "reswords",
    "saliases",  "signals",   "status",      "termcap",   "terminfo",   "userdirs", "watch",       "widgets"};

/// Families of variables that a prefix could select by mistake.
constexpr std::string_view kFamilies[] = {
    "ASAN_",  "BASH_",    "COMP_",   "DYLD_",  "FUNC",        "GCC_", "GCONV_", "GIT_",      "GLIBC_",
    "HIST",   "JAVA_",    "JDK_",    "KSH_",   "LC_",         "LD_",  "LSAN_",  "MALLOC_",   "NODE_",
    "PERL",   "POSIXLY_", "PROMPT_", "PYTHON", "READLINE_",   "RUBY", "SSH_",   "TERMINFO_", "TSAN_",
    "UBSAN_", "XDG_",     "ZSH_",    "dis_",   "npm_config_", "zle_", "zsh_"};

bool isLowerCase(char c) {
  return c >= 'a' && c <= 'z';
}

bool isPlain(char c) {
  return (c >= '0' && c <= '9') || isLowerCase(c) || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Endings of a shell's hooks, and of the variables by which programs find their proxy.
constexpr std::string_view kEnds[] = {"_functions", "_proxy"};

bool steersPrograms(const std::string& name) {
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(), toAsciiLower);
  return std::find(std::begin(kSteering), std::end(kSteering), lower) != std::end(kSteering) ||
         std::any_of(std::begin(kEnds), std::end(kEnds),
                     [&lower](std::string_view end) { return lower.ends_with(end); }) ||
         std::any_of(std::begin(kFamilies), std::end(kFamilies),
                     [&name](std::string_view family) { return name.starts_with(family); });
}

}  // namespace

bool isShellPrefix(std::string_view text) {
  return text.size() > 1 && isPlain(text[0]) && !isDigit(text[0]) && text.ends_with('_') &&
         std::all_of(text.begin(), text.end(), [](char c) { return isPlain(c) || c == '_'; });
}

std::string ShellNames::variable(const std::string& name) {
  std::string variable = prefix_;
  if (!hasPrefix_ && (name.empty() || isDigit(name[0]))) variable += '_';
  for (const char c : name) variable += isPlain(c) ? c : '_';
  if (refused_.empty() && !isSafe(variable)) refused_ = variable;
  return variable;
}

/// Without a prefix a variable that is set already is refused, since other programs may rely on it. A script
/// that chose a prefix may have set its own variables before.
bool ShellNames::isSafe(const std::string& variable) const {
  if (steersPrograms(variable)) return false;
  return hasPrefix_ || (std::any_of(variable.begin(), variable.end(), isLowerCase) &&
                        std::getenv(variable.c_str()) == nullptr);
}

}  // namespace vel::velini
