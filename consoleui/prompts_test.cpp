// Whole dialogues with redirected input: prompt_child asks, and its bytes are compared. A terminal is
// platform/posix/console_test.cpp's matter.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/test/child_process.h"
#include "platform/test/session.h"

namespace {

using namespace std::string_literals;

TEST(Prompts, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/prompts.session");
}

TEST(Prompts, CutLinesAndStartTheNextPromptClean) {
  const std::string eighty(80, 'x'), most(79, 'x'), huge(100000, 'x');
  const std::pair<std::string, std::string> rows[] = {
      {eighty + "\r\n", eighty}, {eighty + "\n", eighty}, {"a\rb\n", "a\rb"},
      {eighty + "y\n", eighty},  {huge + "\n", eighty},   {"\0\n"s, "Bob"},
      {most + "\r\n", most},     {"a\0b\r\0\n"s, "ab"},   {"\r\n", "Bob"}};
  const std::string question = std::string(74, '-') + "\n Name:\n (default: Bob): ";
  for (const auto& [line, answer] : rows) {
    const auto result =
        vel::test::runChild("prompt_child", {"string", "Name", "Bob", "string", "Name", "Bob"},
                            {.environment = {{"LC_ALL", "C"}}, .input = line + "next\n"});
    EXPECT_EQ(result.output, question + "[" + answer + "]\n" + question + "[next]\nend\n") << line;
  }
}

}  // namespace
