// The result of functions of the newer families, which report errors by value: paths and what is done with
// the files they name, child processes, and others.
#ifndef VEL_STATUS_H_
#define VEL_STATUS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_error.h"
#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <string>
#include <string_view>
#include <utility>
#endif

/// Identifies failures that only functions with a status report, in addition to those of VelEnErrorId. They
/// have no numbered message; velStatusGetIdName gives their names.
// clang-format off
enum VelEnStatusId VEL_ENUM_TYPE(uint32_t) {
  PATH_INVALID = 1001201,             ///< a path is empty, contains a NUL, or is ill-formed for the system
  PATH_TOO_LONG = 1001202,            ///< a path does not fit the system, or a class with a limit
  FILE_COULD_NOT_OPEN = 1001203,      ///< a file could not be opened or created
  FILE_COULD_NOT_READ = 1001204,      ///< a file, or the entries of a directory, could not be read
  FILE_COULD_NOT_WRITE = 1001205,     ///< a file could not be written
  FILE_COULD_NOT_MOVE = 1001206,      ///< a file could not be moved; it is where it was
  FILE_COULD_NOT_QUERY = 1001207,     ///< the status of an entry could not be read
  FILE_TOO_LARGE = 1001208,           ///< a file has more bytes than the caller accepts
  PROCESS_COULD_NOT_START = 1001301,  ///< a program was not started
  PROCESS_COULD_NOT_WAIT = 1001302,   ///< the end of a process, or its output, could not be awaited
  PROCESS_COULD_NOT_END = 1001303     ///< a process could not be ended
};
// clang-format on

/// A failure: what failed, why, and to what. Null is success, and every function below takes it. A function
/// of the plain interface that returns a failure gives it to the caller, who frees it by velStatusFree. A
/// failure never changes, so several threads may read it.
typedef struct VelStStatus VelStStatus;

/// Makes a failure. `name` is what the failure is about, a path or a program, as UTF-8 of any length that is
/// copied; null counts as "". `systemError` is the system's own error number, or 0: the last error on
/// Windows, an errno elsewhere. `position` is where in the input the failure is, from 1, or 0. The result is
/// never null. If there is no memory for the failure, it says that instead: MEMMGR_RUNTIME_OUT_OF_MEMORY with
/// class OUT_OF_MEMORY.
VEL_C_API VelStStatus* velStatusCreate(unsigned long errorId, VelEnErrorClass errorClass,
                                       uint32_t systemError, const char* name, size_t nameSize,
                                       uint64_t position);
/// Returns another reference to the same failure, which is freed on its own; null for null.
VEL_C_API VelStStatus* velStatusShare(VelStStatus* status);
/// Frees a failure, or a reference to it; null is ignored.
VEL_C_API void velStatusFree(VelStStatus* status);

/// Return the parts of a failure; for null 0, UNKNOWN, 0 and 0.
VEL_C_API unsigned long velStatusGetErrorId(const VelStStatus* status);
VEL_C_API VelEnErrorClass velStatusGetClass(const VelStStatus* status);
VEL_C_API uint32_t velStatusGetSystemError(const VelStStatus* status);
VEL_C_API uint64_t velStatusGetPosition(const VelStStatus* status);
/// Returns what the failure is about, NUL-terminated, and its size in bytes without the NUL, unless `size` is
/// null. It is valid until the failure is freed; "" for null.
VEL_C_API const char* velStatusGetName(const VelStStatus* status, size_t* size);

/// Writes the failure in one line of English, NUL-terminated UTF-8, such as
/// "FILE_COULD_NOT_OPEN (IO_NOT_EXISTENT): a/b.txt: No such file or directory (2)". The text of a system
/// error is the system's own, in the language of the user. Control characters of the name are shown as
/// "\x1B". Returns the length without the NUL; a result that does not fit `capacity` bytes is cut between two
/// characters. `out` is not used if `capacity` is 0. Null gives "NO_ERROR".
VEL_C_API size_t velStatusGetText(const VelStStatus* status, char* out, size_t capacity);
/// Returns the name of an identifier of either enumeration, such as "FILE_COULD_NOT_OPEN", or null. The text
/// is a literal.
VEL_C_API const char* velStatusGetIdName(unsigned long errorId);

#if defined(VEL_HAS_CLASSES)

/// The result of a function: success, or a failure with its reason. It must not be ignored. It is one
/// pointer, null for success, so that success costs nothing. Copies share the failure. No function throws.
class [[nodiscard]] VelClStatus {
 public:
  /// Constructs success.
  VelClStatus() noexcept = default;
  /// Constructs a failure; see velStatusCreate.
  VelClStatus(unsigned long errorId, VelEnErrorClass errorClass, uint32_t systemError = 0,
              std::string_view name = {}, uint64_t position = 0) noexcept
      : failure_(velStatusCreate(errorId, errorClass, systemError, name.data(), name.size(), position)) {}
  /// Adopts the result of a plain function and frees it in the end.
  explicit VelClStatus(VelStStatus* failure) noexcept : failure_(failure) {}
  VelClStatus(const VelClStatus& other) noexcept : failure_(velStatusShare(other.failure_)) {}
  VelClStatus(VelClStatus&& other) noexcept : failure_(std::exchange(other.failure_, nullptr)) {}
  VelClStatus& operator=(VelClStatus other) noexcept {
    std::swap(failure_, other.failure_);
    return *this;
  }
  ~VelClStatus() {
    if (failure_ != nullptr) velStatusFree(failure_);
  }

  /// True for success.
  bool isOk() const noexcept { return failure_ == nullptr; }
  /// Return the parts of a failure; 0, UNKNOWN, 0, 0 and "" for success.
  unsigned long getErrorId() const noexcept { return velStatusGetErrorId(failure_); }
  VelEnErrorClass getClass() const noexcept { return velStatusGetClass(failure_); }
  uint32_t getSystemError() const noexcept { return velStatusGetSystemError(failure_); }
  uint64_t getPosition() const noexcept { return velStatusGetPosition(failure_); }
  /// Valid as long as this object or a copy of it exists.
  std::string_view getName() const noexcept {
    size_t size = 0;
    const char* const name = velStatusGetName(failure_, &size);
    return {name, size};
  }
  /// Returns the failure as one line of text; see velStatusGetText.
  std::string getText() const {
    std::string text(velStatusGetText(failure_, nullptr, 0), '\0');
    velStatusGetText(failure_, text.data(), text.size() + 1);
    return text;
  }
  /// Gives the failure to the caller, who frees it by velStatusFree; leaves success behind.
  [[nodiscard]] VelStStatus* release() noexcept { return std::exchange(failure_, nullptr); }

 private:
  VelStStatus* failure_ = nullptr;
};

#endif

#endif
