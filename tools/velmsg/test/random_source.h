// Message sources for tests: read from a text, and random ones.
#pragma once

#include <random>
#include <string>
#include <string_view>

#include "tools/velmsg/message_source.h"

namespace vel::test {

/// Reads a source without mistakes as the file "a.mc". A mistake fails the test.
velmsg::MessageSource readSource(std::string_view text);

/// Returns all of a source but its positions, so that sources can be compared.
std::string describe(const velmsg::MessageSource& source);

/// What random texts have besides letters.
enum class Texts {
  Any,       ///< escapes of all kinds, control characters, empty lines anywhere
  Checkable  ///< nothing that a checker of .po files refuses: no control characters, and no line break at
             ///< either end
};

/// Returns a source with up to 12 messages in up to 4 languages, in which nothing is as usual: comments,
/// typedefs and bases change, names differ in case only, texts are missing. The files of a source are one,
/// "a.mc".
velmsg::MessageSource randomSource(std::mt19937& random, Texts texts = Texts::Any);

}  // namespace vel::test
