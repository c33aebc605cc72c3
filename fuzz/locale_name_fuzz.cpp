// Parses any text as a locale name, into the language number and the user's language.
#include <cstdlib>
#include <string>

#include "fuzz/bytes.h"
#include "platform/posix/language_names.h"
#include "vel_include/vel_messages.h"

namespace {

using fuzz::require;
using vel::platform::languageIdOfLocaleName;

constexpr std::uint32_t kPrimaryLanguage = 0x3FF;

char otherCase(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  return c == '-' ? '_' : c == '_' ? '-' : c;
}

/// Case, separator, code set and modifier must not matter; a territory must not change the primary language.
void readNumber(const fuzz::Text& name) {
  const std::uint32_t number = languageIdOfLocaleName(name);
  require(number <= 0xFFFF);
  std::string other(name.view().substr(0, name.view().find_first_of(".@")));
  for (char& c : other) c = otherCase(c);
  require(languageIdOfLocaleName(fuzz::Text(other)) == number);
  for (const char* more : {".UTF-8", "@euro", ".x@y"})
    require(languageIdOfLocaleName(fuzz::Text(other + more)) == number);
  const std::string bare = other.substr(0, other.find_first_of("_-"));
  const std::uint32_t main = languageIdOfLocaleName(fuzz::Text(bare));
  require({(main == 0) == (number == 0), (main & kPrimaryLanguage) == (number & kPrimaryLanguage)});
}

/// The tag must have at most 15 characters, of which 2 or 3 are the language; otherwise US English is used.
void readUser(const fuzz::Text& name) {
  setenv("LC_ALL", name, 1);
  const unsigned int user = VelClLanguage::getUserLanguage().asNumber();
  const std::string tag(name.view().substr(0, name.view().find_first_of(".@")));
  const std::size_t language = std::min(tag.find_first_of("_-"), tag.size());
  const bool counts = (language == 2 || language == 3) && tag.size() < 16;
  require(user == VelClLanguage(counts ? tag.c_str() : "en-US").asNumber());
}

}  // namespace

void fuzz::run(fuzz::Bytes input) {
  // Leaves LC_ALL as the only variable.
  static const bool kOthersAreGone = unsetenv("LC_MESSAGES") == 0 && unsetenv("LANG") == 0;
  require(kOthersAreGone);
  const Text name = input.text();
  readNumber(name);
  readUser(name);
}
