// Answers --help and --version the way users of POSIX systems expect it: on standard output, with exit code
// 0, and whatever else is on the command line. The library's own -h differs: it goes with the title and ends
// with 201. The manual pages are made from the same texts, see make_tool_pages.py.
#include "tools/standard_switches.h"

#include <cstring>
#include <iostream>
#include <string>

#include "base/usage_text.h"
#include "tools/catalog_tool.h"
#include "tools/translation.h"
#include "vel_include/vel_helpers.h"

namespace vel::tools {
namespace {

void writeHelp(const ToolTexts& texts) {
  VelClMessageCatalog library;
  library.useLanguageFallback();
  chooseLanguageOfTool(library);
  const std::string heading = std::string(translated("Usage")) + ": " + texts.name + ' ';
  std::cout << texts.name << " - " << translated(texts.title) << "\n\n" << heading;
  writeText(std::cout, texts.usage, TextKind::Usage, heading.size());
  std::cout << "\n\n";
  writeText(std::cout, translated(texts.help), TextKind::Help, 0);
  std::cout << std::endl;
}

}  // namespace

/// Not done through the console user interface, which would refuse "--help" as an unknown switch.
bool answerStandardSwitches(int argc, const char* const* argv, const ToolTexts& texts) {
  for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i) {
    if (std::strcmp(argv[i], "--version") == 0) {
      std::cout << texts.name << ' ' << velLibraryGetLevel() << std::endl;
      return true;
    }
    if (std::strcmp(argv[i], "--help") == 0) {
      writeHelp(texts);
      return true;
    }
  }
  return false;
}

}  // namespace vel::tools
