// Implements the base of the pattern objects, the wildcard pattern, which calls velMatchesWildcardPattern,
// and VelClGrep. Plain-text search is in string_search.cpp.
#include "base/short_text.h"
#include "vel_include/vel_util.h"

VelClStringMatchABase::VelClStringMatchABase(const char* pattern, bool flag)
    : pattern_(vel::textOrEmpty(pattern)), flag_(flag) {}

VelClStringMatchABase::~VelClStringMatchABase() = default;

VelClStringMatchWildcards::VelClStringMatchWildcards(const char* pattern, bool caseSensitive)
    : VelClStringMatchABase(pattern, caseSensitive) {}

VelClStringMatchWildcards::~VelClStringMatchWildcards() = default;

const char* VelClStringMatchWildcards::getPattern(const char* text) const {
  return velMatchesWildcardPattern(pattern_, text, flag_) ? text : nullptr;
}

// Intentional: regular expressions are not implemented. The class exists so that programs that name it link
// and run; it never finds anything.
VelClGrep::VelClGrep(const char* pattern, bool flag) : VelClStringMatchABase(pattern, flag), state_(0) {
  init(pattern, 0);
}

VelClGrep::VelClGrep(int options, const char* pattern) : VelClStringMatchABase(pattern, false), state_(0) {
  init(pattern, options);
}

VelClGrep::~VelClGrep() = default;

void VelClGrep::init(const char*, int) {
  state_ = 1;
}

const char* VelClGrep::getPattern(const char*) const {
  return nullptr;
}

const char* VelClGrep::getPattern(const char*, int) const {
  return nullptr;
}
