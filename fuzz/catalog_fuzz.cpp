// Reads any bytes as a library of messages, and as one table: in a block of their size by the readers, and
// from a file by the classes.
#include <fstream>

#include "fuzz/bytes.h"
#include "messages/message_resource.h"
#include "messages/portable_executable.h"
#include "vel_include/vel_messages.h"

namespace {

using fuzz::require;
using vel::messages::MessageResource;
using vel::messages::MessageTable;
using vel::messages::PortableExecutable;

volatile std::uint8_t touched = 0;

/// How many entries there are.
std::size_t readTable(const MessageResource& resource) {
  std::size_t count = 0;
  MessageResource::Cursor place;
  MessageResource::Entry entry{}, found{};
  for (; resource.next(place, entry); ++count) {
    for (std::size_t i = 0; i < entry.sizeInBytes; ++i) touched = entry.text[i];
    // Where blocks overlap, the first one decides, which the walk may have left out.
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
    if (table.nameId == PortableExecutable::kMessageTableName && table.language <= 0xFFFF)
      require(file.findMessageTable(table.language, chosen) && chosen.language == table.language);
  }
  require(count <= 64 * bytes.size() / 4);
}

void readFile(const char* name) {
  const VelClMessageCatalog catalog((VelClFilename(name)));
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

/// The file that all inputs are written to.
class InputFile {
 public:
  InputFile() {
    static_cast<void>(velTmpFileCreate(nullptr, "FUZZ", name_));
    VelClFile(name_, nullptr).remove();
    VelClFilename library(name_);
    library.setNewExtension("DLL");
    file_ = library;
  }
  ~InputFile() { VelClFile(file_, nullptr).remove(); }

  const char* write(const std::uint8_t* data, std::size_t size) const {
    std::ofstream(file_.getAsCString(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return file_.getAsCString();
  }

 private:
  char name_[VEL_MAX_PATH_LENGTH + 1] = {};
  VelClFilename file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile file;
  const std::vector<std::uint8_t> bytes(data, data + size);
  readTable(MessageResource(bytes.data(), bytes.size()));
  readBlock(bytes);
  readFile(file.write(data, size));
  return 0;
}
