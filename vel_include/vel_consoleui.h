// The front end of command-line tools: usage strings, argument cursors, built-in switches, messages,
// exit codes, aligned output and a progress display.
#ifndef VEL_CONSOLEUI_H_
#define VEL_CONSOLEUI_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>

#include "vel_cursor.h"
#include "vel_error.h"
#include "vel_messages.h"

class VelClConsoleUI;

namespace vel::consoleui {
class Words;
struct MessageTexts;
}  // namespace vel::consoleui

/// Walks the elements of a usage string. The same text is shown to the user and tells the library which
/// switches a tool has and which of them take values:
///
///   (-key <key>) [-verbose] [(-file <name> ...)] <word>
///
///   -name      a switch: "-" and letters, digits or dots. "-5" is a number, not a switch.
///   <text>     a value or argument; so is a word behind a blank.
///   ( )        a group: a switch takes the arguments that follow it in its group. Not shown to the user.
///   [ ]        optional; for the reader only.
///   ..         two dots or more: the value before them may repeat.
///   !          marks the rest of its line as internal ("tagged"): the line can be hidden.
///   "text"     is shown without its quotes and holds no elements.
///   @          at the start of a line: shown as an empty line.
///
/// A switch must be followed by one of "[]<>(){}-| " or the end of the string; one that a line break
/// follows never matches. The string is not copied.
class VEL_API VelClUsageCursor : public VelClUniDirCursorABase {
 public:
  /// Stands on no element until setToFirst. Null counts as "".
  explicit VelClUsageCursor(const char* usage);
  ~VelClUsageCursor() override;

  bool isValid() const override;
  /// For the start of a walk: nesting depths and marks are not taken back, so a second walk needs a new
  /// cursor.
  bool setToFirst() override;
  bool setToNext() override;

  /// What kind of element it stands on.
  bool isSwitch() const;
  bool isArg() const { return !isSwitch(); }
  /// An argument outside of every group.
  bool isFree() const;
  /// On a line marked with "!", behind the mark.
  bool isTagged() const { return tagged_; }
  /// On an ellipsis, two dots or more.
  bool isArgEllipsis() const;

  /// Whether a command-line argument looks like a switch: "-" and no digit behind it. Null does not.
  static bool isSwitchIndicator(const char* argument);
  /// Whether a character of the usage string is shown to the user; not so "(", ")" and double quotes.
  static bool isToBeDisplayed(char c);

  /// Whether `text` stands here, followed by the end or a delimiter.
  bool matches(const char* text) const;
  /// Whether the switch here is the command-line argument `argument`, with or without its "-".
  bool matchesSwitch(const char* argument) const;
  /// Whether the switch here takes a value.
  bool reqArg() const;
  /// Whether the switch here takes a list of values that ends in an ellipsis.
  bool reqArgEllipsis() const;

 private:
  VelClUsageCursor(const VelClUsageCursor&) = default;
  VelClUsageCursor& operator=(const VelClUsageCursor&) = delete;

  bool locateNext();
  bool takeCharacter(bool& blankSeen);
  bool standsOnElement(bool blankSeen);
  void skipCurrent();

  const char* start_;
  const char* position_;
  uint32_t optionalDepth_;
  uint32_t groupDepth_;
  bool tagged_;
  bool inPlaceholder_;
};

/// Walks the arguments of a command line; argument 0, the program, is never visited. The vector is not
/// copied. setToNext and setToPrevious move the position by one beyond the ends, too: what is two steps
/// before the first argument is two steps away from it.
class VEL_API VelClArgvCursor : public VelClBiDirCursorABase {
 public:
  /// Stands at the first argument, if there is one; of a user interface, its command line.
  VelClArgvCursor(int argc, const char* const* argv);
  explicit VelClArgvCursor(const VelClConsoleUI& ui);
  VelClArgvCursor(const VelClArgvCursor&) = default;
  VelClArgvCursor& operator=(const VelClArgvCursor&) = default;
  ~VelClArgvCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  bool setToNext() override;
  bool setToLast() override;
  bool setToPrevious() override;

  /// The current argument, "" on an invalid position.
  const char* getAsCString() const;
  /// Argument 0, "" when there is none.
  const char* getArgv0() const;
  /// All false on an invalid position.
  bool isSwitch() const;
  bool isArg() const;
  /// Whether the current argument is the switch `name`, given with or without "-"; never abbreviated.
  bool matches(const char* name) const;
  /// Moves to the first argument that is the switch `name`; the position is invalid when there is none.
  bool positionTo(const char* name);

 protected:
  /// The argument at an index from 1 on, or null.
  const char* argumentAt(int32_t index) const;
  /// The position and the number of arguments, both counted as in `argv`.
  int32_t getIndex() const { return index_; }
  void setIndex(int32_t index) { index_ = index; }
  int32_t getCount() const { return count_; }

 private:
  int32_t count_;
  int32_t index_;
  const char* const* arguments_;
};

/// Asks about arguments in the light of a usage string, which is not copied. All questions are false
/// on an invalid position.
class VEL_API VelClArgvCheckCursor : public VelClArgvCursor {
 public:
  /// A null usage counts as "".
  VelClArgvCheckCursor(int argc, const char* const* argv, const char* usage);
  explicit VelClArgvCheckCursor(const VelClConsoleUI& ui);
  VelClArgvCheckCursor(const VelClArgvCheckCursor&) = default;
  VelClArgvCheckCursor& operator=(const VelClArgvCheckCursor&) = default;
  ~VelClArgvCheckCursor() override;

  /// A known switch, the value of one, or any argument where the usage admits free ones.
  bool isLegal() const;
  /// A known switch that takes a value.
  bool reqArg() const;
  /// A switch with an argument behind it that is not a switch.
  bool hasArg() const;
  /// The value of the switch in front of it.
  bool isBound() const;
  /// Neither a switch nor the value of one.
  bool isFree() const;
  /// Matches an element on a line marked with "!", "-" included.
  bool isTagged() const;

 private:
  bool takesValue(const char* argument) const;

  const char* usage_;
};

/// Walks free arguments only.
class VEL_API VelClArgvFreeCursor : public VelClArgvCheckCursor {
 public:
  /// As for VelClArgvCheckCursor.
  VelClArgvFreeCursor(int argc, const char* const* argv, const char* usage);
  explicit VelClArgvFreeCursor(const VelClConsoleUI& ui);
  VelClArgvFreeCursor(const VelClArgvFreeCursor&) = default;
  VelClArgvFreeCursor& operator=(const VelClArgvFreeCursor&) = default;
  ~VelClArgvFreeCursor() override;

  bool setToFirst() override;
  bool setToNext() override;
  bool setToLast() override;
  bool setToPrevious() override;

 private:
  bool settle(int32_t step);
};

/// Where the label is in the label column of aligned output. Other numbers count as LEFT.
enum class VelEnFormatStyle : uint32_t {
  LEFT = 0,    ///< followed by fill characters
  RIGHT = 1,   ///< behind blanks
  CENTRED = 2  ///< between blanks; the right margin is short by the odd remainders of width and label
};

/// The settings of a console user interface.
class VEL_API VelClConsoleUIParams {
 public:
  /// `argv0` names the program. Null counts as "".
  explicit VelClConsoleUIParams(const char* argv0);
  VelClConsoleUIParams(const VelClConsoleUIParams&) = delete;
  VelClConsoleUIParams& operator=(const VelClConsoleUIParams&) = delete;
  ~VelClConsoleUIParams();

  /// Both are copied; null counts as "". A tool with the usage "" has none.
  const char* getUsage() const { return usage_; }
  const char* getHelp() const { return help_; }
  void setUsage(const char* usage);
  void setHelp(const char* help);
  /// Both at once; each may be (part of) one of the old texts.
  void setUsageHelp(const char* usage, const char* help);
  /// Argument 0 behind its last separator, cut at its first ".", at most 25 characters, in upper case.
  const char* getProcessName() const { return processName_; }
  /// In characters: the length of the process name.
  unsigned int getIndentation() const { return indentation_; }

  /// Quiet mode silences info and progress, and holds back setOutputStream. Hidden lines of the usage are not
  /// shown; disabled ones are errors on the command line as well. All off at first.
  bool mustBeQuiet() const { return quiet_; }
  void setQuietMode(bool quiet) { quiet_ = quiet; }
  bool mustHideTaggedLines() const { return hideTaggedLines_; }
  void setHideTaggedLines(bool hide) { hideTaggedLines_ = hide; }
  bool mustDisableTaggedLines() const { return disableTaggedLines_; }
  void setDisableTaggedLines(bool disable) { disableTaggedLines_ = disable; }
  /// Whether aligned output puts values between double quotes: VEL_CONSOLEUI_QUOTE_STRINGS was enabled
  /// when this object was made.
  bool mustQuoteStrings() const { return quoteStrings_; }

  /// In characters; 36 at first.
  unsigned int getFormatWidth() const { return formatWidth_; }
  void setFormatWidth(unsigned int width) { formatWidth_ = width; }
  /// LEFT at first. Set by name or by number.
  VelEnFormatStyle getFormatStyle() const { return formatStyle_; }
  void setFormatStyle(VelEnFormatStyle style) { formatStyle_ = style; }
  void setFormatStyle(uint32_t style) { formatStyle_ = static_cast<VelEnFormatStyle>(style); }
  /// '.' at first.
  char getFormatFillChar() const { return fillChar_; }
  void setFormatFillChar(char c) { fillChar_ = c; }

  /// Streams are not owned. Standard output and standard error at first.
  std::ostream& getOutputStream() const { return *output_; }
  std::ostream& getErrorStream() const { return *errors_; }
  /// Has no effect in quiet mode.
  void setOutputStream(std::ostream& stream);
  /// Takes effect in quiet mode too.
  void forceOutputStream(std::ostream& stream) { output_ = &stream; }
  /// For fatal and exception.
  void setErrorStream(std::ostream& stream) { errors_ = &stream; }
  /// Writes what the output stream still holds.
  void flushOutputStream();

  /// The answer to the last prompt, "" before the first; valid until the next.
  const char* getInput() const { return input_; }
  /// Copied, cut to what the buffer holds: 80 characters. Null counts as "".
  void setInput(const char* text);
  /// The longest answer in characters.
  static constexpr size_t kMaxInputLength = 80;

 private:
  static constexpr size_t kMaxProcessNameLength = 25;

  void setProcessName(const char* argv0);

  char* usage_;
  char* help_;
  char processName_[kMaxProcessNameLength + 1];
  uint32_t indentation_;
  char input_[kMaxInputLength + 1];
  bool quiet_;
  bool hideTaggedLines_;
  bool disableTaggedLines_;
  bool quoteStrings_;
  uint32_t formatWidth_;
  VelEnFormatStyle formatStyle_;
  char fillChar_;
  std::ostream* output_;
  std::ostream* errors_;
};

/// A switch as the functions below take it: by its name with or without "-", by its one letter, or by the
/// number of the message that holds its name. Write numbers as `10UL`.
class VelClSwitchName {
 public:
  /// From any of the three.
  VelClSwitchName(const char* name) : name_(name), letter_('\0'), messageId_(0) {}
  VelClSwitchName(char letter) : name_(nullptr), letter_(letter), messageId_(0) {}
  VelClSwitchName(unsigned long messageId)
      : name_(nullptr), letter_('\0'), messageId_(static_cast<uint32_t>(messageId)) {}

  /// What it was made from; null, NUL or 0 for the two others.
  const char* getName() const { return name_; }
  char getLetter() const { return letter_; }
  unsigned long getMessageId() const { return messageId_; }

 private:
  const char* name_;
  char letter_;
  uint32_t messageId_;
};

/// A text for the user, such as the label of an aligned line or a question: itself, or the number of the
/// message that holds it. Write numbers as `10UL`. Null and number 0 are the empty text.
class VelClUIText {
 public:
  /// From either.
  VelClUIText(const char* text) : text_(text), messageId_(0) {}
  VelClUIText(unsigned long messageId) : text_(nullptr), messageId_(static_cast<uint32_t>(messageId)) {}

  /// Null for a text by number.
  const char* getText() const { return text_; }
  /// 0 for a text.
  unsigned long getMessageId() const { return messageId_; }

 private:
  const char* text_;
  uint32_t messageId_;
};

/// The front end of a command-line tool. A tool makes one, calls init with its title and handleUsageHelp
/// with its usage string, and reads its switches:
///
///   VelClConsoleUI ui(argc, argv);
///   ui.init("Frobnicator", "turns files around", "1.2", "Nov 21 2026");
///   ui.handleUsageHelp("(-file <name>) [-verbose]", "-file <name>  the file\n-verbose  says more");
///   const char* name;
///   ui.reqArgString("file", name);
///
/// Built-in switches: -quiet; -copyright, -h, -H and -? (which end the process with 201).
/// Exit codes: 201 after usage, help or copyright and for a bad command line, 202 for a missing switch of
/// a tool without usage, 203 for a switch without its value, 204 for a value that is no number.
/// Every end with another code than 0 first writes the bell character to the output stream.
///
/// The words come from a message catalog at fixed numbers plus a base: for the library's own catalog, or
/// its built-in table where that is not installed, the base is 0. Message numbers that the tool hands
/// over (titles, switch names, labels) are taken as they are, from getMessageCatalog.
class VEL_API VelClConsoleUI {
 public:
  /// With the library's own catalog. The vector is not copied.
  VelClConsoleUI(int argc, const char* const* argv);
  /// With a catalog of the tool's, which holds the library's messages from `messageBase` on. When its library
  /// cannot be loaded, a string table of `size` entries serves instead, unless it is null; it is not copied.
  VelClConsoleUI(int argc, const char* const* argv, const VelClFilename& catalogFile,
                 unsigned long messageBase, const char* const* table = nullptr, unsigned long size = 0);
  VelClConsoleUI(const VelClConsoleUI&) = delete;
  VelClConsoleUI& operator=(const VelClConsoleUI&) = delete;
  virtual ~VelClConsoleUI();

  /// The catalog behind message numbers that the tool hands over; overridden by tools that have their own.
  virtual const VelClMessageCatalog& getMessageCatalog() const;

  /// Shows the title and handles -quiet and -copyright. Null texts and messages 0 count as absent; level
  /// and date are shown on the copyright page.
  void init(const char* title, const char* description, const char* toolLevel, const char* toolDate);
  void init(unsigned long titleId, unsigned long descriptionId, const char* toolLevel, const char* toolDate);
  /// Handles -h, -H and -?, and checks the command line against the usage unless that is "". Every fault is
  /// reported on standard error; then the usage is shown and the process ends with 201.
  void handleUsageHelp(const char* usage, const char* help);
  void handleUsageHelp(unsigned long usageId, unsigned long helpId);

  /// These write to standard output. In the usage "(", ")", double quotes and "!" are left out, in both texts
  /// a line that begins with "@" is shown empty, and further lines are indented to the first.
  void displayUsageHelp(const char* usage, const char* help, bool exit);
  void displayUsage(bool exit) const;
  void displayHelp(bool exit) const;
  [[noreturn]] void displayCopyright(const char* toolLevel, const char* toolDate) const;
  /// Writes to the output stream.
  void displayTitle(const char* title, const char* description) const;

  /// Whether the switch is given.
  bool hasArgSwitch(VelClSwitchName name) const;
  /// False, leaving `value` alone, when the switch is not given; otherwise `value` is the argument behind it,
  /// not copied. A switch without a value ends the process with 203.
  bool hasArgString(VelClSwitchName name, const char*& value) const;
  /// The same for decimal numbers of 32 bits, saturated; a short takes the low 16 bits. An apostrophe
  /// in front is skipped. A missing value ends the process with 203, one that begins with neither a digit
  /// nor "-" with 204; "-x" reads as 0.
  bool hasArgNumval(VelClSwitchName name, short& value) const;
  bool hasArgNumval(VelClSwitchName name, int& value) const;
  bool hasArgNumval(VelClSwitchName name, long& value) const;
  /// The same, but a switch that is not given ends the process, see fatalMissingArg.
  void reqArgSwitch(VelClSwitchName name) const;
  void reqArgString(VelClSwitchName name, const char*& value) const;
  void reqArgNumval(VelClSwitchName name, short& value) const;
  void reqArgNumval(VelClSwitchName name, int& value) const;
  void reqArgNumval(VelClSwitchName name, long& value) const;

  /// Write a message: the first text, and each further one that is not null behind ": ". info says nothing in
  /// quiet mode; info and warning go to the output stream, fatal and exception to the error stream.
  void info(const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
            const char* text4 = nullptr, const char* text5 = nullptr) const;
  void warning(const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
               const char* text4 = nullptr, const char* text5 = nullptr) const;
  void error(std::ostream& stream, const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
             const char* text4 = nullptr, const char* text5 = nullptr) const;
  /// Ends the process with `exitCode`.
  [[noreturn]] void fatal(int exitCode, const char* text, const char* text2 = nullptr,
                          const char* text3 = nullptr, const char* text4 = nullptr,
                          const char* text5 = nullptr) const;
  /// Adds all that the exception tells.
  void exception(const VelClException& exception, const char* text, const char* text2 = nullptr,
                 const char* text3 = nullptr, const char* text4 = nullptr, const char* text5 = nullptr) const;
  /// Ends the process with 202 for a tool without usage; otherwise shows the usage and ends it with 201.
  [[noreturn]] void fatalMissingArg(const char* switchName) const;
  /// Ends the process; any code but 0 is announced by the bell.
  [[noreturn]] void processExit(int exitCode) const;

  /// Aligned output, to the output stream. The first writes the label column only: two blanks, the label
  /// in its width, and ": ". The others write a whole line.
  void format(VelClUIText label) const;
  void format(VelClUIText label, const char* value) const;
  void format(VelClUIText label, int value) const;
  void format(VelClUIText label, unsigned int value) const;
  void format(VelClUIText label, long value) const;
  void format(VelClUIText label, unsigned long value) const;
  void format(VelClUIText label, long long value) const;
  void format(VelClUIText label, unsigned long long value) const;
  /// "YES" or "NO", in the catalog's language.
  void formatBool(VelClUIText label, bool value) const;
  /// Bytes in hexadecimal, 16 a line, each line with the label column or blanks of its width.
  void dump(VelClUIText label, const void* data, size_t sizeInBytes) const;
  /// The name of an error identifier and its number; only the number when it has no name.
  void formatErrId(unsigned long errorId) const;
  /// What an exception tells; without `verbose` only the identifier and what is not 0.
  void format(const VelClException& exception, bool verbose) const;

  /// Ask the user, on standard output and from standard input, also in quiet mode. An empty answer takes
  /// the default. A line is cut to 80 characters and its rest dropped; NUL bytes are left out. At the end
  /// of input every prompt takes its default as it is, unchecked, so none asks for ever. The answer is
  /// left in the input buffer, see VelClConsoleUIParams::getInput; texts may point into it.
  ///
  /// Asks once. Null leaves out the hint or the default; a null question is empty.
  void prompt(const char* question, const char* hint, const char* defaultAnswer) const;
  /// Asks once and returns the answer, valid until the next prompt; "" at the end of input without default.
  const char* promptString(VelClUIText question, const char* defaultAnswer = nullptr) const;
  /// Asks until the answer begins with a number, both limits included. Numbers saturate at 32 bits; "+5" is
  /// none, "5x" is 5.
  int32_t promptNumval(VelClUIText question, int32_t minimum, int32_t maximum, int32_t defaultValue) const;
  /// Asks until the answer begins with the catalog's letter for yes or no, which are the first ones of its
  /// messages 3 and 4 and must be capitals there; the answer's may be small.
  bool promptYesNo(VelClUIText question, bool defaultAnswer) const;
  /// Waits for one key, without echo and without Enter, and leaves the terminal as it was, also when a
  /// signal ends or stops the process meanwhile. Returns at once when there is no console to wait at; where
  /// keys come from standard input only and that is redirected, one character of it is taken.
  void promptForKey() const;
  /// Waits for a whole line and drops it; the last answer stays.
  void promptForEnter() const;

  /// A progress bar on standard error, with percentage and remaining time. It appears only on a terminal,
  /// not in quiet mode, and only after a second. `label` is not copied and may be null.
  void progressStart(unsigned long long total, const char* label = nullptr);
  /// Adds to what is done; draws at most when the percentage changes.
  void progressStep(unsigned long long count = 1);
  /// Leaves one clean line behind the bar, if it was shown.
  void progressStop();

  /// What the user interface was made with, and its settings; see VelClConsoleUIParams.
  const char* getProcessName() const { return params_->getProcessName(); }
  const char* getUsage() const { return params_->getUsage(); }
  int getArgc() const { return argc_; }
  const char* const* getArgv() const { return argv_; }
  std::ostream& getOutputStream() const { return params_->getOutputStream(); }
  /// Has no effect in quiet mode.
  void setOutputStream(std::ostream& stream) { params_->setOutputStream(stream); }
  /// See VelClConsoleUIParams.
  bool mustBeQuiet() const { return params_->mustBeQuiet(); }
  void setFormatWidth(unsigned int width) { params_->setFormatWidth(width); }
  void setFormatStyle(VelEnFormatStyle style) { params_->setFormatStyle(style); }
  void setFormatStyle(uint32_t style) { params_->setFormatStyle(style); }
  void setFormatFillChar(char c) { params_->setFormatFillChar(c); }
  /// Leave lines marked with "!" out of the usage; the second makes their switches errors as well.
  void hideTaggedLines() { params_->setHideTaggedLines(true); }
  void disableTaggedLines() { params_->setDisableTaggedLines(true); }
  /// The settings, to read and to change.
  VelClConsoleUIParams& getParams() const { return *params_; }

 private:
  vel::consoleui::Words words() const;
  bool attachBuiltInTable();
  void handleHelpSwitches() const;
  void checkCommandLine() const;
  [[noreturn]] void exitBehindUsage() const;
  bool checkArgument(const VelClArgvCheckCursor& argument) const;
  [[noreturn]] void fatalArgument(int exitCode, uint32_t word, const char* switchName) const;
  template <typename Number>
  bool readNumber(VelClSwitchName name, Number& value) const;
  void drawProgress(int32_t percentage, double secondsPassed) const;

  VelClMessageCatalog catalog_;
  uint32_t messageBase_;
  int32_t argc_;
  const char* const* argv_;
  VelClConsoleUIParams* params_;
  uint64_t progressTotal_ = 0;
  uint64_t progressDone_ = 0;
  double progressStarted_ = 0;
  const char* progressLabel_ = "";
  int32_t progressShown_ = -1;  ///< percentage on the screen, -1 for none
  bool progressActive_ = false;
};

#endif

#endif
