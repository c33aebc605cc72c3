// Reads any bytes as a message library and as a message table, from memory by the readers and from a file by
// the classes.
#include "fuzz/bytes.h"
#include "fuzz/input_file.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "vel_include/vel_messages.h"

namespace fuzz::catalog {

namespace {

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

void run(Bytes input) {
  static InputFile file("DLL");
  const std::vector<std::uint8_t> bytes(input.rest().begin(), input.rest().end());
  readTable(MessageResource(bytes.data(), bytes.size()));
  readBlock(bytes);
  file.write(input.rest());
  readFile(file.name(), PortableExecutable(bytes.data(), bytes.size()).isValid());
}

const Target target("catalog", run);

}  // namespace

}  // namespace fuzz::catalog
