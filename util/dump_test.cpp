// Lines and dumps against a renderer that builds them character by character.
#include <gtest/gtest.h>

#include <bitset>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "vel_include/vel_util.h"

namespace {

/// The slow way: streams and one byte at a time.
std::string groupOf(unsigned char byte, bool binary) {
  if (binary) return std::bitset<8>(byte).to_string();
  std::ostringstream digits;
  digits << std::hex << std::uppercase << (byte >> 4) << (byte & 15);
  return digits.str();
}

std::string expectedData(const std::string& bytes, bool binary) {
  const std::size_t perLine = binary ? 8 : 16;
  std::string line;
  std::string characters;
  for (std::size_t i = 0; i < perLine; ++i) {
    const bool missing = i >= bytes.size();
    const auto byte = static_cast<unsigned char>(missing ? 0 : bytes[i]);
    line += missing ? std::string(binary ? 8 : 2, '_') : groupOf(byte, binary);
    line += i + 1 == perLine / 2 ? "  " : " ";
    characters += missing ? '_' : byte < 0x80 && std::isprint(byte) != 0 ? bytes[i] : '.';
  }
  return line + "| " + characters;
}

std::string expectedLine(std::size_t offset, const std::string& bytes, bool binary) {
  std::ostringstream address;
  address.width(8);
  address.fill('0');
  address << std::hex << std::uppercase << std::right << offset << ": ";
  return address.str() + expectedData(bytes, binary);
}

std::string expectedDump(const std::string& bytes, bool binary) {
  std::string dump;
  const std::size_t perLine = binary ? 8 : 16;
  for (std::size_t at = 0; at < bytes.size(); at += perLine)
    dump += expectedLine(at, bytes.substr(at, perLine), binary) + "\n";
  return dump;
}

std::string allBytes(std::size_t count) {
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(i * 7 + i / 256);
  return bytes;
}

TEST(StringRepresentation, HasTheDocumentedLines) {
  EXPECT_STREQ(VelClStrepHexDump(16, "ABCDEFGHIJKLMNOPxyz", 19).getAsCString(),
               "00000010: 41 42 43 44 45 46 47 48  49 4A 4B 4C 4D 4E 4F 50 | ABCDEFGHIJKLMNOP");
  EXPECT_STREQ(VelClStrepHexDump("\n", 1).getAsCString(),
               "0A __ __ __ __ __ __ __  __ __ __ __ __ __ __ __ | ._______________");
  EXPECT_STREQ(
      VelClStrepBinDump(8, "A\n", 2).getAsCString(),
      "00000008: 01000001 00001010 ________ ________  ________ ________ ________ ________ | A.______");
}

TEST(StringRepresentation, RendersEveryByteAndEveryCount) {
  const std::string bytes = allBytes(256);
  for (std::size_t start = 0; start < bytes.size(); ++start)
    for (std::size_t count = 0; count <= 18; ++count) {
      const std::string part = bytes.substr(start, count);
      EXPECT_EQ(VelClStrepHexDump(part.data(), part.size()).getAsCString(), expectedData(part, false));
      EXPECT_EQ(VelClStrepBinDump(part.data(), part.size()).getAsCString(), expectedData(part, true));
    }
  EXPECT_EQ(VelClStrepHexDump(nullptr, 0).getAsCString(), expectedData("", false));
}

TEST(StringRepresentation, WidensTheAddressToSixteenDigits) {
  for (int bits = 0; bits < 64; ++bits) {
    for (const std::size_t offset : {std::size_t{1} << bits, ~std::size_t{0} >> bits}) {
      EXPECT_EQ(VelClStrepHexDump(offset, "0123456789ABCDEF", 16).getAsCString(),
                expectedLine(offset, "0123456789ABCDEF", false));
      EXPECT_EQ(VelClStrepBinDump(offset, "01234567", 8).getAsCString(),
                expectedLine(offset, "01234567", true));
    }
  }
}

TEST(StringRepresentation, PrintsAddressesAsStreamsDo) {
  for (const void* address : {static_cast<const void*>(nullptr), static_cast<const void*>("x")}) {
    std::ostringstream expected;
    expected << address;
    EXPECT_EQ(VelClStrepAddress(address).getAsCString(), expected.str());
  }
}

TEST(Dump, PrintsWholeAreasLineByLine) {
  for (const std::size_t count : {0U, 1U, 7U, 8U, 9U, 15U, 16U, 17U, 512U, 1023U, 1024U, 1025U, 5000U}) {
    const std::string bytes = allBytes(count);
    std::ostringstream hex, sameHex, binary;
    // Neither the stream's settings nor its fill character touch a dump.
    hex.width(200);
    velDump(hex, bytes.data(), count);
    velDumpHex(sameHex, bytes.data(), count);
    velDumpBin(binary, bytes.data(), count);
    EXPECT_EQ(hex.str(), expectedDump(bytes, false)) << count;
    EXPECT_EQ(sameHex.str(), hex.str()) << count;
    EXPECT_EQ(binary.str(), expectedDump(bytes, true)) << count;
  }
}

template <typename Element>
void expectElements() {
  const Element elements[3] = {1, 0x4142, static_cast<Element>(-1)};
  std::string bytes(sizeof elements, '\0');
  std::memcpy(bytes.data(), elements, sizeof elements);
  std::ostringstream hex, binary;
  velDump(hex, elements, 2);
  velDumpHex(hex, elements, 3);
  velDumpBin(binary, elements, 3);
  EXPECT_EQ(hex.str(),
            expectedDump(bytes.substr(0, 2 * sizeof(Element)), false) + expectedDump(bytes, false));
  EXPECT_EQ(binary.str(), expectedDump(bytes, true));
}

TEST(Dump, CountsElementsOfEverySizeInMemoryOrder) {
  expectElements<unsigned short>();
  expectElements<unsigned int>();
  expectElements<unsigned long>();
  expectElements<unsigned long long>();
}

TEST(Dump, GoesToStandardOutputUnlessTheFormIsForDebugging) {
  const std::uint16_t words[2] = {0x3130, 0x3332};
  std::ostringstream shown;
  std::streambuf* const console = std::cout.rdbuf(shown.rdbuf());
  velDump("ab", 2);
  velDumpHex("ab", 2);
  velDumpBin("ab", 2);
  velDump(words, 2);
  velDumpHex(words, 2);
  velDumpBin(words, 2);
  velDebugDump("ab", 2);
  velDebugDump(std::cout, words, 2);
  velDebugDumpHex(words, 2);
  velDebugDumpBin(std::cout, "ab", 2);
  std::cout.rdbuf(console);
  std::string expected;
  for (const char* text : {"ab", "0123"})
    expected += expectedDump(text, false) + expectedDump(text, false) + expectedDump(text, true);
  EXPECT_EQ(shown.str(), expected);
}

}  // namespace
