// The common part of the tools that have their own texts: title and usage, reports, and free arguments.
#pragma once

#include <string>
#include <vector>

#include "vel_include/vel_consoleui.h"

namespace vel::tools {

/// What useConventions switches on in every tool: results alone are on standard output, `-quiet` leaves out
/// the title, and `--name=value` and `--` are understood.
VelStConventions conventionsOfTools();

/// The name of standard input in messages. Compare the pointers, because a file may have this name.
extern const char* const kStandardStream;

/// Selects the language of the texts, see translation.h, and translates kStandardStream. `library` is the
/// library's own catalog. The constructor of CatalogTool does this.
void chooseLanguageOfTool(const VelClMessageCatalog& library);

/// Returns kStandardStream for "-", and any other name, or null, itself.
const char* fileNamed(const char* argument);

/// The console user interface of a tool. Its string table, which is not copied, begins with a signature and a
/// name, followed by title, description, usage and help.
class CatalogTool : public VelClConsoleUI {
 public:
  CatalogTool(int argc, const char* const* argv, const char* const* texts, unsigned long count);

  const VelClMessageCatalog& getMessageCatalog() const override { return texts_; }
  /// Returns one of the tool's own texts.
  std::string text(unsigned long id) const;
  /// Reports an error on standard error and returns.
  void report(unsigned long id, const char* argument = nullptr) const;

 protected:
  /// Shows the title and checks the command line against the usage; a mistake ends the process. The title
  /// goes to standard error, since standard output is for the data that the user asked for.
  void begin();
  /// Reports a mistake in the command line that the check against the usage cannot find, shows the usage and
  /// ends the process.
  [[noreturn]] void refuse(unsigned long id, const char* argument = nullptr) const;
  /// Refuses a command line in which more than one of the files is standard input, which can be read only
  /// once. Null stands for a file that is not given.
  void refuseRepeatedInput(const std::vector<const char*>& files) const;
  /// Returns the arguments that are neither switches nor values of switches.
  std::vector<const char*> freeArguments() const;

 private:
  [[noreturn]] void endWithUsage() const;

  std::vector<const char*> table_;
  VelClMessageCatalog texts_;
};

}  // namespace vel::tools
