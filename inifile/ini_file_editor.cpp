// The reading, locking and saving of VelClIniFileEditor. Changing the text is ini_document.cpp's work,
// waiting for the lock edit_lock.cpp's, and replacing the file file_output.cpp's.
#include "base/short_text.h"
#include "foundation/allocator.h"
#include "inifile/edited_file.h"
#include "inifile/file_output.h"
#include "platform/byte_files.h"
#include "platform/file_lock.h"
#include "vel_include/vel_inifile.h"

#include <utility>

using vel::String;
using vel::inifile::EditedFile;
using vel::platform::FileState;

namespace {

/// The editor needs all bytes of the file, also those that the parser never reads, such as those after a line
/// that is too long.
bool readAll(int descriptor, String& bytes) {
  constexpr std::size_t kStep = std::size_t{256} * 1024;
  for (;;) {
    const std::size_t before = bytes.size();
    std::size_t size = 0;
    bytes.resize(before + kStep);
    if (vel::platform::readBytes(descriptor, bytes.data() + before, kStep, size) != 0) return false;
    bytes.resize(before + size);
    if (size == 0) return true;
  }
}

}  // namespace

VelClIniFileEditor::VelClIniFileEditor(const VelClFilenameABase& name)
    : VelClFile(name, ".INI"), file_(vel::create<EditedFile>()) {}

VelClIniFileEditor::~VelClIniFileEditor() {
  vel::destroy(file_);
}

bool VelClIniFileEditor::load(bool allowContinuation) {
  vel::platform::ReadableFile file;
  String bytes;
  if (file.open(getAsCString(), vel::platform::PipeWithoutWriter::Refuse) != 0) return false;
  if (!readAll(file.descriptor(), bytes)) return false;
  // The state is taken after reading, so that a change during it is noticed.
  const std::optional<FileState> found = file_->lock.checkRead(file.descriptor());
  if (!found.has_value()) return false;
  file_->document.adopt(std::move(bytes), allowContinuation);
  file_->lock.noteRead(*found);
  return true;
}

void VelClIniFileEditor::loadFromBuffer(const char* buffer, size_t size, bool allowContinuation) {
  file_->document.adopt(buffer != nullptr ? String(buffer, size) : String(), allowContinuation);
  file_->lock.forgetRead();
}

bool VelClIniFileEditor::setValue(const char* section, const char* option, const char* value) {
  if (section == nullptr || option == nullptr) return false;
  return file_->document.setValue(section, option, vel::textOrEmpty(value));
}

bool VelClIniFileEditor::merge(const VelClIniFile& source) {
  return file_->document.merge(source);
}

bool VelClIniFileEditor::addSection(const char* name) {
  return name != nullptr && file_->document.addSection(name);
}

bool VelClIniFileEditor::deleteOption(const char* section, const char* option) {
  return section != nullptr && option != nullptr && file_->document.deleteOption(section, option);
}

bool VelClIniFileEditor::deleteSection(const char* name) {
  return name != nullptr && file_->document.deleteSection(name);
}

bool VelClIniFileEditor::renameSection(const char* name, const char* newName) {
  return name != nullptr && newName != nullptr && file_->document.renameSection(name, newName);
}

bool VelClIniFileEditor::renameOption(const char* section, const char* option, const char* newName) {
  return section != nullptr && option != nullptr && newName != nullptr &&
         file_->document.renameOption(section, option, newName);
}

bool VelClIniFileEditor::commentOutOption(const char* section, const char* option) {
  return section != nullptr && option != nullptr && file_->document.commentOutOption(section, option);
}

const char* VelClIniFileEditor::getText() const {
  return file_->document.text().c_str();
}

size_t VelClIniFileEditor::getLength() const {
  return file_->document.text().size();
}

const VelClIniFile& VelClIniFileEditor::getIniFile() const {
  return file_->document.model();
}

bool VelClIniFileEditor::save() {
  vel::inifile::FileOutput output;
  if (!output.open(getAsCString())) return false;
  output.write(getText(), static_cast<std::streamsize>(getLength()));
  // The check is made after writing, as late as possible. If it fails, `output` drops the new file and the
  // old one stays.
  if (!file_->lock.mayReplace(getAsCString(), output.replaced()) || !output.close()) return false;
  file_->hasKeptRights = output.keepsRights();
  // The lock was on the replaced file. The state of that file is forgotten as well; otherwise the next locked
  // save would mistake this program's own change for another program's.
  file_->lock.release();
  file_->lock.forgetRead();
  return true;
}

bool VelClIniFileEditor::hasKeptRights() const {
  return file_->hasKeptRights;
}

VelEnIniFileLock VelClIniFileEditor::lock(unsigned int timeLimitMs) {
  return file_->lock.acquire(getAsCString(), timeLimitMs);
}

void VelClIniFileEditor::unlock() {
  file_->lock.release();
}

bool VelClIniFileEditor::isReplaced() const {
  return file_->lock.isReplaced();
}
