// Every call by which a program opens, writes, stores, closes or renames a file fails once. The program must
// tell so by its exit code, or have done its work all the same; a file that it replaces stays as it was.
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

Outcome run(const Row& row, int failingCall) {
  const Directory directory;
  std::vector<std::string> arguments;
  std::istringstream words(row[1]);
  for (std::string word; words >> word;)
    arguments.push_back(word.starts_with('@') ? directory.path() + word.substr(1) : word);
  // The sanitizer cannot look for leaks in a process that is watched already.
  const vel::test::Variables variables = {{"FAILING_TRACE_ACTIVE", "yes"},
                                          {"FAILING_TRACE_BUFSIZE", "1024"},
                                          {"FAILING_TRACE_FILE", directory.path("a.trc")},
                                          {"ASAN_OPTIONS", "detect_leaks=0"}};
  Outcome outcome{vel::test::runChild(row[0], arguments, {variables, "", true, failingCall}), "", 0};
  outcome.written = row[2] == "-" ? outcome.child.output : vel::test::readFile(directory.path(row[2]));
  outcome.entries = directory.entries();
  // Entries of a trace have times, but not in every run the same.
  if (row[0] == "trace_writer") outcome.written = std::to_string(outcome.written.size());
  return outcome;
}

/// The names of the calls that failed.
std::string failEach(const Row& row) {
  const Outcome old = run({"velini", "-file @/a.ini -sections", row[2], ""}, 0), whole = run(row, 0);
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
      continue;
    }
    EXPECT_EQ(std::to_string(child.exitCode), row.at(3));
    EXPECT_TRUE(row[0] == "trace_writer" || row[2] == "-" || outcome.written == old.written);
    EXPECT_TRUE(row[0] == "trace_writer" || outcome.entries == old.entries) << "something is left behind";
    EXPECT_TRUE(!row[0].starts_with("vel") || !child.errors.empty()) << "nothing was said";
  }
}

TEST(FailedCalls, AreToldAndCostNoFile) {
  std::string names;
  for (const Row& row : vel::test::readTable(VEL_TEST_DATA "test/failed_calls.tsv")) {
    const std::string failed = failEach(row);
    EXPECT_NE(failed.find("write"), std::string::npos) << row[0] << ": no call could be made to fail";
    names += failed;
  }
  for (const char* name : {"open", "fsync", "close", "rename"})
    EXPECT_NE(names.find(name), std::string::npos) << name;
}

}  // namespace
