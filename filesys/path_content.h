// What a VelClPath owns, for the sources that implement the class.
#pragma once

#include <utility>

#include "filesys/path_syntax.h"

struct VelClPath::Content {
  vel::String text;
  VelEnPathSyntax syntax;

  Content(std::string_view itsText, VelEnPathSyntax itsSyntax) : text(itsText), syntax(itsSyntax) {}

  static vel::filesys::PathView viewOf(const VelClPath& path) noexcept {
    return {path.getText(), path.getSyntax()};
  }
  /// Replaces the text, of which `text` must not be a part. The path stays as it is if memory runs out.
  static void replace(VelClPath& path, vel::String&& text, VelEnPathSyntax syntax) {
    if (path.content_ == nullptr) path.content_ = vel::create<Content>(std::string_view(), syntax);
    path.content_->text = std::move(text);
    path.content_->syntax = syntax;
  }
  static void replace(VelClPath& path, vel::String&& text) {
    replace(path, std::move(text), path.getSyntax());
  }
};
