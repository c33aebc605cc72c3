// The plain functions on paths: VelClPath's methods, with a status in place of exceptions.
#include "filesys/path_text.h"
#include "foundation/allocator.h"
#include "foundation/status.h"
#include "vel_include/vel_path.h"

struct VelStPath {
  explicit VelStPath(VelClPath&& itsPath) noexcept : path(std::move(itsPath)) {}

  VelClPath path;
};

namespace {

/// Sets `path` to a new object with the path that `make` returns.
template <typename Make>
VelStStatus* makePath(VelStPath** path, Make make) noexcept {
  *path = nullptr;
  return vel::plainStatus([&] {
    VelClPath made;
    VelClStatus status = make(made);
    if (status.isOk()) *path = vel::create<VelStPath>(std::move(made));
    return status;
  });
}

/// Runs a change that can fail only for lack of memory.
template <typename Change>
VelStStatus* changePath(Change change) noexcept {
  return vel::plainStatus([&] {
    change();
    return VelClStatus();
  });
}

}  // namespace

VelStStatus* velPathCreate(const char* text, size_t size, VelEnPathSyntax syntax, VelStPath** path) {
  return makePath(path, [&](VelClPath& made) {
    made = VelClPath(text, size, syntax);
    return VelClStatus();
  });
}

VelStStatus* velPathCopy(const VelStPath* source, VelStPath** path) {
  return makePath(path, [&](VelClPath& made) {
    made = source->path;
    return VelClStatus();
  });
}

VelStStatus* velPathFromFilename(const char* name, VelStPath** path) {
  return makePath(path,
                  [&](VelClPath& made) { return VelClPath::fromFilename(VelClPathProperty(name), made); });
}

void velPathFree(VelStPath* path) {
  vel::destroy(path);
}

const char* velPathGetText(const VelStPath* path, size_t* size) {
  if (size != nullptr) *size = path->path.getLength();
  return path->path.getAsCString();
}

VelEnPathSyntax velPathGetSyntax(const VelStPath* path) {
  return path->path.getSyntax();
}

const char* velPathGetPart(const VelStPath* path, VelEnPathPart part, size_t* size) {
  return path->path.getPart(part, *size);
}

const char* velPathGetComponent(const VelStPath* path, size_t* position, size_t* size) {
  return path->path.getComponent(*position, *size);
}

bool velPathIsAbsolute(const VelStPath* path) {
  return path->path.isAbsolute();
}

bool velPathIsReserved(const VelStPath* path) {
  return path->path.isReserved();
}

int velPathCompare(const VelStPath* path, const VelStPath* other) {
  return path->path.compare(other->path);
}

int velPathCompareAsSystem(const VelStPath* path, const VelStPath* other) {
  return path->path.compareAsSystem(other->path);
}

VelStStatus* velPathCheck(const VelStPath* path) {
  return path->path.check().release();
}

VelStStatus* velPathAppend(VelStPath* path, const char* text, size_t size) {
  return changePath([&] { path->path.append(text, size); });
}

VelStStatus* velPathJoin(VelStPath* path, const char* text, size_t size) {
  return changePath([&] { path->path.join(text, size); });
}

VelStStatus* velPathSetNewName(VelStPath* path, const char* name, size_t size) {
  return changePath([&] { path->path.setNewName(name, size); });
}

VelStStatus* velPathSetNewStem(VelStPath* path, const char* stem, size_t size) {
  return changePath([&] { path->path.setNewStem(stem, size); });
}

VelStStatus* velPathSetNewExtension(VelStPath* path, const char* extension, size_t size) {
  return changePath([&] { path->path.setNewExtension(extension, size); });
}

bool velPathSetToParent(VelStPath* path) {
  return path->path.setToParent();
}

VelStStatus* velPathMakeNormal(VelStPath* path) {
  return changePath([&] { path->path.makeNormal(); });
}

VelStStatus* velPathMakeAbsolute(VelStPath* path, const VelStPath* base) {
  return vel::plainStatus(
      [&] { return base != nullptr ? path->path.makeAbsolute(base->path) : path->path.makeAbsolute(); });
}

VelStStatus* velPathMakeRelative(VelStPath* path, const VelStPath* base) {
  return vel::plainStatus([&] { return path->path.makeRelative(base->path); });
}

VelStStatus* velPathConvert(VelStPath* path, VelEnPathSyntax syntax) {
  return vel::plainStatus([&] { return path->path.convertTo(syntax); });
}

VelStStatus* velPathToFilename(const VelStPath* path, char* name) {
  *name = '\0';
  return vel::plainStatus([&] {
    VelClFilename filename;
    VelClStatus status = path->path.toFilename(filename);
    if (status.isOk()) vel::filesys::copyBounded(name, filename.getAsCString(), filename.getLength());
    return status;
  });
}
