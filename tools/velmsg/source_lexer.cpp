// What the words mean is source_reader.cpp's work.
#include "tools/velmsg/source_lexer.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"

namespace vel::velmsg {
namespace {

constexpr std::string_view kWhiteSpace = " \t\v\f\r";

bool isWordCharacter(char c) {
  return isAsciiAlnum(c) || c == '_' || c == '$';
}

}  // namespace

// Counts on from the last position, so that a long line with many statements is counted once.
SourcePosition SourceLexer::position() {
  const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  const std::string_view passed = text_.substr(measured_, offset_ - measured_);
  position_.column += static_cast<std::size_t>(std::ranges::count_if(passed, isFirstByte));
  measured_ = offset_;
  return position_;
}

std::string_view SourceLexer::consumeUntil(std::size_t end) {
  const std::size_t begin = std::exchange(offset_, std::min(end, text_.size()));
  return text_.substr(begin, offset_ - begin);
}

void SourceLexer::skipWhiteSpace() {
  consumeUntil(text_.find_first_not_of(kWhiteSpace, offset_));
}

void SourceLexer::skipBlanks() {
  for (;;) {
    skipWhiteSpace();
    if (peek() == ';') {
      ++offset_;
      comments_.emplace_back(line());
    } else if (peek() == '\n') {
      line();
    } else {
      return;
    }
  }
}

bool SourceLexer::consume(char c) {
  if (atEnd() || text_[offset_] != c) return false;
  ++offset_;
  return true;
}

/// Returns the end of the characters from `offset` on that belong to a run.
std::size_t SourceLexer::endOf(bool (*belongs)(char), std::size_t offset) const {
  const auto* const end =
      std::find_if_not(text_.begin() + static_cast<std::ptrdiff_t>(offset), text_.end(), belongs);
  return static_cast<std::size_t>(end - text_.begin());
}

std::string_view SourceLexer::word() {
  return isAsciiDigit(peek()) ? std::string_view() : consumeUntil(endOf(isWordCharacter, offset_));
}

bool SourceLexer::isAssignmentNext() const {
  const std::size_t end = text_.find_first_not_of(kWhiteSpace, endOf(isWordCharacter, offset_));
  return end != std::string_view::npos && text_[end] == '=';
}

std::string_view SourceLexer::number() {
  return consumeUntil(endOf(isAsciiAlnum, offset_));
}

std::string_view SourceLexer::token() {
  return consumeUntil(text_.find_first_of(" \t\v\f\r\n;)", offset_));
}

std::string_view SourceLexer::line() {
  std::string_view rest = consumeUntil(text_.find('\n', offset_));
  if (consume('\n')) {
    ++position_.line;
    position_.column = 1;
    measured_ = offset_;
    if (rest.ends_with('\r')) rest.remove_suffix(1);
  }
  return rest;
}

bool SourceLexer::lineEnd() {
  skipWhiteSpace();
  const bool hasComment = consume(';');
  const std::string_view rest = line();
  if (hasComment) comments_.emplace_back(rest);
  return hasComment || rest.empty();
}

std::vector<std::string> SourceLexer::takeComments() {
  return std::exchange(comments_, {});
}

}  // namespace vel::velmsg
