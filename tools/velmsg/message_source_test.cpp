// Tests the reader of message sources, and what is written from them.
#include "tools/velmsg/message_source.h"

#include "platform/test/test.h"
#include "tools/velmsg/identifier_header.h"
#include "tools/velmsg/message_functions.h"
#include "tools/velmsg/table_writer.h"
#include "tools/velmsg/texts.h"

namespace {

using namespace vel::velmsg;

/// A source that was read, and its mistakes.
struct ReadSource {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
};

ReadSource read(const std::string& bytes, const VelClCCSID& codepage = VelClCCSID::CCSID_UTF8) {
  ReadSource result;
  const bool isSound = readMessageSource("a.mc", bytes, codepage, result.source, result.diagnostics);
  EXPECT_EQ(isSound, result.diagnostics.empty());
  return result;
}

std::string listDiagnostics(const Diagnostics& diagnostics) {
  std::string list;
  for (const Diagnostic& diagnostic : diagnostics) {
    list += std::to_string(diagnostic.position.line) + ':' + std::to_string(diagnostic.position.column) +
            ' ' + kTexts[diagnostic.text];
    list += diagnostic.argument.empty() ? "|" : ": " + diagnostic.argument + '|';
  }
  return list;
}

/// Returns the mistakes or, without any, "id symbol language=text," for each message.
std::string list(const ReadSource& read) {
  if (!read.diagnostics.empty()) return listDiagnostics(read.diagnostics);
  std::ostringstream out;
  for (const SourceMessage& message : read.source.messages) {
    out << std::hex << message.id << ' ' << message.symbolicName << std::dec;
    for (const SourceText& text : message.texts)
      out << ' ' << read.source.languages[text.language].number << '='
          << vel::test::replaced(text.text, "\n", "/");
    out << ',';
  }
  return out.str();
}

/// Returns a message with a text in English.
std::string message(const std::string& statements, const std::string& text = "x") {
  return "MessageId=" + statements + "\nLanguage=English\n" + text + "\n.\n";
}

/// Sources, and what list() returns for them.
using Rows = std::vector<std::pair<std::string, std::string>>;

void expectLists(const Rows& rows) {
  for (const auto& [source, expected] : rows) EXPECT_EQ(list(read(source)), expected) << source;
}

// The next number is counted by facility; severity and facility stay.
TEST(MessageSource, CountsNumbers) {
  const std::string names = "SeverityNames=(Low=0 High=3:HIGH)FacilityNames=(One=1 Two=0x2:TWO)\n";
  expectLists({
      {message("7") + message("") + message("+3"), "7  1033=x/,8  1033=x/,b  1033=x/,"},
      {message(""), "1  1033=x/,"},
      {names + message("5 Facility=One") + message("9 Facility=Two") + message(" Facility=One") + message(""),
       "10005  1033=x/,20009  1033=x/,10006  1033=x/,10007  1033=x/,"},
      {names + message("1 Severity=High Facility=Two") + message("2") + message("3 Severity=Low"),
       "c0020001  1033=x/,c0020002  1033=x/,20003  1033=x/,"},
      {message("1 Severity=Error Facility=Application") + message("0xFFFF Facility=System"),
       "cfff0001  1033=x/,c0ffffff  1033=x/,"},
      {message("010") + message("0X1fUL"), "8  1033=x/,1f  1033=x/,"},
      {message("0"), "0  1033=x/,"},
      {message("65535") + message(""), "5:1 The number is too large: 65536|"},
      {message("65536"), "1:11 The number is too large: 65536|"},
      {message("99999999999999999999"), "1:11 The number is too large: 99999999999999999999|"},
      {message("1x"), "1:11 A number is expected: 1x|"},
      {message("08"), "1:11 A number is expected: 08|"},
      {message("1") + message("1"), "5:1 The number of the message is already used: a.mc:1:1|"},
  });
}

// Statements may be divided in any way, and keywords and names have no case; texts are lines as they are.
TEST(MessageSource, ReadsStatementsAndTexts) {
  expectLists({
      {"messageid\n=\n 1\nsymbolicname = A\nLANGUAGE = ENGLISH \t\nx\n.", "1 A 1033=x/,"},
      {message("1 SymbolicName="), "1  1033=x/,"},
      {message("1 SymbolicName=A") + message("2 SymbolicName=A"),
       "5:26 The symbolic name is already used: a.mc:1:26|"},
      {"MessageIdTypedef=\n" + message("1"), "1  1033=x/,"},
      {message("1", "  a \n\n;b\nMessageId=2\n.c\n. "), "1  1033=  a //;b/MessageId=2/.c/. /,"},
      {"MessageId=1\r\nLanguage=English\r\na\r\n\rb\r\n.\r\n", "1  1033=a/\rb/,"},
      {"MessageId=1\nLanguage=English\n.\n", "1  1033=,"},
      {"MessageId=1\nLanguage=English\nx\n", "2:1 The text is not ended by a line with a single full stop|"},
      {message("1", std::string("a\0b", 3)), "3:1 The text contains a NUL|"},
      {"MessageId=1\nLanguage=English x\ny\n.\n", "2:17 The end of the line is expected|"},
      {"LanguageNames=(German=0x407:G)\nMessageId=1\nLanguage=German\nja\n.\nLanguage=English ; c\nyes\n.\n",
       "1  1031=ja/ 1033=yes/,"},
      {message("1") + "Language=English\nz\n.\n",
       "5:1 The message already has a text in this language: English|"},
      {"LanguageNames=(US=0x409:A)\n" + message("1") + "Language=US\nz\n.\n",
       "6:1 The message already has a text in this language: US|"},
      {"Language=English\nx\n.\n", "1:1 A MessageId statement is expected before|"},
      {"MessageId=1\nLanguage=Welsh\nx\n.\n" + message("2"), "2:10 Unknown language: Welsh|"},
      {"MessageId=1\n" + message("2"), "1:1 The message has no text|"},
  });
}

TEST(MessageSource, ReadsNames) {
  expectLists({
      {"LanguageNames=(English=0x409:E)\n" + message("1"), "1  1033=x/,"},
      {"SeverityNames=(A=1)SeverityNames=(a=1:X A=2)",
       "1:41 The name is already declared with another number: A|"},
      {"SeverityNames=(A=4)FacilityNames=(B=0x1000)LanguageNames=(C=0x10000:C)",
       "1:18 The number is too large: 4|1:37 The number is too large: 0x1000|1:61 The number is too large: "
       "0x10000|"},
      {"SeverityNames=A\n" + message("1"), "1:15 A \"(\" is expected: A|"},
      {"SeverityNames=(A=1 B)\n" + message("1"), "1:21 A name, \"=\" and a number are expected: )|"},
      {"SeverityNames=(A=1", "1:19 The \")\" of the list is missing|"},
      {message("1 Severity=Huge Facility=Lost"), "1:22 Unknown severity: Huge|1:36 Unknown facility: Lost|"},
      {message("1") + "Severity=Error", "5:1 A MessageId statement is expected before|"},
      {"OutputBase=8", "1:1 OutputBase must be 10 or 16|"},
      {"OutputBase=\n" + message("1 Severity= Facility=System"),
       "1:12 A number is expected|2:22 Unknown severity|"},
      {"SeverityNames=(A= B=2) OutputBase =", "1:18 A number is expected|1:36 A number is expected|"},
      {"Sprache=x\nMessageId 1\n", "1:1 Unknown statement: Sprache|2:11 A \"=\" is expected: 1|"},
      {"\xC3\xA4 \xF0\x9F\x98\x80 = 1\n\xFF\xC3\n",
       "1:1 Unknown statement: \xC3\xA4|2:1 The source is ill-formed in its code page at these bytes: FF|2:1 "
       "Unknown "
       "statement: ??|2:2 The source is ill-formed in its code page at these bytes: C3|"},
  });
}

TEST(MessageSource, ReadsEveryEncoding) {
  const std::string source = message("1", "\xC3\xA4\xF0\x9F\x98\x80");
  std::string little = "\xFF\xFE", big = "\xFE\xFF";
  for (const char16_t unit : u"MessageId=1\nLanguage=English\n\u00E4\U0001F600\n.\n") {
    if (unit == 0) break;
    const char low = static_cast<char>(unit), high = static_cast<char>(unit >> 8);
    little += {low, high};
    big += {high, low};
  }
  const std::string expected = "1  1033=\xC3\xA4\xF0\x9F\x98\x80/,";
  for (const std::string& bytes : {source, "\xEF\xBB\xBF" + source, little, big})
    EXPECT_EQ(list(read(bytes)), expected);
  EXPECT_EQ(list(read(little + '\xD8')),
            "5:1 The source is ill-formed in its code page at these bytes: D8|5:1 Unknown statement: "
            "\xEF\xBF\xBD|");
  EXPECT_EQ(list(read(message("1", "\xE4"), VelClCCSID::CCSID_819)), "1  1033=\xC3\xA4/,");
  EXPECT_EQ(list(read(source, VelClCCSID(9))), "0:0 There is no conversion for the code page: 9|");
}

TEST(MessageSource, BoundsItsDiagnosticsAndTheirSize) {
  std::string source;
  for (int i = 0; i < 1000; ++i) source += "a=1\n";
  const ReadSource many = read(source);
  EXPECT_EQ(many.diagnostics.size(), kMaxDiagnostics);
  EXPECT_EQ(many.diagnostics.back().position.line, kMaxDiagnostics);
  EXPECT_LT(read(std::string(100'000, 'a')).diagnostics.at(0).argument.size(), 70U);
}

TEST(MessageSource, FilesAreOneSource) {
  MessageSource source = emptySource();
  Diagnostics diagnostics;
  const auto add = [&](const char* name, const std::string& text) {
    return readMessageSource(name, text, VelClCCSID::CCSID_UTF8, source, diagnostics);
  };
  EXPECT_TRUE(add("a.mc", "LanguageNames=(German=7:G)FacilityNames=(F=5)" + message("3 Facility=F") + ";a"));
  EXPECT_TRUE(add("b.mc", message("")));
  EXPECT_EQ(source.messages.back().id, 0x50004U);
  EXPECT_THAT(source.messages.back().comments, testing::ElementsAre("a"));
  EXPECT_FALSE(add("c.mc", "\n" + message("4")));
  EXPECT_EQ(positionText(source, diagnostics.at(0).position), "c.mc:2:1");
  EXPECT_EQ(diagnostics.at(0).argument, "b.mc:1:1");
}

TEST(MessageSource, KeepsComments) {
  const MessageSource source = read(";a\nOutputBase=10\n ;b\nLanguageNames=(G=7:G);c\n" + message("1 ;d") +
                                    ";e\n" + message("2") + ";f")
                                   .source;
  using testing::ElementsAre;
  EXPECT_THAT(source.headerComments, ElementsAre("a", "b"));
  EXPECT_THAT(source.messages.at(0).comments, ElementsAre("c", "d"));
  EXPECT_THAT(source.messages.at(1).comments, ElementsAre("e"));
  EXPECT_THAT(source.trailingComments, ElementsAre("f"));
}

TEST(MessageSource, StoresLineBreaksAsMessageCompilersDo) {
  const std::pair<const char*, const char*> rows[] = {{"", ""},
                                                      {"a\n", "a\r\n"},
                                                      {"\n\n", "\r\n\r\n"},
                                                      {"a%0\n", "a%0"},
                                                      {"a%%0\n", "a%%0\r\n"},
                                                      {"%%%0\n", "%%%0"},
                                                      {"%0\nb\n", "%0\r\nb\r\n"}};
  for (const auto& [text, stored] : rows) EXPECT_EQ(storedText(text), stored) << text;
}

TEST(IdentifierHeader, TextsCannotLeaveTheirComments) {
  const std::string header =
      identifierHeader(read(message("1 SymbolicName=A", "one\\\n*/ #error\rtwo\\ \t\na/*/*b\n\n\x1B")).source,
                       "dir/3 a-b.c.h");
  EXPECT_THAT(header,
              testing::HasSubstr(
                  "\n * one\\\n * * / #error two\\  \n * a/ * / *b\n *\n *  \n */\n#define A 0x00000001\n"));
  EXPECT_THAT(header, testing::HasSubstr("#ifndef M3_A_B_C_H_\n"));
}

TEST(IdentifierHeader, WritesNumbersAndTypes) {
  const std::string header = identifierHeader(
      read("SeverityNames=(S=3:SEV_S)FacilityNames=(F=0xABC:FAC_F)MessageIdTypedef=DWORD OutputBase=10\n" +
           message("1 SymbolicName=A") + message("2 Severity=S Facility=F SymbolicName=B") +
           "MessageIdTypedef= OutputBase=16\n" + message("3 SymbolicName=C") + message("4"))
          .source,
      "a.h");
  for (const char* const line : {"#define SEV_S 0x3\n", "#define FAC_F 0xABC\n", "#define A ((DWORD)1)\n",
                                 "#define B ((DWORD)3401318402U)\n", "#define C 0xCABC0003\n"})
    EXPECT_THAT(header, testing::HasSubstr(std::string("\n") + line));
}

TEST(MessageFunctions, HaveAParameterForEachInsert) {
  const std::string names = "LanguageNames=(German=0x407:G)\n";
  Diagnostics diagnostics;
  const auto functions = [&diagnostics](const std::string& text) {
    return messageFunctions(read(text).source, "a/my msgs.h", diagnostics);
  };
  const std::string none = functions(message("1"));
  EXPECT_EQ(none.substr(none.find('#')),
            "#ifndef MY_MSGS_H_\n#define MY_MSGS_H_\n\n#include <vel_messages.h>\n\n#include <string>\n\n"
            "namespace my_msgs {\n\n}  // namespace my_msgs\n#endif\n");
  EXPECT_THAT(
      functions(names + message("1 SymbolicName=MSG_NEW", "%%1") + "Language=German\n%2 */ %1\n.\n"),
      testing::HasSubstr("{\n\n/*\n * %%1\n */\n"
                         "inline VelClMessage msgNewMessage(const VelClMessageCatalog& catalog, const "
                         "std::string& insert1, const std::string& insert2) {\n"
                         "  return VelClMessage(catalog, 1UL, insert1.c_str(), insert2.c_str());\n}\n"));
  const std::pair<const char*, const char*> rows[] = {{"NEW", "newMessage"},
                                                      {"_1x", "m1xMessage"},
                                                      {"RecordsRead", "recordsReadMessage"},
                                                      {"a$B_", "aBMessage"},
                                                      {"READ_BAD_Utf8", "readBadUtf8Message"},
                                                      {"__", "mMessage"}};
  for (const auto& [symbol, name] : rows)
    EXPECT_THAT(
        functions(message(std::string("1 SymbolicName=") + symbol, "%99")),
        testing::HasSubstr(std::string("VelClMessage ") + name + "(const VelClMessageCatalog& catalog, "));
  EXPECT_THAT(diagnostics, testing::IsEmpty());
  functions(message("1 SymbolicName=A_B") + message("2 SymbolicName=a_b"));
  ASSERT_EQ(diagnostics.size(), 1U);
  EXPECT_EQ(diagnostics[0].argument, "aBMessage");
}

TEST(TableText, ConvertsEscapes) {
  const std::pair<const char*, std::optional<const char*>> rows[] = {{"a%0\n", "a"},
                                                                     {"a\nb\n", "a\nb\n"},
                                                                     {"%n%t%r%b%.%!%%%q", "\n\t\r .!%%q"},
                                                                     {"%1 %10x", "%1 %10x"},
                                                                     {"%1!s!%2", "%1%2"},
                                                                     {"%01", ""},
                                                                     {"%1!8s!", {}},
                                                                     {"%11", {}},
                                                                     {"%1!s!2", {}},
                                                                     {"%100", {}},
                                                                     {"%", {}},
                                                                     {"%%1", "%%1"}};
  for (const auto& [text, table] : rows) EXPECT_EQ(tableText(text), table) << text;
}

TEST(StringTable, HasAnEntryForEachId) {
  const MessageSource source =
      read(
          "LanguageNames=(US=1033:A Neutral=9:B)MessageId=4\nLanguage=Neutral\nneutral%0\n.\n"
          "Language=US\n\"a\\?\xC3\xA4\"1%0\n.\n" +
          message("2", "b%0"))
          .source;
  Diagnostics diagnostics;
  EXPECT_EQ(languageOfTable(source), 1033);
  const std::string table = stringTable(source, "t", 1033, diagnostics);
  EXPECT_THAT(table,
              testing::HasSubstr(
                  "    \"[VEL_MSGTAB_SIGNATURE] 5\",\n    \"[t]\",\n    \"b\",\n    \"\\?\",\n"
                  "    \"\\\"a\\\\\\?\\303\\244\\\"1\",\n};\nconst unsigned long t_text_count = 5;\n"));
  EXPECT_THAT(stringTable(source, "t", 9, diagnostics), testing::HasSubstr("\"neutral\""));
  EXPECT_EQ(diagnostics.size(), 0U);
}

}  // namespace
