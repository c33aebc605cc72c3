#include "tools/velmsg/message_listing.h"

#include "platform/test/test.h"
#include "tools/velmsg/test/random_source.h"

namespace vel::velmsg {
namespace {

constexpr const char* kNames = "LanguageNames=(English=0x409:E) LanguageNames=(German=0x407:G)\n";

MessageListing listingOfText(const std::string& text) {
  return listingOf(test::readSource(kNames + text));
}

template <typename Write>
std::string written(Write write) {
  std::ostringstream out;
  write(out);
  return out.str();
}

TEST(MessageListing, IsTheSameForASourceAndItsCatalog) {
  const MessageSource source = test::readSource(std::string(kNames) +
                                                "MessageId=7\nSymbolicName=SEVEN\nLanguage=English\n\"a\\\tb%"
                                                "0\"\n\n.\nMessageId=2\nLanguage=German\nä\n.\n"
                                                "Language=English\na\n.\n");
  const MessageListing listing = listingOf(source);
  EXPECT_EQ(written([&](std::ostream& out) { writeTsv(out, listing); }),
            "2\t1031\t\tä\\n\n2\t1033\t\ta\\n\n7\t1033\tSEVEN\t\"a\\\\\\tb%0\"\\n\\n\n");
  EXPECT_EQ(written([&](std::ostream& out) { writeJson(out, listing); }),
            "[\n{\"id\": 2, \"texts\": {\"1031\": \"ä\\u000a\", \"1033\": \"a\\u000a\"}},\n"
            "{\"id\": 7, \"name\": \"SEVEN\", \"texts\": {\"1033\": "
            "\"\\\"a\\\\\\u0009b%0\\\"\\u000a\\u000a\"}}\n]\n");
  EXPECT_EQ(written([&](std::ostream& out) { writeJson(out, listingOf(source, 1036)); }), "[]\n");

  const test::ScratchDirectory directory;
  VelClMessageCatalogWriter writer(VelClFilename(directory.path("made.DLL").c_str()));
  for (const SourceMessage& message : source.messages) {
    for (const SourceText& text : message.texts) {
      const std::string stored = storedText(text.text);
      ASSERT_TRUE(
          writer.setText(source.languages[text.language].number, message.id, stored.data(), stored.size()));
    }
  }
  ASSERT_TRUE(writer.write());
  const VelClMessageCatalog catalog(VelClFilename(directory.path("made.DLL").c_str()));
  EXPECT_EQ(written([&](std::ostream& out) { writeTsv(out, listingOf(catalog, 1031)); }),
            "2\t1031\t\tä\\n\n");
  EXPECT_EQ(written([&](std::ostream& out) { writeDifferences(out, listing, listingOf(catalog)); }),
            "@\t7\tSEVEN\t\n");
}

TEST(MessageListing, HasEveryKindOfDifference) {
  const MessageListing
      first = listingOfText(
          "MessageId=1\nLanguage=English\nsame\n.\nMessageId=2\nLanguage=English\nold\n.\n"
          "Language=German\nalt\n.\nMessageId=3\nLanguage=English\n%1\n.\nMessageId=4\n"
          "Language=English\ngone\n.\n"),
      second = listingOfText(
          "MessageId=1\nLanguage=English\nsame\n.\nMessageId=2\nLanguage=English\nnew\tone\n.\n"
          "MessageId=3\nLanguage=English\n%2\n.\nLanguage=German\n%2\n.\nMessageId=5\n"
          "Language=English\nadded\n.\n");
  std::ostringstream out;
  EXPECT_FALSE(writeDifferences(out, first, second));
  EXPECT_EQ(out.str(),
            "<\t2\t1031\n~\t2\t1033\told\\n\tnew\\tone\\n\n>\t3\t1031\n!\t3\t1033\t%1\t%2\n<\t4\n>\t5\n");
  EXPECT_TRUE(writeDifferences(out, first, first));
}

}  // namespace
}  // namespace vel::velmsg
