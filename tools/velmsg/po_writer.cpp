// Writes .po files. Long lines are not wrapped: the tools of translators wrap them in ways of their own.
#include <algorithm>

#include "tools/velmsg/po_file.h"

namespace vel::velmsg {
namespace {

constexpr std::string_view kEscaped = "\a\b\t\n\v\f\r\"\\";
constexpr std::string_view kNames = "abtnvfr\"\\";

void appendEscaped(std::string& out, char c) {
  const std::size_t found = kEscaped.find(c);
  const auto value = static_cast<unsigned char>(c);
  if (found != std::string_view::npos) {
    out += {'\\', kNames[found]};
  } else if (value < 0x20 || value == 0x7F) {
    // Always three digits, so that a digit may follow.
    out += {'\\', '0', static_cast<char>('0' + (value >> 3 & 7)), static_cast<char>('0' + (value & 7))};
    if (value == 0x7F) out[out.size() - 3] = '1';
  } else {
    out += c;
  }
}

void appendString(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) appendEscaped(out, c);
  out += "\"\n";
}

/// Writes a text of several lines as a string for each of them.
void appendField(std::string& out, std::string_view prefix, std::string_view keyword, std::string_view text) {
  out.append(prefix).append(keyword) += ' ';
  const std::size_t first = text.find('\n');
  if (first == std::string_view::npos || first + 1 == text.size()) return appendString(out, text);
  out += "\"\"\n";
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    out += prefix;
    appendString(out, text.substr(0, length));
    text.remove_prefix(length);
  }
}

void appendComments(std::string& out, std::string_view mark, const std::vector<std::string>& comments) {
  for (const std::string& comment : comments) {
    out += mark;
    if (!comment.empty()) out.append(" ").append(comment);
    out += '\n';
  }
}

void appendEntry(std::string& out, const PoEntry& entry) {
  const std::string_view prefix = entry.isObsolete ? "#~ " : "";
  appendComments(out, "#", entry.comments);
  appendComments(out, "#.", entry.extracted);
  appendComments(out, "#:", entry.references);
  for (const std::string& flag : entry.flags)
    out.append(&flag == entry.flags.data() ? "#, " : ", ").append(flag);
  if (!entry.flags.empty()) out += '\n';
  appendComments(out, entry.isObsolete ? "#~|" : "#|", entry.previous);
  if (entry.context) appendField(out, prefix, "msgctxt", *entry.context);
  appendField(out, prefix, "msgid", entry.id);
  appendField(out, prefix, "msgstr", entry.text);
}

}  // namespace

std::vector<std::string> poFieldLines(std::string_view keyword, std::string_view text) {
  std::string field;
  appendField(field, "", keyword, text);
  std::vector<std::string> lines;
  for (std::string_view rest = field; !rest.empty(); rest.remove_prefix(lines.back().size() + 1))
    lines.emplace_back(rest.substr(0, rest.find('\n')));
  return lines;
}

std::string writePo(const PoFile& po) {
  std::string out;
  for (const PoEntry& entry : po.entries) {
    if (!out.empty()) out += '\n';
    appendEntry(out, entry);
  }
  return out;
}

bool PoEntry::hasFlag(std::string_view flag) const {
  return std::ranges::find(flags, flag) != flags.end();
}

const PoEntry* PoFile::header() const {
  const auto found = std::ranges::find_if(entries, &PoEntry::isHeader);
  return found == entries.end() ? nullptr : &*found;
}

std::string PoFile::headerField(std::string_view name) const {
  const PoEntry* const found = header();
  if (found == nullptr) return {};
  for (std::string_view rest = found->text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!line.starts_with(name) || !line.substr(name.size()).starts_with(':')) continue;
    line.remove_prefix(name.size() + 1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return std::string(line.substr(0, line.find_last_not_of(" \t\r") + 1));
  }
  return {};
}

}  // namespace vel::velmsg
