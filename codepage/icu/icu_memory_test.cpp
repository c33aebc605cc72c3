// Memory that runs out within ICU: its allocations fail one after the other, once each and then from there
// on. A conversion must come out as it would with memory, or tell that there was none.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <unordered_set>

#include "codepage/icu/icu_library.h"
#include "codepage/test/outcome.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_strict_conversion.h"

namespace {

using vel::platform::Procedure;

// ---- ICU's memory ----------------------------------------------------------------------------

std::unordered_set<void*> live;
int allocations = 0;
int failsFrom = 0;  ///< the number of the first allocation that fails, 0 for none
bool onlyOneFails = false;

bool fails() {
  const int number = ++allocations;
  return failsFrom > 0 && (onlyOneFails ? number == failsFrom : number >= failsFrom);
}

void* kept(void* block) {
  if (block != nullptr) live.insert(block);
  return block;
}

void* allocate(const void*, std::size_t size) {
  return fails() ? nullptr : kept(std::malloc(size));
}
void release(const void*, void* block) {
  live.erase(block);
  std::free(block);
}
void* reallocate(const void*, void* block, std::size_t size) {
  if (fails()) return nullptr;
  live.erase(block);
  return kept(std::realloc(block, size));
}

// ---- ICU -------------------------------------------------------------------------------------

void* library = nullptr;

template <typename Function>
Function* function(const char* name) {
  for (int version = 0; version < 100; ++version) {
    const std::string full = name + (version == 0 ? "" : "_" + std::to_string(version));
    if (const Procedure found = velDllProcLoaderGetProcedure(library, full.c_str()))
      return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(found));
  }
  return nullptr;
}

/// The ICU that the library itself finds.
void* loadIcu() {
  vel::codepage::IcuFunctions functions{};
  vel::codepage::bindIcu({[](const char* name) { return library = velDllProcLoaderOpen(name); },
                          &velDllProcLoaderGetProcedure, &velDllProcLoaderClose},
                         VEL_ICU_VERSION, functions);
  return functions.open != nullptr ? library : nullptr;
}

using SetMemoryFunctions = void(const void* context, void* (*)(const void*, std::size_t),
                                void* (*)(const void*, void*, std::size_t), void (*)(const void*, void*),
                                std::int32_t* status);

class IcuMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (loadIcu() == nullptr) GTEST_SKIP() << "there is no ICU";
    cleanUp_ = function<void()>("u_cleanup");
    setMemory_ = function<SetMemoryFunctions>("u_setMemoryFunctions");
    ASSERT_TRUE(cleanUp_ != nullptr && setMemory_ != nullptr);
    forget();
  }

  void TearDown() override {
    if (cleanUp_ != nullptr) cleanUp_();
    velDllProcLoaderClose(library);
    library = nullptr;
  }

  /// ICU loads everything anew the next time, but for its table of names: without memory for that it tells of
  /// a missing file, and has no page any more. Its memory is another from now on.
  void forget() {
    cleanUp_();
    std::int32_t status = 0;
    setMemory_(nullptr, &allocate, &reallocate, &release, &status);
    ASSERT_EQ(status, 0);
    _VelStError error;
    velDeleteICUConverter(velGetICUConverter(kUtf8, error));
  }

  /// Runs `operation` with each allocation failing, until none does any more.
  template <typename Operation>
  void exhaust(const std::string& name, Operation operation) {
    for (const bool once : {true, false}) {
      onlyOneFails = once;
      int point = 1;
      told_ = 0;
      for (; point < kMost; ++point) {
        allocations = 0;
        failsFrom = point;
        operation(name + ", allocation " + std::to_string(point) + (once ? " alone" : ""));
        failsFrom = 0;
        forget();
        if (allocations < point) break;
      }
      EXPECT_GT(told_, 0) << name << " never misses memory";
      EXPECT_LT(point, kMost) << name << " never ends";
    }
  }

  static constexpr int kMost = 2000;
  static constexpr unsigned int kUtf8 = 1208;
  int told_ = 0;  ///< how often it was said that there was no memory

 private:
  void (*cleanUp_)() = nullptr;
  SetMemoryFunctions* setMemory_ = nullptr;
};

// ---- Conversions -----------------------------------------------------------------------------

struct Pair {
  int source, target;
  const char* text;
};
// Single bytes, lead bytes, shifts, four bytes, three bytes, and pages that ICU makes of several converters.
constexpr Pair kPairs[] = {{1047, 1051, "\xC1\xC2"},     {1208, 943, "A\xE3\x81\x82"},
                           {943, 1208, "A\x82\xA0"},     {930, 1399, "\xC1\x0E\x44\x81\x0F"},
                           {1208, 1392, "\xC2\x80"},     {33722, 964, "\xA4\xA2"},
                           {1208, 65502, "A\xD0\x96"},   {65502, 1208, "A"},
                           {1208, 5054, "A\xE3\x81\x82"}};

std::string nameOf(const Pair& pair) {
  return std::to_string(pair.source) + " to " + std::to_string(pair.target);
}

std::string convertStrictly(const Pair& pair) {
  struct : VelClConversionSink {
    std::string text;
    void write(const char* bytes, std::size_t size) override { text.append(bytes, size); }
  } sink;
  VelClStrictConversion conversion{ccsid(pair.source), ccsid(pair.target)};
  const std::string text = pair.text;
  conversion.convert(text.data(), text.size(), sink);
  conversion.finish(sink);
  return (conversion.isSupported() ? "" : "no way: ") + sink.text + ", " +
         std::to_string(conversion.getFaultCount()) + " faults";
}

TEST_F(IcuMemory, IsMissedByStrictConversions) {
  for (const Pair& pair : kPairs) {
    const std::string expected = convertStrictly(pair);
    ASSERT_TRUE(expected.ends_with(", 0 faults") && !expected.starts_with("no way")) << nameOf(pair);
    forget();
    exhaust(nameOf(pair), [&](const std::string& what) {
      try {
        EXPECT_EQ(convertStrictly(pair), expected) << what;
      } catch (const VelClExceptionFatal& exception) {
        EXPECT_EQ(exception.getClass(), VelEnErrorClass::OUT_OF_MEMORY) << what;
        ++told_;
      }
    });
  }
}

TEST_F(IcuMemory, IsMissedByConverters) {
  for (const Pair& pair : kPairs) {
    const auto run = [&pair] {
      const VelClCodePage2CodePageConverter converter{ccsid(pair.source), ccsid(pair.target)};
      if (converter.isSupported()) return convert(converter, pair.text, 64);
      return Outcome{"no way", 0, converter.getLastError().errorId, converter.getLastError().errorClass};
    };
    const Outcome expected = run();
    forget();
    exhaust(nameOf(pair), [&](const std::string& what) {
      const Outcome outcome = run();
      const bool isTold = outcome.errorClass == VelEnErrorClass::OUT_OF_MEMORY;
      EXPECT_TRUE(outcome == expected || isTold) << what << ": " << testing::PrintToString(outcome);
      told_ += isTold ? 1 : 0;
    });
  }
}

}  // namespace
