// Paths of any length in both syntaxes: properties that hold for every text. The input is an option byte and
// two texts, each up to a NUL.
#include "fuzz/bytes.h"
#include "vel_include/vel_path.h"

namespace fuzz::path_syntax {

namespace {

/// The components are pieces of the text in its order, and nothing but separators is between them.
void requireComponents(const VelClPath& path) {
  const std::string_view text = path;
  const char* end = text.data();
  const auto isSkipped = [&](char c) { return c == '/' || (c == '\\' && path.getPathSep() == '\\'); };
  for (const std::string_view component : path) {
    require({!component.empty(), component.data() >= end, std::all_of(end, component.data(), isSkipped)});
    end = component.data() + component.size();
  }
  require(std::all_of(end, text.data() + text.size(), isSkipped));
}

void requireParts(const VelClPath& path) {
  const std::string name(path.getName());
  const std::string_view root = path.getRoot(), parent = path.getParent();
  require({name == std::string(path.getStem()) + std::string(path.getExtension()),
           path.getText().ends_with(name), path.getText().starts_with(parent), parent.starts_with(root),
           root.starts_with(path.getRootName()), path.getExtensions().ends_with(path.getExtension())});
  VelClPath same(path);
  same.setNewExtension(path.getExtension());
  require(same.getText() == path.getText());
  same.setNewName(path.getName());
  require({same.getText() == path.getText(), same == path, same.compareAsSystem(path) == 0});
  VelClPath up(path);
  while (up.setToParent()) require({path.getText().starts_with(up.getText()), up.getRoot() == root});
}

void requireNormal(const VelClPath& path) {
  const VelClPath normal = path.getNormal();
  require(
      {normal.getNormal().getText() == normal.getText(), normal.isAbsolute() == path.isAbsolute(),
       VelClPath(path.getRootName(), path.getSyntax()) == VelClPath(normal.getRootName(), path.getSyntax()),
       !normal.isEmpty()});
  requireParts(normal);
  requireComponents(normal);
}

void requireRelative(const VelClPath& path, const VelClPath& base) {
  VelClPath relative(path);
  if (!relative.makeRelative(base).isOk()) {
    require(relative.getText() == path.getText());
    return;
  }
  const VelClPath back = (base.getNormal() / relative.getText()).getNormal();
  require(back.compareAsSystem(path.getNormal()) == 0);
}

void requireConverted(const VelClPath& path) {
  VelClPath converted(path);
  const bool isSlash = path.getSyntax() == PATH_SYNTAX_SLASH;
  if (!converted.convertTo(isSlash ? PATH_SYNTAX_BACKSLASH : PATH_SYNTAX_SLASH).isOk()) return;
  require(converted.getSyntax() != path.getSyntax());
  if (!isSlash) return;
  require(
      {converted.getRootName().empty(), converted.convertTo(PATH_SYNTAX_SLASH).isOk(), converted == path});
}

void requireSystem(const VelClPath& path) {
  VelClFilename name;
  VelClPath back;
  const VelClPath own(path.getText());
  const VelClStatus status = own.toFilename(name);
  if (!status.isOk()) {
    require(
        {status.getErrorId() == PATH_INVALID || status.getErrorId() == PATH_TOO_LONG, name.getLength() == 0});
  } else {
    require(VelClPath::fromFilename(name, back).isOk() && back == own);
  }
  std::filesystem::path standard;
  if (own.toStd(standard).isOk()) require(VelClPath::fromStd(standard, back).isOk() && back == own);
}

void run(Bytes input) {
  const unsigned int option = input.byte();
  const VelEnPathSyntax syntax = (option & 1) != 0 ? PATH_SYNTAX_BACKSLASH : PATH_SYNTAX_SLASH;
  const Text text = input.text(), other = input.text();
  const VelClPath path(text.view(), syntax), base(other.view(), syntax);
  requireComponents(path);
  requireParts(path);
  requireNormal(path);
  requireRelative(path, base);
  requireConverted(path);
  requireSystem(path);
  require({path.compare(base) == 0 ? base.compare(path) == 0 : (path < base) != (base < path),
           (path.compareAsSystem(base) < 0) == (base.compareAsSystem(path) > 0)});
  const VelClPath joined = base / path.getText();
  requireParts(joined);
  require({path.isRelative() || joined.getText() == path.getText(),
           VelClPath(base).append(path.getText()).getText().ends_with(path.getText())});
}

const Target target("path_syntax", run);

}  // namespace

}  // namespace fuzz::path_syntax
