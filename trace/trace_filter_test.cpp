// Lists and sets of components are tested by fuzz/component_list_fuzz.cpp.
#include "platform/test/test.h"
#include "vel_include/vel_trace.h"

namespace {

TEST(TraceFilter, ParsesDetailsAndIdentifiers) {
  const std::pair<const char*, const char*> rows[] = {
      {"High-level", "HIGH"}, {"med", "MED"}, {"lowest", "LOW"},
      {"hig", "OFF"},         {"", "OFF"},    {nullptr, "OFF"}};
  VelClTraceFilter filter;
  EXPECT_EQ(filter.getDetail(), VelEnTraceDetail::LOW);
  for (const auto& [text, name] : rows) {
    filter.setDetail(text);
    EXPECT_STREQ(VelClTraceFilter::getDetailAsCString(filter.getDetail()), name);
  }
  EXPECT_EQ(VelClTraceFilter::getDetailAsCString(VelEnTraceDetail(4)), nullptr);
  EXPECT_FALSE(filter.matchesDetail(VelEnTraceDetail::LOW));
  EXPECT_TRUE(filter.matchesDetail(VelEnTraceDetail(-1)));
  filter.setProcessId("12x");
  filter.setThreadId("x");
  EXPECT_THAT(
      (std::array{filter.usesProcessIdFilter(), filter.matchesProcessId(12), filter.matchesProcessId(13),
                  filter.usesThreadIdFilter(), filter.matchesThreadId(13)}),
      testing::ElementsAre(true, true, false, false, true));
  filter.setProcessId(static_cast<const char*>(nullptr));
  EXPECT_FALSE(filter.usesProcessIdFilter());
  filter.enableComponentIds(nullptr);
  EXPECT_FALSE(filter.usesCompIdFilter());
}

}  // namespace
