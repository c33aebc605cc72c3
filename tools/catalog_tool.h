// What tools with texts of their own do alike: the first texts, reports, and arguments without a switch.
#pragma once

#include <string>
#include <vector>

#include "vel_include/vel_consoleui.h"

namespace vel::tools {

/// Stands for "-", which the switches' grammar takes for a switch without a name. Compare the pointers.
extern const char* const kStandardStream;

/// The command line with kStandardStream for every "-".
std::vector<const char*> withStandardStream(int argc, const char* const* argv);

/// The console user interface of a tool. Its string table begins, behind signature and name, with title,
/// description, usage and help.
class CatalogTool : public VelClConsoleUI {
 public:
  CatalogTool(int argc, const char* const* argv, const char* const* texts, unsigned long count)
      : VelClConsoleUI(argc, argv), texts_(texts, count) {}

  const VelClMessageCatalog& getMessageCatalog() const override { return texts_; }
  std::string text(unsigned long id) const;
  /// An error on standard error.
  void report(unsigned long id, const char* argument = nullptr) const;

 protected:
  /// Checks the command line. Standard output is for what was asked for: the title goes to standard error.
  void begin();
  /// Ends the process for a command line that the usage string alone cannot refuse.
  [[noreturn]] void refuse(unsigned long id, const char* argument = nullptr) const;
  /// The arguments that belong to no switch.
  std::vector<const char*> freeArguments() const;

 private:
  VelClMessageCatalog texts_;
};

}  // namespace vel::tools
