#include "tools/velmsg/test/random_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <vector>

namespace vel::test {

using namespace velmsg;

MessageSource readSource(std::string_view text) {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
  readMessageSource("a.mc", text, VelClCCSID(VelClCCSID::CCSID_UTF8), source, diagnostics);
  for (const Diagnostic& diagnostic : diagnostics)
    ADD_FAILURE() << positionText(source, diagnostic.position) << ": " << diagnostic.text << "\n" << text;
  return source;
}

namespace {

void describe(std::ostream& out, const std::vector<std::string>& comments) {
  for (const std::string& comment : comments) out << ";" << comment << "|\n";
}

void describe(std::ostream& out, const std::vector<NamedNumber>& names) {
  for (const NamedNumber& name : names)
    out << name.name << '=' << name.number << ':' << name.symbol << ' ' << name.declared << '\n';
}

/// Chooses with a generator whose results are the same on every system, unlike those of distributions.
class Dice {
 public:
  explicit Dice(std::mt19937& random) : random_(random) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  template <std::size_t size>
  std::string_view oneOf(const std::array<std::string_view, size>& pieces) {
    return pieces[below(size)];
  }

 private:
  std::mt19937& random_;
};

constexpr std::array<std::string_view, 12> kCheckablePieces = {
    "record", " ", "Sätze", "%1", "%2!8s!", "\"", "\\", "100%%", "%n", "\U0001F600", "#~", "日本"};
constexpr std::array<std::string_view, 20> kPieces = {
    "record", " ",  "Sätze", "%1", "%2!d!", "\"", "\\",   "%",   "%n", "\U0001F600",
    "#~",     "\t", "\r",    "\a", "\x1B",  ".",  "\x7F", "\\n", ";",  "%0"};

std::string randomLine(Dice& dice, Texts texts) {
  std::string line = texts == Texts::Checkable ? "x" : "";
  for (std::size_t count = dice.below(6); count > 0; --count)
    line += texts == Texts::Checkable ? dice.oneOf(kCheckablePieces) : dice.oneOf(kPieces);
  return line == "." ? ".." : line;
}

std::string randomText(Dice& dice, Texts texts) {
  std::string text;
  const std::size_t lines = dice.below(4) + (texts == Texts::Checkable ? 1 : 0);
  for (std::size_t i = 0; i < lines; ++i) text += randomLine(dice, texts) + '\n';
  return text;
}

std::vector<std::string> randomComments(Dice& dice) {
  std::vector<std::string> comments;
  while (dice.oneIn(3)) comments.push_back(randomLine(dice, Texts::Any));
  return comments;
}

std::vector<NamedNumber> randomNames(Dice& dice, std::vector<NamedNumber> names, std::uint32_t maximum) {
  if (dice.oneIn(3)) names[0].declared = true;
  for (std::size_t count = dice.below(3); count > 0; --count) {
    const std::string name = "Name" + std::to_string(names.size());
    names.push_back(
        {name, static_cast<std::uint32_t>(dice.below(maximum + 1)), dice.oneIn(2) ? name : "", true, {}});
  }
  return names;
}

/// Returns the index of a name; kNoName only if the message before has none.
std::size_t randomName(Dice& dice, const std::vector<NamedNumber>& names, std::size_t before) {
  return dice.oneIn(2) ? before : dice.below(names.size());
}

std::uint32_t numberOf(const std::vector<NamedNumber>& names, std::size_t name) {
  return name == kNoName ? 0 : names[name].number;
}

SourceMessage randomMessage(Dice& dice, const MessageSource& source, const SourceMessage& before,
                            Texts texts) {
  SourceMessage message;
  message.severity = randomName(dice, source.severities, before.severity);
  message.facility = randomName(dice, source.facilities, before.facility);
  message.id = numberOf(source.severities, message.severity) << 30 |
               numberOf(source.facilities, message.facility) << 16 |
               (before.id % 0x10000 + 1 + static_cast<std::uint32_t>(dice.below(9)));
  if (!dice.oneIn(3)) message.symbolicName = "MSG_" + std::to_string(source.messages.size());
  message.idTypedef = dice.oneIn(3) ? "" : dice.oneIn(2) ? "DWORD" : before.idTypedef;
  message.outputBase = dice.oneIn(5) ? 10 : 16;
  message.comments = randomComments(dice);
  for (std::size_t i = 0; i < source.languages.size(); ++i)
    if (i == 1 || (i > 1 && !dice.oneIn(4))) message.texts.push_back({i, randomText(dice, texts), {}});
  return message;
}

}  // namespace

std::string describe(const MessageSource& source) {
  std::ostringstream out;
  describe(out, source.severities);
  describe(out, source.facilities);
  for (const SourceLanguage& language : source.languages)
    out << language.name << '=' << language.number << ':' << language.file << ' ' << language.declared
        << '\n';
  describe(out, source.headerComments);
  for (const SourceMessage& message : source.messages) {
    out << "\nmessage " << message.id << ' ' << message.symbolicName << ' '
        << static_cast<std::ptrdiff_t>(message.severity) << ' '
        << static_cast<std::ptrdiff_t>(message.facility) << ' ' << message.idTypedef << ' '
        << message.outputBase << '\n';
    describe(out, message.comments);
    for (const SourceText& text : message.texts) out << text.language << ": " << text.text << "|\n";
  }
  describe(out, source.trailingComments);
  return out.str();
}

MessageSource randomSource(std::mt19937& random, Texts texts) {
  constexpr std::uint16_t kLanguages[] = {0x409, 0x407, 0x40C, 0xC07};
  Dice dice(random);
  MessageSource source = emptySource();
  source.files = {"a.mc"};
  source.severities = randomNames(dice, source.severities, 3);
  source.facilities = randomNames(dice, source.facilities, 0xFFF);
  for (std::size_t count = dice.below(4) + 1, i = 0; i < count; ++i)
    source.languages.push_back({"Lang" + std::to_string(i),
                                kLanguages[i],
                                dice.oneIn(3) ? "" : "FILE" + std::to_string(i),
                                true,
                                {}});
  source.headerComments = randomComments(dice);
  SourceMessage before;
  for (std::size_t count = dice.below(13); count > 0; --count) {
    source.messages.push_back(randomMessage(dice, source, before, texts));
    before = source.messages.back();
  }
  source.trailingComments = randomComments(dice);
  return source;
}

}  // namespace vel::test
