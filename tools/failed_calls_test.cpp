// Every call by which a program opens, reads, writes, stores, closes or renames a file or changes its rights
// fails once, and so does every allocation of a tool. The program must report the failure by its exit code,
// or have done its work nevertheless; after a failure the file that it replaces is the old one. Every write
// is short once, which must not matter.
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace {

namespace fs = std::filesystem;
using Row = std::vector<std::string>;

/// The names and contents of the files that the programs read.
std::map<std::string, std::string> makeFiles() {
  const vel::test::ScratchDirectory directory;
  const char* const settings = "[A]\no0=old value ; comment\n";
  directory.write("a.ini", settings);
  return {{"a.ini", settings},
          {"b.ini", "[B]\nx=1\n"},
          {"dump", vel::test::runChild("veldump", {directory.path("a.ini")}).output},
          {"a.mc", "MessageId=1\nLanguage=English\na\n.\n"},
          {"a.po", "msgctxt \"1\"\nmsgid \"a\"\nmsgstr \"b\"\n"},
          {"catalog.DLL", vel::test::readFile("small_catalog.DLL")},
          {"tour.trc", vel::test::readFile(VEL_TEST_DATA "../trace/test/tour.trc")}};
}

class Directory : public vel::test::ScratchDirectory {
 public:
  Directory() {
    static const auto files = makeFiles();
    for (const auto& [name, contents] : files) write(name, contents);
  }
  std::ptrdiff_t entries() const { return std::distance(fs::directory_iterator(path()), {}); }
};

struct Outcome {
  vel::test::ChildResult child;
  std::string written;  ///< to the file, or to standard output if the program succeeded
  std::ptrdiff_t entries;
};

std::vector<std::string> argumentsOf(const Row& row, const Directory& directory) {
  std::vector<std::string> arguments;
  std::istringstream words(row[1]);
  for (std::string word; words >> word;)
    arguments.push_back(word.starts_with('@') ? directory.path() + word.substr(1) : word);
  return arguments;
}

/// Returns how many of the numbers 0, 1, 2, ... the trace contains one after the other.
std::uint32_t entriesInOrder(std::string_view trace) {
  std::uint32_t number = 0;
  char bytes[sizeof number] = {};
  for (auto at = trace.find({bytes, sizeof bytes}); at != trace.npos;
       at = trace.find({bytes, sizeof bytes}, at)) {
    ++number;
    std::memcpy(bytes, &number, sizeof bytes);
  }
  return number;
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
  // The times in a trace differ between runs.
  if (row[0] == "trace_writer")
    written = std::to_string(written.size()) + ' ' + std::to_string(entriesInOrder(written));
  return {child, written, directory.entries()};
}

/// A program that succeeds has done its work; one that fails exits with this code, leaves its files alone,
/// and reports an error.
void expectSuccessOrOldFiles(const Row& row, const Outcome& outcome, const Outcome& whole,
                             const std::string& exitCode) {
  const auto& [child, written, entries] = outcome;
  EXPECT_FALSE(child.endedAbnormally) << child.errors;
  if (child.exitCode == 0) {
    EXPECT_EQ(written, whole.written) << "data is lost without an error";
    return;
  }
  EXPECT_EQ(std::to_string(child.exitCode), exitCode) << child.errors;
  // A trace loses the entries that could not be written.
  if (row[0] == "trace_writer") return;
  const Directory untouched;
  const std::string old = vel::test::readFile(untouched.path(row[2]));
  // The new file is in place before its directory is stored.
  const bool isInPlace = child.failedCall == "fsync of a directory";
  EXPECT_THAT(written, testing::AnyOf(old, isInPlace ? whole.written : old));
  EXPECT_EQ(entries, untouched.entries()) << "an unfinished file is left";
  if (row[0] == "ini_saver") return;
  EXPECT_NE(child.errors, "");
}

void shortenEachWrite(const Row& row, const Outcome& whole) {
  for (int number = 1;; ++number) {
    const Outcome outcome = run(row, -number);
    if (outcome.child.failedCall.empty()) return;
    SCOPED_TRACE(row[0] + ' ' + row[1] + ": write " + std::to_string(number));
    EXPECT_EQ(outcome.child.exitCode, 0) << outcome.child.errors;
    EXPECT_EQ(outcome.written, whole.written);
  }
}

/// Returns the names of the calls that failed.
std::string failEach(const Row& row) {
  const Outcome whole = run(row, 0);
  EXPECT_EQ(whole.child.exitCode, 0);
  shortenEachWrite(row, whole);
  std::string names;
  for (int number = 1;; ++number) {
    const Outcome outcome = run(row, number);
    const std::string& failedCall = outcome.child.failedCall;
    if (failedCall.empty()) return names;
    names += failedCall + ' ';
    SCOPED_TRACE(row[0] + ' ' + row[1] + ": " + names);
    expectSuccessOrOldFiles(row, outcome, whole, row.at(failedCall == "read" ? 4 : 3));
    // The tools warn about rights that they could not keep.
    if (failedCall != "fchmod" || outcome.child.exitCode != 0 || row[0] == "ini_saver") continue;
    EXPECT_NE(outcome.child.errors, whole.child.errors) << "rights are lost without a warning";
  }
}

#if !defined(VEL_SANITIZED)  // a sanitizer replaces the allocator itself

TEST(FailedAllocations, MakeToolsFailInOrder) {
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
        const bool isReported = outcome.child.errors.find(row[0] + ": out of memory\n") != std::string::npos;
        expectSuccessOrOldFiles(row, outcome, whole, isReported ? "200" : row[5]);
        outOfMemory += outcome.child.exitCode == 200 ? 1 : 0;
      }
    EXPECT_GT(outOfMemory, count / 4) << row[0];
  }
}

#endif

TEST(FailedCalls, AreReportedAndLeaveTheOldFile) {
  std::string names;
  for (const Row& row : vel::test::readTable(VEL_TEST_DATA "test/failed_calls.tsv")) {
    const std::string failed = failEach(row);
    EXPECT_THAT(failed, testing::HasSubstr("write")) << row[0] << ": no call has failed";
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
