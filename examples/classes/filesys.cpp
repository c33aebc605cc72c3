// The parts of names, directories, and the walk over a directory below the class for daily use.
#include <vel.h>

#include <iostream>

namespace {

/// Names of every class have these properties.
void showStyle(const VelClPathProperty& name) {
  std::cout << name.getAsCString() << (name.isAbsolute() ? ": absolute" : ": relative")
            << (name.isCaseSensitive() ? ", case matters\n" : ", case is ignored\n");
}

void showExtension(const VelClFilenameABase& name) {
  std::cout << name.getName() << (name.matchesExtension("txt") ? " is" : " is not") << " a text\n";
}

/// Files and directories have a name, times, and can be removed.
void removeIfThere(VelClFileABase& entry) {
  const bool isFile = entry.isFile();
  if (entry.isExistent() && entry.remove())
    std::cout << (isFile ? "a file" : "a directory") << " is removed\n";
}

}  // namespace

int main(int, char** argv) {
  const VelClFilename name("C:\\data\\July.TXT");
  const VelClLocation directoryOfName(name, true);
  showStyle(name);
  showStyle(directoryOfName);
  showStyle(VelClFilename("data/July.txt"));
  showExtension(name);
  showExtension(VelClBakFilename(name));

  VelClDirectory directory(VelClTmpFilename("DEMO").getAsCString());
  if (!directory.create()) return 1;
  VelClFile copy(VelClFilename(directory.getName(), "copy", "dat"), nullptr);
  VelClFile(argv[0], nullptr).copyTo(copy.getFilename(), false);

  _VelStError error;
  unsigned int entries = 0;
  for (VelClOSSDirectoryWalker walker(directory.getName(), error); walker.isValid(); walker.setToNext())
    if (!walker.isCurrentDirectory() && !walker.isParentDirectory()) ++entries;
  std::cout << entries << " entry, error " << error.getErrorId() << '\n';
  removeIfThere(copy);
  removeIfThere(directory);
}
