// The window of a failed assertion, on a desktop of its own that no display shows: its title, its text, and
// the button that ends the wait.
#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <functional>
#include <string>
#include <thread>

#include "platform/test/child_process.h"

namespace {

constexpr const char* kTitle = "Internal error occured: Assertion failed!";
constexpr DWORD kTimeLimitMs = 60 * 1000;

/// Asks every few milliseconds until the answer is yes or the time is over.
bool waitUntil(const std::function<bool()>& question) {
  for (DWORD passedMs = 0; passedMs < kTimeLimitMs; passedMs += 10) {
    if (question()) return true;
    Sleep(10);
  }
  return false;
}

/// A process that ends with this object at the latest.
class Process {
 public:
  Process(std::string commandLine, const char* desktop) {
    std::string desktopName = desktop;
    STARTUPINFOA startUp{};
    startUp.cb = sizeof startUp;
    startUp.dwFlags = STARTF_USESTDHANDLES;
    if (!desktopName.empty()) startUp.lpDesktop = desktopName.data();
    started_ = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                              nullptr, &startUp, &process_) != FALSE;
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    if (!started_) return;
    TerminateProcess(process_.hProcess, 1);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  bool isStarted() const { return started_; }
  DWORD id() const { return process_.dwProcessId; }
  bool hasEnded() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0; }
  DWORD exitCode() const {
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  PROCESS_INFORMATION process_{};
  bool started_;
};

/// The longest of a window's texts that is not a button's.
std::string textIn(HWND box) {
  std::string text;
  for (HWND part = nullptr; (part = FindWindowExA(box, part, "Static", nullptr)) != nullptr;) {
    std::string found(10000, '\0');
    found.resize(static_cast<std::size_t>(
        SendMessageA(part, WM_GETTEXT, found.size(), reinterpret_cast<LPARAM>(found.data()))));
    if (found.size() > text.size()) text = found;
  }
  return text;
}

/// An invisible desktop. Wine runs the windows of a desktop without graphics driver, but shows them nowhere.
class HiddenDesktop {
 public:
  HiddenDesktop()
      : name_("vel_test_" + std::to_string(GetCurrentProcessId())),
        owner_("explorer.exe /desktop=" + name_ + ",640x480,null", "") {}

  /// Whether the desktop is there; if so, it becomes this thread's.
  bool enter() const {
    HDESK desktop = nullptr;
    const bool opened = waitUntil([this, &desktop] {
      return (desktop = OpenDesktopA(name_.c_str(), 0, FALSE, GENERIC_ALL)) != nullptr;
    });
    // The property tells that the owner has chosen the driver; before, any other process would.
    return opened && SetThreadDesktop(desktop) != FALSE &&
           waitUntil([] { return GetPropA(GetDesktopWindow(), "__wine_display_device_guid") != nullptr; });
  }
  const char* name() const { return name_.c_str(); }

 private:
  std::string name_;
  Process owner_;
};

std::string reportOf(const Process& child) {
  return "\n*** INTERNAL ERROR OCCURED ***\n*** broken state ***\n***         FUNCTION: run\n"
         "*** ASSERTION FAILED: p != 0\n***             LINE: 4294967295\n***           MODULE: file.cpp\n"
         "***       PROCESS ID: " +
         std::to_string(child.id()) + "\n\n";
}

void answerBox() {
  const HiddenDesktop desktop;
  ASSERT_TRUE(desktop.enter());
  const std::string own = vel::test::ownProgram();
  SetEnvironmentVariableA("VEL_NO_ASSERT_POPUP", nullptr);
  const Process child("\"" + own.substr(0, own.find_last_of('\\') + 1) + "assertion_child.exe\" message",
                      desktop.name());
  ASSERT_TRUE(child.isStarted());
  HWND box = nullptr;
  ASSERT_TRUE(waitUntil(
      [&box] { return (box = FindWindowA(nullptr, kTitle)) != nullptr && IsWindowVisible(box) != FALSE; }));
  EXPECT_EQ(textIn(box), reportOf(child));
  EXPECT_FALSE(child.hasEnded());
  PostMessageA(box, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(waitUntil([&child] { return child.hasEnded(); }));
  EXPECT_EQ(child.exitCode(), 3U);
}

TEST(StopMessage, ShowsTheReportOfAnAssertionAndWaits) {
  // A thread's desktop stays what it is; so it gets a thread of its own.
  std::thread(answerBox).join();
}

}  // namespace
