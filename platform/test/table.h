// Tables of tests: text files with headings, a row a line, tabs between the fields.
#pragma once

#include <string>
#include <vector>

namespace vel::test {

/// Rows and fields, without the headings, empty lines and those that begin with "# ".
std::vector<std::vector<std::string>> readTable(const std::string& path);

/// The text with "\n", "\t", "\r", "\a", "\0" and "\\" as what they stand for.
std::string unescaped(const std::string& text);

}  // namespace vel::test
