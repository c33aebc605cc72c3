// Wildcards and searches, compared with the simplest algorithms. The input is a byte of options, a
// NUL-terminated pattern, and a text.
#include "fuzz/bytes.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_util.h"

namespace fuzz::search {

namespace {

bool equal(char a, char b, bool ignoreCase) {
  const auto folded = [](char c) { return std::toupper(static_cast<unsigned char>(c)); };
  return ignoreCase ? folded(a) == folded(b) : a == b;
}

/// Computes which prefixes of the text each prefix of the pattern matches.
bool matches(std::string_view pattern, std::string_view text, bool caseSensitive) {
  std::vector<bool> row(text.size() + 1), next(text.size() + 1);
  row[0] = true;
  for (const char c : pattern) {
    next[0] = c == '*' && row[0];
    for (std::size_t i = 0; i < text.size(); ++i)
      next[i + 1] =
          c == '*' ? next[i] || row[i + 1] : row[i] && (c == '?' || equal(c, text[i], !caseSensitive));
    row.swap(next);
  }
  return row.back();
}

void requireFound(const char* pattern, std::string_view text, bool ignoreCase) {
  const VelClStringSearch search(pattern, ignoreCase);
  const std::string_view wanted(pattern);
  const auto found = std::search(text.begin(), text.end(), wanted.begin(), wanted.end(),
                                 [=](char a, char b) { return equal(a, b, ignoreCase); });
  const char* const expected =
      found != text.end() || wanted.empty() ? text.data() + (found - text.begin()) : nullptr;
  require(search.getPattern(text.data(), static_cast<unsigned int>(text.size())) == expected);
}

void run(Bytes input) {
  const bool option = (input.byte() & 1) != 0;
  const Text pattern = input.text();
  // With an explicit length the text can contain NUL.
  requireFound(pattern, input.rest(), option);
  const Text text = input.text();
  require(VelClStringSearch(pattern, false).getPattern(text) == std::strstr(text, pattern));
  require(velStrFind(text, pattern, false) == std::strstr(text, pattern));
  if (const char* const found = velStrFind(text, pattern, true))
    for (std::size_t i = 0; pattern[i] != '\0'; ++i) require(equal(found[i], pattern[i], true));
  require(velStrCount(text, '*') == std::count(text.begin(), text.end() - 1, '*'));
  const bool isMatch = matches(pattern.view(), text.view(), option);
  require(velMatchesWildcardPattern(pattern, text, option) == isMatch);
  require(VelClStringMatchWildcards(pattern, option).getPattern(text) == (isMatch ? text.data() : nullptr));
}

const Target target("search", run);

}  // namespace

}  // namespace fuzz::search
