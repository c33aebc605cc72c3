// Compares every set of kernels that this processor can run with slow reference implementations, on buffers
// that lie against inaccessible pages. Random texts are left to fuzz/codepage_fuzz.cpp.
#include "codepage/kernels/kernels.h"

#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_mixed.h"
#include "codepage/test/reference_utf8.h"
#include "platform/test/guarded_memory.h"
#include "platform/test/test.h"

namespace {

using vel::codepage::Cursor;
using vel::codepage::Kernels;
using vel::codepage::kPortableKernels;

std::string repeated(std::string_view piece, std::size_t size) {
  std::string text;
  while (text.size() < size) text += piece;
  return text;
}

const VelStDoubleByteTable& doubleByteTable(unsigned int number) {
  bool isEbcdic = false;
  return *velGetDBCStoUCS2Table(number, isEbcdic);
}

/// The bytes that the vector kernels convert at a time.
constexpr std::size_t kBlock = 64;
/// Vector kernels write the result of at least this many bytes with streaming stores.
constexpr std::size_t kStreamedSize = std::size_t{8} << 20;

constexpr std::string_view kOfEachLength = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
constexpr std::string_view kLeadBytes = "A\xA4\x40\xA4\x41\xA4\x42yz";
constexpr std::string_view kShifted = "\xC1\x0E\x42\xC1\x42\xC2\x42\xC3\x0F\xC2\x15";

TEST(Kernels, LookUpBytesOfLongTextsForAnyAlignmentOfTheTarget) {
  std::uint16_t table[256];
  for (unsigned int i = 0; i < 256; ++i) table[i] = static_cast<std::uint16_t>(i * 257 + 1);
  std::string source(kStreamedSize + kBlock + 13, ' ');  // the last block is incomplete
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<char>(i ^ i >> 7);
  std::string expected(2 * source.size(), ' ');
  kPortableKernels.lookUpBytes(expected.data(), source.data(), source.size(), table);
  expected += std::string(kBlock, 'Z');
  for (const std::size_t offset : {0U, 1U, 2U, 48U}) {
    std::string target(offset + expected.size(), 'Z');
    kernelTables().back()->lookUpBytes(target.data() + offset, source.data(), source.size(), table);
    ASSERT_TRUE(target.substr(offset) == expected) << offset;
  }
}

// A kernel stops when less than a block is left. For some kernels the block needs more bytes after it: three,
// for the rest of a UTF-8 sequence; or one, for the second byte of a pair.
TEST(Kernels, ConvertAllButTheEnds) {
  if (vel::codepage::vectorKernels() == nullptr)
    GTEST_SKIP() << "the processor does not support the vector instructions";
  const Kernels& kernels = *vel::codepage::vectorKernels();
  const std::string text = repeated(kOfEachLength, 900);
  const std::string units = referenceUtf8ToUcs2(text, 2 * text.size()).bytes;
  // The target has room for one block more, so that only the source limits the kernel.
  const std::size_t encoded = runKernel(kernels.encodeUtf8, units, text.size() + kBlock).consumed;
  EXPECT_LT(units.size() - encoded, kBlock);
  const std::size_t decoded = runKernel(kernels.decodeUtf8, text, units.size() + 2 * kBlock).consumed;
  EXPECT_LT(text.size() - decoded, kBlock + 3);
  bool isDouble = false;
  for (const auto& [number, piece] : {std::pair{948U, kLeadBytes}, {930U, kShifted}}) {
    const std::string mixed = repeated(piece, 900);
    const auto& table = doubleByteTable(number);
    EXPECT_LT(mixed.size() - runMixed(kernels, table, mixed, 2 * mixed.size(), isDouble).consumed,
              kBlock + 1);
  }
}

// ---- Between inaccessible pages --------------------------------------------------------------

constexpr std::size_t kMaxGuarded = 200;

/// Returns UTF-8 of one byte, of three, and of all lengths with an ill-formed byte between, pairs with lead
/// bytes or shifts, and one text of many different bytes.
std::vector<std::string> guardedTexts() {
  std::vector<std::string> texts;
  for (const std::string_view piece :
       {std::string_view("a"), std::string_view("\xE2\x82\xAC"), kOfEachLength, kLeadBytes, kShifted})
    texts.push_back(repeated(piece, kMaxGuarded));
  texts[2][100] = '\xFF';
  texts.emplace_back();
  for (std::size_t i = 0; i < kMaxGuarded; ++i) texts.back() += static_cast<char>(i * 37);
  return texts;
}

/// Bytes per source unit, and the bytes of target that the test provides for each.
struct Units {
  std::size_t source, target;
};

/// Runs a kernel on texts of every size, with either end of source and target at an inaccessible page: it
/// must write what `reference(source, room)` returns for the bytes that it has read.
template <typename Loop, typename Reference>
void runGuarded(const char* what, Units units, Loop loop, Reference reference) {
  const vel::test::GuardedMemory sourceMemory(kMaxGuarded), targetMemory(2 * kMaxGuarded);
  for (const std::string& text : guardedTexts())
    for (std::size_t size = 0; size <= kMaxGuarded; size += units.source)
      // The room is sufficient, or short by one byte, or by one block and one byte.
      for (const std::size_t less : {std::size_t{0}, std::size_t{1}, kBlock + 1})
        for (const auto& [sourceAtEnd, targetAtEnd] : {std::pair{true, true}, {true, false}, {false, true}}) {
          const std::size_t most = size / units.source * units.target, room = most - std::min(most, less);
          char* const source = sourceMemory.place(size, sourceAtEnd);
          char* const target = targetMemory.place(room, targetAtEnd);
          text.copy(source, size);
          Cursor progress{source, source + size, target, target + room};
          loop(progress);
          const std::string_view read(source, static_cast<std::size_t>(progress.source - source));
          const std::string written(target, static_cast<std::size_t>(progress.target - target));
          ASSERT_EQ(written, reference(read, room)) << what << " of " << size << " to " << room;
        }
}

/// Runs a kernel that maps each unit to the one that `unitFor` returns, for as many units as have room.
template <typename Move, typename UnitFor>
void runGuardedMove(const char* what, Units units, Move move, UnitFor unitFor) {
  const auto loop = [=](Cursor& it) {
    const std::size_t count = std::min(it.sourceSize() / units.source, it.targetSize() / units.target);
    move(it.target, it.source, count);
    it.source += count * units.source;
    it.target += count * units.target;
  };
  runGuarded(what, units, loop, [=](std::string_view source, std::size_t) {
    std::string moved;
    for (; !source.empty(); source.remove_prefix(units.source)) moved += unitFor(source);
    return moved;
  });
}

TEST(Kernels, StayWithinSourceAndTarget) {
  const VelStDoubleByteTable &leads = doubleByteTable(948), &shifts = doubleByteTable(930);
  const uint16_t* const singles = velGetSBCStoUCS2Table(37);
  using Text = std::string_view;
  for (const Kernels* const kernels : kernelTables()) {
    runGuardedMove("widen", {1, 2}, kernels->widen, [](Text it) { return std::string{it[0], '\0'}; });
    runGuardedMove("narrow", {2, 1}, kernels->narrow, [](Text it) { return std::string{it[0]}; });
    runGuardedMove("swap", {2, 2}, kernels->swap, [](Text it) { return std::string{it[1], it[0]}; });
    const auto lookUp = [&](char* target, const char* source, std::size_t size) {
      kernels->lookUpBytes(target, source, size, singles);
    };
    runGuardedMove("lookUpBytes", {1, 2}, lookUp, [&](Text it) {
      return std::string(reinterpret_cast<const char*>(singles + static_cast<unsigned char>(it[0])), 2);
    });
    runGuarded("decodeUtf8", {1, 2}, kernels->decodeUtf8,
               [](Text source, std::size_t room) { return referenceUtf8ToUcs2(source, room).bytes; });
    runGuarded("encodeUtf8", {2, 4}, kernels->encodeUtf8,
               [](Text source, std::size_t room) { return referenceUcs2ToUtf8(source, room).bytes; });
    runGuarded(
        "decodeMixed", {1, 2}, [&](Cursor& it) { kernels->decodeMixed(it, leads); },
        [&](Text source, std::size_t) { return referenceMixedToUcs2(leads, source).bytes; });
    for (const bool isDouble : {false, true})
      runGuarded(
          "decodeShifted", {1, 2},
          [&](Cursor& it) {
            bool mode = isDouble;
            kernels->decodeShifted(it, shifts, mode);
          },
          [&](Text source, std::size_t) {
            const std::string whole = (isDouble ? "\x0E" : "") + std::string(source);
            return referenceMixedToUcs2(shifts, whole).bytes;
          });
  }
}

}  // namespace
