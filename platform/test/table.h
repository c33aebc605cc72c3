// Tables for tests: text files with a line of headings, then a row per line, with tabs between the fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vel::test {

/// Returns rows and fields, without the headings, empty lines and lines that begin with "# ".
std::vector<std::vector<std::string>> readTable(const std::string& path);

/// Replaces escapes: "\n", "\t", "\r", "\a", "\0", "\\", "\x41" for a byte, and "\{300x}" for 300 times "x".
std::string unescaped(const std::string& text);

/// As readTable(), with every field unescaped.
std::vector<std::vector<std::string>> readTexts(const std::string& path);

/// Returns a copy of `text` with every `old` replaced.
std::string replaced(std::string text, std::string_view old, std::string_view with);

/// Converts "4D00" to two bytes.
std::string bytesOf(const std::string& digits);

/// Converts "4D00" to one UTF-16LE unit.
std::u16string unitsOf(const std::string& digits);

}  // namespace vel::test
