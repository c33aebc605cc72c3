// Cursors over a usage string and over arguments, settings of a user interface, and names of switches.
#include <vel.h>

#include <iostream>

namespace {

/// Any cursor can be counted.
unsigned int count(VelClUniDirCursorABase& cursor) {
  unsigned int elements = 0;
  for (bool more = cursor.setToFirst(); more; more = cursor.setToNext()) ++elements;
  return elements;
}

/// Cursors over arguments also move backwards.
unsigned int countBackwards(VelClBiDirCursorABase& cursor) {
  unsigned int elements = 0;
  for (bool more = cursor.setToLast(); more; more = cursor.setToPrevious()) ++elements;
  return elements;
}

void showUsage(const char* usage) {
  VelClUsageCursor element(usage);
  for (bool more = element.setToFirst(); more; more = element.setToNext())
    std::cout << (element.isSwitch() ? "switch"
                  : element.isFree() ? "free argument"
                                     : "value")
              << (element.reqArg() ? " with a value: " : ": ") << element.getAsCString() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  const char* const usage = "[(-key <key>)] <file>";
  showUsage(usage);
  VelClUsageCursor elements(usage);
  VelClArgvCursor arguments(argc, argv);
  std::cout << count(elements) << " elements, " << countBackwards(arguments) << " arguments\n";

  VelClArgvCheckCursor argument(argc, argv, usage);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    std::cout << argument.getAsCString() << (argument.isLegal() ? "" : " is wrong")
              << (argument.isBound() ? " is a value" : "") << (argument.isFree() ? " is free" : "") << '\n';

  VelClConsoleUI ui(argc, argv);
  VelStConventions conventions;
  conventions.version = "1.0";
  ui.useConventions(conventions);
  VelClConsoleUIParams& params = ui.getParams();
  params.setFormatWidth(10);
  params.setFormatFillChar('_');
  // Labels and names of switches are texts, or numbers of messages in the program's catalog.
  const VelClUIText label("Key");
  const VelClSwitchName name("key");
  const char* key = "none";
  ui.hasArgString(name, key);
  ui.format(label, key);
}
