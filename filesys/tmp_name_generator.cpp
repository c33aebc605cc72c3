// The form of temporary names.
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
  // Units first: process 1234 gives "432". Keep.
  unsigned int id = platform::currentProcessId();
  for (std::size_t at = kBaseLength + 1; at < kLength; ++at, id /= 10)
    text_[at] = static_cast<char>('0' + id % 10);
}

const char* TmpNameGenerator::next() {
  auto number = static_cast<std::uint32_t>(numbers_.getRandomNumber());
  for (std::size_t at = kBaseLength; at-- > prefixLength_; number /= kLetters)
    text_[at] = kAlphabet[number % kLetters];
  return text_;
}

bool RetryLimit::mayRetry(const char* text) {
  if (*first_ == '\0') copyBounded(first_, text, kMaxLength);
  return std::strcmp(first_, text) != 0 || left_-- > 0;
}

}  // namespace vel::filesys
