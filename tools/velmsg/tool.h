// The program velmsg. Its tasks are in the files tool_*.cpp, and the check of its command line in velmsg.cpp.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tools/catalog_tool.h"
#include "tools/velmsg/compiler.h"
#include "tools/velmsg/message_listing.h"
#include "tools/velmsg/source_tasks.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_consoleui.h"

namespace vel::velmsg {

inline constexpr int kExitNotFound = 1;
inline constexpr int kExitNoCatalog = 2;
inline constexpr int kExitNotWritten = 3;

void writeToStandardOutput(const std::string& bytes);

/// The console user interface with the tool's own texts, which are separate from the catalog that is shown,
/// see CatalogTool.
class Tool : public tools::CatalogTool {
 public:
  Tool(int argc, const char* const* argv) : CatalogTool(argc, argv, kTexts, kTextEnd) {}

  void run();
  /// Ends the process, with another exit code if the output could not be written.
  [[noreturn]] void exitAfterOutput(int exitCode) const;

 private:
  using Catalog = std::unique_ptr<VelClMessageCatalog>;

  /// Reports a fatal error, after the output so far, and ends the process.
  [[noreturn]] void end(TextId text, const char* argument, int exitCode) const;
  std::vector<const char*> valuesOf(const char* name) const;
  std::vector<const char*> readInserts() const;
  void checkTasks() const;
  Catalog openSource() const;
  Catalog open(const char* file) const;
  bool runTask(const VelClMessageCatalog& catalog) const;
  std::uint32_t requireNumber(const char* text) const;
  bool showMessage(const VelClMessageCatalog& catalog, unsigned long id) const;
  void showErrorNames(const char* number) const;
  VelClCCSID requireCcsid(const char* text) const;
  void compileSources() const;
  void checkOutputs(const Compilation& compilation) const;
  void showDiagnostics(const MessageSource& source, const Diagnostics& diagnostics) const;
  void writeDiagnostics(std::ostream& out, const MessageSource& source, const Diagnostics& diagnostics) const;

  // Tasks with sources, whose names are free arguments.
  bool hasSources() const;
  std::uint16_t languageNumber(const char* name) const;
  SourceTask sourceTask() const;
  void runSourceTask() const;
  void endUnlessDone(TaskResult result, const TaskReport& report) const;
  void exportMessages(const char* form) const;
  MessageListing listingOfInput() const;
  void importTexts() const;
  void check() const;
  bool compareSources(const char* first) const;
  void refuseInputAsOutput(const std::vector<const char*>& inputs, const char* output) const;
  void writeOutput(const std::string& bytes) const;
};

}  // namespace vel::velmsg
