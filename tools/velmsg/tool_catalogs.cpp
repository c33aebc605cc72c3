// The tasks that show a catalog or compare two, and the names of error codes.
#include <iostream>
#include <optional>

#include "tools/spooled_input.h"
#include "tools/velmsg/catalog_file.h"
#include "tools/velmsg/catalog_report.h"
#include "tools/velmsg/error_names.h"
#include "tools/velmsg/tool.h"
#include "vel_include/vel_filesys.h"

namespace vel::velmsg {

/// Returns the texts after -var, padded with nulls to the maximum number of inserts.
std::vector<const char*> Tool::readInserts() const {
  std::vector<const char*> inserts = valuesOf("var");
  if (inserts.size() > VEL_MAX_MESSAGE_VARIABLES)
    refuse(kUnexpectedArgument, inserts[VEL_MAX_MESSAGE_VARIABLES]);
  inserts.resize(VEL_MAX_MESSAGE_VARIABLES);
  return inserts;
}

Tool::Catalog Tool::openSource() const {
  const char* file = nullptr;
  const bool hasFile = hasArgString("cat", file);
  const bool builtIn = hasArgSwitch("builtin");
  if (hasFile && builtIn) refuse(kSourcesConflict);
  if (!hasFile && !builtIn) refuse(kSourceRequired);
  const char* second = nullptr;
  hasArgString("diff", second);
  refuseRepeatedInput({file, second});
  if (hasFile) return open(file);
  unsigned long size = 0;
  const char* const* table = velMsgCatGetBuiltInTable(&size);
  return std::make_unique<VelClMessageCatalog>(table, size);
}

Tool::Catalog Tool::open(const char* file) const {
  // A catalog needs its file only while it is opened.
  std::optional<tools::SpooledInput> input;
  const bool isInput = tools::fileNamed(file) == tools::kStandardStream;
  if (isInput) input.emplace("DLL");
  Catalog catalog = openCatalogFile(isInput ? input->name() : file);
  input.reset();
  if (!catalog->isValid()) end(kCatalogNotLoaded, tools::fileNamed(file), kExitNoCatalog);
  return catalog;
}

/// Returns false if there was nothing to show, or the catalogs differ.
bool Tool::runTask(const VelClMessageCatalog& catalog) const {
  const char* value = nullptr;
  if (hasArgSwitch("list"))
    return hasArgString("lang", value) ? listMessages(std::cout, catalog, requireNumber(value))
                                       : listMessages(std::cout, catalog);
  if (hasArgSwitch("langs")) return listLanguages(std::cout, catalog);
  if (hasArgString("diff", value)) return listDifferences(std::cout, catalog, *open(value));
  hasArgString("id", value);
  return showMessage(catalog, requireNumber(value));
}

bool Tool::showMessage(const VelClMessageCatalog& catalog, unsigned long id) const {
  const VelClMessage message(catalog, id, readInserts().data());
  // Message 0 counts as absent. For every id that is not found the library has a text, which is the report.
  const bool found = VelClMessageCatalog::isValidMessageId(id) && message.isValid();
  if (found)
    std::cout << message << '\n';
  else
    error(std::cerr, message.getAsCString());
  return found;
}

void Tool::showErrorNames(const char* text) const {
  if (!listErrorNames(std::cout, requireNumber(text))) end(kUnknownNumber, text, kExitNotFound);
}

}  // namespace vel::velmsg
