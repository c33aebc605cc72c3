// Every system call of the functions of vel_files.h fails once, with several errors, and every write is short
// once. After a failure the files are the old ones; nothing unfinished and no open descriptor is left.
#include <sys/ptrace.h>

#include "platform/test/posix/failing_calls.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"
#include "vel_include/vel_files.h"

namespace {

namespace fs = std::filesystem;
using Contents = std::map<std::string, std::string>;

/// Files before an operation, on two file systems if there are two.
class Place {
 public:
  Place() {
    std::error_code error;
    const bool hasOther = fs::exists("/dev/shm", error);
    char name[] = "/dev/shm/failed XXXXXX";
    other_ = hasOther && mkdtemp(name) != nullptr ? name : scratch_.path("other");
    fs::create_directories(other_);
    scratch_.write("old", "old contents");
    scratch_.write("source", "new contents");
    scratch_.write("tree/a/b", "b");
    scratch_.write("tree/c", "c");
    fs::create_symlink("nowhere", scratch_.path("tree/link"));
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() { fs::remove_all(other_); }

  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  std::string other(const std::string& entry) const { return other_ + "/" + entry; }
  /// Contents by relative path; empty files count as missing.
  Contents contents() const {
    Contents found;
    for (const std::string& top : {scratch_.path(), other_})
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top))
        if (!entry.is_directory() && !(entry.is_regular_file() && entry.file_size() == 0))
          found[entry.path().string().substr(top.size())] +=
              (top == other_ ? "other: " : "") +
              (entry.is_symlink() ? "link" : vel::test::readFile(entry.path().string()));
    return found;
  }

 private:
  const vel::test::ScratchDirectory scratch_;
  std::string other_;
};

VelClStatus walkAll(const std::string& top) {
  VelClFileWalk walk;
  VelStFileWalkOptions options{};
  options.followsLinks = true;
  if (VelClStatus status = walk.open(top, options); !status.isOk()) return status;
  VelStFileStatus status;
  VelClStatus first;
  while (walk.next()) {
    VelClStatus failure = walk.isOk() ? walk.getStatus(status) : walk.getFailure();
    if (first.isOk() && !failure.isOk()) first = failure;
  }
  return first;
}

struct Operation {
  const char* name;
  std::function<VelClStatus(const Place&)> run;
  bool isAllOrNothing = true;
};

const Operation kOperations[] = {
    {"replace", [](const Place& at) { return velFileReplace(at.path("old"), "new"); }},
    {"replace nothing", [](const Place& at) { return velFileReplace(at.path("new"), "new"); }},
    {"append", [](const Place& at) { return velFileAppend(at.path("old"), " and new"); }},
    {"append to nothing", [](const Place& at) { return velFileAppend(at.path("new"), "new"); }},
    {"copy", [](const Place& at) { return velFileCopy(at.path("source"), at.path("new")); }},
    {"copy over",
     [](const Place& at) {
       return velFileCopy(at.path("source"), at.path("old"), VEL_OVERWRITE_ALWAYS, true);
     }},
    {"copy far", [](const Place& at) { return velFileCopy(at.path("source"), at.other("new")); }},
    {"move", [](const Place& at) { return velFileMove(at.path("source"), at.path("new")); }},
    {"move over",
     [](const Place& at) { return velFileMove(at.path("source"), at.path("old"), VEL_OVERWRITE_ALWAYS); }},
    {"move far", [](const Place& at) { return velFileMove(at.path("source"), at.other("new")); }},
    {"move tree", [](const Place& at) { return velFileMove(at.path("tree"), at.other("tree")); }, false},
    {"read",
     [](const Place& at) {
       VelClReturnedText text;
       VelClStatus status = velFileRead(at.path("old"), 1000, text);
       return status.isOk() && text.str() != "old contents" ? VelClStatus(1, VelEnErrorClass::LOGIC) : status;
     }},
    {"remove", [](const Place& at) { return velFileRemove(at.path("source")); }},
    {"remove tree", [](const Place& at) { return velTreeRemove(at.path("tree")); }, false},
    {"walk", [](const Place& at) { return walkAll(at.path("tree")); }},
    {"create", [](const Place& at) { return velDirectoryCreate(at.path("a/b/c"), true); }},
    {"temporary",
     [](const Place& at) {
       VelClReturnedText name;
       return velTemporaryDirectoryCreate(at.path("tree"), "x", name);
     }},
};

/// Returns the lowest descriptor that is free, by a call that never fails here.
int freeDescriptor() {
  const int descriptor = dup(STDIN_FILENO);
  close(descriptor);
  return descriptor;
}

enum Result { kDone, kFailed, kLeaked };

/// Runs the operation in a copy of this process in which one call fails.
int runFailing(const Operation& operation, const Place& place, int number, int error, std::string& name) {
  const pid_t child = fork();
  if (child == 0) {
    const int before = freeDescriptor();
    ptrace(PTRACE_TRACEME);
    raise(SIGSTOP);
    const bool isDone = operation.run(place).isOk();
    _exit(freeDescriptor() != before ? kLeaked : isDone ? kDone : kFailed);
  }
  const std::string top = fs::path(place.path("old")).parent_path().string();
  const int status = vel::test::waitFailingCall(child, number, top, name, {error, true});
  EXPECT_TRUE(WIFEXITED(status)) << "ended by a signal";
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void expectOldOrNew(const Operation& operation, const std::string& failed, int result, const Contents& old,
                    const Contents& now, const Contents& whole) {
  // A call that closes is not made, so its descriptor stays open.
  EXPECT_TRUE(result == kDone || result == kFailed || (result == kLeaked && failed == "close")) << result;
  if (result == kDone) {
    EXPECT_EQ(now, whole);
  } else if (operation.isAllOrNothing && result == kFailed) {
    // The new file is in place before its directory is stored, and before what was moved is removed.
    const bool isInPlace = failed == "fsync of a directory" || failed == "open";
    const bool hasAllOld = std::includes(now.begin(), now.end(), old.begin(), old.end());
    EXPECT_TRUE(now == old || (isInPlace && now == whole) || (failed == "remove" && hasAllOld))
        << testing::PrintToString(now);
  }
}

/// Returns the names of the calls that failed.
std::string failEachCall(const Operation& operation, int error) {
  Contents whole;
  {
    const Place place;
    const VelClStatus status = operation.run(place);
    EXPECT_TRUE(status.isOk()) << operation.name << status.getText();
    whole = place.contents();
  }
  std::string names;
  for (int number = 1; number < 1000; ++number) {
    const Place place;
    const Contents old = place.contents();
    std::string failed;
    const int result = runFailing(operation, place, number, error, failed);
    if (failed.empty()) return names;
    names += failed + ' ';
    SCOPED_TRACE(std::string(operation.name) + ", error " + std::to_string(error) + ": " + names);
    expectOldOrNew(operation, failed, result, old, place.contents(), whole);
  }
  ADD_FAILURE() << operation.name << " does not end";
  return names;
}

TEST(FailedFileCalls, LeaveTheOldFilesAndNothingElse) {
  std::string names;
  for (const Operation& operation : kOperations)
    for (const int error : {EIO, ENOSPC, EINTR}) names += failEachCall(operation, error);
  for (const char* name : {"open", "read", "write", "fsync", "close", "rename", "copy_file_range", "status",
                           "list", "remove", "create directory", "fsync of a directory"})
    EXPECT_THAT(names, testing::HasSubstr(name));
}

TEST(FailedFileCalls, ShortWritesDoNotMatter) {
  for (const Operation& operation : kOperations)
    for (int number = 1;; ++number) {
      const Place place;
      std::string failed;
      const int result = runFailing(operation, place, -number, EIO, failed);
      if (failed.empty()) break;
      EXPECT_EQ(result, kDone) << operation.name;
    }
}

}  // namespace
