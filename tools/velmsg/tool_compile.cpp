// The task -compile.
#include <algorithm>
#include <cstring>

#include "platform/descriptors.h"
#include "tools/velmsg/compiler.h"
#include "tools/velmsg/tool.h"

namespace vel::velmsg {

void Tool::compileSources() const {
  Compilation compilation;
  compilation.sources = valuesOf("compile");
  refuseRepeatedInput(compilation.sources);
  compilation.languages = valuesOf("languages");
  if (compilation.sources.empty()) refuse(kSourceFileRequired);
  hasArgString("out", compilation.catalog);
  hasArgString("header", compilation.header);
  hasArgString("table", compilation.table);
  hasArgString("functions", compilation.functions);
  checkOutputs(compilation);
  const char* value = nullptr;
  if (hasArgString("codepage", value)) compilation.codepage = requireCcsid(value);
  if (hasArgString("ansi", value)) compilation.ansi = requireCcsid(value);
  if (compilation.ansi && !isAsciiBased(*compilation.ansi))
    end(kAnsiCodepage, value, CONUI_ARG_VALUE_TYPE_MISMATCH);
  if (hasArgString("lang", value)) compilation.tableLanguage = requireNumber(value);
  MessageSource source;
  Diagnostics diagnostics;
  const CompileOutcome outcome = compile(compilation, source, diagnostics);
  showDiagnostics(source, diagnostics);
  for (const char* const name : outcome.changedRights) report(kRightsChanged, name);
  if (outcome.result == CompileResult::NotRead) end(kSourceNotRead, outcome.file, kExitNoCatalog);
  if (outcome.result == CompileResult::NotWritten) end(kOutputNotWritten, outcome.file, kExitNotWritten);
  if (outcome.result == CompileResult::Faulty) processExit(kExitNotFound);
  writeToStandardOutput(outcome.standardOutput);
}

/// Refuses outputs that would replace an input or each other.
void Tool::checkOutputs(const Compilation& compilation) const {
  std::vector<const char*> outputs = {compilation.catalog, compilation.header, compilation.table,
                                      compilation.functions};
  std::erase(outputs, nullptr);
  for (const char* const output : outputs) {
    refuseInputAsOutput(compilation.sources, output);
    const auto isSame = [output](const char* other) { return std::strcmp(output, other) == 0; };
    if (std::ranges::count_if(outputs, isSame) > 1) refuse(kOutputTwice, output);
  }
  const bool isShown = compilation.catalog != nullptr && std::strcmp(compilation.catalog, "-") == 0 &&
                       platform::isTerminal(platform::kStandardOutput);
  if (isShown) refuse(kCatalogToTerminal);
}

}  // namespace vel::velmsg
