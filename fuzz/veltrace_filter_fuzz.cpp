// Parses any text as each of the filters of veltrace, and matches the rest of the input with those that are
// valid. The places of mistakes are within the text, or one after it.
#include "fuzz/bytes.h"
#include "tools/veltrace/record_filter.h"

namespace fuzz::veltrace_filter {

namespace {

using vel::veltrace::NumberList;
using vel::veltrace::TextPattern;

void run(Bytes input) {
  const Text text = input.text();
  const Text subject(input.rest().substr(0, 340));
  std::size_t position = 0;
  const auto check = [&](bool isValid) {
    require(isValid || (position >= 1 && position <= text.view().size() + 1));
  };
  TextPattern pattern;
  const bool isPattern = pattern.parse(text.view(), position);
  check(isPattern);
  // A subject with a NUL ends there for wildcards.
  if (isPattern) pattern.matches(subject.view());
  NumberList numbers;
  check(numbers.parse(text.view(), 255, position));
  numbers.matches(7);
  std::string bytes;
  check(vel::veltrace::parseBytes(text.view(), bytes, position));
  require(bytes.size() <= text.view().size());
  std::uint32_t number = 0;
  check(vel::veltrace::parseTime(text.view(), number, position));
}

const Target target("veltrace_filter", run);

}  // namespace

}  // namespace fuzz::veltrace_filter
