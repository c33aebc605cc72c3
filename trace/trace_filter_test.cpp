#include <gtest/gtest.h>

#include <string>

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
  const struct {
    const char* list;
    const char* fromNone;
    const char* fromAll;
  } rows[] = {
      {"", "", "1-255"},
      {"0", "", "1-255"},
      {"300", "", "1-255"},
      {"4294967297", "", "1-255"},
      {"7", "7", "1-255"},
      {"10.12,20..21", "10-12 20-21", "1-255"},
      {"250.300", "250-255", "1-255"},
      {"12.10", "", "1-255"},
      {"-3,4", "4", "1-2 4-255"},
      {"10-20", "", "1-19 21-255"},
      {"-*", "", ""},
      {"*,-7.9", "1-6 10-255", "1-6 10-255"},
      {"-+5 x,,6", "5-6", "1-255"},
      {".5,9", "9", "1-255"},
  };
  for (const auto& row : rows) {
    VelClTraceFilter none;
    none.disableAllComponentIds();
    none.enableComponentIds(row.list);
    EXPECT_EQ(enabled(none), row.fromNone) << row.list;
    EXPECT_TRUE(none.matchesCompId(0)) << row.list;
    VelClTraceFilter all;
    all.enableComponentIds(row.list);
    EXPECT_EQ(enabled(all), row.fromAll) << row.list;
    EXPECT_EQ(all.usesCompIdFilter(), enabled(all) != "1-255") << row.list;
  }
}

TEST(TraceFilter, KeepsComponentsWithinTheSet) {
  VelClTraceFilter filter;
  filter.disableComponentIdSet(254, 65535);
  filter.setComponentIdSet(0, 5, false);
  filter.setComponentIdSet(7, 0, false);
  filter.disableComponentIdSet(9, 8);
  filter.disableComponentId(300);
  EXPECT_EQ(enabled(filter), "1-6 8-253");
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
  EXPECT_TRUE(!filter.usesThreadIdFilter() && filter.matchesThreadId(13));
}

}  // namespace
