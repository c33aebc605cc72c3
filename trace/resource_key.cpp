// Builds the names of resources from type, key and instance: "SEM32:key:instance". Names contain only
// letters, digits, "_-@" and the separator ':'.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/short_text.h"
#include "vel_include/vel_trace.h"

namespace {

constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-@";
constexpr std::size_t kCount = sizeof kCharacters - 1;

// Replaces a character that is not allowed by one that is. Different characters may map to the same one, so
// different keys can produce the same name.
char mapCharacter(char c) {
  if (c == '\\') return ':';
  // `c` is never NUL, which strchr would find at the end of the list.
  if (std::strchr(kCharacters, c) != nullptr) return c;
  return kCharacters[static_cast<unsigned char>(c) % kCount];
}

}  // namespace

VelClResourceKeyABase::VelClResourceKeyABase(const char* type, const char* key, const char* instance)
    : length_(0), name_{}, part_(name_) {
  add(vel::textOrEmpty(type));
  // The part starts after the ":" that the next add() writes. Without a type no separator precedes it, and in
  // a full name the part is the terminator.
  if (length_ != 0) part_ = name_ + std::min(static_cast<std::size_t>(length_) + 1, sizeof name_ - 1);
  add(vel::textOrEmpty(key));
  if (instance != nullptr) add(instance);
}

VelClResourceKeyABase::VelClResourceKeyABase(const VelClResourceKeyABase& other)
    : length_(0), name_{}, part_(name_) {
  *this = other;
}

// memmove allows an object to be assigned to itself.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
VelClResourceKeyABase& VelClResourceKeyABase::operator=(const VelClResourceKeyABase& other) {
  length_ = other.length_;
  std::memmove(name_, other.name_, sizeof name_);
  // part_ points into this object's own name.
  part_ = name_ + (other.part_ - other.name_);
  return *this;
}

VelClResourceKeyABase::~VelClResourceKeyABase() = default;

bool VelClResourceKeyABase::matches(const char* name) const {
  return std::strncmp(name, name_, static_cast<std::size_t>(length_)) == 0;
}

void VelClResourceKeyABase::add(const char* part) {
  // Cuts silently; the last byte of name_ stays NUL.
  const auto put = [this](char c) {
    if (length_ + 1 < sizeof name_) name_[length_++] = c;
  };
  if (length_ != 0) put(':');
  for (; *part != '\0'; ++part) put(mapCharacter(*part));
}

VelClResourceKeySemaphore::VelClResourceKeySemaphore(const char* key, const char* instance)
    : VelClResourceKeyABase("SEM32", key, instance) {}

VelClResourceKeySemaphore::~VelClResourceKeySemaphore() = default;
