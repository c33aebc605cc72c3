// The records of an INI file: made, changed, found and deleted here and nowhere else. The lists' heads are
// the file object's own.
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
  /// Cursors are left without a file.
  ~Model();

  /// The first of its name, or null; so is it for a null name.
  Section* findSection(const char* name);
  Option* findOption(const Section& section, const char* name);

  /// The name is cut to 80 characters.
  Section* appendSection(Span name);
  Option* appendOption(Section& section, const OptionText& text);
  void replaceText(Option& option, const OptionText& text);
  /// The first of its name, each.
  void deleteSection(Section& section) noexcept;
  void deleteOption(Section& section, Option& option) noexcept;

  /// The option that a continuation line adds to, or null.
  Option* openOption = nullptr;

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
  void freeText(Option& option) noexcept;
  void freeOptions(Section& section) noexcept;

  VelClIniFile& file_;
  RecordPool pool_;
  std::size_t sectionCount_ = 0;
  SectionIndex* sectionIndex_ = nullptr;
  CursorPlace* places_ = nullptr;
};

}  // namespace vel::inifile
