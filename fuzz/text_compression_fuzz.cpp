// Compresses and decompresses trace texts, compared with a reference that works bit by bit.
#include "fuzz/bytes.h"
#include "trace/test/reference_compression.h"
#include "trace/text_compression.h"

namespace fuzz::text_compression {

namespace {

void requireUnpacked(std::string_view stored) {
  const std::unique_ptr<char[]> out(new char[stored.size() * 8 / 6 + 1 + vel::trace::kSlack]);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(stored.data());
  const std::size_t size = vel::trace::decompress(bytes, stored.size(), out.get());
  require(std::string_view(out.get(), size + 1) == unpacked(std::string(stored)) + '\0');
}

void run(Bytes input) {
  const std::string_view text = input.rest();
  requireUnpacked(text);
  const std::unique_ptr<unsigned char[]> out(
      new unsigned char[vel::trace::kMaxCompressedSize + vel::trace::kSlack]);
  const std::size_t length = vel::trace::compress(text.data(), text.size(), out.get());
  const std::string stored(out.get(), out.get() + length);
  require(stored == packed(std::string(text)));
  requireUnpacked(stored);
}

const Target target("text_compression", run);

}  // namespace

}  // namespace fuzz::text_compression
