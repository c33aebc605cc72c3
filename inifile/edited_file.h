// What an editor of INI files works on.
#pragma once

#include "inifile/edited_text.h"
#include "inifile/held_file.h"

namespace vel::inifile {

struct EditedFile {
  EditedText text;
  HeldFile held;
  bool hasKeptRights = true;  ///< see VelClIniFileEditor::hasKeptRights
};

}  // namespace vel::inifile
