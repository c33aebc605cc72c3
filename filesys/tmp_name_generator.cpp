// Builds names of temporary files from a prefix, random characters and the process identifier, for example
// "TMPX4@QZ.432". The form fits 8.3 file systems, and no two characters of the alphabet differ only in case,
// which some file systems ignore. Whether a name is free is tmp_filename.cpp's work.
#include "filesys/tmp_name_generator.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include "filesys/path_text.h"
#include "platform/processes.h"

namespace vel::filesys {

namespace {

constexpr std::size_t kBaseLength = 8;
constexpr std::size_t kMaxPrefixLength = 5;
constexpr std::string_view kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ@#!%_";
constexpr auto kLetters = static_cast<std::uint32_t>(kAlphabet.size());

}  // namespace

TmpNameGenerator::TmpNameGenerator(const char* prefix) : prefixLength_(0), text_{} {
  prefixLength_ = boundedLength(textOrEmpty(prefix), kMaxPrefixLength);
  std::memcpy(text_, textOrEmpty(prefix), prefixLength_);
  text_[kBaseLength] = '.';
  // Intentional: the extension is the last three digits of the process ID in reverse order; callers get
  // "432" from process 1234.
  unsigned int id = platform::currentProcessId();
  for (std::size_t at = kBaseLength + 1; at < kLength; ++at, id /= 10)
    text_[at] = static_cast<char>('0' + id % 10);
}

// Uses one random number as digits to the base of the alphabet's size. Six of them use up its 32 bits, so
// that without a prefix the first two of the eight characters are always "0".
const char* TmpNameGenerator::next() {
  auto number = static_cast<std::uint32_t>(numbers_.getRandomNumber());
  for (std::size_t at = kBaseLength; at-- > prefixLength_; number /= kLetters)
    text_[at] = kAlphabet[number % kLetters];
  return text_;
}

// Only the first name is remembered, which bounds the loop without memory for all names.
bool RetryLimit::mayRetry(const char* text) {
  if (*first_ == '\0') copyBounded(first_, text, kMaxLength);
  return std::strcmp(first_, text) != 0 || left_-- > 0;
}

}  // namespace vel::filesys
