// Converts text between code pages. Shows which characters plain conversions lose without an error, and how a
// strict conversion reports them, the first one or all of them.
#include <vel.h>

#include <iostream>
#include <string>

namespace {

std::string converted(const VelClCCSID& source, const VelClCCSID& target, const std::string& text) {
  const VelClCodePage2CodePageConverter converter(source, target);
  std::string out(converter.getMaximumSizeForSize(text.size()), '\0');
  out.resize(converter.convertBytes(out.data(), out.size(), text.data(), text.size()));
  if (converter.getLastError().errorId != VEL_NO_ERROR) out += " (error)";
  return out;
}

void show(const char* what, const std::string& bytes) {
  std::cout << what << ": " << VelClStrepHexDump(bytes.data(), bytes.size()).getAsCString() << '\n';
}

class Text : public VelClConversionSink {
 public:
  void write(const char* bytes, size_t size) override { text_.append(bytes, size); }
  const std::string& get() const { return text_; }

 private:
  std::string text_;
};

/// Reports every fault, and has a substitute written for it.
class Report : public VelClConversionFaultHandler {
 public:
  VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault& fault) override {
    std::cout << "fault in line " << fault.line << ", column " << fault.column << '\n';
    return VelClStrictConversion::VelEnPolicy::REPLACE;
  }
};

}  // namespace

int main() {
  show("to EBCDIC", converted(VelClCCSID::CCSID_850, VelClCCSID::CCSID_500, "A\x81\n"));
  show("and back ", converted(VelClCCSID::CCSID_500, VelClCCSID::CCSID_850, "\xC1\xDC\x15"));
  // 1252 does not have the euro sign, and byte 1A of a PC code page is not the same control character as in
  // ASCII.
  show("80 of 1252 in UTF-8", converted(VelClCCSID::CCSID_1252, VelClCCSID::CCSID_UTF8, "\x80"));
  show("1A of 850 in 819   ", converted(VelClCCSID::CCSID_850, VelClCCSID::CCSID_819, "\x1A"));
  show("euro sign in 819   ", converted(VelClCCSID::CCSID_UTF8, VelClCCSID::CCSID_819, "\xE2\x82\xAC"));

  using Policy = VelClStrictConversion::VelEnPolicy;
  VelClStrictConversion conversion(VelClCCSID::CCSID_UTF8, VelClCCSID::CCSID_819, Policy::ESCAPE);
  Text text;
  const std::string price = "5 \xE2\x82\xAC";
  conversion.convert(price.data(), price.size(), text);
  conversion.finish(text);
  std::cout << "strictly: " << text.get() << ", fault at byte " << conversion.getFirstFault().offset << '\n';

  const VelClCCSID latin1 = VelClCCSID::fromName("latin1");
  std::cout << latin1.getPreferredName() << " is CCSID " << latin1.getAsInt() << '\n';
  VelClStrictConversion reporting(VelClCCSID::fromName("utf8"), latin1);
  Report report;
  const std::string prices = "5 \xE2\x82\xAC\n10 \xE2\x82\xAC\n";
  reporting.convert(prices.data(), prices.size(), text, report);
  reporting.finish(text, report);
}
