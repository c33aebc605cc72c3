// Every call by which a program opens, reads, writes, stores, closes or renames a file or changes its rights
// fails once, and so does every allocation of a tool. The program must tell so by its exit code, or have done
// its work all the same; a file that it replaces stays as it was.
#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "platform/test/child_process.h"
#include "platform/test/posix/processes.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"

namespace {

namespace fs = std::filesystem;
using Row = std::vector<std::string>;

class Directory : public vel::test::ScratchDirectory {
 public:
  Directory() {
    write("a.ini", "[A]\no0=old value ; comment\n");
    write("b.ini", "[B]\nx=1\n");
    write("dump", vel::test::runChild("veldump", {path("a.ini")}).output);
    write("tour.trc", vel::test::readFile(VEL_TEST_DATA "../trace/test/tour.trc"));
  }
  std::ptrdiff_t entries() const { return std::distance(fs::directory_iterator(path()), {}); }
};

struct Outcome {
  vel::test::ChildResult child;
  std::string written;  ///< output counts only if all went well
  std::ptrdiff_t entries;
};

std::vector<std::string> argumentsOf(const Row& row, const Directory& directory) {
  std::vector<std::string> arguments;
  std::istringstream words(row[1]);
  for (std::string word; words >> word;)
    arguments.push_back(word.starts_with('@') ? directory.path() + word.substr(1) : word);
  return arguments;
}

Outcome run(const Row& row, int failingCall, const vel::test::Variables& more = {}) {
  const Directory directory;
  // The sanitizer cannot look for leaks in a process that is watched already.
  vel::test::Variables variables = {{"FAILING_TRACE_ACTIVE", "yes"},
                                    {"FAILING_TRACE_BUFSIZE", "1024"},
                                    {"FAILING_TRACE_FILE", directory.path("a.trc")},
                                    {"ASAN_OPTIONS", "detect_leaks=0"}};
  variables.insert(variables.end(), more.begin(), more.end());
  const std::string reads = row.at(4) != "-" ? fs::canonical(directory.path()).string() : "";
  const auto child =
      vel::test::runChild(row[0], argumentsOf(row, directory), {variables, "", true, failingCall, reads});
  std::string written = vel::test::readFile(directory.path(row[2]));
  if (row[2] == "-" && child.exitCode == 0) written = child.output;
  // Entries of a trace have times, but not in every run the same.
  if (row[0] == "trace_writer") written = std::to_string(written.size());
  return {child, written, directory.entries()};
}

/// The names of the calls that failed.
std::string failEach(const Row& row) {
  const Directory untouched;
  const Outcome whole = run(row, 0);
  EXPECT_EQ(whole.child.exitCode, 0);
  std::string names;
  for (int number = 1;; ++number) {
    const auto [child, written, entries] = run(row, number);
    if (child.failedCall.empty()) return names;
    names += child.failedCall + ' ';
    SCOPED_TRACE(row[0] + ' ' + row[1] + ": " + names);
    EXPECT_FALSE(child.endedAbnormally);
    if (child.exitCode == 0) {
      EXPECT_EQ(written, whole.written) << "lost silently";
      // Everything else that went wrong is made good.
      if (child.failedCall != "fchmod" || row[0] == "ini_saver") continue;
      EXPECT_NE(child.errors, whole.child.errors) << "rights lost silently";
      continue;
    }
    EXPECT_EQ(std::to_string(child.exitCode), row.at(child.failedCall == "read" ? 4 : 3));
    if (row[0] == "trace_writer") continue;
    // The new file is in place before its directory is stored.
    const std::string old = vel::test::readFile(untouched.path(row[2]));
    const bool isInPlace = child.failedCall == "fsync of a directory";
    EXPECT_THAT(written, testing::AnyOf(old, isInPlace ? whole.written : old));
    EXPECT_EQ(entries, untouched.entries()) << "something is left behind";
    if (row[0] == "ini_saver") continue;
    EXPECT_NE(child.errors, "") << "nothing was said";
  }
}

#if !defined(VEL_SANITIZED)  // a sanitizer has an allocator of its own

/// How a tool may end when an allocation fails: with its work done, out of memory, or with the fault that
/// the lack of memory looked like; never abnormally.
void expectOrderlyEnd(const Row& row, const Outcome& outcome, const Outcome& whole) {
  const auto& [child, written, entries] = outcome;
  EXPECT_FALSE(child.endedAbnormally) << child.errors;
  if (child.exitCode == 0) {
    EXPECT_EQ(written, whole.written) << "lost silently";
    return;
  }
  const bool isTold = child.errors.find(row[0] + ": out of memory\n") != std::string::npos;
  EXPECT_EQ(std::to_string(child.exitCode), isTold ? "200" : row.at(5)) << child.errors;
  EXPECT_NE(child.errors, "");
  const Directory untouched;
  EXPECT_EQ(written, vel::test::readFile(untouched.path(row[2])));
  EXPECT_EQ(entries, untouched.entries()) << "something is left behind";
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
    const Outcome whole = runFailing("");
    EXPECT_EQ(whole.child.exitCode, 0) << whole.child.errors;
    const int count = std::stoi(vel::test::readFile(directory.path("count")));
    int outOfMemory = 0;
    for (int number = 1; number <= count; ++number)
      for (const char* const following : {"", "+"}) {
        const std::string which = std::to_string(number) + following;
        SCOPED_TRACE(row[0] + ' ' + row[1] + ": " + which + " of " + std::to_string(count));
        const Outcome outcome = runFailing(which);
        expectOrderlyEnd(row, outcome, whole);
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
    EXPECT_THAT(failed, testing::HasSubstr("write")) << row[0] << ": no call could be made to fail";
    names += failed;
  }
  for (const char* name :
       {"open", "read", "fsync", "close", "rename", "fchown", "fchmod", "fsync of a directory"})
    EXPECT_THAT(names, testing::HasSubstr(name));
}

// The limit would end the process by a signal if the tools did not ignore that.
TEST(FileSizeLimit, IsToldByExitCodesOfTools) {
  for (const Row& row : vel::test::readTable(VEL_TEST_DATA "test/failed_calls.tsv")) {
    if (row.size() < 6) continue;
    const Directory directory, untouched;
    const auto runLimited = [&] {
      const auto child = vel::test::runChild(row[0], argumentsOf(row, directory));
      return child.endedAbnormally ? -1 : child.exitCode;
    };
    EXPECT_EQ(std::to_string(vel::test::exitCodeOf(vel::test::limitFileSizes, runLimited)), row[3])
        << row[0] << ' ' << row[1];
    // For "-", standard output, both are empty.
    EXPECT_EQ(vel::test::readFile(directory.path(row[2])), vel::test::readFile(untouched.path(row[2])));
    EXPECT_EQ(directory.entries(), untouched.entries()) << "something is left behind";
  }
}

}  // namespace
