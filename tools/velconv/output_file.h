// The target of the converted bytes: standard output, or a file that is replaced at the end.
#pragma once

#include "platform/replacing.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velconv {

/// Thrown when the output cannot be written. The tool reports it and ends.
struct OutputFailure {};

class OutputFile : public VelClConversionSink {
 public:
  /// Begins a file beside the one of this name; null is standard output. Throws OutputFailure.
  explicit OutputFile(const char* name);
  /// Drops what was written unless it was finished; the old file stays as it was.
  ~OutputFile() override;

  /// Throws OutputFailure.
  void write(const char* bytes, std::size_t size) override;
  /// Replaces the old file. Throws OutputFailure, and then the old file stays.
  void finish();
  /// After finish: whether the file has the owner and the permissions of the one that it replaced.
  bool keepsRights() const { return replacement_.keepsRights; }

 private:
  platform::Replacement replacement_;
  int descriptor_;
};

}  // namespace vel::velconv
