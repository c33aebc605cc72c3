// Aligned output, which has one line per value:
//
//     File name...........................: "trace.trc"
//
// The label is padded to the width of its column, and the value is in quotes if the setting asks for them.
// The lines that describe an exception are of this kind, too. Widths are counted in characters, since labels
// may be translated. Messages in their frame are console_ui_messages.cpp's work.
#include "consoleui/console_ui_format.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "base/digits.h"
#include "base/short_text.h"
#include "base/usage_text.h"
#include "platform/languages.h"

namespace vel::consoleui {
namespace {

/// A line whose value is never quoted, for numbers.
void writePlainLine(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
                    const char* value) {
  writeLabel(stream, params, label);
  stream << value << '\n';
}

/// Writes the symbolic name of a value, or its number if the library does not define a name: programs may use
/// other values.
void writeName(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words, Word label,
               unsigned int nameId, std::int32_t value) {
  const VelClMessage labelText = words[label];
  if (nameId == 0)
    writePlainLine(stream, params, labelText.getAsCString(), NumberText(static_cast<long long>(value)).text);
  else
    writeLine(stream, params, labelText.getAsCString(), words.message(nameId).getAsCString());
}

void writeOrigin(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                 const VelClException& exception) {
  if (exception.getOrigin() == nullptr) return;
  writeLine(stream, params, words[Word::Function].getAsCString(), exception.getOrigin());
  writePlainLine(stream, params, words[Word::Line].getAsCString(),
                 NumberText(static_cast<unsigned long long>(exception.getLine())).text);
}

}  // namespace

std::size_t widthOf(const char* text) {
  // In other code pages a byte counts as a character; in UTF-8 only bytes that begin one do.
  if (!platform::ansiIsUtf8()) return std::strlen(text);
  std::size_t width = 0;
  for (; *text != '\0'; ++text)
    if ((static_cast<unsigned char>(*text) & 0xC0) != 0x80) ++width;
  return width;
}

void writeLabel(std::ostream& stream, const VelClConsoleUIParams& params, const char* label) {
  const std::size_t width = params.getFormatWidth();
  const std::size_t used = std::min(widthOf(label), width);
  const bool isRight = params.getFormatStyle() == VelEnFormatStyle::RIGHT;
  const bool isCentred = params.getFormatStyle() == VelEnFormatStyle::CENTRED;
  std::size_t before = 0;
  std::size_t after = width - used;
  if (isRight) {
    std::swap(before, after);
  } else if (isCentred) {
    before = width / 2 - used / 2;
    // Intentional: the right margin is short by the odd remainders of width and label, as documented, but
    // never below 0.
    after = before - std::min(before, width % 2 + used % 2);
  }
  stream << "  ";
  writeFill(stream, before, ' ');
  stream << label;
  writeFill(stream, after, isRight || isCentred ? ' ' : params.getFormatFillChar());
  stream << ": ";
}

void writeLine(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
               const char* value) {
  const char* quote = params.mustQuoteStrings() ? "\"" : "";
  writeLabel(stream, params, label);
  stream << quote << value << quote << '\n';
}

void writeErrorId(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                  std::uint32_t errorId) {
  const NumberText number(static_cast<unsigned long long>(errorId));
  const unsigned int nameId = velErrorGetIdAsMessageId(errorId);
  writeLabel(stream, params, words[Word::ErrorId].getAsCString());
  if (nameId == 0)
    stream << number.text << '\n';
  else
    stream << words.message(nameId) << " (" << number.text << ")\n";
}

void writeException(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                    const VelClException& exception, bool verbose) {
  const auto errorClass = static_cast<std::int32_t>(exception.getClass());
  const auto severity = static_cast<std::int32_t>(exception.getSeverity());
  const auto action = static_cast<std::int32_t>(exception.getAction());
  writeErrorId(stream, params, words, static_cast<std::uint32_t>(exception.getId()));
  if (verbose || errorClass != 0)
    writeName(stream, params, words, Word::ErrorClass, velErrorGetClassAsMessageId(exception.getClass()),
              errorClass);
  if (verbose || severity != 0)
    writeName(stream, params, words, Word::ErrorSeverity,
              velErrorGetSeverityAsMessageId(exception.getSeverity()), severity);
  if (verbose || action != 0)
    writeName(stream, params, words, Word::ErrorAction, velErrorGetActionAsMessageId(exception.getAction()),
              action);
  // An exception class of the program may return null.
  const char* const cause = exception.getCause();
  if (verbose && cause != nullptr && *cause != '\0')
    writeLine(stream, params, words[Word::Cause].getAsCString(), cause);
  if (verbose) writeOrigin(stream, params, words, exception);
  stream.flush();
}

}  // namespace vel::consoleui

using vel::consoleui::NumberText;
using vel::consoleui::ResolvedText;
using vel::consoleui::Word;

namespace {

constexpr std::size_t kBytesPerLine = 16;

/// Writes the bytes of one line of a dump with blanks between them.
void writeHexadecimal(std::ostream& stream, const unsigned char* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) stream.put(' ');
    const auto digits = vel::hexPair(bytes[i]);
    stream.put(digits[0]).put(digits[1]);
  }
}

}  // namespace

void VelClConsoleUI::format(VelClUIText label) const {
  vel::consoleui::writeLabel(getOutputStream(), *params_, ResolvedText(label, getMessageCatalog()).get());
}

void VelClConsoleUI::format(VelClUIText label, const char* value) const {
  vel::consoleui::writeLine(getOutputStream(), *params_, ResolvedText(label, getMessageCatalog()).get(),
                            vel::textOrEmpty(value));
}

void VelClConsoleUI::format(VelClUIText label, long long value) const {
  format(label);
  getOutputStream() << NumberText(value).text << '\n';
}

void VelClConsoleUI::format(VelClUIText label, unsigned long long value) const {
  format(label);
  getOutputStream() << NumberText(value).text << '\n';
}

void VelClConsoleUI::format(VelClUIText label, int value) const {
  format(label, static_cast<long long>(value));
}

void VelClConsoleUI::format(VelClUIText label, unsigned int value) const {
  format(label, static_cast<unsigned long long>(value));
}

void VelClConsoleUI::format(VelClUIText label, long value) const {
  format(label, static_cast<long long>(value));
}

void VelClConsoleUI::format(VelClUIText label, unsigned long value) const {
  format(label, static_cast<unsigned long long>(value));
}

void VelClConsoleUI::formatBool(VelClUIText label, bool value) const {
  format(label);
  getOutputStream() << words()[value ? Word::Yes : Word::No] << '\n';
}

void VelClConsoleUI::dump(VelClUIText label, const void* data, size_t sizeInBytes) const {
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::ostream& stream = getOutputStream();
  const ResolvedText text(label, getMessageCatalog());
  // Further lines begin below the first byte, also when the label is wider than its column.
  const std::size_t column =
      2 + std::max<std::size_t>(params_->getFormatWidth(), vel::consoleui::widthOf(text.get())) + 2;
  vel::consoleui::writeLabel(stream, *params_, text.get());
  for (size_t done = 0; bytes != nullptr && done < sizeInBytes; done += kBytesPerLine) {
    if (done > 0) {
      stream << '\n';
      vel::writeFill(stream, column, ' ');
    }
    writeHexadecimal(stream, bytes + done, std::min(kBytesPerLine, sizeInBytes - done));
  }
  stream << '\n';
}

void VelClConsoleUI::formatErrId(unsigned long errorId) const {
  vel::consoleui::writeErrorId(getOutputStream(), *params_, words(), static_cast<std::uint32_t>(errorId));
}

void VelClConsoleUI::format(const VelClException& exception, bool verbose) const {
  vel::consoleui::writeException(getOutputStream(), *params_, words(), exception, verbose);
}
