// Maps the locale's code set to a CCSID and converts UTF-16 to it with iconv. Only the process's own code
// page is converted here; the library's code pages are in codepage/.
#include <iconv.h>
#include <langinfo.h>
#include <strings.h>

#include <cerrno>
#include <cstring>

#include "base/utf.h"
#include "platform/code_pages.h"
#include "platform/posix/locale_variables.h"

namespace vel::platform {

namespace {

struct CodeSet {
  const char* name;
  std::uint32_t ccsid;
};

/// Code sets by the names that systems report (with and without the first hyphen) and their CCSIDs. The first
/// name of a CCSID is the one given to iconv. The list is not sorted; it is searched from its start.
constexpr CodeSet kCodeSets[] = {
    {"ANSI_X3.4-1968", 367}, {"US-ASCII", 367},   {"UTF-8", 1208},      {"UTF8", 1208},
    {"ISO-8859-1", 819},     {"ISO8859-1", 819},  {"ISO-8859-2", 912},  {"ISO8859-2", 912},
    {"ISO-8859-5", 915},     {"ISO8859-5", 915},  {"ISO-8859-6", 1089}, {"ISO8859-6", 1089},
    {"ISO-8859-7", 813},     {"ISO8859-7", 813},  {"ISO-8859-8", 916},  {"ISO8859-8", 916},
    {"ISO-8859-9", 920},     {"ISO8859-9", 920},  {"ISO-8859-13", 921}, {"ISO8859-13", 921},
    {"ISO-8859-15", 923},    {"ISO8859-15", 923}, {"CP1250", 5346},     {"CP1251", 5347},
    {"CP1252", 5348},        {"CP1255", 5351},    {"CP1256", 5352},     {"KOI8-R", 878},
    {"TIS-620", 874},        {"EUC-JP", 33722},   {"EUC-KR", 970},      {"GB2312", 1383},
    {"GBK", 1386},           {"GB18030", 1392},   {"BIG5", 950},        {"SHIFT_JIS", 943},
};

std::uint32_t ccsidOfName(const char* name, std::size_t length) noexcept {
  for (const CodeSet& set : kCodeSets)
    if (std::strlen(set.name) == length && strncasecmp(set.name, name, length) == 0) return set.ccsid;
  return 0;
}

const char* nameOfCcsid(std::uint32_t ccsid) noexcept {
  for (const CodeSet& set : kCodeSets)
    if (set.ccsid == ccsid) return set.name;
  return nullptr;
}

/// The UTF-16 text left to convert and the space left for it; sizes in bytes.
struct Conversion {
  iconv_t converter;
  char* text;
  std::size_t textSize;
  char* out;
  std::size_t capacity;
};

std::size_t sizeOfFirstCharacter(const Conversion& todo) noexcept {
  char16_t units[2] = {};
  std::memcpy(units, todo.text, todo.textSize < sizeof units ? todo.textSize : sizeof units);
  return unitsOfFirstCharacter(units, 2) * sizeof *units;
}

/// Converts one character, so that an error can only be this character's: it is unmappable and becomes "?".
/// False if the target is full.
bool convertCharacter(Conversion& todo) noexcept {
  std::size_t left = sizeOfFirstCharacter(todo);
  char* const next = todo.text + left;
  todo.textSize -= left;
  const std::size_t result = iconv(todo.converter, &todo.text, &left, &todo.out, &todo.capacity);
  if (result != static_cast<std::size_t>(-1)) return true;
  if (errno == E2BIG || todo.capacity == 0) return false;
  *todo.out++ = '?';
  --todo.capacity;
  todo.text = next;
  return true;
}

}  // namespace

std::uint32_t ansiCodePage() noexcept {
  const char* const codeSet = nl_langinfo(CODESET);
  const std::uint32_t ccsid = ccsidOfName(codeSet, std::strlen(codeSet));
  // CCSID 367 is ASCII.
  if (ccsid != 367) return ccsid;
  // A program that never calls setlocale() runs in the ASCII locale "C", whatever its user's locale is. The
  // environment says which encoding the terminal expects.
  const char* const named = std::strchr(localeNameFor("LC_CTYPE"), '.');
  if (named == nullptr) return ccsid;
  return ccsidOfName(named + 1, std::strcspn(named + 1, "@"));
}

std::uint32_t oemCodePage() noexcept {
  return ansiCodePage();
}

std::size_t utf16ToCodePage(std::uint32_t codePage, const char16_t* text, std::size_t length, char* out,
                            std::size_t capacity) noexcept {
  const char* const name = nameOfCcsid(codePage);
  if (name == nullptr || length == 0) return 0;
  auto* const converter = iconv_open(name, "UTF-16LE");
  if (reinterpret_cast<std::intptr_t>(converter) == -1) return 0;
  char* const source = const_cast<char*>(reinterpret_cast<const char*>(text));
  Conversion todo{converter, source, length * sizeof(char16_t), out, capacity};
  bool fits = true;
  while (fits && todo.textSize != 0) fits = convertCharacter(todo);
  iconv_close(converter);
  return fits ? static_cast<std::size_t>(todo.out - out) : 0;
}

}  // namespace vel::platform
