// Tests messages, the memory of their texts, and the plain catalog functions.
#include "platform/test/test.h"
#include "vel_include/vel_messages.h"

namespace {

constexpr const char* kAlphabet[10] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};

constexpr const char* kTable[] = {"[VEL_MSGTAB_SIGNATURE] 7", "[TABLE]", "<%1>", "plain", "%1%1",
                                  "%1%2%3%4%5%6%7%8%9%10",    nullptr};
constexpr const char* kOtherTable[] = {"", "[OTHER]", "{%1}", "other"};

/// Returns the replacement of `count` inserts that are not given.
std::string missing(unsigned int count) {
  return count == 0 ? "" : "???" + missing(count - 1);
}

class Message : public testing::Test {
 protected:
  const VelClMessageCatalog catalog_{kTable, std::size(kTable)};
  const VelClMessageCatalog other_{kOtherTable, std::size(kOtherTable)};
  const std::string longText_ = std::string(100, 'x');
};

TEST_F(Message, SubstitutesItsVariables) {
  EXPECT_STREQ(VelClMessage(catalog_, 5, kAlphabet).getAsCString(), "abcdefghij");
  VelClMessage message(catalog_, 5, "a", "b", "c", "d", "e", "f", "g", "h", "i", "j");
  EXPECT_STREQ(message.getAsCString(), "abcdefghij");
  EXPECT_EQ(message.setNewMessageId(5, "a", nullptr, "c"), "a???c" + missing(7));
  EXPECT_EQ(message.setNewMessageId(5), missing(10));
  EXPECT_EQ(VelClMessage(catalog_, 5, "a", nullptr, "c").getAsCString(), "a???c" + missing(7));
  constexpr const char* const* kNoArray = nullptr;
  EXPECT_EQ(VelClMessage(catalog_, 5, kNoArray).getAsCString(), missing(10));
  EXPECT_EQ(VelClMessageCatalogProxy(&catalog_).getMessage(5, kNoArray), missing(10));
  std::ostringstream stream;
  stream << VelClMessage(catalog_, 2, "%1 %2");
  EXPECT_EQ(stream.str(), "<%1 %2>");
}

TEST_F(Message, StoresUpTo80CharactersInline) {
  VelClMessage message(catalog_, 3);
  // "%1%1" doubles, "<%1>" adds two; each length follows a shorter and a longer one.
  for (const std::size_t length : {79U, 80U, 81U, 80U, 82U, 4096U, 79U, 81U, 100U}) {
    const std::string inner(length - 2, 'x');
    EXPECT_EQ(message.setNewMessageId(2, inner.c_str()), "<" + inner + ">");
    EXPECT_EQ(message.hasAllocatedMemory(), length > 80) << length;
  }
}

TEST_F(Message, OfATableIsCutAt4096Characters) {
  const std::string variable(2100, 'v');
  EXPECT_EQ(VelClMessage(catalog_, 4, variable.c_str()).getAsCString(), std::string(4096, 'v'));
}

TEST_F(Message, TellsInItsTextWhyItCouldNotBeLoaded) {
  const VelClMessageCatalog absent(VelClFilename("absent.txt")), library(VelClFilename("small_catalog"));
  const std::map<std::string, const VelClMessageCatalog*> catalogs = {
      {"table", &catalog_}, {"absent", &absent}, {"library", &library}};
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/message_loads.tsv")) {
    const VelClMessage message(*catalogs.at(row[0]), std::stoul(row[1]));
    EXPECT_EQ(message.isValid(), row.at(2) == "yes") << row[0] << row[1];
    EXPECT_EQ(message.getId(), std::stoul(row[1]));
    EXPECT_EQ(message.getAsCString(), row.at(3));
  }
  EXPECT_FALSE(VelClMessageCatalog::isValidMessageId(0));
  EXPECT_TRUE(VelClMessageCatalog::isValidMessageId(4294967295UL));
}

TEST_F(Message, OfALibraryFailsAbove4096Characters) {
  const VelClMessageCatalog library(VelClFilename("small_catalog"));
  const std::size_t frame = std::string(VelClMessage(library, 2, "").getAsCString()).size();
  const std::string most(4096 - frame, 'v');
  EXPECT_TRUE(VelClMessage(library, 2, most.c_str()).isValid());
  const VelClMessage tooLong(library, 2, (most + "v").c_str());
  EXPECT_FALSE(tooLong.isValid());
  EXPECT_STREQ(tooLong.getAsCString(), "UNABLE TO LOAD MESSAGE #2 FROM CATALOG: small_catalog.DLL");
}

TEST_F(Message, AssignmentKeepsItsOwnCatalog) {
  for (const std::string& from : {std::string("short"), longText_})
    for (const std::string& to : {std::string("brief"), longText_}) {
      const auto source = std::make_unique<VelClMessage>(other_, 2, from.c_str());
      VelClMessage target(catalog_, 2, to.c_str());
      target = *source;
      const VelClMessage copy(*source);
      for (const VelClMessage* message : {&std::as_const(target), &copy}) {
        EXPECT_EQ(message->getAsCString(), "{" + from + "}");
        EXPECT_NE(message->getAsCString(), source->getAsCString());
        EXPECT_EQ(message->hasAllocatedMemory(), source->hasAllocatedMemory());
        EXPECT_TRUE(message->isValid());
        EXPECT_EQ(message->getId(), 2U);
      }
      EXPECT_STREQ(target.setNewMessageId(3), "plain");
    }
  VelClMessage failed(catalog_, 2, "x");
  failed = VelClMessage(other_, 77);
  EXPECT_FALSE(failed.isValid());
  EXPECT_EQ(failed.getId(), 77U);
}

TEST_F(Message, MayBeAssignedToItselfAndUseItsOwnText) {
  for (const std::string& text : {std::string("short"), longText_}) {
    VelClMessage message(catalog_, 2, text.c_str());
    message = std::as_const(message);
    EXPECT_EQ(message.getAsCString(), "<" + text + ">");
    EXPECT_EQ(message.setNewMessageId(4, message.getAsCString()), "<" + text + "><" + text + ">");
    EXPECT_EQ(message.setNewMessageId(2, message.getAsCString() + 1), "<" + text + "><" + text + ">>");
  }
}

constexpr const char* kNull = nullptr;

/// An open catalog of the functions, until the end of its scope.
using Handle = std::unique_ptr<std::remove_pointer_t<VelMsgCatHandle>, decltype(&velMsgCatClose)>;

Handle openOrUseTable(const char* name) {
  return {velMsgCatOpenOrUseStringTable(name, kTable, std::size(kTable)), velMsgCatClose};
}

TEST(CatalogFunctions, CollectVariablesUpToANull) {
  const Handle owner = openOrUseTable("absent");
  VelMsgCatHandle handle = owner.get();
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(velMsgCatGetVar(handle, 5, kNull, kNull), missing(10));
  EXPECT_EQ(velMsgCatGetVar(handle, 5, "a", kNull), "a" + missing(9));
  EXPECT_EQ(velMsgCatGetVar(handle, 5, "a", "b", kNull, "c", kNull), "ab" + missing(8));
  // Intentional: the first insert is used even if it is null.
  EXPECT_EQ(velMsgCatGetVar(handle, 5, kNull, "b", kNull), "???b" + missing(8));
  EXPECT_STREQ(velMsgCatGetVar(handle, 5, "a", "b", "c", "d", "e", "f", "g", "h", "i", "j"), "abcdefghij");
  EXPECT_STREQ(velMsgCatGetVar(handle, 5, "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"),
               "abcdefghij");
}

TEST(CatalogFunctions, OpenLibrariesAndTables) {
  for (const char* name : {"absent.DLL", "", kNull}) EXPECT_EQ(velMsgCatOpen(name), nullptr);
  // The table is not used with a loaded library.
  for (const Handle& library :
       {Handle(velMsgCatOpen("small_catalog.txt"), velMsgCatClose), openOrUseTable("small_catalog")}) {
    ASSERT_NE(library, nullptr);
    EXPECT_NE(velMsgCatGetLanguage(library.get()), 0U);
    EXPECT_TRUE(velMsgCatIsValid(library.get(), 1));
    EXPECT_FALSE(velMsgCatIsValid(library.get(), 3));
    EXPECT_STREQ(velMsgCatGet(library.get(), 1), "[SMALL]");
  }
  const Handle table = openOrUseTable("absent");
  EXPECT_EQ(velMsgCatGetLanguage(table.get()), 0U);
  EXPECT_TRUE(velMsgCatIsValid(table.get(), 3));
  EXPECT_FALSE(velMsgCatIsValid(table.get(), 7));
  const char* first = velMsgCatGet(table.get(), 3);
  EXPECT_STREQ(first, "plain");
  EXPECT_EQ(velMsgCatGet(table.get(), 7), first);  // the handle's one buffer
  EXPECT_STREQ(first, "UNABLE TO LOAD MESSAGE CATALOG: absent.DLL");
  EXPECT_STREQ(velMsgCatGet(openOrUseTable(nullptr).get(), 3), "plain");
  const Handle nothing(velMsgCatOpenOrUseStringTable(nullptr, nullptr, 7), velMsgCatClose);
  EXPECT_FALSE(velMsgCatIsValid(nothing.get(), 3));
  velMsgCatClose(nullptr);
}

TEST(CatalogFunctions, AttachToCatalogsWithALibraryOnly) {
  const VelClMessageCatalog catalog(VelClFilename("small_catalog")), table(kTable, std::size(kTable));
  EXPECT_EQ(velMsgCatOpenAttach(&table), nullptr);
  EXPECT_EQ(velMsgCatOpenAttach(nullptr), nullptr);
  VelMsgCatHandle handle = velMsgCatOpenAttach(&catalog);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(velMsgCatGetLanguage(handle), catalog.getLanguage());
  velMsgCatClose(handle);
  EXPECT_STREQ(VelClMessage(catalog, 1).getAsCString(), "[SMALL]");
}

TEST(MessageCatalogProxy, AgreesWithTheFunctions) {
  const char* const variables[10] = {"x"};
  VelClMessageCatalogProxy owner(VelClFilename("absent"), kTable, std::size(kTable));
  EXPECT_FALSE(owner.isValid());
  EXPECT_TRUE(owner.isValidMessageId(0)) << "it loads, unlike the static query";
  EXPECT_STREQ(owner.getMessage(2, variables), "<x>");
  const VelClMessageCatalog table(kOtherTable, std::size(kOtherTable));
  EXPECT_STREQ(VelClMessageCatalogProxy(&table).getMessage(3), "other");
  VelClMessageCatalogProxy nothing(nullptr);
  EXPECT_FALSE(nothing.isValidMessageId(2));
  EXPECT_EQ(nothing.getLanguage(), 0U);
  EXPECT_STREQ(nothing.getMessage(2), "");
}

}  // namespace
