#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "vel_include/vel_process.h"

namespace {

constexpr const char* kName = "VEL_TEST_VARIABLE";

TEST(EnvironmentVariable, EnabledValues) {
  struct Row {
    const char* value;
    bool enabled;
  };
  const Row rows[] = {
      {"ON", true}, {"on", true},  {"Yes", true},  {"TRUE", true},  {"tRuE", true},
      {"1", true},  {"ok", false}, {"0", false},   {"yes ", false}, {" yes", false},
      {"2", false}, {"11", false}, {"ONE", false}, {"O", false},    {"", false},
  };
  for (const Row& row : rows) {
    VelClEnvironmentVariable variable(kName, row.value);
    EXPECT_EQ(variable.hasValueEnabled(), row.enabled) << '"' << row.value << '"';
    EXPECT_EQ(VelClEnvironmentVariableQueryOnly(variable).hasValueEnabled(), row.enabled);
    variable.resetValue();
    EXPECT_FALSE(variable.hasValueEnabled());
  }
}

TEST(EnvironmentVariable, ChangesTheRuntimesEnvironment) {
  VelClEnvironmentVariable variable(kName, "a=b;c");
  EXPECT_STREQ(std::getenv(kName), "a=b;c");
  EXPECT_TRUE(variable.appendValue(";d"));
  EXPECT_STREQ(variable.getValue(), "a=b;c;d");
  EXPECT_TRUE(variable.appendValue(nullptr));
  EXPECT_STREQ(variable.getValue(), "a=b;c;d");
  variable.resetValue();
  EXPECT_EQ(std::getenv(kName), nullptr);
  EXPECT_TRUE(variable.appendValue("e"));
  EXPECT_STREQ(std::getenv(kName), "e");
  // Null and the empty text remove, also when there is nothing to remove.
  for (const char* value : {static_cast<const char*>(nullptr), "", ""}) {
    EXPECT_TRUE(variable.setNewValue(value));
    EXPECT_FALSE(variable.hasValue());
    EXPECT_EQ(variable.getValue(), nullptr);
  }
}

TEST(EnvironmentVariable, LongValuesAreWhole) {
  VelClEnvironmentVariable variable(kName, std::string(300, 'x').c_str());
  for (int length = 600; length <= 3000; length += 300) {
    EXPECT_TRUE(variable.appendValue(std::string(300, 'y').c_str()));
    EXPECT_EQ(std::string(variable.getValue()).size(), static_cast<std::size_t>(length));
  }
  EXPECT_TRUE(variable.appendValue(variable.getValue()));
  EXPECT_EQ(std::string(variable.getValue()),
            std::string(300, 'x') + std::string(2700, 'y') + std::string(300, 'x') + std::string(2700, 'y'));
  variable.resetValue();
}

TEST(EnvironmentVariable, RefusesNamesThatTheEnvironmentCannotHold) {
  for (const char* name : {"", "=", "VEL_TEST=X", static_cast<const char*>(nullptr)}) {
    VelClEnvironmentVariable variable(name, "1");
    EXPECT_FALSE(variable.setNewValue("1"));
    EXPECT_FALSE(variable.setNewValue(nullptr));
    EXPECT_FALSE(variable.appendValue("1"));
  }
  EXPECT_EQ(std::getenv("VEL_TEST"), nullptr);
}

TEST(EnvironmentVariable, NamesAreCutAt40Characters) {
  const std::string name(40, 'N');
  VelClEnvironmentVariable variable((name + "cut").c_str(), "1");
  EXPECT_EQ(variable.getName(), name);
  EXPECT_STREQ(std::getenv(name.c_str()), "1");
  variable.resetValue();
}

TEST(EnvironmentVariable, ARefusedValueLeavesTheOldOne) {
  VelClEnvironmentVariable variable(kName, "old");
  const std::string longest(32766, 'q');
  // Beyond that systems differ; what matters is that nothing is lost.
  const bool accepted = variable.setNewValue((longest + "q").c_str());
  EXPECT_EQ(std::string(variable.getValue()), accepted ? longest + "q" : "old");
  EXPECT_TRUE(variable.setNewValue(longest.c_str()));
  EXPECT_EQ(std::string(variable.getValue()), longest);
  EXPECT_EQ(VelClEnvironmentVariableQueryOnly((std::string(kName) + "=q").c_str()).getValue(), nullptr);
  variable.resetValue();
}

TEST(EnvironmentVariable, QueryFollowsItsName) {
  VelClEnvironmentVariableQueryOnly query;
  EXPECT_STREQ(query.getName(), "?");
  EXPECT_FALSE(query.hasValue());
  VelClEnvironmentVariable variable(kName, "later");
  query.setNewName(kName);
  EXPECT_STREQ(query.getValue(), "later");
  variable.setNewValue("now");
  EXPECT_STREQ(query.getValue(), "now");
  variable.resetValue();
}

TEST(ProcessProperty, ThreadsOfOneProcessDiffer) {
  const VelClProcessProperty process;
  const VelClThreadProperty here;
  unsigned int otherThread = 0;
  unsigned int otherProcess = 0;
  std::thread([&] {
    otherThread = VelClThreadProperty().getThreadId();
    otherProcess = VelClProcessProperty().getProcessId();
  }).join();
  EXPECT_NE(otherThread, 0u);
  EXPECT_NE(otherThread, here.getThreadId());
  EXPECT_EQ(otherProcess, process.getProcessId());
}

}  // namespace
