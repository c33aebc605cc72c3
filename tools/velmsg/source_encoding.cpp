// Converts message sources to UTF-8. Those in UTF-8 are checked and copied here, because that needs no ICU;
// the strict conversion does everything else.
#include "tools/velmsg/source_encoding.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/digits.h"
#include "base/utf.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velmsg {
namespace {

using namespace std::string_view_literals;

/// The number of bytes that a diagnostic shows of what it is about, which may be a whole line.
constexpr std::size_t kMaxArgument = 60;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// The position after some well-formed UTF-8 text.
SourcePosition advance(SourcePosition position, std::string_view text) {
  const std::size_t lineBreak = text.rfind('\n');
  if (lineBreak != std::string_view::npos) {
    position.line += static_cast<std::size_t>(std::ranges::count(text, '\n'));
    position.column = 1;
    text.remove_prefix(lineBreak + 1);
  }
  for (const char c : text) position.column += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
  return position;
}

std::string hexText(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto digits = hexPair(static_cast<unsigned char>(c));
    text.append(digits.data(), digits.size());
  }
  return text;
}

/// Copies UTF-8; an ill-formed sequence becomes "?", a character of the same width in every diagnostic.
std::string checkUtf8(std::string_view bytes, std::size_t file, Diagnostics& diagnostics) {
  std::string text;
  text.reserve(bytes.size());
  SourcePosition position{file, 1, 1};
  std::size_t begin = 0;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto sequence =
        utf8SequenceAt(reinterpret_cast<const unsigned char*>(bytes.data()) + i, bytes.size() - i);
    if (sequence.isValid) {
      i += sequence.size;
      continue;
    }
    position = advance(position, bytes.substr(begin, i - begin));
    addDiagnostic(diagnostics, {position, kIllFormedSource, hexText(bytes.substr(i, sequence.size))});
    text.append(bytes, begin, i - begin);
    text += '?';
    ++position.column;
    i += sequence.size;
    begin = i;
  }
  return text.append(bytes, begin);
}

class Text : public VelClConversionSink {
 public:
  void write(const char* bytes, std::size_t size) override { text_.append(bytes, size); }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

class FaultReport : public VelClConversionFaultHandler {
 public:
  FaultReport(std::size_t file, Diagnostics& diagnostics) : file_(file), diagnostics_(diagnostics) {}

  VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault& fault) override {
    const SourcePosition position{file_, static_cast<std::size_t>(fault.line),
                                  static_cast<std::size_t>(fault.column)};
    const std::string_view bytes(reinterpret_cast<const char*>(fault.bytes), fault.size);
    addDiagnostic(diagnostics_, {position, kIllFormedSource, hexText(bytes)});
    return VelClStrictConversion::VelEnPolicy::REPLACE;
  }

 private:
  std::size_t file_;
  Diagnostics& diagnostics_;
};

}  // namespace

std::string convertToUtf8(std::string_view bytes, const VelClCCSID& codepage, std::size_t file,
                          Diagnostics& diagnostics) {
  if (codepage == VelClCCSID(VelClCCSID::CCSID_UTF8)) return checkUtf8(bytes, file, diagnostics);
  VelClStrictConversion conversion(codepage, VelClCCSID::CCSID_UTF8);
  conversion.setNextLineFolding(true);
  Text text;
  FaultReport report(file, diagnostics);
  if (!conversion.isSupported()) {
    addDiagnostic(diagnostics, {{file, 0, 0}, kNoConversion, std::to_string(codepage.getAsInt())});
    return {};
  }
  conversion.convert(bytes.data(), bytes.size(), text, report);
  conversion.finish(text, report);
  return text.take();
}

void addDiagnostic(Diagnostics& diagnostics, Diagnostic diagnostic) {
  if (diagnostics.size() == kMaxDiagnostics) return;
  std::string& argument = diagnostic.argument;
  if (argument.size() > kMaxArgument) {
    std::size_t end = kMaxArgument;
    while (end > 0 && (static_cast<unsigned char>(argument[end]) & 0xC0) == 0x80) --end;
    argument.replace(end, std::string::npos, "...");
  }
  diagnostics.push_back(std::move(diagnostic));
}

std::string toUtf8(std::string_view bytes, const VelClCCSID& codepage, std::size_t file,
                   Diagnostics& diagnostics) {
  if (bytes.starts_with(kUtf8Mark)) return checkUtf8(bytes.substr(kUtf8Mark.size()), file, diagnostics);
  if (bytes.starts_with("\xFF\xFE"sv))
    return convertToUtf8(bytes.substr(2), VelClCCSID(VelClCCSID::CCSID_UCS2_LITTLE_ENDIAN), file,
                         diagnostics);
  if (bytes.starts_with("\xFE\xFF"sv))
    return convertToUtf8(bytes.substr(2), VelClCCSID(VelClCCSID::CCSID_UCS2_BIG_ENDIAN), file, diagnostics);
  return convertToUtf8(bytes, codepage, file, diagnostics);
}

}  // namespace vel::velmsg
