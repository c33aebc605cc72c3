// All short texts over a few letters: for tests that compare with a slow, obvious answer.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vel::test {

/// Every text of at most `longest` letters, the empty one first.
inline std::vector<std::string> allTexts(const std::string& letters, std::size_t longest) {
  std::vector<std::string> texts{""};
  std::size_t begin = 0;
  for (std::size_t length = 1; length <= longest; ++length) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin)
      for (const char letter : letters) texts.push_back(texts[begin] + letter);
  }
  return texts;
}

}  // namespace vel::test
