// A tool that behaves as users of today expect it: --help and --version, --top=5 and -top 5, "--" and "-",
// suggestions for mistyped switches, and nothing but its result on standard output. It counts words:
//
//   example_top_words --top=3 poem.txt
//   example_top_words -format tsv < poem.txt | sort
#include <vel.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* kUsage =
    "[(-top <number>)] [(-format <text|tsv>)] [-ignorecase]\n"
    "[<file> ...]";

constexpr const char* kHelp =
    "-top <number>       how many words to print; the default is 10\n"
    "-format <text|tsv>  aligned for readers, or words and counts between tabs\n"
    "-ignorecase         count \"The\" and \"the\" as one word\n"
    "<file>              the files to read; - is standard input, which is read if there is no file\n"
    "@\n"
    "Exit codes: 0 success, 1 a file cannot be read, 2 the words cannot be written, 201 to 204\n"
    "the command line is wrong.";

using Counts = std::map<std::string, unsigned long>;

bool isLetter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

void countWords(std::istream& stream, bool ignoreCase, Counts& counts) {
  std::string word;
  for (int c = stream.get(); c != std::istream::traits_type::eof() || !word.empty(); c = stream.get()) {
    const char letter = std::istream::traits_type::to_char_type(c);
    if (c != std::istream::traits_type::eof() && isLetter(letter)) {
      word += ignoreCase && letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
      continue;
    }
    if (!word.empty()) ++counts[word];
    word.clear();
  }
}

/// Counts the words of every file of the command line. Returns false if one cannot be read.
bool countFiles(const VelClConsoleUI& ui, bool ignoreCase, Counts& counts) {
  bool allRead = true;
  VelClArgvFreeCursor file(ui);
  if (!file.setToFirst()) countWords(std::cin, ignoreCase, counts);
  for (; file.isValid(); file.setToNext()) {
    const std::string_view name = file.getAsCString();
    std::ifstream stream;
    if (name != "-") stream.open(file.getAsCString(), std::ios::binary);
    std::istream& words = name == "-" ? std::cin : stream;
    countWords(words, ignoreCase, counts);
    if (!words.bad() && (name == "-" || stream.is_open())) continue;
    ui.error(std::cerr, "Cannot read", file.getAsCString());
    allRead = false;
  }
  return allRead;
}

void print(const VelClConsoleUI& ui, const Counts& counts, std::size_t limit, bool asTable) {
  std::vector<Counts::const_iterator> words;
  for (auto word = counts.begin(); word != counts.end(); ++word) words.push_back(word);
  std::ranges::stable_sort(words, std::greater(), [](const auto& word) { return word->second; });
  words.resize(std::min(words.size(), limit));
  for (const auto& word : words) {
    if (asTable)
      std::cout << word->first << '\t' << word->second << '\n';
    else
      std::cout << ui.style(std::cout, VelEnTextStyle::EMPHASIS) << word->first
                << ui.style(std::cout, VelEnTextStyle::PLAIN) << ": " << word->second << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0", .abbreviations = true});
  ui.init("Top words", "counts the words of texts", "1.0", "Nov 21 2026");
  ui.handleUsageHelp(kUsage, kHelp);

  int top = 10;
  ui.hasArgNumval("top", top);
  if (top < 1) ui.fatal(CONUI_USAGE, "At least one word must be wanted", "-top");
  const char* format = "text";
  ui.hasArgString("format", format);
  const bool asTable = std::string_view(format) == "tsv";
  if (!asTable && std::string_view(format) != "text") ui.fatal(CONUI_USAGE, "Unknown format", format);

  Counts counts;
  const bool allRead = countFiles(ui, ui.hasArgSwitch("ignorecase"), counts);
  print(ui, counts, static_cast<std::size_t>(top), asTable);
  if (!std::cout.flush()) ui.fatal(2, "Cannot write the words");
  return allRead ? 0 : 1;
}
