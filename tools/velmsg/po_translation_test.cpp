#include "tools/velmsg/po_translation.h"

#include "platform/test/test.h"
#include "tools/velmsg/source_text.h"
#include "tools/velmsg/source_writer.h"
#include "tools/velmsg/test/random_source.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

constexpr std::uint16_t kEnglish = 0x409, kGerman = 0x407, kFrench = 0x40C;

/// Three messages, the last one without German and without symbolic name.
MessageSource sampleSource() {
  return test::readSource(
      "LanguageNames=(English=0x409:E)\nLanguageNames=(German=0x407:G)\n\n; // How many, and where\n; "
      "======\n"
      "MessageId=5\nSymbolicName=MSG_READ\nLanguage=English\n%1 records\nfrom %2%0\n.\nLanguage=German\n%1 "
      "Sätze\naus %2%0\n.\n"
      "MessageId=6\nSymbolicName=MSG_BLANK\nLanguage=English\n\n.\nLanguage=German\n.\n\n"
      "MessageId=7\nLanguage=English\nYes\n.\n");
}

std::string exported(const MessageSource& source, std::uint16_t language) {
  return writePo(exportPo(source, referenceLanguage(source), language));
}

/// Returns reports, "line text-id argument" each.
std::vector<std::string> listed(const Diagnostics& diagnostics) {
  std::vector<std::string> found;
  for (const Diagnostic& diagnostic : diagnostics)
    found.push_back(std::to_string(diagnostic.position.line) + ' ' + std::to_string(diagnostic.text) + ' ' +
                    diagnostic.argument);
  return found;
}

/// Imports the text of files and returns what is reported.
std::vector<std::string> import(MessageSource& source, const std::vector<std::string>& files,
                                std::uint16_t language, bool usesFuzzy = false) {
  PoFile po;
  Diagnostics diagnostics;
  for (const std::string& text : files)
    EXPECT_TRUE(readPo(text, static_cast<std::size_t>(&text - files.data()) + 1, po, diagnostics)) << text;
  importPo(source, po, {referenceLanguage(source), language, usesFuzzy}, diagnostics);
  return listed(diagnostics);
}

std::vector<std::string> import(MessageSource& source, const std::string& text, std::uint16_t language,
                                bool usesFuzzy = false) {
  return import(source, std::vector{text}, language, usesFuzzy);
}

std::string reported(std::size_t line, unsigned long text, const std::string& argument) {
  return std::to_string(line) + ' ' + std::to_string(text) + ' ' + argument;
}

TEST(PoTranslation, ExportsWhatTranslatorsNeed) {
  EXPECT_EQ(
      exported(sampleSource(), kGerman),
      "msgid \"\"\nmsgstr \"\"\n\"Project-Id-Version: a.mc\\n\"\n\"PO-Revision-Date: \\n\"\n"
      "\"Last-Translator: \\n\"\n\"Language-Team: \\n\"\n\"Language: de\\n\"\n\"MIME-Version: 1.0\\n\"\n"
      "\"Content-Type: text/plain; charset=UTF-8\\n\"\n\"Content-Transfer-Encoding: 8bit\\n\"\n"
      "\"X-Generator: velmsg\\n\"\n\"X-Language-Number: 1031\\n\"\n\n"
      "#. How many, and where\n#: a.mc:6\n#, no-c-format\nmsgctxt \"MSG_READ\"\nmsgid \"\"\n"
      "\"%1 records\\n\"\n\"from %2%0\"\nmsgstr \"\"\n\"%1 Sätze\\n\"\n\"aus %2%0\"\n\n"
      "#: a.mc:16\nmsgctxt \"MSG_BLANK\"\nmsgid \"\\n\"\nmsgstr \"\"\n\n"
      "#: a.mc:24\nmsgctxt \"7\"\nmsgid \"Yes\"\nmsgstr \"\"\n");
  // English needs no declaration.
  MessageSource source = test::readSource("MessageId=1\nLanguage=English\na\n.\n");
  source.files[0] = "my dir\\a b.mc";
  EXPECT_THAT(exported(source, 0x409),
              testing::AllOf(testing::HasSubstr("Language: en\\n"),
                             testing::HasSubstr("#: \xE2\x81\xA8my dir\\a b.mc\xE2\x81\xA9:1\n"),
                             testing::HasSubstr("Project-Id-Version: a b.mc\\n")));
}

TEST(PoTranslation, ImportsAndReports) {
  const std::string read = "msgctxt \"MSG_READ\"\nmsgid \"%1 records\\nfrom %2%0\"\nmsgstr ";
  const std::string yes = "msgctxt \"7\"\nmsgid \"Yes\"\nmsgstr ";
  struct Row {
    std::string po;
    bool usesFuzzy;
    std::string text;  ///< of message 7 afterwards
    std::vector<std::string> reports;
  };
  const Row rows[] = {
      {yes + "\"Ja\"\n", false, "Ja\n", {}},
      {yes + "\"Ja\\n\"\n", false, "Ja\n\n", {}},
      {yes + "\"\\n\"\n", false, "\n", {}},
      {yes + "\"\"\n", false, "", {}},
      {"#, fuzzy\n" + yes + "\"Ja\"\n", false, "", {}},
      {"#, no-wrap, fuzzy\n" + yes + "\"Ja\"\n", true, "Ja\n", {}},
      {"#~ msgctxt \"7\"\n#~ msgid \"Yes\"\n#~ msgstr \"Ja\"\n", true, "", {}},
      {"msgctxt \"7\"\nmsgid \"Oh yes\"\nmsgstr \"Ja\"\n", false, "", {reported(2, kPoChangedText, "7")}},
      {"msgctxt \"7\"\nmsgid \"Oh yes\"\nmsgstr \"Ja\"\n", true, "Ja\n", {reported(2, kPoChangedText, "7")}},
      {"msgctxt \"8\"\nmsgid \"Yes\"\nmsgstr \"Ja\"\n", false, "", {reported(1, kPoUnknownContext, "8")}},
      {"msgid \"Yes\"\nmsgstr \"Ja\"\n", false, "", {reported(1, kPoUnknownContext, "")}},
      {yes + "\"Ja\"\n" + yes + "\"Nein\"\n", false, "Ja\n", {reported(4, kPoRepeatedContext, "7")}},
      {read + "\"x\"\n" + yes + "\"a\\n.\"\n", false, "", {reported(6, kPoUnusableText, "7")}},
      {yes + "\".\"\n", false, "", {reported(3, kPoUnusableText, "7")}},
      {yes + "\"a\\000\"\n", false, "", {reported(3, kPoUnusableText, "7")}},
      {yes + "\"a\\r\\nb\\r\\n\"\n", false, "a\nb\n\n", {}},
      {yes + "\"a\\rb\"\n", false, "", {reported(3, kControlCharacter, "7")}},
      {yes + "\"a\\033\"\n", false, "", {reported(3, kControlCharacter, "7")}},
      {yes + "\"\\ta" + std::string(32759, 'x') + "\"\n", false, "\ta" + std::string(32759, 'x') + "\n", {}},
      {yes + "\"\\ta" + std::string(32760, 'x') + "\"\n", false, "", {reported(3, kTextTooLong, "7")}},
      {"msgctxt \"MSG_READ\"\nmsgid \"%1 records\\r\\nfrom %2%0\"\nmsgstr \"x\"\n", false, "", {}},
  };
  for (const Row& row : rows) {
    MessageSource source = sampleSource();
    EXPECT_EQ(import(source, row.po, kGerman, row.usesFuzzy), row.reports) << row.po.substr(0, 80);
    const SourceText* const text = findText(source, source.messages[2], findLanguage(source, kGerman));
    EXPECT_EQ(text != nullptr ? text->text : "", row.text) << row.po;
  }
}

TEST(PoTranslation, FilesOfALanguageMustNotDiffer) {
  const auto entry = [](const std::string& text) {
    return "msgctxt \"7\"\nmsgid \"Yes\"\nmsgstr \"" + text + "\"\n";
  };
  MessageSource source = sampleSource();
  EXPECT_THAT(import(source, {entry(""), entry("Ja"), entry(""), entry("Ja")}, kGerman), testing::IsEmpty());
  EXPECT_THAT(import(source, {entry("Ja"), "\n" + entry("Jawohl")}, kGerman),
              testing::ElementsAre(reported(2, kPoRepeatedContext, "7")));
  EXPECT_EQ(findText(source, source.messages[2], findLanguage(source, kGerman))->text, "Ja\n");
}

TEST(PoTranslation, AddsLanguages) {
  MessageSource source = sampleSource();
  source.languages[1].name = "french";
  const std::string before = test::describe(source);
  EXPECT_THAT(import(source, exported(source, kFrench), kFrench), testing::IsEmpty());
  EXPECT_EQ(test::describe(source), before);
  const std::string yes = "msgctxt \"7\"\nmsgid \"Yes\"\nmsgstr \"Oui\"\n";
  EXPECT_THAT(import(source, yes, kFrench), testing::IsEmpty());
  EXPECT_THAT(import(source, yes, 0xC0C), testing::IsEmpty());
  EXPECT_THAT(import(source, yes, 0xFC01), testing::IsEmpty());
  EXPECT_THAT(writeMessageSource(source),
              testing::HasSubstr(
                  "LanguageNames=(French_1036=0x40c:MSG0040C)\nLanguageNames=(French_3084=0xc0c:MSG00C0C)\n"
                  "LanguageNames=(Language_64513=0xfc01:MSG0FC01)\n"));
  EXPECT_EQ(test::describe(test::readSource(writeMessageSource(source))), test::describe(source));
}

TEST(PoTranslation, TakesNamesOfTheSameNumberAsOneLanguage) {
  MessageSource source = test::readSource(
      "LanguageNames=(A=0x409 B=0x407 "
      "C=0x409)\nMessageId=1\nLanguage=A\na\n.\nMessageId=2\nLanguage=B\nb\n.\n"
      "Language=C\nc\n.\n");
  EXPECT_THAT(exported(source, kGerman), testing::HasSubstr("msgid \"c\"\nmsgstr \"b\"\n"));
  EXPECT_THAT(import(source, "msgctxt \"2\"\nmsgid \"c\"\nmsgstr \"d\"\n", kEnglish), testing::IsEmpty());
  EXPECT_THAT(writeMessageSource(source), testing::EndsWith("Language=B\nb\n.\nLanguage=C\nd\n.\n"));
}

TEST(PoTranslation, MergesWhatASourceCannotHave) {
  struct Row {
    std::string older;  ///< of the entry "7"
    std::string merged;
  };
  const std::string now = "#: a.mc:24\n", context = "msgctxt \"7\"\n", yes = context + "msgid \"Yes\"\n";
  const Row rows[] = {
      {"# note\n" + yes + "msgstr \"Ja\"\n", "# note\n" + now + yes + "msgstr \"Ja\"\n"},
      {"#, fuzzy\n#| msgid \"y\"\n" + yes + "msgstr \"Ja\"\n",
       now + "#, fuzzy\n#| msgid \"y\"\n" + yes + "msgstr \"Ja\"\n"},
      {context + "msgid \"Oh\"\nmsgstr \"Ja\"\n",
       now + "#, fuzzy\n#| msgid \"Oh\"\n" + yes + "msgstr \"Ja\"\n"},
      {"#, fuzzy, no-wrap\n" + yes + "msgstr \"\"\n", now + "#, no-wrap\n" + yes + "msgstr \"\"\n"},
      {context + "msgid \"Oh\"\nmsgstr \"\"\n", now + yes + "msgstr \"\"\n"},
      {"#~ " + context + "#~ msgid \"Yes\"\n#~ msgstr \"Ja\"\n",
       now + "#, fuzzy\n" + yes + "msgstr \"Ja\"\n"},
      {"# n\n#, fuzzy\n#: b.mc\n#. x\nmsgctxt \"8\"\nmsgid \"a\"\nmsgstr \"b\"\n",
       now + yes + "msgstr \"\"\n\n# n\n#, fuzzy\n#~ msgctxt \"8\"\n#~ msgid \"a\"\n#~ msgstr \"b\"\n"},
  };
  const std::string header =
      "msgid \"\"\nmsgstr \"\"\n\"Last-Translator: A\\n\"\n\"Content-Type: text/plain; "
      "charset=ISO-8859-1\\n\"\n";
  for (const Row& row : rows) {
    PoFile older;
    Diagnostics diagnostics;
    ASSERT_TRUE(readPo(header + "\n" + row.older, 1, older, diagnostics));
    const MessageSource source = sampleSource();
    PoFile po = exportPo(source, referenceLanguage(source), kGerman);
    mergePo(po, older);
    const std::string text = writePo(po);
    EXPECT_THAT(text, testing::EndsWith(row.merged)) << row.older;
    EXPECT_THAT(text, testing::StartsWith(
                          "msgid \"\"\nmsgstr \"\"\n\"Last-Translator: A\\n\"\n\"Content-Type: text/plain; "
                          "charset=UTF-8\\n\"\n\"X-Language-Number: 1031\\n\"\n\n"));
  }
}

TEST(PoTranslation, KnowsTheLanguageOfAFile) {
  MessageSource source = sampleSource();
  source.languages.push_back({"Austrian", 0xC07, "", true, {}});
  const std::pair<const char*, std::uint16_t> rows[] = {{"X-Language-Number: 3079\\nLanguage: fr\\n", 0xC07},
                                                        {"Language: de\\n", kGerman},
                                                        {"Language: de_AT\\n", 0xC07},
                                                        {"Language: fr_FR\\n", kFrench},
                                                        {"Language: zh_Hant\\n", 0x404},
                                                        {"Language: de_IT\\n", 0},
                                                        {"Language: tlh\\n", 0},
                                                        {"", 0}};
  const auto read = [](const std::string& fields) {
    PoFile po;
    Diagnostics diagnostics;
    EXPECT_TRUE(readPo("msgid \"\"\nmsgstr \"" + fields + "\"\n", 0, po, diagnostics));
    return po;
  };
  Diagnostics diagnostics;
  for (const auto& [fields, number] : rows)
    EXPECT_EQ(languageOfPo(source, read(fields), diagnostics), number) << fields;
  EXPECT_THAT(diagnostics, testing::IsEmpty());
  for (const char* const wrong : {"99999", "abc", "0", "-1", "1031x"}) {
    diagnostics.clear();
    const PoFile po = read(std::string("Language: de\\nX-Language-Number: ") + wrong + "\\n");
    EXPECT_EQ(languageOfPo(source, po, diagnostics), 0) << wrong;
    EXPECT_THAT(listed(diagnostics), testing::ElementsAre(reported(2, kPoLanguageNumber, wrong)));
  }
}

TEST(PoTranslation, ReportsWhatCannotBeMerged) {
  const std::string a = "msgctxt \"a\"\nmsgid \"b\"\nmsgstr \"c\"\n";
  const auto header = [](const std::string& language) {
    return "msgid \"\"\nmsgstr \"Language: " + language + "\\n\"\n\n";
  };
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {a, {}},
      {header("") + a, {}},
      {header("tlh") + a, {}},
      {header("de") + a + "\n#~ msgctxt \"a\"\n#~ msgid \"b\"\n#~ msgstr \"c\"\n", {}},
      {header("fr") + a, {reported(2, kPoOtherLanguage, "1036")}},
      {a + "\n" + a, {reported(5, kPoRepeatedContext, "a")}},
  };
  for (const auto& [text, expected] : rows) {
    PoFile older;
    Diagnostics diagnostics;
    ASSERT_TRUE(readPo(text, 0, older, diagnostics));
    checkOlderPo(sampleSource(), older, kGerman, diagnostics);
    EXPECT_EQ(listed(diagnostics), expected) << text;
  }
}

/// Removes all texts but those of the reference language.
MessageSource untranslated(MessageSource source, std::size_t reference) {
  for (SourceMessage& message : source.messages)
    std::erase_if(message.texts, [reference](const SourceText& text) { return text.language != reference; });
  return source;
}

/// An import refuses them, unless the source has them already.
void removeControlCharacters(MessageSource& source) {
  for (SourceMessage& message : source.messages)
    for (SourceText& text : message.texts) std::ranges::replace_if(text.text, isControlCharacter, 'x');
}

/// A text without any line cannot be told from one that is not translated.
void removeEmptyTexts(MessageSource& source, std::size_t reference) {
  for (SourceMessage& message : source.messages)
    std::erase_if(message.texts, [reference](const SourceText& text) {
      return text.text.empty() && text.language != reference;
    });
}

TEST(PoTranslation, KeepsRandomSources) {
  std::mt19937 random(2016);
  for (int i = 0; i < 2000; ++i) {
    MessageSource source = test::randomSource(random);
    const std::size_t reference = referenceLanguage(source);
    const bool hasControls = i % 2 != 0;
    if (!hasControls) removeControlCharacters(source);
    // A source that has the texts stays as it is, and all of the texts are in the files.
    MessageSource same = source;
    MessageSource again = untranslated(source, reference);
    for (const SourceLanguage& language : source.languages) {
      const std::string text = exported(source, language.number);
      ASSERT_THAT(import(same, text, language.number), testing::IsEmpty());
      const auto reports = import(again, text, language.number);
      if (!hasControls) {
        ASSERT_THAT(reports, testing::IsEmpty());
      }
    }
    ASSERT_EQ(test::describe(same), test::describe(source)) << i;
    removeEmptyTexts(source, reference);
    if (!hasControls) {
      ASSERT_EQ(test::describe(again), test::describe(source)) << i;
    }
  }
}

}  // namespace
}  // namespace vel::velmsg
