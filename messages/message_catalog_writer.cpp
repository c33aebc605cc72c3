// The public class that writes catalogs; the bytes of the file are the work of catalog_image.cpp.
#include <cerrno>

#include "messages/catalog_image.h"
#include "messages/catalog_library.h"
#include "platform/replacing_file.h"
#include "vel_include/vel_messages.h"

namespace vel::messages {

struct CatalogContents {
  CatalogTexts texts;
  Vector<std::uint8_t> file;
};

}  // namespace vel::messages

namespace {

VelEnErrorClass classOfFailedWrite(vel::platform::SystemError error) {
  return error == EACCES ? VelEnErrorClass::IO_PERMISSION_DENIED : VelEnErrorClass::IO_WRITE_PROBLEM;
}

vel::platform::SystemError replaceFile(const char* name, const vel::Vector<std::uint8_t>& bytes) noexcept {
  vel::platform::ReplacingFile file;
  if (const auto error = file.start(name); error != 0) return error;
  if (const auto error = file.write(bytes.data(), bytes.size()); error != 0) return error;
  return file.finish();
}

}  // namespace

VelClMessageCatalogWriter::VelClMessageCatalogWriter(const VelClFilename& name,
                                                     VelClMessageCatalog::VelEnFile file)
    : VelClFile(name, nullptr), contents_(vel::create<vel::messages::CatalogContents>()) {
  if (file == VelClMessageCatalog::VelEnFile::LIBRARY) setFileType("DLL");
}

VelClMessageCatalogWriter::~VelClMessageCatalogWriter() {
  vel::destroy(contents_);
}

bool VelClMessageCatalogWriter::setText(unsigned int language, unsigned long id, const char* text,
                                        size_t size) {
  return set(language, id, text, size, true);
}

bool VelClMessageCatalogWriter::setSingleByteText(unsigned int language, unsigned long id, const char* text,
                                                  size_t size) {
  return set(language, id, text, size, false);
}

bool VelClMessageCatalogWriter::set(unsigned int language, unsigned long id, const char* text, size_t size,
                                    bool unicode) {
  using Result = vel::messages::CatalogTexts::Result;
  if (language > 0xFFFF || id != static_cast<std::uint32_t>(id))
    return fail(CONUI_MSGCAT_CORRUPTED, VelEnErrorClass::DATA_OUT_OF_BOUNDS);
  auto& texts = contents_->texts;
  const auto langId = static_cast<std::uint16_t>(language);
  const auto number = static_cast<std::uint32_t>(id);
  const Result result =
      unicode ? texts.addUtf8(langId, number, text, size) : texts.addSingleBytes(langId, number, text, size);
  if (result == Result::IllFormed) return fail(CONUI_MSGCAT_CORRUPTED, VelEnErrorClass::INVALID_DATA);
  if (result == Result::TooLong) return fail(CONUI_MSGCAT_CORRUPTED, VelEnErrorClass::DATA_OUT_OF_BOUNDS);
  return succeed();
}

bool VelClMessageCatalogWriter::build() {
  contents_->file.clear();
  return vel::messages::writeCatalogImage(contents_->texts, vel::messages::CatalogLibrary::kMaxBytes,
                                          contents_->file);
}

bool VelClMessageCatalogWriter::getBytes(const unsigned char*& bytes, size_t& size) {
  if (!build()) return fail(CONUI_MSGCAT_CORRUPTED, VelEnErrorClass::DATA_OUT_OF_BOUNDS);
  bytes = contents_->file.data();
  size = contents_->file.size();
  return succeed();
}

bool VelClMessageCatalogWriter::write() {
  if (!build()) return fail(CONUI_MSGCAT_CORRUPTED, VelEnErrorClass::DATA_OUT_OF_BOUNDS);
  const auto error = replaceFile(getAsCString(), contents_->file);
  return error == 0 ? succeed() : fail(FILE_COULD_NOT_COPY, classOfFailedWrite(error));
}
