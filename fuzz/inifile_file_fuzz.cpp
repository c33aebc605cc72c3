// Loads a file, which is read in blocks, and the same bytes from memory: the models must be equal, and the
// editor must have every byte. The input is a byte of options, a byte for the number of repetitions, and the
// text to repeat, so that short inputs make files of many blocks.
#include "fuzz/bytes.h"
#include "fuzz/ini_model.h"
#include "fuzz/input_file.h"

namespace fuzz::inifile_file {

namespace {

constexpr std::size_t kMaxFileSize = 300'000;

/// Replaces CR LF with LF, as reading a file does.
std::string withoutReturns(const std::string& text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') lines += text[i];
  return lines;
}

void run(Bytes bytes) {
  static InputFile input(".ini");
  const bool allowContinuation = (bytes.byte() & 1) != 0;
  const unsigned int repeats = 1 + 16U * bytes.byte();
  std::string text;
  for (unsigned int i = 0; i < repeats && text.size() < kMaxFileSize; ++i) text += bytes.rest();
  input.rewrite(text);
  VelClIniFile file(input.name()), memory("unused");
  require(file.load(allowContinuation));
  const std::string lines = withoutReturns(text);
  require(memory.loadFromBuffer(lines.data(), lines.size(), '\n', true, allowContinuation));
  require({file.getLineCount() == memory.getLineCount(), modelOf(file) == modelOf(memory)});
  VelClIniFileEditor editor(input.name());
  require(editor.load(allowContinuation));
  require(std::string_view(editor.getText(), editor.getLength()) == text);
}

const Target target("inifile_file", run);

}  // namespace

}  // namespace fuzz::inifile_file
