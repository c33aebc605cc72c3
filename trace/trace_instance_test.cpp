// Tests the trace of a process through the functions that programs call. Expected entries are built by
// line(): origin, detail, type, and the bytes of the data as a string.

#include "trace/test/trace_fixture.h"

namespace {

using namespace std::string_view_literals;

using Detail = VelEnTraceDetail;
using Type = VelEnTraceDataType;

using TraceInstance = vel::test::TraceTest;

TEST_F(TraceInstance, ExistsOncePerProcess) {
  EXPECT_FALSE(velTraceIsEnabled());
  velTraceFlush();
  velTraceDump(Detail::LOW, 0, Type::DATA_NONE, "f", "m", "", 0);
  velTraceDeleteInstance();
  VelClTraceInstance* const instance = velTraceCreateInstance("unit", nullptr);
  EXPECT_EQ(VelClTraceInstance::createInstance("other", nullptr), instance);
  EXPECT_FALSE(velTraceIsEnabled());
  instance->enable();
  EXPECT_FALSE(velTraceIsEnabled()) << "it is not active";
  instance->activate();
  EXPECT_FALSE(instance->isEnabled());
  instance->enable();
  EXPECT_EQ(VelClTraceInstance_getInstance(), instance);
  instance->disable();
  EXPECT_FALSE(velTraceIsEnabled());
  instance->getEnvironment().setFilename(directory_.path("missing/unit.trc").c_str());
  instance->dump(Detail::LOW, 0, Type::DATA_NONE, "f", "m", "", 0);
  instance->flush();
  EXPECT_EQ(velTraceGetLostBytes(), 22U) << "the head of 20 bytes, and two texts of one byte";
  EXPECT_NE(velTraceGetLastSystemError(), 0);
  { const VelClTraceAutomaticInstanceDestructor atEndOfScope; }
  EXPECT_EQ(VelClTraceInstance::getSingletonInstance(), nullptr);
  velTraceDeleteInstance();
  EXPECT_EQ(velTraceGetLostBytes(), 0U);
  EXPECT_EQ(velTraceGetLastSystemError(), 0);
  EXPECT_TRUE(VelClTraceInstance::createControllerInstance("unit", nullptr)->getEnvironment().isController());
}

TEST_F(TraceInstance, RecordsOnlyEntriesThatPassTheFilter) {
  start({{"DETAIL", "MED"}, {"COMPSET", "1.2"}});
  const unsigned char byte = 7;
  velTraceDump(Detail::MEDIUM, 1, Type::UNSIGNED_8, "passes", nullptr, &byte, 1);
  velTraceDump(Detail::HIGH, 1, Type::UNSIGNED_8, "too detailed", nullptr, &byte, 1);
  velTraceDump(Detail::LOW, 3, Type::UNSIGNED_8, "other component", nullptr, &byte, 1);
  velTraceDump(Detail::LOW, 257, Type::UNSIGNED_8, "no component", nullptr, &byte, 1);
  velTraceDump(Detail::LOW, 0, Type::DATA_NONE, nullptr, nullptr, nullptr, 0);
  velTraceDeleteInstance();
  EXPECT_EQ(entries(),
            line("passes", Detail::MEDIUM, Type::UNSIGNED_8, "\7") + line("", Detail::LOW, Type::DATA_NULL));
}

TEST_F(TraceInstance, CountsTheNestingOfFunctions) {
  start({{"DETAIL", "OFF"}, {"AUTOFLUSH", "yes"}});
  {
    const VelClTraceFunction outer(Detail::LOW, 0, "outer");
    const VelClTraceFunction tooDetailed(Detail::MEDIUM, 0, "inner");
  }
  velTraceDump(Detail::LOW, 0, Type::FUNCTION_EXIT, "lost", "", nullptr, 0);
  velTraceDump(Detail::LOW, 0, Type::FUNCTION_ENTRY, "late", "", nullptr, 0);
  // The data is the nesting level. An exit without an entry makes it -1.
  EXPECT_EQ(entries(), line("outer", Detail::OFF, Type::FUNCTION_ENTRY, "\1\0\0\0"sv) +
                           line("outer", Detail::OFF, Type::FUNCTION_EXIT, "\0\0\0\0"sv) +
                           line("lost", Detail::OFF, Type::FUNCTION_EXIT, "\xFF\xFF\xFF\xFF"sv) +
                           line("late", Detail::OFF, Type::FUNCTION_ENTRY, "\0\0\0\0"sv));
}

TEST_F(TraceInstance, TraceValueStoresTheTypeOfItsArgument) {
  start();
  const auto trace = [](const auto& value) { velTraceValue(Detail::LOW, 0, "v", "", value); };
  trace(true);
  trace(static_cast<signed char>(-1));
  trace(static_cast<unsigned short>(1));
  trace(1);
  trace(2UL);
  trace(3LL);
  trace(std::tuple<>());
  velTraceFlush();
  const auto of = [](Type type, std::string_view data) { return line("v", Detail::LOW, type, data); };
  const bool isLong64 = sizeof(long) == 8;
  const std::string expected =
      of(Type::BOOLEAN_VALUE, "\1") + of(Type::SIGNED_8, "\xFF") + of(Type::UNSIGNED_16, "\1\0"sv) +
      of(Type::SIGNED_32, "\1\0\0\0"sv) +
      (isLong64 ? of(Type::UNSIGNED_64, "\2\0\0\0\0\0\0\0"sv) : of(Type::UNSIGNED_32, "\2\0\0\0"sv)) +
      of(Type::SIGNED_64, "\3\0\0\0\0\0\0\0"sv);
  // The value of the one byte of an empty tuple is undefined, so only the start of its line, type DATA, is
  // compared.
  EXPECT_THAT(entries(), testing::StartsWith(expected + "v D1 T4 "));
  static_assert(
      velTraceTypeOf<float>() == Type::FLOAT_32 && velTraceTypeOf<long double>() == Type::LONG_DOUBLE &&
      velTraceTypeOf<const char*>() == Type::ADDRESS && velTraceTypeOf<unsigned char>() == Type::UNSIGNED_8);
}

TEST_F(TraceInstance, PassesEntriesToTheUserCallback) {
  VelClTraceInstance* const instance = start();
  EXPECT_TRUE(instance->usesVelBackEnd());
  std::string seen;
  instance->registerUserCallback(
      [](void* context, Detail, unsigned short component, Type, const char* origin, const char*, const void*,
         size_t) { *static_cast<std::string*>(context) += origin + std::to_string(component); },
      &seen);
  velTraceDump(Detail::HIGH, 300, Type::DATA_NONE, "f", "", "", 0);
  velTraceDeleteInstance();
  EXPECT_EQ(seen, "f300");
  EXPECT_EQ(entries(), "");
}

TEST(TracePrint, PrintsOriginAndLineBeforeTheText) {
  testing::internal::CaptureStdout();
  vel_tprintf("f", 3, "x=%d", 5);
  vel_tprintf("f", 4, "a\nb");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "[f:3] x=5\n[f:4] a\nb");
  std::ostringstream stream;
  vel_tprint(stream << std::hex, "f", 30);
  EXPECT_EQ(stream.str(), "[f:30] ");
}

}  // namespace
