// Trace records: their bytes, and reading them back. Texts of any length in the 6-bit code are
// fuzz/text_compression_fuzz.cpp's work.
#include "trace/encode_block.h"
#include "trace/test/reference_compression.h"
#include "trace/test/trace_fixture.h"

namespace {

using testing::AnyOf;

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

TEST_F(TraceEntry, StoresHeadMessageOriginAndData) {
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

TEST_F(TraceEntry, StoresMessageAndOriginCompressed) {
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

TEST_F(TraceEntry, MarksNullDataAndClipsDataLargerThanTheRing) {
  EXPECT_EQ(entry("f", "m", nullptr, 5).getType(), VelEnTraceDataType::DATA_NULL);
  EXPECT_EQ(entry("f", "m", nullptr, 5).getDumpDataLength(), 0U);
  const std::string data(environment_->getBufferSize() + 1, 'x');
  EXPECT_EQ(entry("f", "m", data.data(), data.size() - 1).getType(), VelEnTraceDataType::C_STRING);
  const VelClTraceEntry clipped = entry("f", "m", data.data(), data.size());
  EXPECT_EQ(clipped.getType(), VelEnTraceDataType::DATA_CLIPPED);
  EXPECT_EQ(clipped.getDumpDataLength(), data.size() - 1);
}

TEST_F(TraceEntry, SetTypeKeepsOnlyTheDetail) {
  VelClTraceEntry changed = entry("f", "m");
  changed.setDetail(VelEnTraceDetail::LOW);
  EXPECT_TRUE(changed.isCompressed());
  changed.setType(VelEnTraceDataType::FLOAT_32);
  EXPECT_FALSE(changed.isCompressed());
  changed.setCompressFlag();
  EXPECT_EQ(changed.getEntryData()[0], '\x73');
}

TEST_F(TraceEntry, CutsAnUncompressedMessageTo255Bytes) {
  environment_->getSettings().enableCompression(false);
  const std::string text(300, 'x');
  const VelClTraceEntry cut = entry(nullptr, text.c_str());
  EXPECT_EQ(cut.getCompressedMessageLength(), 255U);
  EXPECT_EQ(cut.getCompressedOriginLength(), 0U);
}

/// The 12 bytes of a block; "refused" if the encoder does not accept one of the wanted characters.
template <typename Encode>
std::string encoded(Encode encode, const std::string& text, unsigned int wanted) {
  vel::trace::EncodedBlock block{};
  const auto characters = vel::trace::loadBlock(reinterpret_cast<const unsigned char*>(text.data()));
  if (!encode(characters, wanted, block)) return "refused";
  std::string bytes;
  for (const std::uint64_t half : {block.first, block.second})
    for (int shift = 56; shift > 8; shift -= 8) bytes += static_cast<char>(half >> shift);
  return bytes;
}

TEST(EncodeBlock, EncodesEachCharacterInEachPlace) {
  using vel::trace::encodeBlock, vel::trace::encodeBlockPortably, vel::trace::kAllCharacters;
  const std::string blanks(vel::trace::kBlockLength, ' ');
  for (std::size_t place = 0; place < blanks.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = blanks;
      text[place] = static_cast<char>(byte);
      const std::string expected = packed(text).size() == 12 ? packed(text) : "refused";
      SCOPED_TRACE(std::to_string(byte) + " at " + std::to_string(place));
      EXPECT_EQ(encoded(encodeBlockPortably, text, kAllCharacters), expected);
      EXPECT_NE(encoded(encodeBlockPortably, text, kAllCharacters & ~(1U << place)), "refused");
      const bool isLetterOrBlank = byte == ' ' || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
      // The one for the processor may refuse other characters.
      EXPECT_THAT(encoded(encodeBlock, text, kAllCharacters),
                  AnyOf(expected, isLetterOrBlank ? expected : "refused"));
    }
  }
}

TEST_F(TraceEntry, ReadFailsForATruncatedRecord) {
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
    EXPECT_FALSE(read.read(stream)) << "after the end";
  }
}

}  // namespace
