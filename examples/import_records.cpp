// Converts a file of EBCDIC records to lines of UTF-8 text. Reads its settings from an INI file, prints
// messages in two languages, shows its progress, and writes a trace if IMPORT_TRACE_ACTIVE=yes.
#include <vel.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// The messages of import_records.mc.
enum Text : unsigned long {
  kTitle = 1,
  kDescription,
  kUsage,
  kHelp,
  kRecordsRead,
  kShortRecord,
  kUnusableFile,
  kBadSetting
};
enum ExitCode : int { kNoSettings = 1, kNoRecords = 2, kNoOutput = 3 };
enum Component : unsigned short { kSettings = 1, kRecords = 2 };

struct Settings {
  const char* records = nullptr;
  const char* output = nullptr;
  int codePage = 0;
  int recordLength = 0;
  bool trimBlanks = false;
};

/// The front end. The numbers above are messages in this program's own catalog.
class Importer : public VelClConsoleUI {
 public:
  Importer(int argc, char** argv)
      : VelClConsoleUI(argc, argv), catalog_(VelClFilename("import_records")), ini_(iniName(argc, argv)) {
    init(kTitle, kDescription, "1.0", "Nov 21 2026");
    handleUsageHelp(kUsage, kHelp);
  }

  const VelClMessageCatalog& getMessageCatalog() const override { return catalog_; }
  void run();

 private:
  static VelClFilename iniName(int argc, char** argv) {
    VelClArgvCursor argument(argc, argv);
    return argument.positionTo("ini") && argument.setToNext() ? argument.getAsCString()
                                                              : "import_records.ini";
  }
  [[noreturn]] void fail(ExitCode code, Text text, const char* what) const {
    fatal(code, VelClMessage(catalog_, text).getAsCString(), what);
  }
  Settings settings();
  void convert(std::istream& in, std::ostream& out, const Settings& settings);

  VelClMessageCatalog catalog_;
  VelClIniFile ini_;
};

Settings Importer::settings() {
  const char* const here = "settings";
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kSettings, here);
  if (!ini_.load(true)) fail(kNoSettings, kUnusableFile, ini_.getAsCString());
  Settings settings;
  const bool complete = ini_.getSection("Import") && ini_.getOption("Records", settings.records) &&
                        ini_.getOption("Output", settings.output) &&
                        ini_.getOption("CodePage", settings.codePage) &&
                        ini_.getOption("RecordLength", settings.recordLength) && settings.recordLength > 0;
  if (!complete) fail(kNoSettings, kBadSetting, ini_.getAsCString());
  ini_.getOptionBool("TrimBlanks", settings.trimBlanks);
  velTraceValue(VelEnTraceDetail::LOW, kSettings, here, "code page", settings.codePage);
  velTraceValue(VelEnTraceDetail::LOW, kSettings, here, "record length", settings.recordLength);
  return settings;
}

void Importer::convert(std::istream& in, std::ostream& out, const Settings& settings) {
  const char* const here = "convert";
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kRecords, here);
  const VelClCodePage2UTF8Converter converter{VelClCCSID(settings.codePage)};
  if (!converter.isSupported()) fail(kNoSettings, kBadSetting, "CodePage");
  const auto length = static_cast<std::size_t>(settings.recordLength);
  std::vector<char> record(length);
  std::vector<char> text(converter.getMaximumSizeForSize(length));
  unsigned int count = 0;
  while (in.read(record.data(), settings.recordLength)) {
    const char* next = record.data();
    std::string_view line(text.data(), converter.convertBytes(text.data(), text.size(), &next, length));
    velTraceDump(VelEnTraceDetail::HIGH, kRecords, VelEnTraceDataType::DATA, here, "record", record.data(),
                 16);
    // If no character is found the result is npos, and npos + 1 is 0.
    if (settings.trimBlanks) line = line.substr(0, line.find_last_not_of(' ') + 1);
    out << line << '\n';
    progressStep(length);
    ++count;
  }
  if (in.gcount() != 0) warning(VelClMessage(catalog_, kShortRecord).getAsCString());
  velTraceValue(VelEnTraceDetail::LOW, kRecords, here, "records", count);
  info(VelClMessage(catalog_, kRecordsRead, std::to_string(count).c_str(), settings.records).getAsCString());
}

void Importer::run() {
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kRecords, "run");
  const Settings chosen = settings();
  std::ifstream in(chosen.records, std::ios::binary);
  if (!in) fail(kNoRecords, kUnusableFile, chosen.records);
  std::ofstream out(chosen.output, std::ios::binary);
  progressStart(VelClFile(chosen.records, nullptr).getFileSize(), chosen.records);
  convert(in, out, chosen);
  progressStop();
  if (!out.flush()) fail(kNoOutput, kUnusableFile, chosen.output);
}

}  // namespace

int main(int argc, char** argv) {
  velTraceCreateInstance("import", nullptr);
  Importer(argc, argv).run();
  return 0;
}
