// Checks any command line against any usage string: the cursors must agree, and every iteration must end. The
// input is a byte of options, the usage string and the arguments, each NUL-terminated.
#include "base/usage_text.h"
#include "consoleui/command_line.h"
#include "consoleui/edit_distance.h"
#include "consoleui/switch_names.h"
#include "fuzz/bytes.h"
#include "vel_include/vel_consoleui.h"

namespace fuzz::usage {

namespace {

using vel::TextKind;

bool isKnown(const Text& usage, const char* argument) {
  bool known = false;
  std::size_t elements = 0;
  VelClUsageCursor cursor(usage);
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) {
    require({cursor.isValid(), ++elements < usage.size(), cursor.isSwitch() != cursor.isArg(),
             cursor.isArg() || !cursor.isFree(), cursor.reqArg() || !cursor.reqArgEllipsis()});
    known = known || (cursor.isSwitch() && cursor.matchesSwitch(argument));
  }
  return known;
}

/// Returns the arguments that belong to no switch.
std::vector<const char*> judge(VelClArgvCheckCursor cursor, const Text& usage) {
  std::vector<const char*> free;
  bool isBound = false;
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) {
    require({cursor.isSwitch() != cursor.isArg(), cursor.isSwitch() || !cursor.reqArg(),
             cursor.isBound() == (cursor.isArg() && isBound),
             cursor.isFree() == (cursor.isArg() && !isBound)});
    if (cursor.isSwitch()) require(cursor.isLegal() == isKnown(usage, cursor.getAsCString()));
    if (cursor.isTagged()) require(usage.view().find('!') != std::string_view::npos);
    if (cursor.isFree()) free.push_back(cursor.getAsCString());
    isBound = cursor.reqArg();
    VelClArgvCheckCursor next = cursor;
    require(cursor.hasArg() == (cursor.isSwitch() && next.setToNext() && next.isArg()));
    VelClArgvCheckCursor found = cursor;
    if (cursor.isSwitch()) require(found.positionTo(cursor.getAsCString()));
  }
  return free;
}

void requireVisited(VelClArgvFreeCursor cursor, const std::vector<const char*>& expected) {
  std::vector<const char*> there, back;
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext())
    there.push_back(cursor.getAsCString());
  require(there == expected);
  for (bool more = cursor.setToLast(); more; more = cursor.setToPrevious())
    back.push_back(cursor.getAsCString());
  std::reverse(back.begin(), back.end());
  require(back == expected);
}

void show(const Text& text, TextKind kind, std::size_t indentation) {
  std::ostringstream shown;
  vel::writeText(shown, text, kind, indentation);
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  require(shown.str().size() <= text.size() + lines * indentation);
  if (kind == TextKind::Help && indentation == 0 &&
      text.view().find_first_of("@\r") == std::string_view::npos)
    require(shown.str() == text.view());
}

/// Rewritten arguments are checked like any others.
void judgeRewritten(int count, const char* const* argv, const Text& usage) {
  using namespace vel::consoleui;
  const SwitchNames names = switchNamesOf(usage, true);
  const Abbreviations abbreviations{names, names, {"help", "version", "color"}};
  const CommandLine line(count, argv, {"help", "version", "color"}, &abbreviations);
  require({line.count() <= 2 * count, line.arguments()[line.count()] == nullptr});
  requireVisited({line.count(), line.arguments(), usage},
                 judge({line.count(), line.arguments(), usage}, usage));
  for (int i = 0; i < line.count(); ++i) {
    const std::string_view name(line.arguments()[i]);
    require(similarNames(names, name).size() <= 3);
    const std::string_view completed = completedName(names, name);
    require(completed.empty() || completed.starts_with(name));
    for (const std::string_view other : names)
      require(editDistance(name, other) == editDistance(other, name));
  }
}

void run(Bytes input) {
  const unsigned int options = input.byte();
  const Text usage = input.text();
  const std::vector<Text> words = input.texts();
  // Unlike that of a real program, the vector does not end with a null pointer.
  const std::vector<const char*> arguments(words.begin(), words.end());
  const int count = static_cast<int>(arguments.size());
  const char* const* const argv = arguments.data();
  isKnown(usage, "");
  requireVisited({count, argv, usage}, judge({count, argv, usage}, usage));
  judgeRewritten(count, argv, usage);
  show(usage, TextKind{static_cast<int>(options % 3)}, options / 3 % 20);
  const VelClConsoleUIParams params(count > 0 ? argv[0] : nullptr);
  require({params.getIndentation() <= 25,
           params.getIndentation() == std::string_view(params.getProcessName()).size()});
}

const Target target("usage", run);

}  // namespace

}  // namespace fuzz::usage
