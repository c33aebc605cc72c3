// Helpers for functions that return a status: classes of system errors, and the border to plain functions.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

#include "platform/system_error.h"
#include "vel_include/vel_status.h"

namespace vel {

/// Returns the class of a failed system call; `otherwise` unless the number says more.
VelEnErrorClass classOfSystemError(platform::NativeError error,
                                   VelEnErrorClass otherwise = VelEnErrorClass::IO_PROBLEM) noexcept;

/// The status of a failed system call on the file or program `name`.
inline VelClStatus systemFailure(unsigned long errorId, platform::NativeError error, std::string_view name,
                                 VelEnErrorClass otherwise = VelEnErrorClass::IO_PROBLEM) noexcept {
  return {errorId, classOfSystemError(error, otherwise), error, name};
}

/// The status of an exception of the library.
inline VelClStatus failureOf(const VelClException& exception) noexcept {
  return {exception.getId(), exception.getClass()};
}

/// Runs the body of a plain function and returns its status as the caller's. An exception, which can only be
/// lack of memory, becomes a failure too, because none may reach a C program.
template <typename Body>
VelStStatus* plainStatus(Body&& body) noexcept {
  try {
    VelClStatus status = std::forward<Body>(body)();
    return status.release();
  } catch (const VelClException& exception) {
    return failureOf(exception).release();
  } catch (...) {
    return VelClStatus(MEMMGR_RUNTIME_OUT_OF_MEMORY, VelEnErrorClass::OUT_OF_MEMORY).release();
  }
}

}  // namespace vel
