// Runs strict conversions in pieces, and describes their results.
#pragma once

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "codepage/test/outcome.h"
#include "vel_include/vel_strict_conversion.h"

class TextSink : public VelClConversionSink {
 public:
  void write(const char* bytes, std::size_t size) override { text_.append(bytes, size); }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

/// Returns kind, offset, line, column and bytes of a fault.
inline std::string describe(const VelClStrictConversion::VelStFault& fault) {
  constexpr const char* kKinds[] = {"clean", "invalid", "incomplete", "unmappable"};
  std::ostringstream text;
  text << kKinds[static_cast<int>(fault.kind)] << ' ' << fault.offset << ' ' << fault.line << ':'
       << fault.column << ' ' << std::hex << std::uppercase;
  if (fault.kind == VelClStrictConversion::VelEnFault::NOT_REPRESENTABLE)
    text << "U+" << fault.character;
  else
    text << hex({reinterpret_cast<const char*>(fault.bytes), fault.size});
  return text.str();
}

/// Notes every fault, and decides with the given policy, or with STOP about the last fault of a number.
class FaultList : public VelClConversionFaultHandler {
 public:
  explicit FaultList(VelClStrictConversion::VelEnPolicy policy, std::size_t stopAt = SIZE_MAX)
      : policy_(policy), stopAt_(stopAt) {}

  VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault& fault) override {
    faults_.push_back(describe(fault));
    return faults_.size() == stopAt_ ? VelClStrictConversion::VelEnPolicy::STOP : policy_;
  }
  const std::vector<std::string>& faults() const { return faults_; }

 private:
  VelClStrictConversion::VelEnPolicy policy_;
  std::size_t stopAt_;
  std::vector<std::string> faults_;
};

struct StrictResult {
  std::string bytes;
  std::string faults;

  bool operator==(const StrictResult&) const = default;
};
inline void PrintTo(const StrictResult& result, std::ostream* stream) {
  *stream << hex(result.bytes.substr(0, 200)) << " " << result.faults;
}

/// Describes the first fault, and the number of each kind.
inline std::string describe(const VelClStrictConversion& conversion) {
  using Fault = VelClStrictConversion::VelEnFault;
  const VelClStrictConversion::VelStFault& fault = conversion.getFirstFault();
  if (fault.kind == Fault::NONE) return "clean";
  const auto count = [&](Fault kind) { return std::to_string(conversion.getFaultCount(kind)); };
  return describe(fault) + ' ' + count(Fault::INVALID_SEQUENCE) + '+' + count(Fault::INCOMPLETE) + '+' +
         count(Fault::NOT_REPRESENTABLE) + " at " + std::to_string(conversion.getOffset());
}

/// Returns the ends of pieces of one byte, two bytes, and so on up to `longest`, again and again.
inline std::vector<std::size_t> endsOfPieces(std::size_t size, std::size_t longest) {
  std::vector<std::size_t> ends;
  std::size_t piece = 1;
  for (std::size_t end = piece; end < size; end += piece) {
    ends.push_back(end);
    piece = piece % longest + 1;
  }
  return ends;
}

/// Converts pieces that end at `ends`, each in a block of exactly its size.
inline StrictResult convertInPieces(VelClStrictConversion& conversion, std::string_view source,
                                    const std::vector<std::size_t>& ends, FaultList* handler = nullptr) {
  TextSink text;
  conversion.restart();
  std::size_t begin = 0;
  const auto convertUpTo = [&](std::size_t end) {
    const std::vector<char> piece(source.begin() + static_cast<std::ptrdiff_t>(begin),
                                  source.begin() + static_cast<std::ptrdiff_t>(end));
    handler == nullptr ? conversion.convert(piece.data(), piece.size(), text)
                       : conversion.convert(piece.data(), piece.size(), text, *handler);
    begin = end;
  };
  for (const std::size_t end : ends) convertUpTo(end);
  convertUpTo(source.size());
  const bool isFinished = handler == nullptr ? conversion.finish(text) : conversion.finish(text, *handler);
  const bool isExpected = isFinished == (conversion.isSupported() && !conversion.hasStopped());
  return {text.take(), isExpected ? describe(conversion) : "finish() contradicts hasStopped()"};
}
