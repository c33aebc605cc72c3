// Sessions are text files that list runs of programs, with their input and their expected output.
//
//   # a comment
//   NAME=value              a variable
//   $ NAME=value tool a ""  a run, after variables of its own; words with blanks are quoted
//   < 9 apples              a line of standard input
//   > = 9                   a line of standard output
//   >> %/answer.txt         more of standard output, from a file
//   ! wrong                 a line of standard error
//   ? =                     a substring of standard output, instead of all its lines
//   ?? %/begin.txt          a substring, from a file
//   ~ wron                  a substring of standard error, instead of all its lines
//   = 201                   the exit code, unless it is 0
//   + name text             a file to create before, and its contents
//   : name text             the contents of a file afterwards
//
// An empty line ends a group of runs. Lines before the first run of a group apply to all its runs. "%/" is
// the folder of the session file, and "@/" a scratch directory of the group, which holds the files. Escapes
// such as "\n" are replaced in values and lines; a "\" at the end of a line leaves out its line break. The
// language is English unless the variables set another one.
#pragma once

#include <string>

namespace vel::test {

/// Runs the programs of a session file and compares their output; `rawOutput` as in ChildOptions.
void expectSession(const std::string& path, bool rawOutput = false);

}  // namespace vel::test
