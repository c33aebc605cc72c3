// Compares the kernels of every level that this processor supports with slow reference implementations, on
// buffers that lie against inaccessible pages. Random texts are left to fuzz/codepage_fuzz.cpp.
#include "codepage/kernels/kernels.h"

#include "base/utf.h"
#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_mixed.h"
#include "codepage/test/reference_utf8.h"
#include "platform/test/guarded_memory.h"
#include "platform/test/test.h"

namespace {

using vel::codepage::Cursor;
using vel::codepage::KernelLevel;
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

/// The most bytes that vector kernels convert at a time.
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
  for (const KernelLevel& level : supportedLevels())
    for (const std::size_t offset : {0U, 1U, 2U, 48U}) {
      std::string target(offset + expected.size(), 'Z');
      level.kernels->lookUpBytes(target.data() + offset, source.data(), source.size(), table);
      ASSERT_TRUE(target.substr(offset) == expected) << level.name << ' ' << offset;
    }
}

/// Returns what `kernel(target, source, size)` writes to a target of `room` bytes and some more.
template <typename Kernel>
std::string written(Kernel kernel, const std::string& source, std::size_t size, std::size_t room) {
  std::string target(room + kBlock, 'Z');
  kernel(target.data(), source.data(), size);
  return target;
}

// Above some size, kernels look up halves of a table differently, and of these only those that are not all 0.
TEST(Kernels, LookUpLikeThePortableOnes) {
  constexpr std::size_t kMaxSize = 600;
  std::uint16_t tables[3][256] = {};
  for (std::size_t i = 0; i < 256; ++i) {
    tables[0][i] = static_cast<std::uint16_t>(i * 40503);
    tables[1][i] = static_cast<std::uint16_t>(i * 167 % 256);
    tables[2][i] = static_cast<std::uint16_t>(i < 0x80 ? i : 0x2500 + i);
  }
  std::string bytes, units;
  for (std::size_t i = 0; i < kMaxSize; ++i) {
    bytes += static_cast<char>(i * 37);
    // Rarely a unit above FF, so that there are blocks with and without.
    units += unitBytes({static_cast<char16_t>(i % 150 == 149 ? 0x2592 : i * 37 % 256)});
  }
  const auto lookUp = [](const Kernels& kernels, const std::uint16_t* table) {
    return [=, &kernels](auto... arguments) { kernels.lookUpBytes(arguments..., table); };
  };
  const auto map = [](const Kernels& kernels, unsigned int page) {
    return [=, &kernels](auto... arguments) { kernels.mapUnits(arguments..., velGetUCS2toSBCSTable(page)); };
  };
  for (const KernelLevel& level : supportedLevels())
    for (std::size_t size = 0; size <= kMaxSize; ++size) {
      for (const auto& table : tables)
        ASSERT_EQ(written(lookUp(*level.kernels, table), bytes, size, 2 * size),
                  written(lookUp(kPortableKernels, table), bytes, size, 2 * size))
            << level.name << ' ' << size;
      for (const unsigned int page : {850U, 500U})
        ASSERT_EQ(written(map(*level.kernels, page), units, size, size),
                  written(map(kPortableKernels, page), units, size, size))
            << level.name << ' ' << size;
    }
}

/// Returns UTF-8 with all characters from `first` on, 4096 of them; surrogates are included.
std::string characters(char32_t first) {
  std::string text;
  for (char32_t c = first; c < first + 0x1000; ++c) {
    char bytes[vel::kMaxUtf8Bytes];
    text.append(bytes, vel::encodeUtf8(c, bytes));
  }
  return text;
}

// A vector kernel stops when less than a block is left. For some kernels the block needs more bytes after it:
// three, for the rest of a UTF-8 sequence; or one, for the second byte of a pair.
TEST(Kernels, ConvertAllCharactersButTheEnds) {
  for (char32_t first = 0; first < 0x110000; first += 0x1000) {
    const std::string text = characters(first);
    const std::string units = referenceUtf8ToUcs2(text, 2 * text.size()).bytes;
    const std::string back = referenceUcs2ToUtf8(units, 2 * text.size()).bytes;
    for (const KernelLevel& level : supportedLevels()) {
      // The target has room for two blocks more, so that only the source limits the kernel.
      const Outcome decoded = runKernel(level.kernels->decodeUtf8, text, units.size() + 2 * kBlock);
      const Outcome encoded = runKernel(level.kernels->encodeUtf8, units, text.size() + 2 * kBlock);
      ASSERT_TRUE(units.starts_with(decoded.bytes)) << level.name << ' ' << std::uint32_t{first};
      ASSERT_TRUE(back.starts_with(encoded.bytes)) << level.name << ' ' << std::uint32_t{first};
      // The portable kernel leaves every noncharacter and every unpaired surrogate to its caller.
      if (level.kernels == &kPortableKernels) continue;
      ASSERT_LT(text.size() - decoded.consumed, kBlock + 3) << level.name << ' ' << std::uint32_t{first};
      ASSERT_LT(units.size() - encoded.consumed, kBlock) << level.name << ' ' << std::uint32_t{first};
    }
  }
}

TEST(Kernels, ConvertMixedBytesButTheEnds) {
  bool isDouble = false;
  for (const KernelLevel& level : supportedLevels())
    for (const auto& [number, piece] : {std::pair{948U, kLeadBytes}, {930U, kShifted}}) {
      if (level.kernels == &kPortableKernels) continue;
      const std::string mixed = repeated(piece, 900);
      const auto& table = doubleByteTable(number);
      EXPECT_LT(mixed.size() - runMixed(*level.kernels, table, mixed, 2 * mixed.size(), isDouble).consumed,
                kBlock + 1)
          << level.name << ' ' << number;
    }
}

// Blocks of 16, 32 and 64 bytes end at all places around these sequences.
TEST(Kernels, StopBeforeIllFormedSequencesAnywhere) {
  constexpr std::string_view kUtf8[] = {"\x80",
                                        "\xBF\x80",
                                        "\xC3",
                                        "\xC1\xBF",
                                        "\xE2\x82",
                                        "\xE2",
                                        "\xE0\x80\x80",
                                        "\xED\xA0\x80",
                                        "\xF0\x9F\x98",
                                        "\xF0\x9F",
                                        "\xF0",
                                        "\xF0\x80\x80\x80",
                                        "\xF0\x8F\xBF\xBF",
                                        "\xF4\x90\x80\x80",
                                        "\xF7\xBF\xBF\xBF",
                                        "\xF8\x88\x80\x80\x80",
                                        "\xFC\x84\x80\x80\x80\x80",
                                        "\xFE",
                                        "\xFF",
                                        "\xC3\xC3\xA4",
                                        "\xF0\x9F\x98\x80\x80"};
  const std::string kUcs2[] = {
      unitBytes({0xD83D}),         unitBytes({0xDE00}),         unitBytes({0xD83D, 0xD83D, 0xDE00}),
      unitBytes({0xDE00, 0xD83D}), unitBytes({0xFFFE}),         unitBytes({0xFDD0, 0xFDEF}),
      unitBytes({0xFFFF, 0xD83D}), unitBytes({0xD83D, 0xDE00}), unitBytes({0xDBFF, 0xDFFF, 0xDC00})};
  constexpr std::size_t kSize = 200, kPositions = 140;
  const auto check = [](const std::string& text, auto kernel, auto reference, std::size_t position) {
    for (const KernelLevel& level : supportedLevels()) {
      const Outcome done = runKernel(level.kernels->*kernel, text, 3 * kSize);
      EXPECT_EQ(done, reference(text.substr(0, done.consumed), 3 * kSize)) << level.name << ' ' << position;
      // A vector kernel converts at least the blocks before the sequence.
      if (level.kernels != &kPortableKernels) {
        EXPECT_GE(done.consumed + kBlock + 3, position);
      }
    }
  };
  for (const std::string_view piece :
       {std::string_view("a"), std::string_view("\xE2\x82\xAC"), kOfEachLength}) {
    const std::string text = repeated(piece, kSize);
    const std::string units = referenceUtf8ToUcs2(text, 2 * text.size()).bytes;
    for (std::size_t i = 0; i < kPositions; ++i) {
      for (const std::string_view sequence : kUtf8)
        check(text.substr(0, i) + std::string(sequence) + text.substr(i), &Kernels::decodeUtf8,
              &referenceUtf8ToUcs2, i);
      for (const std::string& sequence : kUcs2)
        if (i % 2 == 0 && i <= units.size())
          check(units.substr(0, i) + sequence + units.substr(i), &Kernels::encodeUtf8, &referenceUcs2ToUtf8,
                i);
    }
  }
}

// ---- Between inaccessible pages --------------------------------------------------------------

constexpr std::size_t kMaxGuarded = 300;

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

/// Returns what `reference` writes for each prefix of a text.
template <typename Reference>
std::vector<std::string> resultsOfPrefixes(const std::string& text, Reference reference) {
  std::vector<std::string> results;
  for (std::size_t size = 0; size <= text.size(); ++size)
    results.push_back(reference(std::string_view(text).substr(0, size), 4 * text.size()));
  return results;
}

/// Runs kernels on texts of every size, with either end of source and target at an inaccessible page, which
/// also gives them every alignment: each must write what `reference(source, room)` returns for the bytes that
/// it has read. `loopOf` returns the kernel of a level.
template <typename LoopOf, typename Reference>
void runGuarded(const char* what, Units units, LoopOf loopOf, Reference reference) {
  const vel::test::GuardedMemory sourceMemory(kMaxGuarded), targetMemory(2 * kMaxGuarded);
  for (const std::string& text : guardedTexts()) {
    const std::vector<std::string> expected = resultsOfPrefixes(text, reference);
    for (const KernelLevel& level : supportedLevels())
      for (std::size_t size = 0; size <= kMaxGuarded; size += units.source)
        // The room is sufficient, or short by one byte, or by one block and one byte.
        for (const std::size_t less : {std::size_t{0}, std::size_t{1}, kBlock + 1})
          for (const auto& [sourceAtEnd, targetAtEnd] :
               {std::pair{true, true}, {true, false}, {false, true}}) {
            const std::size_t most = size / units.source * units.target, room = most - std::min(most, less);
            char* const source = sourceMemory.place(size, sourceAtEnd);
            char* const target = targetMemory.place(room, targetAtEnd);
            text.copy(source, size);
            Cursor progress{source, source + size, target, target + room};
            loopOf (*level.kernels)(progress);
            const auto read = static_cast<std::size_t>(progress.source - source);
            const std::string_view written(target, static_cast<std::size_t>(progress.target - target));
            ASSERT_EQ(written, expected[read])
                << level.name << ' ' << what << " of " << size << " to " << room;
          }
  }
}

/// Runs kernels that map each unit to the one that `unitFor` returns, for as many units as have room.
template <typename MoveOf, typename UnitFor>
void runGuardedMove(const char* what, Units units, MoveOf moveOf, UnitFor unitFor) {
  const auto loopOf = [=](const Kernels& kernels) {
    return [=, &kernels](Cursor& it) {
      const std::size_t count = std::min(it.sourceSize() / units.source, it.targetSize() / units.target);
      moveOf(kernels, it.target, it.source, count);
      it.source += count * units.source;
      it.target += count * units.target;
    };
  };
  runGuarded(what, units, loopOf, [=](std::string_view source, std::size_t) {
    std::string moved;
    for (; source.size() >= units.source; source.remove_prefix(units.source)) moved += unitFor(source);
    return moved;
  });
}

TEST(Kernels, MoveWithinSourceAndTarget) {
  using Text = std::string_view;
  const auto move = [](auto member) {
    return [=](const Kernels& kernels, auto... arguments) { (kernels.*member)(arguments...); };
  };
  runGuardedMove("widen", {1, 2}, move(&Kernels::widen), [](Text it) { return std::string{it[0], '\0'}; });
  runGuardedMove("narrow", {2, 1}, move(&Kernels::narrow), [](Text it) { return std::string{it[0]}; });
  runGuardedMove("swap", {2, 2}, move(&Kernels::swap), [](Text it) { return std::string{it[1], it[0]}; });
  const uint16_t* const singles = velGetSBCStoUCS2Table(37);
  const auto lookUp = [&](const Kernels& kernels, char* target, const char* source, std::size_t size) {
    kernels.lookUpBytes(target, source, size, singles);
  };
  runGuardedMove("lookUpBytes", {1, 2}, lookUp, [&](Text it) {
    return std::string(reinterpret_cast<const char*>(singles + static_cast<unsigned char>(it[0])), 2);
  });
}

TEST(Kernels, ConvertWithinSourceAndTarget) {
  using Text = std::string_view;
  runGuarded(
      "decodeUtf8", {1, 2}, [](const Kernels& kernels) { return kernels.decodeUtf8; },
      [](Text source, std::size_t room) { return referenceUtf8ToUcs2(source, room).bytes; });
  runGuarded(
      "encodeUtf8", {2, 4}, [](const Kernels& kernels) { return kernels.encodeUtf8; },
      [](Text source, std::size_t room) { return referenceUcs2ToUtf8(source, room).bytes; });
}

TEST(Kernels, ConvertMixedBytesWithinSourceAndTarget) {
  using Text = std::string_view;
  const VelStDoubleByteTable &leads = doubleByteTable(948), &shifts = doubleByteTable(930);
  runGuarded(
      "decodeMixed", {1, 2},
      [&](const Kernels& kernels) { return [&](Cursor& it) { kernels.decodeMixed(it, leads); }; },
      [&](Text source, std::size_t) { return referenceMixedToUcs2(leads, source).bytes; });
  for (const bool isDouble : {false, true})
    runGuarded(
        "decodeShifted", {1, 2},
        [&](const Kernels& kernels) {
          return [&](Cursor& it) {
            bool mode = isDouble;
            kernels.decodeShifted(it, shifts, mode);
          };
        },
        [&](Text source, std::size_t) {
          const std::string whole = (isDouble ? "\x0E" : "") + std::string(source);
          return referenceMixedToUcs2(shifts, whole).bytes;
        });
}

}  // namespace
