#include "trace/trace_window.h"

#include <cerrno>
#include <cstring>

#include "platform/files.h"
#include "trace/trace_file_input.h"

namespace vel::trace {
namespace {

/// The bytes that one call of the system reads at most. They stay in the processor's cache until the records
/// in them have been read.
constexpr std::size_t kBlock = std::size_t{256} * 1024;

}  // namespace

platform::SystemError TraceWindow::open(std::string_view name, bool isFollowed) {
  if (name.empty() || name.find('\0') != std::string_view::npos) return ENOENT;
  name_ = copyText(name.data(), name.size());
  isFollowed_ = isFollowed;
  file_.reset(create<platform::ReadableFile>());
  const platform::SystemError error = isDirectory(name_.get()) ? EISDIR : file_->openShared(name_.get());
  if (error != 0) return isFollowed && error == ENOENT ? 0 : error;
  descriptor_ = file_->descriptor();
  identity_ = platform::identityOfFile(name_.get());
  return 0;
}

void TraceWindow::openStandardInput() {
  descriptor_ = platform::kStandardInput;
}

void TraceWindow::openBytes(const void* bytes, std::size_t size) {
  static constexpr unsigned char kNothing = 0;
  first_ = size != 0 ? static_cast<const unsigned char*>(bytes) : &kNothing;
  start_ = keep_ = 0;
  end_ = size;
  isAtEnd_ = true;
}

bool TraceWindow::read(std::uint64_t end) {
  while (end_ < end)
    if (!readBlock()) return false;
  return true;
}

bool TraceWindow::readBlock() {
  if (descriptor_ < 0 || error_ != 0 || isAtEnd_) return false;
  makeRoom();
  const auto used = static_cast<std::size_t>(end_ - start_);
  std::size_t size = 0;
  error_ = platform::readBytes(descriptor_, static_cast<unsigned char*>(buffer_.get()) + used, kBlock, size);
  if (error_ != 0) return false;
  end_ += size;
  isAtEnd_ = size == 0 && !isFollowed_;
  return size != 0;
}

/// Makes room for a block after the bytes in the window: moves those that are needed to the front and, if
/// that is not enough, to a buffer of twice the size.
void TraceWindow::makeRoom() {
  if (capacity_ - (end_ - start_) >= kBlock) return;
  const auto kept = static_cast<std::size_t>(end_ - keep_);
  const unsigned char* const source = first_ + (keep_ - start_);
  if (capacity_ < kept + kBlock) {
    const std::size_t capacity = 2 * (kept + kBlock);
    OwnedBlock larger(VelClMemoryManager::malloc(capacity));
    if (kept != 0) std::memcpy(larger.get(), source, kept);
    buffer_ = std::move(larger);
    capacity_ = capacity;
  } else if (kept != 0) {
    std::memmove(buffer_.get(), source, kept);
  }
  first_ = static_cast<const unsigned char*>(buffer_.get());
  start_ = keep_;
}

TraceWindow::Change TraceWindow::refresh() {
  if (!isFollowed_ || error_ != 0) return Change::None;
  if (descriptor_ < 0) return reopen();
  if (readBlock()) return Change::More;
  // While the old file is open, no other file can get its identity.
  const platform::FileIdentity identity = platform::identityOfFile(name_.get());
  if (identity == platform::FileIdentity()) return Change::None;
  platform::EntryStatus status{};
  const bool isShorter = platform::statusOf(name_.get(), status) == 0 && status.sizeInBytes < end_;
  if (identity == identity_ && !isShorter) return Change::None;
  return reopen();
}

TraceWindow::Change TraceWindow::reopen() {
  const bool isFirst = descriptor_ < 0;
  OwnedObject<platform::ReadableFile> file(create<platform::ReadableFile>());
  if (isDirectory(name_.get()) || file->openShared(name_.get()) != 0) return Change::None;
  file_ = std::move(file);
  descriptor_ = file_->descriptor();
  identity_ = platform::identityOfFile(name_.get());
  start_ = keep_ = end_ = 0;
  return isFirst ? Change::More : Change::Restarted;
}

}  // namespace vel::trace
