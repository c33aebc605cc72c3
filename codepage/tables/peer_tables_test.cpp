// Compares the tables with those of ICU and of the system: only the listed characters may differ.
#include "codepage/icu/icu_calls.h"
#include "codepage/test/loaded_icu.h"
#include "codepage/test/mapping_file.h"
#include "codepage/test/outcome.h"
#include "platform/test/iconv.h"
#include "platform/test/test.h"

namespace {

using vel::codepage::IcuBuffers;
using vel::codepage::IcuFunctions;

/// Converts the bytes of a character to UTF-16; returns nothing if it cannot.
using Peer = std::function<std::optional<std::string>(const std::string& bytes)>;

Peer icuPeer(const std::string& number) {
  static const LoadedIcu loaded;
  static const IcuFunctions& icu = loaded.functions;
  if (loaded.library == nullptr) return nullptr;
  std::int32_t status = 0;
  const void* const opened =
      vel::codepage::openIcuConverter(icu, static_cast<std::uint32_t>(std::stoul(number)), status);
  if (opened == nullptr) return nullptr;
  const std::shared_ptr<const void> converter(opened,
                                              [](const void* it) { icu.close(const_cast<void*>(it)); });
  return [converter](const std::string& bytes) {
    std::string units(16, '\0');
    IcuBuffers text{units.data(), units.size(), bytes.data(), bytes.size(), 0};
    units.resize(vel::codepage::convertToUnicode(icu, converter.get(), text));
    return units;
  };
}

constexpr unsigned int kUnmapped = 0xFFFD;
constexpr unsigned int kSubstitution = 0x1A;

unsigned int unitOf(const std::optional<std::string>& answer) {
  if (!answer.has_value() || answer->size() != 2) return kUnmapped;
  return static_cast<unsigned char>(answer->front()) + 256U * static_cast<unsigned char>(answer->back());
}

/// Returns the characters of a page, single bytes and pairs, and their units.
std::map<std::string, unsigned int> charactersOf(const MappingFile& mapping) {
  std::map<std::string, unsigned int> characters;
  const bool hasPairs = mapping.head.at("kind") == "dbcs";
  for (unsigned int byte = 0; byte < 256; ++byte) {
    const bool isShift = hasPairs && mapping.isEbcdic && (byte == 0x0E || byte == 0x0F);
    // A page that has only pairs maps neither '@' nor blank.
    const bool hasSingles = mapping.bytes[0x40] != kUnmapped;
    if (!isShift && !mapping.isLead[byte] && hasSingles)
      characters[{static_cast<char>(byte)}] = mapping.bytes[byte];
    const bool canLead = mapping.isEbcdic ? byte >= 0x40 && byte != 0xFF : mapping.isLead[byte];
    if (!hasPairs || !canLead) continue;
    for (unsigned int trail = 0x40; trail < 0xFF; ++trail)
      characters[{static_cast<char>(byte), static_cast<char>(trail)}] = mapping.pairs[byte * 256 + trail];
  }
  return characters;
}

/// Returns the characters that the peer maps differently.
std::string differences(const MappingFile& mapping, const Peer& peer) {
  std::string found;
  for (const auto& [bytes, unit] : charactersOf(mapping)) {
    const bool isShifted = mapping.isEbcdic && bytes.size() == 2;
    const unsigned int other = unitOf(peer(isShifted ? '\x0E' + bytes + '\x0F' : bytes));
    const bool areUnmapped =
        (unit == kUnmapped || unit == kSubstitution) && (other == kUnmapped || other == kSubstitution);
    if (other != unit && !areUnmapped) found += (found.empty() ? "" : " ") + hex(bytes);
  }
  return found;
}

TEST(PeerTables, DifferOnlyInTheListedCharacters) {
  std::map<std::string, std::set<bool>> knowPage;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/peer_tables.tsv")) {
    const Peer peer = row[1] == "ICU" ? icuPeer(row[2]) : Peer(vel::test::iconvFrom(row[2]));
    knowPage[row[1]].insert(peer != nullptr);
    if (!peer) continue;
    EXPECT_EQ(differences(MappingFile(std::stoi(row[0])), peer), row[3]) << row[0] << ", " << row[1];
  }
  for (const auto& [peer, answers] : knowPage)
    EXPECT_EQ(answers.size(), 1U) << peer << " knows only some pages";
}

}  // namespace
