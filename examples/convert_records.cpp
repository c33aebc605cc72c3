// Converts a file of fixed-length records, as mainframes write them, to lines of UTF-8, and back. Nothing is
// lost silently: every record that cannot be converted exactly is reported, and then no output is left.
//
//   example_convert_records -length 80 -ccsid 37 accounts.dat accounts.txt
//   example_convert_records -length 80 -ccsid 37 -back accounts.txt accounts.dat
#include <vel.h>

#include <cstdint>
#include <fstream>
#include <string>

namespace {

enum ExitCode : int { kConverted = 0, kFaults = 1, kCannotRead = 2, kCannotWrite = 3 };

/// Collects what a conversion writes.
struct Text : public VelClConversionSink {
  void write(const char* bytes, size_t size) override { text.append(bytes, size); }
  std::string text;
};

class RecordConverter {
 public:
  RecordConverter(const VelClConsoleUI& ui, const VelClCCSID& source, const VelClCCSID& target)
      : ui_(ui), conversion_(source, target) {
    if (!conversion_.isSupported()) ui.fatal(CONUI_USAGE, "This code page needs ICU, which is not installed");
  }

  /// Counts the record, and returns what it is in the other code page. Reports a fault.
  std::string convert(const std::string& record) {
    ++count_;
    Text result;
    conversion_.restart();
    if (conversion_.convert(record.data(), record.size(), result) && conversion_.finish(result))
      return result.text;
    // The conversion ends at the first fault of the record.
    const VelClStrictConversion::VelStFault& fault = conversion_.getFirstFault();
    const bool isUnmappable = fault.kind == VelClStrictConversion::VelEnFault::NOT_REPRESENTABLE;
    report(isUnmappable ? "is not in the code page" : "is not valid", fault.offset);
    return "";
  }
  void report(const char* what, std::uint64_t offset) {
    const std::string number = std::to_string(count_), byte = std::to_string(offset + 1);
    ui_.error(ui_.getParams().getErrorStream(), ("Record " + number + ", byte " + byte + ' ' + what).c_str());
    hasFaults_ = true;
  }
  bool hasFaults() const { return hasFaults_; }

 private:
  const VelClConsoleUI& ui_;
  VelClStrictConversion conversion_;
  std::uint64_t count_ = 0;
  bool hasFaults_ = false;
};

/// Blanks at the end of a record are padding and left out.
void toLines(std::istream& in, std::ostream& out, std::size_t length, RecordConverter& converter) {
  std::string record(length, '\0');
  while (in.read(record.data(), static_cast<std::streamsize>(length))) {
    std::string line = converter.convert(record);
    line.resize(line.find_last_not_of(' ') + 1);
    out << line << '\n';
    // The bytes of LF and CR: the record would become two lines, or lose its last byte on the way back.
    if (const std::size_t end = record.find_first_of("\x25\x0D"); end != std::string::npos)
      converter.report("is a line end", end);
  }
  if (in.gcount() == 0) return;
  record.resize(static_cast<std::size_t>(in.gcount()));
  converter.convert(record);
  converter.report("is the last one of an incomplete record", record.size() - 1);
}

void toRecords(std::istream& in, std::ostream& out, std::size_t length, RecordConverter& converter) {
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    std::string record = converter.convert(line);
    if (record.size() > length) converter.report("exceeds the length of the records", length);
    record.resize(length, '\x40');
    out << record;
  }
}

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0"});
  ui.init("Record conversion", "converts records to lines of UTF-8 and back", "1.0", "Nov 22 2026");
  ui.handleUsageHelp("(-length <bytes>) (-ccsid <37|1047>) [-back] <source> <target>",
                     "-length <bytes>  the length of each record\n"
                     "-ccsid <n>       the code page of the records\n"
                     "-back            convert lines to records\n"
                     "<target>         must not exist");
  int length = 0, ccsid = 0;
  ui.reqArgNumval("length", length);
  ui.reqArgNumval("ccsid", ccsid);
  if (length < 1 || length > 32760) ui.fatal(CONUI_USAGE, "A record has 1 to 32760 bytes");
  if (ccsid != 37 && ccsid != 1047) ui.fatal(CONUI_USAGE, "The code page must be 37 or 1047");
  VelClArgvFreeCursor name(ui);
  if (!name.setToFirst()) ui.fatalMissingArg("<source>");
  const std::string source = name.getAsCString();
  if (!name.setToNext()) ui.fatalMissingArg("<target>");
  VelClFile target(name.getAsCString(), nullptr);
  if (name.setToNext()) ui.fatal(CONUI_USAGE, "Only two files are possible", name.getAsCString());
  if (target.isExistent()) ui.fatal(kCannotWrite, "Refusing to overwrite", target.getAsCString());
  std::ifstream in(source, std::ios::binary);
  if (!in) ui.fatal(kCannotRead, "Cannot open", source.c_str());
  std::ofstream out(target.getAsCString(), std::ios::binary);
  const bool isBack = ui.hasArgSwitch("back");
  const VelClCCSID records(ccsid), text(VelClCCSID::CCSID_UTF8);
  RecordConverter converter(ui, isBack ? text : records, isBack ? records : text);
  (isBack ? toRecords : toLines)(in, out, static_cast<std::size_t>(length), converter);

  out.close();
  const bool isComplete = out && !in.bad() && !converter.hasFaults();
  if (!isComplete) target.remove();
  if (!out) ui.fatal(kCannotWrite, "Cannot write", target.getAsCString());
  if (in.bad()) ui.fatal(kCannotRead, "Cannot read", source.c_str());
  return isComplete ? kConverted : kFaults;
}
