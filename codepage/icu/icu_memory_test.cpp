// Tests conversions when memory runs out within ICU: each of its allocations fails in turn, alone or with all
// later ones. The conversion must have its usual result or report that it is out of memory.
#include "codepage/test/loaded_icu.h"
#include "codepage/test/outcome.h"
#include "codepage/test/strict_run.h"
#include "platform/dynamic_libraries.h"
#include "platform/test/test.h"

namespace {

using vel::platform::Procedure;

// ---- ICU's memory ----------------------------------------------------------------------------

int allocations = 0;
int firstFailing = 0;  ///< the number of the first allocation to fail, from 1; 0 if none is to fail
bool failsOnce = false;

/// Counts an allocation and returns whether it is to fail.
bool nextAllocationFails() {
  const int number = ++allocations;
  return firstFailing > 0 && (failsOnce ? number == firstFailing : number >= firstFailing);
}

void* allocate(const void*, std::size_t size) {
  return nextAllocationFails() ? nullptr : std::malloc(size);
}
void* reallocate(const void*, void* block, std::size_t size) {
  return nextAllocationFails() ? nullptr : std::realloc(block, size);
}
void release(const void*, void* block) {
  std::free(block);
}

// ---- ICU -------------------------------------------------------------------------------------

template <typename Function>
Function* function(void* library, const char* name) {
  for (int version = 0; version < 100; ++version) {
    const std::string full = name + (version == 0 ? "" : "_" + std::to_string(version));
    if (const Procedure found = velDllProcLoaderGetProcedure(library, full.c_str()))
      return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(found));
  }
  return nullptr;
}

using SetMemoryFunctions = void(const void* context, void* (*)(const void*, std::size_t),
                                void* (*)(const void*, void*, std::size_t), void (*)(const void*, void*),
                                std::int32_t* status);

struct Pair {
  int source, target;
  const char* text;
};

class IcuMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (icu_.library == nullptr) GTEST_SKIP() << "ICU is not installed";
    cleanUp_ = function<void()>(icu_.library, "u_cleanup");
    setMemory_ = function<SetMemoryFunctions>(icu_.library, "u_setMemoryFunctions");
    ASSERT_NE(cleanUp_, nullptr);
    ASSERT_NE(setMemory_, nullptr);
    reloadIcu();
  }

  void TearDown() override {
    if (cleanUp_ != nullptr) cleanUp_();
  }

  /// Unloads ICU's data, so that the next conversion allocates it again, and installs the memory functions
  /// above. Then loads the table of converter names: if its allocation failed, ICU would report a missing
  /// file and find no code page from then on.
  void reloadIcu() {
    cleanUp_();
    std::int32_t status = 0;
    setMemory_(nullptr, &allocate, &reallocate, &release, &status);
    ASSERT_EQ(status, 0);
    _VelStError error;
    velDeleteICUConverter(velGetICUConverter(kUtf8, error));
  }

  /// Converts each pair again and again; in each run another allocation of ICU fails, until every one has.
  void exhaust(Outcome (*convertPair)(const Pair&));

 private:
  static constexpr unsigned int kUtf8 = 1208;
  LoadedIcu icu_;
  void (*cleanUp_)() = nullptr;
  SetMemoryFunctions* setMemory_ = nullptr;
};

// Code pages with single bytes, lead bytes, shifts, four bytes and three bytes, and those for which ICU
// combines several converters.
constexpr Pair kPairs[] = {{1047, 1051, "\xC1\xC2"},     {1208, 943, "A\xE3\x81\x82"},
                           {943, 1208, "A\x82\xA0"},     {930, 1399, "\xC1\x0E\x44\x81\x0F"},
                           {1208, 1392, "\xC2\x80"},     {33722, 964, "\xA4\xA2"},
                           {1208, 65502, "A\xD0\x96"},   {65502, 1208, "A"},
                           {1208, 5054, "A\xE3\x81\x82"}};

void IcuMemory::exhaust(Outcome (*convertPair)(const Pair&)) {
  constexpr int kMax = 2000;
  for (const Pair& pair : kPairs) {
    SCOPED_TRACE(std::to_string(pair.source) + " to " + std::to_string(pair.target));
    const Outcome expected = convertPair(pair);
    ASSERT_EQ(expected.errorId, static_cast<std::uint32_t>(VEL_NO_ERROR));
    reloadIcu();
    for (const bool once : {true, false}) {
      failsOnce = once;
      int reported = 0, point = 1;
      for (; point < kMax; ++point) {
        allocations = 0;
        firstFailing = point;
        const Outcome outcome = convertPair(pair);
        firstFailing = 0;
        if (outcome.errorClass == VelEnErrorClass::OUT_OF_MEMORY)
          ++reported;
        else
          EXPECT_EQ(outcome, expected) << "allocation " << point << (once ? " alone" : "");
        reloadIcu();
        if (allocations < point) break;
      }
      EXPECT_GT(reported, 0) << "no failure was reported";
      EXPECT_LT(point, kMax) << "the conversion allocates endlessly";
    }
  }
}

TEST_F(IcuMemory, IsReportedByStrictConversions) {
  exhaust([](const Pair& pair) {
    try {
      VelClStrictConversion conversion{ccsid(pair.source), ccsid(pair.target)};
      const StrictResult result = convertInPieces(conversion, pair.text, {});
      const bool isClean = conversion.isSupported() && result.faults == "clean";
      return Outcome{result.bytes, 0, isClean ? VEL_NO_ERROR : CPCONVERTER_UNSUPPORTED};
    } catch (const VelClExceptionFatal& exception) {
      return Outcome{"", 0, static_cast<std::uint32_t>(exception.getId()), exception.getClass()};
    }
  });
}

TEST_F(IcuMemory, IsReportedByConverters) {
  exhaust([](const Pair& pair) {
    const VelClCodePage2CodePageConverter converter{ccsid(pair.source), ccsid(pair.target)};
    if (converter.isSupported()) return convert(converter, pair.text, 64);
    return Outcome{"", 0, converter.getLastError().errorId, converter.getLastError().errorClass};
  });
}

}  // namespace
