// Lists catalogs' messages and languages, and compares two catalogs.
#include "tools/velmsg/catalog_report.h"

#include <cctype>
#include <cstring>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <string_view>

namespace vel::velmsg {
namespace {

using Inserts = std::set<std::string>;
using InsertsByLanguage = std::map<unsigned int, Inserts>;
using InsertsById = std::map<unsigned long, InsertsByLanguage>;

template <typename Take>
void forEachMessage(const VelClMessageCatalog& catalog, Take take) {
  VelClMessageCatalogCursor message(catalog);
  for (bool more = message.setToFirst(); more; more = message.setToNext()) take(message);
}

/// The mark that ends a library's text without a line break is not part of what the user sees.
std::string_view withoutEndMark(std::string_view text) {
  constexpr std::string_view kEndMark = "%0";
  if (text.ends_with(kEndMark) && !text.ends_with("%%0")) text.remove_suffix(kEndMark.size());
  return text;
}

/// On one line: line breaks, tabs and back-slashes are escaped.
void writeEscaped(std::ostream& stream, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case '\r':
        if (i + 1 == text.size() || text[i + 1] != '\n') stream << "\\r";
        break;
      case '\n':
        stream << "\\n";
        break;
      case '\t':
        stream << "\\t";
        break;
      case '\\':
        stream << "\\\\";
        break;
      default:
        stream.put(text[i]);
    }
  }
}

bool isDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// The insert behind a percent sign: its number and, in libraries, how it is to be printed ("1!8s!").
std::string takeInsert(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  while (position < text.size() && isDigit(text[position])) ++position;
  if (position < text.size() && text[position] == '!') {
    const std::size_t end = text.find('!', position + 1);
    if (end != std::string_view::npos) position = end + 1;
  }
  return std::string(text.substr(start, position - start));
}

Inserts insertsOf(std::string_view text) {
  Inserts inserts;
  for (std::size_t i = text.find('%'); i < text.size(); i = text.find('%', i)) {
    ++i;
    if (i < text.size() && isDigit(text[i]) && text[i] != '0')
      inserts.insert(takeInsert(text, i));
    else if (i < text.size())
      ++i;
  }
  return inserts;
}

InsertsById insertsOf(const VelClMessageCatalog& catalog) {
  InsertsById inserts;
  forEachMessage(catalog, [&inserts](const VelClMessageCatalogCursor& message) {
    inserts[message.getId()][message.getLanguage()] = insertsOf(message.getAsCString());
  });
  return inserts;
}

std::string joined(const Inserts& inserts) {
  std::string text;
  for (const std::string& insert : inserts) text += (text.empty() ? "%" : " %") + insert;
  return text.empty() ? "-" : text;
}

/// Where both catalogs have a language in common, texts of the same language are compared, otherwise every
/// text with every other.
const Inserts* differing(const InsertsByLanguage& first, const InsertsByLanguage& second,
                         const Inserts*& other) {
  bool common = false;
  for (const auto& entry : first) common = common || second.contains(entry.first);
  for (const auto& [language, inserts] : first)
    for (const auto& [otherLanguage, otherInserts] : second)
      if ((!common || language == otherLanguage) && inserts != otherInserts) {
        other = &otherInserts;
        return &inserts;
      }
  return nullptr;
}

}  // namespace

bool listMessages(std::ostream& stream, const VelClMessageCatalog& catalog,
                  std::optional<std::uint32_t> language) {
  bool found = false;
  forEachMessage(catalog, [&](const VelClMessageCatalogCursor& message) {
    if (language && *language != message.getLanguage()) return;
    found = true;
    stream << message.getId() << '\t' << message.getLanguage() << '\t';
    writeEscaped(stream, withoutEndMark(message.getAsCString()));
    stream << '\n';
  });
  return found;
}

bool listLanguages(std::ostream& stream, const VelClMessageCatalog& catalog) {
  std::map<unsigned int, unsigned long> counts;
  forEachMessage(catalog,
                 [&counts](const VelClMessageCatalogCursor& message) { ++counts[message.getLanguage()]; });
  for (const auto& [language, count] : counts) stream << language << '\t' << count << '\n';
  return !counts.empty();
}

bool listDifferences(std::ostream& stream, const VelClMessageCatalog& first,
                     const VelClMessageCatalog& second) {
  const InsertsById firstInserts = insertsOf(first);
  const InsertsById secondInserts = insertsOf(second);
  std::set<unsigned long> ids;
  for (const auto& entry : firstInserts) ids.insert(entry.first);
  for (const auto& entry : secondInserts) ids.insert(entry.first);
  bool same = true;
  for (const unsigned long id : ids) {
    const auto in1 = firstInserts.find(id);
    const auto in2 = secondInserts.find(id);
    const bool only1 = in2 == secondInserts.end();
    const bool only2 = in1 == firstInserts.end();
    const Inserts* other = nullptr;
    const Inserts* inserts = only1 || only2 ? nullptr : differing(in1->second, in2->second, other);
    if (only1 || only2)
      stream << (only1 ? "<\t" : ">\t") << id << '\n';
    else if (inserts != nullptr)
      stream << "!\t" << id << '\t' << joined(*inserts) << '\t' << joined(*other) << '\n';
    same = same && !only1 && !only2 && inserts == nullptr;
  }
  return same;
}

}  // namespace vel::velmsg
