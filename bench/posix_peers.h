// The system's own calls for files and processes, beside which the library is measured.
// them.
#pragma once

namespace bench {

/// Processor time in seconds of this process and of the children that it has waited for: unlike the clock's
/// it does not tell what else the machine was doing.
double processorTime();

/// The value is null for a variable to remove.
void setVariable(const char* name, const char* value);

/// How many files of a directory can be written.
int countWritableFiles(const char* directory);

void removeTreeByCalls(const char* path);

/// Starts a program without arguments and waits for its end.
bool spawnAndWait(const char* program);

}  // namespace bench
