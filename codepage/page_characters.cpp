#include "codepage/page_characters.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"
#include "foundation/allocator.h"

namespace vel::codepage {

namespace {

/// What stands where a table, or ICU, has no character.
constexpr char16_t kUnmapped = 0xFFFD;
constexpr char16_t kUnmappedSingle = 0x001A;

Meaning meaningOf(char16_t unit, bool isMapped) {
  return {isMapped ? Meaning::Kind::Units : Meaning::Kind::Fault, 1, {unit}};
}

// ---- Tables ----------------------------------------------------------------------------------

class SingleByteCharacters : public PageCharacters {
 public:
  explicit SingleByteCharacters(const void* table) : table_(static_cast<const std::uint16_t*>(table)) {}

  // Tables of single bytes have no other substitute.
  Meaning single(unsigned char byte) override {
    const std::uint16_t unit = toHostOrder(table_[byte]);
    return meaningOf(unit, unit != kUnmapped);
  }
  Meaning sequence(const unsigned char*, std::size_t) override { return {}; }
  Meaning shiftedPair(unsigned char, unsigned char) override { return {}; }
  bool hasShifts() const override { return false; }
  bool dropsIdleShifts() const override { return false; }

 private:
  const std::uint16_t* table_;
};

class DoubleByteCharacters : public PageCharacters {
 public:
  explicit DoubleByteCharacters(const void* table)
      : table_(*static_cast<const DoubleByteTable*>(table)), substitute_(findSubstitute()) {}

  Meaning single(unsigned char byte) override {
    if (!hasShifts() && table_.leadBytes[byte] != 0) return {Meaning::Kind::Prefix, 0, {}};
    const char16_t unit = singleUnit(byte);
    return meaningOf(unit, unit != kUnmapped && (unit != kUnmappedSingle || byte == substitute_));
  }
  Meaning sequence(const unsigned char* bytes, std::size_t) override {
    return shiftedPair(bytes[0], bytes[1]);
  }
  Meaning shiftedPair(unsigned char lead, unsigned char trail) override {
    const char16_t unit = toHostOrder(table_.pages[table_.pageNumbers[lead] - 1][trail]);
    return meaningOf(unit, unit != kUnmapped);
  }
  bool hasShifts() const override { return table_.isEbcdic != 0; }
  bool dropsIdleShifts() const override { return false; }

 private:
  char16_t singleUnit(unsigned char byte) const { return toHostOrder(table_.pages[1][byte]); }

  /// The byte that U+001A really has; unmapped ones of some tables have it, too.
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

/// Asks a converter that keeps its state what becomes of the bytes so far, and what else at their end.
class IcuCharacters : public PageCharacters {
 public:
  explicit IcuCharacters(const void* converter) : converter_(converter) {
    const unsigned char shifts[] = {kShiftOut, kShiftIn};
    hasShifts_ = ask(shifts, 1).kind == Meaning::Kind::Prefix &&
                 ask(shifts, sizeof shifts).kind == Meaning::Kind::Prefix;
  }

  Meaning single(unsigned char byte) override { return ask(&byte, 1); }
  Meaning sequence(const unsigned char* bytes, std::size_t size) override { return ask(bytes, size); }

  Meaning shiftedPair(unsigned char lead, unsigned char trail) override {
    const char text[] = {kShiftOut, static_cast<char>(lead), static_cast<char>(trail), kShiftIn};
    Units units;
    feed(units, text, sizeof text, true);
    Meaning meaning = judge(units, text, sizeof text);
    // Pairs stay pairs.
    if (meaning.kind != Meaning::Kind::Units) meaning.kind = Meaning::Kind::Fault;
    return meaning;
  }

  bool hasShifts() const override { return hasShifts_; }
  bool dropsIdleShifts() const override { return true; }

 private:
  struct Units {
    char16_t text[32];
    std::size_t count = 0;
    bool isGood = true;
  };

  Meaning ask(const unsigned char* bytes, std::size_t size) const {
    const auto* const text = reinterpret_cast<const char*>(bytes);
    Units units;
    const bool isPrefix = !feed(units, text, size, false);
    feed(units, "", 0, true);
    return isPrefix ? Meaning{Meaning::Kind::Prefix, 0, {}} : judge(units, text, size);
  }

  /// False when no unit came.
  bool feed(Units& units, const char* bytes, std::size_t size, bool isEnd) const {
    IcuText text{reinterpret_cast<char*>(units.text + units.count),
                 sizeof units.text - units.count * kUnitSize, bytes, size, 0};
    const std::size_t count = callIcu(continueToUnicode, converter_, text, isEnd) / kUnitSize;
    units.count += count;
    units.isGood = units.isGood && text.status <= 0;
    return count > 0;
  }

  Meaning judge(const Units& units, const char* bytes, std::size_t size) const {
    Meaning meaning{Meaning::Kind::Fault, 0, {}};
    if (!units.isGood || units.count == 0 || units.count > std::size(meaning.units)) return meaning;
    const bool isSubstituted = std::any_of(units.text, units.text + units.count, [](char16_t unit) {
      return unit == kUnmapped || unit == kUnmappedSingle;
    });
    if (isSubstituted && units.count > 1) {
      meaning.kind = Meaning::Kind::FirstByteFault;
      return meaning;
    }
    if (isSubstituted && !belongsTo(units.text[0], bytes, size)) return meaning;
    meaning.kind = Meaning::Kind::Units;
    meaning.count = static_cast<std::uint8_t>(units.count);
    std::copy_n(units.text, units.count, meaning.units);
    return meaning;
  }

  /// Whether these bytes are what the unit becomes.
  bool belongsTo(char16_t unit, const char* bytes, std::size_t size) const {
    char back[16];
    IcuText text{back, sizeof back, reinterpret_cast<const char*>(&unit), kUnitSize, 0};
    const std::size_t length = callIcu(convertFromUnicode, converter_, text);
    // A substitute is not what the unit becomes.
    return length == size && std::memcmp(back, bytes, size) == 0 && !isSubstitute(bytes, size);
  }

  /// Whether the bytes stand for what the page lacks: for the last private character, too.
  bool isSubstitute(const char* bytes, std::size_t size) const {
    const char16_t lacking[] = {0xDBFF, 0xDFFD};
    char back[16];
    IcuText text{back, sizeof back, reinterpret_cast<const char*>(lacking), sizeof lacking, 0};
    const std::size_t length = callIcu(convertFromUnicode, converter_, text);
    return length == size && std::memcmp(back, bytes, size) == 0 && size > 1;
  }

  const void* converter_;
  bool hasShifts_ = false;
};

}  // namespace

void throwOutOfMemory() {
  constexpr const char* kOrigin = "VelClStrictConversion, ICU";
  VelClExceptionFatal exception(ICU_MEMORY_ALLOCATION_ERROR, VelEnErrorClass::OUT_OF_MEMORY,
                                VelEnErrorAction::TERMINATE, "");
  exception.setOrigin(kOrigin, 0);
  throw exception;
}

const void* conversionDataOf(const VelClConverterABase& converter) {
  const char* none = nullptr;
  return Call{converter, nullptr, 0, &none, 0}.getConversionData();
}

PageCharacters* makePageCharacters(const VelClCodePage2UnicodeConverter& converter) {
  const void* const data = conversionDataOf(converter);
  if (converter.getRoute() == VelClConverterABase::VelEnRoute::ICU) return create<IcuCharacters>(data);
  // Other numbers stand for double-byte tables only.
  const bool isSingleByte = velGetSBCStoUCS2Table(converter.getSourceCCSID().getCCSID()) != nullptr;
  if (isSingleByte) return create<SingleByteCharacters>(data);
  return create<DoubleByteCharacters>(data);
}

}  // namespace vel::codepage
