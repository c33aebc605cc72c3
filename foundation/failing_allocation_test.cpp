// Memory that runs out: every operation of the library is tried with its first allocation failing, then with
// its second, and so on until it no longer fails. Each failure must arrive as the library's exception, take
// no block with it, and leave the objects from before as they were.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "vel_include/vel.h"

namespace {

long liveBlocks = 0;
int allocationsUntilFailure = 0;  ///< 0: none fails

bool mustFail() {
  return allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
}
void* countingMalloc(size_t size) {
  if (mustFail()) return nullptr;
  ++liveBlocks;
  return std::malloc(size);
}
void* countingRealloc(void* block, size_t size) {
  if (mustFail()) return nullptr;
  if (block == nullptr) ++liveBlocks;
  return std::realloc(block, size);
}
void countingFree(void* block) {
  --liveBlocks;
  std::free(block);
}

/// Lets one allocation fail, the `position`-th of those made inside attempt.
class Shortage {
 public:
  explicit Shortage(int position) : position_(position) {}

  /// Whether `operation` came to its end. It must do so exactly when no allocation failed.
  template <typename Operation>
  bool attempt(Operation operation) {
    allocationsUntilFailure = position_;
    try {
      operation();
      EXPECT_GT(allocationsUntilFailure, 0) << "a failure was hidden";
      allocationsUntilFailure = 0;
      return true;
    } catch (const VelClExceptionFatal& exception) {
      EXPECT_EQ(exception.getId(), static_cast<unsigned long>(MEMMGR_USER_OUT_OF_MEMORY));
      EXPECT_EQ(exception.getClass(), VelEnErrorClass::OUT_OF_MEMORY);
    } catch (...) {
      ADD_FAILURE() << "another exception";
    }
    allocationsUntilFailure = 0;
    failed_ = true;
    return false;
  }

  bool failed() const { return failed_; }

 private:
  int position_;
  bool failed_ = false;
};

class FailingAllocation : public testing::Test {
 protected:
  void SetUp() override {
    velSetNewMemoryManager(countingMalloc, countingRealloc, countingFree);
    console_ = std::cout.rdbuf(shown_.rdbuf());
  }
  void TearDown() override {
    std::cout.rdbuf(console_);
    velSetNewMemoryManager(std::malloc, nullptr, std::free);
  }

  /// Runs `scenario`, which takes a Shortage, until nothing fails any more; returns how often it failed.
  template <typename Scenario>
  static int failuresOf(const char* name, Scenario scenario) {
    constexpr int kMost = 500;
    for (int position = 1; position <= kMost; ++position) {
      const long before = liveBlocks;
      Shortage shortage(position);
      scenario(shortage);
      EXPECT_EQ(liveBlocks, before) << name << ", allocation " << position;
      if (!shortage.failed()) return position - 1;
    }
    ADD_FAILURE() << name << " never ends";
    return kMost;
  }

 private:
  std::ostringstream shown_;
  std::streambuf* console_ = nullptr;
};

const std::string kLong(100, 'x');
const char* const kTable[] = {"", "name", "%1", "plain"};

TEST_F(FailingAllocation, OfSearchesAndVariables) {
  EXPECT_GT(failuresOf("search",
                       [](Shortage& shortage) {
                         shortage.attempt([] {
                           const VelClStringSearch search(kLong.c_str(), true);
                           EXPECT_NE(search.getPattern(kLong.c_str()), nullptr);
                         });
                       }),
            0);
  EXPECT_GT(
      failuresOf("variable",
                 [](Shortage& shortage) {
                   VelClEnvironmentVariable variable("VEL_TEST_SHORTAGE", "old");
                   const bool set =
                       shortage.attempt([&] { EXPECT_TRUE(variable.setNewValue(kLong.c_str())); });
                   EXPECT_EQ(std::string(variable.getValue()), set ? kLong : "old");
                   const std::string before = variable.getValue();
                   const bool appended =
                       shortage.attempt([&] { EXPECT_TRUE(variable.appendValue(kLong.c_str())); });
                   EXPECT_EQ(std::string(variable.getValue()), appended ? before + kLong : before);
                   shortage.attempt([&] { VelClEnvironmentVariable("VEL_TEST_SHORTAGE", kLong.c_str()); });
                   shortage.attempt([&] { variable.resetValue(); });
                 }),
      0);
  VelClEnvironmentVariable("VEL_TEST_SHORTAGE", nullptr);
}

TEST_F(FailingAllocation, OfProgramsAndLibraries) {
  EXPECT_GT(failuresOf("arguments",
                       [](Shortage& shortage) {
                         const VelClExeFile exe("vel_no_such_program");
                         shortage.attempt([&] { const VelClNewAsyncProcess process(exe); });
                         VelClNewSyncProcess process(exe);
                         const bool added = shortage.attempt([&] { process.addArgument(kLong.c_str()); });
                         EXPECT_EQ(process.getArgumentCount(), added ? 2U : 1U);
                         const bool tried = shortage.attempt([&] { EXPECT_FALSE(process.launch()); });
                         EXPECT_EQ(process.getResult(), tried ? 2U : 0U);
                         EXPECT_EQ(process.getLastError().getErrorId(),
                                   static_cast<unsigned long>(PROCESS_COULD_NOT_LAUNCH));
                       }),
            2);
  for (const char* name : {"qamc5032", "absent"})
    EXPECT_GT(failuresOf(name,
                         [&](Shortage& shortage) {
                           shortage.attempt([&] { velDllProcLoaderClose(velDllProcLoaderOpen(name)); });
                         }),
              0)
        << name;
}

TEST_F(FailingAllocation, OfCatalogs) {
  for (const char* name : {"small_catalog", "small_ansi_catalog", "absent"}) {
    const VelClFilename file(name);
    const int failures = failuresOf(name, [&](Shortage& shortage) {
      shortage.attempt([&] { const VelClMessageCatalog catalog(file); });
    });
    EXPECT_EQ(failures > 0, std::string(name) != "absent");
  }
  EXPECT_GT(
      failuresOf("library",
                 [](Shortage& shortage) { shortage.attempt([] { const VelClMessageCatalog catalog; }); }),
      0);
  EXPECT_GT(failuresOf("cursor",
                       [](Shortage& shortage) {
                         const VelClMessageCatalog catalog;
                         shortage.attempt([&] {
                           VelClMessageCatalogCursor cursor(catalog);
                           for (bool more = cursor.setToFirst(); more && cursor.getId() < 30;
                                more = cursor.setToNext()) {
                           }
                         });
                       }),
            0);
  EXPECT_GT(failuresOf("step",
                       [](Shortage& shortage) {
                         const VelClMessageCatalog catalog;
                         VelClMessageCatalogCursor cursor(catalog);
                         cursor.setToFirst();
                         cursor.setToNext();
                         const unsigned int language = cursor.getLanguage();
                         const bool moved = shortage.attempt([&] { cursor.setToNext(); });
                         EXPECT_TRUE(cursor.isValid());
                         EXPECT_EQ(cursor.getId(), moved ? 2U : 1U);
                         EXPECT_NE(cursor.getLanguage() == language, moved);
                         ASSERT_NE(cursor.getAsCString(), nullptr);
                         EXPECT_EQ(std::string(cursor.getAsCString()).starts_with("Percent:"), moved);
                       }),
            0);
}

TEST_F(FailingAllocation, OfMessages) {
  const VelClMessageCatalog table(kTable, std::size(kTable));
  const VelClMessageCatalog library;
  const VelClMessageCatalog absent(VelClFilename((kLong + ".DLL").c_str()));
  struct Row {
    const char* name;
    const VelClMessageCatalog& catalog;
    unsigned long id;
  };
  for (const Row& row : {Row{"table", table, 2}, Row{"library", library, 2}, Row{"absent", absent, 1}}) {
    const int failures = failuresOf(row.name, [&](Shortage& shortage) {
      shortage.attempt([&] { const VelClMessage message(row.catalog, row.id, kLong.c_str()); });
      for (const char* old : {"short", kLong.c_str()}) {
        VelClMessage message(table, 2, old);
        const bool loaded = shortage.attempt([&] { message.setNewMessageId(row.id, (kLong + "y").c_str()); });
        EXPECT_EQ(message.getAsCString() == std::string(old), !loaded) << row.name;
        EXPECT_EQ(message.getId(), loaded ? row.id : 2U);
        EXPECT_TRUE(loaded || message.isValid());
      }
    });
    EXPECT_GT(failures, 0) << row.name;
  }
  EXPECT_GT(failuresOf("assignment",
                       [&](Shortage& shortage) {
                         const VelClMessage source(absent, 7);
                         VelClMessage target(table, 2, (kLong + kLong).c_str());
                         const bool assigned = shortage.attempt([&] { target = source; });
                         EXPECT_EQ(target.getAsCString() == kLong + kLong, !assigned);
                         EXPECT_EQ(target.getId(), assigned ? 7U : 2U);
                         EXPECT_EQ(target.isValid(), !assigned);
                         shortage.attempt([&] { VelClMessage(source).setNewMessageId(7); });
                       }),
            0);
}

TEST_F(FailingAllocation, OfProxiesAndCatalogFunctions) {
  EXPECT_GT(failuresOf("proxy",
                       [](Shortage& shortage) {
                         shortage.attempt(
                             [] { const VelClMessageCatalogProxy proxy(VelClFilename("small_catalog")); });
                         shortage.attempt([] {
                           const VelClMessageCatalogProxy proxy(VelClFilename("absent"), kTable, 4);
                         });
                         const char* const variables[10] = {kLong.c_str()};
                         VelClMessageCatalogProxy proxy(VelClFilename("absent"), kTable, std::size(kTable));
                         const char* text = proxy.getMessage(3);
                         const bool got = shortage.attempt([&] { proxy.getMessage(2, variables); });
                         EXPECT_EQ(std::string(text), got ? kLong : "plain");
                         shortage.attempt([&] { EXPECT_TRUE(proxy.isValidMessageId(2)); });
                       }),
            0);
  EXPECT_GT(failuresOf("functions",
                       [](Shortage& shortage) {
                         shortage.attempt([] { velMsgCatClose(velMsgCatOpen("small_catalog")); });
                         shortage.attempt([] { EXPECT_EQ(velMsgCatOpen("absent"), nullptr); });
                         shortage.attempt(
                             [] { velMsgCatClose(velMsgCatOpenOrUseStringTable("absent", kTable, 4)); });
                         const VelClMessageCatalog library;
                         shortage.attempt([&] { velMsgCatClose(velMsgCatOpenAttach(&library)); });
                         VelMsgCatHandle handle = velMsgCatOpen("qammsg50");
                         const char* const noVariable = nullptr;
                         shortage.attempt([&] { EXPECT_TRUE(velMsgCatIsValid(handle, 2)); });
                         shortage.attempt([&] { velMsgCatGet(handle, 2); });
                         shortage.attempt([&] { velMsgCatGetVar(handle, 2, kLong.c_str(), noVariable); });
                         velMsgCatClose(handle);
                       }),
            0);
}

TEST_F(FailingAllocation, OfUserInterfaceSettings) {
  EXPECT_GT(failuresOf("parameters",
                       [](Shortage& shortage) {
                         shortage.attempt([] { const VelClConsoleUIParams params("tool"); });
                         VelClConsoleUIParams params("tool");
                         params.setUsage("old usage");
                         params.setHelp("old help");
                         const bool usage = shortage.attempt([&] { params.setUsage("new"); });
                         EXPECT_STREQ(params.getUsage(), usage ? "new" : "old usage");
                         const bool help = shortage.attempt([&] { params.setHelp("new"); });
                         EXPECT_STREQ(params.getHelp(), help ? "new" : "old help");
                       }),
            0);
}

/// One operation of a user interface. Every one can fail, since its words come from a catalog library.
struct Operation {
  const char* name;
  void (*run)(VelClConsoleUI& ui);
};

const char* textValue = nullptr;
short shortValue = 0;
int intValue = 0;
long longValue = 0;

const Operation kOperations[] = {
    {"init", [](VelClConsoleUI& ui) { ui.init("title", "description", nullptr, nullptr); }},
    {"init by number", [](VelClConsoleUI& ui) { ui.init(150UL, 2UL, nullptr, nullptr); }},
    {"usage", [](VelClConsoleUI& ui) { ui.handleUsageHelp("(-a <b>) [-quiet]", kLong.c_str()); }},
    {"usage by number", [](VelClConsoleUI& ui) { ui.handleUsageHelp(0UL, 152UL); }},
    {"display", [](VelClConsoleUI& ui) { ui.displayUsageHelp("usage", "help", false); }},
    {"display usage", [](VelClConsoleUI& ui) { ui.displayUsage(false); }},
    {"display help", [](VelClConsoleUI& ui) { ui.displayHelp(false); }},
    {"switch", [](VelClConsoleUI& ui) { ui.hasArgSwitch(154UL); }},
    {"string", [](VelClConsoleUI& ui) { ui.hasArgString(154UL, textValue); }},
    {"short", [](VelClConsoleUI& ui) { ui.hasArgNumval(154UL, shortValue); }},
    {"int", [](VelClConsoleUI& ui) { ui.hasArgNumval(154UL, intValue); }},
    {"long", [](VelClConsoleUI& ui) { ui.hasArgNumval(154UL, longValue); }},
    {"required", [](VelClConsoleUI& ui) { ui.reqArgSwitch(10UL); }},
    {"info", [](VelClConsoleUI& ui) { ui.info("text"); }},
    {"warning", [](VelClConsoleUI& ui) { ui.warning("text"); }},
    {"error", [](VelClConsoleUI& ui) { ui.error(ui.getOutputStream(), "text"); }},
    {"exception",
     [](VelClConsoleUI& ui) { ui.exception(VelClException(_VelStUserError(), "cause"), "text"); }},
    {"format", [](VelClConsoleUI& ui) { ui.format(180UL); }},
    {"format text", [](VelClConsoleUI& ui) { ui.format(180UL, "value"); }},
    {"format number", [](VelClConsoleUI& ui) { ui.format(180UL, 5); }},
    {"format bool", [](VelClConsoleUI& ui) { ui.formatBool(180UL, true); }},
    {"dump", [](VelClConsoleUI& ui) { ui.dump(180UL, "bytes", 5); }},
    {"format error", [](VelClConsoleUI& ui) { ui.formatErrId(NO_ERROR); }},
    {"format exception",
     [](VelClConsoleUI& ui) { ui.format(VelClException(_VelStUserError(), "cause"), true); }},
};

TEST_F(FailingAllocation, OfUserInterfaces) {
  const char* const arguments[] = {"tool", "-a", "b", "-quiet"};
  EXPECT_GT(failuresOf("constructors",
                       [&](Shortage& shortage) {
                         shortage.attempt([&] { const VelClConsoleUI ui(4, arguments); });
                         shortage.attempt(
                             [&] { const VelClConsoleUI ui(4, arguments, VelClFilename("absent"), 0); });
                       }),
            1);
  for (const Operation& operation : kOperations) {
    std::ostringstream stream;
    const int failures = failuresOf(operation.name, [&](Shortage& shortage) {
      VelClConsoleUI ui(4, arguments);
      ui.setOutputStream(stream);
      ui.getParams().setErrorStream(stream);
      const bool done = shortage.attempt([&] { operation.run(ui); });
      ui.getParams().setQuietMode(false);
      // After a failure the same object does the same work.
      if (!done) operation.run(ui);
    });
    EXPECT_GT(failures, 0) << operation.name;
  }
}

}  // namespace
