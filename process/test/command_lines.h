// Command lines and what the Windows C runtime makes of them, for the tests of splitting and for those of
// real children.
#pragma once

#include <string>
#include <vector>

namespace vel::test {

struct CommandLineRow {
  const char* line;  ///< behind the program's name and a blank
  std::vector<std::string> arguments;
};

inline const CommandLineRow kCommandLines[] = {
    {R"(a b  c)", {"a", "b", "c"}},
    {"a\tb \t c ", {"a", "b", "c"}},
    {R"("a b" c)", {"a b", "c"}},
    {"\"a\tb\"", {"a\tb"}},
    {R"(a" b "c d)", {"a b c", "d"}},
    {R"("" x "")", {"", "x", ""}},
    {R"("open to the end)", {"open to the end"}},
    {R"("")", {""}},
    {R"(")", {""}},
    // Back-slashes before anything but a quote stand for themselves.
    {R"(a\b \\server\share c\)", {R"(a\b)", R"(\\server\share)", R"(c\)"}},
    {R"(a\\ b\ c)", {R"(a\\)", R"(b\)", "c"}},
    {R"("a\\b" "\ ")", {R"(a\\b)", R"(\ )"}},
    // Before a quote two make one, and an odd one makes the quote ordinary.
    {R"(\" a)", {"\"", "a"}},
    {R"(a\"b c)", {"a\"b", "c"}},
    {R"(\\"a b" c)", {R"(\a b)", "c"}},
    {R"(\\\"a b)", {R"(\"a)", "b"}},
    {R"("a b\\" c)", {R"(a b\)", "c"}},
    {R"("a b\" c)", {R"(a b" c)"}},
    {R"("a b\\\" c" d)", {R"(a b\" c)", "d"}},
    {R"("a b\\\\" c)", {R"(a b\\)", "c"}},
    {R"(\\\\"x" \\\\y)", {R"(\\x)", R"(\\\\y)"}},
};

}  // namespace vel::test
