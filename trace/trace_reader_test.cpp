// Reads traces: fields, texts and values, failures and where they are, large records, and files that grow.
#include "vel_include/vel_trace_reader.h"

#include "platform/test/test.h"
#include "trace/test/random_trace.h"
#include "vel_include/vel_helpers.h"

namespace {

using vel::test::RandomTrace;
using vel::test::RecordHead;

class TraceReader : public vel::test::TraceTest {
 protected:
  /// Reads all records, each as "function: message", and the failure as "identifier at position".
  static std::string read(VelClTraceReader& reader) {
    std::string text;
    for ([[maybe_unused]] const VelStTraceRecord& record : reader)
      text += std::string(reader.getFunction()) + ": " + std::string(reader.getMessage()) + '\n';
    const VelClStatus& status = reader.getStatus();
    if (!status.isOk())
      text += std::string(velStatusGetIdName(status.getErrorId())) + " at " +
              std::to_string(status.getPosition());
    return text;
  }
  static std::string read(const std::string& bytes, std::uint32_t reading = TRACE_READ_PLAIN) {
    VelClTraceReader reader;
    EXPECT_TRUE(reader.openBytes(bytes.data(), bytes.size(), reading).isOk());
    return read(reader);
  }
  void append(const std::string& bytes) const {
    std::ofstream(file_, std::ios::binary | std::ios::app) << bytes;
  }
};

TEST_F(TraceReader, ReturnsWhatWasTraced) {
  for (const char* const compress : {"yes", "no"}) {
    VelClTraceInstance* const instance = start({{"DETAIL", "HIGH"}, {"COMPRESS", compress}});
    if (std::string(compress) == "no") instance->getEnvironment().getSettings().enableCompression(false);
    instance->enable();
    velTraceValue(VelEnTraceDetail::HIGH, 7, "run", "answer", std::int16_t{-42});
    instance->dump(VelEnTraceDetail::LOW, 0, VelEnTraceDataType::C_STRING, "2nd \xE4", "", "text", 4);
    velTraceDeleteInstance();
    VelClTraceReader reader;
    ASSERT_TRUE(reader.open(file_).isOk());
    ASSERT_TRUE(reader.next());
    const VelStTraceRecord first = *reader.getRecord();
    EXPECT_EQ(first.isCompressed, std::string(compress) == "yes" ? 1U : 0U);
    EXPECT_EQ(first.offset, 0U);
    EXPECT_EQ(first.componentId, 7U);
    EXPECT_EQ(first.detail, VelEnTraceDetail::HIGH);
    EXPECT_EQ(first.type, VelEnTraceDataType::SIGNED_16);
    EXPECT_STREQ(velTraceGetTypeName(first.type), "signed integer (16 bits)");
    EXPECT_LT(velGetTimeStamp() - first.timeStamp, 60'000U);
    EXPECT_EQ(reader.getFunction(), "run");
    EXPECT_EQ(reader.getMessage(), "answer");
    char value[32];
    EXPECT_EQ(velTraceRecordGetValueText(reader.getRecord(), value, sizeof value), 10U);
    EXPECT_STREQ(value, "0xFFD6/-42");
    EXPECT_EQ(velTraceRecordGetValueText(reader.getRecord(), value, 4), 10U);
    EXPECT_STREQ(value, "0xF");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getRecord()->offset, first.size);
    EXPECT_EQ(reader.getRecord()->processId, first.processId);
    EXPECT_EQ(reader.getFunction(), "2nd \xE4");
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(reader.getRecord()->data), 4), "text");
    EXPECT_EQ(velTraceRecordGetValueText(reader.getRecord(), value, sizeof value), 0U);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.getFunction(), "");
    EXPECT_TRUE(reader.getStatus().isOk());
    std::filesystem::remove(file_);
  }
}

TEST_F(TraceReader, ReportsDamageAndItsPlace) {
  RandomTrace trace(1);
  const RecordHead head = RandomTrace::headOf(1);
  trace.add(head, "", "f", "0123");
  trace.add(head, "", "g", "0123");
  const std::string good = trace.bytes();
  EXPECT_EQ(read(good), "f: \ng: \n");
  for (std::size_t size = 26; size < good.size(); ++size)
    EXPECT_EQ(read(good.substr(0, size)), "f: \nTRACEFORMAT_UNEXPECTED_EOF at 26") << size;
  std::string bad = good;
  bad[25] = 22;
  EXPECT_EQ(read(bad), "f: \nTRACEFORMAT_FILE_CORRUPTED at 26");
  // Data longer than a ring can be.
  bad[25] = 4;
  bad[44] = 2;
  EXPECT_EQ(read(bad), "f: \nTRACEFORMAT_FILE_CORRUPTED at 26");
  EXPECT_EQ(read(""), "");
  VelClTraceReader reader;
  const VelClStatus missing = reader.open(directory_.path("absent"));
  EXPECT_EQ(missing.getErrorId(), static_cast<unsigned long>(FILE_COULD_NOT_OPEN));
  EXPECT_EQ(missing.getClass(), VelEnErrorClass::IO_NOT_EXISTENT);
  EXPECT_FALSE(reader.open(directory_.path()).isOk());
  EXPECT_FALSE(reader.open(std::string_view("a\0b", 3)).isOk());
  EXPECT_FALSE(reader.next());
}

TEST_F(TraceReader, PassesOverWhatIsNotSelected) {
  RandomTrace trace(4);
  trace.add(2000);
  VelStTraceSelection all{0, UINT32_MAX, 0, UINT32_MAX, 0, UINT32_MAX, VelEnTraceDetail::HIGH, 0, {}};
  std::fill(std::begin(all.components), std::end(all.components), 0xFF);
  VelStTraceSelection some = all;
  some.firstThread = some.lastThread = 4714;
  some.detail = VelEnTraceDetail::LOW;
  some.firstTime = 1'000'500;
  some.lastTime = 1'002'000;
  some.components[0] = 0x0F;
  some.components[1] = 0;
  for (const std::uint32_t reading : {TRACE_READ_PLAIN, TRACE_READ_RECOVER})
    for (const std::uint32_t keepsFunctions : {0U, 1U}) {
      some.keepsFunctions = keepsFunctions;
      std::vector<std::uint64_t> expected, found;
      VelClTraceReader reader;
      ASSERT_TRUE(reader.openBytes(trace.bytes().data(), trace.bytes().size(), reading).isOk());
      for (const VelStTraceRecord& record : reader) {
        const bool isFunction = record.type == VelEnTraceDataType::FUNCTION_ENTRY ||
                                record.type == VelEnTraceDataType::FUNCTION_EXIT;
        if ((isFunction && keepsFunctions != 0) ||
            (record.threadId == 4714 && record.detail <= VelEnTraceDetail::LOW &&
             record.timeStamp >= 1'000'500 && record.timeStamp <= 1'002'000 && record.componentId < 4))
          expected.push_back(record.offset);
      }
      ASSERT_TRUE(reader.openBytes(trace.bytes().data(), trace.bytes().size(), reading).isOk());
      reader.select(&some);
      for (const VelStTraceRecord& record : reader) found.push_back(record.offset);
      EXPECT_EQ(found, expected);
      EXPECT_GT(found.size(), 10U);
      EXPECT_EQ(reader.getSkippedBytes(), 0U);
    }
}

/// A ring that another process has mapped: its pointers are those of that process.
TEST_F(TraceReader, ReadsTheMemoryOfARing) {
  for (const std::size_t written : {10U, 100U, 1000U}) {
    std::vector<char> memory(4096);
    const VelClResourceKeySemaphore key("unit", nullptr);
    const auto environmentOfRing = environment();
    VelClTraceBufferManager manager(key, memory.data(), memory.size());
    for (std::size_t i = 0; i < written; ++i) {
      const std::string message = "number " + std::to_string(i);
      manager.write(VelClTraceEntry(*environmentOfRing, VelEnTraceDetail::LOW, 1,
                                    VelEnTraceDataType::UNSIGNED_64, "f", message.c_str(), &i, sizeof i));
    }
    const std::vector<char> copy = memory;
    VelClTraceReader reader;
    ASSERT_TRUE(reader.openBytes(copy.data(), copy.size()).isOk());
    std::size_t count = 0;
    std::string last;
    for ([[maybe_unused]] const VelStTraceRecord& record : reader) {
      last = reader.getMessage();
      ++count;
    }
    EXPECT_EQ(last, "number " + std::to_string(written - 1));
    EXPECT_EQ(reader.getSkippedBytes() < 60, true);
    EXPECT_GE(count, std::min<std::size_t>(written, 90));
    memory[8] = 1;
    EXPECT_EQ(reader.openBytes(memory.data(), memory.size()).getErrorId(),
              static_cast<unsigned long>(TRACEFORMAT_FILE_CORRUPTED));
  }
}

/// The window moves over the file, and grows for the records that are larger.
TEST_F(TraceReader, ReadsFilesOfAnySize) {
  RandomTrace trace(2);
  const RecordHead head = RandomTrace::headOf(0x24, 1'010'000);
  for (const unsigned int size : {300'000U, 1U, 5'000'000U, 262'144U}) {
    trace.add(3000);
    trace.add(head, "large", "run", std::string(size, 'x'));
  }
  append(trace.bytes());
  for (const std::uint32_t reading : {TRACE_READ_PLAIN, TRACE_READ_RECOVER}) {
    VelClTraceReader reader;
    ASSERT_TRUE(reader.open(file_, reading).isOk());
    auto expected = trace.records().begin();
    for (const VelStTraceRecord& record : reader) {
      ASSERT_EQ(record.offset, expected->offset);
      ASSERT_EQ(record.size, expected->size);
      ASSERT_TRUE(std::equal(record.data, record.data + record.dataSize,
                             reinterpret_cast<const unsigned char*>(trace.bytes().data()) + record.offset +
                                 record.size - record.dataSize));
      ++expected;
    }
    EXPECT_EQ(expected, trace.records().end());
    EXPECT_TRUE(reader.getStatus().isOk());
  }
}

TEST_F(TraceReader, FollowsAFileThatIsWritten) {
  RandomTrace trace(3);
  trace.add(5);
  for (const std::uint32_t recover : {TRACE_READ_PLAIN, TRACE_READ_RECOVER}) {
    std::filesystem::remove(file_);
    VelClTraceReader reader;
    ASSERT_TRUE(reader.open(file_, recover | TRACE_READ_FOLLOW).isOk());
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.wait(0));
    // Byte by byte: a record that is not complete is held back.
    std::size_t count = 0;
    for (std::size_t i = 0; i < trace.bytes().size(); ++i) {
      append(trace.bytes().substr(i, 1));
      ASSERT_TRUE(reader.wait(10'000));
      const bool isComplete = i + 1 == trace.records()[count].offset + trace.records()[count].size;
      ASSERT_EQ(reader.next(), isComplete) << i;
      count += isComplete ? 1 : 0;
    }
    EXPECT_EQ(count, 5U);
    // Truncated in place, with less in it than before.
    const std::string rest = trace.bytes().substr(trace.records()[3].offset);
    { std::ofstream(file_, std::ios::binary | std::ios::trunc) << rest; }
    ASSERT_TRUE(reader.wait(10'000));
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getRecord()->offset, 0U);
    EXPECT_EQ(reader.getRecord()->size, trace.records()[3].size);
    ASSERT_TRUE(reader.next());
    // Rotated: what is left in the old file comes first, and its incomplete end is skipped.
    append(trace.bytes().substr(0, trace.records()[0].size) + "half");
    std::filesystem::remove(file_ + ".1");
    std::filesystem::rename(file_, file_ + ".1");
    append(trace.bytes());
    ASSERT_TRUE(reader.wait(10'000));
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getRecord()->size, trace.records()[0].size);
    EXPECT_FALSE(reader.next());
    ASSERT_TRUE(reader.wait(10'000));
    for (const auto& record : trace.records()) {
      ASSERT_TRUE(reader.next());
      EXPECT_EQ(reader.getRecord()->offset, record.offset);
    }
    EXPECT_EQ(reader.getRestarts(), 2U);
    EXPECT_EQ(reader.getSkippedBytes(), 4U);
    EXPECT_TRUE(reader.getStatus().isOk());
  }
}

}  // namespace
