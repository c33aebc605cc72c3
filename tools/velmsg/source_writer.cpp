// Severity, facility, typedef and output base hold from one message to the next, so they are written where
// they change.
#include "tools/velmsg/source_writer.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "base/digits.h"

namespace vel::velmsg {
namespace {

constexpr std::uint32_t kNumberMask = 0xFFFF;
constexpr unsigned kDefaultOutputBase = 16;
constexpr std::string_view kLanguageNames = "LanguageNames";

class SourceWriter {
 public:
  explicit SourceWriter(const MessageSource& source) : source_(source) {}

  std::string write() {
    writeHeader();
    for (const SourceMessage& message : source_.messages) writeMessage(message);
    if (!source_.trailingComments.empty()) out_ += '\n';
    writeComments(source_.trailingComments);
    return std::move(out_);
  }

 private:
  void writeHeader();
  template <typename Entry>
  void writeDeclarations(std::string_view keyword, const std::vector<Entry>& entries,
                         std::string Entry::*after);
  void writeMessage(const SourceMessage& message);
  void writeKind(std::string_view keyword, const std::vector<NamedNumber>& names, std::size_t name,
                 std::size_t& current);
  void writeSettings(const SourceMessage& message);
  void writeText(const SourceText& text);
  void writeComments(const std::vector<std::string>& comments) {
    for (const std::string& comment : comments) writeLine(";", comment);
  }
  void writeStatement(std::string_view keyword, std::string_view value) {
    out_.append(keyword).append("=").append(value) += '\n';
  }
  /// Writes a line that may end with a carriage return, which is a part of the line break unless there are
  /// two.
  void writeLine(std::string_view mark, std::string_view line) {
    out_.append(mark).append(line).append(line.ends_with('\r') ? "\r\n" : "\n");
  }

  const MessageSource& source_;
  std::string out_;
  std::string_view idTypedef_;
  unsigned outputBase_ = kDefaultOutputBase;
  std::size_t severity_ = kNoName;
  std::size_t facility_ = kNoName;
};

std::string hexNumber(std::uint32_t number) {
  char digits[kMaxHexDigits];
  return "0x" + std::string(digits, writeHex(digits, number, kLowerHexDigits));
}

template <typename Entry>
std::string declaration(std::string_view keyword, const Entry& entry, const std::string& last) {
  std::string text(keyword);
  text.append("=(").append(entry.name).append("=").append(hexNumber(entry.number));
  if (!last.empty()) text.append(":").append(last);
  return text + ")\n";
}

/// Names that need no declaration come first in the model; the file may declare them anywhere. New names have
/// no position and come last.
template <typename Entry>
void SourceWriter::writeDeclarations(std::string_view keyword, const std::vector<Entry>& entries,
                                     std::string Entry::*after) {
  std::vector<const Entry*> declared;
  for (const Entry& entry : entries)
    if (entry.declared) declared.push_back(&entry);
  std::ranges::stable_sort(declared, {}, [](const Entry* entry) {
    const SourcePosition& at = entry->position;
    return std::tuple(at.line == 0, at.file, at.line, at.column);
  });
  for (const Entry* const entry : declared) {
    out_ += declaration(keyword, *entry, entry->*after);
  }
}

void SourceWriter::writeHeader() {
  writeComments(source_.headerComments);
  const std::size_t start = out_.size();
  if (!source_.messages.empty()) writeSettings(source_.messages[0]);
  writeDeclarations("SeverityNames", source_.severities, &NamedNumber::symbol);
  writeDeclarations("FacilityNames", source_.facilities, &NamedNumber::symbol);
  writeDeclarations(kLanguageNames, source_.languages, &SourceLanguage::file);
  // A statement has to follow the comments, or they would belong to the first message.
  if (!source_.headerComments.empty() && out_.size() == start)
    writeStatement("OutputBase", std::to_string(outputBase_));
}

void SourceWriter::writeSettings(const SourceMessage& message) {
  if (message.idTypedef != idTypedef_) writeStatement("MessageIdTypedef", message.idTypedef);
  if (message.outputBase != outputBase_) writeStatement("OutputBase", std::to_string(message.outputBase));
  idTypedef_ = message.idTypedef;
  outputBase_ = message.outputBase;
}

void SourceWriter::writeKind(std::string_view keyword, const std::vector<NamedNumber>& names,
                             std::size_t name, std::size_t& current) {
  if (name == current) return;
  writeStatement(keyword, names.at(name).name);
  current = name;
}

void SourceWriter::writeMessage(const SourceMessage& message) {
  if (!out_.empty()) out_ += '\n';
  writeSettings(message);
  writeComments(message.comments);
  writeStatement("MessageId", std::to_string(message.id & kNumberMask));
  writeKind("Severity", source_.severities, message.severity, severity_);
  writeKind("Facility", source_.facilities, message.facility, facility_);
  if (!message.symbolicName.empty()) writeStatement("SymbolicName", message.symbolicName);
  for (const SourceText& text : message.texts) writeText(text);
}

void SourceWriter::writeText(const SourceText& text) {
  writeStatement("Language", source_.languages.at(text.language).name);
  for (std::string_view rest = text.text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    writeLine("", rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  out_ += ".\n";
}

}  // namespace

std::string writeMessageSource(const MessageSource& source) {
  return SourceWriter(source).write();
}

std::string languageStatement(const SourceLanguage& language) {
  return declaration(kLanguageNames, language, language.file);
}

}  // namespace vel::velmsg
