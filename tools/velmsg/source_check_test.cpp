#include "tools/velmsg/source_check.h"

#include "platform/test/test.h"
#include "tools/velmsg/po_translation.h"
#include "tools/velmsg/source_text.h"
#include "tools/velmsg/test/random_source.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

/// Returns the findings, "line:column text-id argument" each.
std::vector<std::string> check(const MessageSource& source) {
  Diagnostics findings;
  checkSource(source, referenceLanguage(source), findings);
  std::vector<std::string> found;
  for (const Diagnostic& finding : findings)
    found.push_back(std::to_string(finding.position.line) + ':' + std::to_string(finding.position.column) +
                    ' ' + std::to_string(finding.text) + ' ' + finding.argument);
  return found;
}

std::string found(const std::string& place, unsigned long text, const std::string& argument) {
  return place + ' ' + std::to_string(text) + ' ' + argument;
}

/// A source with one message, whose English text begins in line 5.
MessageSource sourceOf(const std::string& english, const std::string& german) {
  return test::readSource(
      "LanguageNames=(English=0x409:E)\nLanguageNames=(German=0x407:G)\nMessageId=1\nLanguage=English\n" +
      english + "\n.\n" + (german == "-" ? "" : "Language=German\n" + german + "\n.\n"));
}

TEST(SourceCheck, FindsWhatProgramsCannotShow) {
  using Findings = std::vector<std::string>;
  const std::pair<std::string, Findings> rows[] = {
      {"%1 of %2!-8.3s! %10!s! 100%% %t%b%r%.%!%n%0", {}},
      {"a% % \nb% %0", {}},
      {"% % a", {}},
      {"100% sure", {found("5:4", kUnknownEscape, "% sure")}},
      {"ä %x %y", {found("5:3", kUnknownEscape, "%x %y")}},
      {"a\nbc%\nd", {found("6:3", kUnknownEscape, "%")}},
      {"%1!d!", {found("5:1", kInsertNotText, "%1!d!")}},
      {"%1!*s! %2!lu!", {found("5:1", kInsertNotText, "%1!*s! %2!lu")}},
      {"%11 %1", {found("5:1", kInsertAboveMaximum, "%11 %1")}},
      {"a %1!s", {found("5:3", kEscapeNotEnded, "%1!s")}},
      {"a%0b", {found("5:4", kTextAfterEnd, "b")}},
      {"a%0\n \nb", {found("7:1", kTextAfterEnd, "b")}},
      {"a\tb\n\xC3\xA4%q\x1B\r",
       {found("6:2", kUnknownEscape, "%q"), found("6:4", kControlCharacter, "0x1B")}},
      {"%0", {found("5:1", kEmptyText, "English")}},
      {std::string(4094, 'x'), {}},
      {std::string(4095, 'x'), {found("5:1", kExpandedTooLong, "4097")}},
      {"%1!5000s!%0", {found("5:1", kExpandedTooLong, "4097")}},
      {std::string(32761, 'x'), {found("5:1", kExpandedTooLong, "32763")}},
      {std::string(32762, 'x'),
       {found("5:1", kExpandedTooLong, "32764"), found("5:1", kTextTooLong, "32764")}},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(check(sourceOf(text, text)).size(), 2 * expected.size()) << text.substr(0, 40);
  for (const auto& [text, expected] : rows) {
    auto findings = check(sourceOf(text, text));
    findings.resize(expected.size());
    EXPECT_EQ(findings, expected) << text.substr(0, 40);
  }
}

TEST(SourceCheck, ComparesLanguages) {
  struct Row {
    std::string english, german;
    std::vector<std::string> expected;
  };
  const std::string at = "8:1";
  const std::string both = "German, English";
  const Row rows[] = {
      {"%1 and %2", "%2!8s! und %1 und %1", {}},
      {"none", "-", {found("3:1", kNoTranslation, "German"), found("2:16", kUnusedLanguage, "German")}},
      {"%1", "%2", {found(at, kDifferentInserts, both + ": %2 / %1")}},
      {"%1", "x", {found(at, kDifferentInserts, both + ": - / %1")}},
      {"a%0", "b", {found(at, kDifferentEnds, both)}},
      {"a", "\nb", {found(at, kDifferentBreaks, both)}},
      {"a", "b\n", {found(at, kDifferentBreaks, both)}},
  };
  for (const Row& row : rows) {
    auto findings = check(sourceOf(row.english, row.german));
    auto expected = row.expected;
    if (row.german == "-") expected = {row.expected[1]};
    EXPECT_EQ(findings, expected) << row.english << " / " << row.german;
  }
  EXPECT_THAT(check(sourceOf("%1!d!", "%1")),
              testing::Contains(found(at, kDifferentInserts, both + ": %1 / %1!d!")));
  EXPECT_EQ(check(test::readSource(
                "LanguageNames=(E=0x409) LanguageNames=(G=0x407)\nMessageId=1\nLanguage=G\na\n.\n"
                "Language=E\na\n.\nMessageId=2\nLanguage=E\na\n.\n")),
            std::vector{found("9:1", kNoTranslation, "G")});
}

/// The time must not depend on the square of the size: this takes minutes then.
TEST(SourceCheck, TakesLinearTime) {
  for (const char* const piece : {"% ", "%1!", "%x", "%", "%1!d!", "\n"}) {
    std::string text = "a";
    for (int i = 0; i < 400'000; ++i) text += piece;
    readSourceText(text + "b");
  }
}

}  // namespace
}  // namespace vel::velmsg
