// Lists the messages and languages of a catalog, and compares two catalogs.
//
// Catalogs differ by the inserts of their messages ("%1", "%2!8s!"), not by their wording: a translation is
// expected to have other words, but a program passes the same inserts to it. A catalog returns its ids in
// ascending order, so two catalogs are compared in one pass, as sorted lists are merged.
#include "tools/velmsg/catalog_report.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vel::velmsg {
namespace {

/// Sorted, without duplicates: where and how often a text shows an insert is a matter of language.
using Inserts = std::vector<std::string>;
using InsertsByLanguage = std::map<unsigned int, Inserts>;

template <typename Visit>
void forEachMessage(const VelClMessageCatalog& catalog, Visit visit) {
  VelClMessageCatalogCursor message(catalog);
  for (bool more = message.setToFirst(); more; more = message.setToNext()) visit(message);
}

/// Removes the mark "%0", by which the text of a catalog library ends without a line break. Users never see
/// it. In "%%0" the two percent signs are one character of the text, and the "0" is another one.
std::string_view withoutEndMark(std::string_view text) {
  constexpr std::string_view kEndMark = "%0";
  if (text.ends_with(kEndMark) && !text.ends_with("%%0")) text.remove_suffix(kEndMark.size());
  return text;
}

bool isDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// Parses the insert after a percent sign: its number and, in catalog libraries, its format, as in "1!8s!".
/// Moves the position after it.
std::string parseInsert(std::string_view text, std::size_t& position) {
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
      inserts.push_back(parseInsert(text, i));
    else if (i < text.size())
      ++i;
  }
  std::sort(inserts.begin(), inserts.end());
  inserts.erase(std::unique(inserts.begin(), inserts.end()), inserts.end());
  return inserts;
}

/// Walks the ids of a catalog, and collects the inserts that an id has in each language.
class InsertWalk {
 public:
  explicit InsertWalk(const VelClMessageCatalog& catalog) : message_(catalog) {
    message_.setToFirst();
    next();
  }

  bool atEnd() const { return inserts_.empty(); }
  unsigned long id() const { return id_; }
  const InsertsByLanguage& inserts() const { return inserts_; }
  void next() {
    inserts_.clear();
    id_ = message_.getId();
    for (; message_.isValid() && message_.getId() == id_; message_.setToNext())
      inserts_[message_.getLanguage()] = insertsOf(message_.getAsCString());
  }

 private:
  VelClMessageCatalogCursor message_;
  unsigned long id_ = 0;
  InsertsByLanguage inserts_;
};

std::string joined(const Inserts& inserts) {
  std::string text;
  for (const std::string& insert : inserts) text += (text.empty() ? "%" : " %") + insert;
  return text.empty() ? "-" : text;
}

using Difference = std::optional<std::pair<const Inserts*, const Inserts*>>;

const Inserts* firstDiffering(const InsertsByLanguage& texts, const Inserts& inserts) {
  const auto other =
      std::find_if(texts.begin(), texts.end(), [&](const auto& text) { return text.second != inserts; });
  return other == texts.end() ? nullptr : &other->second;
}

/// Compares every text of one catalog with every text of the other. Returns the inserts of two that differ,
/// or nothing.
Difference differing(const InsertsByLanguage& first, const InsertsByLanguage& second) {
  if (const Inserts* const other = firstDiffering(second, first.begin()->second))
    return std::pair(&first.begin()->second, other);
  if (const Inserts* const other = firstDiffering(first, second.begin()->second))
    return std::pair(other, &second.begin()->second);
  return std::nullopt;
}

/// Compares the texts of one id. If the catalogs have a language in common, only texts of the same language
/// are compared, otherwise every text with every other.
Difference compare(const InsertsByLanguage& first, const InsertsByLanguage& second) {
  bool common = false;
  for (const auto& [language, inserts] : first) {
    const auto other = second.find(language);
    if (other == second.end()) continue;
    common = true;
    if (inserts != other->second) return std::pair(&inserts, &other->second);
  }
  return common ? std::nullopt : differing(first, second);
}

/// Writes how the catalogs differ at the lower of their current ids, and moves on in those that have it.
/// Returns false if they differ.
bool compareNext(std::ostream& stream, InsertWalk& first, InsertWalk& second) {
  const bool only1 = !first.atEnd() && (second.atEnd() || first.id() < second.id());
  const bool only2 = !second.atEnd() && (first.atEnd() || second.id() < first.id());
  Difference difference;
  if (only1)
    stream << "<\t" << first.id() << '\n';
  else if (only2)
    stream << ">\t" << second.id() << '\n';
  else if ((difference = compare(first.inserts(), second.inserts())))
    stream << "!\t" << first.id() << '\t' << joined(*difference->first) << '\t' << joined(*difference->second)
           << '\n';
  if (!only2) first.next();
  if (!only1) second.next();
  return !only1 && !only2 && !difference;
}

}  // namespace

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
  InsertWalk walk(first), otherWalk(second);
  bool same = true;
  while (!walk.atEnd() || !otherWalk.atEnd())
    if (!compareNext(stream, walk, otherWalk)) same = false;
  return same;
}

}  // namespace vel::velmsg
