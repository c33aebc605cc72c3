// The text of a file under edit, with the model that the parser reads from it. A change counts only when the
// parser reads back what was wanted.
#pragma once

#include <memory>

#include "foundation/allocator.h"
#include "inifile/section_layout.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

struct DestroyIniFile {
  void operator()(VelClIniFile* file) const noexcept { destroy(file); }
};
using OwnedIniFile = std::unique_ptr<VelClIniFile, DestroyIniFile>;

class EditedText {
 public:
  EditedText();

  void take(String text, bool allowContinuation);
  const String& text() const noexcept { return text_; }
  const VelClIniFile& model() const noexcept { return *model_; }

  bool setValue(const char* section, const char* option, const char* value);
  bool addSection(const char* name);
  bool deleteOption(const char* section, const char* option);
  bool deleteSection(const char* name);

 private:
  Span span() const noexcept { return {text_.data(), text_.data() + text_.size()}; }
  SectionLayout layoutOf(const char* section, const char* option) const {
    return findLayout(span(), section, option, allowContinuation_);
  }
  OwnedIniFile read(const String& text) const;
  const char* lineEnd() const noexcept;
  bool isLineStart(const char* at) const noexcept;
  String withLine(const char* at, const String& line, bool blankBefore) const;
  String withValue(const SectionLayout& layout, const char* value) const;
  String withOption(const SectionLayout& layout, const char* option, const char* value) const;
  template <typename Change>
  bool replaceIf(String changed, Change change);

  String text_;
  bool allowContinuation_ = false;
  OwnedIniFile model_;
};

}  // namespace vel::inifile
