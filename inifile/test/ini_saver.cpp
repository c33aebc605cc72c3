// Changes a file and saves it: as a whole with "once" as the second argument, through the editor with "edit".
// Exits with 0 on success.
#include <cstdio>
#include <string>

#include "vel_include/vel_inifile.h"

namespace {

bool saveManyOptions(const char* path) {
  VelClIniFileSave file(path);
  file.addSection("A");
  for (int i = 0; i < 1000; ++i)
    file.addOption(("o" + std::to_string(i)).c_str(), std::string(200, 'a').c_str());
  return file.save();
}

bool edit(const char* path) {
  VelClIniFileEditor editor(path);
  const std::string value(1000, 'v');
  return editor.load(true) && editor.setValue("A", "o0", value.c_str()) && editor.save();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 1;
  // The number 0 is free then, and valid for the files that are opened next.
  std::fclose(stdin);
  return (std::string(argv[2]) == "edit" ? edit(argv[1]) : saveManyOptions(argv[1])) ? 0 : 1;
}
