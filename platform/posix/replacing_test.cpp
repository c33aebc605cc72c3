// Replaced files as this system shows them: permissions, links, devices, what a failure leaves, and what
// other users can do about it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/byte_files.h"
#include "platform/platform.h"
#include "platform/posix/beside.h"
#include "platform/posix/target.h"
#include "platform/test/posix/other_user.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

SystemError replaceWith(const std::string& name, const std::string& bytes) {
  Replacement replacement;
  if (const SystemError error = startReplacement(name.c_str(), replacement); error != 0) return error;
  if (writeBytes(replacement.descriptor, bytes.data(), bytes.size())) return finishReplacement(replacement);
  const SystemError error = errno;
  dropReplacement(replacement);
  return error;
}

std::size_t entriesIn(const std::string& directory) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

TEST(Replacing, KeepsPermissionsAndLinks) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("deep/file", "old");
  fs::permissions(file, fs::perms(0640));
  fs::create_symlink("deep/file", scratch.path("link"));
  EXPECT_EQ(replaceWith(scratch.path("link"), "new"), 0);
  EXPECT_EQ(readFile(file), "new");
  EXPECT_TRUE(fs::is_symlink(scratch.path("link")));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  EXPECT_EQ(entriesIn(scratch.path("deep")), 1U);
  const mode_t before = umask(027);
  EXPECT_EQ(replaceWith(scratch.path("created"), "x"), 0);
  umask(before);
  EXPECT_EQ(fs::status(scratch.path("created")).permissions(), fs::perms(0640));
  fs::permissions(file, fs::perms(0440));
  EXPECT_EQ(replaceWith(file, "x"), EACCES);
  EXPECT_EQ(replaceWith(scratch.path(), "x"), EISDIR);
  EXPECT_EQ(replaceWith(scratch.path("none/x"), "x"), ENOENT);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  fs::create_symlink("/proc/self/fd/" + std::to_string(ends[1]), scratch.path("stream"));
  EXPECT_EQ(replaceWith(scratch.path("stream"), "x"), 0);
  char byte = 0;
  EXPECT_TRUE(read(ends[0], &byte, 1) == 1 && byte == 'x');
  close(ends[0]);
  close(ends[1]);
  fs::create_symlink("nowhere", scratch.path("dangling"));
  EXPECT_EQ(replaceWith(scratch.path("dangling"), "x"), ENOENT);
  EXPECT_TRUE(fs::is_symlink(scratch.path("dangling")));
}

TEST(Replacing, TakesNoAccessControlListFromTheDirectory) {
  // As the system stores it: version 2, then per entry its kind, its rights and whose they are.
  const std::uint32_t list[] = {2, 0x70001, ~0U, 0x70002, 1234, 0x50004, ~0U, 0x70010, ~0U, 0x50020, ~0U};
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  fs::permissions(file, fs::perms(0640));
  if (setxattr(scratch.path().c_str(), "system.posix_acl_default", list, sizeof list, 0) != 0)
    GTEST_SKIP() << "no access control lists here";
  EXPECT_EQ(replaceWith(file, "new"), 0);
  EXPECT_EQ(getxattr(file.c_str(), "system.posix_acl_access", nullptr, 0), -1);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  ASSERT_EQ(setxattr(file.c_str(), "system.posix_acl_access", list, sizeof list, 0), 0);
  EXPECT_EQ(replaceWith(file, "new"), 0);
  EXPECT_EQ(getxattr(file.c_str(), "system.posix_acl_access", nullptr, 0), ssize_t{sizeof list});
}

TEST(Replacing, WritesDevicesThemselves) {
  EXPECT_EQ(replaceWith("/dev/full", "x"), ENOSPC);
  EXPECT_EQ(replaceWith("/dev/null", "x"), 0);
}

std::size_t openDescriptors() {
  return entriesIn("/proc/self/fd");
}

TEST(Replacing, FollowsLinksToTheirEnd) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("a/file", "old");
  scratch.write("b/other", "other");
  fs::create_symlink("../a/file", scratch.path("b/relative"));
  fs::create_symlink(scratch.path("b/relative"), scratch.path("absolute"));
  fs::create_symlink("loop", scratch.path("loop"));
  fs::create_symlink("b", scratch.path("directory"));
  const std::size_t before = openDescriptors();
  EXPECT_EQ(replaceWith(scratch.path("absolute"), "new"), 0);
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(replaceWith(scratch.path("directory/other"), "new"), 0);
  EXPECT_EQ(readFile(scratch.path("b/other")), "new");
  for (const auto& [name, error] : {std::pair{"loop", ELOOP}, {"directory", EISDIR}, {"a/file/x", ENOTDIR}})
    EXPECT_EQ(replaceWith(scratch.path(name), "x"), error) << name;
  EXPECT_EQ(entriesIn(scratch.path("a")) + entriesIn(scratch.path("b")), 3U);
  EXPECT_EQ(replaceWith("/dev/full", "x"), ENOSPC);
  EXPECT_EQ(openDescriptors(), before);
}

/// A replacement that was begun, by name.
struct Begun : Replacement {
  explicit Begun(const std::string& name) : error(startReplacement(name.c_str(), *this)) {
    EXPECT_TRUE(error != 0 || writeBytes(descriptor, "new", 3));
  }
  SystemError error;
};

TEST(Replacing, LosesNothingWhenAnotherFileTakesTheName) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old"), second = scratch.write("second", "second");
  const std::size_t before = openDescriptors();
  const std::pair<const char*, void (*)(const std::string&, const std::string&)> rows[] = {
      {"second", [](const std::string& name, const std::string& other) { fs::rename(other, name); }},
      {"second", [](const std::string& name, const std::string& other) {
         fs::remove(name);
         fs::create_symlink(other, name);
       }}};
  for (const auto& [contents, change] : rows) {
    scratch.write("second", contents);
    Begun begun(file);
    change(file, second);
    EXPECT_EQ(finishReplacement(begun), ECANCELED);
    EXPECT_EQ(readFile(file), contents);
  }
  fs::remove(file);
  Begun first(file), late(file);
  EXPECT_EQ(finishReplacement(first), 0);
  EXPECT_EQ(finishReplacement(late), EEXIST);
  EXPECT_EQ(readFile(file), "new");
  Begun gone(file);
  fs::remove(file);
  EXPECT_EQ(finishReplacement(gone), ECANCELED);
  EXPECT_EQ(entriesIn(scratch.path()), 1U) << "something is left behind";
  EXPECT_EQ(openDescriptors(), before);
}

TEST(Replacing, ShowsNoUnfinishedFileWhereTheFileSystemAllowsIt) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "old");
  for (const auto name : {BesideName::None, BesideName::Random}) {
    Replacement replacement;
    ASSERT_EQ(findTarget(file.c_str(), LastLink::Follow, replacement), 0);
    ASSERT_EQ(createBeside(0600, name, replacement), 0);
    EXPECT_EQ(entriesIn(scratch.path()), replacement.temporary[0] == '\0' ? 1U : 2U);
    EXPECT_TRUE(name == BesideName::None || std::string(replacement.temporary).size() == 20);
    EXPECT_TRUE(writeBytes(replacement.descriptor, "new", 3));
    EXPECT_EQ(moveIntoPlace(replacement), 0);
    EXPECT_EQ(readFile(file), "new");
    scratch.write("file", "old");
    closeReplacement(replacement);
    ASSERT_EQ(findTarget(scratch.path("created").c_str(), LastLink::Follow, replacement), 0);
    ASSERT_EQ(createBeside(0600, name, replacement), 0);
    scratch.write("created", "other");
    EXPECT_EQ(moveIntoPlace(replacement), EEXIST);
    closeReplacement(replacement);
    EXPECT_EQ(readFile(scratch.path("created")), "other");
    fs::remove(scratch.path("created"));
    EXPECT_EQ(entriesIn(scratch.path()), 1U);
  }
}

TEST(Replacing, RemovesTheUnfinishedFileBeforeASignalEndsTheProgram) {
  const ScratchDirectory scratch;
  for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
    const pid_t child = fork();
    if (child == 0) {
      signal(number, SIG_DFL);
      removeUnfinishedOnSignals();
      Replacement replacement;
      if (findTarget(scratch.path("file").c_str(), LastLink::Follow, replacement) != 0 ||
          createBeside(0600, BesideName::Random, replacement) != 0 || entriesIn(scratch.path()) != 1)
        _exit(1);
      raise(number);
      _exit(2);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
    EXPECT_EQ(entriesIn(scratch.path()), 0U);
  }
  const auto isIgnored = [] {
    signal(SIGHUP, SIG_IGN);
    removeUnfinishedOnSignals();
    return raise(SIGHUP);
  };
  EXPECT_EQ(test::exitCodeOf([] { return true; }, isIgnored), 0);
}

TEST(Replacing, TellsWhenOwnerOrPermissionsAreLost) {
  if (!test::canBecomeOtherUser()) GTEST_SKIP() << "takes the superuser";
  const ScratchDirectory scratch;
  fs::permissions(scratch.path(), fs::perms(0777));
  const std::string file = scratch.write("file", "old");
  const auto isTold = [&] {
    Begun begun(file);
    return finishReplacement(begun) == 0 && !begun.keepsRights ? 0 : 1;
  };
  struct stat status {};
  // What was the owner's and the group's is no right of others, and what the group had not others get not.
  for (const auto& [before, after] : {std::pair{0606, 0600}, {0646, 0604}, {06777, 0707}}) {
    ASSERT_EQ(chown(file.c_str(), 0, 0) | chmod(file.c_str(), static_cast<mode_t>(before)), 0);
    EXPECT_EQ(test::exitCodeOf(test::becomeOtherUser, isTold), 0);
    EXPECT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, static_cast<mode_t>(after)) << std::oct << before;
  }
  Begun begun(file);
  EXPECT_TRUE(finishReplacement(begun) == 0 && begun.keepsRights);
  EXPECT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, test::kOtherUser);
}

/// Lets a name lead to a file of its own and to another user's private one, in turn, until it is ended.
void swapNames(const std::string& name, const std::string& secret) {
  const std::string own = name + ".own", link = name + ".link";
  for (;;) {
    const int file = open(own.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    writeBytes(file, "mine", 4);
    fchmod(file, 0666);
    close(file);
    rename(own.c_str(), name.c_str());
    static_cast<void>(symlink(secret.c_str(), link.c_str()));
    rename(link.c_str(), name.c_str());
  }
}

/// As editors do: what was read goes only into the file that it was read from.
void saveWhatIsThere(const std::string& name) {
  const int source = openForReading(name.c_str());
  char bytes[64];
  struct stat status {};
  const std::int64_t size = source >= 0 ? readBytes(source, bytes, sizeof bytes) : -1;
  if (size < 0 || fstat(source, &status) != 0) return closeDescriptor(source);
  closeDescriptor(source);
  Replacement replacement;
  if (startReplacement(name.c_str(), replacement) != 0) return;
  if (replacement.old != identityOf(status)) return dropReplacement(replacement);
  writeBytes(replacement.descriptor, bytes, static_cast<std::size_t>(size));
  finishReplacement(replacement);
}

TEST(Replacing, GivesNothingAwayWhenAnotherUserSwapsNames) {
  if (!test::canBecomeOtherUser()) GTEST_SKIP() << "takes the superuser";
  const ScratchDirectory scratch;
  const std::string secret = scratch.write("private/secret", "hidden"),
                    name = scratch.write("shared/file", "");
  fs::permissions(scratch.path(), fs::perms(0755));
  fs::permissions(scratch.path("private"), fs::perms(0700));
  fs::permissions(secret, fs::perms(0600));
  ASSERT_EQ(chown(scratch.path("shared").c_str(), test::kOtherUser, test::kOtherUser), 0);
  const test::OtherUser other([&] { swapNames(name, secret); });
  for (int round = 0; round < 500 && !HasFailure(); ++round) {
    saveWhatIsThere(name);
    struct stat status {};
    EXPECT_EQ(stat(secret.c_str(), &status), 0);
    EXPECT_TRUE(status.st_uid == 0 && (status.st_mode & 07777) == 0600)
        << "round " << round << ": " << status.st_uid << ' ' << std::oct << status.st_mode;
    EXPECT_EQ(readFile(secret), "hidden") << round;
    const int file = open(name.c_str(), O_RDONLY | O_NOFOLLOW);
    char byte = 0;
    EXPECT_TRUE(file < 0 || read(file, &byte, 1) != 1 || byte == 'm') << round;
    closeDescriptor(file);
  }
}

}  // namespace

}  // namespace vel::platform
