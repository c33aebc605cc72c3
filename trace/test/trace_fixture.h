// A trace environment for one test: its key's variables, a directory for its file, and entries of given
// sizes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace vel::test {

/// How a record begins; its texts and its data follow.
struct RecordHead {
  std::uint8_t type, component, messageLength, originLength;
  std::uint32_t time, process, thread, dataLength;
};

class TraceTest : public testing::Test {
 protected:
  TraceTest() : file_(directory_.path("unit.trc")) { set("FILE", file_); }
  ~TraceTest() override {
    velTraceDeleteInstance();
    for (const std::string& name : variables_) VelClEnvironmentVariable(name.c_str(), "");
  }

  /// Sets a variable of the key until the end of the test.
  void set(const std::string& suffix, const std::string& value) {
    variables_.push_back("UNIT_TRACE_" + suffix);
    VelClEnvironmentVariable(variables_.back().c_str(), value.c_str());
  }
  /// An active instance, with more variables of the key.
  VelClTraceInstance* start(std::initializer_list<std::pair<const char*, const char*>> more = {}) {
    set("ACTIVE", "yes");
    for (const auto& [suffix, value] : more) set(suffix, value);
    return velTraceCreateInstance("unit", nullptr);
  }
  std::unique_ptr<VelClTraceEnvironment> environment(bool controller = false) const {
    return std::make_unique<VelClTraceEnvironment>("unit", nullptr, controller);
  }
  /// What the file holds when everything is saved.
  std::string saved() const { return readFile(file_); }
  /// Origin, detail, type and data of every entry in the file.
  std::string entries() const {
    std::istringstream stream(saved());
    const auto reader = environment(true);
    std::string text;
    for (VelClTraceFileEntry entry(*reader); entry.read(stream); text += '\n') {
      std::string data(entry.getDumpDataLength(), '\0');
      stream.read(data.data(), static_cast<std::streamsize>(data.size()));
      text += std::string(entry.getOrigin()) + " D" + std::to_string(static_cast<int>(entry.getDetail())) +
              " T" + std::to_string(static_cast<int>(entry.getType()));
      for (const char byte : data) text += " " + std::to_string(static_cast<unsigned char>(byte));
    }
    return text;
  }

  ScratchDirectory directory_;
  std::string file_;

 private:
  std::vector<std::string> variables_;
};

/// An entry of at least 20 bytes altogether, all of them behind the head being `fill`.
class SizedEntry {
 public:
  SizedEntry(const VelClTraceEnvironment& environment, std::size_t size, char fill)
      : data_(size - 20, fill),
        entry_(environment, VelEnTraceDetail::LOW, 1, VelEnTraceDataType::DATA, "", "", data_.data(),
               data_.size()) {}

  const VelClTraceEntry& get() const { return entry_; }
  std::string bytes() const {
    return std::string(entry_.getEntryData(), entry_.getSizeOfEntryData()) + data_;
  }

 private:
  std::string data_;
  VelClTraceEntry entry_;
};

}  // namespace vel::test
