// The records of an INI file. All of them are created, found, changed and deleted here. The heads of the
// lists are fields of the file object, where callers' compiled code expects them.
#pragma once

#include <cstddef>

#include "inifile/name_index.h"
#include "inifile/option_text.h"
#include "inifile/record_pool.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

class Model {
 public:
  using Section = VelClIniFileSection;
  using Option = VelClIniFileOption;

  explicit Model(VelClIniFile& file) noexcept : file_(file) {}
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
  /// Detaches all cursors, which are invalid from then on.
  ~Model();

  /// Return the first record of a name, or null; null for a null name. May build an index, which throws as
  /// the memory manager does.
  Section* findSection(const char* name);
  Option* findOption(const Section& section, const char* name);

  /// Append a record. The name of a section is cut to 80 characters. When they throw, nothing has changed.
  Section* appendSection(Span name);
  Option* appendOption(Section& section, const OptionText& text);
  /// Gives an option another text. Pointers to its old texts become invalid.
  void replaceText(Option& option, const OptionText& text);
  /// Rename a record. The name of a section is cut to 80 characters; a value or comment that the longer name
  /// of an option leaves no room for is cut, too.
  void renameSection(Section& section, Span name) noexcept;
  void renameOption(Section& section, Option& option, Span name);
  /// Delete a record, which must be the first of its name. Cursors on it become invalid.
  void deleteSection(Section& section) noexcept;
  void deleteOption(Section& section, Option& option) noexcept;

  /// The option that a continuation line extends, or null.
  Option* openOption = nullptr;

  /// Register and unregister a cursor.
  void add(CursorPlace& place) noexcept;
  void remove(CursorPlace& place) noexcept;

  Section* firstSection() const noexcept { return file_.firstSection_; }

  static Model& of(const VelClIniFile& file) noexcept { return *file.model_; }

 private:
  using SectionIndex = NameIndex<Section>;
  using OptionIndex = NameIndex<Option>;

  static OptionIndex* indexOf(const Section& section) noexcept {
    return static_cast<OptionIndex*>(section.index_);
  }
  static char* textInRecord(Option& option) noexcept;
  static void fill(Option& option, char* place, const OptionText& text) noexcept;
  Option* makeOption(const OptionText& text);
  static void setName(Section& section, Span name) noexcept;
  /// Frees a text that has left its record.
  void freeText(Option& option) noexcept;
  void freeOptions(Section& section) noexcept;

  VelClIniFile& file_;
  RecordPool pool_;
  std::size_t sectionCount_ = 0;
  SectionIndex* sectionIndex_ = nullptr;
  CursorPlace* places_ = nullptr;
};

}  // namespace vel::inifile
