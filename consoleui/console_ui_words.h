// The words of the console user interface and their ids in the message catalog, its exit codes, and the
// texts that a tool passes. All of it is defined inline.
#pragma once

#include <cstdint>
#include <optional>

#include "base/short_text.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

/// Message ids in the library's own table. A tool's catalog has the same messages from its message base
/// on.
enum class Word : std::uint32_t {
  Yes = 3,
  No = 4,
  YesOrNo = 5,
  Minimum = 6,
  Maximum = 7,
  HelpLetters = 8,
  Copyright = 9,
  Quiet = 10,
  Default = 11,
  ExceptionOccurred = 12,
  FatalErrorOccurred = 13,
  ErrorOccurred = 14,
  Warning = 15,
  Information = 16,
  Usage = 17,
  Help = 18,
  PressAnyKey = 19,
  PressEnter = 20,
  HelpHint = 21,
  NoHelp = 22,
  UnknownArgument = 23,
  ArgumentNotAllowed = 24,
  IllegalRepetition = 25,
  MissingSwitch = 26,
  NoValue = 27,
  NoNumericValue = 28,
  NonNumericValue = 29,
  InvalidValue = 30,
  EnterNumber = 31,
  EnterWithinLimits = 32,
  PleaseUse = 33,
  CopyrightTitle = 34,
  Level = 35,
  LibraryLevel = 36,
  CompileDate = 38,
  ErrorId = 39,
  ErrorClass = 40,
  ErrorSeverity = 41,
  ErrorAction = 42,
  Cause = 43,
  Function = 45,
  Line = 46
};

/// For answers that cannot be written.
inline constexpr int kExitNotWritten = 1;
inline constexpr int kExitUsage = CONUI_USAGE;
inline constexpr int kExitMissingSwitch = CONUI_ARG_MISSING;
inline constexpr int kExitMissingValue = CONUI_ARG_EXPECTING_VALUE;
inline constexpr int kExitNonNumericValue = CONUI_ARG_VALUE_TYPE_MISMATCH;

/// Resolves a label or question to text: a text of the tool's or the id of a message. "" for null and
/// message 0. The object owns the message and is therefore not copied.
class ResolvedText {
 public:
  ResolvedText(const VelClUIText& given, const VelClMessageCatalog& catalog)
      : text_(vel::textOrEmpty(given.getText())) {
    if (given.getMessageId() == 0) return;
    message_.emplace(catalog, given.getMessageId());
    text_ = message_->getAsCString();
  }
  ResolvedText(const ResolvedText&) = delete;
  ResolvedText& operator=(const ResolvedText&) = delete;

  const char* get() const { return text_; }

 private:
  std::optional<VelClMessage> message_;
  const char* text_;
};

/// Finds the console user interface's own words in its catalog.
class Words {
 public:
  Words(const VelClMessageCatalog& catalog, std::uint32_t messageBase)
      : catalog_(catalog), messageBase_(messageBase) {}

  VelClMessage operator[](Word word) const { return message(static_cast<std::uint32_t>(word)); }
  /// Returns a message by its id in the library's own table.
  VelClMessage message(std::uint32_t id) const { return {catalog_, messageBase_ + id}; }

 private:
  const VelClMessageCatalog& catalog_;
  std::uint32_t messageBase_;
};

}  // namespace vel::consoleui
