// Tests the message box of a failed assertion: its title, its text, and the button that ends the wait. Runs
// under Wine only, on a Wine desktop without a display driver.
//
// The public headers are included before windows.h here, and after it in system_test.cpp.
#include "vel_include/vel.h"

// After the public headers, see above; the blank lines keep this include from being sorted.
#include <windows.h>

#include "platform/test/test.h"

static_assert(static_cast<int>(VelEnErrorAction::NO_ACTION) == IGNORE);

namespace {

/// A process that ends with this object at the latest.
struct Process {
  explicit Process(std::string commandLine, std::string desktop = "") {
    STARTUPINFOA startUp{};
    startUp.cb = sizeof startUp;
    startUp.dwFlags = STARTF_USESTDHANDLES;
    if (!desktop.empty()) startUp.lpDesktop = desktop.data();
    EXPECT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                               nullptr, nullptr, &startUp, &started));
  }
  Process(const Process&) = delete;
  ~Process() {
    TerminateProcess(started.hProcess, 1);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
  }

  PROCESS_INFORMATION started{};
};

/// The longest of a window's texts that is not a button's.
std::string textIn(HWND box) {
  std::string text;
  for (HWND part = nullptr; (part = FindWindowExA(box, part, "Static", nullptr)) != nullptr;) {
    char found[10000] = "";
    SendMessageA(part, WM_GETTEXT, sizeof found, reinterpret_cast<LPARAM>(found));
    if (std::string(found).size() > text.size()) text = found;
  }
  return text;
}

/// Waits until `child` shows its report, ends it by the button, and returns the report.
std::string answerBox(const Process& child) {
  const DWORD id = child.started.dwProcessId;
  HWND box = nullptr;
  EXPECT_TRUE(vel::test::waitUntil([&] {
    box = FindWindowA(nullptr, "Internal error occured: Assertion failed!");
    return (box != nullptr && IsWindowVisible(box) != FALSE) || vel::test::endsWithin(id, 0);
  }));
  const std::string text = textIn(box);
  EXPECT_FALSE(vel::test::endsWithin(id, 0));
  PostMessageA(box, WM_COMMAND, IDOK, 0);
  DWORD exitCode = 0;
  EXPECT_TRUE(vel::test::endsWithin(id, vel::test::kTimeLimitMs));
  EXPECT_TRUE(GetExitCodeProcess(child.started.hProcess, &exitCode));
  EXPECT_EQ(exitCode, 3U);
  return text;
}

void failAssertions() {
  // Wine runs the windows of a desktop without graphics driver, but shows them nowhere.
  const std::string name = "vel_test_" + std::to_string(GetCurrentProcessId());
  const Process owner("explorer.exe /desktop=" + name + ",640x480,null");
  HDESK desktop = nullptr;
  ASSERT_TRUE(vel::test::waitUntil(
      [&] { return (desktop = OpenDesktopA(name.c_str(), 0, FALSE, GENERIC_ALL)) != nullptr; }));
  ASSERT_TRUE(SetThreadDesktop(desktop));
  // The owner sets the property when it has chosen the driver; before that, any other process would choose
  // it.
  ASSERT_TRUE(vel::test::waitUntil(
      [] { return GetPropA(GetDesktopWindow(), "__wine_display_device_guid") != nullptr; }));
  const std::string own = vel::test::ownProgram();
  const std::string program = "\"" + own.substr(0, own.find_last_of('\\') + 1) + "assertion_child.exe\" ";
  SetEnvironmentVariableA("VEL_NO_ASSERT_POPUP", nullptr);
  const Process message(program + "message", name);
  EXPECT_EQ(answerBox(message),
            "\n*** INTERNAL ERROR OCCURED ***\n*** broken state ***\n***         FUNCTION: run\n"
            "*** ASSERTION FAILED: p != 0\n***             LINE: 4294967295\n***           MODULE: file.cpp\n"
            "***       PROCESS ID: " +
                std::to_string(message.started.dwProcessId) + "\n\n");
  // Only a process's first assertion asks for the variable.
  SetEnvironmentVariableA("VEL_NO_ASSERT_POPUP", "yes");
  EXPECT_THAT(answerBox(Process(program + "nested", name)), testing::HasSubstr("FAILED: second\n"));
}

TEST(StopMessage, ShowsTheReportOfAnAssertionAndWaits) {
  // A thread that has windows cannot change its desktop, so the test uses a separate thread.
  std::thread(failAssertions).join();
}

}  // namespace
