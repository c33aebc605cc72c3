#include <algorithm>
#include <random>

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
