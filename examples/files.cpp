// Writes, copies, moves, walks and removes files whose names have characters of several scripts, and more
// than 260 of them. Every failure has a reason.
#include <vel.h>

#include <iostream>
#include <set>
#include <string>

namespace {

bool isDone(const VelClStatus& status) {
  if (!status.isOk()) std::cout << status.getText() << '\n';
  return status.isOk();
}

/// Names and sizes of the files below a directory.
void list(std::string_view directory) {
  std::set<std::string> lines;
  VelClFileWalk walk;
  if (!isDone(walk.open(directory))) return;
  while (walk.next()) {
    VelStFileStatus status;
    // A directory that cannot be read is told, and the walk continues.
    if (!isDone(walk.getFailure()) || walk.getKind() != VEL_FILE_KIND_FILE) continue;
    if (isDone(walk.getStatus(status)))
      lines.insert(std::string(walk.getName()) + ", " + std::to_string(status.size) + " bytes");
  }
  for (const std::string& line : lines) std::cout << line << '\n';
}

}  // namespace

int main() {
  VelClReturnedText place;
  if (!isDone(velTemporaryDirectoryCreate("", "example", place))) return 1;
  std::string deep = place.str();
  while (deep.size() < 500) deep += "/Übersicht 日本 пример";

  bool done = isDone(velDirectoryCreate(deep, true)) && isDone(velFileReplace(deep + "/a.txt", "first\n")) &&
              isDone(velFileAppend(deep + "/a.txt", "second\n")) &&
              isDone(velFileCopy(deep + "/a.txt", deep + "/😀.txt")) &&
              isDone(velFileMove(deep + "/a.txt", deep + "/A.txt"));
  list(place);

  VelClReturnedText contents;
  done = done && isDone(velFileRead(deep + "/A.txt", 1000, contents));
  std::cout << contents.view();

  // The target exists.
  const VelClStatus refused = velFileCopy(deep + "/A.txt", deep + "/😀.txt");
  std::cout << velStatusGetIdName(refused.getErrorId()) << ", replaced: " << refused.isOk() << '\n';

  return isDone(velTreeRemove(place)) && done ? 0 : 1;
}
