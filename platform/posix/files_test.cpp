// Tests what is particular to POSIX systems: backslash names, links, pipes, dot files and permission bits.
#include <fcntl.h>

#include "platform/byte_files.h"
#include "platform/file_copy.h"
#include "platform/files.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rename.h"
#include "platform/system_error.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;

class PosixFiles : public testing::Test {
 protected:
  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  std::string typed(const std::string& entry) const { return test::backSlashed(path(entry)); }
  SystemError copy(const char* from, const char* to) const {
    return copyFile(path(from).c_str(), path(to).c_str());
  }
  mode_t modeOf(const char* entry) const { return test::modeOf(path(entry)); }
  std::ptrdiff_t entries() const { return std::distance(fs::directory_iterator(path("")), {}); }

  test::ScratchDirectory scratch_;
  const std::string file_ = scratch_.write("file", "kept");
};

// A component without a match stays as typed, and so do those after it. An exact match is preferred; among
// other matches the first in byte order is used. Only ASCII letters are folded, and none in names with
// slashes.
TEST_F(PosixFiles, BackslashNamesGetTheSpellingOfTheirEntries) {
  for (const char* entry :
       {"Dir/Sub/File.txt", "twice/a", "twice/A", "twice/B.txt", "twice/b.TXT", "\u00C4.txt"})
    scratch_.write(entry, "");
  fs::create_symlink("nowhere", path("Broken"));
  const test::CurrentDirectory in(path(""));
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/native_paths.tsv"))
    EXPECT_EQ(NativePath(row[0].c_str()).get(), row.at(1));
  EXPECT_STREQ(NativePath("").get(), "");
  EXPECT_EQ(NativePath(typed("DIR\\sub\\FILE.txt").c_str()).get(), path("Dir/Sub/File.txt"));
  EXPECT_STREQ(NativePath("dir\\SUB\\file.TXT", NativePath::Match::AllButLast).get(), "Dir/Sub/file.TXT");
  EXPECT_STREQ(NativePath("\\TMP", NativePath::Match::AllButLast).get(), "/TMP");
}

TEST_F(PosixFiles, CurrentDirectoryNeedsRoomForItsNul) {
  const test::CurrentDirectory in(path(""));
  const std::string directory = test::backSlashed(fs::current_path().string());
  char out[261];
  EXPECT_EQ(currentDirectory(out, directory.size() + 1), 0);
  EXPECT_EQ(out, directory);
  for (std::size_t capacity = 0; capacity <= directory.size(); ++capacity)
    EXPECT_EQ(currentDirectory(out, capacity), ERANGE) << capacity;
}

/// Creates a directory whose path has this length, changes to it and returns the path.
std::string enterDirectoryOf(std::size_t length, const std::string& parent) {
  std::string path = fs::canonical(parent).string() + '/';
  path.resize(length, 'd');
  fs::create_directory(path);
  fs::current_path(path);
  return path;
}

// The limit is 260 characters with the drive and the final separator.
TEST_F(PosixFiles, LimitsOfNamesAreExact) {
  const test::CurrentDirectory in(path(""));
  for (const bool fits : {true, false}) {
    const std::string name = test::backSlashed(enterDirectoryOf(fits ? 257 : 258, path(""))) + "\\";
    EXPECT_EQ(VelClDirectory().getAsCString(), fits ? name : "");
    EXPECT_EQ(VelClDirectory().getLastError().errorId, fits ? VEL_NO_ERROR : DIRECTORY_EXPANSION_FAILED);
    EXPECT_EQ(VelClDirectory(name.c_str()).isExistent(), fits);
  }
  const std::string file = enterDirectoryOf(250, path("")) + "/1234567", full = test::backSlashed(file);
  ASSERT_EQ(full.size(), 260U);
  std::ofstream(file) << "text";
  VelClFile longest(VelClFilename(full.c_str()), nullptr);
  EXPECT_EQ(longest.getFileSize(), 4U);
  EXPECT_TRUE(longest.remove());
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(PosixFiles, LongNamesFailAndAreNeverCut) {
  EXPECT_TRUE(NativePath(std::string(260, '\\').c_str()).fits());
  EXPECT_FALSE(NativePath(std::string(261, '\\').c_str()).fits());
  const std::string slashName(1000, '/'), name = typed(std::string(260, 'x'));
  EXPECT_EQ(NativePath(slashName.c_str()).get(), slashName.c_str());
  EXPECT_FALSE(entryExists(name.c_str()));
  EXPECT_FALSE(isWritable(name.c_str()));
  for (const SystemError error : {copyFile(file_.c_str(), name.c_str()),
                                  renameFile(file_.c_str(), name.c_str()), setReadOnly(name.c_str(), true)})
    EXPECT_EQ(error, ENAMETOOLONG);
  for (const std::string& missing : {name, file_ + "/x", std::string()})
    EXPECT_EQ(removeFile(missing.c_str()), ENOENT);
  EXPECT_EQ(entries(), 1);
}

TEST_F(PosixFiles, NamesWithALeadingDotAreHidden) {
  for (const char* entry : {".hidden", "..two", ".dir/plain"}) scratch_.write(entry, "");
  const auto isHidden = [this](const char* name) {
    return (attributesOf(path(name).c_str()) & kAttributeHidden) != 0;
  };
  for (const char* name : {".hidden", "..two", ".dir", ".dir/"}) EXPECT_TRUE(isHidden(name)) << name;
  for (const char* name : {".dir/plain", ".", "..", ".dir/..", ".dir/./"})
    EXPECT_FALSE(isHidden(name)) << name;
  EXPECT_EQ(attributesOf("/"), kAttributeDirectory);
}

TEST_F(PosixFiles, ReadOnlyChangesOnlyWriteBits) {
  const std::tuple<mode_t, bool, mode_t> rows[] = {
      {04755, true, 04555}, {0020, false, 0220}, {0462, true, 0440}, {0555, false, 0755}, {0755, true, 0555}};
  for (const auto& [before, readOnly, after] : rows) {
    ASSERT_EQ(chmod(file_.c_str(), before), 0);
    EXPECT_EQ(setReadOnly(file_.c_str(), readOnly), 0);
    EXPECT_EQ(modeOf("file"), after) << std::oct << before;
  }
}

// A link is followed as the source and replaced as the target. Copying a pipe or device fails without waiting
// and creates no target.
TEST_F(PosixFiles, CopiesKeepPermissionBitsAndReplaceOnlyFilesAndLinks) {
  ASSERT_EQ(chmod(file_.c_str(), 04751), 0);
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const std::string outside = scratch_.write("outside/file", "outside");
  scratch_.write("existing", "old");
  for (const auto& [name, target] : {std::pair{"source", "file"},
                                     {"link", "outside/file"},
                                     {"dangling", "nowhere"},
                                     {"directory", "outside"},
                                     {"memory", "/proc/self/mem"},
                                     {"device", "/dev/null"}})
    fs::create_symlink(target, path(name));
  for (const char* target : {"existing", "new", "link", "dangling"}) {
    EXPECT_EQ(copy("source", target), 0) << target;
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path(target)))) << target;
    EXPECT_EQ(readFile(path(target)), "kept") << target;
    EXPECT_EQ(modeOf(target), mode_t{0751}) << target;
  }
  const std::tuple<const char*, const char*, SystemError> refused[] = {
      {"file", "source", EACCES}, {"source", "file", EACCES}, {"file", "directory", EISDIR},
      {"file", "device", EINVAL}, {"file", "pipe", ENXIO},    {"pipe", "none", EINVAL},
      {"memory", "none", EIO}};
  for (const auto& [from, to, error] : refused) EXPECT_EQ(copy(from, to), error) << from << " to " << to;
  for (const char* link : {"source", "directory", "device"}) EXPECT_TRUE(fs::is_symlink(path(link))) << link;
  EXPECT_FALSE(fs::exists(path("none")));
  EXPECT_EQ(readFile(file_) + readFile(outside), "keptoutside");
}

TEST_F(PosixFiles, AFailedCopyKeepsTheOldTarget) {
  scratch_.write("existing", "old");
  scratch_.write("large", std::string(100'000, 'x'));
  for (const char* target : {"existing", "new"}) {
    const auto copyLarge = [&] {
      signal(SIGXFSZ, SIG_IGN);
      return copy("large", target);
    };
    EXPECT_EQ(test::exitCodeOf(test::limitFileSizes, copyLarge), EFBIG) << target;
  }
  EXPECT_EQ(readFile(path("existing")), "old");
  EXPECT_EQ(entries(), 3);
}

TEST_F(PosixFiles, CopiesOverwriteAFileWhoseDirectoryIsReadOnly) {
  if (!test::canBeUnprivileged()) GTEST_SKIP() << "no unprivileged user";
  for (const char* name : {"file", "closed/existing", "sticky/existing"})
    ASSERT_EQ(chmod(scratch_.write(name, name).c_str(), 0666), 0);
  for (const auto& [name, mode] : {std::pair{"", 0755}, {"closed", 0555}, {"sticky", 01777}})
    ASSERT_EQ(chmod(path(name).c_str(), static_cast<mode_t>(mode)), 0);
  for (const auto& [target, error] :
       {std::pair{"closed/existing", 0}, {"sticky/existing", 0}, {"closed/new", EACCES}}) {
    EXPECT_EQ(test::exitCodeOf(test::beUnprivileged, [&, to = target] { return copy("file", to); }), error);
    EXPECT_EQ(readFile(path(target)), error == 0 ? "file" : "") << target;
  }
}

// A hard link shows the permissions of a removed file.
TEST_F(PosixFiles, RemovedFilesAreMadeWritableButNotTheTargetOfALink) {
  ASSERT_EQ(chmod(file_.c_str(), 0444), 0);
  fs::create_symlink("file", path("link"));
  EXPECT_EQ(removeFile(path("link").c_str()), 0);
  EXPECT_EQ(modeOf("file"), mode_t{0444});
  fs::create_hard_link(file_, path("second"));
  EXPECT_EQ(removeFile(file_.c_str()), 0);
  EXPECT_EQ(modeOf("second"), mode_t{0644});
}

TEST_F(PosixFiles, AFileThatCannotBeRemovedKeepsItsPermissions) {
  if (!test::canBeUnprivileged()) GTEST_SKIP() << "no unprivileged user";
  const std::string kept = scratch_.write("locked/file", "kept");
  // The owner of the file could change its permissions.
  const uid_t owner = geteuid() == 0 ? test::kOtherUser : geteuid();
  ASSERT_EQ(chown(kept.c_str(), owner, static_cast<gid_t>(-1)), 0);
  for (const auto& [name, mode] : {std::pair{"", 0755}, {"locked", 0555}, {"locked/file", 0440}})
    ASSERT_EQ(chmod(path(name).c_str(), static_cast<mode_t>(mode)), 0);
  EXPECT_EQ(test::exitCodeOf(test::beUnprivileged, [&] { return removeFile(kept.c_str()); }), EACCES);
  EXPECT_EQ(modeOf("locked/file"), mode_t{0440});
}

TEST_F(PosixFiles, RenamingNeverReplaces) {
  // renameByLink is for file systems that cannot refuse to replace.
  using Function = SystemError (*)(const char*, const char*);
  const Function byLink = [](const char* from, const char* to) {
    return renameByLink(AT_FDCWD, from, AT_FDCWD, to);
  };
  for (const Function function : {Function{renameFile}, byLink}) {
    const test::ScratchDirectory scratch;
    const auto rename = [&](const char* from, const char* to) {
      return function(scratch.path(from).c_str(), scratch.path(to).c_str());
    };
    scratch.write("file", "kept");
    scratch.write("directory/other", "other");
    fs::create_directory(scratch.path("empty"));
    const std::tuple<const char*, const char*, SystemError> rows[] = {
        {"file", "file", EEXIST},       {"file", "directory/other", EEXIST}, {"file", "directory", EEXIST},
        {"directory", "empty", EEXIST}, {"missing", "new", ENOENT},          {"file", "new", 0},
        {"directory", "moved", 0}};
    for (const auto& [from, to, error] : rows) EXPECT_EQ(rename(from, to), error) << from << " to " << to;
    EXPECT_EQ(readFile(scratch.path("new")) + readFile(scratch.path("moved/other")), "keptother");
    EXPECT_FALSE(fs::exists(scratch.path("file")));
  }
}

TEST(PosixTmpDirectory, IsTmpdirOrTmp) {
  const test::Variable variable("TMPDIR", "/var/tmp");
  EXPECT_STREQ(fallbackTmpDirectory(), "/var/tmp");
  for (const char* none : {"", static_cast<const char*>(nullptr)}) {
    variable.set(none);
    EXPECT_STREQ(fallbackTmpDirectory(), "/tmp");
  }
}

constexpr auto kRefuse = PipeWithoutWriter::Refuse;

std::string readAll(const std::string& name, PipeWithoutWriter pipe = kRefuse) {
  char bytes[16];
  std::string text;
  ReadableFile file;
  EXPECT_EQ(file.open(name.c_str(), pipe), 0);
  for (std::size_t size = 0; readBytes(file.descriptor(), bytes, sizeof bytes, size) == 0 && size > 0;)
    text.append(bytes, size);
  return text;
}

TEST_F(PosixFiles, SkippingStopsAtTheEnd) {
  std::ofstream(path("four")) << "0123";
  int file = -1;
  ASSERT_EQ(openForReading(path("four").c_str(), kRefuse, file), 0);
  const struct {
    off_t position;
    std::uint64_t left, count;
    bool moved;
  } rows[] = {{0, 4, 0, false}, {0, 4, 3, true}, {1, 3, 9, true}, {4, 0, 1, false}, {9, 0, 1, false}};
  for (const auto& [position, left, count, moved] : rows) {
    ASSERT_EQ(lseek(file, position, SEEK_SET), position);
    EXPECT_EQ(bytesLeft(file), left) << position;
    EXPECT_EQ(skipBytes(file, count), moved) << position;
  }
  closeDescriptor(file);
}

bool leaveOneDescriptor() {
  const int next = dup(STDIN_FILENO);
  const auto count = static_cast<rlim_t>(next) + 1;
  const rlimit limit{count, count};
  return close(next) == 0 && setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

// Opening does not block, but reading does.
TEST_F(PosixFiles, OpeningAPipeDoesNotWaitForAWriter) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const std::string pipe = path("pipe");
  int silent = -1;
  EXPECT_EQ(openForReading(pipe.c_str(), kRefuse, silent), ENXIO);
  const int other = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(openForReading(pipe.c_str(), kRefuse, silent), ENXIO) << "a second reader is no writer";
  const auto openIt = [&] { return openForReading(pipe.c_str(), kRefuse, silent); };
  EXPECT_EQ(test::exitCodeOf(leaveOneDescriptor, openIt), ENXIO) << "without a descriptor for the query";
  const int writer = open(pipe.c_str(), O_WRONLY);
  EXPECT_EQ(openForReading(pipe.c_str(), kRefuse, silent), 0);
  EXPECT_EQ(fcntl(silent, F_GETFL) & O_NONBLOCK, 0);
  closeDescriptor(silent);
  ASSERT_EQ(write(writer, "left", 4), 4);
  closeDescriptor(writer);
  EXPECT_EQ(readAll(pipe), "left");
  EXPECT_EQ(openForReading(pipe.c_str(), kRefuse, silent), ENXIO);
  closeDescriptor(other);
  std::thread late([&] {
    const int end = open(pipe.c_str(), O_WRONLY);
    EXPECT_EQ(write(end, "late", 4), 4);
    closeDescriptor(end);
  });
  EXPECT_EQ(readAll(pipe, PipeWithoutWriter::Wait), "late");
  late.join();
}

// A shell passes such names; the program that writes may have ended without output.
TEST_F(PosixFiles, UnnamedPipesAreReadToTheirEnd) {
  for (const std::string text : {"", "text"}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    closeDescriptor(ends[1]);
    EXPECT_EQ(readAll("/dev/fd/" + std::to_string(ends[0])), text);
    closeDescriptor(ends[0]);
  }
}

}  // namespace

}  // namespace vel::platform
