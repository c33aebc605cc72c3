// A strict parser of JSON (RFC 8259) that shares no code with the writers it checks.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vel::test {

struct Json {
  std::variant<std::nullptr_t, bool, double, std::string, std::vector<Json>, std::map<std::string, Json>>
      value;

  /// Return a member of an object, and the contents; throw if the value is of another kind.
  const Json& at(const std::string& name) const { return std::get<5>(value).at(name); }
  bool has(const std::string& name) const { return std::get<5>(value).count(name) != 0; }
  const std::string& text() const { return std::get<3>(value); }
  double number() const { return std::get<2>(value); }
  const std::vector<Json>& list() const { return std::get<4>(value); }
};

/// Throws std::runtime_error, with the offset, for anything that is not one value of JSON.
Json parseJson(std::string_view text);

}  // namespace vel::test
