// Names of code pages: every name is found, and its CCSID converts like ICU's converter of this name, but for
// the listed characters.
#include "base/utf.h"
#include "codepage/icu/icu_calls.h"
#include "codepage/test/loaded_icu.h"
#include "codepage/test/outcome.h"
#include "platform/test/test.h"

namespace {

using namespace vel::codepage;

std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// Converts single characters with ICU, and with the library's converter of a CCSID.
class Peers {
 public:
  Peers(const IcuFunctions& icu, const char* name, int number) : icu_(icu), ours_(ccsid(number)) {
    std::int32_t status = 0;
    icuConverter_ = icu.open(name, &status);
  }
  Peers(const Peers&) = delete;
  ~Peers() {
    if (isKnown()) icu_.close(icuConverter_);
  }

  bool isKnown() const { return icuConverter_ != nullptr; }
  bool isSupported() const { return ours_.isSupported(); }
  bool hasOnlySingleBytes() const { return icu_.getMaxCharSize(icuConverter_) == 1; }

  /// Returns the bytes of a character, which may be those of a substitute.
  std::string bytesOf(const std::string& units) const {
    std::string bytes(16, '\0');
    IcuBuffers text{bytes.data(), bytes.size(), units.data(), units.size(), 0};
    bytes.resize(convertFromUnicode(icu_, icuConverter_, text));
    return bytes;
  }
  std::string unitsOf(const std::string& bytes) const {
    std::string units(16, '\0');
    IcuBuffers text{units.data(), units.size(), bytes.data(), bytes.size(), 0};
    units.resize(convertToUnicode(icu_, icuConverter_, text));
    return units;
  }
  bool agreeOn(const std::string& bytes) const {
    return normalized(unitsOf(bytes)) == normalized(convert(ours_, bytes, 64).bytes);
  }

 private:
  /// Maps all units for unmapped bytes to one. Tables fold the next line of EBCDIC into the line feed.
  static std::string normalized(const std::string& units) {
    if (units == unitBytes(u"\x0085")) return unitBytes(u"\n");
    return units == unitBytes(u"\x001A") || units.empty() ? unitBytes(u"\xFFFD") : units;
  }

  const IcuFunctions& icu_;
  VelClCodePage2UnicodeConverter ours_;
  void* icuConverter_ = nullptr;
};

std::string unitsOfCharacter(unsigned int character) {
  if (character < vel::kFirstSupplementary) return unitBytes({static_cast<char16_t>(character)});
  return unitBytes({vel::highSurrogateOf(character), vel::lowSurrogateOf(character)});
}

/// Returns the next character after `c`. Unless all are wanted, many ideographs are left out, because the
/// conversion of single characters is slow.
unsigned int following(unsigned int c, bool all) {
  if (c == 0xD7FF) return 0xE000;
  if (c >= 0x10000) return c + 1021;
  return c + (!all && c >= 0x2700 && c < 0xD700 ? 23 : 1);
}

/// Returns the characters on which the two disagree: their bytes, or if there are many of them, how many.
std::string differences(const Peers& peers, bool all) {
  std::set<std::string> found;
  for (unsigned int byte = 0; byte < 256 && peers.hasOnlySingleBytes(); ++byte)
    if (const std::string bytes(1, static_cast<char>(byte)); !peers.agreeOn(bytes)) found.insert(hex(bytes));
  for (unsigned int c = 0; c < 0x30000 && !peers.hasOnlySingleBytes(); c = following(c, all)) {
    const std::string bytes = peers.bytesOf(unitsOfCharacter(c));
    const bool isMapped = peers.unitsOf(bytes) == unitsOfCharacter(c);
    if (isMapped && !peers.agreeOn(bytes)) found.insert(hex(bytes));
  }
  if (found.size() > 20) return std::to_string(found.size()) + " characters";
  std::string list;
  for (const std::string& each : found) list += (list.empty() ? "" : " ") + each;
  return list;
}

TEST(CcsidNames, AreFoundInEverySpelling) {
  std::map<int, std::vector<std::string>> names;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "ccsid_names.tsv"))
    for (const std::string& name : wordsOf(row[1])) names[std::stoi(row[0])].push_back(name);
  for (const auto& [number, expected] : names) {
    std::vector<std::string> found;
    while (const char* const name = velGetNameOfCCSID(static_cast<unsigned int>(number), found.size()))
      found.emplace_back(name);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(ccsid(number).getPreferredName(), expected.front());
    for (const std::string& name : expected)
      EXPECT_EQ(VelClCCSID::fromName(name.c_str()).getAsInt(), number) << name;
  }
  const std::pair<const char*, unsigned int> spellings[] = {{"Latin-1", 819},
                                                            {"iso8859_01", 819},
                                                            {" UTF 8 ", 1208},
                                                            {"cp37", 37},
                                                            {"EBCDIC_CP_US", 37},
                                                            {"WINDOWS.1252", 5348},
                                                            {"SJIS", 943},
                                                            {"euc_jp", 954},
                                                            {"koi8r", 878},
                                                            {"Big-5", 1373},
                                                            {"utf16le", 65501},
                                                            {"gb 18030", 1392},
                                                            {"", 0},
                                                            {"-", 0},
                                                            {"1252", 0},
                                                            {"latin01x", 0},
                                                            {"l\xC3\xA4tin1", 0},
                                                            {"iso88591000000000", 0},
                                                            {"UTF-16", 0},
                                                            {"cp0370", 0}};
  for (const auto& [name, number] : spellings) EXPECT_EQ(velGetCCSIDOfName(name), number) << name;
  EXPECT_EQ(velGetCCSIDOfName(std::string(1000, 'x').c_str()), 0U);
  EXPECT_EQ(velGetCCSIDOfName(nullptr), 0U);
  EXPECT_FALSE(VelClCCSID::fromName("latin").isValid());
  EXPECT_EQ(velGetNameOfCCSID(259, 0), nullptr);
  EXPECT_EQ(velGetNameOfCCSID(0xFFFFFFFF, 0), nullptr);
  EXPECT_EQ(velGetNameOfCCSID(0, 0), nullptr);
}

TEST(CcsidNames, ConvertLikeIcuUnderTheSameName) {
  const LoadedIcu loaded;
  if (loaded.library == nullptr) GTEST_SKIP() << "ICU is not installed";
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "ccsid_names.tsv")) {
    // The names of a row open the same converter.
    const std::string name = wordsOf(row[1]).front();
    const Peers peers(loaded.functions, name.c_str(), std::stoi(row[0]));
    EXPECT_TRUE(peers.isSupported()) << name;
    if (peers.isKnown() && peers.isSupported()) {
      EXPECT_EQ(differences(peers, !row[2].empty()), row[2]) << name;
    }
  }
}

}  // namespace
