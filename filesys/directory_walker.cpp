// Lists the entries of one directory and answers queries about their names and attributes. The listing itself
// is the platform's work.
//
// buffer_ holds the directory's name once, and name_ points to its end: each step overwrites only the entry's
// name, so that the full name needs no joining.
#include <cstring>

#include "filesys/directory_entry.h"
#include "filesys/path_text.h"
#include "platform/directories.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;

VelClOSSDirectoryWalker::VelClOSSDirectoryWalker(const VelClLocation& directory, _VelStError& error)
    : buffer_{},
      name_(buffer_ + directory.getLength()),
      valid_(false),
      error_(error),
      search_(nullptr),
      listed_(0),
      attributes_(0) {
  vel::filesys::copyBounded(buffer_, directory.getAsCString(), directory.getLength());
  platform::DirectoryHandle opened;
  // The empty location is the current directory, which the systems know as ".".
  const char* const place = directory.getLength() != 0 ? directory.getAsCString() : ".";
  if (platform::openDirectory(place, platform::DirectoryLink::Follow, opened) == 0) search_ = opened.system;
  if (search_ == nullptr || !fetchNext()) error_ = {DIRWALK_COULD_NOT_INIT, VelEnErrorClass::IO_PROBLEM};
}

VelClOSSDirectoryWalker::~VelClOSSDirectoryWalker() {
  close();
}

// Makes the walker invalid. The attributes are cleared so that all queries return false from then on.
void VelClOSSDirectoryWalker::close() {
  platform::DirectoryHandle handle{search_, listed_};
  platform::closeDirectory(handle);
  search_ = nullptr;
  valid_ = false;
  attributes_ = 0;
  *name_ = '\0';
}

// Copies the next entry into this object. The end of the listing closes the directory immediately, so that a
// finished walk does not keep it from being removed; it is not an error.
bool VelClOSSDirectoryWalker::fetchNext() {
  platform::DirectoryHandle handle{search_, listed_};
  platform::DirectoryEntry entry;
  platform::ListingStep step;
  const bool failed = platform::nextEntry(handle, entry, step) != 0;
  if (!failed && step == platform::ListingStep::Entry) {
    listed_ = handle.listed;
    attributes_ = entry.attributes;
    vel::filesys::copyBounded(name_, entry.name, vel::filesys::kMaxLength);
    return valid_ = true;
  }
  if (failed) error_ = {DIRWALK_NO_CONTINUATION, VelEnErrorClass::IO_PROBLEM};
  close();
  return false;
}

bool VelClOSSDirectoryWalker::setToNext() {
  return isValid() && fetchNext();
}

bool VelClOSSDirectoryWalker::isDirectory() const {
  return (attributes_ & platform::kAttributeDirectory) != 0;
}

bool VelClOSSDirectoryWalker::isHidden() const {
  return (attributes_ & platform::kAttributeHidden) != 0;
}

bool VelClOSSDirectoryWalker::isReadOnly() const {
  return (attributes_ & platform::kAttributeReadOnly) != 0;
}

bool VelClOSSDirectoryWalker::isCurrentDirectory() const {
  return isDirectory() && std::strcmp(name_, ".") == 0;
}

bool VelClOSSDirectoryWalker::isParentDirectory() const {
  // Intentional: callers get true for every directory whose name begins with "..", such as "..x".
  return isDirectory() && name_[0] == '.' && name_[1] == '.';
}

bool VelClOSSDirectoryWalker::isSubDirectory() const {
  return isDirectory() && vel::filesys::isSubDirectoryName(name_);
}
