// Starts a program on a pseudo-terminal of its own and plays the user in front of it.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace vel::test {

struct TerminalOptions {
  Variables environment = {};
  /// Only standard error is the terminal; the other streams are this process's.
  bool onlyErrors = false;
};

/// No wait is longer than a child may run. The terminal does not control the child: signals are sent with
/// `signal`, not typed.
class TerminalChild {
 public:
  /// `program` as in runChild.
  TerminalChild(const std::string& program, const std::vector<std::string>& arguments,
                const TerminalOptions& options = {});
  TerminalChild(const TerminalChild&) = delete;
  TerminalChild& operator=(const TerminalChild&) = delete;
  /// Ends the child if it is still there.
  ~TerminalChild();

  void type(const std::string& keys) const;
  void signal(int number) const;
  /// All that it wrote since the last call, with the terminal's CR LF, up to and with `text`; less when it
  /// ended before.
  std::string readThrough(const std::string& text);
  /// Reads until it has closed the terminal.
  std::string readToEnd() { return readThrough(std::string("\0", 1)); }
  /// The wait status of its next stop or of its end, -1 at the time limit.
  int waitForStatus();

  /// Also behind the child's end.
  termios attributes() const;
  const termios& attributesAtStart() const { return attributesAtStart_; }
  /// Whether the terminal has come into the state in which keys arrive at once and unseen.
  bool waitForKeyMode() const;

 private:
  int master_ = -1;
  termios attributesAtStart_{};
  pid_t child_ = -1;
  bool ended_ = false;
  std::string unread_;
};

}  // namespace vel::test
