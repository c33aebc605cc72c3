// Formats exceptions of the library as text.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "vel_include/vel_error.h"

namespace vel::test {

/// Returns the exception that `function` throws as "identifier class severity action cause, origin", or "-".
template <typename Function>
std::string thrown(Function function) {
  try {
    function();
  } catch (const VelClException& exception) {
    const auto number = [](auto value) { return std::to_string(static_cast<int>(value)) + ' '; };
    const std::string origin = exception.getOrigin();
    const bool tellsLine = origin.find_first_of("0123456789") != std::string::npos;
    if (tellsLine) {
      EXPECT_TRUE(origin.ends_with(std::to_string(exception.getLine()))) << origin;
    }
    return number(exception.getId()) + number(exception.getClass()) + number(exception.getSeverity()) +
           number(exception.getAction()) + exception.getCause() + ", " + origin;
  }
  return "-";
}

}  // namespace vel::test
