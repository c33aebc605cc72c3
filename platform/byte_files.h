// The seam's part for passing bytes through, of files of any size and of the standard streams. Tools that
// need it compile it once more.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

inline constexpr int kStandardInput = 0;
inline constexpr int kStandardOutput = 1;

/// What to do about a named pipe that nobody has open for writing.
enum class PipeWithoutWriter { Refuse, Await };

/// A descriptor for reading, or -1. Names arrive in either style, and children do not inherit it. Does not
/// wait, unless for a pipe's writer; reading from a pipe waits for what its writers send.
int openForReading(const char* name, PipeWithoutWriter pipe = PipeWithoutWriter::Refuse) noexcept;
void closeDescriptor(int descriptor) noexcept;
/// How many bytes were read, at most `capacity`; 0 at the end, -1 for a failure.
std::int64_t readBytes(int descriptor, void* buffer, std::size_t capacity) noexcept;
/// Writes all of them, or returns false.
bool writeBytes(int descriptor, const void* data, std::size_t size) noexcept;
/// The bytes from the position to the end of a regular file; 0 for everything else.
std::uint64_t bytesLeft(int descriptor) noexcept;
/// Moves on within a regular file, at most to its end; false, having moved nowhere, for everything else.
bool skipBytes(int descriptor, std::uint64_t count) noexcept;

}  // namespace vel::platform
