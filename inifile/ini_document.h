// The text of a file under edit, with the model that the parser reads from it. A change counts only when the
// parser reads back what was wanted.
#pragma once

#include <memory>

#include "foundation/allocator.h"
#include "inifile/section_layout.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

using OwnedIniFile = OwnedObject<VelClIniFile>;

class IniDocument {
 public:
  IniDocument();

  void adopt(String text, bool allowContinuation);
  const String& text() const noexcept { return text_; }
  const VelClIniFile& model() const noexcept { return *model_; }

  bool setValue(const char* section, const char* option, const char* value);
  /// Sets all that questions by name find in another file, or nothing.
  bool merge(const VelClIniFile& source);
  bool addSection(const char* name);
  bool deleteOption(const char* section, const char* option);
  bool deleteSection(const char* name);

 private:
  Span span() const noexcept { return {text_.data(), text_.data() + text_.size()}; }
  OwnedIniFile parse(const String& text) const;
  /// Of a section of the model.
  SectionLayout layoutOf(const VelClIniFileSection& wanted) const;
  template <typename Change>
  bool replaceIf(String changed, const VelClIniFile* merged, Change change);

  String text_;
  bool allowContinuation_ = false;
  OwnedIniFile model_;
};

}  // namespace vel::inifile
