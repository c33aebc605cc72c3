// The tasks of velmsg for translators and scripts: export, import, check and comparison of message sources.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

struct SourceTask {
  std::vector<const char*> files;  ///< "-" is standard input
  VelClCCSID codepage = VelClCCSID(VelClCCSID::CCSID_UTF8);
  std::uint16_t language = 0;   ///< 0 if it is not given
  std::uint16_t reference = 0;  ///< the same
  const char* older = nullptr;  ///< for exportPoFile: the .po file to update, or null
  bool usesFuzzy = false;       ///< for importPoFiles
};

enum class TaskResult {
  Done,
  Found,   ///< done, and the diagnostics say what needs a look
  Faulty,  ///< the diagnostics say why there is no result
  NotRead
};

/// What a task has to say and where. `source` knows the names of all files that positions refer to.
struct TaskReport {
  MessageSource source;
  Diagnostics diagnostics;
  const char* notRead = nullptr;  ///< the file that could not be read
};

TaskResult readSources(const SourceTask& task, TaskReport& report);
TaskResult exportPoFile(const SourceTask& task, TaskReport& report, std::string& po);
/// Whether an import takes a file as a translation: its name ends in ".po". The others are sources.
bool isPoFile(std::string_view name);

/// There must be both sources and translations. The result is the source with
/// other texts and nothing else changed. It is in UTF-8, with a byte order mark unless the source is plain
/// UTF-8. Several sources become one, in the layout of writeMessageSource.
TaskResult importPoFiles(const SourceTask& task, TaskReport& report, std::string& source);
/// Mistakes that keep a source from being compiled are findings as well.
TaskResult checkSources(const SourceTask& task, TaskReport& report);

}  // namespace vel::velmsg
