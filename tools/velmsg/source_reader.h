// The parser of message sources behind readMessageSource.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmsg/message_source.h"
#include "tools/velmsg/source_lexer.h"
#include "tools/velmsg/source_names.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {

/// Parses the text of one file and appends to a source. After a mistake it goes on with the next line.
class SourceReader {
 public:
  SourceReader(std::string_view text, MessageSource& source, Diagnostics& diagnostics);

  void run();

 private:
  struct Keyword {
    std::string_view name;
    void (SourceReader::*read)(const SourcePosition& position);
  };
  static const Keyword kKeywords[];
  static const Keyword* findKeyword(std::string_view word);

  void readStatement();
  void readMessageIdTypedef(const SourcePosition& position);
  void readSeverityNames(const SourcePosition& position);
  void readFacilityNames(const SourcePosition& position);
  void readLanguageNames(const SourcePosition& position);
  void readOutputBase(const SourcePosition& position);
  void readMessageId(const SourcePosition& position);
  void readSeverity(const SourcePosition& position);
  void readFacility(const SourcePosition& position);
  void readSymbolicName(const SourcePosition& position);
  void readLanguage(const SourcePosition& position);

  template <typename ReadName>
  void readNames(ReadName readName);
  template <typename Read>
  std::string_view readAfterColon(Read read);
  template <typename Entries, typename Entry>
  void declare(Entries& entries, NameIndex& index, Entry entry);
  void readNumbers(std::vector<NamedNumber>& numbers, NameIndex& index, std::uint32_t maximum);
  bool isValueNext(TextId missing);
  std::optional<std::uint32_t> readNumber(std::uint32_t maximum);
  std::optional<std::size_t> readKnownName(const NameIndex& index, TextId unknown);
  std::string_view readOptionalWord();
  std::string readText(const SourcePosition& position);
  void keepHeaderComments();
  bool isInHead(const SourcePosition& position);
  void resolveId();
  void finishMessage();
  void reportRepetitions();

  void fault(const SourcePosition& position, TextId text, std::string_view argument = {});
  void faultInLine(TextId text);

  SourceLexer lexer_;
  MessageSource& source_;
  Diagnostics& diagnostics_;
  NameIndex severities_;
  NameIndex facilities_;
  NameIndex languages_;
  /// The number of the last message, without a facility and then by facility.
  std::vector<std::uint32_t> lastNumbers_;
  /// By LANGID: one more than the index of the last message with a text in it.
  std::vector<std::size_t> lastMessageOfLang_;

  // The message under way.
  SourceMessage message_;
  bool isInMessage_ = false;
  bool hasText_ = false;     ///< in any language, even an unknown one
  bool isFaulty_ = false;    ///< it has no valid number
  bool isResolved_ = false;  ///< the id is complete, because the first text has begun
  bool isRelative_ = false;  ///< whether number_ is relative to the facility's last number
  std::uint32_t number_ = 0;
};

}  // namespace vel::velmsg
