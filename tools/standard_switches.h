// --help and --version, which every tool answers before it starts anything else.
#pragma once

namespace vel::tools {

struct ToolTexts {
  const char* name;
  const char* title;
  const char* usage;  ///< a usage string as the console user interface takes it
  const char* help;
};

/// True when the command line holds --help or --version and the answer stands on standard output; the
/// tool then ends with exit code 0.
bool answerStandardSwitches(int argc, const char* const* argv, const ToolTexts& texts);

}  // namespace vel::tools
