// One pass of the formatter through a trace file: reads, filters and renders entries. The format string is
// parsed by trace_format_program.cpp; values are formatted by trace_data_text.cpp, dumps by util/dump_line.h.
//
// An entry is rendered step by step: renderEntry() copies a piece of literal text, calls the directive after
// it, and so on. Both write to the output buffer at `out` and return the new end. Room for a whole step is
// reserved beforehand, so that most steps need neither a check of their own nor a call of the stream.
// Directives whose output is unbounded (data, types, indented lines) go through throughBuffer(), which
// commits what was written, lets them append to the buffer, and reserves anew:
//
//   "%p, %t: %d"    reserve | %p | ", " | %t | ": " | commit, %d appends, reserve | commit
//
// The file is untrusted. Its lengths are 32-bit numbers: data is read in pieces of bounded size, and skipped
// data costs no more than reading the file to its end.
#include "trace/trace_formatter_run.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "base/short_text.h"
#include "trace/trace_data_rules.h"
#include "trace/trace_data_text.h"
#include "util/dump_line.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_util.h"

using vel::trace::DataFault;
using vel::trace::FormatStep;
using vel::trace::TextBuffer;
using vel::trace::TraceTypeNames;
using vel::util::BinaryForm;
using vel::util::HexForm;
using vel::util::LineLayout;

namespace {

/// Throws the exception that all bad files are reported with. Intentional: callers see `origin` and `line` as
/// fixed texts and numbers; they are not lines of this file.
[[noreturn]] void throwError(VelEnErrorId id, VelEnErrorClass errorClass, const char* origin,
                             unsigned int line) {
  VelClException exception(id, errorClass, VelEnErrorSeverity::FATAL, VelEnErrorAction::TERMINATE, "");
  exception.setOrigin(origin, line);
  throw exception;
}

[[noreturn]] void throwUnexpectedEnd(const char* origin, unsigned int line) {
  throwError(TRACEFORMAT_UNEXPECTED_EOF, VelEnErrorClass::IO_READ_PROBLEM, origin, line);
}

[[noreturn]] void throwCorrupted(const char* origin, unsigned int line) {
  throwError(TRACEFORMAT_FILE_CORRUPTED, VelEnErrorClass::INVALID_DATA, origin, line);
}

constexpr unsigned int numberOf(VelEnTraceDataType type) {
  return static_cast<unsigned int>(type);
}

constexpr std::size_t kMaxValueSize = 16;
/// Literal texts up to this length are copied in blocks.
constexpr std::size_t kShortText = 64;
/// Enough for a step without throughBuffer(): a literal text of kShortText characters and a
/// function name or message of at most 511.
constexpr std::size_t kStepRoom = 1024;
/// Limits the indentation of a line, whose level is read from the file.
constexpr std::uint32_t kDeepestShown = 1024;

std::uint32_t shownLevels(std::uint32_t nestingLevel) {
  // A negative level: the exit of a function without its entry.
  return nestingLevel >> 31 != 0 ? 0 : std::min(nestingLevel, kDeepestShown);
}

/// Everything it calls is inlined (flatten): with a constant length the loops run three times as fast.
[[gnu::flatten]] char* writeFullLine(char* out, std::uint64_t offset, const std::uint8_t* bytes) {
  return vel::util::writeLine<HexForm>(out, offset, bytes, HexForm::kBytes);
}

std::string_view builtInText(unsigned long id) {
  return velMsgCatGetBuiltInTable(nullptr)[id];
}

/// Throws if data of `length` bytes is damaged or its type is unknown.
void checkData(unsigned int type, std::uint32_t length) {
  switch (vel::trace::dataFaultOf(type, length)) {
    case DataFault::None:
      return;
    case DataFault::AddressSize:
      throwCorrupted("VelClTraceFormatter::formatData, line 364", 364);
    case DataFault::TooLong:
      throwCorrupted("VelClTraceFormatter::formatData, line 377", 377);
    case DataFault::LevelSize:
      throwCorrupted("VelClTraceFormatter::formatData, line 405", 405);
    case DataFault::NotEmpty:
      throwCorrupted("VelClTraceFormatter::formatData, line 433", 433);
    case DataFault::ValueSize:
      throwCorrupted("VelClTraceFormatter::formatData, line 502", 502);
    case DataFault::UnknownType:
      throwCorrupted("VelClTraceFormatter::formatData, line 541", 541);
  }
}

}  // namespace

VelClTraceFormatter::Run::Run(VelClTraceFormatter& formatter, std::ostream& stream)
    : formatter_(formatter),
      out_(stream),
      stream_(&input_),
      program_(formatter.format_, directiveLetters(), formatter.indentation_ != nullptr),
      entry_(*formatter.environment_),
      indentation_(vel::textOrEmpty(formatter.indentation_)) {
  formatter.stream_ = &stream;
  formatter.entryCount_ = 0;
  for (unsigned long id = kBytes; id < kTextEnd; ++id)
    messages_[id - kBytes] = loadText(static_cast<TextId>(id));
  if (!input_.open(formatter.environment_->getFilename().getAsCString()))
    throwError(TRACEFORMAT_COULD_NOT_OPEN, VelEnErrorClass::IO_PERMISSION_DENIED,
               "VelClTraceFormatter::format, line 837", 837);
}

/// Loads a text once for the pass. The catalog's message holds one text at a time, so its texts are copied.
std::string_view VelClTraceFormatter::Run::loadText(TextId id) {
  if (formatter_.message_ == nullptr) return builtInText(id);
  const std::string_view text = formatter_.message_->setNewMessageId(id);
  vel::OwnedText& copy = texts_[id - kBytes];
  copy = vel::copyText(text.data(), text.size());
  return {copy.get(), text.size()};
}

void VelClTraceFormatter::Run::formatAll() {
  try {
    while (formatEntry()) ++formatter_.entryCount_;
    if (input_.hasFailed()) throwUnexpectedEnd("VelClTraceFormatter::formatEntry, line 644", 644);
  } catch (...) {
    // Writes the entries before the damaged one.
    out_.flush();
    throw;
  }
  out_.flush();
}

/// Returns false at the end of the file, also when it ends within a
/// record: the last save may have been cut off.
bool VelClTraceFormatter::Run::formatEntry() {
  if (!entry_.read(stream_)) return false;
  if (isShown()) {
    hideFunction_ = repeatsFunction();
    renderEntry();
  } else {
    skipEntry(entry_.getDumpDataLength());
  }
  return true;
}

bool VelClTraceFormatter::Run::isShown() const {
  const bool isFunction = entry_.getType() == VelEnTraceDataType::FUNCTION_ENTRY ||
                          entry_.getType() == VelEnTraceDataType::FUNCTION_EXIT;
  const VelClTraceFilter& filter = *formatter_.filter_;
  return (formatter_.showFunctionRecords_ || !isFunction) && filter.matchesDetail(entry_.getDetail()) &&
         filter.matchesCompId(entry_.getComponentId()) && filter.matchesProcessId(entry_.getProcessId()) &&
         filter.matchesThreadId(entry_.getThreadId());
}

/// Returns whether the entry's function name is the last one shown, and records it as that. Intentional:
/// FUNCTION_ENTRY always shows its name and does not record it.
bool VelClTraceFormatter::Run::repeatsFunction() {
  if (formatter_.showRepeatedNames_ || entry_.getType() == VelEnTraceDataType::FUNCTION_ENTRY) return false;
  const std::string_view origin(entry_.getOrigin(), entry_.getOriginLength());
  if (origin == std::string_view(remembered_, rememberedLength_)) return true;
  rememberedLength_ = origin.copy(remembered_, sizeof remembered_);
  return false;
}

struct VelClTraceFormatter::Run::Directive {
  char letter;
  char* (Run::*show)(char* out);
};

// Steps of a format program refer to directives by their index in this table.
constexpr VelClTraceFormatter::Run::Directive VelClTraceFormatter::Run::kDirectives[] = {
    {'c', &Run::showComponent},
    {'d', &Run::throughBuffer<&Run::formatData>},
    {'f', &Run::showFunction},
    {'l', &Run::showDetail},
    {'m', &Run::showMessage},
    {'n', &Run::throughBuffer<&Run::showLineBreak>},
    {'p', &Run::showProcess},
    {'s', &Run::showTimeStamp},
    {'t', &Run::showThread},
    {'x', &Run::throughBuffer<&Run::showShortType>},
    {'X', &Run::throughBuffer<&Run::showLongType>},
};

std::string_view VelClTraceFormatter::Run::directiveLetters() {
  static constexpr auto kLetters = [] {
    std::array<char, std::size(kDirectives)> letters{};
    for (std::size_t i = 0; i < letters.size(); ++i) letters[i] = kDirectives[i].letter;
    return letters;
  }();
  return {kLetters.data(), kLetters.size()};
}

void VelClTraceFormatter::Run::renderEntry() {
  char* out = out_.reserve(kStepRoom);
  for (const FormatStep& step : program_) {
    if (step.length <= kShortText) {
      out = TextBuffer::writeBlocks(out, program_.textOf(step), step.length);
    } else {
      out_.commit(out);
      out_.append({program_.textOf(step), step.length});
      out = out_.reserve(kStepRoom);
    }
    if (step.directive != FormatStep::kNone) out = (this->*kDirectives[step.directive].show)(out);
    if (out_.hasRoom(out, kStepRoom)) continue;
    out_.commit(out);
    out = out_.reserve(kStepRoom);
  }
  out_.commit(out);
}

/// Runs a directive that appends to the buffer instead of writing to `out`.
template <void (VelClTraceFormatter::Run::*show)()>
char* VelClTraceFormatter::Run::throughBuffer(char* out) {
  out_.commit(out);
  (this->*show)();
  return out_.reserve(kStepRoom);
}

char* VelClTraceFormatter::Run::showComponent(char* out) {
  return TextBuffer::writeDecimal(out, entry_.getComponentId());
}

char* VelClTraceFormatter::Run::showProcess(char* out) {
  return TextBuffer::writeDecimal(out, entry_.getProcessId());
}

char* VelClTraceFormatter::Run::showThread(char* out) {
  return TextBuffer::writeDecimal(out, entry_.getThreadId());
}

char* VelClTraceFormatter::Run::showTimeStamp(char* out) {
  return TextBuffer::writeDecimal(out, entry_.getTimeStamp());
}

char* VelClTraceFormatter::Run::showFunction(char* out) {
  return hideFunction_ ? out : TextBuffer::write(out, {entry_.getOrigin(), entry_.getOriginLength()});
}

char* VelClTraceFormatter::Run::showMessage(char* out) {
  return TextBuffer::write(out, {entry_.getMessage(), entry_.getMessageLength()});
}

char* VelClTraceFormatter::Run::showDetail(char* out) {
  return TextBuffer::write(out, VelClTraceFilter::getDetailAsCString(entry_.getDetail()));
}

void VelClTraceFormatter::Run::showLineBreak() {
  out_.put('\n');
  displayIndent();
}

void VelClTraceFormatter::Run::showShortType() {
  showType(&TraceTypeNames::shortName, "VelClTraceFormatter::getTypeAsShortCString, line 602");
}

void VelClTraceFormatter::Run::showLongType() {
  showType(&TraceTypeNames::longName, "VelClTraceFormatter::getTypeAsLongCString, line 602");
}

/// Only DATA and DATA_CLIPPED show their size after the name: "DATA (5 Bytes)".
void VelClTraceFormatter::Run::showType(std::string_view TraceTypeNames::*name, const char* origin) {
  const TraceTypeNames* const names = vel::trace::typeNamesOf(numberOf(entry_.getType()));
  if (names == nullptr)
    throwError(TRACEFORMAT_FILE_CORRUPTED, VelEnErrorClass::DATA_OUT_OF_BOUNDS, origin, 602);
  out_.append(names->*name);
  const bool clipped = entry_.getType() == VelEnTraceDataType::DATA_CLIPPED;
  if (!clipped && entry_.getType() != VelEnTraceDataType::DATA) return;
  out_.append(" (");
  out_.decimal(entry_.getDumpDataLength());
  out_.put(' ');
  out_.append(getMessage(kBytes));
  out_.put(')');
  if (clipped) out_.append(getMessage(kClipped));
}

void VelClTraceFormatter::Run::displayIndent() {
  for (std::uint32_t level = shownLevels(formatter_.nestingLevel_); level > 0; --level)
    out_.append(indentation_);
}

void VelClTraceFormatter::Run::skipEntry(std::uint32_t length) {
  if (!input_.skip(length)) throwUnexpectedEnd("VelClTraceFormatter::skipEntry, line 186", 186);
}

/// If data is both unsuitable for its type and cut off, the unsuitable type is reported.
void VelClTraceFormatter::Run::formatData() {
  const std::uint32_t length = entry_.getDumpDataLength();
  checkData(numberOf(entry_.getType()), length);
  switch (entry_.getType()) {
    case VelEnTraceDataType::DATA:
    case VelEnTraceDataType::DATA_CLIPPED:
    case VelEnTraceDataType::UTF16_STRING:
      return formatHexDump(length);
    case VelEnTraceDataType::C_STRING:
      return formatCString(length);
    case VelEnTraceDataType::ADDRESS:
      return formatAdrs();
    default:
      return formatShortData(length);
  }
}

void VelClTraceFormatter::Run::formatShortData(std::uint32_t length) {
  std::uint8_t bytes[vel::trace::kMaxShortDataSize];
  if (input_.read(bytes, length) < length)
    throwUnexpectedEnd("VelClTraceFormatter::formatEntry, line 644", 644);
  switch (entry_.getType()) {
    case VelEnTraceDataType::FUNCTION_ENTRY:
    case VelEnTraceDataType::FUNCTION_EXIT:
      return showNestingLevel(bytes);
    case VelEnTraceDataType::DATA_NONE:
      return;
    case VelEnTraceDataType::DATA_NULL:
      return out_.append(getMessage(kNullPointer));
    default:
      return showValue(bytes, length);
  }
}

void VelClTraceFormatter::Run::showNestingLevel(const std::uint8_t* bytes) {
  formatter_.nestingLevel_ = vel::trace::littleEndian32(bytes);
  if (!formatter_.showNestingLevel_) return;
  // Intentional: the word of a function's exit is always the built-in English one, even with a catalog.
  const bool isEntry = entry_.getType() == VelEnTraceDataType::FUNCTION_ENTRY;
  out_.append(isEntry ? getMessage(kNestingLevel) : builtInText(kNestingLevel));
  out_.decimal(formatter_.nestingLevel_);
}

void VelClTraceFormatter::Run::showValue(const std::uint8_t* bytes, std::size_t count) {
  vel::trace::writeValue(out_, numberOf(entry_.getType()), bytes, count);
  if (formatter_.showHex_) showBytes<HexForm>("HEX: ", bytes, count);
  if (formatter_.showBinary_) showBytes<BinaryForm>("BIN: ", bytes, count);
}

/// Shows a value's bytes in lines of at most Form::kBytes. Bytes after the largest value's are left out.
template <typename Form>
void VelClTraceFormatter::Run::showBytes(std::string_view label, const std::uint8_t* bytes,
                                         std::size_t count) {
  count = std::min(count, kMaxValueSize);
  for (std::size_t done = 0; done < count; done += Form::kBytes) {
    showLineBreak();
    out_.append(label);
    char* const out = out_.reserve(LineLayout<Form>::kMaxLength);
    out_.commit(vel::util::writeData<Form>(out, bytes + done, std::min(Form::kBytes, count - done)));
  }
}

/// Intentional: every full line ends with a line break, but a last line that is not full does not.
void VelClTraceFormatter::Run::formatHexDump(std::uint32_t length) {
  out_.put('\n');
  for (std::uint32_t offset = 0; offset < length; offset += HexForm::kBytes) {
    std::uint8_t bytes[HexForm::kBytes];
    const std::size_t count = std::min<std::size_t>(length - offset, sizeof bytes);
    if (input_.read(bytes, count) < count)
      throwUnexpectedEnd("VelClTraceFormatter::formatHexDump, line 277", 277);
    displayIndent();
    char* const out = out_.reserve(LineLayout<HexForm>::kMaxLength + 1);
    if (count == sizeof bytes)
      out_.commit(writeFullLine(out, offset, bytes));
    else
      // Without the line break that writeLine adds.
      out_.commit(vel::util::writeLine<HexForm>(out, offset, bytes, count) - 1);
  }
}

void VelClTraceFormatter::Run::formatAdrs() {
  static_assert(sizeof(void*) == sizeof(std::uint64_t));
  const void* address = nullptr;
  if (input_.read(&address, sizeof address) < sizeof address)
    throwUnexpectedEnd("VelClTraceFormatter::formatAdrs, line 247", 247);
  out_.append(VelClStrepAddress(address).getAsCString());
}

/// Reads the text into the output buffer, in pieces: its length may be up to 4 GiB.
void VelClTraceFormatter::Run::formatCString(std::uint32_t length) {
  out_.put('"');
  while (length > 0) {
    const auto part = std::min<std::uint32_t>(length, TextBuffer::kCapacity);
    char* const out = out_.reserve(part);
    const std::size_t count = input_.read(out, part);
    out_.commit(out + count);
    if (count < part) throwUnexpectedEnd("VelClTraceFormatter::formatCString, line 323", 323);
    length -= part;
  }
  out_.put('"');
}
