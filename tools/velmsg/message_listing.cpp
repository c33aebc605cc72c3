#include "tools/velmsg/message_listing.h"

#include <ostream>
#include <string_view>

#include "tools/json_text.h"
#include "tools/velmsg/catalog_report.h"
#include "tools/velmsg/source_text.h"

namespace vel::velmsg {
namespace {

/// Catalogs have CR LF for a line break, as a rule.
std::string withPlainBreaks(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') result += text[i];
  return result;
}

/// Visits the keys of two maps in ascending order. `visit` gets the entries, null for a map that lacks the
/// key.
template <typename Map, typename Visit>
void visitBoth(const Map& first, const Map& second, Visit visit) {
  auto a = first.begin(), b = second.begin();
  while (a != first.end() || b != second.end()) {
    const bool isInFirst = a != first.end() && (b == second.end() || a->first <= b->first);
    const bool isInSecond = b != second.end() && (a == first.end() || b->first <= a->first);
    visit(isInFirst ? a->first : b->first, isInFirst ? &a->second : nullptr,
          isInSecond ? &b->second : nullptr);
    if (isInFirst) ++a;
    if (isInSecond) ++b;
  }
}

/// Writes a difference of two texts of a message; either may be null.
void writeDifference(std::ostream& out, std::uint32_t id, unsigned int language, const std::string* first,
                     const std::string* second) {
  const char* const only = second == nullptr ? "<" : ">";
  if (first == nullptr || second == nullptr) {
    out << only << '\t' << id << '\t' << language << '\n';
    return;
  }
  const std::string inserts = insertsText(readSourceText(*first).inserts),
                    otherInserts = insertsText(readSourceText(*second).inserts);
  const bool isSame = inserts == otherInserts;
  out << (isSame ? "~" : "!") << '\t' << id << '\t' << language << '\t';
  writeEscaped(out, isSame ? *first : inserts);
  out << '\t';
  writeEscaped(out, isSame ? *second : otherInserts);
  out << '\n';
}

}  // namespace

MessageListing listingOf(const MessageSource& source, std::optional<std::uint32_t> language) {
  MessageListing listing;
  for (const SourceMessage& message : source.messages) {
    for (const SourceText& text : message.texts) {
      const std::uint16_t number = source.languages[text.language].number;
      if (language && *language != number) continue;
      ListedMessage& listed = listing[message.id];
      listed.symbolicName = message.symbolicName;
      listed.texts[number] = text.text;
    }
  }
  return listing;
}

MessageListing listingOf(const VelClMessageCatalog& catalog, std::optional<std::uint32_t> language) {
  MessageListing listing;
  VelClMessageCatalogCursor message(catalog);
  for (bool more = message.setToFirst(); more; more = message.setToNext())
    if (!language || *language == message.getLanguage())
      listing[static_cast<std::uint32_t>(message.getId())].texts[message.getLanguage()] =
          withPlainBreaks(message.getAsCString());
  return listing;
}

void writeTsv(std::ostream& out, const MessageListing& listing) {
  for (const auto& [id, message] : listing) {
    for (const auto& [language, text] : message.texts) {
      out << id << '\t' << language << '\t' << message.symbolicName << '\t';
      writeEscaped(out, text);
      out << '\n';
    }
  }
}

void writeJson(std::ostream& out, const MessageListing& listing) {
  const char* separator = "[\n";
  for (const auto& [id, message] : listing) {
    out << separator << "{\"id\": " << id;
    if (!message.symbolicName.empty()) out << ", \"name\": " << tools::jsonText(message.symbolicName);
    out << ", \"texts\": ";
    const char* textSeparator = "{";
    for (const auto& [language, text] : message.texts) {
      out << textSeparator << '"' << language << "\": " << tools::jsonText(text);
      textSeparator = ", ";
    }
    out << "}}";
    separator = ",\n";
  }
  out << (listing.empty() ? "[]\n" : "\n]\n");
}

bool writeDifferences(std::ostream& out, const MessageListing& first, const MessageListing& second) {
  bool isSame = true;
  visitBoth(first, second, [&](std::uint32_t id, const ListedMessage* a, const ListedMessage* b) {
    if (a == nullptr || b == nullptr) {
      isSame = false;
      out << (b == nullptr ? "<" : ">") << '\t' << id << '\n';
      return;
    }
    if (a->symbolicName != b->symbolicName) {
      isSame = false;
      out << "@\t" << id << '\t' << a->symbolicName << '\t' << b->symbolicName << '\n';
    }
    visitBoth(a->texts, b->texts, [&](unsigned int language, const std::string* x, const std::string* y) {
      if (x != nullptr && y != nullptr && *x == *y) return;
      isSame = false;
      writeDifference(out, id, language, x, y);
    });
  });
  return isSame;
}

}  // namespace vel::velmsg
