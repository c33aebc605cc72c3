// What VelClConsoleUI::useConventions switches on: command lines, messages and colours as users of today's
// command-line programs expect them.
#ifndef VEL_CONVENTIONS_H_
#define VEL_CONVENTIONS_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

/// The choices of a program. Set those that differ from the defaults:
///
///   ui.useConventions({.version = "1.2"});
///
/// The texts are not copied.
struct VelStConventions {
  /// The size of this structure. Do not change it: it tells the library which choices exist in a program that
  /// was built with an older header.
  size_t structSize = sizeof(VelStConventions);
  /// What `--version` prints after the name of the program. If null, `--version` has no built-in meaning.
  const char* version = nullptr;
  /// Introduces the names that resemble an unknown switch. Null leaves them out.
  const char* didYouMean = "did you mean";
  /// Adds the switch `-color auto|always|never`, and colours messages on terminals. If false, nothing is
  /// coloured and the switch is the program's own business.
  bool colors = true;
  /// Accepts the beginning of a switch's name, built-in or not, if no other switch begins like that. (help
  /// and version count only after two dashes.) If false, such a beginning is an unknown switch, and the names
  /// that begin with it are suggested: a script that relies on a beginning fails as soon as the program gets
  /// another switch.
  bool abbreviations = false;
};

/// Styles of text on a terminal, see VelClConsoleUI::style.
enum class VelEnTextStyle : uint32_t {
  PLAIN = 0,     ///< ends every other style
  HEADING = 1,   ///< bold
  EMPHASIS = 2,  ///< cyan
  GOOD = 3,      ///< green
  CAUTION = 4,   ///< bold yellow; the labels of warnings
  BAD = 5        ///< bold red; the labels of errors
};

#endif

#endif
