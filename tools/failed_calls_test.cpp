// Every call by which a program opens, reads, writes, stores, closes or renames a file or changes its rights
// fails once, and so does every allocation of a tool. The program must tell so by its exit code, or have done
// its work all the same; a file that it replaces stays as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"

namespace {

namespace fs = std::filesystem;
using Row = std::vector<std::string>;

constexpr const char* kOld = "[A]\no0=old ; comment\n";

class Directory : public vel::test::ScratchDirectory {
 public:
  Directory() {
    write("a.ini", kOld);
    write("b.ini", "[B]\nx=1\n");
    write("dump", vel::test::runChild("veldump", {path("a.ini")}).output);
    write("tour.trc", vel::test::readFile(VEL_TEST_DATA "../trace/test/tour.trc"));
  }
  std::ptrdiff_t entries() const { return std::distance(fs::directory_iterator(path()), {}); }
};

struct Outcome {
  vel::test::ChildResult child;
  std::string written;
  std::ptrdiff_t entries;
};

Outcome run(const Row& row, int failingCall, const vel::test::Variables& more = {}) {
  const Directory directory;
  std::vector<std::string> arguments;
  std::istringstream words(row[1]);
  for (std::string word; words >> word;)
    arguments.push_back(word.starts_with('@') ? directory.path() + word.substr(1) : word);
  // The sanitizer cannot look for leaks in a process that is watched already.
  vel::test::Variables variables = {{"FAILING_TRACE_ACTIVE", "yes"},
                                    {"FAILING_TRACE_BUFSIZE", "1024"},
                                    {"FAILING_TRACE_FILE", directory.path("a.trc")},
                                    {"ASAN_OPTIONS", "detect_leaks=0"}};
  variables.insert(variables.end(), more.begin(), more.end());
  const std::string reads = row.at(4) != "-" ? fs::canonical(directory.path()).string() : "";
  Outcome outcome{vel::test::runChild(row[0], arguments, {variables, "", true, failingCall, reads}), "", 0};
  outcome.written = row[2] == "-" ? outcome.child.output : vel::test::readFile(directory.path(row[2]));
  outcome.entries = directory.entries();
  // Entries of a trace have times, but not in every run the same.
  if (row[0] == "trace_writer") outcome.written = std::to_string(outcome.written.size());
  return outcome;
}

/// The new file is in place before its directory is stored.
bool isKept(const std::string& failedCall, const std::string& written, const Outcome& old,
            const Outcome& whole) {
  return written == old.written || (failedCall == "fsync of a directory" && written == whole.written);
}

/// The names of the calls that failed.
std::string failEach(const Row& row) {
  const Outcome old = run({"velini", "-file @/a.ini -sections", row[2], "", "-"}, 0), whole = run(row, 0);
  EXPECT_EQ(whole.child.exitCode, 0);
  std::string names;
  for (int number = 1;; ++number) {
    const Outcome outcome = run(row, number);
    const vel::test::ChildResult& child = outcome.child;
    if (child.failedCall.empty()) return names;
    names += child.failedCall + ' ';
    SCOPED_TRACE(row[0] + ' ' + row[1] + ": " + names);
    EXPECT_FALSE(child.endedAbnormally);
    if (child.exitCode == 0) {
      EXPECT_EQ(outcome.written, whole.written) << "lost silently";
      // Everything else that went wrong is made good.
      EXPECT_TRUE(child.failedCall != "fchmod" || !row[0].starts_with("vel") ||
                  child.errors != whole.child.errors)
          << "rights lost silently";
      continue;
    }
    EXPECT_EQ(std::to_string(child.exitCode), row.at(child.failedCall == "read" ? 4 : 3));
    EXPECT_TRUE(row[0] == "trace_writer" || row[2] == "-" ||
                isKept(child.failedCall, outcome.written, old, whole));
    EXPECT_TRUE(row[0] == "trace_writer" || outcome.entries == old.entries) << "something is left behind";
    EXPECT_TRUE(!row[0].starts_with("vel") || !child.errors.empty()) << "nothing was said";
  }
}

#if !defined(VEL_SANITIZED)  // a sanitizer has an allocator of its own

/// How a tool may end when an allocation fails: with its work done, out of memory, or with the fault that
/// the lack of memory looked like; never abnormally.
void expectOrderlyEnd(const Row& row, const Outcome& outcome, const Outcome& old, const Outcome& whole) {
  const vel::test::ChildResult& child = outcome.child;
  EXPECT_FALSE(child.endedAbnormally) << child.errors;
  if (child.exitCode == 0) {
    EXPECT_EQ(outcome.written, whole.written) << "lost silently";
    return;
  }
  constexpr int kExitOutOfMemory = 200;
  const bool isTold = child.errors.find(row[0] + ": out of memory\n") != std::string::npos;
  EXPECT_EQ(isTold, child.exitCode == kExitOutOfMemory) << child.errors;
  EXPECT_TRUE(isTold || std::to_string(child.exitCode) == row.at(5)) << child.exitCode << child.errors;
  EXPECT_FALSE(child.errors.empty());
  EXPECT_TRUE(row[2] == "-" || outcome.written == old.written);
  EXPECT_EQ(outcome.entries, old.entries) << "something is left behind";
}

TEST(FailedAllocations, EndToolsInOrder) {
  const fs::path library = fs::path(vel::test::ownProgram()).replace_filename("libfailing_malloc.so");
  ASSERT_TRUE(fs::exists(library));
  const vel::test::ScratchDirectory directory;
  for (const Row& row : vel::test::readTable(VEL_TEST_DATA "test/failed_calls.tsv")) {
    if (row.size() < 6) continue;
    const auto runFailing = [&](const std::string& which) {
      return run(row, 0,
                 {{"LD_PRELOAD", library.string()},
                  {"VEL_FAILING_MALLOC", which},
                  {"VEL_MALLOC_COUNT", directory.path("count")}});
    };
    const Outcome old = run({"velini", "-file @/a.ini -sections", row[2], "", "-"}, 0),
                  whole = runFailing("");
    EXPECT_EQ(whole.child.exitCode, 0) << whole.child.errors;
    const int count = std::stoi(vel::test::readFile(directory.path("count")));
    int outOfMemory = 0;
    for (int number = 1; number <= count; ++number)
      for (const char* const following : {"", "+"}) {
        const std::string which = std::to_string(number) + following;
        SCOPED_TRACE(row[0] + ' ' + row[1] + ": " + which + " of " + std::to_string(count));
        const Outcome outcome = runFailing(which);
        expectOrderlyEnd(row, outcome, old, whole);
        outOfMemory += outcome.child.exitCode == 200 ? 1 : 0;
      }
    EXPECT_GT(outOfMemory, count / 4) << row[0];
  }
}

#endif

TEST(FailedCalls, AreToldAndCostNoFile) {
  std::string names;
  for (const Row& row : vel::test::readTable(VEL_TEST_DATA "test/failed_calls.tsv")) {
    const std::string failed = failEach(row);
    EXPECT_NE(failed.find("write"), std::string::npos) << row[0] << ": no call could be made to fail";
    names += failed;
  }
  for (const char* name :
       {"open", "read", "fsync", "close", "rename", "fchown", "fchmod", "fsync of a directory"})
    EXPECT_NE(names.find(name), std::string::npos) << name;
}

}  // namespace
