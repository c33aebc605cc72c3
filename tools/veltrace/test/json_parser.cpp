#include "tools/veltrace/test/json_parser.h"

#include <cstdlib>
#include <stdexcept>

namespace vel::test {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Json whole() {
    Json json = value();
    skipBlanks();
    if (at_ != text_.size()) fail();
    return json;
  }

 private:
  [[noreturn]] void fail() const { throw std::runtime_error("not JSON at offset " + std::to_string(at_)); }
  char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool skip(char c) {
    skipBlanks();
    if (peek() != c) return false;
    ++at_;
    return true;
  }
  void expect(char c) {
    if (!skip(c)) fail();
  }
  void skipBlanks() {
    while (at_ < text_.size() && (peek() == ' ' || peek() == '\n' || peek() == '\t' || peek() == '\r')) ++at_;
  }
  Json word(std::string_view word, Json json) {
    if (text_.substr(at_, word.size()) != word) fail();
    at_ += word.size();
    return json;
  }
  Json value() {
    skipBlanks();
    switch (peek()) {
      case '{':
        return object();
      case '[':
        return array();
      case '"':
        return {string()};
      case 't':
        return word("true", {true});
      case 'f':
        return word("false", {false});
      case 'n':
        return word("null", {nullptr});
      default:
        return number();
    }
  }
  Json object() {
    std::map<std::string, Json> members;
    expect('{');
    if (skip('}')) return {members};
    do {
      skipBlanks();
      const std::string name = string();
      expect(':');
      if (!members.emplace(name, value()).second) fail();
    } while (skip(','));
    expect('}');
    return {members};
  }
  Json array() {
    std::vector<Json> values;
    expect('[');
    if (skip(']')) return {values};
    do values.push_back(value());
    while (skip(','));
    expect(']');
    return {values};
  }
  /// Keeps escapes of four digits as they are; other escapes become their character.
  std::string string() {
    std::string result;
    if (peek() != '"') fail();
    for (++at_; peek() != '"'; ++at_) {
      if (at_ >= text_.size() || static_cast<unsigned char>(peek()) < 0x20) fail();
      if (peek() != '\\') {
        result += peek();
        continue;
      }
      ++at_;
      constexpr std::string_view kLetters = "\"\\/bfnrt", kCharacters = "\"\\/\b\f\n\r\t";
      const std::size_t index = kLetters.find(peek());
      if (peek() == 'u' &&
          text_.substr(at_ + 1, 4).find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos) {
        result.append("\\").append(text_.substr(at_, 5));
        at_ += 4;
      } else if (index != std::string_view::npos) {
        result += kCharacters[index];
      } else {
        fail();
      }
    }
    ++at_;
    return result;
  }
  Json number() {
    const std::size_t end = std::min(text_.find_first_not_of("+-.0123456789eE", at_), text_.size());
    const std::string digits(text_.substr(at_, end - at_));
    char* stop = nullptr;
    const double number = std::strtod(digits.c_str(), &stop);
    if (digits.empty() || *stop != '\0' || digits[0] == '+' || digits[0] == '.') fail();
    at_ = end;
    return {number};
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

Json parseJson(std::string_view text) {
  return Parser(text).whole();
}

}  // namespace vel::test
