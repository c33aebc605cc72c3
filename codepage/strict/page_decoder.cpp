// Converters replace what they cannot decode, by U+FFFD or U+001A. Strict conversion has to tell such a
// substitute from the same character in the source. A table shows that by itself, except for the substitutes
// of single bytes. With ICU, a unit that may be a substitute counts as a character only if ICU encodes it to
// the same bytes again.
#include "codepage/strict/page_decoder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "codepage/conversion.h"
#include "codepage/icu/icu_page_codec.h"
#include "codepage/tables/conversion_tables.h"
#include "foundation/allocator.h"

namespace vel::codepage {

namespace {

/// The units that tables and ICU have for unmapped bytes.
constexpr char16_t kUnmapped = 0xFFFD;
constexpr char16_t kUnmappedSingle = 0x001A;

/// The result of one unit of a table.
DecodeResult resultOf(char16_t unit, bool isMapped) {
  return {isMapped ? DecodeResult::Kind::Units : DecodeResult::Kind::Invalid, 1, {unit}};
}

// ---- Tables ----------------------------------------------------------------------------------

class SingleByteDecoder : public PageDecoder {
 public:
  explicit SingleByteDecoder(const void* table) : table_(static_cast<const std::uint16_t*>(table)) {}

  // U+FFFD is the only substitute in these tables: generate_conversion_tables.py writes it, and U+001A is a
  // character.
  DecodeResult decodeSingle(unsigned char byte) override {
    const std::uint16_t unit = toHostOrder(table_[byte]);
    return resultOf(unit, unit != kUnmapped);
  }
  DecodeResult decodeSequence(const unsigned char*, std::size_t) override { return {}; }
  DecodeResult decodePair(unsigned char, unsigned char) override { return {}; }
  bool hasShifts() const override { return false; }
  bool ignoresRedundantShifts() const override { return false; }

 private:
  const std::uint16_t* table_;
};

class DoubleByteDecoder : public PageDecoder {
 public:
  explicit DoubleByteDecoder(const void* table)
      : table_(*static_cast<const DoubleByteTable*>(table)), substitute_(findSubstitute()) {}

  DecodeResult decodeSingle(unsigned char byte) override {
    if (!hasShifts() && table_.leadBytes[byte] != 0) return {DecodeResult::Kind::Prefix, 0, {}};
    const char16_t unit = singleUnit(byte);
    return resultOf(unit, unit != kUnmapped && (unit != kUnmappedSingle || byte == substitute_));
  }
  DecodeResult decodeSequence(const unsigned char* bytes, std::size_t) override {
    return decodePair(bytes[0], bytes[1]);
  }
  DecodeResult decodePair(unsigned char lead, unsigned char trail) override {
    const char16_t unit = toHostOrder(table_.pages[table_.pageNumbers[lead] - 1][trail]);
    return resultOf(unit, unit != kUnmapped);
  }
  bool hasShifts() const override { return table_.isEbcdic != 0; }
  bool ignoresRedundantShifts() const override { return false; }

 private:
  char16_t singleUnit(unsigned char byte) const { return toHostOrder(table_.pages[1][byte]); }

  /// Returns the byte of the control character U+001A, or 0 if the page does not contain it. In some tables
  /// unmapped single bytes have this unit, too, so the byte must be one where pages of this family have the
  /// character.
  unsigned char findSubstitute() const {
    constexpr unsigned char kPlaces[] = {0x1A, 0x7F, 0x3F};
    const auto* const place = std::ranges::find_if(kPlaces, [this](unsigned char byte) {
      return singleUnit(byte) == kUnmappedSingle && (table_.isEbcdic != 0) == (byte == 0x3F);
    });
    return place != std::end(kPlaces) ? *place : 0;
  }

  const DoubleByteTable& table_;
  unsigned char substitute_;
};

// ---- ICU -------------------------------------------------------------------------------------

/// Finds out how ICU decodes a sequence by feeding it in two steps: the bytes themselves, as a piece of a
/// text that continues, and then the end of that text. If the first step yields no unit, the bytes are a
/// prefix. Units that the second step yields are ICU's result for a truncated character. The end also resets
/// the converter, so calls are independent of each other.
class IcuDecoder : public PageDecoder {
 public:
  explicit IcuDecoder(const VelClConverterABase& converter) : codec_(converter) {
    // In pages with shifts, neither shift yields a unit. In other pages 0E and 0F are control characters and
    // yield one each.
    const unsigned char shifts[] = {kShiftOut, kShiftIn};
    hasShifts_ = decode(shifts, 1).kind == DecodeResult::Kind::Prefix &&
                 decode(shifts, sizeof shifts).kind == DecodeResult::Kind::Prefix;
  }

  DecodeResult decodeSingle(unsigned char byte) override { return decode(&byte, 1); }
  DecodeResult decodeSequence(const unsigned char* bytes, std::size_t size) override {
    return decode(bytes, size);
  }

  DecodeResult decodePair(unsigned char lead, unsigned char trail) override {
    const char text[] = {kShiftOut, static_cast<char>(lead), static_cast<char>(trail), kShiftIn};
    Units units;
    feed(units, text, sizeof text, true);
    DecodeResult result = classify(units, text, sizeof text);
    // In double-byte mode the trail byte belongs to the pair even if it is unmapped: decoding resumes after
    // it.
    if (result.kind != DecodeResult::Kind::Units) result.kind = DecodeResult::Kind::Invalid;
    return result;
  }

  bool hasShifts() const override { return hasShifts_; }
  bool ignoresRedundantShifts() const override { return true; }

 private:
  /// The units of one sequence; room for far more than a character has, so that ICU never finds the target
  /// full.
  struct Units {
    char16_t text[32];
    std::size_t count = 0;
    bool isValid = true;
  };

  DecodeResult decode(const unsigned char* bytes, std::size_t size) const {
    const auto* const text = reinterpret_cast<const char*>(bytes);
    Units units;
    const bool isPrefix = !feed(units, text, size, false);
    feed(units, "", 0, true);
    return isPrefix ? DecodeResult{DecodeResult::Kind::Prefix, 0, {}} : classify(units, text, size);
  }

  /// Appends the units of a piece to `units`; returns false if there were none.
  bool feed(Units& units, const char* bytes, std::size_t size, bool flush) const {
    const std::size_t room = std::size(units.text) - units.count;
    const auto piece = codec_.decodePiece(bytes, size, units.text + units.count, room, flush);
    units.count += piece.units;
    units.isValid = units.isValid && piece.isValid;
    return piece.units > 0;
  }

  DecodeResult classify(const Units& units, const char* bytes, std::size_t size) const {
    DecodeResult result{DecodeResult::Kind::Invalid, 0, {}};
    if (!units.isValid || units.count == 0 || units.count > std::size(result.units)) return result;
    const bool isSubstituted = std::any_of(units.text, units.text + units.count, [](char16_t unit) {
      return unit == kUnmapped || unit == kUnmappedSingle;
    });
    // A substitute and other units: ICU considered only the first byte ill-formed and decoded the others.
    if (isSubstituted && units.count > 1) {
      result.kind = DecodeResult::Kind::InvalidFirstByte;
      return result;
    }
    if (isSubstituted && !roundTrips(units.text[0], bytes, size)) return result;
    result.kind = DecodeResult::Kind::Units;
    result.count = static_cast<std::uint8_t>(units.count);
    std::copy_n(units.text, units.count, result.units);
    return result;
  }

  /// Whether ICU encodes the unit to these bytes, and not because it substitutes them.
  bool roundTrips(char16_t unit, const char* bytes, std::size_t size) const {
    char back[16];
    const std::size_t length = codec_.encode(&unit, 1, back, sizeof back);
    return length == size && std::memcmp(back, bytes, size) == 0 && !isSubstitute(bytes, size);
  }

  /// Whether the bytes are the page's double-byte substitute: ICU encodes an unmappable character to them,
  /// too. U+10FFFD, the last private-use character, is unmappable in nearly all pages.
  bool isSubstitute(const char* bytes, std::size_t size) const {
    const char16_t unmappable[] = {0xDBFF, 0xDFFD};
    char back[16];
    const std::size_t length = codec_.encode(unmappable, std::size(unmappable), back, sizeof back);
    return length == size && std::memcmp(back, bytes, size) == 0 && size > 1;
  }

  IcuPageCodec codec_;
  bool hasShifts_ = false;
};

}  // namespace

PageDecoder* makePageDecoder(const VelClCodePage2UnicodeConverter& converter) {
  if (converter.getRoute() == VelClConverterABase::VelEnRoute::ICU) return create<IcuDecoder>(converter);
  const void* const table = conversionDataOf(converter);
  // Aliases, such as 5026 for 930, have double-byte tables only: a search by the alias finds no single-byte
  // table.
  const bool isSingleByte = velGetSBCStoUCS2Table(converter.getSourceCCSID().getCCSID()) != nullptr;
  if (isSingleByte) return create<SingleByteDecoder>(table);
  return create<DoubleByteDecoder>(table);
}

}  // namespace vel::codepage
