// Converters for one direction, the classes that all of them derive from, and what is below them.
#include <vel.h>

#include <iostream>
#include <string>

namespace {

/// Any converter; `size` is in bytes.
std::string converted(const VelClConverterABase& converter, const void* source, std::size_t size) {
  std::string out(converter.getSufficientSizeForSize(size), '\0');
  const char* next = static_cast<const char*>(source);
  out.resize(converter.convertBytes(out.data(), out.size(), &next, size));
  if (next != static_cast<const char*>(source) + size) std::cout << "the end is incomplete\n";
  return out;
}

}  // namespace

int main() {
  const VelClCodePage2UnicodeConverter decoder(VelClCCSID(500));
  const VelClUnicode2CodePageConverter encoder(VelClCCSID(500));
  const std::string units = converted(decoder, "\xC1\xC2", 2);
  std::cout << "UCS-2: " << VelClStrepHexDump(units.data(), units.size()).getAsCString() << '\n';
  std::cout << "back:  " << (converted(encoder, units.data(), units.size()) == "\xC1\xC2") << '\n';
  std::cout << "by a table: " << (decoder.getRoute() == VelClConverterABase::VelEnRoute::TABLE) << '\n';

  // The table of a code page with double bytes: the Hiragana letter A of 939 has the bytes 44 81.
  bool isEbcdic = false;
  const VelStDoubleByteTable* const table = velGetDBCStoUCS2Table(939, isEbcdic);
  const uint16_t unit = table->pages[table->pageNumbers[0x44] - 1][0x81];
  const unsigned int character = (unit & 0xFFU) << 8 | unit >> 8;
  std::cout << "character: " << (character == 0x3042) << ", shifts: " << isEbcdic << '\n';

  _VelStError error;
  VelClIcuInterface::mapIcuError(error, 15);
  const bool isTooBig = error.errorId == VelClIcuInterface::getVelErrorIdForIcuError(15);
  std::cout << "status of ICU: " << isTooBig << VelClIcuInterface::isIcuError(-122) << '\n';
}
