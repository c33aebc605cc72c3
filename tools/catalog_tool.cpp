// The common part of the tools that have their own texts. Those texts are tables in each tool's texts.h, so
// that a tool needs no catalog file; only trcctl has its texts in the library's catalog and does without this
// class.
#include "tools/catalog_tool.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include "tools/translation.h"
#include "vel_include/vel_helpers.h"

namespace vel::tools {

namespace {

/// The ids that the tables of all tools share; 0 and 1 are the signature and the name.
enum FirstTexts : unsigned long { kTitle = 2, kDescription, kUsage, kHelp };

}  // namespace

VelStConventions conventionsOfTools() {
  return {.version = velLibraryGetLevel(), .didYouMean = translated("did you mean"), .colors = false};
}

namespace {

/// Overwritten with the text in the user's language; its address stays.
char standardStream[32] = "standard input";

}  // namespace

const char* const kStandardStream = standardStream;

void chooseLanguageOfTool(const VelClMessageCatalog& library) {
  chooseLanguage(library.getLanguage());
  const char* const text = translated(standardStream);
  if (std::strlen(text) < sizeof standardStream) std::memmove(standardStream, text, std::strlen(text) + 1);
}

CatalogTool::CatalogTool(int argc, const char* const* argv, const char* const* texts, unsigned long count)
    : VelClConsoleUI(argc, argv), table_(texts, texts + count), texts_(table_.data(), count) {
  // begin() does this again with a text in the language that this finds.
  useConventions();
  chooseLanguageOfTool(VelClConsoleUI::getMessageCatalog());
  for (const char*& text : table_) text = translated(text);
}

const char* fileNamed(const char* argument) {
  return argument != nullptr && std::strcmp(argument, "-") == 0 ? kStandardStream : argument;
}

std::string CatalogTool::text(unsigned long id) const {
  return VelClMessage(texts_, id).getAsCString();
}

void CatalogTool::report(unsigned long id, const char* argument) const {
  error(std::cerr, text(id).c_str(), argument);
}

void CatalogTool::begin() {
  useConventions(conventionsOfTools());
  setOutputStream(std::cerr);
  init(kTitle, kDescription, nullptr, nullptr);
  handleUsageHelp(kUsage, kHelp);
}

void CatalogTool::refuse(unsigned long id, const char* argument) const {
  report(id, argument);
  endWithUsage();
}

void CatalogTool::refuseRepeatedInput(const std::vector<const char*>& files) const {
  const auto isInput = [](const char* file) { return fileNamed(file) == kStandardStream; };
  if (std::ranges::count_if(files, isInput) < 2) return;
  error(std::cerr, translated("Standard input can be read only once"));
  endWithUsage();
}

void CatalogTool::endWithUsage() const {
  // The library shows the usage on standard output, which may be a file that the user wants data in.
  std::cout.flush();
  std::cout.rdbuf(std::cerr.rdbuf());
  displayUsage(true);
  processExit(CONUI_USAGE);
}

std::vector<const char*> CatalogTool::freeArguments() const {
  std::vector<const char*> arguments;
  VelClArgvFreeCursor argument(*this);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    arguments.push_back(argument.getAsCString());
  return arguments;
}

}  // namespace vel::tools
