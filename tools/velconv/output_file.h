// Where the converted bytes go: to standard output as they come, or to a file that is replaced at the end.
#pragma once

#include "platform/replacing.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velconv {

/// Thrown when the output cannot be written; nothing goes on after that.
struct OutputFailure {};

class OutputFile : public VelClConversionSink {
 public:
  /// Null is standard output.
  explicit OutputFile(const char* name);
  /// A file that was not finished stays as it was.
  ~OutputFile() override;

  void write(const char* bytes, std::size_t size) override;
  void finish();
  /// Afterwards: whether owner and permissions are those of the file that was replaced.
  bool keepsRights() const { return replacement_.keepsRights; }

 private:
  platform::Replacement replacement_;
  int descriptor_;
};

}  // namespace vel::velconv
