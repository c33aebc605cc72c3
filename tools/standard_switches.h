// Answers --help and --version, which every tool does before anything else.
#pragma once

namespace vel::tools {

/// The texts are not copied.
struct ToolTexts {
  const char* name;
  const char* title;
  const char* usage;  ///< a usage string, as VelClUsageCursor documents it
  const char* help;
};

/// Returns true if the command line has --help or --version before any "--", with the answer written to
/// standard output. The tool then ends with exit code 0, unless the output could not be written.
bool answerStandardSwitches(int argc, const char* const* argv, const ToolTexts& texts);

}  // namespace vel::tools
