// Opens, closes and resumes the levels of a tree. A closed level's remaining entries are one block: kind,
// size of the name, name and NUL for each.
#include "filesys/open_directories.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vel::filesys {

namespace {

/// How many levels are open besides the top.
constexpr std::size_t kMaxOpen = 32;
/// The number of "not found", which is ENOENT and ERROR_FILE_NOT_FOUND: a directory that was left is not
/// where it was.
constexpr platform::NativeError kGone = 2;

struct RestHead {
  platform::EntryKind kind;
  std::size_t size;
};

template <typename T>
void appendBytes(Vector<char>& block, const T* data, std::size_t size) {
  const auto* const bytes = reinterpret_cast<const char*>(data);
  block.insert(block.end(), bytes, bytes + size);
}

}  // namespace

void OpenDirectories::closeAll() noexcept {
  for (Level& level : levels_)
    if (level.listing != nullptr) platform::closeListing(*level.listing);
  levels_.clear();
}

OwnedObject<platform::Listing> OpenDirectories::newListing() {
  if (unused_.empty()) return OwnedObject<platform::Listing>(create<platform::Listing>());
  OwnedObject<platform::Listing> listing = std::move(unused_.back());
  unused_.pop_back();
  return listing;
}

void OpenDirectories::close(OwnedObject<platform::Listing>& listing) {
  platform::closeListing(*listing);
  unused_.push_back(std::move(listing));
}

platform::NativeError OpenDirectories::openTop(const char* name, platform::DirectoryLink link) {
  levels_.reserve(16);
  unused_.reserve(kMaxOpen + 2);
  link_ = link;
  Level top;
  top.listing = newListing();
  const platform::NativeError error = platform::openListing(name, link, *top.listing);
  if (error == 0) levels_.push_back(std::move(top));
  return error;
}

platform::NativeError OpenDirectories::enter(std::string_view systemName) {
  Level level;
  level.name = systemName;
  level.listing = newListing();
  const platform::NativeError error = platform::openListed(current(), level.name, link_, *level.listing);
  if (error != 0) {
    unused_.push_back(std::move(level.listing));
    return error;
  }
  levels_.push_back(std::move(level));
  if (depth() <= kMaxOpen) return 0;
  Level& oldest = levels_[depth() - kMaxOpen];
  const platform::NativeError failed = oldest.listing != nullptr ? suspend(oldest) : 0;
  if (failed == 0) return 0;
  close(levels_.back().listing);
  levels_.pop_back();
  return failed;
}

platform::NativeError OpenDirectories::leave() {
  if (levels_.back().listing != nullptr) close(levels_.back().listing);
  levels_.pop_back();
  if (levels_.back().listing != nullptr) return 0;
  const platform::NativeError error = resume();
  if (error != 0) endListing();
  return error;
}

platform::NativeError OpenDirectories::next(platform::ListedEntry& entry, platform::ListingStep& step) {
  Level& level = levels_.back();
  if (!level.isSuspended) return platform::nextListed(*level.listing, entry, step);
  step = takeRest(level, entry) ? platform::ListingStep::Entry : platform::ListingStep::End;
  return step == platform::ListingStep::End ? std::exchange(level.restError, 0) : 0;
}

void OpenDirectories::endListing() {
  Level& level = levels_.back();
  level.isSuspended = true;
  level.rest.clear();
  level.restAt = 0;
  level.restError = 0;
}

platform::NativeError OpenDirectories::identify(Level& level) noexcept {
  if (level.identity != platform::FileIdentity{}) return 0;
  return platform::identityOfListing(*level.listing, level.identity);
}

/// Closes a level, so that another one can be open.
platform::NativeError OpenDirectories::suspend(Level& level) {
  if (const platform::NativeError error = identify(level); error != 0) return error;
  if (!level.isSuspended) level.restError = keepRest(level);
  level.isSuspended = true;
  close(level.listing);
  return 0;
}

platform::NativeError OpenDirectories::keepRest(Level& level) {
  platform::ListedEntry entry;
  platform::ListingStep step;
  for (;;) {
    const platform::NativeError error = platform::nextListed(*level.listing, entry, step);
    if (error != 0 || step == platform::ListingStep::End) return error;
    const RestHead head{entry.kind, entry.systemName.size()};
    appendBytes(level.rest, &head, sizeof head);
    appendBytes(level.rest, entry.systemName.data(), head.size);
    level.rest.push_back('\0');
  }
}

bool OpenDirectories::takeRest(Level& level, platform::ListedEntry& entry) noexcept {
  if (level.restAt == level.rest.size()) return false;
  RestHead head;
  std::memcpy(&head, level.rest.data() + level.restAt, sizeof head);
  entry.kind = head.kind;
  entry.systemName = {level.rest.data() + level.restAt + sizeof head, head.size};
  level.restAt += sizeof head + head.size + 1;
  return true;
}

platform::NativeError OpenDirectories::reopen(Level& level, const platform::Listing& parent) {
  OwnedObject<platform::Listing> listing = newListing();
  platform::NativeError error = platform::openListed(parent, level.name, link_, *listing);
  platform::FileIdentity identity;
  if (error == 0) error = platform::identityOfListing(*listing, identity);
  if (error == 0 && identity != level.identity) error = kGone;
  if (error != 0)
    close(listing);
  else
    level.listing = std::move(listing);
  return error;
}

/// Opens the last levels again, from the top.
platform::NativeError OpenDirectories::resume() {
  platform::NativeError error = 0;
  for (std::size_t at = 1; at < levels_.size() && error == 0; ++at) {
    if (levels_[at].listing == nullptr) error = reopen(levels_[at], *levels_[at - 1].listing);
    // Only those nearest to the present one stay open.
    const bool isFar = at > 1 && at - 1 + kMaxOpen < levels_.size();
    if (isFar && levels_[at - 1].listing != nullptr) close(levels_[at - 1].listing);
  }
  return error;
}

bool OpenDirectories::isLoop() {
  Level& own = levels_.back();
  for (Level& level : levels_)
    if (identify(level) != 0) return false;
  return std::any_of(levels_.begin(), levels_.end() - 1,
                     [&own](const Level& level) { return level.identity == own.identity; });
}

}  // namespace vel::filesys
