#include <gtest/gtest.h>

#include <string>

#include "platform/test/table.h"
#include "vel_include/vel_trace.h"

namespace {

/// The enabled components from 1 to 255 as "1-5 7".
std::string enabled(const VelClTraceFilter& filter) {
  std::string text;
  for (unsigned short id = 1; id < 256; ++id) {
    if (!filter.matchesCompId(id)) continue;
    const unsigned short first = id;
    while (id < 255 && filter.matchesCompId(static_cast<unsigned short>(id + 1))) ++id;
    text += (text.empty() ? "" : " ") + std::to_string(first) + (id > first ? "-" + std::to_string(id) : "");
  }
  return text;
}

TEST(TraceFilter, ReadsComponentLists) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/component_lists.tsv")) {
    VelClTraceFilter none;
    none.disableAllComponentIds();
    none.enableComponentIds(row[0].c_str());
    EXPECT_EQ(enabled(none), row[1]) << row[0];
    EXPECT_TRUE(none.matchesCompId(0)) << row[0];
    VelClTraceFilter all;
    all.enableComponentIds(row[0].c_str());
    EXPECT_EQ(enabled(all), row[2]) << row[0];
    EXPECT_EQ(all.usesCompIdFilter(), enabled(all) != "1-255") << row[0];
  }
}

TEST(TraceFilter, KeepsComponentsWithinTheSet) {
  VelClTraceFilter filter;
  filter.disableComponentIdSet(254, 65535);
  filter.setComponentIdSet(0, 5, false);
  filter.setComponentIdSet(7, 0, false);
  filter.disableComponentIdSet(9, 8);
  filter.enableComponentIds(nullptr);
  filter.disableComponentId(300);
  EXPECT_EQ(enabled(filter), "1-6 8-253");
  filter.setComponentIdSet(254, 255, true);
  EXPECT_EQ(enabled(filter), "1-6 8-255");
  filter.enableComponentIdSet(0, 65535);
  EXPECT_FALSE(filter.usesCompIdFilter());
  EXPECT_FALSE(filter.matchesCompId(256));
  filter.disableComponentId(0);
  EXPECT_FALSE(filter.usesCompIdFilter());
}

TEST(TraceFilter, ReadsDetailsAndNumbers) {
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
  EXPECT_TRUE(filter.usesProcessIdFilter() && filter.matchesProcessId(12) && !filter.matchesProcessId(13));
  filter.setProcessId(static_cast<const char*>(nullptr));
  EXPECT_TRUE(!filter.usesProcessIdFilter() && !filter.usesThreadIdFilter() && filter.matchesThreadId(13));
}

}  // namespace
