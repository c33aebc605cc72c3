// Runs velmsg as its users do and reads what it prints.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/session.h"
#include "platform/test/table.h"

namespace {

vel::test::ChildResult velmsg(const std::vector<std::string>& arguments) {
  return vel::test::runChild("velmsg", arguments, {.environment = {{"LC_ALL", "C"}}, .rawOutput = true});
}

/// What -list must print, made from the table that the catalog is made from: it uses the same escapes.
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
  EXPECT_EQ(velmsg({"-cat", "qammsg50.DLL", "-list"}).output, expectedListing(true, true));
  EXPECT_EQ(velmsg({"-cat", "qammsg50.txt", "-list", "-lang", "1031"}).output, expectedListing(false, true));
}

TEST(Velmsg, AnswersQuestionsAndRefusesWhatMakesNoSense) {
  vel::test::expectSession(VEL_TEST_DATA "velmsg/test/velmsg.session", true);
}

}  // namespace
