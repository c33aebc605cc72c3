// Splits file names, creates a temporary directory with files, walks through it, and reports the identifier
// of an error.
#include <vel.h>

#include <iostream>

namespace {

void showParts(const char* text) {
  const VelClFilename name(text);
  char directory[VEL_MAX_PATH_LENGTH + 1];
  char base[VEL_MAX_PATH_LENGTH + 1];
  name.extractPath(directory, true);
  name.extractBaseName(base);
  std::cout << text << ": directory " << directory << ", base " << base << ", extension "
            << name.getExtension() << (name.isStyleUNIX() ? ", slash style\n" : ", back-slash style\n");
}

void showFailure(const VelClFile& file) {
  unsigned long size = 0;
  const char* const* const table = velMsgCatGetBuiltInTable(&size);
  const VelClMessageCatalog texts(table, size);
  const unsigned int message = velErrorGetIdAsMessageId(file.getLastError().errorId);
  std::cout << "failed: " << VelClMessage(texts, message).getAsCString() << '\n';
}

}  // namespace

int main(int, char** argv) {
  showParts("C:\\data\\July.report.txt");
  showParts("/data/July.report.txt");

  // Finds an unused name and creates a directory with it.
  VelClDirectory directory(VelClTmpFilename("DEMO").getAsCString());
  if (!directory.create()) return 1;

  // Copies this program, because it is a file that exists.
  VelClFile file(argv[0], nullptr);
  file.copyTo(VelClFilename(directory.getName(), "first", "txt"), false);
  file.copyTo(VelClFilename(directory.getName(), "second", "txt"), false);
  VelClFile first(VelClFilename(directory.getName(), "first", "txt"), nullptr);
  if (!first.renameAs(VelClFilename(directory.getName(), "second", "txt"))) showFailure(first);
  if (!first.renameAs(VelClFilename(directory.getName(), "third", "dat"))) showFailure(first);

  unsigned int count = 0;
  for (VelClDirectoryWalk walk(directory); walk.isValid(); walk.setToNext())
    if (walk.isFile() && walk.matchesWildcardPattern("*.TXT")) ++count;
  std::cout << count << " .txt file\n";

  return directory.removeAll(true) ? 0 : 1;
}
