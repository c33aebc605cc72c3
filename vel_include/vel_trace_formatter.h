// Renders trace files as text, for programs that show what others traced, such as trcctl. The environment,
// which names the file, and the filter are declared in vel_trace.h, which includes this header.
#ifndef VEL_TRACE_FORMATTER_H_
#define VEL_TRACE_FORMATTER_H_

#include <stdint.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <iosfwd>

class VelClMessage;
class VelClMessageCatalog;
class VelClTraceEnvironment;
class VelClTraceFilter;

/// Renders a trace file as text, entry by entry, according to a format string:
///
///   %f origin     %m message     %d data (exactly once)    %x, %X type, short and long
///   %p process    %t thread      %s time stamp             %l detail    %c component
///   %n and \n line break with indentation, \t tab, \\ backslash, %% percent sign
///
/// Every format string must contain "%d" exactly once, because only this directive consumes the data of the
/// entry. "%" or "\" before any other character is shown as "%" or as that character; at the very end of the
/// string it is ignored.
/// Of a nesting level 1,024 levels are shown as indentation at most, and none of a level above 2147483647.
/// Errors in the file are thrown as VelClException with severity FATAL and action TERMINATE; text formatted
/// before the error has been written. The identifiers are TRACEFORMAT_COULD_NOT_OPEN with class
/// IO_PERMISSION_DENIED, TRACEFORMAT_UNEXPECTED_EOF with IO_READ_PROBLEM for data that is truncated or that
/// the system fails to read, and TRACEFORMAT_FILE_CORRUPTED with INVALID_DATA or DATA_OUT_OF_BOUNDS for data
/// that does not fit its type. No memory is allocated per entry.
class VEL_API VelClTraceFormatter {
 public:
  /// Uses the file name and the format string of `environment`. If `filter` is null, uses the filter in the
  /// settings of the environment. Neither object is copied.
  VelClTraceFormatter(const VelClTraceEnvironment& environment, const VelClTraceFilter* filter);
  VelClTraceFormatter(const VelClTraceFormatter&) = delete;
  VelClTraceFormatter& operator=(const VelClTraceFormatter&) = delete;
  ~VelClTraceFormatter();

  /// Sets the format; null restores that of the environment. The text is not copied.
  void setFormatString(const char* format);
  /// Sets the text that is repeated for each nesting level at the start of each line; null means no
  /// indentation. The text is not copied.
  void setDisplayIndentation(const char* indentation) { indentation_ = indentation; }
  /// Shows the nesting level of function records; initially off.
  void setShowNestingLevel(bool show) { showNestingLevel_ = show; }
  /// Shows function records; initially on.
  void setShowFunctionRecords(bool show) { showFunctionRecords_ = show; }
  /// Repeats the function name in consecutive records of the same function; initially on.
  void setShowRepeatedFunctionNames(bool show) { showRepeatedNames_ = show; }
  /// Adds the bytes of numbers and booleans as a line "HEX: ", or as lines "BIN: "; initially off.
  void setShowHex(bool show) { showHex_ = show; }
  void setShowBinary(bool show) { showBinary_ = show; }
  /// Reads the formatter's own texts (messages 189 to 192) from a catalog, which must outlive the formatter.
  void attachVelMessageCatalog(VelClMessageCatalog& catalog);

  /// Formats the whole file. Output does not depend on the system or the locale: printable characters are
  /// those of ASCII, and numbers are formatted without a locale. Floating-point numbers use the stream's
  /// precision, up to 8,000, and its general, fixed or scientific notation.
  void format(std::ostream& stream);
  /// Returns the number of entries read by the last format, including those that the filter excludes.
  unsigned int getNumOfEntries() const { return entryCount_; }

 private:
  class VEL_LOCAL Run;

  const VelClTraceEnvironment* environment_;
  const VelClTraceFilter* filter_;
  VelClMessageCatalog* catalog_;
  VelClMessage* message_;
  std::ostream* stream_;
  uint32_t entryCount_;
  uint32_t nestingLevel_;
  const char* format_;
  const char* indentation_;
  bool showNestingLevel_;
  bool showFunctionRecords_;
  bool showRepeatedNames_;
  bool showHex_;
  bool showBinary_;
};

#endif

#endif
