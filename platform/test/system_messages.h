// The messages of a library as the system itself reads them, as a reference where it has a message formatter.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vel::test {

class SystemMessages {
 public:
  /// Loads a library as data; returns null if the system has no messages in libraries, or cannot load it.
  static std::unique_ptr<SystemMessages> load(const std::string& library);
  SystemMessages() = default;
  SystemMessages(const SystemMessages&) = delete;
  SystemMessages& operator=(const SystemMessages&) = delete;
  virtual ~SystemMessages() = default;

  /// Returns a message in UTF-8: with its inserts expanded, or with only its line breaks. std::nullopt if it
  /// cannot be formatted.
  virtual std::optional<std::string> format(std::uint32_t language, std::uint32_t id) const = 0;
  virtual std::optional<std::string> stored(std::uint32_t language, std::uint32_t id) const = 0;
};

/// Whether load() can return messages on this system.
bool hasSystemMessages();

}  // namespace vel::test
