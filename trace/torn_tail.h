// Finds out whether a trace file ends within a record, because the program that wrote it was killed.
#pragma once

namespace vel::trace {

/// True if the file consists of whole records, at least one, and a part of another one at its end. Files of
/// more than 1 GiB are not examined: that would take too long. Reads nothing but regular files.
bool endsWithinRecord(const char* file) noexcept;

}  // namespace vel::trace
