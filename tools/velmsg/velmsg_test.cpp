// Runs velmsg as its users do and reads what it prints.
#include "messages/test/catalog_builder.h"
#include "platform/test/test.h"
#include "velmsg_functions.h"
#include "velmsg_identifiers.h"

namespace {

using vel::test::runTool;

/// Returns the output of -list for the table that the catalog is generated from, which has the same escapes.
/// So the test shows that no text is lost, not that the texts are right.
std::string expectedListing(bool english, bool german) {
  std::string listing;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "../messages/messages.tsv")) {
    if (row[0] == "0") continue;
    if (german) listing += row[0] + "\t1031\t" + row.at(2) + "\n";
    if (english) listing += row[0] + "\t1033\t" + row.at(1) + "\n";
  }
  return listing;
}

TEST(Velmsg, ListsTheLibraryCatalogInTheSameBytesOnEverySystem) {
  EXPECT_EQ(runTool("velmsg", {"-cat", "qammsg50.DLL", "-list"}).output, expectedListing(true, true));
  EXPECT_EQ(runTool("velmsg", {"-cat", "qammsg50.txt", "-list", "-lang", "1031"}).output,
            expectedListing(false, true));
}

TEST(Velmsg, WritesEachTextOnOneLine) {
  const std::pair<std::string, std::string> rows[] = {
      {"a\nb", "a\\nb"},      {"a\r\nb", "a\\nb"}, {"a\rb", "a\\rb"},     {"a\r", "a\\r"},
      {"a\r\r\n", "a\\r\\n"}, {"\n\r", "\\n\\r"},  {"\ta\\", "\\ta\\\\"}, {"a\r\n%0", "a\\n"},
      {"a\r%0", "a\\r"},      {"a%%0", "a%%0"},    {"\x1B[m", "\x1B[m"}};
  std::vector<vel::test::TestMessage> messages;
  std::string listing;
  for (const auto& [text, line] : rows) {
    messages.push_back({static_cast<std::uint32_t>(messages.size() + 1), text});
    listing += std::to_string(messages.size()) + "\t1033\t" + line + "\n";
  }
  const auto bytes = vel::test::libraryFile({{1, {{1033, vel::test::messageTable(messages)}}}});
  const vel::test::ScratchDirectory directory;
  const std::string catalog = directory.write("lines.DLL", {bytes.begin(), bytes.end()});
  EXPECT_EQ(runTool("velmsg", {"-cat", catalog, "-list"}).output, listing);
  // A file is found in a directory under any name.
  for (const char* const name : {"lower.dll", "program.exe", "Lines.dll.mui"}) {
    const std::string file = directory.write(name, {bytes.begin(), bytes.end()});
    EXPECT_EQ(runTool("velmsg", {"-cat", file, "-list"}).output, listing) << name;
  }
  // A library without messages has them in a file for each language.
  const auto empty = vel::test::libraryFile({});
  const std::string library = directory.write("translated.dll", {empty.begin(), empty.end()});
  EXPECT_EQ(runTool("velmsg", {"-cat", library, "-langs"}).exitCode, 1);
  std::filesystem::create_directory(directory.path("en-US"));
  directory.write("en-US/translated.dll.mui", {bytes.begin(), bytes.end()});
  EXPECT_EQ(runTool("velmsg", {"-cat", library, "-list"}).output, listing);
  const auto missing = runTool("velmsg", {"-cat", directory.path("missing.mui"), "-list"});
  EXPECT_THAT(missing.errors, testing::HasSubstr("could not be loaded"));
  EXPECT_EQ(missing.exitCode, 2);
}

TEST(Velmsg, MakesHeadersForPrograms) {
  const VelClMessageCatalog catalog(VelClFilename("velmsg_functions"));
  const VelClMessage message = velmsg_functions::textWithInsertsMessage(catalog, "one", "two");
  EXPECT_STREQ(message.getAsCString(), "one and two");
  EXPECT_EQ(message.getId(), TEXT_WITH_INSERTS);
}

TEST(Velmsg, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velmsg/test/velmsg.session", true);
}

}  // namespace
