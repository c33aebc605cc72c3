// Iterates over an INI file: with cursors, which survive changes, and along the records of the model.
#include <vel.h>

#include <cstring>
#include <iostream>

namespace {

constexpr const char* kText =
    "[Server]\nName = build-7 ; the big one\nPort = 8080\n[Client]\nServer = build-7\n";

bool showSyntaxError(const _VelStError& error, unsigned int line, void*) {
  std::cout << "line " << line << ": "
            << (error.errorId == INIFILE_INVAL_OPTION ? "no = in it\n" : "wrong\n");
  return true;  // continues
}

}  // namespace

int main() {
  VelClIniFile file("memory");
  file.loadFromBuffer(kText, std::strlen(kText), '\n', true, true);

  VelClIniFileSectionCursor section(file);
  for (bool more = section.setToFirst(); more; more = section.setToNext()) {
    VelClIniFileOptionCursor option(section);
    for (bool moreOptions = option.setToFirst(); moreOptions; moreOptions = option.setToNext())
      std::cout << section.getSection() << '.' << option.getOption() << '=' << option.getValue() << '\n';
  }

  // The same without cursors; records are valid until they are deleted.
  for (const VelClIniFileSection* record = file.getFirstSection(); record != nullptr;
       record = record->getNext()) {
    unsigned int options = 0;
    const VelClIniFileOption* option = record->getFirstOption();
    for (; option != nullptr; option = option->getNext()) ++options;
    std::cout << record->getName() << " has " << options << (options == 1 ? " option\n" : " options\n");
  }

  VelClIniFile wrong("wrong");
  wrong.setErrorHandler(&showSyntaxError, nullptr);
  wrong.loadFromBuffer("[A]\nb\n", 6, '\n', true, true);
}
