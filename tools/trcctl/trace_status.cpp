// Shows the state of a trace: its settings and filter, or the summary after a display. The labels are
// messages of the library's catalog, so they follow the language of the user. Reading the trace is the
// library's work.
#include "tools/trcctl/trace_status.h"

#include <charconv>
#include <ostream>
#include <string>

#include "tools/trcctl/texts.h"

namespace vel::trcctl {
namespace {

constexpr unsigned short kLastComponent = 255;

/// Returns the component ids that a filter passes, or those that it excludes, as a list that a filter can be
/// set by: "1,3.7" is 1 and 3 to 7.
std::string listComponents(const VelClTraceFilter& filter, bool passed) {
  std::string list;
  for (unsigned short id = 1; id <= kLastComponent; ++id) {
    if (filter.matchesCompId(id) != passed) continue;
    const unsigned short first = id;
    while (id < kLastComponent && filter.matchesCompId(static_cast<unsigned short>(id + 1)) == passed) ++id;
    if (!list.empty()) list += ',';
    list += std::to_string(first);
    if (id > first) list += '.' + std::to_string(id);
  }
  return list;
}

/// A filter has 0 for any id; it is shown as "*".
std::string idText(unsigned int id) {
  return id == 0 ? "*" : std::to_string(id);
}

void showHeading(const VelClConsoleUI& ui, unsigned long text) {
  ui.getOutputStream() << VelClMessage(ui.getMessageCatalog(), text) << '\n';
}

void showFilter(const VelClConsoleUI& ui, const VelClTraceFilter& filter) {
  showHeading(ui, kTraceFilter);
  ui.format(kDetailLevel, VelClTraceFilter::getDetailAsCString(filter.getDetail()));
  ui.format(kFilterProcess, idText(filter.getProcessId()).c_str());
  ui.format(kFilterThread, idText(filter.getThreadId()).c_str());
  if (!filter.usesCompIdFilter()) {
    ui.format(kComponentSet, "*");
    return;
  }
  ui.format(kIncluded, listComponents(filter, true).c_str());
  ui.format(kExcluded, listComponents(filter, false).c_str());
}

}  // namespace

void showStatus(const VelClConsoleUI& ui, const VelClTraceInstance& trace) {
  const VelClTraceEnvironment& environment = trace.getEnvironment();
  const VelClMessage bytes(ui.getMessageCatalog(), kBytes);
  showHeading(ui, kTraceStatus);
  ui.format(kKeyAndInstance, environment.getPart());
  ui.formatBool(kTraceActive, trace.isActive());
  ui.formatBool(kTraceEnabled, trace.isEnabled());
  ui.formatBool(kSharedMemory, environment.usesSharedMemory());
  ui.format(kBufferSize, (std::to_string(environment.getBufferSize()) + ' ' + bytes.getAsCString()).c_str());
  ui.format(kTraceFile, environment.getFilename().getAsCString());
  showFilter(ui, environment.getSettings().getFilter());
}

void showResult(const VelClConsoleUI& ui, const VelClTraceEnvironment& environment,
                const VelClTraceFormatter& formatter) {
  // to_chars ignores the locale, so the decimal point is the same everywhere.
  char rate[32] = {};
  std::to_chars(rate, rate + sizeof rate - 1, environment.getCompressionRate(), std::chars_format::fixed, 2);
  ui.format(kTraceFile, environment.getFilename().getAsCString());
  ui.format(kCompressionRate, rate);
  ui.format(kNumberOfEntries, formatter.getNumOfEntries());
}

}  // namespace vel::trcctl
