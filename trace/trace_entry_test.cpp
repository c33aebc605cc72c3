#include <algorithm>
#include <random>

#include "trace/encode_block.h"
#include "trace/test/reference_compression.h"
#include "trace/test/trace_fixture.h"
#include "trace/text_compression.h"

namespace {

class TraceEntry : public vel::test::TraceTest {
 protected:
  VelClTraceEntry entry(const char* origin, const char* message, const void* data = "",
                        std::size_t size = 0) const {
    return {
        *environment_, VelEnTraceDetail::HIGH, 0x1234, VelEnTraceDataType::C_STRING, origin, message, data,
        size};
  }
  static std::string bytes(const VelClTraceEntry& entry) {
    return {entry.getEntryData(), entry.getSizeOfEntryData()};
  }

  std::unique_ptr<VelClTraceEnvironment> environment_ = environment();
};

TEST_F(TraceEntry, HasThePrescribedBytes) {
  environment_->getSettings().enableCompression(false);
  const std::string record = bytes(entry("main", "hello", "abc", 3));
  EXPECT_EQ(record.substr(0, 4), "\xC8\x34\x05\x04");
  EXPECT_EQ(record.substr(16), std::string("\3\0\0\0hellomain", 13));
  vel::test::RecordHead head{};
  std::memcpy(&head, record.data(), sizeof head);
  EXPECT_EQ(head.process, VelClProcessProperty().getProcessId());
  std::istringstream stream(record);
  VelClTraceFileEntry read(*environment_);
  ASSERT_TRUE(read.read(stream));
  EXPECT_EQ(read.getThreadId(), VelClThreadProperty().getThreadId());
  EXPECT_EQ(read.getSizeOfEntryData(), record.size() + 2);
}

TEST_F(TraceEntry, CompressesItsTexts) {
  const std::string record = bytes(entry("main", "Hello World"));
  EXPECT_EQ(record.substr(0, 4), "\xE8\x34\x09\x03");
  EXPECT_EQ(record.substr(20), packed("Hello World") + packed("main"));
  std::istringstream stream(record);
  VelClTraceFileEntry read(*environment_);
  ASSERT_TRUE(read.read(stream));
  EXPECT_EQ(std::string(read.getMessage(), read.getMessageLength()), "Hello World");
  EXPECT_STREQ(read.getOrigin(), "main");
  EXPECT_FLOAT_EQ(environment_->getCompressionRate(), 0.8F);
}

// More texts, with the processor's instructions, are fuzz/text_compression_fuzz.cpp's matter.
TEST(TextCompression, StoresTheCodesAndReadsThemBack) {
  std::mt19937 random(1);
  for (std::size_t size = 0; size < 400; ++size) {
    std::string text;
    while (text.size() < size)
      text += static_cast<char>(random() % 40 < size % 5 ? 1 + random() % 255 : 'A' + random() % 26);
    unsigned char stored[vel::trace::kLongestCompressed + vel::trace::kSlack];
    const std::size_t length = vel::trace::compress(text.data(), size, stored);
    ASSERT_EQ(std::string(stored, stored + length), packed(text));
    char back[vel::trace::kLongestPlain + 1 + vel::trace::kSlack];
    const std::size_t whole = vel::trace::decompress(stored, length, back);
    std::ranges::replace(text, '\xFF', ' ');
    ASSERT_EQ(back, text.substr(0, whole));
  }
}

TEST_F(TraceEntry, MarksMissingAndClippedData) {
  EXPECT_EQ(entry("f", "m", nullptr, 5).getType(), VelEnTraceDataType::DATA_NULL);
  EXPECT_EQ(entry("f", "m", nullptr, 5).getDumpDataLength(), 0U);
  const std::string data(environment_->getBufferSize() + 1, 'x');
  EXPECT_EQ(entry("f", "m", data.data(), data.size() - 1).getType(), VelEnTraceDataType::C_STRING);
  const VelClTraceEntry clipped = entry("f", "m", data.data(), data.size());
  EXPECT_EQ(clipped.getType(), VelEnTraceDataType::DATA_CLIPPED);
  EXPECT_EQ(clipped.getDumpDataLength(), data.size() - 1);
}

TEST_F(TraceEntry, ChangesTypeAndDetail) {
  VelClTraceEntry changed = entry("f", "m");
  changed.setDetail(VelEnTraceDetail::LOW);
  EXPECT_TRUE(changed.isCompressed());
  changed.setType(VelEnTraceDataType::FLOAT_32);
  EXPECT_FALSE(changed.isCompressed()) << "only the detail is kept";
  changed.setCompressFlag();
  EXPECT_EQ(changed.getEntryData()[0], '\x73');
}

TEST_F(TraceEntry, CutsPlainTexts) {
  environment_->getSettings().enableCompression(false);
  const std::string text(300, 'x');
  const VelClTraceEntry cut = entry(nullptr, text.c_str());
  EXPECT_EQ(cut.getCompressedMessageLength(), 255U);
  EXPECT_EQ(cut.getCompressedOriginLength(), 0U);
}

/// The 12 bytes of a block whose codes are all wanted; "refused" if one of its characters has none.
template <typename Encode>
std::string encoded(Encode encode, const std::string& text) {
  vel::trace::EncodedBlock block{};
  const auto characters = vel::trace::loadBlock(reinterpret_cast<const unsigned char*>(text.data()));
  if (!encode(characters, vel::trace::kAllCharacters, block)) return "refused";
  std::string bytes;
  for (const std::uint64_t half : {block.first, block.second})
    for (int shift = 56; shift > 8; shift -= 8) bytes += static_cast<char>(half >> shift);
  return bytes;
}

TEST(EncodeBlock, GivesEachCharacterItsCodeInEachPlace) {
  const std::string blanks(vel::trace::kBlockLength, ' ');
  for (std::size_t place = 0; place < blanks.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = blanks;
      text[place] = static_cast<char>(byte);
      const std::string expected = packed(text).size() == 12 ? packed(text) : "refused";
      EXPECT_EQ(encoded(vel::trace::encodeBlockPortably, text), expected) << byte << " at " << place;
      const bool isLetterOrBlank = byte == ' ' || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
      const std::string fast = encoded(vel::trace::encodeBlock, text);
      if (isLetterOrBlank || fast != "refused") {
        EXPECT_EQ(fast, expected) << byte << " at " << place;
      }
    }
  }
}

/// The codes of the last `count` characters of a block.
std::string lastCodes(const vel::trace::EncodedBlock& block, std::size_t count) {
  std::string codes;
  for (std::size_t i = vel::trace::kBlockLength - count; i < vel::trace::kBlockLength; ++i)
    codes += static_cast<char>((i < 8 ? block.first : block.second) >> (58 - 6 * (i % 8)) & 63);
  return codes;
}

TEST(EncodeBlock, IsPortable) {
  std::mt19937 random(2);
  std::size_t accepted = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::size_t count = 1 + random() % vel::trace::kBlockLength;
    unsigned char text[vel::trace::kBlockLength];
    for (unsigned char& c : text) {
      const auto letter = static_cast<unsigned char>("Some letters"[random() % 12]);
      c = random() % 40 == 0 ? static_cast<unsigned char>(random()) : letter;
    }
    const auto characters = count == vel::trace::kBlockLength ? vel::trace::loadBlock(text)
                                                              : vel::trace::loadTail(text + count, count);
    const unsigned int wanted = vel::trace::kAllCharacters & vel::trace::kAllCharacters << (16 - count);
    vel::trace::EncodedBlock fast{};
    vel::trace::EncodedBlock portable{};
    if (!vel::trace::encodeBlock(characters, wanted, fast)) continue;
    ++accepted;
    ASSERT_TRUE(vel::trace::encodeBlockPortably(characters, wanted, portable)) << "round " << round;
    ASSERT_EQ(lastCodes(fast, count), lastCodes(portable, count)) << "round " << round;
  }
  EXPECT_GT(accepted, 10000U);
}

TEST_F(TraceEntry, ReadsCutRecords) {
  VelClTraceFileEntry read(*environment_);
  environment_->getSettings().enableCompression(false);
  const std::string whole = bytes(entry("origin", "message"));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    std::istringstream longer(bytes(entry("origin of another record", "its message")));
    EXPECT_TRUE(read.read(longer));
    std::istringstream stream(whole.substr(0, length));
    EXPECT_FALSE(read.read(stream)) << length;
    EXPECT_EQ(read.getType() == VelEnTraceDataType::NOTHING, length < 20) << length;
    EXPECT_TRUE(stream.eof());
    const std::size_t arrived = std::min<std::size_t>(length < 20 ? 0 : length - 20, 7);
    EXPECT_EQ(std::string(read.getCompressedMessage(), 7).c_str(), whole.substr(20, arrived)) << length;
    EXPECT_FALSE(read.read(stream)) << "behind the end";
  }
}

}  // namespace
