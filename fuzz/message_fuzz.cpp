// Substitution in messages, in both notations, compared with a model on strings. The input is a byte for the
// size of the buffer, ten NUL-terminated variables, and the text.
#include "fuzz/bytes.h"
#include "messages/insert_formatter.h"
#include "vel_include/vel_messages.h"

namespace fuzz::message {

namespace {

using Variables = std::vector<const char*>;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Consumes at most `most` digits from `at`.
std::string digitsAt(const std::string& text, std::size_t& at, std::size_t most) {
  std::string digits;
  while (digits.size() < most && isDigit(text[at])) digits += text[at++];
  return digits;
}

/// Infinite for more digits than a number has, and 0 for none.
double numberOf(const std::string& digits) {
  return std::strtod(digits.c_str(), nullptr);
}

std::string variable(const Variables& variables, const std::string& digits) {
  const double number = numberOf(digits);
  return number >= 1 && number <= 10 ? variables[static_cast<std::size_t>(number) - 1] : "???";
}

std::string tableText(const std::string& text, const Variables& variables) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '%' && text[++at] != '%')
      out += variable(variables, digitsAt(text, at, text.size()));
    else
      out += text[at++];
  }
  return out;
}

/// Returns `value` as printf formats it with `style`, or "???" for a style other than "s" or "hs".
std::string styled(const std::string& style, const std::string& value) {
  std::size_t at = std::min(style.find_first_not_of("-+ #0"), style.size());
  const bool isLeft = style.substr(0, at).find('-') != std::string::npos;
  const bool isZeroFilled = style.substr(0, at).find('0') != std::string::npos;
  const std::string width = digitsAt(style, at, style.size());
  std::string precision;
  const bool isCut = style[at] == '.';
  if (isCut) precision = digitsAt(style, ++at, style.size());
  if (style.substr(at) != "s" && style.substr(at) != "hs") return "???";
  std::string shown = value;
  if (isCut && numberOf(precision) < static_cast<double>(value.size()))
    shown.resize(static_cast<std::size_t>(numberOf(precision)));
  const auto wanted = static_cast<std::size_t>(std::min(numberOf(width), 100000.0));
  if (wanted <= shown.size()) return shown;
  const std::string padding(wanted - shown.size(), isZeroFilled && !isLeft ? '0' : ' ');
  return isLeft ? shown + padding : padding + shown;
}

/// Appends the substituted text to `out`. Returns false if the text is malformed.
bool resourceText(const std::string& text, const Variables& variables, std::string& out) {
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at++];
    if (c == '\r' && text[at] == '\n') ++at;
    if (c != '%') {
      out += c == '\r' || c == '\n' ? "\r\n" : std::string(1, c);
    } else if (at == text.size()) {
      return false;
    } else if (text[at] == '0') {
      return true;
    } else if (isDigit(text[at])) {
      std::string value = variable(variables, digitsAt(text, at, 2));
      if (text[at] == '!') {
        const std::size_t end = text.find('!', at + 1);
        if (end == std::string::npos) return false;
        value = styled(text.substr(at + 1, end - at - 1), value);
        at = end + 1;
      }
      out += value;
    } else {
      const char escape = text[at++];
      const std::size_t known = std::string_view("rtb").find(escape);
      out += escape == 'n' ? "\r\n" : std::string(1, known < 3 ? "\r\t "[known] : escape);
    }
  }
  return true;
}

void requireMessage(const Text& text, const Variables& variables) {
  const char* const table[] = {"", text};
  const VelClMessageCatalog catalog(table, 2);
  const std::string expected = tableText(text.data(), variables).substr(0, VEL_MAX_MESSAGE_LENGTH);
  VelClMessage message(catalog, 1, variables.data());
  require({message.isValid(), message.getAsCString() == expected,
           message.hasAllocatedMemory() == (expected.size() > 80)});
  const VelClMessage copy(message);
  // The text of a message can be a variable of its next text.
  message.setNewMessageId(1, message.getAsCString());
  require(copy.getAsCString() == expected);
}

void run(Bytes input) {
  const std::size_t room = input.byte() * std::size_t{3};
  std::vector<Text> values;
  while (values.size() < 10) values.push_back(input.text());
  const Variables variables(values.begin(), values.end());
  const Text text = input.text();
  const std::unique_ptr<char[]> out(new char[room + 1]);

  const std::string cut = tableText(text.data(), variables).substr(0, room);
  require({vel::messages::expandTableText(text, variables.data(), 10, out.get(), room) == cut.size(),
           out.get() == cut});

  std::string whole;
  const bool isComplete = resourceText(text.data(), variables, whole) && whole.size() <= room;
  const auto result =
      vel::messages::expandResourceText(text, text.view().size(), variables.data(), out.get(), room + 1);
  require({result.complete == isComplete, result.length == (isComplete ? whole.size() : 0),
           out.get() == (isComplete ? whole : "")});
  requireMessage(text, variables);
}

const Target target("message", run);

}  // namespace

}  // namespace fuzz::message
