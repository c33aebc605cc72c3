// Tests that operations survive an out-of-memory condition. Each scenario runs with its first allocation
// failing, then with its second, and so on until none fails; once with that single failure, once with all
// that follow. Each failure must be thrown as the library's exception, leak no block, and leave existing
// objects as they were.
#include "codepage/test/strict_run.h"
#include "inifile/test/ini_fixture.h"
#include "platform/test/watched_memory.h"
#include "vel_include/vel.h"

namespace {

vel::test::WatchedMemory* memory = nullptr;
int failurePoint = 0;  ///< the number of the allocation that fails in each attempt of a scenario
bool anyFailed = false;

/// Runs `operation` and returns whether it completed. It must complete exactly when no allocation failed.
template <typename Operation>
bool attempt(Operation operation) {
  bool completed = false;
  memory->allocations = 0;
  memory->failsFrom = failurePoint;
  try {
    operation();
    completed = true;
    EXPECT_LT(memory->allocations, failurePoint) << "a failure was hidden";
  } catch (const VelClExceptionFatal& exception) {
    EXPECT_EQ(exception.getId(), static_cast<unsigned long>(MEMMGR_USER_OUT_OF_MEMORY));
    EXPECT_EQ(exception.getClass(), VelEnErrorClass::OUT_OF_MEMORY);
  }
  memory->failsFrom = 0;
  anyFailed = anyFailed || !completed;
  return completed;
}

/// Runs `scenario` until none of its attempts fails any more. At least `least` of its runs must fail.
template <typename Scenario>
void exhaust(const char* name, Scenario scenario, int least = 1) {
  for (const bool once : {true, false}) {
    memory->onlyOneFails = once;
    anyFailed = true;
    for (failurePoint = 1; anyFailed && failurePoint < 500; ++failurePoint) {
      const auto before = memory->live;
      anyFailed = false;
      EXPECT_NO_THROW(scenario()) << name;
      EXPECT_TRUE(memory->live == before) << name << ", allocation " << failurePoint;
    }
    EXPECT_FALSE(anyFailed) << name << " never ends";
    EXPECT_GE(failurePoint - 2, least) << name;
  }
}

class FailingAllocation : public testing::Test {
 protected:
  void SetUp() override { memory = &memory_; }

 private:
  vel::test::WatchedMemory memory_;
  vel::test::Streams streams_;
};

const std::string kLong(100, 'x');
const char* const kTable[] = {"", "name", "%1", "plain"};
const char* const kArguments[] = {"tool", "-a", "b", "-quiet"};
constexpr const char* kNull = nullptr;

void convertStrictly(int source, int target) {
  VelClStrictConversion conversion{VelClCCSID(source), VelClCCSID(target)};
  EXPECT_EQ(convertInPieces(conversion, "\x40", {}).faults, "clean");
}

TEST_F(FailingAllocation, IsReportedBySingleOperations) {
  const std::pair<const char*, void (*)()> operations[] = {
      {"search", [] { const VelClStringSearch search(kLong.c_str(), true); }},
      {"plain blocks", [] { velFree(velCalloc(2, 8)); }},
      {"strict single bytes", [] { convertStrictly(37, 850); }},
      {"strict double bytes", [] { convertStrictly(930, 943); }},
      {"saving", [] { const VelClIniFileSave file("absent.ini"); }},
      {"environment", [] { const VelClTraceEnvironment environment("shortage", nullptr, true); }},
      {"library", [] { velDllProcLoaderClose(velDllProcLoaderOpen("qamc5032")); }},
      {"absent library", [] { velDllProcLoaderClose(velDllProcLoaderOpen("absent")); }},
      {"process", [] { const VelClNewAsyncProcess process(VelClExeFile("absent")); }},
      {"catalog", [] { const VelClMessageCatalog catalog(VelClFilename("small_catalog")); }},
      {"ANSI catalog", [] { const VelClMessageCatalog catalog(VelClFilename("small_ansi_catalog")); }},
      {"own catalog", [] { const VelClMessageCatalog catalog; }},
      {"proxy", [] { const VelClMessageCatalogProxy proxy(VelClFilename("small_catalog")); }},
      {"proxy of table", [] { const VelClMessageCatalogProxy proxy(VelClFilename("absent"), kTable, 4); }},
      {"handle", [] { velMsgCatClose(velMsgCatOpen("small_catalog")); }},
      {"no handle", [] { EXPECT_EQ(velMsgCatOpen("absent"), nullptr); }},
      {"handle of table", [] { velMsgCatClose(velMsgCatOpenOrUseStringTable("absent", kTable, 4)); }},
      {"cursor", [] { VelClMessageCatalogCursor(VelClMessageCatalog()).setToFirst(); }},
      {"attached",
       [] {
         const VelClMessageCatalog library;
         velMsgCatClose(velMsgCatOpenAttach(&library));
       }},
      {"trace",
       [] {
         velTraceCreateInstance("shortage", nullptr);
         velTraceDeleteInstance();
       }},
      {"interface", [] { const VelClConsoleUI ui(4, kArguments); }},
      {"interface without words", [] { const VelClConsoleUI ui(4, kArguments, VelClFilename("absent"), 0); }},
  };
  for (const auto& [name, run] : operations) exhaust(name, [run = run] { attempt(run); });
}

TEST_F(FailingAllocation, KeepsVariablesAndCommandLines) {
  exhaust("bits", [] {
    VelClBitArray array(9);
    array.set(8);
    const bool assigned = attempt([&] { array = VelClBitArray(100); });
    EXPECT_EQ(array.getNumOfBits(), assigned ? 100U : 9U);
    EXPECT_EQ(array.test(8), !assigned);
  });
  exhaust("variable", [] {
    VelClEnvironmentVariable variable("VEL_TEST_SHORTAGE", "old");
    const bool set = attempt([&] { EXPECT_TRUE(variable.setNewValue(kLong.c_str())); });
    const std::string before = variable.getValue();
    EXPECT_EQ(before, set ? kLong : "old");
    const bool appended = attempt([&] { EXPECT_TRUE(variable.appendValue(kLong.c_str())); });
    EXPECT_EQ(std::string(variable.getValue()), appended ? before + kLong : before);
    attempt([&] { VelClEnvironmentVariable("VEL_TEST_SHORTAGE", kLong.c_str()); });
    attempt([&] { variable.resetValue(); });
  });
  VelClEnvironmentVariable("VEL_TEST_SHORTAGE", nullptr);
  const auto launch = [] {
    VelClNewSyncProcess process(VelClExeFile("vel_no_such_program"));
    const bool added = attempt([&] { process.addArgument(kLong.c_str()); });
    EXPECT_EQ(process.getArgumentCount(), added ? 2U : 1U);
    const bool launched = attempt([&] { EXPECT_FALSE(process.launch()); });
    EXPECT_EQ(process.getResult(), launched ? 2U : 0U);
    EXPECT_EQ(process.getLastError().getErrorId(), static_cast<unsigned long>(PROCESS_COULD_NOT_LAUNCH));
  };
  exhaust("launch", launch, 3);
}

TEST_F(FailingAllocation, KeepsCursorsAndTextsOfCatalogs) {
  exhaust("step", [] {
    const VelClMessageCatalog catalog;
    VelClMessageCatalogCursor cursor(catalog);
    cursor.setToFirst();
    cursor.setToNext();
    const unsigned int language = cursor.getLanguage();
    const bool moved = attempt([&] { cursor.setToNext(); });
    EXPECT_TRUE(cursor.isValid());
    EXPECT_EQ(cursor.getId(), moved ? 2U : 1U);
    EXPECT_NE(cursor.getLanguage() == language, moved);
    EXPECT_EQ(std::string(cursor.getAsCString()).starts_with("Percent:"), moved);
  });
  exhaust("proxy's text", [] {
    const char* const variables[10] = {kLong.c_str()};
    VelClMessageCatalogProxy proxy(VelClFilename("absent"), kTable, std::size(kTable));
    const char* text = proxy.getMessage(3);
    const bool got = attempt([&] { proxy.getMessage(2, variables); });
    EXPECT_EQ(std::string(text), got ? kLong : "plain");
    attempt([&] { EXPECT_TRUE(proxy.isValidMessageId(2)); });
  });
  exhaust("handle's texts", [] {
    VelMsgCatHandle handle = velMsgCatOpen("qammsg50");
    attempt([&] { velMsgCatGetVar(handle, 2, kLong.c_str(), kNull); });
    attempt([&] { velMsgCatGet(handle, 2); });
    attempt([&] { velMsgCatIsValid(handle, 2); });
    velMsgCatClose(handle);
  });
}

TEST_F(FailingAllocation, KeepsMessages) {
  const VelClMessageCatalog table(kTable, std::size(kTable));
  const VelClMessageCatalog library;
  const VelClMessageCatalog absent(VelClFilename((kLong + ".DLL").c_str()));
  for (const VelClMessageCatalog* catalog : {&table, &library, &absent})
    exhaust("text", [&] {
      attempt([&] { const VelClMessage message(*catalog, 2, kLong.c_str()); });
      for (const unsigned long id : {1UL, 2UL}) {
        VelClMessage message(*catalog, id, kLong.c_str());
        const std::string before = message.getAsCString();
        const bool loaded = attempt([&] { message.setNewMessageId(2, (kLong + "y").c_str()); });
        if (!loaded) {
          EXPECT_EQ(message.getAsCString(), before);
        }
        EXPECT_EQ(message.getId(), loaded ? 2U : id);
        EXPECT_EQ(message.isValid(), catalog != &absent);
      }
    });
  exhaust("assignment", [&] {
    const VelClMessage source(absent, 7);
    VelClMessage target(table, 2, (kLong + kLong).c_str());
    const bool assigned = attempt([&] { target = source; });
    EXPECT_EQ(target.getAsCString() == kLong + kLong, !assigned);
    EXPECT_EQ(target.getId(), assigned ? 7U : 2U);
    EXPECT_EQ(target.isValid(), !assigned);
    attempt([&] { VelClMessage(source).setNewMessageId(7); });
  });
}

TEST_F(FailingAllocation, KeepsIniFiles) {
  const std::string text = "[A]\nx=1 ; c\n y\n[B]\nz=2\n";
  const vel::test::ScratchDirectory directory;
  const std::string path = directory.write("a.ini", text);
  VelClIniFile source("unused");
  vel::test::loadText(source, "[C]\nv=1\n[a]\nw=2\n");
  static const VelClIniFile* merged = nullptr;
  merged = &source;
  const std::pair<const char*, bool (*)(VelClIniFileEditor&)> changes[] = {
      {"set value", [](VelClIniFileEditor& editor) { return editor.setValue("a", "x", kLong.c_str()); }},
      {"new option", [](VelClIniFileEditor& editor) { return editor.setValue("D", "x", kLong.c_str()); }},
      {"new section", [](VelClIniFileEditor& editor) { return editor.addSection("D"); }},
      {"merge", [](VelClIniFileEditor& editor) { return editor.merge(*merged); }},
      {"delete option", [](VelClIniFileEditor& editor) { return editor.deleteOption("A", "x"); }},
      {"delete section", [](VelClIniFileEditor& editor) { return editor.deleteSection("A"); }},
      {"another text",
       [](VelClIniFileEditor& editor) {
         editor.loadFromBuffer("[E]\n", 4, false);
         return true;
       }},
  };
  for (const auto& [name, change] : changes)
    exhaust(
        name,
        [&, change = change] {
          VelClIniFileEditor editor(path.c_str());
          const bool loaded = attempt([&] { EXPECT_TRUE(editor.load(true)); });
          if (!loaded) editor.loadFromBuffer(text.data(), text.size(), true);
          const bool changed = attempt([&] { EXPECT_TRUE(change(editor)); });
          EXPECT_EQ(std::string(editor.getText(), editor.getLength()) == text, !changed);
          // The model always agrees with the text, and later changes are parsed as the text was.
          EXPECT_TRUE(editor.addSection("last"));
          VelClIniFileEditor again("unused");
          again.loadFromBuffer(editor.getText(), editor.getLength(), true);
          EXPECT_EQ(vel::test::shown(editor.getIniFile()), vel::test::shown(again.getIniFile()));
        },
        5);
  std::string large;
  for (int i = 0; i < 300; ++i)
    large +=
        "[s" + std::to_string(i) + "]\nx=" + std::string(200, 'x') + "\n " + std::string(300, 'x') + "\n";
  const auto change = [&large] {
    VelClIniFileSave file("unused");
    const bool changed = attempt([&] {
      vel::test::loadText(file, large, false);
      EXPECT_TRUE(file.getSection("s299"));
      for (int i = 0; i < 120; ++i) EXPECT_TRUE(file.addOption(("o" + std::to_string(i)).c_str(), "1"));
      EXPECT_TRUE(file.addSection("new"));
    });
    // The model is consistent, and the same work can be repeated.
    if (!changed) vel::test::loadText(file, large, false);
    EXPECT_NE(file.getExistingOption(*file.getExistingSection("s299"), "x"), nullptr);
  };
  exhaust("model", change, 10);
  exhaust("save", [&] {
    VelClIniFileEditor editor(path.c_str());
    VelClIniFileSave file(path.c_str());
    EXPECT_TRUE(editor.load(true));
    EXPECT_TRUE(file.load(true));
    attempt([&] { EXPECT_TRUE(editor.save()); });
    EXPECT_EQ(vel::test::readFile(path), text);
    const bool saved = attempt([&] { EXPECT_TRUE(file.save()); });
    EXPECT_EQ(vel::test::readFile(path) == text, !saved);
    EXPECT_TRUE(editor.save());
  });
}

TEST_F(FailingAllocation, KeepsPaths) {
  const std::pair<const char*, void (*)(VelClPath&)> changes[] = {
      {"copied path", [](VelClPath& path) { path = VelClPath(path); }},
      {"appended path", [](VelClPath& path) { path.append(kLong); }},
      {"joined path", [](VelClPath& path) { path /= kLong; }},
      {"new name", [](VelClPath& path) { path.setNewName(kLong); }},
      {"new stem", [](VelClPath& path) { path.setNewStem(kLong); }},
      {"new extension", [](VelClPath& path) { path.setNewExtension(kLong); }},
      {"normal path", [](VelClPath& path) { path.makeNormal(); }},
      {"absolute path",
       [](VelClPath& path) {
         EXPECT_TRUE(path.makeAbsolute({"/d", PATH_SYNTAX_SLASH}).isOk());
       }},
      {"relative path",
       [](VelClPath& path) {
         EXPECT_TRUE(path.makeRelative({"../" + kLong, PATH_SYNTAX_SLASH}).isOk());
       }},
      {"other syntax", [](VelClPath& path) { EXPECT_TRUE(path.convertTo(PATH_SYNTAX_BACKSLASH).isOk()); }},
  };
  const std::string text = "../" + kLong + "/./" + kLong + ".txt";
  for (const auto& [name, change] : changes)
    exhaust(name, [&, change = change] {
      VelClPath path(text, PATH_SYNTAX_SLASH);
      const bool done = attempt([&] { change(path); });
      if (!done) {
        EXPECT_EQ(path.getText(), text);
      }
    });
  exhaust("names", [&] {
    VelClPath path;
    VelClFilename name;
    if (!attempt([&] { EXPECT_TRUE(VelClPath::fromFilename(VelClFilename(text.c_str()), path).isOk()); })) {
      EXPECT_TRUE(path.isEmpty());
    }
    attempt([&] { EXPECT_TRUE(VelClPath(text).toFilename(name).isOk()); });
    attempt([&] { EXPECT_TRUE(VelClPath(text).makeAbsolute().isOk()); });
  });
}

unsigned long builtInMessageCount() {
  unsigned long count = 0;
  velMsgCatGetBuiltInTable(&count);
  return count;
}

/// Every word is too long for a message's inline storage, so each operation allocates and can fail.
VelClConsoleUI longWordedInterface() {
  static const std::string quiet = "-" + kLong;
  static const char* const arguments[] = {"tool", "-a", "b", quiet.c_str(), "5"};
  static std::vector<const char*> words(builtInMessageCount(), kLong.c_str());
  words[9] = "copyright";
  return {5, arguments, VelClFilename("absent"), 0, words.data(), builtInMessageCount()};
}

void exhaustInterface(const char* name, void (*run)(VelClConsoleUI&)) {
  exhaust(name, [run] {
    std::ostringstream stream;
    VelClConsoleUI ui = longWordedInterface();
    ui.setOutputStream(stream);
    ui.getParams().setErrorStream(stream);
    const bool done = attempt([&] { run(ui); });
    ui.getParams().setQuietMode(false);
    // After a failure the operation can be repeated with the same object.
    if (!done) run(ui);
  });
}

TEST_F(FailingAllocation, KeepsUserInterfaces) {
  exhaust("settings", [] {
    VelClConsoleUIParams params("tool");
    params.setUsage("old usage");
    params.setHelp("old help");
    const bool usage = attempt([&] { params.setUsage("new"); });
    EXPECT_STREQ(params.getUsage(), usage ? "new" : "old usage");
    const bool help = attempt([&] { params.setHelp("new"); });
    EXPECT_STREQ(params.getHelp(), help ? "new" : "old help");
  });
  static const char* textValue = nullptr;
  static int intValue = 0;
  static const VelClException kException(_VelStUserError(), "cause");
  const std::pair<const char*, void (*)(VelClConsoleUI&)> operations[] = {
      {"init", [](VelClConsoleUI& ui) { ui.init("title", "description", nullptr, nullptr); }},
      {"init by number", [](VelClConsoleUI& ui) { ui.init(150UL, 2UL, nullptr, nullptr); }},
      {"usage", [](VelClConsoleUI& ui) { ui.handleUsageHelp("(-a <b>) [-quiet] <c>", kLong.c_str()); }},
      {"usage by number", [](VelClConsoleUI& ui) { ui.handleUsageHelp(0UL, 152UL); }},
      {"display", [](VelClConsoleUI& ui) { ui.displayUsageHelp("usage", "help", false); }},
      {"switch", [](VelClConsoleUI& ui) { ui.hasArgSwitch(154UL); }},
      {"string", [](VelClConsoleUI& ui) { ui.hasArgString(154UL, textValue); }},
      {"int", [](VelClConsoleUI& ui) { ui.hasArgNumval(154UL, intValue); }},
      {"required", [](VelClConsoleUI& ui) { ui.reqArgSwitch(10UL); }},
      {"info", [](VelClConsoleUI& ui) { ui.info("text"); }},
      {"error", [](VelClConsoleUI& ui) { ui.error(ui.getOutputStream(), "text"); }},
      {"exception", [](VelClConsoleUI& ui) { ui.exception(kException, "text"); }},
      {"format", [](VelClConsoleUI& ui) { ui.format(180UL); }},
      {"dump", [](VelClConsoleUI& ui) { ui.dump(180UL, "bytes", 5); }},
      {"warning", [](VelClConsoleUI& ui) { ui.warning("text"); }},
      {"help", [](VelClConsoleUI& ui) { ui.displayHelp(false); }},
      {"number", [](VelClConsoleUI& ui) { ui.format(180UL, 5); }},
      {"truth", [](VelClConsoleUI& ui) { ui.formatBool("label", true); }},
      {"prompt", [](VelClConsoleUI& ui) { ui.prompt("question", "hint", "answer"); }},
      {"text prompt", [](VelClConsoleUI& ui) { ui.promptString(180UL, "answer"); }},
      {"number prompt", [](VelClConsoleUI& ui) { ui.promptNumval("question", 1, 9, 5); }},
      {"decision", [](VelClConsoleUI& ui) { ui.promptYesNo("question", true); }},
      {"format exception", [](VelClConsoleUI& ui) { ui.format(kException, true); }},
  };
  for (const auto& [name, run] : operations) exhaustInterface(name, run);
}

}  // namespace
