
#include "trace/test/trace_fixture.h"

namespace {

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
  EXPECT_EQ(velTraceGetLostBytes(), 22U);
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
  EXPECT_EQ(entries(), "passes D2 T12 7\n D1 T6\n");
}

TEST_F(TraceInstance, CountsTheNestingOfFunctions) {
  start({{"DETAIL", "OFF"}, {"AUTOFLUSH", "yes"}});
  {
    const VelClTraceFunction outer(Detail::LOW, 0, "outer");
    const VelClTraceFunction tooDetailed(Detail::MEDIUM, 0, "inner");
  }
  velTraceDump(Detail::LOW, 0, Type::FUNCTION_EXIT, "lost", "", nullptr, 0);
  velTraceDump(Detail::LOW, 0, Type::FUNCTION_ENTRY, "late", "", nullptr, 0);
  EXPECT_EQ(entries(),
            "outer D0 T1 1 0 0 0\nouter D0 T2 0 0 0 0\nlost D0 T2 255 255 255 255\nlate D0 T1 0 0 0 0\n");
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
  const std::string ul = sizeof(long) == 8 ? "v D1 T18 2 0 0 0 0 0 0 0\n" : "v D1 T16 2 0 0 0\n";
  EXPECT_THAT(entries(), testing::StartsWith("v D1 T10 1\nv D1 T11 255\nv D1 T14 1 0\nv D1 T15 1 0 0 0\n" +
                                             ul + "v D1 T17 3 0 0 0 0 0 0 0\nv D1 T4"));
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
