// What the tasks have in common: values of switches, reports, and outputs.
#include "tools/velmsg/tool.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include "platform/files.h"
#include "tools/ccsids.h"
#include "tools/velmsg/error_names.h"
#include "tools/velmsg/files.h"

namespace vel::velmsg {

void Tool::end(TextId id, const char* argument, int exitCode) const {
  std::cout.flush();
  fatal(exitCode, text(id).c_str(), argument);
}

void Tool::exitAfterOutput(int exitCode) const {
  // A full disk may show only now.
  if (std::cout.flush()) processExit(exitCode);
  report(kOutputNotWritten);
  processExit(kExitNotWritten);
}

/// Returns the values of a switch that may have several. The usage string has to allow free arguments for
/// them, so a free argument after any other switch is refused here.
std::vector<const char*> Tool::valuesOf(const char* name) const {
  std::vector<const char*> values;
  bool isWanted = false, isList = false;
  VelClArgvCheckCursor argument(*this);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext()) {
    if (argument.isSwitch()) {
      isWanted = argument.matches(name);
      isList = argument.matches("var") || argument.matches("compile") || argument.matches("languages");
    } else if (isWanted) {
      values.push_back(argument.getAsCString());
    } else if (!isList && argument.isFree()) {
      refuse(kUnexpectedArgument, argument.getAsCString());
    }
  }
  return values;
}

/// Parses a number, or ends the process with the same exit code as the library for a wrong number.
std::uint32_t Tool::requireNumber(const char* text) const {
  std::uint32_t number = 0;
  if (!parseNumber(text, number)) end(kNumberExpected, text, CONUI_ARG_VALUE_TYPE_MISMATCH);
  return number;
}

VelClCCSID Tool::requireCcsid(const char* text) const {
  VelClCCSID ccsid(0);
  if (!tools::parseCcsid(text, ccsid)) end(kUnknownCcsid, text, CONUI_ARG_VALUE_TYPE_MISMATCH);
  return ccsid;
}

/// Writes a line for each diagnostic in the form that editors and build logs know.
void Tool::writeDiagnostics(std::ostream& out, const MessageSource& source,
                            const Diagnostics& diagnostics) const {
  for (const Diagnostic& diagnostic : diagnostics) {
    out << positionText(source, diagnostic.position) << ": " << text(diagnostic.text);
    if (!diagnostic.argument.empty()) out << ": " << diagnostic.argument;
    out << '\n';
  }
}

void Tool::showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const {
  writeDiagnostics(std::cerr, source, diagnostics);
  if (diagnostics.size() == kMaxDiagnostics) std::cerr << text(kMoreFaults) << '\n';
}

/// Refuses an output, or null for none, that is the same file as an input.
void Tool::refuseInputAsOutput(const std::vector<const char*>& inputs, const char* output) const {
  using platform::FileIdentity, platform::identityOfFile;
  const FileIdentity replaced = output != nullptr ? identityOfFile(output) : FileIdentity{};
  if (replaced == FileIdentity{}) return;
  if (std::ranges::any_of(inputs, [&](const char* input) { return identityOfFile(input) == replaced; }))
    refuse(kOutputIsInput, output);
}

void writeToStandardOutput(const std::string& bytes) {
  std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void Tool::writeOutput(const std::string& bytes) const {
  const char* name = nullptr;
  if (!hasArgString("out", name) || std::strcmp(name, "-") == 0) {
    writeToStandardOutput(bytes);
    return;
  }
  std::vector<const char*> changedRights;
  if (writeOutputs({{name, bytes}}, changedRights) != nullptr) end(kOutputNotWritten, name, kExitNotWritten);
  if (!changedRights.empty()) report(kRightsChanged, name);
}

}  // namespace vel::velmsg
