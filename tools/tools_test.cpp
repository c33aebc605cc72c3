// Tests what all tools have in common: standard input, quiet mode, and errors in the command line.
#include "platform/test/test.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_helpers.h"

namespace {

using vel::test::readFile;
using Texts = std::vector<std::string>;

/// Runs a tool in English, with its title on standard error unless `isQuiet`.
vel::test::ChildResult run(const std::string& tool, Texts arguments, const std::string& input, bool isQuiet) {
  if (isQuiet) arguments.insert(arguments.begin(), "-quiet");
  return vel::test::runTool(tool, arguments, input);
}

TEST(Tools, ReadStandardInputAsAnyFile) {
  const std::string trace = VEL_TEST_DATA "../trace/test/tour.trc";
  const struct {
    std::string tool;
    Texts arguments;
    std::string file;
  } rows[] = {
      {"velini", {"-list", "-file"}, VEL_TEST_DATA "../examples/import_records.ini"},
      {"veldump", {"-squeeze"}, trace},
      {"velconv", {"-from", "37", "-to", "1208", "-policy", "escape"}, trace},
      {"velmsg", {"-list", "-cat"}, "qammsg50.DLL"},
      {"velmsg", {"-builtin", "-diff"}, "velmsg_first.DLL"},
      {"trcctl", {"-key", "tour", "-display", "-file"}, trace},
      {"veltrace", {"-component", "7"}, trace},
  };
  for (const auto& [tool, arguments, file] : rows) {
    Texts named = arguments, input = arguments;
    named.push_back(file);
    input.emplace_back("-");
    const auto expected = run(tool, named, "", true), result = run(tool, input, readFile(file), true);
    EXPECT_NE(expected.output, "") << tool;
    EXPECT_EQ(result.output, expected.output) << tool;
    EXPECT_EQ(result.exitCode, expected.exitCode) << tool << result.errors;
  }
}

TEST(Tools, ShowTheTitleUnlessTheyAreQuiet) {
  const struct {
    std::string tool;
    Texts arguments;
  } rows[] = {{"velini", {"-file", "-", "-list"}},
              {"veldump", {"-"}},
              {"velconv", {"-from", "850", "-to", "1208", "-"}},
              {"velmsg", {"-builtin", "-id", "3"}},
              {"trcctl", {"-key", "tour"}},
              {"veltrace", {"-stats", VEL_TEST_DATA "../trace/test/tour.trc"}}};
  for (const auto& [tool, arguments] : rows) {
    const auto shown = run(tool, arguments, "[a]\n", false), quiet = run(tool, arguments, "[a]\n", true);
    EXPECT_NE(shown.errors.find(" - "), std::string::npos) << tool;
    EXPECT_EQ(quiet.errors, "") << tool;
    EXPECT_EQ(quiet.output, shown.output);
    EXPECT_EQ(quiet.exitCode, 0) << tool;
  }
}

TEST(Tools, ReportErrorsInTheCommandLineOnStandardError) {
  const vel::test::ScratchDirectory directory;
  const std::string out = directory.write("out", "old");
  const std::pair<std::string, Texts> rows[] = {
      {"velini", {"-file", "-", "-list", "-nonsense"}},
      {"velini", {"-file", "-", "-list", "-check"}},
      {"velini", {"-file", "-", "-diff", "-"}},
      {"velini", {"-file", out, "-merge", "-", "--merge=-"}},
      {"veldump", {"-nonsense"}},
      {"veldump", {"-limit", "5"}},
      {"veldump", {"-compare", "-", "-"}},
      {"velconv", {"-from", "850", "-to", "1208", "-out", out, "-nonsense"}},
      {"velconv", {"-from", "850", "-out", out}},
      {"velconv", {"-from", "850", "-to", "1208", "-out", out, "-", out, "-"}},
      {"velmsg", {"-nonsense"}},
      {"velmsg", {"-list"}},
      {"velmsg", {"-cat", "-", "-diff", "-"}},
      {"trcctl", {"-key", "tour", "-nonsense"}},
      {"veltrace", {"-nonsense"}},
      {"veltrace", {"-follow", "-"}},
      {"veltrace", {"-stats", "-format", "json"}},
      {"trcctl", {}},
  };
  for (const auto& [tool, arguments] : rows) {
    const auto result = run(tool, arguments, "", true);
    EXPECT_EQ(result.output, "") << tool;
    EXPECT_NE(result.errors.find("Usage: "), std::string::npos) << tool << result.errors;
    EXPECT_EQ(result.errors.find('\a'), std::string::npos) << tool;
    EXPECT_EQ(result.exitCode, 201) << tool;
  }
  EXPECT_EQ(readFile(out), "old");
}

// The manual pages show these runs.
TEST(Tools, BehaveAsInTheExamplesOfTheirPages) {
  for (const char* const tool : {"trcctl", "velconv", "veldump", "velini", "velmsg", "veltrace"})
    vel::test::expectSession(std::string(VEL_TEST_DATA) + tool + "/test/examples.session");
}

// ctest runs this test for an English and for an Austrian user; LC_ALL tells which.
TEST(ToolsInUsersLanguage, ShowNothingInAnother) {
  const char* const locale = VelClEnvironmentVariableQueryOnly("LC_ALL").getValue();
  const bool isGerman = locale != nullptr && std::string_view(locale).starts_with("de");
  const struct {
    std::string tool;
    Texts arguments;
    std::string german;
  } rows[] = {
      {"velini", {"--help"}, "Exit-Codes: 0 Erfolg"},
      {"velini",
       {"-file", "-", "-list", "-lst"},
       "Unbekanntes Befehlszeilenargument: -lst: meinten Sie -list?"},
      {"velini", {"-file", "-", "-get", "x"}, "-section muss angegeben werden"},
      {"veldump", {"--help"}, "Exit-Codes: 0 Erfolg"},
      {"veldump", {"-reverse"}, "oder folgt nicht auf die Zeile davor: Standardeingabe: 1"},
      {"velconv", {"--help"}, "Exit-Codes: 0 Erfolg"},
      {"velconv", {"-from", "1208", "-to", "850", "-count"}, "Standardeingabe: 2 Bytes, 0 ung\u00FCltig"},
      {"velmsg", {"--help"}, "Exit-Codes: 0 Erfolg"},
      {"velmsg", {"-lang", "5"}, "Genau eine der Angaben -list"},
      {"veltrace", {"--help"}, "Exit-Codes: 0 Erfolg"},
      {"veltrace", {"-detail", "x"}, "-detail muss OFF, LOW, MED oder HIGH sein"},
      {"trcctl", {"--help"}, "Aufruf: trcctl -key"},
      {"trcctl", {"-key", "tour", "-file", "absent"}, "Angegebene Trace-Datei nicht gefunden"},
      {"trcctl", {"-key", "tour", "-file", "-", "-display"}, "Keine Trace-Datei: "},
  };
  for (const auto& [tool, arguments, german] : rows) {
    const auto result = vel::test::runChild(tool, arguments, {.input = "x\n"});
    const std::string all = result.output + result.errors;
    EXPECT_EQ(all.find(german) != std::string::npos, isGerman) << tool << all;
    if (!isGerman) continue;
    for (const char* const english : {" the ", "Usage", " error ", "xit code"})
      EXPECT_THAT(all, testing::Not(testing::HasSubstr(english)));
  }
}

}  // namespace
