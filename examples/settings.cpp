// Reads options of an INI file, changes them, and saves the file in two ways: written from the model, and
// edited in place.
#include <vel.h>

#include <iostream>

namespace {

constexpr char kFile[] =
    "; Settings of the night run\n"
    "\n"
    "[Server]\n"
    "Name   = build-7        ; the big one\n"
    "Port=8080\n"
    "Greeting = \"tab\\there; no comment\"\n"
    "Active = yes\n";

}  // namespace

int main() {
  VelClIniFileSave settings("night");
  settings.loadFromBuffer(kFile, sizeof kFile - 1, '\n', false, true);
  const char* name = "";
  int port = 0;
  bool active = false;
  if (!settings.getSection("SERVER") || !settings.getOption("name", name)) return 1;
  settings.getOption("port", port);
  settings.getOptionBool("active", active);
  std::cout << settings.getAsCString() << ": " << name << ", " << port << (active ? ", active\n" : ", off\n");

  std::cout << "--- written from the model:\n";
  settings.setNewValue("Port", "9090");
  settings.addOption("Retries", "3");
  settings.save(std::cout);

  std::cout << "--- edited:\n";
  VelClIniFileEditor editor("night");
  editor.loadFromBuffer(kFile, sizeof kFile - 1, true);
  editor.setValue("Server", "Port", "9090");
  editor.setValue("Server", "Retries", "3");
  std::cout << editor.getText();
}
