// Recovers damaged traces: which records are found, and that nothing is taken for a record that is none.
#include "platform/test/test.h"
#include "trace/test/random_trace.h"
#include "vel_include/vel_trace_reader.h"

namespace {

using vel::test::Extent;
using vel::test::RandomTrace;
using vel::test::RecordHead;

enum class Damage { Overwrite, Zero, Delete, Insert };

/// A trace with one damaged place, and where each of its bytes is now.
struct Damaged {
  Damaged(const RandomTrace& trace, Damage damage, std::size_t place, std::size_t count, std::mt19937& random)
      : bytes(trace.bytes()), from(place), to(std::min(place + count, bytes.size())) {
    if (damage == Damage::Insert) to = from;
    std::string noise(damage == Damage::Delete ? 0 : damage == Damage::Insert ? count : to - from, '\0');
    if (damage != Damage::Zero)
      for (char& byte : noise) byte = static_cast<char>(random());
    bytes.replace(from, to - from, noise);
    added = noise.size();
  }

  /// Whether no byte of the record was changed, and none was inserted within it.
  bool isIntact(const Extent& record) const {
    return record.offset + record.size <= from || record.offset >= to;
  }
  /// Whether bytes were deleted within these: the start of one record and the end of another can have a
  /// fitting size, which cannot be told without a checksum.
  bool isJoint(std::size_t offset, std::size_t size) const {
    return added == 0 && to > from && offset < from && from < offset + size;
  }
  /// Where the end of a record is now; `from` if it is gone.
  std::size_t endOf(const Extent& record) const {
    const std::size_t end = record.offset + record.size;
    if (end <= from || added == to - from) return end;
    return end <= to ? from : end - (to - from) + added;
  }

  std::string bytes;
  std::size_t from, to;
  std::size_t added = 0;
};

/// The records that the reader finds, as offset and size.
std::map<std::size_t, std::size_t> recovered(const std::string& bytes) {
  VelClTraceReader reader;
  EXPECT_TRUE(reader.openBytes(bytes.data(), bytes.size(), TRACE_READ_RECOVER).isOk());
  std::map<std::size_t, std::size_t> found;
  std::uint64_t end = 0, skipped = 0, places = 0, total = 0;
  for (const VelStTraceRecord& record : reader) {
    EXPECT_EQ(record.offset, end + record.skipped);
    found[record.offset] = record.size;
    end = record.offset + record.size;
    skipped += record.skipped;
    places += record.skipped != 0 ? 1 : 0;
  }
  EXPECT_TRUE(reader.getStatus().isOk()) << reader.getStatus().getText();
  EXPECT_EQ(reader.getOffset(&total), bytes.size());
  EXPECT_EQ(total, bytes.size() - end);
  EXPECT_EQ(reader.getSkippedBytes(&total), skipped + bytes.size() - end);
  EXPECT_EQ(total, places + (end < bytes.size() ? 1 : 0));
  return found;
}

struct Score {
  std::size_t intact = 0, missing = 0, wrong = 0;

  void add(const RandomTrace& trace, const Damaged& damaged) {
    auto found = recovered(damaged.bytes);
    for (const Extent& record : trace.records()) {
      const bool isIntact = damaged.isIntact(record);
      // A record with changed bytes may be shown if its end and size are right: it has no checksum.
      const auto shown = found.find(damaged.endOf(record) - record.size);
      const bool isShown = shown != found.end() && shown->second == record.size;
      if (isShown) found.erase(shown);
      intact += isIntact ? 1 : 0;
      missing += isIntact && !isShown ? 1 : 0;
    }
    for (const auto& [offset, size] : found) wrong += damaged.isJoint(offset, size) ? 0U : 1U;
  }
};

TEST(TraceRecovery, FindsTheRecordsAroundAnyDamage) {
  Score score;
  std::mt19937 random(7);
  for (std::uint32_t round = 0; round < 150; ++round) {
    RandomTrace trace(round);
    trace.add(600);
    for (const Damage damage : {Damage::Overwrite, Damage::Zero, Damage::Delete, Damage::Insert}) {
      const std::size_t count = 1 + random() % (round % 2 == 0 ? 4096 : 24);
      const Damaged damaged(trace, damage, random() % trace.bytes().size(), count, random);
      const Score before = score;
      score.add(trace, damaged);
      EXPECT_EQ(score.wrong, before.wrong) << "round " << round << ", damage " << static_cast<int>(damage)
                                           << " of " << count << " bytes at " << damaged.from;
      EXPECT_LE(score.missing - before.missing, 6U) << round << ' ' << static_cast<int>(damage);
    }
  }
  EXPECT_EQ(score.wrong, 0U);
  EXPECT_LT(score.missing * 1000, score.intact) << score.missing << " of " << score.intact;
}

/// Returns the offset and size of each record, as recovered() does.
std::map<std::size_t, std::size_t> extentsOf(const RandomTrace& trace) {
  std::map<std::size_t, std::size_t> extents;
  for (const Extent& record : trace.records()) extents[record.offset] = record.size;
  return extents;
}

TEST(TraceRecovery, ReadsWhatIsNotDamagedUpToAnyEnd) {
  RandomTrace trace(1);
  trace.add(40);
  EXPECT_EQ(recovered(trace.bytes()), extentsOf(trace));
  for (std::size_t size = 0; size < trace.bytes().size(); ++size) {
    auto expected = extentsOf(trace);
    std::erase_if(expected, [size](const auto& record) { return record.first + record.second > size; });
    EXPECT_EQ(recovered(trace.bytes().substr(0, size)), expected) << size;
  }
}

TEST(TraceRecovery, FindsNoRecordsInOtherBytes) {
  std::mt19937 random(3);
  std::string noise(300'000, '\0'), text;
  EXPECT_EQ(recovered(noise).size(), 0U);
  for (char& byte : noise) byte = static_cast<char>(random());
  EXPECT_EQ(recovered(noise).size(), 0U);
  for (char& byte : noise) byte = static_cast<char>(random() % 9);
  EXPECT_EQ(recovered(noise).size(), 0U);
  for (int line = 0; line < 5000; ++line) text += "line " + std::to_string(line) + " of a log\n";
  EXPECT_EQ(recovered(text).size(), 0U);
}

// The data of a record may be a trace: a dump of a ring, for example.
TEST(TraceRecovery, DoesNotTakeDataForRecords) {
  RandomTrace inner(5), trace(6);
  inner.add(30);
  const RecordHead head = RandomTrace::headOf(0x24, 1'002'000);
  trace.add(20);
  trace.add(head, "ring", "run", inner.bytes());
  trace.add(20);
  EXPECT_EQ(recovered(trace.bytes()), extentsOf(trace));
  // The record after it is damaged, wholly or in its length. Then the record with the data may be missing.
  for (const unsigned int from : {0U, 8U, 16U}) {
    std::string bytes = trace.bytes();
    auto allowed = extentsOf(trace);
    const std::size_t damaged = trace.records()[21].offset;
    for (std::size_t i = from; i < 20; ++i) bytes[damaged + i] = '\x7F';
    auto found = recovered(bytes);
    EXPECT_GE(found.size(), 39U) << from;
    allowed.erase(damaged);
    for (const auto& record : found) EXPECT_EQ(allowed.count(record.first), 1U) << record.first - damaged;
  }
}

// A length that was damaged so that the record ends where another one does.
TEST(TraceRecovery, DoesNotLetARecordSwallowOthers) {
  RandomTrace trace(8);
  RecordHead head = RandomTrace::headOf(0x28, 1'000'000);
  for (int i = 0; i < 50; ++i, head.time += 10) trace.add(head, "sent", "Socket::write", "0123456789");
  const Extent first = trace.records()[20];
  for (const std::uint32_t swallowed : {1U, 5U, 29U}) {
    std::string bytes = trace.bytes();
    const auto length = static_cast<std::uint32_t>(10 + swallowed * first.size);
    std::memcpy(&bytes[first.offset + 16], &length, sizeof length);
    auto expected = extentsOf(trace);
    expected.erase(first.offset);
    EXPECT_EQ(recovered(bytes), expected) << swallowed;
  }
}

}  // namespace
