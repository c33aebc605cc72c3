// Tests text at a console: a child runs on a pseudo-console, whose other end the test reads and types at.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/console_text.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

using CreateConsole = HRESULT(WINAPI*)(COORD, HANDLE, HANDLE, DWORD, void**);
using CloseConsole = void(WINAPI*)(void*);

template <typename Function>
Function functionOf(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

/// A program on its own console, and its user.
class Console {
 public:
  explicit Console(const std::wstring& commandLine) {
    HANDLE input = nullptr, output = nullptr;
    CreatePipe(&input, &keyboard_, nullptr, 0);
    CreatePipe(&screen_, &output, nullptr, 0);
    const auto create = functionOf<CreateConsole>("CreatePseudoConsole");
    if (create == nullptr || create({100, 30}, input, output, 0, &console_) != S_OK) return;
    start(commandLine);
    CloseHandle(input);
    CloseHandle(output);
  }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  ~Console() {
    if (isStarted()) TerminateProcess(process_.hProcess, 1);
    if (console_ != nullptr) functionOf<CloseConsole>("ClosePseudoConsole")(console_);
    for (const HANDLE handle : {process_.hProcess, process_.hThread, keyboard_, screen_}) CloseHandle(handle);
  }

  bool isStarted() const { return process_.hProcess != nullptr; }
  void type(const std::string& keys) const {
    DWORD written = 0;
    WriteFile(keyboard_, keys.data(), static_cast<DWORD>(keys.size()), &written, nullptr);
  }
  /// Waits until the screen has shown the text.
  bool shows(const std::string& text) {
    return test::waitUntil([&] {
             DWORD available = 0;
             if (PeekNamedPipe(screen_, nullptr, 0, nullptr, &available, nullptr) == FALSE) return true;
             std::string part(available, '\0');
             DWORD read = 0;
             if (available > 0) ReadFile(screen_, part.data(), available, &read, nullptr);
             shown_ += withoutSequences(part);
             return shown_.find(text) != std::string::npos;
           }) &&
           shown_.find(text) != std::string::npos;
  }
  const std::string& shown() const { return shown_; }
  DWORD exitCode() const {
    DWORD code = 1;
    WaitForSingleObject(process_.hProcess, test::kTimeLimitMs);
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  static constexpr DWORD_PTR kPseudoConsole = 0x20016;

  void start(std::wstring commandLine) {
    std::array<unsigned char, 512> list{};
    SIZE_T size = list.size();
    STARTUPINFOEXW startUp{};
    startUp.StartupInfo.cb = sizeof startUp;
    startUp.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(list.data());
    InitializeProcThreadAttributeList(startUp.lpAttributeList, 1, 0, &size);
    UpdateProcThreadAttribute(startUp.lpAttributeList, 0, kPseudoConsole, console_, sizeof console_, nullptr,
                              nullptr);
    // Without handles, the child does not inherit those of the test.
    startUp.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, EXTENDED_STARTUPINFO_PRESENT,
                   nullptr, nullptr, &startUp.StartupInfo, &process_);
  }

  /// Control sequences move the cursor between characters.
  std::string withoutSequences(const std::string& part) {
    std::string text;
    for (const char c : part) {
      if (c == '\x1B')
        isInSequence_ = true;
      else if (!isInSequence_)
        text += c;
      else if (std::isalpha(static_cast<unsigned char>(c)) != 0)
        isInSequence_ = false;
    }
    return text;
  }

  HANDLE keyboard_ = nullptr, screen_ = nullptr;
  void* console_ = nullptr;
  PROCESS_INFORMATION process_{};
  std::string shown_;
  bool isInSequence_ = false;
};

TEST(ConsoleText, AppearsAndIsReadWhateverTheCodePageIs) {
  const test::ScratchDirectory scratch;
  const std::string report = scratch.path("report");
  const std::filesystem::path child =
      std::filesystem::path(test::ownProgram()).replace_filename("console_child.exe");
  Console console(L'"' + child.wstring() + L"\" \"" + std::filesystem::path(report).wstring() + L'"');
  if (!console.isStarted()) GTEST_SKIP() << "this system has no pseudo-consoles";
  EXPECT_TRUE(console.shows("Имя")) << console.shown();
  const std::string text = "[Jürgen,пример,日本]";
  const std::size_t first = console.shown().find(text);
  EXPECT_NE(first, std::string::npos) << console.shown();
  EXPECT_NE(console.shown().find(text, first + 1), std::string::npos) << console.shown();
  console.type("ответ ü 日本\r");
  console.type("ещё\r");
  const std::string longLine = std::string(1500, 'x') + "ж";
  console.type(longLine + "\r\r\x1A\r");
  EXPECT_EQ(console.exitCode(), 0);
  EXPECT_EQ(test::readFile(report), "ответ ü 日本\nещё\n" + longLine + "\n\nend\n");
}

TEST(ConsoleText, IsOnlyForConsoles) {
  for (const int descriptor : {-1, 0, 1, 2, 3, 99}) EXPECT_FALSE(isConsoleInUtf8(descriptor));
}

}  // namespace

}  // namespace vel::platform
