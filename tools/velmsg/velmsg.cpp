// velmsg: shows the contents of a message catalog, compares two, compiles, exports, imports and checks
// message sources, and names error codes.
//
// The usage string defines which switches have values; which of them can be combined is checked here.
#include <algorithm>
#include <initializer_list>
#include <iostream>

#include "platform/descriptors.h"
#include "tools/standard_switches.h"
#include "tools/tool_main.h"
#include "tools/velmsg/tool.h"
#include "vel_include/vel_filesys.h"

namespace vel::velmsg {

void Tool::run() {
  begin();
  checkTasks();
  const char* number = nullptr;
  if (hasArgString("error", number)) {
    showErrorNames(number);
    return;
  }
  if (hasArgSwitch("compile")) {
    compileSources();
    return;
  }
  if (hasSources() || hasArgSwitch("export")) {
    runSourceTask();
    return;
  }
  if (!runTask(*openSource())) exitAfterOutput(kExitNotFound);
}

namespace {

/// A switch, and the tasks and outputs that it is for.
struct SwitchRule {
  const char* name;
  std::initializer_list<const char*> tasks;
};

const SwitchRule kRules[] = {
    {"lang", {"list", "table", "export", "import"}},
    {"out", {"compile", "export", "import"}},
    {"codepage", {"compile", "export", "import", "check", "diff"}},
    {"reference", {"export", "import", "check"}},
    {"merge", {"export"}},
    {"fuzzy", {"import"}},
    {"header", {"compile"}},
    {"table", {"compile"}},
    {"functions", {"compile"}},
    {"ansi", {"compile"}},
    {"languages", {"compile"}},
};

}  // namespace

/// Requires exactly one task, and no switch of another one, which the usage string cannot express.
void Tool::checkTasks() const {
  const auto count = [this](std::initializer_list<const char*> switches) {
    return std::ranges::count_if(switches, [this](const char* name) { return hasArgSwitch(name); });
  };
  if (count({"list", "langs", "id", "diff", "error", "compile", "export", "import", "check"}) != 1)
    refuse(kExactlyOneTask);
  for (const SwitchRule& rule : kRules)
    if (hasArgSwitch(rule.name) && count(rule.tasks) == 0)
      refuse(kNotForTask, (std::string("-") + rule.name).c_str());
  if (hasArgSwitch("compile") && count({"out", "header", "table", "functions"}) == 0) refuse(kOutputRequired);
  if (count({"import", "check"}) != 0 && count({"cat", "builtin"}) != 0) refuse(kSourcesOnly);
  if (!hasSources()) readInserts();
}

}  // namespace vel::velmsg

const char* const vel::tools::kToolName = "velmsg";

int vel::tools::toolMain(int argc, char** argv) {
  using namespace vel::velmsg;
  velFileSetBinaryMode(vel::platform::kStandardOutput, true);
  const vel::tools::ToolTexts texts{kToolName, kTexts[kTitle], kTexts[kUsage], kTexts[kHelp]};
  if (vel::tools::answerStandardSwitches(argc, argv, texts)) return std::cout.good() ? 0 : kExitNotWritten;
  Tool tool(argc, argv);
  try {
    tool.run();
  } catch (const VelClException& exception) {
    vel::tools::rethrowIfOutOfMemory(exception);
    tool.exception(exception, tool.text(kTitle).c_str());
    tool.processExit(CONUI_USAGE);
  }
  if (!std::cout.flush()) tool.exitAfterOutput(0);
  return 0;
}
