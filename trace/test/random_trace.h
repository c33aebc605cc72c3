// Traces with known records, as the recording side writes them, for tests and fuzz targets of the reader.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "trace/test/trace_fixture.h"
#include "trace/text_compression.h"

namespace vel::test {

/// Where a record is in a file.
struct Extent {
  std::size_t offset, size;
};

class RandomTrace {
 public:
  explicit RandomTrace(std::uint32_t seed) : random_(seed) {}

  /// Appends records of a few processes and threads, with data of every type, in the order of time.
  void add(std::size_t count) {
    for (; count > 0; --count) addRecord();
  }
  void add(RecordHead head, const std::string& message, const std::string& origin, const std::string& data) {
    const std::string storedMessage = stored(message, head.type), storedOrigin = stored(origin, head.type);
    head.messageLength = static_cast<std::uint8_t>(storedMessage.size());
    head.originLength = static_cast<std::uint8_t>(storedOrigin.size());
    head.dataLength = static_cast<std::uint32_t>(data.size());
    const std::size_t offset = bytes_.size();
    bytes_.append(reinterpret_cast<const char*>(&head), sizeof head);
    bytes_ += storedMessage + storedOrigin + data;
    records_.push_back({offset, bytes_.size() - offset});
  }

  /// Returns a head for add().
  static RecordHead headOf(std::uint8_t type, std::uint32_t time = 0) {
    return {type, 0, 0, 0, time, 4711, 4711, 0};
  }

  const std::string& bytes() const { return bytes_; }
  const std::vector<Extent>& records() const { return records_; }
  std::uint32_t below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

 private:
  static std::string stored(const std::string& text, unsigned int type) {
    if ((type & 0x20) == 0) return text.substr(0, 255);
    unsigned char out[trace::kMaxCompressedSize + trace::kSlack];
    const std::size_t size = trace::compress(text.c_str(), std::min<std::size_t>(text.size(), 340), out);
    return {reinterpret_cast<const char*>(out), size};
  }
  std::string randomData(std::size_t size) {
    std::string data(size, '\0');
    // Small numbers and text are likelier than random bytes.
    const std::uint32_t kind = below(3);
    for (char& byte : data)
      byte = static_cast<char>(kind == 0 ? below(256) : kind == 1 ? below(8) : 'a' + below(26));
    return data;
  }
  void addRecord() {
    static constexpr std::size_t kSizes[] = {0, 4, 4, 0, 0, 0, 0, 8, 0, 0, 1,
                                             1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 16};
    static constexpr const char* kMessages[] = {"", "opened", "connection accepted from 10.0.0.7",
                                                "size of the buffer: 4096", "Gr\xC3\xB6\xC3\x9F\x65"};
    static constexpr const char* kOrigins[] = {"run", "Service::accept", "settings", "Parser::nextToken"};
    time_ += below(4);
    const std::uint32_t thread = below(5);
    const auto type = static_cast<std::uint8_t>(1 + below(21));
    std::size_t size = kSizes[type];
    if (type == 4 || type == 8 || type == 9) size = below(8) == 0 ? below(3000) : below(100);
    RecordHead head{};
    head.type = static_cast<std::uint8_t>(type | (below(4) == 0 ? 0 : 0x20) | below(4) << 6);
    head.component = static_cast<std::uint8_t>(below(9));
    head.time = time_;
    head.process = thread < 3 ? 4711 : 4790;
    head.thread = 4711 + thread * 3;
    add(head, kMessages[below(std::size(kMessages))], kOrigins[below(std::size(kOrigins))], randomData(size));
  }

  std::mt19937 random_;
  std::uint32_t time_ = 1'000'000;
  std::string bytes_;
  std::vector<Extent> records_;
};

}  // namespace vel::test
