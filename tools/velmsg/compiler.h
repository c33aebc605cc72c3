// Compiles message sources: reads them and writes a catalog, a header of identifiers and a string table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// What to compile. The outputs are names of files, null for none, "-" for standard output.
struct Compilation {
  std::vector<const char*> sources;  ///< "-" is standard input
  VelClCCSID codepage = VelClCCSID(VelClCCSID::CCSID_UTF8);
  /// Texts are stored as single bytes of this code page instead of UTF-16.
  std::optional<VelClCCSID> ansi;
  std::optional<std::uint32_t> tableLanguage;
  /// The languages to write, by name or number; all if empty.
  std::vector<const char*> languages;
  const char* catalog = nullptr;
  const char* header = nullptr;
  const char* table = nullptr;
  const char* functions = nullptr;
};

enum class CompileResult {
  Written,
  Faulty,     ///< the diagnostics say why
  NotRead,    ///< a source
  NotWritten  ///< an output
};

/// Reads files as one source. On failure returns false, and `file` names the one that could not be read or is
/// null if there are diagnostics.
bool readMessageSources(const std::vector<const char*>& files, const VelClCCSID& codepage,
                        MessageSource& source, Diagnostics& diagnostics, const char*& file);

struct CompileOutcome {
  CompileResult result;
  const char* file;  ///< the one that could not be read or written, or null
  /// The outputs that do not have the owner or permissions of the file that they replaced.
  std::vector<const char*> changedRights = {};
  std::string standardOutput{};  ///< what the caller has to write there
};

/// Returns whether texts can be stored in a code page: the loader takes their escapes and line breaks for
/// ASCII. True if there is no conversion, which compile reports.
bool isAsciiBased(const VelClCCSID& codepage);

/// Writes all outputs or, if anything fails before the first one is in place, none.
CompileOutcome compile(const Compilation& compilation, MessageSource& source, Diagnostics& diagnostics);

}  // namespace vel::velmsg
