// Divides a message source into words, numbers, comments and lines. What they mean is source_reader.cpp's
// work.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// A cursor in the UTF-8 text of a file. Every function takes time linear in what it consumes.
class SourceLexer {
 public:
  SourceLexer(std::string_view text, std::size_t file) : text_(text), position_{file, 1, 1} {}

  bool atEnd() const { return offset_ == text_.size(); }
  /// Returns the next character without consuming it; NUL at the end.
  char peek() const { return atEnd() ? '\0' : text_[offset_]; }
  /// Returns the position of the next character.
  SourcePosition position();

  /// Consumes white space, line breaks and comments, which are kept for takeComments.
  void skipBlanks();
  /// Consumes white space without line breaks.
  void skipWhiteSpace();
  /// Consumes a character if it is the next one.
  bool consume(char c);
  /// Consumes an identifier; "" if the next character cannot begin one.
  std::string_view word();
  /// Returns whether the next word is followed by "=" in the same line.
  bool isAssignmentNext() const;
  /// Consumes digits and letters.
  std::string_view number();
  /// Consumes everything up to white space, a comment or a closing parenthesis.
  std::string_view token();
  /// Consumes the rest of the line with its line break; returns the rest without that.
  std::string_view line();
  /// Same for a line that may only have white space and a comment; returns false if it has something else.
  bool lineEnd();

  /// Returns the comments since the last call, without their ";".
  std::vector<std::string> takeComments();
  /// Puts comments before those that takeComments returns next.
  void keepComments(std::vector<std::string> comments) { comments_ = std::move(comments); }

 private:
  std::string_view consumeUntil(std::size_t end);
  std::size_t endOf(bool (*belongs)(char), std::size_t offset) const;

  std::string_view text_;
  std::size_t offset_ = 0;
  SourcePosition position_;   ///< of measured_
  std::size_t measured_ = 0;  ///< offset up to which the columns of this line have been counted
  std::vector<std::string> comments_;
};

}  // namespace vel::velmsg
