// An INI file under edit: reading and writing it. Changes are edited_text.cpp's work.
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
  const std::optional<FileState> found = file_->held.stateOfRead(file.descriptor());
  if (!found.has_value()) return false;
  file_->text.take(std::move(bytes), allowContinuation);
  file_->held.noteRead(*found);
  return true;
}

void VelClIniFileEditor::loadFromBuffer(const char* buffer, size_t size, bool allowContinuation) {
  file_->held.forgetRead();
  file_->text.take(buffer != nullptr ? String(buffer, size) : String(), allowContinuation);
}

bool VelClIniFileEditor::setValue(const char* section, const char* option, const char* value) {
  if (section == nullptr || option == nullptr) return false;
  return file_->text.setValue(section, option, vel::textOrEmpty(value));
}

bool VelClIniFileEditor::merge(const VelClIniFile& source) {
  return file_->text.merge(source);
}

bool VelClIniFileEditor::addSection(const char* name) {
  return name != nullptr && file_->text.addSection(name);
}

bool VelClIniFileEditor::deleteOption(const char* section, const char* option) {
  return section != nullptr && option != nullptr && file_->text.deleteOption(section, option);
}

bool VelClIniFileEditor::deleteSection(const char* name) {
  return name != nullptr && file_->text.deleteSection(name);
}

const char* VelClIniFileEditor::getText() const {
  return file_->text.text().c_str();
}

size_t VelClIniFileEditor::getLength() const {
  return file_->text.text().size();
}

const VelClIniFile& VelClIniFileEditor::getIniFile() const {
  return file_->text.model();
}

bool VelClIniFileEditor::save() {
  vel::inifile::FileOutput output;
  if (!output.open(getAsCString())) return false;
  output.write(getText(), static_cast<std::streamsize>(getLength()));
  // Where it is another file this one is dropped.
  if (!file_->held.mayReplace(getAsCString(), output.replaced()) || !output.close()) return false;
  file_->hasKeptRights = output.keepsRights();
  file_->held.release();
  file_->held.forgetRead();
  return true;
}

bool VelClIniFileEditor::hasKeptRights() const {
  return file_->hasKeptRights;
}

VelEnIniFileLock VelClIniFileEditor::lock(unsigned int timeLimitMs) {
  return file_->held.hold(getAsCString(), timeLimitMs);
}

void VelClIniFileEditor::unlock() {
  file_->held.release();
}

bool VelClIniFileEditor::isReplaced() const {
  return file_->held.isReplaced();
}
