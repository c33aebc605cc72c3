// Reads any bytes as a .po file, writes what was read, and imports it into a source.
#include "fuzz/bytes.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_writer.h"

namespace fuzz::po {

namespace {

using namespace vel::velmsg;

constexpr const char* kSource =
    "LanguageNames=(English=0x409:E)\nLanguageNames=(German=0x407:G)\n\nMessageId=1\nSymbolicName=A\n"
    "Language=English\n%1 records\n.\nLanguage=German\n%1!s! "
    "S\xC3\xA4tze\n.\nMessageId=2\nLanguage=English\nYes\n.\n";

MessageSource sourceOf(std::string_view text) {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
  require(readMessageSource("a.mc", text, VelClCCSID::CCSID_UTF8, source, diagnostics));
  return source;
}

PoFile poOf(const std::string& text) {
  PoFile po;
  Diagnostics diagnostics;
  require(readPo(text, 0, po, diagnostics));
  return po;
}

/// Whatever is imported makes a source that reads back, and can be exported.
void importInto(MessageSource source, const PoFile& po, bool usesFuzzy) {
  Diagnostics diagnostics;
  const std::string before = writeMessageSource(source);
  const bool isChanged = importPo(source, po, {referenceLanguage(source), 0x407, usesFuzzy}, diagnostics);
  const std::string after = writeMessageSource(source);
  require({isChanged == (before != after), writeMessageSource(sourceOf(after)) == after});
  poOf(writePo(exportPo(source, referenceLanguage(source), 0x407)));
}

void run(Bytes input) {
  PoFile po;
  Diagnostics diagnostics;
  const bool isSound = readPo(input.rest(), 1, po, diagnostics);
  require(isSound == diagnostics.empty());
  for (const Diagnostic& diagnostic : diagnostics)
    require({diagnostic.position.file == 1, diagnostic.text != 0});
  const std::string text = writePo(po);
  const PoFile again = poOf(text);
  require({again.entries.size() == po.entries.size(), writePo(again) == text});
  const MessageSource source = sourceOf(kSource);
  importInto(source, po, false);
  importInto(source, po, true);
  PoFile merged = exportPo(source, referenceLanguage(source), 0x407);
  checkOlderPo(source, po, 0x407, diagnostics);
  mergePo(merged, po);
  poOf(writePo(merged));
}

const Target target("po", run);

}  // namespace

}  // namespace fuzz::po
