// Errors and exceptions of the library as those of the standard library: std::error_code and std::exception.
#ifndef VEL_STD_ERROR_H_
#define VEL_STD_ERROR_H_

#include "vel_error.h"
#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <exception>
#include <new>
#include <system_error>
#include <type_traits>
#include <utility>

/// Returns the category of the library's error identifiers, "qamc5032". Its messages are their symbolic
/// names, such as "FILE_COULD_NOT_COPY", or the number of an identifier that has no name.
VEL_API const std::error_category& velErrorCategory() noexcept;

/// Returns the generic condition of a class of failures, for comparisons with std::errc: for example
/// permission_denied for IO_PERMISSION_DENIED, and io_error for IO_PROBLEM. A class that has no counterpart
/// gives an empty condition.
VEL_API std::error_condition velErrorCondition(VelEnErrorClass errorClass) noexcept;

/// Return an identifier as a standard error code. make_error_code is called by the standard library, so that
/// identifiers can be assigned to error codes and compared with them.
inline std::error_code make_error_code(VelEnErrorId id) noexcept {
  return {static_cast<int>(id), velErrorCategory()};
}
inline std::error_code velErrorCode(const _VelStError& error) noexcept {
  return {static_cast<int>(error.errorId), velErrorCategory()};
}

namespace std {
/// Tells the standard library that identifiers are error codes.
template <>
struct is_error_code_enum<VelEnErrorId> : true_type {};
}  // namespace std

/// A VelClException as a standard exception, see velRethrowAsStd. code() is the identifier in
/// velErrorCategory, and what() has the cause, if there is one, and the name of the identifier.
/// code() never equals a std::errc, because it does not have the class; compare
/// velErrorCondition(getException().getClass()) instead.
class VelClStdException : public std::system_error {
 public:
  /// Copies `source`; cause and origin are still not copied.
  explicit VelClStdException(const VelClException& source)
      : std::system_error(*source.getCause() == '\0' ? std::system_error(codeOf(source))
                                                     : std::system_error(codeOf(source), source.getCause())),
        exception_(source) {}

  /// Returns the exception of the library, with class, severity, action, cause and origin.
  const VelClException& getException() const noexcept { return exception_; }

 private:
  static std::error_code codeOf(const VelClException& source) noexcept {
    return {static_cast<int>(source.getId()), velErrorCategory()};
  }
  VelClException exception_;
};

/// Same for a VelClException of class OUT_OF_MEMORY. It allocates nothing.
class VelClStdOutOfMemory : public std::bad_alloc {
 public:
  /// Copies `source`.
  explicit VelClStdOutOfMemory(const VelClException& source) noexcept
      : exception_(source) {}  // NOLINT(bugprone-throw-keyword-missing): stored, not thrown

  /// Returns the cause.
  const char* what() const noexcept override { return exception_.getCause(); }
  /// Returns the exception of the library.
  const VelClException& getException() const noexcept { return exception_; }

 private:
  VelClException exception_;
};

/// Throws a VelClStdOutOfMemory if memory ran out, otherwise a VelClStdException, in which the exception
/// being handled, if any, is nested (see std::rethrow_if_nested).
[[noreturn]] inline void velThrowAsStd(const VelClException& exception) {
  if (exception.getClass() == VelEnErrorClass::OUT_OF_MEMORY) throw VelClStdOutOfMemory(exception);
  std::throw_with_nested(VelClStdException(exception));
}

/// Calls `function` and returns its result. A VelClException, or one of its derived classes, that leaves
/// `function` is thrown again by velThrowAsStd, so that handlers of std::exception catch it. All other
/// exceptions pass unchanged.
template <typename Function>
decltype(auto) velRethrowAsStd(Function&& function) {
  try {
    return std::forward<Function>(function)();
  } catch (const VelClException& exception) {
    velThrowAsStd(exception);
  }
}

#endif

#endif
