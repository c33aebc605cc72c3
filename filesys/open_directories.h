// The open directories on the way from the top of a tree to the directory that is being listed.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/allocator.h"
#include "platform/listing.h"

namespace vel::filesys {

/// Works at any depth with a bounded number of descriptors: of a deep path, only the top and the last levels
/// are open. A level that is closed keeps the names that were not listed yet, and is opened again from the
/// top, step by step, when the levels below it are done. It must be the same directory then.
class OpenDirectories {
 public:
  OpenDirectories() = default;
  OpenDirectories(const OpenDirectories&) = delete;
  OpenDirectories& operator=(const OpenDirectories&) = delete;
  ~OpenDirectories() { closeAll(); }

  /// Opens the top. `link` says whether links are followed, there and below.
  platform::NativeError openTop(const char* name, platform::DirectoryLink link);
  /// Below the top, links are refused or followed independently of the top.
  void treatLinksBelow(platform::DirectoryLink link) noexcept { link_ = link; }

  /// Enters a directory within the present one. After a failure, the present one is as before.
  platform::NativeError enter(std::string_view systemName);
  /// Returns to the parent. After a failure it has no further entries, and current() must not be used.
  platform::NativeError leave();
  /// Lists the next entry of the present directory.
  platform::NativeError next(platform::ListedEntry& entry, platform::ListingStep& step);

  void closeAll() noexcept;
  /// The present directory has no further entries.
  void endListing();

  bool isOpen() const noexcept { return !levels_.empty(); }
  const platform::Listing& current() const noexcept { return *levels_.back().listing; }
  /// The number of directories above the present one.
  std::size_t depth() const noexcept { return levels_.size() - 1; }
  /// Returns the name by which a level was entered; the top has none.
  std::string_view nameAt(std::size_t depth) const noexcept { return levels_[depth].name; }
  /// Whether the present directory is one of its own parents.
  bool isLoop();

 private:
  struct Level {
    OwnedObject<platform::Listing> listing;  ///< null while it is closed
    String name;
    platform::FileIdentity identity;  ///< zeros until it is needed
    Vector<char> rest;                ///< the entries that were not listed when it was closed
    std::size_t restAt = 0;
    bool isSuspended = false;
    platform::NativeError restError = 0;
  };

  OwnedObject<platform::Listing> newListing();
  void close(OwnedObject<platform::Listing>& listing);
  platform::NativeError identify(Level& level) noexcept;
  platform::NativeError suspend(Level& level);
  platform::NativeError keepRest(Level& level);
  bool takeRest(Level& level, platform::ListedEntry& entry) noexcept;
  platform::NativeError resume();
  platform::NativeError reopen(Level& level, const platform::Listing& parent);

  platform::DirectoryLink link_ = platform::DirectoryLink::Refuse;
  Vector<Level> levels_;
  Vector<OwnedObject<platform::Listing>> unused_;
};

}  // namespace vel::filesys
