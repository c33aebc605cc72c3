// Traces under attack by other users, who set environment variables and plant files; and traces of forked
// children, which must not save the entries of their parents.
#include "platform/test/posix/processes.h"
#include "trace/test/trace_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kOtherUser = "65534";

/// A copy of settings_program, and planted files for the environment variables to lead it to.
class PrivilegedProgram : public testing::Test {
 protected:
  PrivilegedProgram() {
    const fs::path programs = fs::path(vel::test::ownProgram()).parent_path();
    chmod(directory_.path().c_str(), 0755);
    fs::create_directory(planted_);
    fs::copy_file(programs / "settings_program", program_);
    fs::copy_file(programs / "libsample_library.so", planted_ + "/planted_library.so");
    fs::copy_file(programs / "qammsg50.DLL", planted_ + "/planted_catalog.dll");
    fs::copy_file(programs / "settings_program", planted_ + "/planted_program");
  }

  /// Runs the program as this user or as another one. Returns its output, and whether the file that its
  /// variables name for the trace was kept.
  std::string run(mode_t mode, bool byOther) {
    const std::string victim = directory_.write("victim", "kept");
    chmod(program_.c_str(), mode);
    vel::test::ChildOptions options{.environment = {{"UNIT_TRACE_FILE", victim}}};
    for (const char* name : {"UNIT_TRACE_ACTIVE", "UNIT_TRACE_AUTOCLEAR", "VEL_CONSOLEUI_QUOTE_STRINGS",
                             "VEL_NEWPROCESS_USEPATH"})
      options.environment.emplace_back(name, "yes");
    for (const char* name : {"TMP", "TEMP", "TMPDIR", "PATH"})
      options.environment.emplace_back(name, planted_);
    const vel::test::ChildResult child =
        byOther ? vel::test::runChild("settings_program", {kOtherUser, program_}, options)
                : vel::test::runChild(program_, {}, options);
    return child.output + (vel::test::readFile(victim) == "kept" ? "kept" : "changed");
  }

  vel::test::ScratchDirectory directory_;
  const std::string program_ = directory_.path("program"), planted_ = directory_.path("planted");
};

TEST_F(PrivilegedProgram, IgnoresTheVariablesOfItsCaller) {
  const std::string own = "privileged no\ntraced yes\nscratch " + planted_ +
                          "\nquoted yes\nprogram yes\nlibrary yes\ncatalog yes\nasked yes\nchanged";
  const std::string privileged =
      "privileged yes\ntraced no\nscratch /tmp\nquoted no\nprogram no\nlibrary no\ncatalog no\nasked "
      "yes\nkept";
  EXPECT_EQ(run(0755, false), own);
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  const std::string setuid = run(04755, true);
  if (!setuid.starts_with("privileged yes")) GTEST_SKIP() << "the file system ignores set-user-ID bits";
  EXPECT_EQ(setuid, privileged);
  // The other user need not be able to read the library where it was built.
  if (run(0755, true).starts_with("privileged no")) {
    EXPECT_EQ(run(02755, true), privileged);
  }
}

/// A trace in its default file, in a directory where others can create files.
class DefaultTraceFile : public testing::Test {
 protected:
  /// Traces an entry; returns the error number that verbose mode prints for the file, or "".
  std::string trace(const char* autoclear = "no") {
    const vel::test::ChildResult child =
        vel::test::runChild("settings_program", {},
                            {.environment = {{"UNIT_TRACE_ACTIVE", "yes"},
                                             {"UNIT_TRACE_VERBOSE", "yes"},
                                             {"UNIT_TRACE_AUTOCLEAR", autoclear},
                                             {"TMP", directory_.path()}}});
    EXPECT_EQ(child.exitCode, 0);
    EXPECT_THAT(child.output, testing::HasSubstr("traced yes")) << "the program must continue";
    const std::string start = "[VEL: TRACE: could not open: " + file_ + " (errno: ";
    const std::size_t at = child.output.find(start);
    if (at == std::string::npos) return "";
    return child.output.substr(at + start.size(), child.output.find(')', at) - at - start.size());
  }

  vel::test::ScratchDirectory directory_;
  const std::string file_ = directory_.path("unittrace.trc"), victim_ = directory_.write("victim", "kept");
};

TEST_F(DefaultTraceFile, IsNotWrittenThroughPlantedLinks) {
  chmod(directory_.path().c_str(), 01777);
  EXPECT_EQ(trace(), "");
  const auto size = fs::file_size(file_);
  EXPECT_EQ(trace(), "");
  EXPECT_EQ(fs::file_size(file_), 2 * size) << "the second entry must be appended";
  // platform/posix/append_test.cpp tests the other cases that are refused.
  fs::remove(file_);
  fs::create_symlink("victim", file_);
  EXPECT_EQ(trace(), std::to_string(ELOOP));
  EXPECT_EQ(trace("yes"), "") << "autoclear must replace the planted link by a file";
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file_)));
  EXPECT_EQ(vel::test::readFile(victim_), "kept");
}

TEST_F(DefaultTraceFile, CanBeAPipeWithoutBlockingTheFormatter) {
  ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
  VelClTraceEnvironment environment("unit", nullptr, true);
  environment.setFilename(file_.c_str());
  std::ostringstream text;
  EXPECT_THROW(VelClTraceFormatter(environment, nullptr).format(text), VelClException);
}

/// A child goes on in a file of its own: its name ends in the number of the child.
class TraceOfForks : public vel::test::TraceTest {
 protected:
  static void trace(const char* origin) {
    velTraceDump(VelEnTraceDetail::LOW, 1, VelEnTraceDataType::DATA_NONE, origin, "", "", 0);
  }
  /// Runs the action in a child, which then deletes its trace instance and exits.
  template <typename Action>
  static void inChild(Action action) {
    const auto actAndDelete = [&action] {
      action();
      velTraceDeleteInstance();
      return true;
    };
    EXPECT_EQ(vel::test::statusOfCopy(actAndDelete), 0);
  }
  /// Returns the result of entries() for one entry of each function.
  static std::string entriesOf(const std::vector<std::string>& functions) {
    std::string all;
    for (const std::string& function : functions)
      all += line(function, VelEnTraceDetail::LOW, VelEnTraceDataType::DATA_NONE);
    return all;
  }
  /// Returns the names of the files of children, each with the first process number in the file.
  std::map<std::string, std::string> filesOfChildren() {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory_.path())) {
      const std::string name = entry.path().filename().string();
      if (!name.starts_with("unit.trc.")) continue;
      vel::test::RecordHead head{};
      std::memcpy(&head, vel::test::readFile(entry.path().string()).data(), sizeof head);
      files[name] = "unit.trc." + std::to_string(head.process);
    }
    return files;
  }
};

TEST_F(TraceOfForks, SavesEveryEntryOnce) {
  start();
  trace("parent1");
  inChild([] {});
  inChild([this] {
    trace("child1");
    inChild([] { trace("grandchild"); });
    trace("child2");
    velTraceFlush();
    file_ = VelClTraceInstance::getSingletonInstance()->getEnvironment().getFilename().getAsCString();
    if (entries() != entriesOf({"child1", "child2"})) _exit(2);
  });
  trace("parent2");
  velTraceDeleteInstance();
  EXPECT_EQ(entries(), entriesOf({"parent1", "parent2"}));
  const auto files = filesOfChildren();
  EXPECT_THAT(files, testing::SizeIs(2));
  for (const auto& [name, ofProcess] : files) EXPECT_TRUE(name.ends_with(ofProcess.substr(8))) << name;
}

TEST_F(TraceOfForks, PutTheirNumbersInThePlaceOfTheParents) {
  set("FILE", directory_.path("%p.trc"));
  start();
  trace("parent");
  inChild([this] {
    trace("child");
    velTraceFlush();
    file_ = directory_.path(std::to_string(getpid()) + ".trc");
    if (entries() != entriesOf({"child"})) _exit(2);
  });
  velTraceDeleteInstance();
  file_ = directory_.path(std::to_string(getpid()) + ".trc");
  EXPECT_EQ(entries(), entriesOf({"parent"}));
}

TEST_F(TraceOfForks, ChildrenOfThreadsGoOnAfterAWrapOfTheRing) {
  start({{"BUFSIZE", "4"}});
  const std::vector<std::string> traced(1000, "child");
  std::vector<std::string> expected(150, "parent");
  for (const std::string& function : expected) trace(function.c_str());  // wraps within an entry
  std::thread([&] {
    trace("other");
    inChild([&] {
      for (const std::string& function : traced) trace(function.c_str());
      velTraceFlush();
      file_ = VelClTraceInstance::getSingletonInstance()->getEnvironment().getFilename().getAsCString();
      if (entries() != entriesOf(traced)) _exit(2);
    });
  }).join();
  velTraceDeleteInstance();
  expected.emplace_back("other");
  EXPECT_EQ(entries(), entriesOf(expected));
}

}  // namespace
