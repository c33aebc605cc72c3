// Reads written catalogs with this library's reader, the system's formatter, and a resource compiler.
#include "messages/catalog_image.h"
#include "messages/insert_formatter.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "messages/resource_text.h"
#include "platform/test/system_messages.h"
#include "platform/test/test.h"
#include "vel_include/vel_messages.h"

namespace {

using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

/// Texts by language and id.
using Texts = std::map<std::pair<unsigned int, std::uint32_t>, std::string>;

VelClMessageCatalogWriter writerTo(const std::string& path) {
  return VelClMessageCatalogWriter(VelClFilename(path.c_str()));
}

bool set(VelClMessageCatalogWriter& writer, unsigned int language, unsigned long id, const std::string& text,
         bool unicode = true) {
  return unicode ? writer.setText(language, id, text.data(), text.size())
                 : writer.setSingleByteText(language, id, text.data(), text.size());
}

std::string bytesOf(VelClMessageCatalogWriter& writer) {
  const unsigned char* bytes = nullptr;
  std::size_t size = 0;
  return writer.getBytes(bytes, size) ? std::string(bytes, bytes + size) : "";
}

/// Calls `visit` for each table with its resource ID 1.
template <typename Visit>
void visitTables(const std::string& file, Visit visit) {
  const PortableExecutable library(reinterpret_cast<const std::uint8_t*>(file.data()), file.size());
  EXPECT_TRUE(library.isValid());
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; library.nextMessageTable(cursor, table);) {
    EXPECT_EQ(table.id, 1U);
    visit(table);
  }
}

Texts textsIn(const std::string& file) {
  Texts texts;
  visitTables(file, [&texts](const MessageTable& table) {
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor cursor;
    for (MessageResource::Entry entry{}; resource.next(cursor, entry);) {
      const auto text = vel::messages::storedOrUtf8Text(entry);
      texts[{table.language, entry.id}].assign(text.data(), text.size());
    }
  });
  return texts;
}

class Randomness {
 public:
  std::uint32_t below(std::uint32_t limit) { return number() % limit; }

  std::uint32_t id() {
    const std::uint32_t kinds[] = {below(20), 0xFFFFFFF0 + below(16), number(), 0xC0120000 + below(9)};
    return kinds[below(4)];
  }

  std::string text() {
    static const char* const kPieces[] = {
        "a", "%1!8.3s!", "%n", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\t", " "};
    std::string text;
    for (std::uint32_t count = below(30); count > 0; --count) text += kPieces[below(std::size(kPieces))];
    return text;
  }

  Texts texts() {
    Texts texts;
    constexpr unsigned int kLanguages[] = {0x409, 0x407, 0, 0xFFFF};
    for (std::uint32_t count = below(40) + 1; count > 0; --count)
      texts[{kLanguages[below(4)], id()}] = text();
    return texts;
  }

 private:
  std::uint32_t number() { return static_cast<std::uint32_t>(engine_()); }

  std::mt19937 engine_{5489};
};

/// The formatter replaces the line breaks even where it leaves inserts; it cannot format an empty text.
void expectInSystem(const std::string& library, const Texts& texts) {
  const auto messages = vel::test::SystemMessages::load(library);
  ASSERT_NE(messages, nullptr) << library;
  for (const auto& [key, text] : texts) {
    if (text.empty()) continue;
    EXPECT_EQ(messages->stored(key.first, key.second), vel::test::replaced(text, "%n", "\r\n"))
        << key.first << ' ' << key.second;
  }
}

TEST(MessageCatalogWriter, WritesWhatTheReadersRead) {
  const vel::test::ScratchDirectory directory;
  Randomness random;
  for (int run = 0; run < 2000; ++run) {
    const Texts texts = random.texts();
    VelClMessageCatalogWriter writer = writerTo(directory.path("random"));
    VelClMessageCatalogWriter reversed = writerTo("unused");
    for (const auto& [key, text] : texts) {
      EXPECT_TRUE(set(writer, key.first, key.second, "replaced"));
      EXPECT_TRUE(set(writer, key.first, key.second, text));
    }
    for (auto entry = texts.rbegin(); entry != texts.rend(); ++entry)
      EXPECT_TRUE(set(reversed, entry->first.first, entry->first.second, entry->second));
    const std::string file = bytesOf(writer);
    ASSERT_EQ(textsIn(file), texts) << run;
    ASSERT_EQ(bytesOf(reversed), file) << run;
    if (run % 20 != 0) continue;
    ASSERT_TRUE(writer.write());
    ASSERT_EQ(vel::test::readFile(directory.path("random.DLL")), file);
    if (vel::test::hasSystemMessages()) expectInSystem(directory.path("random.DLL"), texts);
  }
}

TEST(MessageCatalogWriter, JoinsConsecutiveIdsAndKeepsSingleBytes) {
  VelClMessageCatalogWriter writer = writerTo("unused");
  for (const unsigned long id : {7UL, 5UL, 6UL, 9UL}) EXPECT_TRUE(set(writer, 0x409, id, "\xE4", false));
  EXPECT_TRUE(set(writer, 0x409, 0xFFFFFFFF, "last"));
  EXPECT_TRUE(set(writer, 0x409, 0, "first"));
  EXPECT_TRUE(set(writer, 0x407, 5, ""));
  const std::string file = bytesOf(writer);
  std::vector<std::size_t> sizes;
  visitTables(file, [&sizes](const MessageTable& table) { sizes.push_back(table.sizeInBytes); });
  // One block; then four blocks (0, 5 to 7, 9, 0xFFFFFFFF) with entries of 16, 8 and 16 bytes.
  EXPECT_THAT(sizes, testing::ElementsAre(4 + 12 + 8, 4 + 4 * 12 + 16 + 4 * 8 + 16));
  EXPECT_EQ(textsIn(file)[std::make_pair(0x409U, 6U)], "\xE4");
}

TEST(MessageCatalogWriter, RefusesWhatAnEntryCannotHold) {
  using Class = VelEnErrorClass;
  struct Row {
    const char* name;
    std::string text;
    bool unicode;
    Class error;
  };
  constexpr Class kNone = Class::UNKNOWN;
  const std::string smile = "\xF0\x9F\x98\x80";
  std::string pairs;
  for (int i = 0; i < 16381; ++i) pairs += smile;
  const Row rows[] = {
      {"longest", std::string(32763, 'a'), true, kNone},
      {"too long", std::string(32764, 'a'), true, Class::DATA_OUT_OF_BOUNDS},
      {"longest of pairs", pairs + "a", true, kNone},
      {"too long with pairs", pairs + smile, true, Class::DATA_OUT_OF_BOUNDS},
      {"longest in three bytes each", vel::test::replaced(std::string(32763, 'a'), "a", "\xE2\x82\xAC"), true,
       kNone},
      {"far too long", std::string(1 << 20, 'a'), true, Class::DATA_OUT_OF_BOUNDS},
      {"longest in single bytes", std::string(65527, '\xE4'), false, kNone},
      {"too long in single bytes", std::string(65528, '\xE4'), false, Class::DATA_OUT_OF_BOUNDS},
      {"NUL", std::string("a\0b", 3), true, Class::INVALID_DATA},
      {"NUL in single bytes", std::string("a\0b", 3), false, Class::INVALID_DATA},
      {"truncated", "a\xE2\x82", true, Class::INVALID_DATA},
      {"surrogate", "\xED\xA0\x80", true, Class::INVALID_DATA},
  };
  for (const Row& row : rows) {
    VelClMessageCatalogWriter writer = writerTo("unused");
    ASSERT_TRUE(set(writer, 1, 1, "before"));
    EXPECT_EQ(set(writer, 1, 2, row.text, row.unicode), row.error == kNone) << row.name;
    EXPECT_EQ(writer.getLastError().errorClass, row.error) << row.name;
    // A refused text leaves the others as they were.
    ASSERT_TRUE(set(writer, 1, 3, "after"));
    Texts expected = {{{1, 1}, "before"}, {{1, 3}, "after"}};
    if (row.error == kNone) expected[{1, 2}] = row.text;
    EXPECT_EQ(textsIn(bytesOf(writer)), expected) << row.name;
  }
}

TEST(MessageCatalogWriter, ReportsWhatItCannotWrite) {
  const vel::test::ScratchDirectory directory;
  VelClMessageCatalogWriter writer = writerTo(directory.path("missing/a"));
  EXPECT_FALSE(writer.write());
  EXPECT_EQ(writer.getLastError().errorClass, VelEnErrorClass::DATA_OUT_OF_BOUNDS) << "no texts";
  EXPECT_FALSE(set(writer, 0x10000, 1, "a"));
  EXPECT_EQ(writer.getLastError().errorClass, VelEnErrorClass::DATA_OUT_OF_BOUNDS);
  EXPECT_TRUE(set(writer, 0xFFFF, 1, "a"));
  EXPECT_EQ(writer.getLastError().errorClass, VelEnErrorClass::UNKNOWN);
  EXPECT_FALSE(writer.write());
  EXPECT_EQ(writer.getLastError().errorId, static_cast<unsigned long>(FILE_COULD_NOT_COPY));
  EXPECT_EQ(writer.getLastError().errorClass, VelEnErrorClass::IO_WRITE_PROBLEM);
}

TEST(MessageCatalogWriter, RefusesFilesThatTheReaderWouldNotLoad) {
  vel::messages::CatalogTexts texts;
  for (std::uint32_t language = 0; language <= 0xFFFE; ++language)
    texts.addSingleBytes(static_cast<std::uint16_t>(language), 1, "", 0);
  vel::Vector<std::uint8_t> file;
  EXPECT_TRUE(writeCatalogImage(texts, std::size_t{64} << 20, file));
  EXPECT_FALSE(writeCatalogImage(texts, file.size() - 1, file));
  texts.addSingleBytes(0xFFFF, 1, "", 0);
  EXPECT_FALSE(writeCatalogImage(texts, std::size_t{64} << 20, file)) << "65,536 languages";
}

/// The texts as the system's formatter expands them or, on a system without one, as this library does.
Texts expandedTexts(const std::string& library) {
  Texts texts = textsIn(vel::test::readFile(library));
  const auto messages = vel::test::SystemMessages::load(library);
  for (auto& [key, text] : texts) {
    const char* inserts[VEL_MAX_MESSAGE_VARIABLES];
    std::ranges::fill(inserts, "insert");
    char out[VEL_MAX_MESSAGE_LENGTH + 1] = "";
    const auto result = vel::messages::expandResourceText(text.data(), text.size(), inserts, out, sizeof out);
    const std::string expanded = result.complete ? out : "(malformed)";
    text = messages == nullptr ? expanded : messages->format(key.first, key.second).value_or("(malformed)");
  }
  return texts;
}

TEST(MessageCatalogCompiler, MakesTheSameMessagesAsOtherTools) {
  const std::pair<const char*, std::size_t> rows[] = {
      {"qammsg50", 440}, {"small_catalog", 6}, {"edge_cases", 8}};
  for (const auto& [name, count] : rows) {
    const Texts texts = expandedTexts(std::string(name) + ".DLL");
    EXPECT_EQ(texts.size(), count) << name;
    EXPECT_EQ(texts, expandedTexts(std::string(name) + "_reference.DLL")) << name;
  }
}

#if defined(VEL_WINDRES)

/// Returns the data of the resources in a .res file, which follow headers that state their sizes.
std::vector<std::string> resourcesIn(const std::string& file) {
  std::vector<std::string> resources;
  const auto number = [&file](std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
  };
  for (std::size_t offset = 0; offset + 8 <= file.size();) {
    const std::size_t size = number(offset), header = number(offset + 4);
    if (size != 0) resources.push_back(file.substr(offset + header, size));
    offset += (header + size + 3) / 4 * 4;
  }
  return resources;
}

TEST(MessageCatalogWriter, AResourceCompilerReadsTheSameTables) {
  const vel::test::ScratchDirectory directory;
  VelClMessageCatalogWriter writer = writerTo(directory.path("a"));
  Randomness random;
  for (const auto& [key, text] : random.texts()) EXPECT_TRUE(set(writer, key.first, key.second, text));
  ASSERT_TRUE(writer.write());
  std::vector<std::string> tables;
  visitTables(bytesOf(writer), [&tables](const MessageTable& table) {
    tables.emplace_back(table.data, table.data + table.sizeInBytes);
  });
  const std::string out = directory.path("a.res");
  const auto result =
      vel::test::runChild(VEL_WINDRES, {"-J", "coff", "-O", "res", directory.path("a.DLL"), out});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(resourcesIn(vel::test::readFile(out)), tables);
}

#endif

}  // namespace
