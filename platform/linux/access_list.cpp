// Copies POSIX.1e access control lists, which Linux keeps in an extended attribute. Copying the attribute's
// bytes avoids a dependency on an ACL library.
#include "platform/posix/access_list.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstddef>

namespace vel::platform {

bool copyAccessList(int from, int to) noexcept {
  constexpr const char* kList = "system.posix_acl_access";
  // A larger list fails with ERANGE and counts as not copied; the caller then withholds permissions.
  char list[4096];
  const ssize_t size = fgetxattr(from, kList, list, sizeof list);
  // ENODATA: `from` has no list. EOPNOTSUPP and ENOSYS: the file system does not support lists.
  if (size < 0 && errno == ENODATA) return fremovexattr(to, kList) == 0 || errno == ENODATA;
  if (size < 0) return errno == EOPNOTSUPP || errno == ENOSYS;
  return fsetxattr(to, kList, list, static_cast<std::size_t>(size), 0) == 0;
}

}  // namespace vel::platform
