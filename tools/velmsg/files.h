// Reads the files that a user names, and writes outputs all together or not at all.
#pragma once

#include <string>
#include <vector>

namespace vel::velmsg {

/// Reads a whole file; "-" is standard input. Returns false if it cannot be read or is larger than any source
/// of a catalog: endless input ends there.
bool readFile(const char* name, std::string& bytes);

struct Output {
  const char* name;
  std::string bytes;
};

/// Puts the files in place when all of them are written. Returns the name of one that failed, or null.
/// `changedRights` are those that do not have the owner or permissions of the file that they replaced.
const char* writeOutputs(const std::vector<Output>& outputs, std::vector<const char*>& changedRights);

}  // namespace vel::velmsg
