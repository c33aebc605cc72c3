// Tests replacing files: permissions, links, devices, the state after a failure, and attacks by other users.
#include <fcntl.h>
#include <sys/xattr.h>

#include "platform/byte_files.h"
#include "platform/posix/beside.h"
#include "platform/posix/target.h"
#include "platform/replacing.h"
#include "platform/system_error.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;
using namespace std::string_literals;

SystemError replaceWith(const std::string& name, const std::string& bytes) {
  Replacement replacement;
  if (const SystemError error = startReplacement(name.c_str(), replacement); error != 0) return error;
  if (writeBytes(replacement.descriptor, bytes.data(), bytes.size()) == 0)
    return finishReplacement(replacement);
  const SystemError error = errno;
  dropReplacement(replacement);
  return error;
}

std::size_t entriesIn(const std::string& directory) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

class Replacing : public testing::Test {
 protected:
  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  std::size_t entries() const { return entriesIn(scratch_.path()); }
  mode_t modeOfFile() const { return test::modeOf(file_); }

  const ScratchDirectory scratch_;
  const std::string file_ = scratch_.write("file", "old");
};

TEST_F(Replacing, KeepsPermissionsAndFollowsLinksToTheirEnd) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  scratch_.write("a/other", "other");
  for (const auto& [name, target] : {std::pair{"a/relative", "../file"s},
                                     {"absolute", path("a/relative")},
                                     {"directory", "a"},
                                     {"dangling", "nowhere"},
                                     {"loop", "loop"},
                                     {"stream", "/proc/self/fd/" + std::to_string(ends[1])}})
    fs::create_symlink(target, path(name));
  chmod(file_.c_str(), 0640);
  const std::size_t before = entriesIn("/proc/self/fd");
  EXPECT_EQ(replaceWith(path("absolute"), "new"), 0);
  EXPECT_EQ(readFile(file_), "new");
  EXPECT_EQ(modeOfFile(), mode_t{0640});
  chmod(file_.c_str(), 0440);
  const std::pair<std::string, SystemError> rows[] = {{path("directory/other"), 0},
                                                      {path("stream"), 0},
                                                      {"/dev/null", 0},
                                                      {"/dev/full", ENOSPC},
                                                      {file_, EACCES},
                                                      {path("directory"), EISDIR},
                                                      {path("none/x"), ENOENT},
                                                      {path("dangling"), ENOENT},
                                                      {path("loop"), ELOOP},
                                                      {path("file/x"), ENOTDIR}};
  for (const auto& [name, error] : rows) EXPECT_EQ(replaceWith(name, "x"), error) << name;
  for (const char* link : {"absolute", "a/relative", "dangling"}) EXPECT_TRUE(fs::is_symlink(path(link)));
  EXPECT_EQ(readFile(path("a/other")), "x");
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
  EXPECT_EQ(entries() + entriesIn(path("a")), 9U) << "an unfinished file is left";
  EXPECT_EQ(entriesIn("/proc/self/fd"), before);
  for (const int end : ends) close(end);
}

TEST_F(Replacing, CreatesFilesWithThePermissionsOfTheUmask) {
  const mode_t before = umask(027);
  EXPECT_EQ(replaceWith(path("created"), "x"), 0);
  umask(before);
  EXPECT_EQ(fs::status(path("created")).permissions(), fs::perms(0640));
}

TEST_F(Replacing, KeepsTheAccessControlListOfTheFileAndInheritsNone) {
  // The system's format is version 2, then for each entry tag and permissions, and the user or group.
  const std::uint32_t list[] = {2, 0x70001, ~0U, 0x70002, 1234, 0x50004, ~0U, 0x70010, ~0U, 0x50020, ~0U};
  constexpr const char* kOfFile = "system.posix_acl_access";
  chmod(file_.c_str(), 0640);
  if (setxattr(scratch_.path().c_str(), "system.posix_acl_default", list, sizeof list, 0) != 0)
    GTEST_SKIP() << "no access control lists here";
  EXPECT_EQ(replaceWith(file_, "new"), 0);
  EXPECT_EQ(getxattr(file_.c_str(), kOfFile, nullptr, 0), -1);
  EXPECT_EQ(modeOfFile(), mode_t{0640});
  ASSERT_EQ(setxattr(file_.c_str(), kOfFile, list, sizeof list, 0), 0);
  EXPECT_EQ(replaceWith(file_, "new"), 0);
  EXPECT_EQ(getxattr(file_.c_str(), kOfFile, nullptr, 0), ssize_t{sizeof list});
}

/// A replacement that was started and written.
struct Begun : Replacement {
  explicit Begun(const std::string& name) : error(startReplacement(name.c_str(), *this)) {
    EXPECT_EQ(error, 0);
    EXPECT_EQ(writeBytes(descriptor, "new", 3), 0);
  }
  SystemError error;
};

TEST_F(Replacing, FailsWhenAnotherFileGetsTheName) {
  const std::size_t before = entriesIn("/proc/self/fd");
  for (const bool byLink : {false, true}) {
    const std::string other = scratch_.write("other", "other");
    Begun begun(file_);
    fs::remove(file_);
    byLink ? fs::create_symlink(other, file_) : fs::rename(other, file_);
    EXPECT_EQ(finishReplacement(begun), ECANCELED);
    EXPECT_EQ(readFile(file_), "other");
  }
  fs::remove(path("other"));
  fs::remove(file_);
  Begun first(file_), late(file_);
  EXPECT_EQ(finishReplacement(first), 0);
  EXPECT_EQ(finishReplacement(late), EEXIST);
  EXPECT_EQ(readFile(file_), "new");
  Begun gone(file_);
  fs::remove(file_);
  EXPECT_EQ(finishReplacement(gone), ECANCELED);
  EXPECT_EQ(entries(), 0U) << "an unfinished file is left";
  EXPECT_EQ(entriesIn("/proc/self/fd"), before);
}

SystemError beginBeside(const std::string& target, BesideName name, Replacement& replacement) {
  const SystemError error = findTarget(target.c_str(), LastLink::Follow, replacement);
  return error != 0 ? error : createBeside(0600, name, replacement);
}

TEST_F(Replacing, HasNoVisibleTemporaryFileUnlessItNeedsAName) {
  for (const auto name : {BesideName::None, BesideName::Random}) {
    const std::string created = path("created");
    Replacement replacement, late;
    ASSERT_EQ(beginBeside(file_, name, replacement), 0);
    const std::size_t length = std::string(replacement.temporary).size();
    EXPECT_EQ(entries(), length == 0 ? 1U : 2U);
    if (name == BesideName::Random) {
      EXPECT_EQ(length, 20U);
    }
    EXPECT_EQ(writeBytes(replacement.descriptor, "new", 3), 0);
    EXPECT_EQ(moveIntoPlace(replacement), 0);
    EXPECT_EQ(readFile(file_), "new");
    ASSERT_EQ(beginBeside(created, name, late), 0);
    scratch_.write("created", "other");
    EXPECT_EQ(moveIntoPlace(late), EEXIST);
    EXPECT_EQ(readFile(created), "other");
    for (Replacement* ended : {&replacement, &late}) closeReplacement(*ended);
    fs::remove(created);
    EXPECT_EQ(entries(), 1U);
  }
}

TEST_F(Replacing, RemovesTheUnfinishedFileWhenASignalEndsTheProgram) {
  for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
    const auto raiseMeanwhile = [&] {
      signal(number, SIG_DFL);
      removeUnfinishedOnSignals();
      Replacement replacement;
      if (beginBeside(path("new"), BesideName::Random, replacement) == 0 && entries() == 2) raise(number);
      return false;
    };
    const int status = test::statusOfCopy(raiseMeanwhile);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), number);
    EXPECT_EQ(entries(), 1U);
  }
  const auto isIgnored = [] {
    signal(SIGHUP, SIG_IGN);
    removeUnfinishedOnSignals();
    return raise(SIGHUP) == 0;
  };
  EXPECT_EQ(test::statusOfCopy(isIgnored), 0);
}

TEST_F(Replacing, ReportsLostOwnerOrPermissions) {
  if (!test::canBecomeOtherUser()) GTEST_SKIP() << "needs root";
  chmod(scratch_.path().c_str(), 0777);
  const auto keepsRights = [&] {
    Begun begun(file_);
    return finishReplacement(begun) != 0 ? -1 : begun.keepsRights ? 1 : 0;
  };
  // No right of the old owner or group passes to others, nor one that the group did not have.
  for (const auto& [before, after] : {std::pair{0606, 0600}, {0646, 0604}, {06777, 0707}}) {
    ASSERT_EQ(chown(file_.c_str(), 0, 0), 0);
    ASSERT_EQ(chmod(file_.c_str(), static_cast<mode_t>(before)), 0);
    EXPECT_EQ(test::exitCodeOf(test::becomeOtherUser, keepsRights), 0);
    EXPECT_EQ(modeOfFile(), static_cast<mode_t>(after)) << std::oct << before;
  }
  EXPECT_EQ(keepsRights(), 1);
  struct stat status {};
  EXPECT_EQ(stat(file_.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, test::kOtherUser);
}

/// Makes the name a regular file and a link to another user's private file, in turn, forever.
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

/// Saves as an editor does: only into the file that was read.
void saveWhatIsThere(const std::string& name) {
  ReadableFile source;
  char bytes[64];
  std::size_t size = 0;
  struct stat status {};
  if (source.open(name.c_str(), PipeWithoutWriter::Refuse) != 0) return;
  if (readBytes(source.descriptor(), bytes, sizeof bytes, size) != 0) return;
  if (fstat(source.descriptor(), &status) != 0) return;
  Replacement replacement;
  if (startReplacement(name.c_str(), replacement) != 0) return;
  if (replacement.old != identityOf(status)) return dropReplacement(replacement);
  writeBytes(replacement.descriptor, bytes, size);
  finishReplacement(replacement);
}

TEST_F(Replacing, IsSafeWhenAnotherUserSwapsFiles) {
  if (!test::canBecomeOtherUser()) GTEST_SKIP() << "needs root";
  const std::string secret = scratch_.write("private/secret", "hidden"),
                    name = scratch_.write("shared/file", "");
  for (const auto& [entry, mode] : {std::pair{"", 0755}, {"private", 0700}, {"private/secret", 0600}})
    ASSERT_EQ(chmod(path(entry).c_str(), static_cast<mode_t>(mode)), 0);
  ASSERT_EQ(chown(path("shared").c_str(), test::kOtherUser, test::kOtherUser), 0);
  const test::OtherUser other([&] { swapNames(name, secret); });
  for (int round = 0; round < 500 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    saveWhatIsThere(name);
    struct stat status {};
    EXPECT_EQ(stat(secret.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 0U);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0600});
    EXPECT_EQ(readFile(secret), "hidden");
    const int file = open(name.c_str(), O_RDONLY | O_NOFOLLOW);
    char byte = 'm';
    static_cast<void>(!read(file, &byte, 1));
    EXPECT_EQ(byte, 'm') << "a copy of the secret";
    closeDescriptor(file);
  }
}

}  // namespace

}  // namespace vel::platform
