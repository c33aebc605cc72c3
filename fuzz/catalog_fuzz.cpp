// Reads any bytes as a message library and as a message table, from memory by the readers and from a file by
// the classes. Then uses them as texts for a catalog: what the writer accepts, the readers return.
#include <map>

#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "messages/resource_text.h"
#include "vel_include/vel_messages.h"

namespace {

using fuzz::require;
using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

volatile std::uint8_t touched = 0;

/// Reads every entry and returns their number.
std::size_t readTable(const MessageResource& resource) {
  std::size_t count = 0;
  MessageResource::Cursor place;
  MessageResource::Entry entry{}, found{};
  for (; resource.next(place, entry); ++count) {
    for (std::size_t i = 0; i < entry.sizeInBytes; ++i) touched = entry.text[i];
    // Where blocks overlap, find() returns the text of the first one.
    if (count < 20 && resource.find(entry.id, found)) require(found.id == entry.id);
  }
  return count;
}

void readBlock(const std::vector<std::uint8_t>& bytes) {
  const PortableExecutable file(bytes.data(), bytes.size());
  PortableExecutable::Cursor cursor;
  std::size_t count = 0;
  for (MessageTable table{}, chosen{}; file.nextMessageTable(cursor, table);) {
    count += readTable(MessageResource(table.data, table.sizeInBytes));
    if (table.id == PortableExecutable::kMessageTableId && table.language <= 0xFFFF)
      require({file.findMessageTable(table.language, chosen), chosen.language == table.language});
  }
  require(count <= 64 * bytes.size() / 4);
}

void readFile(const char* name, bool isLibrary) {
  const VelClMessageCatalog catalog((VelClFilename(name)));
  require(catalog.isValid() == isLibrary);
  VelClMessageCatalogCursor cursor(catalog);
  unsigned long last = 0;
  std::size_t count = 0;
  for (bool more = cursor.setToFirst(); more && count < 100; more = cursor.setToNext(), ++count) {
    require(cursor.getId() >= last);
    last = cursor.getId();
    VelClMessage message(catalog, last, cursor.getAsCString());
    require(std::string_view(message.getAsCString()).size() <= VEL_MAX_MESSAGE_LENGTH);
  }
}

/// Texts by language and id.
using Texts = std::map<std::pair<unsigned int, std::uint32_t>, std::string>;

/// Sets a text for each NUL-terminated one of the input, which follows its language, id and kind. Returns
/// those that the writer accepts.
Texts writeTexts(fuzz::Bytes input, VelClMessageCatalogWriter& writer) {
  Texts texts;
  while (!input.atEnd()) {
    const unsigned int language = input.byte() % 3;
    const std::uint32_t id = input.byte() % 2 == 0 ? input.byte() : 0xFFFFFF00 + input.byte();
    const bool unicode = input.byte() % 4 != 0;
    const fuzz::Text text = input.text();
    const std::string_view view = text.view();
    const bool isSet = unicode ? writer.setText(language, id, view.data(), view.size())
                               : writer.setSingleByteText(language, id, view.data(), view.size());
    require(isSet || unicode || view.size() > 65527);
    if (isSet) texts[{language, id}] = view;
  }
  return texts;
}

Texts readTexts(const unsigned char* bytes, std::size_t size) {
  Texts texts;
  const PortableExecutable file(bytes, size);
  require(file.isValid());
  PortableExecutable::Cursor cursor;
  for (MessageTable table{}; file.nextMessageTable(cursor, table);) {
    const MessageResource resource(table.data, table.sizeInBytes);
    MessageResource::Cursor place;
    for (MessageResource::Entry entry{}; resource.next(place, entry);) {
      const auto text = vel::messages::storedOrUtf8Text(entry);
      texts[{table.language, entry.id}].assign(text.data(), text.size());
    }
  }
  return texts;
}

void roundTrip(fuzz::Bytes input) {
  VelClMessageCatalogWriter writer((VelClFilename("unused")));
  const Texts texts = writeTexts(input, writer);
  const unsigned char* bytes = nullptr;
  std::size_t size = 0;
  require(writer.getBytes(bytes, size) == !texts.empty());
  if (!texts.empty()) require(readTexts(bytes, size) == texts);
}

}  // namespace

void fuzz::run(fuzz::Bytes input) {
  roundTrip(input);
  static InputFile file("DLL");
  const std::vector<std::uint8_t> bytes(input.rest().begin(), input.rest().end());
  readTable(MessageResource(bytes.data(), bytes.size()));
  readBlock(bytes);
  file.write(input.rest());
  readFile(file.name(), PortableExecutable(bytes.data(), bytes.size()).isValid());
}
