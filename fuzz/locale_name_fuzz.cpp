// Parses any text as the name of a locale: as a language identifier, as the language of the user, and for its
// fallbacks.
#include "base/language_names.h"
#include "fuzz/bytes.h"
#include "vel_include/vel_messages.h"

namespace fuzz::locale_name {

namespace {

using vel::languageIdOfLocaleName;

constexpr std::uint32_t kPrimaryLanguage = 0x3FF;

char otherCase(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  return c == '-' ? '_' : c == '_' ? '-' : c;
}

/// Expects case, separator, code set and modifier not to matter, and a territory to change only the upper
/// part of the identifier.
void readNumber(const Text& name) {
  const std::uint32_t number = languageIdOfLocaleName(name);
  require(number <= 0xFFFF);
  std::string other(name.view().substr(0, name.view().find_first_of(".@")));
  for (char& c : other) c = otherCase(c);
  require(languageIdOfLocaleName(Text(other)) == number);
  for (const char* more : {".UTF-8", "@euro", ".x@y"})
    require(languageIdOfLocaleName(Text(other + more)) == number);
  const std::string bare = other.substr(0, other.find_first_of("_-"));
  const std::uint32_t main = languageIdOfLocaleName(Text(bare));
  require({(main == 0) == (number == 0), (main & kPrimaryLanguage) == (number & kPrimaryLanguage)});
  const std::uint32_t exact = vel::languageIdOfExactLocaleName(name.view());
  require(exact == 0 || (exact & kPrimaryLanguage) == (number & kPrimaryLanguage));
}

/// Expects a tag to be used if it has less than 16 characters and a language of two or three; otherwise US
/// English.
void readUser(const Text& name) {
  setenv("LC_ALL", name, 1);
  const unsigned int user = VelClLanguage::getUserLanguage().asNumber();
  const std::string tag(name.view().substr(0, name.view().find_first_of(".@")));
  const std::size_t language = std::min(tag.find_first_of("_-"), tag.size());
  const bool counts = (language == 2 || language == 3) && tag.size() < 16;
  require(user == VelClLanguage(counts ? tag.c_str() : "en-US").asNumber());
}

/// Expects fallbacks to be shorter and shorter beginnings of the name, without code set and modifier except
/// for that of a script, and all or nothing of one to be written.
void readFallbacks(const Text& name) {
  std::string before(name.view());
  while (!before.empty()) {
    const std::size_t size = velLocaleGetFallback(before.c_str(), nullptr, 0);
    require(size < before.size());
    Text out(std::string(size, '#'));
    require({velLocaleGetFallback(before.c_str(), out.data(), size) == size, size == 0 || *out.data() == 0});
    velLocaleGetFallback(before.c_str(), out.data(), size + 1);
    const std::string fallback(out.data());
    const std::size_t tag = std::min(fallback.find('@'), fallback.size());
    require({before.starts_with(fallback.substr(0, tag)), before.ends_with(fallback.substr(tag)),
             fallback.find('.') == std::string::npos});
    before = fallback;
  }
}

void run(Bytes input) {
  // Only LC_ALL is used.
  static const bool kOthersAreGone = unsetenv("LC_MESSAGES") == 0 && unsetenv("LANG") == 0;
  require(kOthersAreGone);
  const Text name = input.text();
  readNumber(name);
  readUser(name);
  readFallbacks(name);
}

const Target target("locale_name", run);

}  // namespace

}  // namespace fuzz::locale_name
