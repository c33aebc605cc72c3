// INI files: a model of sections and options that a lenient parser builds, typed questions to it, cursors
// over it, changes, saving, and an editor that keeps the rest of a file as it is.
//
//   [Section]                           a header begins in column 1
//   name = value                        ; comment
//   path = "a;b\tc" 'x' $(HOME)/bin     ; quoted string, character, environment variable
//     goes on here                      ; a continuation line begins with white space
//
// Names are compared without regard to the case of ASCII letters; white space and control characters are
// those of ASCII, whatever the locale.
#ifndef VEL_INIFILE_H_
#define VEL_INIFILE_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_cursor.h"
#include "vel_error.h"
#include "vel_export.h"
#include "vel_filesys.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>

class VelClIniFile;

namespace vel::inifile {
class CursorPlace;
struct EditedFile;
class FileOutput;
class LineSource;
class Model;
class Parser;
}  // namespace vel::inifile

/// The character that an escape in a value stands for. `cursor`, on the character behind the back-slash of a
/// terminated text, moves behind the escape and never beyond the terminator: a b f n r t v are control
/// characters, x with any hexadecimal digits and any octal digits give a number (cut to a character, NUL
/// without digits), and every other character stands for itself. 8 and 9 give NUL and leave the cursor.
VEL_API char velIniFileGetEscCharacter(const char*& cursor);
/// The character between single quotes, which may be an escape. `cursor`, on the opening quote, moves behind
/// the closing one, or what stands there, and never beyond the terminator.
VEL_API char velIniFileGetQuotedCharacter(const char*& cursor);

/// An option. Texts are valid until the option is changed or deleted.
class VEL_API VelClIniFileOption {
 public:
  VelClIniFileOption(const VelClIniFileOption&) = delete;
  VelClIniFileOption& operator=(const VelClIniFileOption&) = delete;

  /// As the model has them: without quotes and blanks around, escapes resolved.
  const char* getName() const { return textUnits_ == 0 ? text_ : movedText(); }
  const char* getValue() const { return getName() + value_; }
  /// "" when there is none.
  const char* getComment() const { return getName() + comment_; }
  /// The next option of the section, or null.
  VelClIniFileOption* getNext() const { return next_; }

 private:
  friend class vel::inifile::Model;
  VelClIniFileOption() = default;
  const char* movedText() const;

  VelClIniFileOption* next_;
  uint16_t value_;
  uint16_t comment_;
  uint8_t textUnits_;  ///< the memory of a text that has left the record, 0 for one in it
  uint8_t recordUnits_;
  char text_[2];  ///< name, value and comment, each terminated: 1,024 characters at most, and no more than it
                  ///< takes, beyond this member; or a pointer to a text that has left the record
};

/// A section. The name is valid until the section is deleted.
class VelClIniFileSection {
 public:
  /// Names are cut to this many characters.
  static constexpr size_t kMaxNameLength = 80;

  VelClIniFileSection(const VelClIniFileSection&) = delete;
  VelClIniFileSection& operator=(const VelClIniFileSection&) = delete;

  /// Without the brackets.
  const char* getName() const { return name_; }
  /// The next section of the file, or null.
  VelClIniFileSection* getNext() const { return next_; }
  /// The first option, or null.
  VelClIniFileOption* getFirstOption() const { return firstOption_; }

 private:
  friend class vel::inifile::Model;
  VelClIniFileSection() = default;

  VelClIniFileSection* next_;
  VelClIniFileOption* firstOption_;
  char name_[kMaxNameLength + 1];
  uint32_t optionCount_;
  VelClIniFileOption* lastOption_;
  void* index_;  ///< finds options by name; null as long as nobody asked a long section
};

/// Decides about a syntax error in `line`: false ends the load.
typedef bool (*VelIniFileErrorHandler)(const _VelStError& error, unsigned int line, void* userData);

namespace vel::inifile {

/// Where a cursor stands, known to the file so that what is deleted can be taken from under it.
class CursorPlace {
 public:
  /// In a section, or null, and before its first option.
  CursorPlace(const VelClIniFile& file, VelClIniFileSection* section);
  CursorPlace(const CursorPlace& other);
  CursorPlace& operator=(const CursorPlace& other);
  ~CursorPlace();

  /// Null when the file is gone.
  const VelClIniFile* file() const { return file_; }
  VelClIniFileSection* section() const { return section_; }
  VelClIniFileOption* option() const { return option_; }
  void setSection(VelClIniFileSection* section) { section_ = section; }
  void setOption(VelClIniFileOption* option) { option_ = option; }

 private:
  friend class Model;

  void attach();
  void detach();

  const VelClIniFile* file_;
  VelClIniFileSection* section_;
  VelClIniFileOption* option_;
  CursorPlace* previous_;
  CursorPlace* next_;
};

}  // namespace vel::inifile

/// A file of sections and options in memory. A null name is found nowhere, and null bytes are none. Objects
/// must not be used by two threads at once, questions included. Memory comes from the memory manager, whose
/// failure throws; a load or change that fails so leaves the model with what was built before.
///
/// Name, value and comment of an option share 1,024 characters with their terminators: value, then comment,
/// are cut to the room left.
class VEL_API VelClIniFile : public VelClFile {
 public:
  /// A name without extension gets ".INI". Nothing is read.
  explicit VelClIniFile(const VelClFilenameABase& name);
  explicit VelClIniFile(const char* name) : VelClIniFile(VelClFilename(name)) {}
  VelClIniFile(const VelClIniFile&) = delete;
  VelClIniFile& operator=(const VelClIniFile&) = delete;
  ~VelClIniFile() override;

  /// `handler` is asked about every syntax error with class USER_DATA_ERROR: INIFILE_INVAL_SECTION for a
  /// header without "]", INIFILE_INVAL_OPTION for an option without "=", INIFILE_INVAL_WHITESPACE for a line
  /// that begins with white space where nothing can be continued. Null, as at first, ignores them all.
  void setErrorHandler(VelIniFileErrorHandler handler, void* userData);

  /// Adds what the file holds to the model; every header begins a section of its own. False when the file
  /// cannot be opened, or the handler ended the load; what was built before stays. A line of more than 1,023
  /// characters ends the load behind them, without an error. Afterwards there is no current section.
  bool load(bool allowContinuation);
  /// The same for bytes in memory, which are not copied. Lines end in `delimiter`; line numbers go on from
  /// the last load. Without `keepDuplicateSections` options of a section that exists are added to it.
  bool loadFromBuffer(const char* buffer, size_t size, char delimiter, bool keepDuplicateSections,
                      bool allowContinuation);
  /// How many lines were read, from the first of the last load(bool) on. The end of the bytes behind the last
  /// delimiter counts as a line, even when it is empty: 3 for "a\nb\n".
  unsigned int getLineCount() const { return lineCount_; }

  /// Makes the first section of this name the current one. False, with no current section, when there is
  /// none.
  bool getSection(const char* name) const;

  /// Ask the current section for the first option of a name. False, with the outputs untouched, when there is
  /// no current section or no such option. Texts are valid until the option is changed or deleted.
  bool getOption(const char* name, const char*& value) const;
  bool getOption(const char* name, const char*& value, const char*& comment) const;
  /// Decimal numbers at the start of the value, behind blanks and a sign; 0 when there is none. 32 bits on
  /// every system, saturated; unsigned, -1 is 4294967295.
  bool getOption(const char* name, int& value) const;
  bool getOption(const char* name, int& value, const char*& comment) const;
  bool getOption(const char* name, long& value) const;
  bool getOption(const char* name, long& value, const char*& comment) const;
  bool getOption(const char* name, unsigned int& value) const;
  bool getOption(const char* name, unsigned int& value, const char*& comment) const;
  bool getOption(const char* name, unsigned long& value) const;
  bool getOption(const char* name, unsigned long& value, const char*& comment) const;
  /// The first character, or the one between single quotes; NUL for an empty value.
  bool getOption(const char* name, char& value) const;
  bool getOption(const char* name, char& value, const char*& comment) const;
  /// Whether the value is found within getStringAllTrueTokens by velStrFind, ignoring case. This has
  /// surprises:
  /// "", "E", "n", "t" and "|" are true. So are "on", "Yes" and "1"; "OFF", "0", "no" and "false" are false.
  bool getOptionBool(const char* name, bool& value) const;
  /// As getOptionBool, with the comment.
  bool getOption(const char* name, bool& value, const char*& comment) const;

  /// Whole records: the first of a name, or null. The current section stays.
  const VelClIniFileSection* getFirstSection() const { return firstSection_; }
  VelClIniFileSection* getExistingSection(const char* name) const;
  const VelClIniFileOption* getExistingOption(const VelClIniFileSection& section, const char* name) const;

  /// Change the model. False, with nothing changed, for what could not be read back as a line of a file:
  /// option names that are empty, hold white space or "=", or begin with "[" or ";", and comments with line
  /// breaks; and for texts that exceed an option's room. A null value or comment counts as "".
  ///
  /// Makes the section the current one. It is appended, and true returned, when there was none of this name.
  /// False as well for names that hold "]" or a line break, with the current section as it was. Names are cut
  /// to 80 characters.
  bool addSection(const char* name);
  /// Removes the first section of a name with its options; false without one. Cursors in it become invalid.
  bool deleteSection(const char* name);
  /// These three work on the current section, and are false without one. An option is appended if there is
  /// none of its name.
  bool addOption(const char* name, const char* value, const char* comment = nullptr);
  /// Gives the first option of a name another value. The comment stays, cut to the room left.
  bool setNewValue(const char* name, const char* value);
  /// Removes the first option of a name. Cursors on it become invalid.
  bool deleteOption(const char* name);

  /// The words that are written for true and false, and those that count as true; literals.
  static const char* getStringTrue() { return "ON"; }
  static const char* getStringFalse() { return "OFF"; }
  static const char* getStringAllTrueTokens() { return "|ON|TRUE|YES|1|OK|"; }

 private:
  friend class vel::inifile::Model;
  friend class vel::inifile::Parser;

  bool parse(vel::inifile::LineSource& lines, bool keepDuplicateSections, bool allowContinuation);
  template <typename Value>
  bool ask(const char* name, Value& value, const char** comment) const;

  VelClIniFileSection* firstSection_;
  VelClIniFileSection* lastSection_;
  uint32_t lineCount_;
  mutable VelClIniFileSection* currentSection_;
  VelIniFileErrorHandler errorHandler_;
  void* errorHandlerData_;
  vel::inifile::Model* model_;
};

/// Walks over the sections of a file in their order. Sections may be added and deleted meanwhile: a cursor
/// whose section is deleted, or whose file is gone, is invalid. An invalid cursor answers "" and false.
class VEL_API VelClIniFileSectionCursor : public VelClUniDirCursorABase {
 public:
  /// Stands before the first section: invalid.
  explicit VelClIniFileSectionCursor(const VelClIniFile& file);
  VelClIniFileSectionCursor(const VelClIniFileSectionCursor& other);
  VelClIniFileSectionCursor& operator=(const VelClIniFileSectionCursor& other);
  ~VelClIniFileSectionCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  /// Stays invalid when it is.
  bool setToNext() override;
  /// Stays where the name is this, otherwise moves to the first section of the name.
  virtual bool setTo(const char* name);

  /// Whether it stands on a section of this name, and the name.
  bool matches(const char* name) const;
  const char* getSection() const;

 private:
  friend class VelClIniFileOptionCursor;

  vel::inifile::CursorPlace place_;
};

/// Walks over the options of a section, in the same way.
class VEL_API VelClIniFileOptionCursor : public VelClUniDirCursorABase {
 public:
  /// Stands before the first option of the section: invalid.
  VelClIniFileOptionCursor(const VelClIniFile& file, const VelClIniFileSection& section);
  /// The first section of this name; without one the cursor never becomes valid.
  VelClIniFileOptionCursor(const VelClIniFile& file, const char* section);
  /// The section that a cursor stands on.
  explicit VelClIniFileOptionCursor(const VelClIniFileSectionCursor& section);
  VelClIniFileOptionCursor(const VelClIniFileOptionCursor& other);
  VelClIniFileOptionCursor& operator=(const VelClIniFileOptionCursor& other);
  ~VelClIniFileOptionCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  bool setToNext() override;
  /// Stays where the name is this, otherwise moves to the first option of the name.
  virtual bool setTo(const char* name);

  /// Whether it stands on an option of this name; its name and its value.
  bool matches(const char* name) const;
  const char* getOption() const;
  const char* getValue() const;
  /// Convert as VelClIniFile::getOption does, and leave the output alone when the cursor is invalid.
  bool getValue(const char*& value) const;
  bool getValue(int& value) const;
  bool getValue(long& value) const;
  bool getValue(unsigned int& value) const;
  bool getValue(unsigned long& value) const;
  bool getValue(char& value) const;
  /// As VelClIniFile::getOptionBool; false when the cursor is invalid.
  bool getValueBool() const;
  /// "" when there is none.
  const char* getComment() const;

 private:
  vel::inifile::CursorPlace place_;
};

/// An INI file that can write itself. Order, names, values and comments of options are kept; comment lines,
/// blank lines, spacing, continuation lines, needless quotes, and options with empty values or names are not.
/// Values come back as they were, but for white space around one without ";" or control character, quotes and
/// "$(" in a value (which are not escaped), and a hexadecimal digit behind a control character without a
/// letter. Escapes make lines longer, and one of more than 1,023 characters ends the next load.
class VEL_API VelClIniFileSave : public VelClIniFile {
 public:
  /// A name without extension gets ".INI". Nothing is read.
  explicit VelClIniFileSave(const VelClFilenameABase& name);
  explicit VelClIniFileSave(const char* name) : VelClIniFileSave(VelClFilename(name)) {}
  ~VelClIniFileSave() override;

  /// Writes the file. False when it cannot be written; nothing throws for that. A new file is written beside
  /// the old one, where the file system allows it without a name, otherwise as "~" and random hexadecimal
  /// digits ".tmp", and takes its place, with its permissions, when all of it is safely stored: whatever
  /// happens meanwhile, there is the old file or the new one. A read-only file, and one in a directory that
  /// takes no new files, cannot be written, nor one whose name leads to another file before all is written.
  /// May be called again, also after a failure. After save(stream) it returns false.
  bool save();
  /// Whether the file has the owner, the group and the permissions of the one that the last save() replaced.
  /// What belonged to an owner or group that this program cannot give the file is no permission for another
  /// one, so it may have less. True when nothing was replaced.
  bool hasKeptRights() const;
  /// Writes the model to a stream and flushes it; true when that reports no error. Afterwards this object
  /// counts as opened, so that it does not open its own file: save() fails from then on.
  bool save(std::ostream& stream);

 protected:
  /// Write single lines, for derived classes with output of their own. True when the stream reports no error.
  /// A comment may be null or "".
  bool saveSection(std::ostream& stream, const char* name, const char* comment) const;
  /// Writes nothing for an empty value.
  bool saveOption(std::ostream& stream, const char* name, const char* value, const char* comment) const;
  /// Decimal numbers of 32 bits.
  bool saveOption(std::ostream& stream, const char* name, int value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, unsigned int value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, long value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, unsigned long value, const char* comment) const;
  /// Between single quotes.
  bool saveOption(std::ostream& stream, const char* name, char value, const char* comment) const;
  /// ON or OFF.
  bool saveOptionBool(std::ostream& stream, const char* name, bool value, const char* comment) const;
  /// The end of a line: a tab, "; " and the comment, unless that is empty, and a line break.
  bool saveComment(std::ostream& stream, const char* comment) const;
  /// One character of a quoted value.
  bool saveChar(std::ostream& stream, char c) const;

 private:
  bool saveNumber(std::ostream& stream, const char* name, const char* digits, const char* comment) const;

  vel::inifile::FileOutput* output_;
  bool opened_;
};

/// What became of VelClIniFileEditor::lock.
enum class VelEnIniFileLock : uint32_t {
  LOCKED,       ///< until unlock(), a save that succeeds, or the end of the editor
  TIMED_OUT,    ///< another editor had the lock all the time
  UNSUPPORTED,  ///< the file system has no locks; load() and save() see a file that was changed all the same
  FAILED        ///< there is no such directory, or no right to read the file
};

/// Changes single options and sections of a file and leaves every other byte of it: comments, blank lines,
/// spacing, order and line ends. Names find what VelClIniFile's questions find: the first of a name.
///
/// Every change is read back with the parser before it counts, and refused (false, with nothing changed)
/// unless exactly the model comes back that was asked for: values that are too long or hold "\0", names that
/// a file cannot hold, and changes behind the place where reading ends. A change takes time in proportion to
/// the file.
class VEL_API VelClIniFileEditor : public VelClFile {
 public:
  /// A name without extension gets ".INI". Nothing is read.
  explicit VelClIniFileEditor(const VelClFilenameABase& name);
  explicit VelClIniFileEditor(const char* name) : VelClIniFileEditor(VelClFilename(name)) {}
  VelClIniFileEditor(const VelClIniFileEditor&) = delete;
  VelClIniFileEditor& operator=(const VelClIniFileEditor&) = delete;
  ~VelClIniFileEditor() override;

  /// Reads the file in place of what was edited before; false, with that unchanged, when it cannot be read.
  /// `allowContinuation` is as for VelClIniFile::load.
  bool load(bool allowContinuation);
  /// Takes a copy of bytes instead.
  void loadFromBuffer(const char* buffer, size_t size, bool allowContinuation);

  /// Gives the option this value, quoted as it has to be, or as it was. A missing option comes behind the
  /// last line of its section, a missing section at the end. Continuation lines of the old value go; the
  /// comment on one stays as a comment line. Null names are found nowhere, here and below.
  bool setValue(const char* section, const char* option, const char* value);
  /// Does so with every option that questions find in another file, all of them or none, in the time of a few
  /// changes.
  bool merge(const VelClIniFile& source);
  /// Adds an empty section at the end; false when there is one of this name.
  bool addSection(const char* name);
  /// Removes the option's line, and those that continue it.
  bool deleteOption(const char* section, const char* option);
  /// Removes the lines from the header to the last one that is neither blank nor a comment.
  bool deleteSection(const char* name);

  /// The text as it is now, terminated, and its length in bytes; valid until the next change.
  const char* getText() const;
  size_t getLength() const;
  /// What the parser reads there; valid until the next change.
  const VelClIniFile& getIniFile() const;

  /// Writes the file as VelClIniFileSave::save does: the old file or the new one, whatever happens.
  /// On Windows a file that another program has open cannot be replaced. A link that leads nowhere is
  /// refused. Ends the lock, if there is one and the file is saved.
  bool save();
  /// As VelClIniFileSave::hasKeptRights.
  bool hasKeptRights() const;

  /// Locks the file against every other editor that locks it, also of this process, so that changes of
  /// several programs follow each other: lock, load, change, save. A file that does not exist yet is locked,
  /// too. Waits up to this time, in milliseconds, and ends a lock of before. The lock binds nobody who does
  /// not ask for it, ends with unlock(), a save that succeeds, this object, or the process, and leaves
  /// nothing on disk. On Linux a child that the process has forked meanwhile keeps the lock of a process that
  /// was killed, and whoever may read the file can hold the lock.
  ///
  /// As long as it is there, load() and save() fail when the name leads to another file than the locked one,
  /// or that one was changed by somebody who did not lock it; save() also when that was so when the text was
  /// loaded before the lock.
  [[nodiscard]] VelEnIniFileLock lock(unsigned int timeLimitMs);
  void unlock();
  /// Whether that is why the last load() or save() failed.
  bool isReplaced() const;

 private:
  vel::inifile::EditedFile* file_;
};

#endif

#endif
