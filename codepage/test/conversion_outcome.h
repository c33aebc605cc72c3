// Runs a conversion in buffers of exactly the given sizes and keeps all that it did.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "codepage/test/outcome.h"

/// The bytes behind the target must stay as they are.
inline Outcome convert(const VelClConverterABase& converter, std::string_view source,
                       std::size_t targetSize) {
  constexpr std::size_t kGuard = 64;
  constexpr char kUntouched = '\x5A';
  const std::unique_ptr<char[]> in(new char[source.size()]);
  std::memcpy(in.get(), source.data(), source.size());
  std::string target(targetSize + kGuard, kUntouched);
  const char* position = in.get();
  Outcome outcome;
  const std::size_t written = converter.convertBytes(target.data(), targetSize, &position, source.size());
  EXPECT_LE(written, targetSize);
  EXPECT_EQ(target.substr(targetSize), std::string(kGuard, kUntouched)) << "written behind the target";
  outcome.bytes = target.substr(0, written);
  outcome.consumed = static_cast<std::size_t>(position - in.get());
  outcome.errorId = converter.getLastError().errorId;
  outcome.errorClass = converter.getLastError().errorClass;
  return outcome;
}

inline VelClCCSID ccsid(int number) {
  return VelClCCSID(number);
}
