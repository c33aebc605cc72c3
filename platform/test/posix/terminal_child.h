// Starts a program on a pseudo-terminal of its own and plays the user in front of it.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <array>
#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace vel::test {

/// The three standard streams as files or terminals; an empty one is this process's. The child has a process
/// group of its own and ignores no signal.
pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            const Variables& environment, const std::array<std::string, 3>& streams);

/// The terminal does not control the child: signals are sent with `signal`, not typed.
class TerminalChild {
 public:
  /// `program` as in runChild. The streams that are not the terminal are this process's.
  TerminalChild(const std::string& program, const std::vector<std::string>& arguments,
                const Variables& environment = {}, bool onlyErrors = false);
  TerminalChild(const TerminalChild&) = delete;
  TerminalChild& operator=(const TerminalChild&) = delete;
  /// Ends the child if it is still there.
  ~TerminalChild();

  void type(const std::string& keys) const;
  void signal(int number) const;
  /// All that it wrote since the last call, with the terminal's CR LF, up to and with `text`; less when it
  /// ended before.
  std::string readThrough(const std::string& text);
  /// What it wrote until its end, which must be a good one and leave the terminal as it was.
  std::string finish();
  /// The wait status of its next stop or of its end, -1 at the time limit.
  int waitForStatus();

  /// Whether the terminal comes into the state in which keys arrive at once and unseen, but those that send
  /// signals still do.
  bool waitsForKey() const;
  /// Also behind the child's end.
  bool hasRestoredTerminal() const;

 private:
  termios attributes() const;

  int master_;
  termios attributesAtStart_{};
  pid_t child_;
  bool ended_ = false;
  std::string unread_;
};

}  // namespace vel::test
