// A child of console_text_test.cpp on a console of its own. Writes what its user typed to the file that its
// argument names: an answer to a prompt, then what std::cin and the seam read, one text a line.
#include <fcntl.h>
#include <io.h>

#include <fstream>
#include <iostream>
#include <string>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_utf8.h"

namespace {

/// The standard handles may be those of the parent.
void useConsole() {
  const int in = _open("CONIN$", _O_RDWR | _O_TEXT), out = _open("CONOUT$", _O_RDWR | _O_TEXT);
  _dup2(in, 0);
  _dup2(out, 1);
  _dup2(out, 2);
  // A code page that lacks most of the characters.
  SetConsoleCP(437);
  SetConsoleOutputCP(437);
}

}  // namespace

int main(int argc, char** argv) {
  useConsole();
  velUseUtf8();
  const VelClConsoleUI ui(argc, argv);
  const std::string text = "[Jürgen,пример,日本]";
  std::cout << text << '\n';
  // A character may be cut between two writes.
  for (const char c : text) std::cerr.put(c);
  std::cerr << std::endl;
  std::ofstream report(argv[1], std::ios::binary);
  report << ui.promptString("Имя", "") << '\n';
  for (std::string line; std::getline(std::cin, line);) report << line << '\n';
  report << "end\n";
  return report.flush() ? 0 : 1;
}
