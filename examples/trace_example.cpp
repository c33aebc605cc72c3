// Traces three functions that call one another, with every type of data, to the file in TOUR_TRACE_FILE.
// Nothing is traced unless TOUR_TRACE_ACTIVE=yes. TOUR_TRACE_DETAIL=HIGH traces everything. Afterwards
// "trcctl -key tour -display" shows the trace.
#include <vel_trace.h>

#include <cstring>
#include <limits>

namespace {

enum Component : unsigned short { kGeneral = 0, kMeasuring = 7, kStoring = 12 };

void measure() {
  const char* const here = "measure";
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kMeasuring, here);
  const auto detail = VelEnTraceDetail::MEDIUM;
  velTraceValue(detail, kMeasuring, here, "ready", true);
  velTraceValue(detail, kMeasuring, here, "drift", static_cast<signed char>(-5));
  velTraceValue(detail, kMeasuring, here, "grade", static_cast<unsigned char>('A'));
  velTraceValue(detail, kMeasuring, here, "offset", static_cast<short>(-300));
  velTraceValue(detail, kMeasuring, here, "port", static_cast<unsigned short>(60000));
  velTraceValue(detail, kMeasuring, here, "balance", -70000);
  velTraceValue(detail, kMeasuring, here, "count", 4000000000U);
  velTraceValue(detail, kMeasuring, here, "position", std::numeric_limits<long long>::min());
  velTraceValue(detail, kMeasuring, here, "key", 0xFEDCBA9876543210ULL);
  velTraceValue(detail, kMeasuring, here, "ratio", 0.5F);
  velTraceValue(detail, kMeasuring, here, "volume", -1.25e-9);
  // Only 10 of the 16 bytes are part of the value; the others are padding.
  unsigned char bytes[sizeof(long double)] = {};
  const long double distance = 6.5e300L * 1e300L;
  std::memcpy(bytes, &distance, 10);
  velTraceDump(detail, kMeasuring, VelEnTraceDataType::LONG_DOUBLE, here, "distance", bytes, sizeof bytes);
}

void store(const char* name) {
  const char* const here = "store";
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kStoring, here);
  const char16_t title[] = u"Übersicht";
  const char block[] = "sixteen bytes... and two more";
  // A fixed number in place of a pointer, whose value would differ from run to run.
  const uint64_t place = 0x12AB34;
  velTraceDump(VelEnTraceDetail::LOW, kStoring, VelEnTraceDataType::C_STRING, here, "name", name,
               std::strlen(name));
  velTraceDump(VelEnTraceDetail::LOW, kStoring, VelEnTraceDataType::UTF16_STRING, here, "title", title,
               sizeof title - sizeof *title);
  velTraceDump(VelEnTraceDetail::HIGH, kStoring, VelEnTraceDataType::DATA, here, "block", block, 16);
  velTraceDump(VelEnTraceDetail::HIGH, kStoring, VelEnTraceDataType::DATA, here, "block and rest", block, 18);
  velTraceDump(VelEnTraceDetail::HIGH, kStoring, VelEnTraceDataType::ADDRESS, here, "place", &place,
               sizeof place);
  measure();
  velTraceDump(VelEnTraceDetail::LOW, kStoring, VelEnTraceDataType::DATA, here, "nothing", nullptr, 4);
}

void run() {
  const char* const here = "run";
  const VelClTraceFunction function(VelEnTraceDetail::LOW, kGeneral, here);
  static const char large[5000] = "longer than the smallest ring";
  velTraceDump(VelEnTraceDetail::OFF, kGeneral, VelEnTraceDataType::DATA_NONE, here,
               "started, 100% of 2 files", "", 0);
  store("C:\\data\\first.dat");
  velTraceDump(VelEnTraceDetail::HIGH, kGeneral, VelEnTraceDataType::DATA, here, "all", large, sizeof large);
}

}  // namespace

int main() {
  velTraceCreateInstance("tour", nullptr);
  run();
  velTraceDeleteInstance();
}
