// INI files: a lenient parser that builds a model of sections and options, typed getters, cursors, changes to
// the model, saving, and an editor that preserves the rest of a file byte for byte.
//
//   [Section]                           a header begins in column 1
//   name = value                        ; comment
//   path = "a;b\tc" 'x' $(HOME)/bin     ; quoted string, character, environment variable
//     goes on here                      ; a continuation line begins with white space
//
// Names are compared ignoring ASCII case. White space and control characters are those of ASCII, independent
// of the locale.
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

/// Returns the character for an escape in a value. `cursor` points into a NUL-terminated string, to the
/// character after the backslash; it is advanced past the escape, and never past the NUL. a b f n r t v are
/// control characters; x with any number of hexadecimal digits, and any number of octal digits, give a number
/// (truncated to a character; NUL if no digits follow); every other character denotes itself. 8 and 9 give
/// NUL and do not advance the cursor.
VEL_API char velIniFileGetEscCharacter(const char*& cursor);
/// Returns the character between single quotes, which may be an escape. `cursor` points to the opening quote;
/// it is advanced past the closing quote, or past the character found in its place, and never past the
/// terminating NUL.
VEL_API char velIniFileGetQuotedCharacter(const char*& cursor);

/// An option. Its texts are valid until the option is changed or deleted.
class VEL_API VelClIniFileOption {
 public:
  VelClIniFileOption(const VelClIniFileOption&) = delete;
  VelClIniFileOption& operator=(const VelClIniFileOption&) = delete;

  /// Return the texts after parsing: without surrounding quotes and blanks, and with escapes resolved.
  const char* getName() const { return textUnits_ == 0 ? text_ : movedText(); }
  const char* getValue() const { return getName() + value_; }
  /// Returns "" if there is no comment.
  const char* getComment() const { return getName() + comment_; }
  /// Returns the next option of the section, or null.
  VelClIniFileOption* getNext() const { return next_; }

 private:
  friend class vel::inifile::Model;
  VelClIniFileOption() = default;
  const char* movedText() const;

  VelClIniFileOption* next_;
  uint16_t value_;
  uint16_t comment_;
  uint8_t textUnits_;  ///< allocated size of a text outside this record; 0 while the text is in it
  uint8_t recordUnits_;
  char text_[2];  ///< name, value and comment, each NUL-terminated, at most 1,024 characters; the record is
                  ///< allocated with just enough room after this member. Or a pointer to a text outside it.
};

/// A section. Its name is valid until the section is deleted.
class VelClIniFileSection {
 public:
  /// The longest name in characters; longer names are cut.
  static constexpr size_t kMaxNameLength = 80;

  VelClIniFileSection(const VelClIniFileSection&) = delete;
  VelClIniFileSection& operator=(const VelClIniFileSection&) = delete;

  /// Returns the name without the brackets.
  const char* getName() const { return name_; }
  /// Returns the next section of the file, or null.
  VelClIniFileSection* getNext() const { return next_; }
  /// Returns the first option, or null.
  VelClIniFileOption* getFirstOption() const { return firstOption_; }

 private:
  friend class vel::inifile::Model;
  VelClIniFileSection() = default;

  VelClIniFileSection* next_;
  VelClIniFileOption* firstOption_;
  char name_[kMaxNameLength + 1];
  uint32_t optionCount_;
  VelClIniFileOption* lastOption_;
  void* index_;  ///< index of options by name; null until a long section is first searched
};

/// Called for a syntax error in line number `line`; returning false ends the load.
typedef bool (*VelIniFileErrorHandler)(const _VelStError& error, unsigned int line, void* userData);

namespace vel::inifile {

/// The position of a cursor. The file keeps a list of them, so that it can invalidate cursors on what is
/// deleted.
class CursorPlace {
 public:
  /// Starts before the first option of a section, which may be null.
  CursorPlace(const VelClIniFile& file, VelClIniFileSection* section);
  CursorPlace(const CursorPlace& other);
  CursorPlace& operator=(const CursorPlace& other);
  ~CursorPlace();

  /// Return null where there is nothing; file() returns null once the file is destroyed.
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

/// A file of sections and options in memory. A null name is never found, and a null buffer counts as empty.
/// One object must not be used by two threads at the same time, not even for reading. Memory is allocated by
/// the memory manager, which throws when memory runs out; a load or change that fails this way leaves the
/// model with what was built before.
///
/// Name, value and comment of an option share 1,024 characters, including their terminating NULs. The value
/// is cut to the room that the name leaves, then the comment to the room that both leave.
class VEL_API VelClIniFile : public VelClFile {
 public:
  /// A name without extension gets ".INI". Nothing is read.
  explicit VelClIniFile(const VelClFilenameABase& name);
  explicit VelClIniFile(const char* name) : VelClIniFile(VelClFilename(name)) {}
  VelClIniFile(const VelClIniFile&) = delete;
  VelClIniFile& operator=(const VelClIniFile&) = delete;
  ~VelClIniFile() override;

  /// `handler` is called for every syntax error, with class USER_DATA_ERROR: INIFILE_INVAL_SECTION for a
  /// header without "]", INIFILE_INVAL_OPTION for an option without "=", and INIFILE_INVAL_WHITESPACE for a
  /// line that begins with white space where there is nothing to continue. Null, the initial value, ignores
  /// all errors.
  void setErrorHandler(VelIniFileErrorHandler handler, void* userData);

  /// Appends the content of the file to the model; every header begins a new section. Returns false if the
  /// file cannot be opened, or if the handler ended the load; what was built before remains. A line of more
  /// than 1,023 characters ends the load after these characters, without an error. Afterwards no section is
  /// the current one.
  bool load(bool allowContinuation);
  /// Same for bytes in memory, which are not copied. Lines end in `delimiter`; line numbers continue from the
  /// previous load. Without `keepDuplicateSections`, the options of a section that exists already are added
  /// to it.
  bool loadFromBuffer(const char* buffer, size_t size, char delimiter, bool keepDuplicateSections,
                      bool allowContinuation);
  /// Returns the number of lines read since the start of the last load(bool). The bytes after the last
  /// delimiter count as a line, even an empty one: 3 for "a\nb\n".
  unsigned int getLineCount() const { return lineCount_; }

  /// Makes the first section of this name the current one. If the section does not exist, returns false, and
  /// no section is the current one.
  bool getSection(const char* name) const;

  /// Get the first option of this name in the current section. Return false and leave the outputs unchanged
  /// if no section is the current one or the option does not exist. Texts are valid until the option is
  /// changed or deleted.
  bool getOption(const char* name, const char*& value) const;
  bool getOption(const char* name, const char*& value, const char*& comment) const;
  /// Parse the decimal number at the start of the value, after blanks and a sign; 0 if the value does not
  /// begin with one. Numbers have 32 bits on every system and saturate; read as unsigned, -1 is 4294967295.
  bool getOption(const char* name, int& value) const;
  bool getOption(const char* name, int& value, const char*& comment) const;
  bool getOption(const char* name, long& value) const;
  bool getOption(const char* name, long& value, const char*& comment) const;
  bool getOption(const char* name, unsigned int& value) const;
  bool getOption(const char* name, unsigned int& value, const char*& comment) const;
  bool getOption(const char* name, unsigned long& value) const;
  bool getOption(const char* name, unsigned long& value, const char*& comment) const;
  /// Return the first character, or the one between single quotes; NUL for an empty value.
  bool getOption(const char* name, char& value) const;
  bool getOption(const char* name, char& value, const char*& comment) const;
  /// Searches getStringAllTrueTokens for the value by velStrFind, ignoring case; true if it is found: "on",
  /// "Yes" and "1" are true, "OFF", "0", "no" and "false" are false.
  /// @warning Most other pieces of the list are true as well: "", "E", "n", "t" and "|".
  /// Compare the text of getOption where that matters.
  bool getOptionBool(const char* name, bool& value) const;
  /// Same as getOptionBool, with the comment.
  bool getOption(const char* name, bool& value, const char*& comment) const;

  /// Return the first record of a name, or null. The current section does not change.
  const VelClIniFileSection* getFirstSection() const { return firstSection_; }
  VelClIniFileSection* getExistingSection(const char* name) const;
  const VelClIniFileOption* getExistingOption(const VelClIniFileSection& section, const char* name) const;

  /// Functions that change the model. They return false and change nothing for anything that could not be
  /// read back as a line of a file: option names that are empty, contain white space or "=", or begin with
  /// "[" or ";", and comments with line breaks; and for texts that exceed the room of an option. A null value
  /// or comment counts as "".
  ///
  /// Makes the section the current one. Returns true if it was appended, because no section had this name.
  /// Returns false for an existing name, and also for a name that contains "]" or a line break, in which case
  /// the current section does not change. Names are cut to 80 characters.
  bool addSection(const char* name);
  /// Removes the first section of this name with its options; returns false if the section does not exist.
  /// Cursors in it become invalid.
  bool deleteSection(const char* name);
  /// The next three functions apply to the current section; without one they return false. An option is
  /// appended if its name does not occur in the section.
  bool addOption(const char* name, const char* value, const char* comment = nullptr);
  /// Replaces the value of the first option of this name. The comment is kept, cut to the room left.
  bool setNewValue(const char* name, const char* value);
  /// Removes the first option of this name. Cursors on it become invalid.
  bool deleteOption(const char* name);

  /// Return the words written for true and false, and the list of words read as true; literals.
  static const char* getStringTrue() { return "ON"; }
  static const char* getStringFalse() { return "OFF"; }
  static const char* getStringAllTrueTokens() { return "|ON|TRUE|YES|1|OK|"; }

 private:
  friend class vel::inifile::Model;
  friend class vel::inifile::Parser;

  bool parse(vel::inifile::LineSource& lines, bool keepDuplicateSections, bool allowContinuation);
  template <typename Value>
  bool queryOption(const char* name, Value& value, const char** comment) const;

  VelClIniFileSection* firstSection_;
  VelClIniFileSection* lastSection_;
  uint32_t lineCount_;
  mutable VelClIniFileSection* currentSection_;
  VelIniFileErrorHandler errorHandler_;
  void* errorHandlerData_;
  vel::inifile::Model* model_;
};

/// Iterates over the sections of a file in their order. Sections may be added and deleted meanwhile: a cursor
/// becomes invalid when its section is deleted or the file is destroyed. The getters of an invalid cursor
/// return "" and false.
class VEL_API VelClIniFileSectionCursor : public VelClUniDirCursorABase {
 public:
  /// Starts before the first section, and is therefore invalid.
  explicit VelClIniFileSectionCursor(const VelClIniFile& file);
  VelClIniFileSectionCursor(const VelClIniFileSectionCursor& other);
  VelClIniFileSectionCursor& operator=(const VelClIniFileSectionCursor& other);
  ~VelClIniFileSectionCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  /// An invalid cursor stays invalid.
  bool setToNext() override;
  /// Stays on the current section if it has this name, otherwise moves to the first section of that name.
  virtual bool setTo(const char* name);

  /// Compare the name of the current section, or return it.
  bool matches(const char* name) const;
  const char* getSection() const;

 private:
  friend class VelClIniFileOptionCursor;

  vel::inifile::CursorPlace place_;
};

/// Iterates over the options of a section, like VelClIniFileSectionCursor.
class VEL_API VelClIniFileOptionCursor : public VelClUniDirCursorABase {
 public:
  /// Starts before the first option of the section, and is therefore invalid.
  VelClIniFileOptionCursor(const VelClIniFile& file, const VelClIniFileSection& section);
  /// Uses the first section of this name; if it does not exist, the cursor never becomes valid.
  VelClIniFileOptionCursor(const VelClIniFile& file, const char* section);
  /// Uses the current section of another cursor.
  explicit VelClIniFileOptionCursor(const VelClIniFileSectionCursor& section);
  VelClIniFileOptionCursor(const VelClIniFileOptionCursor& other);
  VelClIniFileOptionCursor& operator=(const VelClIniFileOptionCursor& other);
  ~VelClIniFileOptionCursor() override;

  bool isValid() const override;
  bool setToFirst() override;
  bool setToNext() override;
  /// Stays on the current option if it has this name, otherwise moves to the first option of that name.
  virtual bool setTo(const char* name);

  /// Compare the name of the current option, or return its name and its value.
  bool matches(const char* name) const;
  const char* getOption() const;
  const char* getValue() const;
  /// Convert like VelClIniFile::getOption. Return false and leave the output unchanged if the cursor is
  /// invalid.
  bool getValue(const char*& value) const;
  bool getValue(int& value) const;
  bool getValue(long& value) const;
  bool getValue(unsigned int& value) const;
  bool getValue(unsigned long& value) const;
  bool getValue(char& value) const;
  /// Converts like VelClIniFile::getOptionBool; returns false if the cursor is invalid.
  bool getValueBool() const;
  /// Returns "" if there is no comment.
  const char* getComment() const;

 private:
  vel::inifile::CursorPlace place_;
};

/// An INI file that can save itself. Order, names, values and comments of options are kept. Lost are comment
/// lines, blank lines, spacing, continuation lines, redundant quotes, and options whose value or name is
/// empty.
/// Values round-trip with three exceptions: white space around a value that has neither ";" nor a control
/// character; quotes and "$(" in a value, which are not escaped; and a hexadecimal digit after a control
/// character without a letter escape. Escapes make lines longer, and a line of more than 1,023 characters
/// ends the next load.
class VEL_API VelClIniFileSave : public VelClIniFile {
 public:
  /// A name without extension gets ".INI". Nothing is read.
  explicit VelClIniFileSave(const VelClFilenameABase& name);
  explicit VelClIniFileSave(const char* name) : VelClIniFileSave(VelClFilename(name)) {}
  ~VelClIniFileSave() override;

  /// Writes the file; returns false if it cannot be written, and does not throw for that. The text is written
  /// to a new file beside the old one. The new file is unnamed where the file system allows it, and otherwise
  /// is named "~", random hexadecimal digits and ".tmp". Once it is safely stored, it replaces the old file
  /// and gets its permissions: after a crash at any point either the old file or the new one exists. A file
  /// cannot be saved if it is read-only, if its directory accepts no new files, or if its name starts to lead
  /// to another file before the save is complete. save() may be called again, also after a failure. After
  /// save(stream) it returns false.
  bool save();
  /// True if the saved file has the owner, the group and the permissions of the file that the last save()
  /// replaced. If this program cannot keep the owner or group, the permissions of that owner or group are
  /// dropped, so that nobody else gains them; the file then has fewer permissions. True if nothing was
  /// replaced.
  bool hasKeptRights() const;
  /// Writes the model to a stream and flushes it; returns true if the stream reports no error. Afterwards
  /// this object counts as opened and does not open its own file: save() fails from then on.
  bool save(std::ostream& stream);

 protected:
  /// For derived classes with their own output. Each writes one line (saveSection an empty line before it)
  /// and returns true if the stream reports no error. A comment may be null or "".
  bool saveSection(std::ostream& stream, const char* name, const char* comment) const;
  /// Writes nothing for an empty value.
  bool saveOption(std::ostream& stream, const char* name, const char* value, const char* comment) const;
  /// Write decimal numbers of 32 bits.
  bool saveOption(std::ostream& stream, const char* name, int value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, unsigned int value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, long value, const char* comment) const;
  bool saveOption(std::ostream& stream, const char* name, unsigned long value, const char* comment) const;
  /// Writes the character between single quotes.
  bool saveOption(std::ostream& stream, const char* name, char value, const char* comment) const;
  /// Writes ON or OFF.
  bool saveOptionBool(std::ostream& stream, const char* name, bool value, const char* comment) const;
  /// Writes the end of a line: a tab, "; " and the comment, if that is not empty, and a line break.
  bool saveComment(std::ostream& stream, const char* comment) const;
  /// Writes one character of a quoted value: a backslash or control character as an escape, any other
  /// character, including a double quote, unchanged.
  bool saveChar(std::ostream& stream, char c) const;

 private:
  bool saveNumber(std::ostream& stream, const char* name, const char* digits, const char* comment) const;

  vel::inifile::FileOutput* output_;
  bool opened_;
};

/// The result of VelClIniFileEditor::lock.
enum class VelEnIniFileLock : uint32_t {
  LOCKED,       ///< held until unlock(), a successful save, or the destruction of the editor
  TIMED_OUT,    ///< another editor held the lock for the whole time
  UNSUPPORTED,  ///< the file system does not support locks; load() and save() still detect a changed file
  FAILED        ///< the directory does not exist, or the file may not be read
};

/// Changes single options and sections of a file and preserves every other byte of it: comments, blank lines,
/// spacing, order and line ends. A name selects the same section or option as in VelClIniFile: the first of
/// that name.
///
/// Every change is verified with the parser before it is committed. It is refused (false, with nothing
/// changed) unless parsing yields exactly the intended model: this refuses values that are too long or
/// contain "\0", names that a file cannot represent, and changes after the point where the parser stops. A
/// change takes time proportional to the size of the file.
///
/// A byte order mark of UTF-8 at the start of the file is kept, and a section in the first line is found.
/// Note that VelClIniFile takes the mark for a part of the first line and does not find that section.
class VEL_API VelClIniFileEditor : public VelClFile {
 public:
  /// A name without extension gets ".INI", which setFileType("") removes again. Nothing is read.
  explicit VelClIniFileEditor(const VelClFilenameABase& name);
  explicit VelClIniFileEditor(const char* name) : VelClIniFileEditor(VelClFilename(name)) {}
  VelClIniFileEditor(const VelClIniFileEditor&) = delete;
  VelClIniFileEditor& operator=(const VelClIniFileEditor&) = delete;
  ~VelClIniFileEditor() override;

  /// Reads the file and replaces the text edited before; returns false and keeps that text if the file cannot
  /// be read. `allowContinuation` has the same meaning as in VelClIniFile::load.
  bool load(bool allowContinuation);
  /// Replaces the text with a copy of these bytes.
  void loadFromBuffer(const char* buffer, size_t size, bool allowContinuation);

  /// Sets the value of an option, with quotes if it needs them or had them. A missing option is inserted
  /// after the last line of its section, a missing section at the end. Continuation lines of the old value
  /// are removed; a comment on one of them is kept as a comment line. Here and below, a null name is never
  /// found.
  bool setValue(const char* section, const char* option, const char* value);
  /// Sets every option that getters find in `source`, or none of them, in the time of a few changes.
  bool merge(const VelClIniFile& source);
  /// Adds an empty section at the end; returns false if there is one of this name.
  bool addSection(const char* name);
  /// Removes the option's line and its continuation lines.
  bool deleteOption(const char* section, const char* option);
  /// Removes the lines from the header to the last one that is neither blank nor a comment.
  bool deleteSection(const char* name);
  /// Change a name and nothing else. Return false if the new name exists, is empty, or cannot be the name of
  /// a section or an option; another case of the old name is not another name.
  bool renameSection(const char* name, const char* newName);
  bool renameOption(const char* section, const char* option, const char* newName);
  /// Makes the option's line and its continuation lines comments, by a ";" in column 1. Returns false if the
  /// option does not exist or a line has no room for it.
  bool commentOutOption(const char* section, const char* option);

  /// Return the current text, NUL-terminated, and its length in bytes; valid until the next change.
  const char* getText() const;
  size_t getLength() const;
  /// Returns the model parsed from the current text; valid until the next change.
  const VelClIniFile& getIniFile() const;

  /// Writes the file like VelClIniFileSave::save: after a crash at any point there is either the old file or
  /// the new one. On Windows a file that another program has open cannot be replaced. A dangling link is
  /// refused. A successful save releases the lock, if there is one.
  bool save();
  /// Same as VelClIniFileSave::hasKeptRights.
  bool hasKeptRights() const;

  /// Locks the file against every other editor that locks it, including editors in this process, so that the
  /// changes of several programs are serialised: lock, load, change, save. A file that does not exist yet can
  /// be locked, too. An earlier lock of this editor is released first. Waits for at most `timeLimitMs`
  /// milliseconds.
  /// The lock is advisory: it affects only programs that lock the file, too. It is released by unlock(), by a
  /// successful save, and when this object or the process ends, and leaves nothing on disk. On Linux, if the
  /// process is killed, a child that it has forked meanwhile keeps the lock, and every user who may read the
  /// file can hold the lock.
  ///
  /// While the lock is held, load() and save() fail if the name leads to another file than the locked one, or
  /// if someone changed that file without locking it. save() also fails if that was the case when the text
  /// was loaded before the lock.
  [[nodiscard]] VelEnIniFileLock lock(unsigned int timeLimitMs);
  void unlock();
  /// True if that is why the last load() or save() failed.
  bool isReplaced() const;

 private:
  vel::inifile::EditedFile* file_;
};

#endif

#endif
