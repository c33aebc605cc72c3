
#include "trace/test/trace_fixture.h"

namespace {

using testing::Each;
using testing::HasSubstr;
using namespace vel::test;

class TraceEnvironment : public vel::test::TraceTest {
 protected:
  /// Returns what `action` prints on standard output, whose format flags the program has changed.
  template <typename Action>
  static std::string printed(Action action) {
    const vel::test::Streams streams;
    const std::ios::fmtflags flags = std::cout.setf(std::ios::boolalpha);
    std::cout << std::hex;
    action();
    std::cout.flags(flags);
    return streams.shown();
  }
};

TEST_F(TraceEnvironment, StartsWithTheDefaults) {
  const VelClTraceEnvironment other("some\\Key", "one", false);
  EXPECT_STREQ(other.getAsCstring(), "SEM32:some:Key:one");
  const VelClTraceSettings& settings = other.getSettings();
  EXPECT_THAT((std::array{settings.usesCompression(), settings.usesAutosave()}), Each(true));
  EXPECT_THAT((std::array{other.isActive(), settings.usesAutoclear(), settings.usesAutoflush(),
                          settings.isVerbose(), settings.getFilter().usesCompIdFilter()}),
              Each(false));
  EXPECT_EQ(settings.getDetailLevel(), VelEnTraceDetail::LOW);
  EXPECT_EQ(other.getBufferSize(), 65535U - 48U);
  EXPECT_STREQ(other.getFormatString(), "%f%n   P: %p, T: %s, D: %l, C: %c%n   Data: %m (%x: %d%n)");
  EXPECT_EQ(other.getCompressionRate(), 0.0F);
  VelClTraceEnvironment unnamed(nullptr, nullptr, false);
  EXPECT_STREQ(unnamed.getFilename().getName(), "trace.trc");
  unnamed.setFormatString(nullptr);
  EXPECT_STREQ(unnamed.getFormatString(), "");
  EXPECT_NE(unnamed.getTimeStamp(), 0UL);
  const VelClTraceEnvironment plain("Abc", nullptr, false);
  EXPECT_STREQ(plain.getFilename().getName(), "Abctrace.trc");
  VelClFilename expected;
  expected.setNew(velGetTmpDirectory(), "Abctrace.trc");
  EXPECT_STREQ(plain.getFilename().getAsCString(), expected.getAsCString());
}

TEST_F(TraceEnvironment, UsesTheSmallestRingForSizesOutOfRange) {
  const std::pair<const char*, unsigned int> rows[] = {
      {"0", 4096},    {"abc", 4096},       {"4", 4096},       {"5", 5120},       {"-1", 4096},
      {"64x", 65536}, {"20000", 16777216}, {"3000000", 4096}, {"4194305", 4096}, {"99999999999", 4096}};
  for (const auto& [value, size] : rows) {
    set("BUFSIZE", value);
    EXPECT_EQ(environment()->getBufferSize(), size - 48) << value;
  }
}

TEST_F(TraceEnvironment, ReadsItsVariablesAndReportsThem) {
  const std::pair<const char*, std::string> variables[] = {
      {"ACTIVE", "yes"},   {"DETAIL", "high"}, {"AUTOFLUSH", "1"},
      {"AUTOCLEAR", "on"}, {"AUTOSAVE", "no"}, {"COMPRESS", "off"},
      {"COMPSET", "3"},    {"BUFSIZE", "8"},   {"FORMAT", "%f" + std::string(600, '.')},
      {"VERBOSE", "TRUE"}};
  for (const auto& [suffix, value] : variables) set(suffix, value);
  std::unique_ptr<VelClTraceEnvironment> made;
  const std::string report = printed([&] { made = environment(); });
  EXPECT_EQ(vel::test::replaced(vel::test::replaced(report, "[VEL: TRACE: ", ""), "]\n", "\n"),
            "key: unit\nactive: 1\nresource key: SEM32:unit:VELTRACEINSTANCE0\ncompression: 1\nautosave: 1\n"
            "autoflush: 1\nautoclear: 1\ndetail: 3\nbuffersize: 8192\nprocess id: " +
                std::to_string(VelClProcessProperty().getProcessId()) + "\nformat: %f" +
                std::string(510, '.') + "\nfile: " + file_ + "\nsharedMemory: 0\n");
  EXPECT_TRUE(made->getSettings().isToBeDumped(VelEnTraceDetail::HIGH, 3));
  EXPECT_FALSE(made->getSettings().isToBeDumped(VelEnTraceDetail::HIGH, 4));
  EXPECT_FALSE(made->getSettings().isToBeDumped(VelEnTraceDetail::OFF, 259));
  EXPECT_TRUE(made->getSettings().isToBeDumped(VelEnTraceDetail::OFF, 0));
}

TEST_F(TraceEnvironment, CutsALongKeyInTheNamesOfVariablesAndFile) {
  const std::string key(24, 'k');
  const std::string upper(24, 'K');
  VelClEnvironmentVariable active((upper + "_TRACE_ACTIVE").c_str(), "yes");
  EXPECT_TRUE(VelClTraceEnvironment((key + "tail").c_str(), nullptr, false).isActive());
  active.resetValue();
  const VelClTraceEnvironment longest(std::string(1000, 'k').c_str(), nullptr, false);
  EXPECT_EQ(longest.getFilename().getLength(), 260U);
}

TEST_F(TraceEnvironment, VerboseModeReportsEverySave) {
  for (const char* flag : {"VERBOSE", "AUTOSAVE", "COMPRESS"}) set(flag, "yes");
  std::string bytes;
  const std::string shown = printed([&] {
    const auto writer = environment();
    EXPECT_TRUE(writer->getSettings().usesCompression());
    const SizedEntry entry(*writer, 50, 'x');
    writer->add(entry.get());
    EXPECT_EQ(saved(), "");
    writer->flush();
    writer->getSettings().enableAutoflush(true);
    writer->add(entry.get());
    bytes = entry.bytes();
  });
  EXPECT_EQ(saved(), bytes + bytes);
  const std::string name = "[VEL: TRACE: writing file: " + file_ + "]\n";
  EXPECT_THAT(shown, HasSubstr(name + "[VEL: TRACE: bytes written: 50 file status: 0]\n" + name +
                               "[VEL: TRACE: file exists with size: 50]\n"
                               "[VEL: TRACE: bytes written: 50 file status: 0]\n"));
}

TEST_F(TraceEnvironment, AddWritesTheSameBytesFromValuesAsFromAnEntry) {
  set("BUFSIZE", "4");
  auto writer = environment();
  std::string expected;
  for (unsigned short size = 0; size < 400; ++size) {
    writer->getSettings().enableCompression(size % 3 != 0);
    const std::string text(size, static_cast<char>(' ' + size % 64));
    const auto detail = static_cast<VelEnTraceDetail>(size % 4);
    const VelClTraceEntry entry(*writer, detail, size, VelEnTraceDataType::DATA, text.c_str(), "m",
                                text.data(), size);
    expected += std::string(entry.getEntryData(), entry.getSizeOfEntryData()) + text;
    writer->add(detail, size, VelEnTraceDataType::DATA, text.c_str(), "m", text.data(), size);
  }
  writer.reset();
  std::string written = saved();
  for (std::string* const file : {&written, &expected})
    changeHeads(*file, [](RecordHead& head, std::size_t) { head.time = 0; });
  EXPECT_TRUE(written == expected);
}

TEST_F(TraceEnvironment, GoesOnInAnotherFileIfARecordIsTorn) {
  const std::string first = SizedEntry(*environment(), 50, 'x').bytes();
  const std::string second = SizedEntry(*environment(), 60, 'y').bytes();
  std::string damaged = first + second;
  damaged[first.size()] = 0;  // an invalid type
  const std::pair<std::string, bool> rows[] = {{first, false},
                                               {first + second, false},
                                               {first + second.substr(0, 1), true},
                                               {first + second.substr(0, 20), true},
                                               {first + second.substr(0, 59), true},
                                               {first.substr(0, 40), false},
                                               {"some other text in this file", false},
                                               {damaged.substr(0, 90), false}};
  for (const auto& [before, torn] : rows) {
    directory_.write("unit.trc", before);
    const auto writer = environment();
    const SizedEntry entry(*writer, 70, 'z');
    for (int save = 0; save < 2; ++save) {
      writer->add(entry.get());
      writer->flush();
    }
    const std::string other = file_ + "." + std::to_string(VelClProcessProperty().getProcessId());
    EXPECT_EQ(saved(), torn ? before : before + entry.bytes() + entry.bytes());
    EXPECT_EQ(std::string(writer->getFilename().getAsCString()), torn ? other : file_) << before.size();
    if (torn) {
      EXPECT_EQ(readFile(other), entry.bytes() + entry.bytes());
      std::filesystem::remove(other);
    }
  }
}

TEST_F(TraceEnvironment, ProcessNumberIsPartOfTheName) {
  const std::string number = std::to_string(VelClProcessProperty().getProcessId());
  set("FILE", directory_.path("%p-%%p%q%"));
  const auto writer = environment();
  EXPECT_STREQ(writer->getFilename().getName(), (number + "-%" + number + "%q%").c_str());
  writer->setFilename("%p");
  EXPECT_STREQ(writer->getFilename().getName(), "%p") << "only the variable has marks";
}

TEST_F(TraceEnvironment, AutoclearRemovesAnOldFileUnlessItIsAController) {
  set("AUTOCLEAR", "yes");
  directory_.write("unit.trc", "old");
  environment(true);
  EXPECT_EQ(saved(), "old");
  environment(false);
  EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(TraceEnvironment, CountsTheBytesOfFilesThatCannotBeWrittenAsLost) {
  set("AUTOFLUSH", "yes");
  const auto writer = environment();
  const SizedEntry entry(*writer, 50, 'x');
  writer->add(entry.get());
  std::filesystem::remove(file_);
  writer->add(entry.get());
  EXPECT_EQ(saved(), entry.bytes());
  std::filesystem::rename(directory_.write("other", "another file"), file_);
  writer->add(entry.get());
  EXPECT_EQ(saved(), "another file" + entry.bytes());
  EXPECT_EQ(writer->getLostBytes(), 0U);
  // Root can write to a read-only file.
  std::filesystem::permissions(file_, std::filesystem::perms::owner_read);
  writer->add(entry.get());
  std::filesystem::permissions(file_, std::filesystem::perms::owner_all);
  const std::uint64_t refused = writer->getLostBytes();
  EXPECT_EQ(saved().size() + refused, 12U + 50 + 50);
  writer->setFilename(directory_.path("missing/x.trc").c_str());
  errno = EDOM;
  writer->add(entry.get());
  EXPECT_EQ(errno, EDOM);
  writer->setFilename(directory_.path().c_str());
  writer->getSettings().enableVerbose(true);
  const std::string shown = printed([&] { writer->add(entry.get()); });
  EXPECT_EQ(shown, "[VEL: TRACE: could not open: " + directory_.path() +
                       " (errno: " + std::to_string(writer->getLastSystemError()) + ")]\n");
  EXPECT_EQ(writer->getLostBytes(), refused + 100);
  writer->setFilename(file_.c_str());
  writer->add(entry.get());
  EXPECT_NE(writer->getLastSystemError(), 0) << "a success must not clear it";
}

TEST(TraceSettings, WritesToTheRecordOfTheCaller) {
  alignas(_VelStTraceSettings) unsigned char memory[sizeof(_VelStTraceSettings)] = {};
  VelClTraceSettings settings(memory);
  settings.enableVerbose(true);
  settings.enableCompression(false);
  const auto* record = reinterpret_cast<const _VelStTraceSettings*>(memory);
  EXPECT_EQ(record->signature, 0x5645U);
  EXPECT_EQ(record->flags, 2U + 16U);
  EXPECT_TRUE(record->filter.matchesCompId(255));
}

}  // namespace
