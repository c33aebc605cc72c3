// The base of the pattern objects, and those that need no search of their own.
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
