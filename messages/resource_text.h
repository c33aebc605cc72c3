// Converts texts of message resources to the process's ANSI code page or to UTF-8.
#pragma once

#include "foundation/allocator.h"
#include "messages/message_resource.h"

namespace vel::messages {

/// A message's text, without a NUL, in the process's ANSI code page, which may be UTF-8. Text that is not
/// stored as Unicode is neither converted nor copied: the entry's bytes must outlive this object.
class AnsiText {
 public:
  explicit AnsiText(const MessageResource::Entry& entry);
  AnsiText(const AnsiText&) = delete;
  AnsiText& operator=(const AnsiText&) = delete;

  const char* data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }

 private:
  /// The capacity of inline_ in characters. Most texts are ASCII and fit, so that they need no allocation.
  static constexpr std::size_t kInlineSize = 512;

  const char* data_;
  std::size_t size_;
  char inline_[kInlineSize];
  String converted_;
};

/// Returns a Unicode text converted to UTF-8, and any other text as it is stored.
String storedOrUtf8Text(const MessageResource::Entry& entry);

}  // namespace vel::messages
