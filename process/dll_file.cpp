// Loads dynamic libraries and looks up their procedures, for users of the classes and of the plain functions.
// Finding the file is exe_file.cpp's work, and that of the system's loader.
#include "foundation/allocator.h"
#include "platform/dynamic_libraries.h"
#include "vel_include/vel_process.h"

namespace platform = vel::platform;

VelClDllFile::VelClDllFile(const VelClFilename& name)
    : VelClExeFile(name, getDefaultFileType(), LIBRARY), handle_(nullptr) {
  load();
}

VelClDllFile::~VelClDllFile() {
  if (handle_ != nullptr) platform::freeLibrary(handle_);
  handle_ = nullptr;
}

void VelClDllFile::load() {
  const platform::NativeError error = platform::loadLibrary(getAsCString(), handle_);
  // Intentional: the identifier is the system's own error code, because no identifier of this library would
  // say why the loader refused the file.
  if (handle_ == nullptr) fail(error, VelEnErrorClass::RESOURCE_MISSING);
}

// Intentional: the type of a library begins with a dot, that of a program does not. setNewExtension accepts
// both.
const char* VelClDllFile::getDefaultFileType() {
  return ".DLL";
}

const char* VelClDllFile::getSystemPathEnvironmentVariable() {
  return "PATH";
}

VelClDllProcLoaderFile::VelClDllProcLoaderFile(const VelClFilename& name) : VelClDllFile(name) {}

VelClDllProcLoaderFile::~VelClDllProcLoaderFile() = default;

VelProcedure VelClDllProcLoaderFile::getProcedure(const char* name) const {
  if (!isValid() || name == nullptr) return nullptr;
  return platform::findProcedure(getHandle(), name);
}

// The handle is the object itself, so closing it releases the library.
void* velDllProcLoaderOpen(const char* fileName) {
  auto* const loader = vel::create<VelClDllProcLoaderFile>(VelClFilename(fileName));
  if (loader->isValid()) return loader;
  vel::destroy(loader);
  return nullptr;
}

VelProcedure velDllProcLoaderGetProcedure(void* handle, const char* procedureName) {
  if (handle == nullptr) return nullptr;
  return static_cast<const VelClDllProcLoaderFile*>(handle)->getProcedure(procedureName);
}

void velDllProcLoaderClose(void* handle) {
  vel::destroy(static_cast<VelClDllProcLoaderFile*>(handle));
}
