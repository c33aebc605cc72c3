// The state of an editor of INI files: the document, and the lock on its file.
#pragma once

#include "inifile/edit_lock.h"
#include "inifile/ini_document.h"

namespace vel::inifile {

struct EditedFile {
  IniDocument document;
  EditLock lock;
  bool hasKeptRights = true;  ///< see VelClIniFileEditor::hasKeptRights
};

}  // namespace vel::inifile
