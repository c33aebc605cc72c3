// Compares lines and dumps with those of a reference that builds them character by character.
#include <bit>
#include <bitset>

#include "platform/test/test.h"
#include "vel_include/vel_util.h"

namespace {

/// The reference: one byte at a time.
std::string expectedData(const std::string& bytes, bool binary) {
  const std::size_t perLine = binary ? 8 : 16;
  std::string line, characters;
  for (std::size_t i = 0; i < perLine; ++i) {
    const bool missing = i >= bytes.size();
    const auto byte = static_cast<unsigned char>(missing ? 0 : bytes[i]);
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", byte);
    const std::string group = binary ? std::bitset<8>(byte).to_string() : digits;
    line += missing ? std::string(group.size(), '_') : group;
    line += i + 1 == perLine / 2 ? "  " : " ";
    characters += missing ? '_' : byte < 0x80 && std::isprint(byte) != 0 ? bytes[i] : '.';
  }
  return line + "| " + characters;
}

std::string expectedLine(std::size_t offset, const std::string& bytes, bool binary) {
  char address[24];
  std::snprintf(address, sizeof address, "%08llX: ", static_cast<unsigned long long>(offset));
  return address + expectedData(bytes, binary);
}

std::string expectedDump(const std::string& bytes, bool binary) {
  std::string dump;
  const std::size_t perLine = binary ? 8 : 16;
  for (std::size_t at = 0; at < bytes.size(); at += perLine)
    dump += expectedLine(at, bytes.substr(at, perLine), binary) + "\n";
  return dump;
}

TEST(StringRepresentation, IsTheDocumentedLine) {
  EXPECT_STREQ(VelClStrepHexDump(16, "ABCDEFGHIJKLMNOPxyz", 19).getAsCString(),
               "00000010: 41 42 43 44 45 46 47 48  49 4A 4B 4C 4D 4E 4F 50 | ABCDEFGHIJKLMNOP");
  EXPECT_EQ(VelClStrepHexDump(nullptr, 0).getAsCString(), expectedData("", false));
  EXPECT_EQ(VelClStrepBinDump("123456789", 9).getAsCString(), expectedData("12345678", true));
  EXPECT_STREQ(VelClStrepHexDump("\n", 1).getAsCString(),
               "0A __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | ._______________");
  EXPECT_STREQ(
      VelClStrepBinDump(8, "A\n", 2).getAsCString(),
      "00000008: 01000001 00001010 ________ ________  ________ ________ ________ ________ | A.______");
}

TEST(StringRepresentation, HasAnAddressOfEightToSixteenDigits) {
  const char* const text = "0123456789ABCDEF";
  for (int bits = 0; bits < 64; ++bits)
    for (const std::size_t offset : {std::size_t{1} << bits, ~std::size_t{0} >> bits}) {
      EXPECT_EQ(VelClStrepHexDump(offset, text, 16).getAsCString(), expectedLine(offset, text, false));
      EXPECT_EQ(VelClStrepBinDump(offset, text, 8).getAsCString(), expectedLine(offset, "01234567", true));
    }
}

TEST(StringRepresentation, OfAnAddressIsThatOfStreams) {
  for (int bits = 0; bits < 64; ++bits)
    for (const std::uint64_t number :
         {std::uint64_t{1} << bits, ~std::uint64_t{0} >> bits, std::uint64_t{0}}) {
      const auto* const address = std::bit_cast<const void*>(number);
      std::ostringstream expected;
      expected << address;
      EXPECT_EQ(VelClStrepAddress(address).getAsCString(), expected.str());
    }
}

TEST(Dump, HasALineForEachGroupOfBytes) {
  for (const unsigned count : {0U, 1U, 2U, 7U, 8U, 9U, 15U, 16U, 17U, 512U, 1023U, 1024U, 1025U, 5000U}) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    std::ostringstream hex, sameHex, binary;
    // The stream's settings do not affect a dump.
    hex.width(200);
    velDump(hex, bytes.data(), count);
    velDumpHex(sameHex, bytes.data(), count);
    velDumpBin(binary, bytes.data(), count);
    EXPECT_EQ(hex.str(), expectedDump(bytes, false)) << count;
    EXPECT_EQ(sameHex.str(), hex.str()) << count;
    EXPECT_EQ(binary.str(), expectedDump(bytes, true)) << count;
  }
}

TEST(Dump, OfBytesOrElementsGoesToAStreamExceptForDebugDumps) {
  const std::uint16_t words[2] = {0x3130, 0x3332};
  testing::internal::CaptureStdout();
  velDump("ab", 2);
  velDumpHex("ab", 2);
  velDumpBin("ab", 2);
  velDump(words, 2);
  velDumpHex(words, 2);
  velDumpBin(words, 2);
  velDump(std::cout, words, 2);
  velDumpHex(std::cout, words, 2);
  velDumpBin(std::cout, words, 2);
  velDebugDump("ab", 2);
  velDebugDump(std::cout, words, 2);
  velDebugDumpHex(words, 2);
  velDebugDumpBin(std::cout, "ab", 2);
  std::cout.flush();
  std::string expected;
  for (const char* text : {"ab", "0123", "0123"})
    expected += expectedDump(text, false) + expectedDump(text, false) + expectedDump(text, true);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
}

}  // namespace
