// Reads any bytes as a message source. What is read compiles to a catalog with the same texts, and comes back
// the same from a source that is written and from .po files.
#include "fuzz/bytes.h"
#include "tools/velmsg/identifier_header.h"
#include "tools/velmsg/message_functions.h"
#include "tools/velmsg/message_source.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_check.h"
#include "tools/velmsg/source_writer.h"
#include "tools/velmsg/table_writer.h"
#include "vel_include/vel_messages.h"

namespace fuzz::catalog_source {

namespace {

using namespace vel::velmsg;

/// A header line is a line of a comment, empty, or a directive unless comments of the source bring others.
/// Comments end where they should.
void requireSoundHeader(const MessageSource& source) {
  const std::string header = identifierHeader(source, "a.h");
  bool hasComments = !source.headerComments.empty() || !source.trailingComments.empty();
  for (const SourceMessage& message : source.messages) hasComments |= !message.comments.empty();
  for (std::size_t begin = 0; begin < header.size() && !hasComments;) {
    const std::size_t end = header.find('\n', begin);
    const std::string_view line = std::string_view(header).substr(begin, end - begin);
    const bool isFirst = begin == 0;
    require(line.empty() || line[0] == '#' || line == "/*" || line.starts_with(" *") || isFirst);
    require(line == " */" || isFirst || line.find("*/") == std::string_view::npos);
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

/// Exports each language and imports it again, which changes nothing.
void translate(const MessageSource& source) {
  const std::string text = writeMessageSource(source);
  MessageSource again = emptySource();
  Diagnostics diagnostics;
  require(readMessageSource("b.mc", text, VelClCCSID::CCSID_UTF8, again, diagnostics));
  require(writeMessageSource(again) == text);
  const std::size_t reference = referenceLanguage(source);
  for (std::size_t i = 0; i < source.languages.size() && i < 4; ++i) {
    const std::uint16_t language = source.languages[i].number;
    PoFile po;
    require(readPo(writePo(exportPo(source, reference, language)), 0, po, diagnostics));
    const bool isChanged = importPo(again, po, {reference, language, true}, diagnostics);
    Diagnostics noNumber;
    require({!isChanged, diagnostics.empty(), languageOfPo(source, po, noNumber) == language});
  }
  checkSource(source, reference, diagnostics);
}

void run(Bytes input) {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
  const bool isSound = readMessageSource("a.mc", input.rest(), VelClCCSID::CCSID_UTF8, source, diagnostics);
  require({isSound == diagnostics.empty(), diagnostics.size() <= kMaxDiagnostics});
  for (const Diagnostic& diagnostic : diagnostics)
    require({diagnostic.position.file == 0, diagnostic.text != 0});
  Diagnostics faults;
  if (!isSound) return checkSource(source, referenceLanguage(source), faults);
  requireSoundHeader(source);
  messageFunctions(source, "a.h", faults);
  stringTable(source, "a", languageOfTable(source), faults);
  compile(source);
  translate(source);
}

const Target target("catalog_source", run);

}  // namespace

}  // namespace fuzz::catalog_source
