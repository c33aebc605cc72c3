// Converts texts of message resources to single-byte texts.
#pragma once

#include "foundation/allocator.h"
#include "messages/message_resource.h"

namespace vel::messages {

/// A message's text in the process's single-byte code page. Text that is stored as single bytes is not
/// converted, nor copied: the entry's bytes must outlive this object.
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

/// Returns a message's text as it is stored, but Unicode as UTF-8.
String utf8TextOf(const MessageResource::Entry& entry);

}  // namespace vel::messages
