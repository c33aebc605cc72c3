// Tests the functions of vel_files.h on real files, with names of every kind.
#include <limits>

#include "platform/test/test.h"
#include "vel_include/vel_files.h"

namespace {

using vel::test::CurrentDirectory;
using namespace std::string_literals;

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
/// A component of about 200 bytes.
const std::string kLongComponent = [] {
  std::string text = "日本 ";
  while (text.size() < 200) text += "ä";
  return text;
}();

/// A directory that the functions under test create and remove.
class Files : public testing::Test {
 protected:
  Files() {
    VelClReturnedText path;
    const VelClStatus status = velTemporaryDirectoryCreate("", "files test ", path);
    EXPECT_TRUE(status.isOk()) << status.getText();
    scratch_ = path.str();
  }
  ~Files() override {
    const VelClStatus status = velTreeRemove(scratch_);
    EXPECT_TRUE(status.isOk()) << status.getText();
  }

  std::string path(const std::string& entry) const { return scratch_ + "/" + entry; }
  /// A directory whose path has more than 1,500 bytes.
  std::string longDirectory() const {
    std::string name = scratch_;
    for (int level = 0; level < 8; ++level) name += "/" + kLongComponent;
    return name;
  }
  std::string write(const std::string& entry, const std::string& bytes) const {
    const std::string name = path(entry);
    const VelClStatus status = velFileReplace(name, bytes);
    EXPECT_TRUE(status.isOk()) << status.getText();
    return name;
  }

  std::string scratch_;
};

std::string contentsOf(const std::string& name) {
  VelClReturnedText contents;
  const VelClStatus status = velFileRead(name, kNoLimit, contents);
  return status.isOk() ? contents.str() : status.getText();
}

/// Lists a tree: paths below its top, in order, with "/" after directories.
std::vector<std::string> listed(const std::string& top, const VelStFileWalkOptions& options = {}) {
  std::vector<std::string> entries;
  VelClFileWalk walk;
  const VelClStatus status = walk.open(top, options);
  if (!status.isOk()) return {status.getText()};
  while (walk.next()) {
    std::string entry(walk.getPath().substr(top.size() + 1));
    std::replace(entry.begin(), entry.end(), '\\', '/');
    if (!walk.isOk()) entry += "!";
    if (walk.isOk() && walk.getKind() == VEL_FILE_KIND_DIRECTORY) entry += "/";
    entries.push_back(entry);
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

#define EXPECT_OK(call)                                      \
  do {                                                       \
    const VelClStatus result = (call);                       \
    EXPECT_TRUE(result.isOk()) << #call << result.getText(); \
  } while (false)

TEST_F(Files, WorkWithNamesOfEveryKind) {
  for (const std::string& name :
       {"plain"s, "with blanks  in it"s, "ä"s, "пример.txt"s, "日本"s, "😀.txt"s, "é (decomposed é)"s,
        kLongComponent, "a.b.c"s, ".hidden"s, "-x"s, "100%"s}) {
    SCOPED_TRACE(name);
    for (const std::string& directory : {path("short/" + name), longDirectory() + "/" + name}) {
      const std::string file = directory + "/" + name, copy = file + ".copy", moved = file + ".moved";
      VelStFileStatus status;
      EXPECT_OK(velDirectoryCreate(directory, true));
      EXPECT_OK(velDirectoryCreate(directory, true));
      EXPECT_EQ(velDirectoryCreate(directory).getErrorId(), DIRECTORY_COULD_NOT_CREATE);
      EXPECT_OK(velFileReplace(file, "first"));
      EXPECT_OK(velFileReplace(file, "first line\n"));
      EXPECT_OK(velFileAppend(file, "second line\n"));
      EXPECT_OK(velFileAppend(file + ".log", "x"));
      EXPECT_OK(velFileCopy(file, copy));
      EXPECT_OK(velFileMove(copy, moved));
      EXPECT_EQ(contentsOf(moved), "first line\nsecond line\n");
      EXPECT_OK(velFileGetStatus(moved, status));
      EXPECT_EQ(status.size, 23U);
      EXPECT_EQ(status.kind, +VEL_FILE_KIND_FILE);
      EXPECT_FALSE(velFileExists(copy));
      EXPECT_THAT(listed(directory), testing::ElementsAre(name, name + ".log", name + ".moved"));
      EXPECT_OK(velFileRemove(moved));
      EXPECT_OK(velTreeRemove(directory));
      EXPECT_FALSE(velFileExists(directory));
    }
  }
}

TEST_F(Files, ReportFailuresWithNumberAndName) {
  const std::string file = write("file", "x"), none = path("none"), below = path("file/x"),
                    deep = path("a/b");
  VelStFileStatus status;
  VelClReturnedText text;
  bool exists = true;
  VelClFileWalk walk;
  struct Row {
    VelClStatus status;
    std::uint32_t id;
    VelEnErrorClass errorClass;
    std::string name;
  };
  using enum VelEnErrorClass;
  const Row rows[] = {
      {velFileGetStatus(none, status), FILE_COULD_NOT_QUERY, IO_NOT_EXISTENT, none},
      {velDirectoryCreate(deep), DIRECTORY_COULD_NOT_CREATE, IO_NOT_EXISTENT, deep},
      {velDirectoryCreate(file), DIRECTORY_COULD_NOT_CREATE, IO_ALREADY_IN_USE, file},
      {velDirectoryCreate(file, true), DIRECTORY_COULD_NOT_CREATE, IO_ALREADY_IN_USE, file},
      {velFileCopy(none, deep), FILE_COULD_NOT_COPY, IO_NOT_EXISTENT, none},
      {velFileCopy(file, deep), FILE_COULD_NOT_COPY, IO_NOT_EXISTENT, deep},
      {velFileCopy(file, file), FILE_COULD_NOT_COPY, IO_ALREADY_IN_USE, file},
      {velFileCopy(file, file, VEL_OVERWRITE_ALWAYS), FILE_COULD_NOT_COPY, IO_INVALID_NAME, file},
      {velFileMove(none, deep), FILE_COULD_NOT_MOVE, IO_NOT_EXISTENT, none},
      {velFileMove(file, deep), FILE_COULD_NOT_MOVE, IO_NOT_EXISTENT, deep},
      {velFileRemove(none), FILE_COULD_NOT_REMOVE, IO_NOT_EXISTENT, none},
      {velTreeRemove(none), FILE_COULD_NOT_REMOVE, IO_NOT_EXISTENT, none},
      {velFileRead(none, 10, text), FILE_COULD_NOT_OPEN, IO_NOT_EXISTENT, none},
      {velFileRead(file, 0, text), FILE_TOO_LARGE, DATA_OUT_OF_BOUNDS, file},
      {velFileReplace(deep, "x"), FILE_COULD_NOT_WRITE, IO_NOT_EXISTENT, deep},
      {velFileAppend(deep, "x"), FILE_COULD_NOT_WRITE, IO_NOT_EXISTENT, deep},
      {walk.open(none), FILE_COULD_NOT_READ, IO_NOT_EXISTENT, none},
      {walk.open(file), FILE_COULD_NOT_READ, IO_NOT_EXISTENT, file},
      {velTemporaryFileCreate(none, "", text), FILE_COULD_NOT_OPEN, IO_NOT_EXISTENT, ""},
      {velFileRemove(""), PATH_INVALID, IO_INVALID_NAME, ""},
      {velFileExists("a\0b"s, exists), PATH_INVALID, IO_INVALID_NAME, "a\0b"s},
      {velFileMove(file, ""), PATH_INVALID, IO_INVALID_NAME, ""},
      {velFileCopy("a\0b"s, file), PATH_INVALID, IO_INVALID_NAME, "a\0b"s},
      {velTemporaryDirectoryCreate(scratch_, "\0"s, text), PATH_INVALID, IO_INVALID_NAME, "\0"s},
      {walk.open(""), PATH_INVALID, IO_INVALID_NAME, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.status.getText() + " is row " + std::to_string(&row - rows));
    EXPECT_EQ(row.status.getErrorId(), row.id);
    EXPECT_EQ(row.status.getClass(), row.errorClass);
    const bool isOfSystem = row.id != PATH_INVALID && row.id != FILE_TOO_LARGE;
    EXPECT_EQ(row.status.getSystemError() != 0, isOfSystem);
    if (row.id != FILE_COULD_NOT_OPEN || !row.name.empty()) {
      EXPECT_EQ(row.status.getName(), row.name);
    }
  }
  EXPECT_FALSE(exists);
  EXPECT_EQ(contentsOf(file), "x");
  EXPECT_FALSE(velFileExists(below));
  EXPECT_FALSE(walk.next());
  EXPECT_THAT(listed(scratch_), testing::ElementsAre("file"));
}

TEST_F(Files, OverwriteOnlyAsTheCallerSays) {
  struct Row {
    VelEnOverwrite overwrite;
    bool isTargetOlder, isDone, isReplaced;
  };
  for (const Row& row : {Row{VEL_OVERWRITE_NEVER, true, false, false},
                         {VEL_OVERWRITE_ALWAYS, false, true, true},
                         {VEL_OVERWRITE_OLDER, false, true, false},
                         {VEL_OVERWRITE_OLDER, true, true, true}})
    for (const bool moves : {false, true}) {
      SCOPED_TRACE(row.overwrite * 4 + row.isTargetOlder * 2 + moves);
      const std::string from = write("from", "new"), to = write("to", "old");
      const std::filesystem::path older = row.isTargetOlder ? to : from;
      std::filesystem::last_write_time(older,
                                       std::filesystem::last_write_time(older) - std::chrono::hours(1));
      const VelClStatus status =
          moves ? velFileMove(from, to, row.overwrite) : velFileCopy(from, to, row.overwrite);
      EXPECT_EQ(status.isOk(), row.isDone) << status.getText();
      EXPECT_EQ(contentsOf(to), row.isReplaced ? "new" : "old");
      EXPECT_EQ(velFileExists(from), !moves || !row.isReplaced);
      EXPECT_LE(listed(scratch_).size(), 2U) << "an unfinished copy is left";
    }
}

TEST_F(Files, CopyKeepsPermissionsAndTimesOnlyIfAsked) {
  const std::string from = write("from", "x");
  std::filesystem::last_write_time(from, std::filesystem::last_write_time(from) - std::chrono::hours(100));
  std::filesystem::permissions(from, std::filesystem::perms(0444));
  VelStFileStatus source, plain, kept, replaced;
  EXPECT_OK(velFileCopy(from, path("kept"), VEL_OVERWRITE_NEVER, true));
  EXPECT_OK(velFileCopy(from, path("plain")));
  write("replaced", "much longer than the source");
  EXPECT_OK(velFileCopy(from, path("replaced"), VEL_OVERWRITE_ALWAYS));
  EXPECT_OK(velFileGetStatus(from, source));
  EXPECT_OK(velFileGetStatus(path("kept"), kept));
  EXPECT_OK(velFileGetStatus(path("plain"), plain));
  EXPECT_OK(velFileGetStatus(path("replaced"), replaced));
  EXPECT_EQ(kept.modified, source.modified);
  EXPECT_EQ(kept.ownerPermissions & 2, 0U);
  EXPECT_GT(plain.modified, source.modified);
  EXPECT_NE(replaced.ownerPermissions & 2, 0U);
  EXPECT_EQ(replaced.size, 1U);
  // A read-only file is not replaced, but removed if that is asked.
  EXPECT_EQ(velFileCopy(path("plain"), path("kept"), VEL_OVERWRITE_ALWAYS).getClass(),
            VelEnErrorClass::IO_PERMISSION_DENIED);
  EXPECT_EQ(velFileReplace(path("kept"), "y").getClass(), VelEnErrorClass::IO_PERMISSION_DENIED);
  EXPECT_EQ(contentsOf(path("kept")), "x");
  EXPECT_OK(velFileRemove(path("kept")));
}

TEST_F(Files, StatusTellsWhatTheSystemKnows) {
  const std::string file = write("file", "12345");
  const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                       std::chrono::system_clock::now().time_since_epoch())
                       .count();
  constexpr std::int64_t kHour = 3'600'000'000'000;
  VelStFileStatus status, directory, moved;
  EXPECT_OK(velFileGetStatus(file, status));
  EXPECT_OK(velFileGetStatus(scratch_, directory));
  EXPECT_OK(velFileMove(file, path("moved")));
  EXPECT_OK(velFileGetStatus(path("moved"), moved));
  for (const std::int64_t time : {status.modified, status.accessed, status.changed})
    EXPECT_LT(std::abs(time - now), kHour);
  if (status.created != VEL_TIME_UNKNOWN) {
    EXPECT_LT(std::abs(status.created - now), kHour);
  }
  EXPECT_EQ(status.linkCount, 1U);
  EXPECT_EQ(status.ownerPermissions & 6, 6U);
  EXPECT_EQ(directory.kind, +VEL_FILE_KIND_DIRECTORY);
  EXPECT_EQ(directory.size, 0U);
  EXPECT_EQ(std::pair(status.volume, status.number), std::pair(moved.volume, moved.number));
  EXPECT_NE(status.number, directory.number);
}

TEST_F(Files, HandleFilesOf20Gigabytes) {
  constexpr std::uint64_t kSize = 20'000'000'000;
  const std::string file = write("large", "begin");
  std::error_code error;
  std::filesystem::resize_file(file, kSize, error);
  if (error) GTEST_SKIP() << "no such file here: " << error.message();
  VelStFileStatus status;
  VelClReturnedText contents;
  EXPECT_OK(velFileAppend(file, "end"));
  EXPECT_OK(velFileGetStatus(file, status));
  EXPECT_EQ(status.size, kSize + 3);
  EXPECT_EQ(velFileRead(file, 100, contents).getErrorId(), +FILE_TOO_LARGE);
  EXPECT_EQ(velFileRead(file, 2'000'000, contents).getErrorId(), +FILE_TOO_LARGE);
}

TEST_F(Files, RenameCaseOnly) {
  const std::string lower = write("name ä", "x"), upper = path("Name Ä");
  EXPECT_OK(velFileMove(lower, upper));
  EXPECT_THAT(listed(scratch_), testing::ElementsAre("Name Ä"));
  EXPECT_OK(velFileMove(upper, lower, VEL_OVERWRITE_ALWAYS));
  EXPECT_THAT(listed(scratch_), testing::ElementsAre("name ä"));
  EXPECT_OK(velDirectoryCreate(path("dir")));
  EXPECT_OK(velFileMove(path("dir"), path("DIR")));
  EXPECT_THAT(listed(scratch_), testing::ElementsAre("DIR/", "name ä"));
}

TEST_F(Files, RelativeNamesFollowTheCurrentDirectory) {
  EXPECT_OK(velDirectoryCreate(path("one/two"), true));
  std::string longName = ".";
  for (int level = 0; level < 8; ++level) longName += "/" + kLongComponent;
  for (const char* current : {"one", "one/two"}) {
    const CurrentDirectory changed(path(current));
    EXPECT_OK(velDirectoryCreate(longName, true));
    EXPECT_OK(velFileReplace(longName + "/file", current));
    EXPECT_OK(velFileCopy(longName + "/../" + kLongComponent + "/./file", "copy"));
    EXPECT_OK(
        velFileCopy("copy", "../copy of " + std::string(current, 3) + std::to_string(std::strlen(current))));
    EXPECT_EQ(contentsOf(longName + "/file"), current);
  }
  EXPECT_EQ(contentsOf(path("one/copy")), "one");
  EXPECT_EQ(contentsOf(path("one/two/copy")), "one/two");
  EXPECT_EQ(contentsOf(path("copy of one3")), "one");
}

/// A directory on another file system than that of temporary files; "" if there is none.
std::string otherFileSystem(const std::string& own) {
  VelStFileStatus here, there;
  for (const char* candidate : {"/dev/shm", "Z:\\dev\\shm", "/var/tmp"})
    if (velFileGetStatus(own, here).isOk() && velFileGetStatus(candidate, there).isOk() &&
        here.volume != there.volume)
      return candidate;
  return "";
}

TEST_F(Files, MoveToAnotherFileSystem) {
  const std::string other = otherFileSystem(scratch_);
  VelClReturnedText place;
  if (other.empty() || !velTemporaryDirectoryCreate(other, "move ", place).isOk())
    GTEST_SKIP() << "only one file system here";
  const std::string there = place.str() + "/";
  const std::string file = write("file", "contents"), tree = path("tree ä");
  EXPECT_OK(velDirectoryCreate(tree + "/a/b", true));
  EXPECT_OK(velFileAppend(tree + "/a/b/日本", "x"));
  VelStFileStatus before, after;
  EXPECT_OK(velFileGetStatus(file, before));
  EXPECT_OK(velFileAppend(there + "taken", "old"));
  EXPECT_EQ(velFileMove(file, there + "taken").getClass(), VelEnErrorClass::IO_ALREADY_IN_USE);
  EXPECT_EQ(velFileMove(tree, there + "taken").getClass(), VelEnErrorClass::IO_ALREADY_IN_USE);
  EXPECT_EQ(velFileMove(tree, there + "none/x").getClass(), VelEnErrorClass::IO_NOT_EXISTENT);
  EXPECT_EQ(contentsOf(there + "taken"), "old");
  EXPECT_OK(velFileMove(file, there + "taken", VEL_OVERWRITE_ALWAYS));
  EXPECT_OK(velFileMove(tree, there + "tree"));
  EXPECT_EQ(contentsOf(there + "taken"), "contents");
  EXPECT_OK(velFileGetStatus(there + "taken", after));
  EXPECT_EQ(before.modified / 1'000'000, after.modified / 1'000'000);
  EXPECT_THAT(listed(place.str()),
              testing::ElementsAre("taken", "tree/", "tree/a/", "tree/a/b/", "tree/a/b/日本"));
  EXPECT_THAT(listed(scratch_), testing::ElementsAre());
  EXPECT_OK(velTreeRemove(place));
}

TEST_F(Files, ReadExactlyUpToTheLimit) {
  for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 70000U, 3000000U}) {
    SCOPED_TRACE(size);
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
    const std::string file = write("file", bytes);
    VelClReturnedText contents;
    for (const std::size_t limit : {size, size + 1, kNoLimit}) {
      EXPECT_OK(velFileRead(file, limit, contents));
      EXPECT_EQ(contents.str(), bytes);
      EXPECT_EQ(contents.c_str()[size], '\0');
    }
    if (size != 0) {
      EXPECT_EQ(velFileRead(file, size - 1, contents).getErrorId(), +FILE_TOO_LARGE);
    }
  }
}

TEST_F(Files, TemporaryEntriesArePrivateAndUnlikeEachOther) {
  std::set<std::string> names;
  for (int round = 0; round < 20; ++round) {
    VelClReturnedText file, directory;
    VelStFileStatus status;
    EXPECT_OK(velTemporaryFileCreate(scratch_, "ä ", file));
    EXPECT_OK(velTemporaryDirectoryCreate(scratch_, "", directory));
    EXPECT_EQ(file.size(), scratch_.size() + 1 + std::strlen("ä ") + 24);
    EXPECT_OK(velFileGetStatus(file, status));
    EXPECT_EQ(status.size, 0U);
    EXPECT_OK(velFileGetStatus(directory, status));
    EXPECT_EQ(status.kind, +VEL_FILE_KIND_DIRECTORY);
    names.insert({file.str(), directory.str()});
  }
  EXPECT_EQ(names.size(), 40U);
}

}  // namespace
