// A small complete tool with a title, switches with values, and the library's messages and exit codes. Its
// usage string is also the grammar of its command line. Try it with -h, -times 2 and -times many.
#include <vel.h>

#include <iostream>

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.init("Greeter", "says hello", "1.0", "Nov 21 2026");
  ui.handleUsageHelp("[(-name <name>)] [(-times <number>)]",
                     "-name <name>     whom to greet\n"
                     "-times <number>  how often");

  const char* name = "world";
  int times = 1;
  ui.hasArgString("name", name);
  ui.hasArgNumval("times", times);
  if (times < 1) ui.fatal(1, "Cannot greet less than once", name);
  for (int i = 0; i < times; ++i) std::cout << "Hello, " << name << "!\n";
  return 0;
}
