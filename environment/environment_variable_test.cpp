// Tests environment variables, their enabled values, and the limits of names and values.
#include "platform/test/test.h"
#include "vel_include/vel_environment.h"

namespace {

constexpr const char* kName = "VEL_TEST_VARIABLE";

TEST(EnvironmentVariable, IsEnabledByTheDocumentedValues) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/enabled_values.tsv")) {
    VelClEnvironmentVariable variable(kName, row.at(1).c_str());
    EXPECT_EQ(variable.hasValueEnabled(), row[0] == "yes") << '"' << row[1] << '"';
  }
}

TEST(EnvironmentVariable, ChangesTheRuntimesEnvironment) {
  VelClEnvironmentVariableQueryOnly query;
  EXPECT_STREQ(query.getName(), "?");
  EXPECT_FALSE(query.hasValue());
  VelClEnvironmentVariable variable(kName, "a=b;c");
  EXPECT_STREQ(std::getenv(kName), "a=b;c");
  query.setNewName(kName);
  for (const char* appended : {";d", static_cast<const char*>(nullptr)})
    EXPECT_TRUE(variable.appendValue(appended));
  EXPECT_STREQ(query.getValue(), "a=b;c;d");
  variable.resetValue();
  EXPECT_EQ(std::getenv(kName), nullptr);
  EXPECT_FALSE(query.hasValueEnabled());
  EXPECT_TRUE(variable.appendValue("e"));
  EXPECT_STREQ(VelClEnvironmentVariableQueryOnly(variable).getValue(), "e");
  // Null and the empty text remove the variable; removing it twice is not an error.
  for (const char* value : {static_cast<const char*>(nullptr), "", ""}) {
    EXPECT_TRUE(variable.setNewValue(value));
    EXPECT_FALSE(variable.hasValue());
    EXPECT_EQ(variable.getValue(), nullptr);
  }
}

TEST(EnvironmentVariable, LongValuesAreStoredInFullOrRefused) {
  const std::string longest(32766, 'q');
  VelClEnvironmentVariable variable(kName, std::string(300, 'x').c_str());
  EXPECT_TRUE(variable.appendValue(std::string(2700, 'y').c_str()));
  EXPECT_TRUE(variable.appendValue(variable.getValue()));
  const std::string once = std::string(300, 'x') + std::string(2700, 'y');
  EXPECT_EQ(variable.getValue(), once + once);
  // Systems differ in whether they accept a longer value; a refused one must not change the variable.
  const bool accepted = variable.setNewValue((longest + "q").c_str());
  EXPECT_EQ(variable.getValue(), accepted ? longest + "q" : once + once);
  EXPECT_TRUE(variable.setNewValue(longest.c_str()));
  EXPECT_EQ(variable.getValue(), longest);
  variable.resetValue();
}

TEST(EnvironmentVariable, InvalidNamesAreRefusedAndLongOnesCut) {
  for (const char* name : {"", "=", "VEL_TEST=X", static_cast<const char*>(nullptr)}) {
    VelClEnvironmentVariable variable(name, "1");
    for (const char* value : {"1", static_cast<const char*>(nullptr)})
      EXPECT_FALSE(variable.setNewValue(value));
    EXPECT_FALSE(variable.appendValue("1"));
    EXPECT_EQ(variable.getValue(), nullptr);
  }
  EXPECT_EQ(std::getenv("VEL_TEST"), nullptr);
  const std::string name(40, 'N');
  VelClEnvironmentVariable variable((name + "cut").c_str(), "1");
  EXPECT_EQ(variable.getName(), name);
  EXPECT_STREQ(std::getenv(name.c_str()), "1");
  variable.resetValue();
  // A name and the start of a value must not be mistaken for a name.
  const VelClEnvironmentVariable other(kName, "q=r");
  EXPECT_EQ(VelClEnvironmentVariableQueryOnly((std::string(kName) + "=q").c_str()).getValue(), nullptr);
}

}  // namespace
