// Every table of inner loops, whichever this processor would choose, against the slow conversions.
#include "codepage/kernels/kernels.h"

#include <gtest/gtest.h>

#include <random>

#include "codepage/test/kernel_run.h"
#include "codepage/test/reference_mixed.h"
#include "codepage/test/reference_utf8.h"
#include "platform/test/guarded_memory.h"

namespace {

using vel::codepage::Cursor;
using vel::codepage::Kernels;

std::vector<const Kernels*> kernelTables() {
  std::vector<const Kernels*> tables{&vel::codepage::kPortableKernels};
  if (vel::codepage::vectorKernels() != nullptr) tables.push_back(vel::codepage::vectorKernels());
  return tables;
}

TEST(Kernels, LookUpEveryByteInEverySize) {
  std::mt19937 random(3);
  std::uint16_t table[256];
  for (std::uint16_t& value : table) value = static_cast<std::uint16_t>(random());
  for (const Kernels* const kernels : kernelTables())
    for (std::size_t size = 0; size < 1200; size += size < 200 ? 1 : 37) {
      std::string source;
      std::u16string expected;
      for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(i < 256 ? i : random());
        source += static_cast<char>(byte);
        expected += static_cast<char16_t>(table[byte]);
      }
      std::string target(2 * size + 64, 'Z');
      kernels->lookUpBytes(target.data(), source.data(), size, table);
      ASSERT_EQ(target, unitBytes(expected) + std::string(64, 'Z')) << size;
    }
}

TEST(Kernels, LookUpBytesOfLongTextsWhereverTheTargetLies) {
  std::uint16_t table[256];
  for (unsigned int i = 0; i < 256; ++i) table[i] = static_cast<std::uint16_t>(i * 257 + 1);
  std::string source((std::size_t{8} << 20) + 77, ' ');
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<char>(i ^ i >> 7);
  std::string expected(2 * source.size(), ' ');
  vel::codepage::kPortableKernels.lookUpBytes(expected.data(), source.data(), source.size(), table);
  expected += std::string(64, 'Z');
  for (const Kernels* const kernels : kernelTables())
    for (const std::size_t offset : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{48}}) {
      std::string target(offset + expected.size(), 'Z');
      kernels->lookUpBytes(target.data() + offset, source.data(), source.size(), table);
      ASSERT_TRUE(target.substr(offset) == expected) << offset;
    }
}

TEST(Kernels, MoveBytesInEverySize) {
  std::string bytes(700, ' ');
  std::mt19937 random(5);
  for (char& byte : bytes) byte = static_cast<char>(random());
  for (const Kernels* const kernels : kernelTables())
    for (std::size_t count = 0; count < 300; ++count) {
      std::string widened, narrowed, swapped, target(2 * count + 64, 'Z');
      for (std::size_t i = 0; i < count; ++i) {
        widened += bytes[i] + std::string(1, '\0');
        narrowed += bytes[2 * i];
        swapped += std::string{bytes[2 * i + 1], bytes[2 * i]};
      }
      const auto moved = [&](auto move) {
        target.assign(2 * count + 64, 'Z');
        move(target.data(), bytes.data(), count);
        return target;
      };
      ASSERT_EQ(moved(kernels->widen), widened + std::string(64, 'Z')) << count;
      ASSERT_EQ(moved(kernels->narrow), narrowed + std::string(count + 64, 'Z')) << count;
      ASSERT_EQ(moved(kernels->swap), swapped + std::string(64, 'Z')) << count;
    }
}

using Loop = void (*)(Cursor& cursor) noexcept;
using Reference = Outcome (*)(std::string_view source, std::size_t targetSize);

/// What a loop did must be what the reference makes of the same part of the source. Returns the size of that
/// part.
std::size_t check(Loop loop, Reference reference, const std::string& source, std::size_t room) {
  const Outcome done = runKernel(loop, source, room);
  EXPECT_EQ(done, reference(std::string_view(source).substr(0, done.consumed), room)) << hex(source);
  return done.consumed;
}

TEST(Kernels, ConvertUtf8LikeTheReference) {
  std::mt19937 random(11);
  for (const Kernels* const kernels : kernelTables()) {
    const bool isVector = kernels != &vel::codepage::kPortableKernels;
    for (const std::string& units : sampleTexts(48, 200, 300)) {
      std::string text = referenceUcs2ToUtf8(units, units.size() * 2).bytes;
      const std::size_t encoded = check(kernels->encodeUtf8, &referenceUcs2ToUtf8, units, text.size() + 64);
      const std::size_t decoded = check(kernels->decodeUtf8, &referenceUtf8ToUcs2, text, units.size() + 128);
      if (isVector) {
        // A cut pair is not one for the loop, so all but the ends are done.
        EXPECT_GT(encoded + 64, units.size());
        EXPECT_GT(decoded + 67, text.size());
      }
      for (int damage = 0; damage < 40; ++damage) {
        const std::size_t room = random() % (units.size() + 200);
        check(kernels->encodeUtf8, &referenceUcs2ToUtf8, units.substr(2 * (random() % 60)), room);
        check(kernels->decodeUtf8, &referenceUtf8ToUcs2, text, room);
        text[random() % text.size()] = static_cast<char>(random());
      }
    }
  }
}

/// Runs of pairs and single bytes; of three kinds: whole, with shifts and lead bytes anywhere, and damaged.
std::string mixedText(bool isEbcdic, int kind, std::mt19937& random) {
  std::string text = isEbcdic ? "\xC1" : "A";
  while (text.size() < 900) {
    if (isEbcdic) text += '\x0E';
    for (auto bytes = random() % 25 * 2; bytes > 0; --bytes)
      text += static_cast<char>(kind == 1 ? 0x0D + random() % 3 : 0x81 + random() % 120);
    if (isEbcdic) text += '\x0F';
    for (auto run = random() % 12; run > 0; --run) text += static_cast<char>(0x10 + random() % 60);
    if (kind == 2) text[random() % text.size()] = static_cast<char>(random());
  }
  return text;
}

// The walk goes on where a loop stops, so only what a loop did is looked at.
TEST(Kernels, DecodeMixedBytesLikeTheReference) {
  std::mt19937 random(17);
  for (const Kernels* const kernels : kernelTables())
    for (const unsigned int number : {301U, 927U, 930U, 939U, 941U, 948U, 1351U, 1394U, 4930U, 4933U, 5039U})
      for (int round = 0; round < 60; ++round) {
        bool isEbcdic = false;
        const VelStDoubleByteTable& table = *velGetDBCStoUCS2Table(number, isEbcdic);
        const std::string text = mixedText(isEbcdic, round % 3, random);
        const std::size_t room = round % 4 == 0 ? random() % 1800 : 1800;
        bool isDouble = false;
        Outcome done = runMixed(*kernels, table, text, room, isDouble);
        const bool isDone = done.consumed + 66 > text.size();
        const std::string part = text.substr(0, done.consumed) + (isDouble ? "\x0F" : "");
        done.consumed = part.size();
        EXPECT_EQ(done, referenceMixedToUcs2(table, part)) << hex(part);
        EXPECT_TRUE(isDone || kernels == &vel::codepage::kPortableKernels || room < 1800);
      }
}

// Every way in which characters can lie across the ends of a block.
TEST(Kernels, DecodeBlocksThatEndAnywhere) {
  const std::string characters[] = {"a", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
  const std::string broken[] = {
      "\x80", "\xC3",         "\xE2\x82",         "\xF0\x9F\x98", "\xF0\x8F\xBF\xBF", "\xF8\x88\x80\x80\x80",
      "\xFF", "\xED\xA0\x80", "\xF7\xBF\xBF\xBF", "\xC0\x80",     "\xE0\x80\x80"};
  for (const Kernels* const kernels : kernelTables())
    for (std::size_t start = 50; start < 70; ++start)
      for (const std::string& character : characters) {
        std::string text(start, 'x');
        for (int i = 0; i < 3; ++i) text += character;
        check(kernels->decodeUtf8, &referenceUtf8ToUcs2, text + std::string(100, 'y'), 1000);
        for (const std::string& piece : broken)
          check(kernels->decodeUtf8, &referenceUtf8ToUcs2, text + piece + std::string(100, 'y'), 1000);
      }
}

// ---- Between inaccessible pages --------------------------------------------------------------

constexpr std::size_t kMostGuarded = 300;

/// Bytes of several kinds: UTF-8 of one, of three, and of all numbers of bytes with an ill-formed one
/// between, pairs with lead bytes or shifts, and noise.
std::vector<std::string> guardedTexts() {
  std::mt19937 random(23);
  std::vector<std::string> texts;
  for (const char* const character : {"a", "\xE2\x82\xAC", "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xFF"}) {
    std::string text;
    while (text.size() < kMostGuarded) text += character;
    texts.push_back(text);
  }
  for (const bool isEbcdic : {false, true}) texts.push_back(mixedText(isEbcdic, 0, random));
  std::string noise(kMostGuarded, ' ');
  for (char& byte : noise) byte = static_cast<char>(random());
  texts.push_back(noise);
  return texts;
}

/// Runs a conversion of `size` bytes into `room` bytes, both ends of both at inaccessible pages in turn, and
/// compares what it writes with what it writes elsewhere.
class Guarded {
 public:
  explicit Guarded(const std::vector<std::string>& texts) : texts_(texts) {}

  /// `convert(source, size, target, room)` returns the bytes written; `roomOf(size)` is the largest room.
  template <typename Convert, typename RoomOf>
  void run(const char* what, Convert convert, RoomOf roomOf,
           std::initializer_list<std::size_t> lessRoom = {0}) {
    for (const std::string& text : texts_)
      for (std::size_t size = 0; size <= kMostGuarded; ++size)
        for (const std::size_t less : lessRoom) {
          const std::size_t most = roomOf(size), room = most - std::min(most, less);
          std::string expected(room + 64, 'Z');
          expected.resize(convert(text.data(), size, expected.data(), room));
          for (const bool sourceAtEnd : {false, true})
            for (const bool targetAtEnd : {false, true}) {
              char* const source = source_.place(size, sourceAtEnd);
              char* const target = target_.place(room, targetAtEnd);
              text.copy(source, size);
              const std::size_t written = convert(source, size, target, room);
              ASSERT_EQ(std::string(target, written), expected) << what << " of " << size << " to " << room;
            }
        }
  }

 private:
  const std::vector<std::string>& texts_;
  vel::test::GuardedMemory source_{kMostGuarded};
  vel::test::GuardedMemory target_{4 * kMostGuarded};
};

template <typename Loop>
auto asConversion(Loop loop) {
  return [loop](const char* source, std::size_t size, char* target, std::size_t room) {
    Cursor cursor{source, source + size, target, target + room};
    loop(cursor);
    EXPECT_LE(cursor.source, source + size);
    EXPECT_LE(cursor.target, target + room);
    return static_cast<std::size_t>(cursor.target - target);
  };
}

TEST(Kernels, StayWithinTheirTexts) {
  const vel::test::GuardedMemory guard(1);
  EXPECT_DEATH(guard.place(1, true)[1] = 'x', "");
  EXPECT_DEATH(guard.place(1, false)[-1] = 'x', "");
  const std::vector<std::string> texts = guardedTexts();
  Guarded guarded(texts);
  bool isEbcdic = false;
  const auto mixed = [&](unsigned int number) -> auto& {
    return *velGetDBCStoUCS2Table(number, isEbcdic);
  };
  const VelStDoubleByteTable &leads = mixed(948), &shifts = mixed(930);
  const auto twice = [](std::size_t size) { return 2 * size; };
  // Enough, one byte less, and a block less.
  const std::initializer_list<std::size_t> kLessRoom = {0, 1, 65};
  for (const Kernels* const kernels : kernelTables()) {
    const auto fixed = [&](auto move, std::size_t sourceUnit, std::size_t targetUnit) {
      return [=](const char* source, std::size_t size, char* target, std::size_t) {
        move(target, source, size / sourceUnit);
        return size / sourceUnit * targetUnit;
      };
    };
    guarded.run("widen", fixed(kernels->widen, 1, 2), twice);
    guarded.run("narrow", fixed(kernels->narrow, 2, 1), [](std::size_t size) { return size / 2; });
    guarded.run("swap", fixed(kernels->swap, 2, 2), [](std::size_t size) { return size / 2 * 2; });
    const auto lookUp = [&](char* target, const char* source, std::size_t size) {
      kernels->lookUpBytes(target, source, size, velGetSBCStoUCS2Table(37));
    };
    guarded.run("lookUpBytes", fixed(lookUp, 1, 2), twice);
    guarded.run("decodeUtf8", asConversion(kernels->decodeUtf8), twice, kLessRoom);
    // It gets whole units only.
    const auto encode = [&](const char* source, std::size_t size, char* target, std::size_t room) {
      return asConversion(kernels->encodeUtf8)(source, size / 2 * 2, target, room);
    };
    guarded.run("encodeUtf8", encode, twice, kLessRoom);
    guarded.run("decodeMixed", asConversion([&](Cursor& it) { kernels->decodeMixed(it, leads); }), twice,
                kLessRoom);
    for (bool isDouble : {false, true})
      guarded.run("decodeShifted", asConversion([&, isDouble](Cursor& it) {
                    bool mode = isDouble;
                    kernels->decodeShifted(it, shifts, mode);
                  }),
                  twice, kLessRoom);
  }
}

}  // namespace
