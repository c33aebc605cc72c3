// Lets the kernel refuse hard links to renameByLink.
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include "platform/posix/rename.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;

/// From now on, this process cannot make hard links, as on a file system that has none.
bool refuseLinks(int error) {
  sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_linkat, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error)),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program = {static_cast<unsigned short>(std::size(filter)), filter};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST(RenameByLink, RenamesWithoutReplacingWhereThereAreNoHardLinks) {
  const test::ScratchDirectory scratch;
  const std::string from = scratch.write("file", "kept"), taken = scratch.write("taken", "kept, too");
  const std::string free = scratch.path("free");
  const std::pair<int, SystemError> rows[] = {
      {EPERM, 0}, {EOPNOTSUPP, 0}, {ENOSYS, 0}, {EMLINK, 0}, {EIO, EIO}};
  for (const auto& [refusal, result] : rows) {
    const auto rename = [&, refusal = refusal](const std::string& to) {
      return test::exitCodeOf([&] { return refuseLinks(refusal); },
                              [&] { return renameByLink(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str()); });
    };
    SCOPED_TRACE(refusal);
    EXPECT_EQ(rename(taken), result == 0 ? EEXIST : result);
    EXPECT_EQ(rename(free), result);
    EXPECT_EQ(fs::exists(free), result == 0);
    if (result == 0) fs::rename(free, from);
  }
}

}  // namespace

}  // namespace vel::platform
