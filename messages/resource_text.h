// Texts of message resources as single-byte texts.
#pragma once

#include "foundation/allocator.h"
#include "messages/message_resource.h"

namespace vel::messages {

/// A text in the process's single-byte code page; texts stored as single bytes stay as they are.
class AnsiText {
 public:
  explicit AnsiText(const MessageResource::Entry& entry);
  AnsiText(const AnsiText&) = delete;
  AnsiText& operator=(const AnsiText&) = delete;

  const char* data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }

 private:
  /// Most texts are ASCII and fit here.
  static constexpr std::size_t kInlineSize = 512;

  const char* data_;
  std::size_t size_;
  char inline_[kInlineSize];
  String converted_;
};

/// The same text with Unicode in UTF-8.
String utf8TextOf(const MessageResource::Entry& entry);

}  // namespace vel::messages
