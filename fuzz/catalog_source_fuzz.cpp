// Reads any bytes as a message source. What is read compiles to a catalog with the same texts.
#include "fuzz/bytes.h"
#include "tools/velmsg/identifier_header.h"
#include "tools/velmsg/message_source.h"
#include "tools/velmsg/table_writer.h"
#include "vel_include/vel_messages.h"

namespace {

using fuzz::require;
using namespace vel::velmsg;

/// A header line is a comment, empty, or a directive unless comments of the source bring others.
void requireSoundHeader(const MessageSource& source) {
  const std::string header = identifierHeader(source, "a.h");
  bool hasComments = !source.headerComments.empty() || !source.trailingComments.empty();
  for (const SourceMessage& message : source.messages) hasComments |= !message.comments.empty();
  for (std::size_t begin = 0; begin < header.size() && !hasComments;) {
    const std::size_t end = header.find('\n', begin);
    const std::string_view line = std::string_view(header).substr(begin, end - begin);
    require({line.empty() || line[0] == '#' || line.starts_with("//"), !line.ends_with('\\')});
    begin = end + 1;
  }
}

void compile(const MessageSource& source) {
  VelClMessageCatalogWriter writer((VelClFilename("unused")));
  bool hasAll = true;
  for (const SourceMessage& message : source.messages) {
    require(!message.texts.empty());
    for (const SourceText& text : message.texts) {
      const std::string stored = storedText(text.text);
      const auto language = source.languages.at(text.language).number;
      hasAll = writer.setText(language, message.id, stored.data(), stored.size()) && hasAll;
      // Only the length can be refused.
      require(hasAll || stored.size() > 30'000);
      tableText(text.text);
    }
  }
  const unsigned char* bytes = nullptr;
  std::size_t size = 0;
  require(writer.getBytes(bytes, size) == !source.messages.empty() || !hasAll);
}

}  // namespace

void fuzz::run(fuzz::Bytes input) {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
  const bool isSound = readMessageSource("a.mc", input.rest(), VelClCCSID::CCSID_UTF8, source, diagnostics);
  require({isSound == diagnostics.empty(), diagnostics.size() <= kMaxDiagnostics});
  for (const Diagnostic& diagnostic : diagnostics)
    require({diagnostic.position.file == 0, diagnostic.text != 0});
  if (!isSound) return;
  requireSoundHeader(source);
  Diagnostics faults;
  stringTable(source, "a", languageOfTable(source), faults);
  compile(source);
}
