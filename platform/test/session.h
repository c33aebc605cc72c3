// Sessions: text files of programs that run, of what they are given and of what they answer.
//
//   # a comment
//   NAME=value              a variable
//   $ NAME=value tool a ""  a run, with variables of its own in front; words with blanks stand in quotes
//   < 9 apples              a line of standard input
//   > = 9                   a line of standard output
//   >> %/answer.txt         more of standard output, from a file
//   ! wrong                 a line of standard error
//   ? =                     in place of all lines of standard output: a part of it
//   ?? %/begin.txt          a part that a file holds
//   ~ wron                  in place of all lines of standard error: a part of it
//   = 201                   the exit code, when it is not 0
//   + name text             a file that is there before, and what it holds
//   : name text             what a file holds afterwards
//
// "%/" is the folder of the session file. "@/" is a directory for the runs that follow each other; files lie
// there. Runs follow each other without an empty line when they share what stands in front of the first of
// them. In values and lines, "\n" and the like stand for their character; a line with "\" at its end ends
// without a line break. The language is English unless the variables tell otherwise.
#pragma once

#include <string>

namespace vel::test {

/// Runs all programs of a session file and expects their answers; `rawOutput` as in ChildOptions.
void expectSession(const std::string& path, bool rawOutput = false);

}  // namespace vel::test
