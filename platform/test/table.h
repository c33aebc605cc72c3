// Tables of tests: text files with headings, a row a line, tabs between the fields.
#pragma once

#include <string>
#include <vector>

namespace vel::test {

/// Rows and fields, without the headings, empty lines and those that begin with "# ".
std::vector<std::vector<std::string>> readTable(const std::string& path);

/// The text with "\n", "\t", "\r", "\a", "\0" and "\\" as what they stand for, "\x41" as the byte of this
/// number, and "\{300x}" as 300 times "x".
std::string unescaped(const std::string& text);

/// As readTable(), with every field unescaped.
std::vector<std::vector<std::string>> readTexts(const std::string& path);

/// "4D00" as two bytes.
std::string bytesOf(const std::string& digits);

/// "4D00" as one unit.
std::u16string unitsOf(const std::string& digits);

}  // namespace vel::test
