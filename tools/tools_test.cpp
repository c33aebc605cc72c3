// Tests what all tools have in common: standard input, quiet mode, and errors in the command line.
#include "platform/test/test.h"

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
              {"trcctl", {"-key", "tour"}}};
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
      {"veldump", {"-nonsense"}},
      {"veldump", {"-limit", "5"}},
      {"velconv", {"-from", "850", "-to", "1208", "-out", out, "-nonsense"}},
      {"velconv", {"-from", "850", "-out", out}},
      {"velmsg", {"-nonsense"}},
      {"velmsg", {"-list"}},
      {"trcctl", {"-key", "tour", "-nonsense"}},
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

}  // namespace
