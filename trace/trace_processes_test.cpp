// Several processes at once, each with a small ring and a file of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_trace.h"

namespace {

/// How many entries of the file come back whole and in order.
std::uint32_t readBack(const std::string& file, const std::string& key) {
  const VelClTraceEnvironment environment("reader", nullptr, true);
  VelClTraceFileEntry entry(environment);
  std::ifstream stream(file, std::ios::binary);
  std::uint32_t count = 0;
  std::uintmax_t bytes = 0;
  while (entry.read(stream)) {
    std::uint32_t number = 0;
    stream.read(reinterpret_cast<char*>(&number), sizeof number);
    if (number != count || entry.getOrigin() != key || entry.getMessageLength() != number % 300) break;
    ++count;
    bytes += entry.getSizeOfEntryData() - 2 + sizeof number;
  }
  return bytes == std::filesystem::file_size(file) ? count : 0;
}

TEST(TraceProcesses, EachFileReadsBackWholeAndInOrder) {
  constexpr int kProcesses = 10;
  const vel::test::ScratchDirectory directory;
  std::vector<std::future<vel::test::ChildResult>> children;
  for (int i = 0; i < kProcesses; ++i) {
    const std::string key = "P" + std::to_string(i);
    const vel::test::ChildOptions options{{{key + "_TRACE_ACTIVE", "yes"},
                                           {key + "_TRACE_BUFSIZE", "4"},
                                           {key + "_TRACE_FILE", directory.path(key)}}};
    children.push_back(std::async(
        std::launch::async, [key, options] { return vel::test::runChild("trace_writer", {key}, options); }));
  }
  for (int i = 0; i < kProcesses; ++i) {
    EXPECT_EQ(children[static_cast<std::size_t>(i)].get().exitCode, 0);
    const std::string key = "P" + std::to_string(i);
    EXPECT_EQ(readBack(directory.path(key), key), 10'000U) << key;
  }
}

}  // namespace
