// A trace environment for one test, with the variables of its key and a directory for its file; records, and
// entries of given sizes.
#pragma once

#include "platform/test/test.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace vel::test {

/// The first bytes of a record; message, origin and data follow.
struct RecordHead {
  std::uint8_t type, component, messageLength, originLength;
  std::uint32_t time, process, thread, dataLength;
};

/// Calls `change(head, offset of its data)` for each record of a file, and stores the changed head.
template <typename Change>
void changeHeads(std::string& file, Change change) {
  RecordHead head{};
  for (std::size_t at = 0; at + sizeof head <= file.size();) {
    std::memcpy(&head, &file[at], sizeof head);
    const std::size_t data = at + sizeof head + head.messageLength + head.originLength;
    change(head, data);
    std::memcpy(&file[at], &head, sizeof head);
    at = data + head.dataLength;
  }
}

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
  /// Creates an active instance, with more variables of the key.
  VelClTraceInstance* start(std::initializer_list<std::pair<const char*, const char*>> more = {}) {
    set("ACTIVE", "yes");
    for (const auto& [suffix, value] : more) set(suffix, value);
    return velTraceCreateInstance("unit", nullptr);
  }
  std::unique_ptr<VelClTraceEnvironment> environment(bool controller = false) const {
    return std::make_unique<VelClTraceEnvironment>("unit", nullptr, controller);
  }
  /// Returns the bytes that have been saved.
  std::string saved() const { return readFile(file_); }
  /// Returns an entry as entries() shows it: its origin, "D" and the number of its detail, "T" and the number
  /// of its type, and the bytes of its data as decimal numbers.
  static std::string line(const std::string& origin, VelEnTraceDetail detail, VelEnTraceDataType type,
                          std::string_view data = "") {
    std::string text = origin + " D" + std::to_string(static_cast<int>(detail)) + " T" +
                       std::to_string(static_cast<int>(type));
    for (const char byte : data) text += " " + std::to_string(static_cast<unsigned char>(byte));
    return text + '\n';
  }
  /// Returns a line() for every entry in the file.
  std::string entries() const {
    std::istringstream stream(saved());
    const auto reader = environment(true);
    std::string text;
    for (VelClTraceFileEntry entry(*reader); entry.read(stream);) {
      std::string data(entry.getDumpDataLength(), '\0');
      stream.read(data.data(), static_cast<std::streamsize>(data.size()));
      text += line(entry.getOrigin(), entry.getDetail(), entry.getType(), data);
    }
    return text;
  }

  ScratchDirectory directory_;
  std::string file_;

 private:
  std::vector<std::string> variables_;
};

/// An entry of `size` bytes, at least 20, in which every byte after the head is `fill`.
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
