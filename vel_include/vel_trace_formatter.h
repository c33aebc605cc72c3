// Makes text of trace files, for programs that show what others traced; trcctl is one. The environment that
// names the file, and the filter, are those of vel_trace.h, which includes this header.
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

/// Makes text of a trace file, one entry after the other, by a format string:
///
///   %f origin     %m message     %d data (exactly once)    %x, %X type, short and long
///   %p process    %t thread      %s time stamp             %l detail    %c component
///   %n and \n line break with indentation, \t tab, \\ back-slash, %% percent sign
///
/// Every format string must have "%d" exactly once: it alone moves behind the data of the entry. "%" or "\"
/// before any other character is shown as "%" or as that character; at the very end it is ignored.
/// Of a nesting level 1,024 levels are shown as indentation at most, and none of one above 2147483647.
/// Faults of the file are thrown as VelClException with severity FATAL and action TERMINATE; what was
/// formatted before stays written: TRACEFORMAT_COULD_NOT_OPEN with class IO_PERMISSION_DENIED,
/// TRACEFORMAT_UNEXPECTED_EOF with IO_READ_PROBLEM for data that is cut off or that the system fails to read,
/// TRACEFORMAT_FILE_CORRUPTED with INVALID_DATA or DATA_OUT_OF_BOUNDS for data that does not fit its type.
/// Nothing is allocated per entry.
class VEL_API VelClTraceFormatter {
 public:
  /// The file's name, and the format string at first, come from `environment`; a null filter means that of
  /// its settings. Neither is copied.
  VelClTraceFormatter(const VelClTraceEnvironment& environment, const VelClTraceFilter* filter);
  VelClTraceFormatter(const VelClTraceFormatter&) = delete;
  VelClTraceFormatter& operator=(const VelClTraceFormatter&) = delete;
  ~VelClTraceFormatter();

  /// Texts are not copied; null means the environment's format, and no indentation.
  void setFormatString(const char* format);
  /// What stands once for each nesting level at the start of each line.
  void setDisplayIndentation(const char* indentation) { indentation_ = indentation; }
  /// Shows the nesting level of function records; off at first.
  void setShowNestingLevel(bool show) { showNestingLevel_ = show; }
  /// Shows function records at all; on at first.
  void setShowFunctionRecords(bool show) { showFunctionRecords_ = show; }
  /// Shows a function's name also in records that follow one of the same function; on at first.
  void setShowRepeatedFunctionNames(bool show) { showRepeatedNames_ = show; }
  /// Shows numbers and booleans also as a line "HEX: ", or as lines "BIN: ", with their bytes; off at first.
  void setShowHex(bool show) { showHex_ = show; }
  void setShowBinary(bool show) { showBinary_ = show; }
  /// Takes the formatter's own words (messages 189 to 192) from a catalog, which must live longer.
  void attachVelMessageCatalog(VelClMessageCatalog& catalog);

  /// Formats the whole file. Characters that count as printable are those of ASCII, and numbers have no
  /// locale: the same file gives the same text on every system. Floating-point numbers have the stream's
  /// precision, up to 8,000, and its general, fixed or scientific form.
  void format(std::ostream& stream);
  // Entries that are kept out count, too. Keep.
  /// The entries that the last format read, whether shown or not.
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
