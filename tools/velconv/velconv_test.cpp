// Runs velconv as scripts do: its list, its session, and files larger than its buffers.
#include "platform/test/test.h"
#include "vel_include/vel_strict_conversion.h"

namespace {

using namespace vel::test;

const auto kWarning =
    testing::Matcher<std::string>(testing::HasSubstr("Most code pages need ICU, which is not installed"));

class VelconvFiles : public testing::Test {
 protected:
  vel::test::ScratchDirectory directory_;
};

/// The file lists the routes with ICU 72. Without ICU the system converts two of its pages; the others cannot
/// be converted.
TEST_F(VelconvFiles, ListsEveryCcsidWithItsRoutes) {
  const auto list = runTool("velconv", {"-list"});
  const auto listed = readTable(directory_.write("list", "headings\n" + list.output));
  auto expected = readTable(VEL_TEST_DATA "velconv/test/listing.tsv");
  ASSERT_EQ(listed.size(), expected.size());
  const bool hasIcu =
      std::ranges::any_of(listed, [](const auto& row) { return row[0] == "367" && row[3] == "icu"; });
  int fromSystem = 0;
  for (std::size_t i = 0; i < listed.size(); ++i) {
    fromSystem += listed[i].at(4) == "system" ? 1 : 0;
    if (listed[i][4] == "system") continue;
    std::ranges::replace(expected[i], "icu", hasIcu ? "icu" : "none");
    EXPECT_EQ(listed[i], expected[i]);
  }
  EXPECT_LE(fromSystem, hasIcu ? 1 : 2);
  // VEL_TEST_ICU, where it is set, tells whether ICU is installed: "there" or "none".
  const char* const icu = std::getenv("VEL_TEST_ICU");
  EXPECT_EQ(hasIcu, icu == nullptr ? hasIcu : std::string(icu) != "none");
  EXPECT_THAT(list.errors, hasIcu ? testing::Not(kWarning) : kWarning);
}

/// The lowest level is always supported; an unknown one has no effect.
TEST(Velconv, ShowsTheKernelsInUse) {
  const Variable level("VEL_KERNELS", "");
  const std::string best = runTool("velconv", {"-kernels"}).output;
  EXPECT_THAT(best, testing::AnyOf("avx512\n", "avx2\n", "sse4\n", "portable\n"));
  level.set("portable");
  EXPECT_EQ(runTool("velconv", {"-kernels"}).output, "portable\n");
  level.set("PORTABLE");
  EXPECT_EQ(runTool("velconv", {"-kernels"}).output, best);
}

/// The numbers and names are those that -list shows.
TEST_F(VelconvFiles, ListsTheNamesOfEveryCcsid) {
  std::map<std::string, std::string> numbers;
  for (const auto& row :
       readTable(directory_.write("names", "headings\n" + runTool("velconv", {"-names"}).output)))
    numbers[row.at(0)] = row.at(1);
  for (const auto& row : readTable(VEL_TEST_DATA "velconv/test/listing.tsv")) {
    if (row[0] == "0") continue;
    std::istringstream names(row[5] == "-" ? row[0] : row[5] + " " + row[0]);
    for (std::string name; names >> name; numbers.erase(name)) EXPECT_EQ(numbers[name], row[0]) << name;
  }
  EXPECT_TRUE(numbers.empty());
}

TEST(Velconv, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velconv/test/velconv.session", true);
}

/// Whether there is a route, which for some code pages needs ICU.
bool hasRouteTo(const std::string& number) {
  using Conversion = VelClStrictConversion;
  return Conversion::getRouteFromUcs2(VelClCCSID(number.c_str())) != Conversion::VelEnRoute::NONE;
}

/// Returns a text larger than the tool's buffers, with lines of many lengths and characters of one to four
/// bytes.
std::string manyLines() {
  std::string text;
  for (unsigned int i = 0; text.size() < 1'000'000; ++i)
    text += std::string(i % 83, static_cast<char>('!' + i % 90)) +
            (i % 3 == 0 ? "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80" : "\xE4\xB8\x80\xEF\xBD\x9E") + "\r\n";
  return text;
}

/// Returns every byte many times.
std::string manyBytes() {
  std::string bytes;
  for (unsigned int i = 0; i < 600'000; ++i) bytes += static_cast<char>(i * 2654435761U >> 15);
  return bytes;
}

TEST_F(VelconvFiles, RoundTripsLargeFiles) {
  const std::string lines = manyLines(), bytes = manyBytes();
  const std::string source = directory_.path("source"), there = directory_.path("there");
  struct Row {
    const std::string &text, from, to;
  };
  const Row rows[] = {{lines, "1208", "1208"}, {lines, "1208", "65500"}, {lines, "1208", "18030"},
                      {bytes, "37", "1208"},   {bytes, "500", "1208"},   {bytes, "850", "1208"},
                      {bytes, "819", "1208"}};
  for (const auto& [text, from, to] : rows) {
    SCOPED_TRACE(from + " to " + to);
    directory_.write("source", text);
    const auto result = runTool("velconv", {"-from", from, "-to", to, "-out", there, source});
    const auto last = hasRouteTo(to) ? runTool("velconv", {"-from", to, "-to", from, there}) : result;
    const bool hasRoute = hasRouteTo(from) && hasRouteTo(to);
    EXPECT_EQ(last.exitCode, hasRoute ? 0 : 2);
    EXPECT_TRUE(last.output == (hasRoute ? text : ""));
    EXPECT_THAT(last.errors,
                testing::HasSubstr(hasRoute ? "" : "There is no conversion between these code pages"));
    if (!hasRoute) {
      EXPECT_THAT(last.errors, kWarning);
    }
    EXPECT_THAT(last.errors, testing::Not(testing::HasSubstr("could not be read")));
  }
}

}  // namespace
