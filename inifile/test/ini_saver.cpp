// Saves a file until it is killed, with values of one letter, then of the next. With a second argument it
// saves once, through the editor if that is "edit", and exits with 0 on success.
#include <cstdio>
#include <string>

#include "inifile/test/ini_saver.h"
#include "vel_include/vel_inifile.h"

namespace {

void setAll(VelClIniFileSave& file, const std::string& value) {
  file.addSection("A");
  for (int i = 0; i < vel::test::kSavedOptions; ++i) {
    const std::string name = "o" + std::to_string(i);
    if (!file.setNewValue(name.c_str(), value.c_str())) file.addOption(name.c_str(), value.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 1;
  // The number 0 is free then, and valid for the files that are opened next.
  std::fclose(stdin);
  if (argc > 2 && std::string(argv[2]) == "edit") {
    VelClIniFileEditor editor(argv[1]);
    const std::string value(1000, 'v');
    return editor.load(true) && editor.setValue("A", "o0", value.c_str()) && editor.save() ? 0 : 1;
  }
  VelClIniFileSave file(argv[1]);
  // Ends by itself if it is not killed.
  for (int round = 0; round < 10'000; ++round) {
    setAll(file, std::string(vel::test::kSavedLength, static_cast<char>('a' + round % 26)));
    const bool isSaved = file.save();
    if (argc > 2) return isSaved ? 0 : 1;
  }
  return 0;
}
