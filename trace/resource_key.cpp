// Names of resources.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/short_text.h"
#include "vel_include/vel_trace.h"

namespace {

constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-@";
constexpr std::size_t kCount = sizeof kCharacters - 1;

char mapCharacter(char c) {
  if (c == '\\') return ':';
  // Its argument is never the terminator.
  if (std::strchr(kCharacters, c) != nullptr) return c;
  return kCharacters[static_cast<unsigned char>(c) % kCount];
}

}  // namespace

VelClResourceKeyABase::VelClResourceKeyABase(const char* type, const char* key, const char* instance)
    : length_(0), name_{}, part_(name_) {
  add(vel::textOrEmpty(type));
  // Behind the separator, unless there is no type or no room.
  if (length_ != 0) part_ = name_ + std::min(static_cast<std::size_t>(length_) + 1, sizeof name_ - 1);
  add(vel::textOrEmpty(key));
  if (instance != nullptr) add(instance);
}

VelClResourceKeyABase::VelClResourceKeyABase(const VelClResourceKeyABase& other)
    : length_(0), name_{}, part_(name_) {
  *this = other;
}

VelClResourceKeyABase& VelClResourceKeyABase::operator=(const VelClResourceKeyABase& other) {
  length_ = other.length_;
  std::memmove(name_, other.name_, sizeof name_);
  part_ = name_ + (other.part_ - other.name_);
  return *this;
}

VelClResourceKeyABase::~VelClResourceKeyABase() = default;

bool VelClResourceKeyABase::matches(const char* name) const {
  return std::strncmp(name, name_, static_cast<std::size_t>(length_)) == 0;
}

void VelClResourceKeyABase::add(const char* part) {
  const auto put = [this](char c) {
    if (length_ + 1 < sizeof name_) name_[length_++] = c;
  };
  if (length_ != 0) put(':');
  for (; *part != '\0'; ++part) put(mapCharacter(*part));
}

VelClResourceKeySemaphore::VelClResourceKeySemaphore(const char* key, const char* instance)
    : VelClResourceKeyABase("SEM32", key, instance) {}

VelClResourceKeySemaphore::~VelClResourceKeySemaphore() = default;
