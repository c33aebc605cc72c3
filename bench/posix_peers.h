// Jobs done by the system's own calls for files and processes, which the library is compared with.
#pragma once

#include <initializer_list>

namespace bench {

/// Returns the processor time in seconds of this process and of the children that it has waited for. Unlike
/// elapsed time, it does not depend on the load of the machine.
double processorTime();

/// Removes the variable if the value is null.
void setVariable(const char* name, const char* value);

/// Returns the number of files of a directory that can be written.
int countWritableFiles(const char* directory);

/// Returns the number of files in a tree, by readdir, without asking for the status of entries.
int countFiles(const char* directory);

/// Asks statx for everything that it knows.
bool isRegularFile(const char* name);

void removeTreeByCalls(const char* path);

/// Starts a program without arguments and waits for its end.
bool spawnAndWait(const char* program);

/// Runs a program that is found along PATH; returns whether it succeeded.
bool runTool(std::initializer_list<const char*> arguments);

}  // namespace bench
