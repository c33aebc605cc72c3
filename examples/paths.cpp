// Takes paths apart, changes and joins them, in the styles of two systems, and reports the reason of a
// failure.
#include <vel.h>

#include <iostream>

namespace {

void showParts(const VelClPath& path) {
  std::cout << path.getText() << ": root " << path.getRoot() << ", parent " << path.getParent() << ", stem "
            << path.getStem() << ", extension " << path.getExtension() << '\n';
  for (const std::string_view component : path) std::cout << "  " << component << '\n';
}

void showResult(const VelClStatus& status, const VelClPath& path) {
  std::cout << (status.isOk() ? std::string(path) : status.getText()) << '\n';
}

}  // namespace

int main() {
  const VelClPath project("C:\\data\\Jürgen", PATH_SYNTAX_BACKSLASH);
  VelClPath report = project / "old/../пример.tar.gz";
  report.makeNormal();
  showParts(report);

  report.setNewExtension("xz");
  std::cout << report.getText() << '\n';
  VelClStatus status = report.makeRelative(VelClPath("c:\\DATA\\sources", PATH_SYNTAX_BACKSLASH));
  showResult(status, report);
  status = report.convertTo(PATH_SYNTAX_SLASH);
  showResult(status, report);

  // In the system's own style; a name for VelClFilename has at most 260 characters.
  VelClPath path("archive");
  path.append(std::string(300, 'x'));
  VelClFilename name;
  status = path.toFilename(name);
  std::cout << velStatusGetIdName(status.getErrorId()) << '\n';

  status = path.makeAbsolute();
  return status.isOk() && path.isAbsolute() ? 0 : 1;
}
