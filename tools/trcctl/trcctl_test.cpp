// Runs trcctl as its users do, on a trace that the example wrote.
#include "trace/test/trace_fixture.h"

namespace {

const std::string kSample = VEL_TEST_DATA "../trace/test/tour.trc";

/// Returns the trace with the times and identifiers of the sample, and its one clipped block of data cut
/// short.
std::string normalized(std::string trace) {
  std::uint32_t count = 0;
  vel::test::changeHeads(trace, [&](vel::test::RecordHead& head, std::size_t data) {
    head.time = 1000 + 10 * count;
    head.process = 4711;
    head.thread = 20 + count++ % 2;
    if ((head.type & 0x1F) != 5) return;
    EXPECT_EQ(head.dataLength, 4096U - 48U);
    trace.erase(data + 18, head.dataLength - 18);
    head.dataLength = 18;
  });
  return trace;
}

TEST(Trcctl, TheExampleWritesTheSampleOnEverySystem) {
  const vel::test::ScratchDirectory directory;
  const vel::test::ChildOptions options{.environment = {{"TOUR_TRACE_ACTIVE", "yes"},
                                                        {"TOUR_TRACE_DETAIL", "HIGH"},
                                                        {"TOUR_TRACE_BUFSIZE", "4"},
                                                        {"TOUR_TRACE_FILE", directory.path("tour.trc")}}};
  ASSERT_EQ(vel::test::runChild("example_trace", {}, options).exitCode, 0);
  EXPECT_EQ(normalized(vel::test::readFile(directory.path("tour.trc"))), vel::test::readFile(kSample));
}

TEST(Trcctl, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "trcctl/test/trcctl.session", true);
}

/// Returns the column of the colon after a label, counted in characters, in UTF-8 and in single bytes.
std::size_t columnOfColon(const std::string& line) {
  std::size_t column = 0;
  for (std::size_t i = 0; i < line.find(": "); ++i)
    if ((static_cast<unsigned char>(line[i]) & 0xC0) != 0x80) ++column;
  return column;
}

/// ctest also runs this one in German.
TEST(TrcctlInUsersLanguage, AlignsLabelsWithUmlauts) {
  const char* const language = std::getenv("LC_ALL");
  ASSERT_NE(language, nullptr);
  const vel::test::ChildOptions options{.environment = {{"TOUR_TRACE_FILE", kSample}}};
  std::istringstream page(vel::test::runChild("trcctl", {"-key", "tour"}, options).output);
  std::size_t umlauts = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("  ")) continue;
    EXPECT_EQ(columnOfColon(line), 2 + 36U) << line;
    for (const char c : line) umlauts += static_cast<unsigned char>(c) >= 0xC0 ? 1 : 0;
  }
  EXPECT_EQ(umlauts, std::string(language) == "C" ? 0U : 3U);
}

TEST(TrcctlInUsersLanguage, TellsAFileThatIsNotATrace) {
  const vel::test::ScratchDirectory directory;
  const std::string file = directory.write("file", "text");
  const auto result = vel::test::runChild("trcctl", {"-key", "tour", "-display", "-file", file});
  EXPECT_THAT(result.errors,
              testing::HasSubstr(std::string(std::getenv("LC_ALL")) == "C" ? "Not a trace file: "
                                                                           : "Keine Trace-Datei: "));
  EXPECT_EQ(result.exitCode, 2);
}

}  // namespace
