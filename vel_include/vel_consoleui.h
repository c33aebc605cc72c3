// Front end of command-line tools: usage strings, argument cursors, built-in switches, messages, exit codes,
// aligned output and a progress bar.
#ifndef VEL_CONSOLEUI_H_
#define VEL_CONSOLEUI_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>

#include "vel_conventions.h"
#include "vel_cursor.h"
#include "vel_error.h"
#include "vel_messages.h"

class VelClConsoleUI;

namespace vel::consoleui {
class Words;
struct MessageTexts;
}  // namespace vel::consoleui

/// Iterates over the elements of a usage string. The same string is shown to the user and tells the library
/// which switches a tool has and which of them take values:
///
///   (-key <key>) [-verbose] [(-file <name> ...)] <word>
///
///   -name      a switch: "-" and letters, digits or dots. "-5" is a number, not a switch.
///   <text>     a value or argument; so is a word after a blank.
///   ( )        a group: a switch takes the arguments that follow it in its group. Not shown to the user.
///   [ ]        optional; for the reader only.
///   ..         two dots or more: the value before them may repeat.
///   !          marks the rest of its line as internal ("tagged"): the line can be hidden.
///   "text"     is shown without its quotes and holds no elements.
///   @          at the start of a line: shown as an empty line.
///
/// A switch must be followed by one of "[]<>(){}-| " or the end of the string; a switch followed by a line
/// break never matches. The string is not copied.
class VEL_API VelClUsageCursor : public VelClUniDirCursorABase {
 public:
  /// The cursor is invalid until setToFirst. A null usage counts as "".
  explicit VelClUsageCursor(const char* usage);
  ~VelClUsageCursor() override;

  bool isValid() const override;
  /// Starts the iteration. Nesting depths and marks are not reset, so a second iteration needs a new cursor.
  bool setToFirst() override;
  bool setToNext() override;

  /// Returns the rest of the usage string, from the current element on.
  const char* getAsCString() const { return position_; }

  /// Tell the kind of the current element.
  bool isSwitch() const;
  bool isArg() const { return !isSwitch(); }
  /// True for an argument outside every group.
  bool isFree() const;
  /// True after the mark on a line marked with "!".
  bool isTagged() const { return tagged_; }
  /// True on an ellipsis: two dots or more.
  bool isArgEllipsis() const;

  /// True if a command-line argument looks like a switch: "-" not followed by a digit. False for null.
  static bool isSwitchIndicator(const char* argument);
  /// True if a character of the usage string is shown to the user; false for "(", ")" and double quotes.
  static bool isToBeDisplayed(char c);

  /// True if `text` is found at the cursor, followed by a delimiter or the end of the string.
  bool matches(const char* text) const;
  /// True if the current switch is the command-line argument `argument`, given with or without its "-".
  bool matchesSwitch(const char* argument) const;
  /// True if the current switch takes a value.
  bool reqArg() const;
  /// True if the current switch takes a list of values that ends in an ellipsis.
  bool reqArgEllipsis() const;

 private:
  VelClUsageCursor(const VelClUsageCursor&) = default;
  VelClUsageCursor& operator=(const VelClUsageCursor&) = delete;

  bool locateNext();
  bool updateState(bool& blankSeen);
  bool isAtElement(bool blankSeen);
  void skipCurrent();

  const char* start_;
  const char* position_;
  uint32_t optionalDepth_;
  uint32_t groupDepth_;
  bool tagged_;
  bool inPlaceholder_;
};

/// Iterates over the arguments of a command line. Argument 0, the program, is never visited. The argument
/// vector is not copied. setToNext and setToPrevious also move an invalid cursor by one: a cursor two steps
/// before the first argument takes two steps to return to it.
class VEL_API VelClArgvCursor : public VelClBiDirCursorABase {
 public:
  /// Moves to the first argument, if there is one. The second form uses the command line of a user interface.
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

  /// Returns the current argument, or "" if the cursor is invalid.
  const char* getAsCString() const;
  /// Returns argument 0, or "" if the command line is empty.
  const char* getArgv0() const;
  /// Tell the kind of the current argument; both return false if the cursor is invalid.
  bool isSwitch() const;
  bool isArg() const;
  /// True if the current argument is the switch `name`, which may be given with or without "-". Abbreviations
  /// do not match.
  bool matches(const char* name) const;
  /// Moves to the first argument that is the switch `name`; without such an argument the cursor becomes
  /// invalid.
  bool positionTo(const char* name);

 protected:
  /// Returns the argument at an index from 1 on, or null.
  const char* argumentAt(int32_t index) const;
  /// True if the argument at an index is a switch.
  bool isSwitchAt(int32_t index) const;
  /// The index of the current argument and the number of arguments, both counted as in `argv`.
  int32_t getIndex() const { return index_; }
  void setIndex(int32_t index) { index_ = index; }
  int32_t getCount() const { return count_; }

 private:
  int32_t count_;
  int32_t index_;
  const char* const* arguments_;
};

/// Classifies arguments by a usage string, which is not copied. All queries return false if the cursor is
/// invalid.
class VEL_API VelClArgvCheckCursor : public VelClArgvCursor {
 public:
  /// A null usage counts as "".
  VelClArgvCheckCursor(int argc, const char* const* argv, const char* usage);
  explicit VelClArgvCheckCursor(const VelClConsoleUI& ui);
  VelClArgvCheckCursor(const VelClArgvCheckCursor&) = default;
  VelClArgvCheckCursor& operator=(const VelClArgvCheckCursor&) = default;
  ~VelClArgvCheckCursor() override;

  /// True for a known switch, for the value of one, and for any argument if the usage allows free ones.
  bool isLegal() const;
  /// True for a known switch that takes a value.
  bool reqArg() const;
  /// True for a switch followed by an argument that is not a switch.
  bool hasArg() const;
  /// True for the value of the preceding switch.
  bool isBound() const;
  /// True for an argument that is neither a switch nor the value of one.
  bool isFree() const;
  /// True for an argument that matches an element on a line marked with "!", "-" included.
  bool isTagged() const;

 private:
  bool takesValue(const char* argument) const;

  const char* usage_;
};

/// Moves to free arguments only.
/// @warning The constructor moves to the first argument of the command line, even if that is a switch or the
/// value of one. Call setToFirst before the first access:
///
///   VelClArgvFreeCursor file(ui);
///   for (bool more = file.setToFirst(); more; more = file.setToNext()) read(file.getAsCString());
class VEL_API VelClArgvFreeCursor : public VelClArgvCheckCursor {
 public:
  /// See VelClArgvCheckCursor.
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
  bool skipToFree(int32_t step);
};

/// Alignment of the label in the label column of aligned output. Other numbers count as LEFT.
enum class VelEnFormatStyle : uint32_t {
  LEFT = 0,    ///< followed by fill characters
  RIGHT = 1,   ///< preceded by blanks
  CENTRED = 2  ///< between blanks; an odd width, and an odd label, each narrow the right margin by one
};

/// The settings of a console user interface.
class VEL_API VelClConsoleUIParams {
 public:
  /// `argv0` names the program. Null counts as "".
  explicit VelClConsoleUIParams(const char* argv0);
  VelClConsoleUIParams(const VelClConsoleUIParams&) = delete;
  VelClConsoleUIParams& operator=(const VelClConsoleUIParams&) = delete;
  ~VelClConsoleUIParams();

  /// The usage string and the help text. Both are copied; null counts as "". A tool whose usage is "" does
  /// not show any.
  const char* getUsage() const { return usage_; }
  const char* getHelp() const { return help_; }
  void setUsage(const char* usage);
  void setHelp(const char* help);
  /// Sets both texts; each may be all or part of one of the old texts.
  void setUsageHelp(const char* usage, const char* help);
  /// Returns argument 0 without its directory, cut at the first ".", at most 25 characters, in upper case.
  const char* getProcessName() const { return processName_; }
  /// Returns the length of the process name in characters.
  unsigned int getIndentation() const { return indentation_; }

  /// Initially all are off. Quiet mode suppresses info and progress, and ignores setOutputStream. Hidden
  /// lines of the usage are not shown; switches on disabled lines are errors on the command line as well.
  bool mustBeQuiet() const { return quiet_; }
  void setQuietMode(bool quiet) { quiet_ = quiet; }
  bool mustHideTaggedLines() const { return hideTaggedLines_; }
  void setHideTaggedLines(bool hide) { hideTaggedLines_ = hide; }
  bool mustDisableTaggedLines() const { return disableTaggedLines_; }
  void setDisableTaggedLines(bool disable) { disableTaggedLines_ = disable; }
  /// True if aligned output encloses values in double quotes, which it does if VEL_CONSOLEUI_QUOTE_STRINGS
  /// was enabled when this object was constructed.
  bool mustQuoteStrings() const { return quoteStrings_; }

  /// The width of the label column in characters; initially 36.
  unsigned int getFormatWidth() const { return formatWidth_; }
  void setFormatWidth(unsigned int width) { formatWidth_ = width; }
  /// The alignment of the label; initially LEFT. It can be set by name or by number.
  VelEnFormatStyle getFormatStyle() const { return formatStyle_; }
  void setFormatStyle(VelEnFormatStyle style) { formatStyle_ = style; }
  void setFormatStyle(uint32_t style) { formatStyle_ = static_cast<VelEnFormatStyle>(style); }
  /// The fill character; initially '.'.
  char getFormatFillChar() const { return fillChar_; }
  void setFormatFillChar(char c) { fillChar_ = c; }

  /// The streams; initially standard output and standard error. They are not owned.
  std::ostream& getOutputStream() const { return *output_; }
  std::ostream& getErrorStream() const { return *errors_; }
  /// Sets the output stream; has no effect in quiet mode.
  void setOutputStream(std::ostream& stream);
  /// Sets the output stream, in quiet mode as well.
  void forceOutputStream(std::ostream& stream) { output_ = &stream; }
  /// Sets the stream of fatal and exception.
  void setErrorStream(std::ostream& stream) { errors_ = &stream; }
  /// Flushes the output stream.
  void flushOutputStream();

  /// Returns the answer to the last prompt, or "" before the first one; valid until the next prompt.
  const char* getInput() const { return input_; }
  /// Stores a copy of the text, cut to 80 characters, which is the size of the buffer. Null counts as "".
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

/// Identifies a switch: by its name with or without "-", by its single letter, or by the number of the
/// message that holds its name. Write numbers as `10UL`.
class VelClSwitchName {
 public:
  /// Convert from any of the three.
  VelClSwitchName(const char* name) : name_(name), letter_('\0'), messageId_(0) {}
  VelClSwitchName(char letter) : name_(nullptr), letter_(letter), messageId_(0) {}
  VelClSwitchName(unsigned long messageId)
      : name_(nullptr), letter_('\0'), messageId_(static_cast<uint32_t>(messageId)) {}

  /// Return the value it was constructed from; the two others return null, NUL or 0.
  const char* getName() const { return name_; }
  char getLetter() const { return letter_; }
  unsigned long getMessageId() const { return messageId_; }

 private:
  const char* name_;
  char letter_;
  uint32_t messageId_;
};

/// A text for the user, such as the label of an aligned line or a question: either the text itself, or the
/// number of the message that holds it. Write numbers as `10UL`. Null and number 0 mean the empty text.
class VelClUIText {
 public:
  /// Convert from either.
  VelClUIText(const char* text) : text_(text), messageId_(0) {}
  VelClUIText(unsigned long messageId) : text_(nullptr), messageId_(static_cast<uint32_t>(messageId)) {}

  /// Returns null for a text given by number.
  const char* getText() const { return text_; }
  /// Returns 0 for a text given directly.
  unsigned long getMessageId() const { return messageId_; }

 private:
  const char* text_;
  uint32_t messageId_;
};

/// The front end of a command-line tool. A tool constructs one, calls init with its title and handleUsageHelp
/// with its usage string, and then reads its switches:
///
///   VelClConsoleUI ui(argc, argv);
///   ui.init("Frobnicator", "turns files around", "1.2", "Nov 21 2026");
///   ui.handleUsageHelp("(-file <name>) [-verbose]", "-file <name>  the file\n-verbose  says more");
///   const char* name;
///   ui.reqArgString("file", name);
///
/// Built-in switches are -quiet, and -copyright, -h, -H and -?, which end the process with 201.
/// Exit codes: 201 after usage, help or copyright, and for an invalid command line; 202 for a missing switch
/// in a tool without usage; 203 for a switch without its value; 204 for a value that is not a number. Every
/// exit with a code other than 0 first writes the bell character to the output stream.
///
/// The library's own texts come from a message catalog, at fixed numbers plus a base. The base is 0 for the
/// library's catalog, and for the built-in table that replaces it where it is not installed. Message numbers
/// that the tool passes (titles, switch names, labels) are used without the base, in getMessageCatalog.
class VEL_API VelClConsoleUI {
 public:
  /// Uses the library's catalog. The argument vector is not copied. On Windows the arguments of main are
  /// replaced by those of velUtf8Arguments if velIsUtf8Used; a vector that the program made itself is not.
  VelClConsoleUI(int argc, const char* const* argv);
  /// Uses the tool's catalog, which contains the library's messages from number `messageBase` on. If its
  /// library cannot be loaded, a string table of `size` entries is used instead, unless `table` is null; the
  /// table is not copied.
  VelClConsoleUI(int argc, const char* const* argv, const VelClFilename& catalogFile,
                 unsigned long messageBase, const char* const* table = nullptr, unsigned long size = 0);
  VelClConsoleUI(const VelClConsoleUI&) = delete;
  VelClConsoleUI& operator=(const VelClConsoleUI&) = delete;
  virtual ~VelClConsoleUI();

  /// Returns the catalog for the message numbers that the tool passes. A tool that has its own catalog
  /// overrides it.
  virtual const VelClMessageCatalog& getMessageCatalog() const;

  /// Switches on what users of today's programs expect. Call it before init. Without this call nothing of it
  /// holds.
  /// - `--name value`, `--name=value` and `-name=value` mean the same as `-name value`. A value after "=" may
  ///   be empty and may begin with "-". No built-in switch takes one, except -color.
  /// - After "--" every argument is free, whatever it begins with. "-" alone is an argument, not a switch.
  /// - `--help` and `--version` print to standard output and end the process with 0, or with 1 if that cannot
  ///   be written. `-h`, `-H`, `-?` and `-copyright` are as ever.
  /// - An unknown switch is reported with the names that resemble it. A value for a switch that takes none is
  ///   an error.
  /// - Title, info and warning go to the error stream, and so do questions and the usage after an error.
  ///   Standard output only gets what the program writes. In quiet mode there is no title. The bell only
  ///   rings on terminals.
  /// - Messages are coloured on terminals, unless NO_COLOR is set to any text or TERM is "dumb". The switch
  ///   `-color auto|always|never` decides otherwise.
  /// - If the catalog that was passed to the constructor does not have the territory of the user's language,
  ///   messages are in a language that the user reads as well, see VelClMessageCatalog::useLanguageFallback.
  /// - Numbers are checked whole: "5x" and numbers beyond the type's range (that of 32 bits for long) end the
  ///   process with 204, and so does a leading apostrophe. Answers to promptNumval are checked in the same
  ///   way.
  /// - If the environment variable VEL_CONSOLEUI_DESCRIBE is set, handleUsageHelp prints title, version,
  /// usage
  ///   and help as they were given, for generators of manual pages, and ends the process as --help does.
  ///
  /// The arguments that getArgc, getArgv and cursors over this object then show are rewritten: `--name=value`
  /// is the two arguments `-name` and `value`, and "--" and -color are left out. A value points into the
  /// program's own argument vector; the vector that getArgv returns lives as long as this object.
  void useConventions(const VelStConventions& conventions = {});
  /// Returns the control sequence that begins a style on a stream, or PLAIN again. Returns "" where nothing
  /// is coloured: without useConventions, on streams other than standard output and standard error, if their
  /// buffers were exchanged after the first useConventions or are those of texts (std::stringbuf), and if
  /// they are not terminals, unless `-color always` is given.
  const char* style(const std::ostream& stream, VelEnTextStyle style) const;

  /// Shows the title and handles -quiet and -copyright. Null texts and message number 0 count as absent;
  /// level and date are shown on the copyright page.
  void init(const char* title, const char* description, const char* toolLevel, const char* toolDate);
  void init(unsigned long titleId, unsigned long descriptionId, const char* toolLevel, const char* toolDate);
  /// Handles -h, -H and -?, and checks the command line against the usage unless the usage is "". Every error
  /// is reported on standard error; then the usage is shown and the process ends with 201.
  void handleUsageHelp(const char* usage, const char* help);
  void handleUsageHelp(unsigned long usageId, unsigned long helpId);

  /// Write to standard output. "(", ")", double quotes and "!" of the usage are omitted. In both texts a line
  /// that begins with "@" is shown as an empty line, and further lines are indented like the first.
  void displayUsageHelp(const char* usage, const char* help, bool exit);
  void displayUsage(bool exit) const;
  void displayHelp(bool exit) const;
  [[noreturn]] void displayCopyright(const char* toolLevel, const char* toolDate) const;
  /// Writes the title to the output stream.
  void displayTitle(const char* title, const char* description) const;

  /// True if the switch is given.
  bool hasArgSwitch(VelClSwitchName name) const;
  /// Returns false and leaves `value` unchanged if the switch is not given; otherwise sets `value` to the
  /// argument after it, which is not copied. A switch without a value ends the process with 203.
  bool hasArgString(VelClSwitchName name, const char*& value) const;
  /// Same, for decimal numbers of 32 bits, which saturate; a short receives the low 16 bits. A leading
  /// apostrophe is skipped. A missing value ends the process with 203; a value that begins with neither a
  /// digit nor "-" ends it with 204. "-x" is read as 0.
  bool hasArgNumval(VelClSwitchName name, short& value) const;
  bool hasArgNumval(VelClSwitchName name, int& value) const;
  bool hasArgNumval(VelClSwitchName name, long& value) const;
  /// Same, but a switch that is not given ends the process, see fatalMissingArg.
  void reqArgSwitch(VelClSwitchName name) const;
  void reqArgString(VelClSwitchName name, const char*& value) const;
  void reqArgNumval(VelClSwitchName name, short& value) const;
  void reqArgNumval(VelClSwitchName name, int& value) const;
  void reqArgNumval(VelClSwitchName name, long& value) const;

  /// Write a message: the first text, then each further text that is not null, preceded by ": ". info writes
  /// nothing in quiet mode. info and warning write to the output stream, fatal and exception to the error
  /// stream.
  void info(const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
            const char* text4 = nullptr, const char* text5 = nullptr) const;
  void warning(const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
               const char* text4 = nullptr, const char* text5 = nullptr) const;
  void error(std::ostream& stream, const char* text, const char* text2 = nullptr, const char* text3 = nullptr,
             const char* text4 = nullptr, const char* text5 = nullptr) const;
  /// Writes the message and ends the process with `exitCode`.
  [[noreturn]] void fatal(int exitCode, const char* text, const char* text2 = nullptr,
                          const char* text3 = nullptr, const char* text4 = nullptr,
                          const char* text5 = nullptr) const;
  /// Writes the message and every property of the exception.
  void exception(const VelClException& exception, const char* text, const char* text2 = nullptr,
                 const char* text3 = nullptr, const char* text4 = nullptr, const char* text5 = nullptr) const;
  /// Ends the process with 202 for a tool without usage; otherwise shows the usage and ends the process with
  /// 201.
  [[noreturn]] void fatalMissingArg(const char* switchName) const;
  /// Ends the process; for any code other than 0 the bell character is written first.
  [[noreturn]] void processExit(int exitCode) const;

  /// Write aligned text to the output stream. The first writes only the label column: two blanks, the label
  /// padded to its width, and ": ". The others write a whole line.
  void format(VelClUIText label) const;
  void format(VelClUIText label, const char* value) const;
  void format(VelClUIText label, int value) const;
  void format(VelClUIText label, unsigned int value) const;
  void format(VelClUIText label, long value) const;
  void format(VelClUIText label, unsigned long value) const;
  void format(VelClUIText label, long long value) const;
  void format(VelClUIText label, unsigned long long value) const;
  /// Writes "YES" or "NO", in the language of the catalog.
  void formatBool(VelClUIText label, bool value) const;
  /// Writes bytes in hexadecimal, 16 per line; each line begins with the label column or with blanks of its
  /// width.
  void dump(VelClUIText label, const void* data, size_t sizeInBytes) const;
  /// Writes the name and the number of an error identifier, or only the number if the library does not define
  /// a name.
  void formatErrId(unsigned long errorId) const;
  /// Writes the properties of an exception; without `verbose` only the identifier and the properties that are
  /// not 0.
  void format(const VelClException& exception, bool verbose) const;

  /// Prompts for an answer. Questions go to standard output and answers come from standard input, in quiet
  /// mode as well. An empty answer selects the default. A line is cut to 80 characters and the rest
  /// discarded; NUL bytes are removed. At the end of input every prompt uses its default without checking it,
  /// so no prompt repeats endlessly. The answer remains in the input buffer, see
  /// VelClConsoleUIParams::getInput; arguments may point into it.
  ///
  /// Asks once. A null hint or default is omitted; a null question is empty.
  void prompt(const char* question, const char* hint, const char* defaultAnswer) const;
  /// Asks once and returns the answer, valid until the next prompt. Returns the default at the end of input,
  /// or "" without a default.
  const char* promptString(VelClUIText question, const char* defaultAnswer = nullptr) const;
  /// Repeats until the answer begins with a number from `minimum` to `maximum`, both inclusive. Numbers
  /// saturate at 32 bits. "+5" is not a number; "5x" is 5.
  int32_t promptNumval(VelClUIText question, int32_t minimum, int32_t maximum, int32_t defaultValue) const;
  /// Repeats until the answer begins with the catalog's letter for yes or no: the first letters of messages 3
  /// and 4, which must be capitals there. The answer may be in lower case.
  bool promptYesNo(VelClUIText question, bool defaultAnswer) const;
  /// Waits for one key, without echo and without Enter, and restores the terminal settings, even if a signal
  /// ends or stops the process meanwhile. Returns immediately if the process does not have a console. Where
  /// keys can only be read from standard input and standard input is redirected, one character of it is
  /// consumed.
  void promptForKey() const;
  /// Waits for a whole line and discards it; the last answer is kept.
  void promptForEnter() const;

  /// A progress bar on standard error, with percentage and remaining time. It is shown only on a terminal,
  /// not in quiet mode, and not before one second has passed. `label` is not copied and may be null.
  void progressStart(unsigned long long total, const char* label = nullptr);
  /// Adds to the work done; redraws at most when the percentage changes.
  void progressStep(unsigned long long count = 1);
  /// Ends the bar and leaves one clean line after it, if it was shown.
  void progressStop();

  /// The arguments of the constructor, and the settings; see VelClConsoleUIParams.
  const char* getProcessName() const { return params_->getProcessName(); }
  const char* getUsage() const { return params_->getUsage(); }
  int getArgc() const { return argc_; }
  const char* const* getArgv() const { return argv_; }
  std::ostream& getOutputStream() const { return params_->getOutputStream(); }
  /// Sets the output stream; has no effect in quiet mode.
  void setOutputStream(std::ostream& stream) { params_->setOutputStream(stream); }
  /// See VelClConsoleUIParams.
  bool mustBeQuiet() const { return params_->mustBeQuiet(); }
  void setFormatWidth(unsigned int width) { params_->setFormatWidth(width); }
  void setFormatStyle(VelEnFormatStyle style) { params_->setFormatStyle(style); }
  void setFormatStyle(uint32_t style) { params_->setFormatStyle(style); }
  void setFormatFillChar(char c) { params_->setFormatFillChar(c); }
  /// Omit lines marked with "!" from the usage; the second also treats their switches as errors.
  void hideTaggedLines() { params_->setHideTaggedLines(true); }
  void disableTaggedLines() { params_->setDisableTaggedLines(true); }
  /// Returns the settings, for reading and changing.
  VelClConsoleUIParams& getParams() const { return *params_; }

 private:
  vel::consoleui::Words words() const;
  bool attachBuiltInTable();
  bool hasSourceOfMessages() const;
  void showTitle(const char* title, const char* description);
  void answerQuestions();
  void checkColorSwitch() const;
  void handleHelpSwitches() const;
  void checkCommandLine() const;
  [[noreturn]] void exitAfterUsage() const;
  [[noreturn]] void exitWithUsage() const;
  bool checkArgument(const VelClArgvCheckCursor& argument) const;
  [[noreturn]] void fatalArgument(int exitCode, uint32_t word, const char* switchName) const;
  template <typename Number>
  bool readNumber(VelClSwitchName name, Number& value) const;
  int32_t wholeNumber(const char* switchName, const char* digits, int32_t minimum, int32_t maximum) const;
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
  int32_t progressShown_ = -1;  ///< percentage on the screen, -1 if none
  bool progressActive_ = false;
};

#endif

#endif
