// Runs veltrace as its users do: its session, all forms of output, several traces, and traces that grow.
#include "platform/test/test.h"
#include "tools/veltrace/test/json_parser.h"
#include "trace/test/trace_fixture.h"

namespace {

using vel::test::Json;
using vel::test::parseJson;
using vel::test::readFile;
using vel::test::runTool;
using Texts = std::vector<std::string>;

const std::string kSample = VEL_TEST_DATA "../trace/test/tour.trc";

/// Returns a record with plain texts.
std::string record(int type, std::uint32_t time, std::uint32_t thread, const std::string& message,
                   const std::string& function, const std::string& data) {
  const vel::test::RecordHead head{static_cast<std::uint8_t>(type),
                                   3,
                                   static_cast<std::uint8_t>(message.size()),
                                   static_cast<std::uint8_t>(function.size()),
                                   time,
                                   4711,
                                   thread,
                                   static_cast<std::uint32_t>(data.size())};
  return std::string(reinterpret_cast<const char*>(&head), sizeof head) + message + function + data;
}
std::string call(int type, std::uint32_t time, std::uint32_t thread, const std::string& function,
                 char level) {
  return record(type, time, thread, "", function, std::string(1, level) + std::string(3, '\0'));
}
std::string text(std::uint32_t time, const std::string& message) {
  return record(3, time, 1, message, "f", "");
}

/// Returns the lines of a text.
Texts linesOf(const std::string& text) {
  std::istringstream stream(text);
  Texts lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

TEST(Veltrace, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "veltrace/test/veltrace.session", true);
}

TEST(Veltrace, WritesAJsonObjectPerRecord) {
  const Texts lines = linesOf(runTool("veltrace", {"-format", "json", kSample}).output);
  ASSERT_EQ(lines.size(), 26U);
  std::uint64_t offset = 0;
  for (const std::string& line : lines) {
    const Json json = parseJson(line);
    EXPECT_GE(json.at("offset").number(), static_cast<double>(offset));
    offset = static_cast<std::uint64_t>(json.at("offset").number()) + 20;
    EXPECT_EQ(json.at("process").number(), 4711);
  }
  const Json drift = parseJson(lines[10]);
  EXPECT_EQ(drift.at("message").text(), "drift");
  EXPECT_EQ(drift.at("value").number(), -5);
  EXPECT_EQ(drift.at("type").text(), "signed integer (8 bits)");
  EXPECT_EQ(drift.at("detail").text(), "MED");
  EXPECT_EQ(drift.at("data").text(), "FB");
  EXPECT_EQ(parseJson(lines[3]).at("value").text(), "C:\\data\\first.dat");
}

/// Ends match beginnings in each thread, and times do not go back.
void expectNesting(const Json& trace, std::size_t events) {
  std::map<double, std::vector<std::string>> open;
  std::map<double, double> last;
  EXPECT_EQ(trace.at("traceEvents").list().size(), events);
  for (const Json& event : trace.at("traceEvents").list()) {
    const double thread = event.at("tid").number();
    EXPECT_GE(event.at("ts").number(), last[thread]);
    last[thread] = event.at("ts").number();
    const std::string phase = event.at("ph").text();
    if (phase == "B") open[thread].push_back(event.at("name").text());
    if (phase == "i") {
      EXPECT_EQ(event.at("s").text(), "t");
    }
    if (phase != "E") continue;
    ASSERT_FALSE(open[thread].empty());
    open[thread].pop_back();
  }
  for (const auto& [thread, calls] : open) EXPECT_TRUE(calls.empty()) << thread;
}

TEST(Veltrace, WritesNestedEventsForViewers) {
  expectNesting(parseJson(runTool("veltrace", {"-format", "chrome", kSample}).output), 29);
  expectNesting(parseJson(runTool("veltrace", {"-format", "chrome"}, "").output), 0);
  // An exit without entry, an entry without exit within another call, and texts with quotes.
  const std::string trace = call(2, 1, 1, "before", 0) + call(1, 2, 1, "outer", 1) +
                            call(1, 3, 2, "other", 1) + call(1, 3, 1, "in\"ner\x01", 2) +
                            text(4, "a\\b\n\xFF") + call(2, 5, 1, "outer", 0);
  const std::string json = runTool("veltrace", {"-format", "chrome"}, trace).output;
  expectNesting(parseJson(json), 8);
}

TEST(Veltrace, MergesTracesByTime) {
  const vel::test::ScratchDirectory directory;
  const std::string a = directory.write("a", text(1, "a1") + text(5, "a5") + text(4, "a4"));
  const std::string b = directory.write("b", text(2, "b2") + text(5, "b5") + text(9, "b9"));
  std::string order;
  for (const std::string& line : linesOf(runTool("veltrace", {"-format", "json", a, b}).output))
    order += parseJson(line).at("message").text() + ' ';
  EXPECT_EQ(order, "a1 b2 a5 a4 b5 b9 ");
}

TEST(Veltrace, ShowsOnlyDurationsThatAreLonger) {
  const std::string trace = call(1, 100, 1, "outer", 1) + call(1, 110, 1, "inner", 2) +
                            call(2, 120, 1, "inner", 1) + call(1, 130, 1, "inner", 2) +
                            call(2, 190, 1, "inner", 1) + call(2, 200, 1, "outer", 0);
  std::string shown;
  for (const std::string& line :
       linesOf(runTool("veltrace", {"-format", "json", "-longer", "10"}, trace).output))
    shown += parseJson(line).at("function").text() +
             std::to_string(parseJson(line).at("duration").number()).substr(0, 3);
  EXPECT_EQ(shown, "inner60.outer100");
  const std::string counted = runTool("veltrace", {"-stats"}, trace).output;
  EXPECT_THAT(counted, testing::HasSubstr("         2             70             70             60 inner\n"));
  EXPECT_THAT(counted, testing::HasSubstr("         1            100             30            100 outer\n"));
}

TEST(Veltrace, RecoversDamagedTraces) {
  std::string trace;
  for (std::uint32_t i = 0; i < 100; ++i) trace += text(i, "message");
  for (std::size_t i = 980; i < 990; ++i) trace[i] = '\x7F';
  const auto stopped = runTool("veltrace", {"-quiet", "-format", "json"}, trace);
  EXPECT_EQ(stopped.exitCode, 2);
  EXPECT_THAT(stopped.errors, testing::HasSubstr("damaged"));
  const auto recovered = runTool("veltrace", {"-quiet", "-recover", "-format", "json"}, trace);
  EXPECT_EQ(recovered.exitCode, 0);
  EXPECT_THAT(recovered.errors, testing::HasSubstr("28 @ 980"));
  EXPECT_GE(linesOf(recovered.output).size(), 99U);
  EXPECT_THAT(runTool("veltrace", {"-recover", "-stats"}, trace).output, testing::HasSubstr("1 in places"));
}

TEST(Veltrace, FollowsAFileThatAppearsLate) {
  const vel::test::ScratchDirectory directory;
  const std::string file = directory.path("late.trc");
  std::thread writer([&] {
    for (const char* const message : {"first", "second"}) {
      const std::string bytes = text(1, message);
      for (const char byte : bytes) std::ofstream(file, std::ios::binary | std::ios::app) << byte;
    }
  });
  const auto result = runTool("veltrace", {"-follow", "-timeout", "5", "-format", "json", file});
  writer.join();
  EXPECT_EQ(result.exitCode, 0);
  const Texts lines = linesOf(result.output);
  ASSERT_EQ(lines.size(), 2U) << result.output << result.errors;
  EXPECT_EQ(parseJson(lines[1]).at("message").text(), "second");
}

}  // namespace
