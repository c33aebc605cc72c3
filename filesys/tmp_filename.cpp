// Generates the names of temporary files and of backup copies, and creates temporary files. The form of the
// names is tmp_name_generator.cpp's work.
//
// VelClTmpFilename only finds a name that is free at that moment; another process can create a file of the
// same name before the program does. velTmpFileCreate avoids that: it creates the file in the same step, and
// fails if the name exists, even as a link.
#include <cerrno>
#include <cstring>

#include "filesys/path_text.h"
#include "filesys/tmp_name_generator.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "vel_include/vel_filesys.h"

using vel::filesys::RetryLimit;
using vel::filesys::TmpNameGenerator;

namespace {

constexpr char kPrefix[] = "TMP";

}  // namespace

VelClTmpFilename::VelClTmpFilename() : VelClTmpFilename(kPrefix) {}

VelClTmpFilename::VelClTmpFilename(const char* prefix) : VelClTmpFilename(velGetTmpDirectory(), prefix) {}

VelClTmpFilename::VelClTmpFilename(const VelClLocation& directory) : VelClTmpFilename(directory, kPrefix) {}

VelClTmpFilename::VelClTmpFilename(const VelClLocation& directory, const char* prefix)
    : VelClTmpFilename(directory.getAsCString(), prefix) {}

VelClTmpFilename::VelClTmpFilename(const char* directory, const char* prefix) {
  setNew(directory, prefix);
  initPrefix(prefix);
}

VelClTmpFilename::VelClTmpFilename(const VelClFilename& model, const char* prefix) : VelClFilename(model) {
  initPrefix(prefix);
}

void VelClTmpFilename::initPrefix(const char* prefix) {
  const VelClLocation directory(*this, false);
  TmpNameGenerator names(prefix);
  RetryLimit retries;
  do setNew(directory, names.next());
  while (isExistent() && retries.mayRetry(getAsCString()));
}

int velTmpFileCreate(const char* directory, const char* prefix, char* name) {
  *name = '\0';
  TmpNameGenerator names(prefix != nullptr ? prefix : kPrefix);
  RetryLimit retries;
  for (;;) {
    const char* const candidate = names.next();
    const VelClFilename file(VelClLocation(directory != nullptr ? directory : velGetTmpDirectory(), false),
                             candidate, nullptr);
    // Refuse a joined name that was cut, because it may be that of another file, and a prefix with a
    // separator or colon, because the file would be created elsewhere.
    if (std::strcmp(file.getName(), candidate) != 0 || std::strpbrk(candidate, "/\\:") != nullptr) return -1;
    int descriptor = -1;
    const vel::platform::SystemError error =
        vel::platform::createExclusively(file.getAsCString(), descriptor);
    if (error == 0) vel::filesys::copyBounded(name, file.getAsCString(), file.getLength());
    if (error == 0) return descriptor;
    // Only a name that is in use is worth a retry; any other failure would occur again.
    if (error != EEXIST || !retries.mayRetry(candidate)) return -1;
  }
}

VelClBakFilename::VelClBakFilename(const VelClFilenameABase& name) : VelClFilename(name) {
  appendAfterExtension(".BAK");
}
