// The text of a file under edit, with the model that the parser reads from it. A change leaves all other
// bytes as they are, and is made only if the parser reads the wanted model from the changed text.
#pragma once

#include <memory>

#include "foundation/allocator.h"
#include "inifile/section_layout.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

using OwnedIniFile = OwnedObject<VelClIniFile>;

/// An option of a model, with its section, and its lines in the text.
struct FoundOption {
  VelClIniFileSection* section = nullptr;
  const VelClIniFileOption* option = nullptr;
  Vector<ValueLine> lines;
};

class IniDocument {
 public:
  /// Starts with an empty text.
  IniDocument();

  /// Replaces the text, and how it is parsed. After a failed allocation everything is as before.
  void adopt(String text, bool allowContinuation);
  const String& text() const noexcept { return text_; }
  const VelClIniFile& model() const noexcept { return *model_; }

  /// These return false, with nothing changed, when the change is refused; see VelClIniFileEditor for each.
  /// No name or value may be null.
  bool setValue(const char* section, const char* option, const char* value);
  /// Sets all options that are the first of their name in `source`, or none of them.
  bool merge(const VelClIniFile& source);
  bool addSection(const char* name);
  bool deleteOption(const char* section, const char* option);
  bool deleteSection(const char* name);
  bool renameSection(const char* name, const char* newName);
  bool renameOption(const char* section, const char* option, const char* newName);
  bool commentOutOption(const char* section, const char* option);

 private:
  /// Returns the text without a byte order mark.
  static Span bodyOf(const String& text) noexcept;
  Span body() const noexcept { return bodyOf(text_); }
  static OwnedIniFile parse(const String& text, bool allowContinuation);
  /// Returns the layout of a section of the model.
  SectionLayout layoutOf(const VelClIniFileSection& wanted) const;
  /// Returns the option of these names and its lines, or null and no lines.
  FoundOption findOption(const char* section, const char* option) const;
  template <typename Change>
  bool replaceIf(String changedBody, const VelClIniFile* merged, Change change);

  String text_;
  bool allowContinuation_ = false;
  OwnedIniFile model_;
};

}  // namespace vel::inifile
