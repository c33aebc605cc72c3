// Compiles message sources. Everything is made in memory first, so that a mistake leaves all files as they
// were.
#include "tools/velmsg/compiler.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "tools/velmsg/error_names.h"
#include "tools/velmsg/files.h"
#include "tools/velmsg/identifier_header.h"
#include "tools/velmsg/message_functions.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/table_writer.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velmsg {
namespace {

/// Converts texts to single bytes; one object for all texts, because opening a conversion takes long.
class AnsiConverter : private VelClConversionSink {
 public:
  explicit AnsiConverter(const VelClCCSID& codepage) : conversion_(VelClCCSID::CCSID_UTF8, codepage) {}

  bool isSupported() const { return conversion_.isSupported(); }
  /// Returns false if the code page does not have all characters.
  bool convert(const std::string& text) {
    bytes_.clear();
    conversion_.restart();
    return conversion_.convert(text.data(), text.size(), *this) && conversion_.finish(*this);
  }
  const std::string& bytes() const { return bytes_; }

 private:
  void write(const char* bytes, std::size_t size) override { bytes_.append(bytes, size); }

  VelClStrictConversion conversion_;
  std::string bytes_;
};

/// Adds all texts to a catalog and reports those that it cannot hold.
class CatalogBuilder {
 public:
  CatalogBuilder(const MessageSource& source, const std::optional<VelClCCSID>& ansi, Diagnostics& diagnostics)
      : source_(source), diagnostics_(diagnostics), writer_(VelClFilename()), ansi_(ansi) {
    if (ansi) converter_.emplace(*ansi);
  }

  std::string build() {
    if (converter_ && !converter_->isSupported()) {
      addDiagnostic(diagnostics_, {{}, kNoConversion, std::to_string(ansi_->getAsInt())});
      return {};
    }
    for (const SourceMessage& message : source_.messages)
      for (const SourceText& text : message.texts) add(message.id, text);
    const unsigned char* bytes = nullptr;
    std::size_t size = 0;
    if (writer_.getBytes(bytes, size)) return {bytes, bytes + size};
    // After another mistake there may be no text left.
    if (diagnostics_.empty())
      addDiagnostic(diagnostics_, {{}, hasText() ? kCatalogTooLarge : kNoMessages, {}});
    return {};
  }

 private:
  void add(std::uint32_t id, const SourceText& text) {
    const unsigned int language = source_.languages[text.language].number;
    const std::string stored = storedText(text.text);
    if (converter_ && !converter_->convert(stored)) return report(text, kNotInCodepage);
    const std::string& bytes = converter_ ? converter_->bytes() : stored;
    const bool isSet = converter_ ? writer_.setSingleByteText(language, id, bytes.data(), bytes.size())
                                  : writer_.setText(language, id, bytes.data(), bytes.size());
    if (!isSet) report(text, kTextTooLong);
  }
  bool hasText() const {
    return std::ranges::any_of(source_.messages, [](const auto& message) { return !message.texts.empty(); });
  }
  void report(const SourceText& text, TextId id) { addDiagnostic(diagnostics_, {text.position, id, {}}); }

  const MessageSource& source_;
  Diagnostics& diagnostics_;
  VelClMessageCatalogWriter writer_;
  std::optional<VelClCCSID> ansi_;
  std::optional<AnsiConverter> converter_;
};

bool isLanguage(const SourceLanguage& language, const char* nameOrNumber) {
  std::uint32_t number = 0;
  if (parseNumber(nameOrNumber, number)) return language.number == number;
  return equalsIgnoringAsciiCase(language.name.c_str(), nameOrNumber);
}

/// Removes the texts in other languages, unless the list is empty. Reports languages that the source does not
/// know.
void selectLanguages(const std::vector<const char*>& languages, MessageSource& source,
                     Diagnostics& diagnostics) {
  if (languages.empty()) return;
  std::vector<bool> isSelected(source.languages.size());
  for (const char* const name : languages) {
    bool isKnown = false;
    for (std::size_t i = 0; i < isSelected.size(); ++i) {
      if (!isLanguage(source.languages[i], name)) continue;
      isKnown = isSelected[i] = true;
    }
    if (!isKnown) addDiagnostic(diagnostics, {{}, kUnknownLanguage, name});
  }
  for (SourceMessage& message : source.messages)
    std::erase_if(message.texts, [&](const SourceText& text) { return !isSelected[text.language]; });
}

/// Returns the language that the user names, or the one that the source suggests.
std::uint16_t chooseTableLanguage(const Compilation& compilation, const MessageSource& source,
                                  Diagnostics& diagnostics) {
  if (!compilation.tableLanguage) return languageOfTable(source);
  const std::uint32_t number = *compilation.tableLanguage;
  const auto hasNumber = [number](const SourceLanguage& language) { return language.number == number; };
  if (std::ranges::none_of(source.languages, hasNumber))
    addDiagnostic(diagnostics, {{}, kUnknownLanguage, std::to_string(number)});
  return static_cast<std::uint16_t>(number);
}

bool isStandardOutput(const char* name) {
  return std::strcmp(name, "-") == 0;
}

/// Returns the file name that identifiers are made of.
const char* nameInside(const Compilation& compilation, const char* output) {
  return isStandardOutput(output) ? compilation.sources[0] : output;
}

std::vector<Output> makeOutputs(const Compilation& compilation, const MessageSource& source,
                                Diagnostics& diagnostics) {
  std::vector<Output> outputs;
  if (compilation.catalog != nullptr)
    outputs.push_back({compilation.catalog, CatalogBuilder(source, compilation.ansi, diagnostics).build()});
  if (compilation.header != nullptr)
    outputs.push_back(
        {compilation.header, identifierHeader(source, nameInside(compilation, compilation.header))});
  if (compilation.table != nullptr)
    outputs.push_back(
        {compilation.table, stringTable(source, identifierOf(nameInside(compilation, compilation.table)),
                                        chooseTableLanguage(compilation, source, diagnostics), diagnostics)});
  if (compilation.functions != nullptr)
    outputs.push_back(
        {compilation.functions,
         messageFunctions(source, nameInside(compilation, compilation.functions), diagnostics)});
  return outputs;
}

}  // namespace

bool readMessageSources(const std::vector<const char*>& files, const VelClCCSID& codepage,
                        MessageSource& source, Diagnostics& diagnostics, const char*& file) {
  source = emptySource();
  for (const char* const name : files) {
    std::string bytes;
    if (!readFile(name, bytes)) {
      file = name;
      return false;
    }
    readMessageSource(name, bytes, codepage, source, diagnostics);
  }
  file = nullptr;
  return diagnostics.empty();
}

bool isAsciiBased(const VelClCCSID& codepage) {
  const std::string ascii = "\r\n !%019AZaz";
  AnsiConverter converter(codepage);
  return !converter.isSupported() || (converter.convert(ascii) && converter.bytes() == ascii);
}

CompileOutcome compile(const Compilation& compilation, MessageSource& source, Diagnostics& diagnostics) {
  const char* file = nullptr;
  if (!readMessageSources(compilation.sources, compilation.codepage, source, diagnostics, file))
    return {file != nullptr ? CompileResult::NotRead : CompileResult::Faulty, file};
  selectLanguages(compilation.languages, source, diagnostics);
  auto outputs = makeOutputs(compilation, source, diagnostics);
  if (!diagnostics.empty()) return {CompileResult::Faulty, nullptr};
  CompileOutcome outcome{CompileResult::Written, nullptr};
  const auto standard =
      std::ranges::find_if(outputs, [](const Output& output) { return isStandardOutput(output.name); });
  if (standard != outputs.end()) {
    outcome.standardOutput = std::move(standard->bytes);
    outputs.erase(standard);
  }
  outcome.file = writeOutputs(outputs, outcome.changedRights);
  if (outcome.file != nullptr) outcome.result = CompileResult::NotWritten;
  return outcome;
}

}  // namespace vel::velmsg
