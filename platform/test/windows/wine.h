// What a test needs under Wine, which makes links and drives only from outside.
#pragma once

#include <string>

namespace vel::test {

/// The name of a file outside Wine; "" on Windows itself.
std::string unixName(const std::string& path);

/// Runs "ln" or the like, with names from outside; nobody can wait for its end.
bool startUnixProgram(const std::string& name, const std::string& arguments);

}  // namespace vel::test
