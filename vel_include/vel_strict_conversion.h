// Conversion between code pages without silent data loss: every fault is detected, counted and handled as the
// caller chooses.
#ifndef VEL_STRICT_CONVERSION_H_
#define VEL_STRICT_CONVERSION_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_codepage.h"
#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)

namespace vel::codepage {
class Reader;
class Writer;
class Output;
}  // namespace vel::codepage

/// Receives the output of a strict conversion.
class VEL_API VelClConversionSink {
 public:
  VelClConversionSink() = default;
  VelClConversionSink(const VelClConversionSink&) = delete;
  VelClConversionSink& operator=(const VelClConversionSink&) = delete;
  virtual ~VelClConversionSink();

  /// Receives the next bytes, which are valid during the call only. An exception thrown here ends the
  /// conversion, which must then be restarted.
  virtual void write(const char* bytes, size_t size) = 0;
};

class VelClConversionFaultHandler;

/// Converts a text of any size, in pieces of any size:
///
///   VelClStrictConversion conversion(VelClCCSID::CCSID_37, VelClCCSID::CCSID_UTF8);
///   while ((size = read(buffer)) != 0 && conversion.convert(buffer, size, sink)) {
///   }
///   if (!conversion.finish(sink)) report(conversion.getFirstFault().offset);
///
/// The conversion uses the converters and their routes, through UCS-2 with surrogate pairs; this also applies
/// to 1200, 13488, 17584, 61955, 65500 and 65501. A text without faults is converted as the converters would,
/// with three exceptions: the next line (see setNextLineFolding); U+FDD0 to U+FDEF and U+FFFE, which are
/// preserved in UTF-8; and redundant shifts (0E, 0F), which are dropped where ICU converts and are faults
/// where a table does. Byte order marks count as characters. The result does not depend on how the text is
/// divided into pieces.
///
/// A character counts as representable if it round-trips through the target's own converter or table: best
/// fits, truncation and substitution are faults. Where the system converts to a code page without a table in
/// this library, only its "?" can be recognised as a substitution. A byte without a character is an invalid
/// sequence, and so is everything that RFC 3629 forbids in UTF-8, and an unpaired surrogate.
///
/// Members throw only when memory runs out (VelClExceptionFatal) or when the sink throws. One conversion must
/// not be used by two threads at the same time.
class VEL_API VelClStrictConversion {
 public:
  /// The conversion routes, see VelClConverterABase.
  using VelEnRoute = VelClConverterABase::VelEnRoute;

  /// Selects how a fault is handled.
  enum class VelEnPolicy : int32_t {
    STOP = 0,     ///< the conversion ends before the fault
    SKIP = 1,     ///< nothing is written for the fault
    REPLACE = 2,  ///< one substitute is written: U+FFFD, the converters' best fit, or the target's substitute
    ESCAPE = 3    ///< \u20AC, \U0001F600, or \xFF for each ill-formed byte; backslashes are not escaped
  };

  /// The kinds of faults.
  enum class VelEnFault : int32_t {
    NONE = 0,               ///< no fault
    INVALID_SEQUENCE = 1,   ///< the bytes are ill-formed in the source's code page
    INCOMPLETE = 2,         ///< the source ends within a character, or in double-byte mode
    NOT_REPRESENTABLE = 3,  ///< the character is unmappable in the target's code page
  };

  /// Describes a fault and its position.
  struct VelStFault {
    VelEnFault kind;  ///< the kind of fault
    /// The number of source bytes before the fault.
    uint64_t offset;
    /// The line, from 1; lines end with U+000A, and with U+0085 if the source is EBCDIC-based.
    uint64_t line;
    /// The column in characters, from 1.
    uint64_t column;
    /// The character, or 0 unless `kind` is NOT_REPRESENTABLE.
    uint32_t character;
    /// The bytes of any other fault, at most 4, and their number; 0 if the source ended in double-byte mode.
    uint32_t size;
    unsigned char bytes[4];
  };

  /// Uses the numbers of the CCSIDs, even if the table of properties does not contain them.
  VelClStrictConversion(const VelClCCSID& source, const VelClCCSID& target,
                        VelEnPolicy policy = VelEnPolicy::STOP);
  VelClStrictConversion(const VelClStrictConversion&) = delete;
  VelClStrictConversion& operator=(const VelClStrictConversion&) = delete;
  ~VelClStrictConversion();

  /// Return the route of a single conversion; NONE if no route exists, or if it needs ICU, which is not
  /// installed.
  static VelEnRoute getRouteToUcs2(const VelClCCSID& source);
  static VelEnRoute getRouteFromUcs2(const VelClCCSID& target);

  /// True if there is a route from the source and one to the target, which is also required for equal CCSIDs.
  /// Most code pages need ICU. Without both nothing is ever converted.
  bool isSupported() const { return reader_ != nullptr && writer_ != nullptr; }

  // The converters fold if they use a table of the library; here folding depends on the source alone.
  /// Sets whether the next line (U+0085) of an EBCDIC-based source becomes a line feed (U+000A). Initially
  /// off, because line feeds do not round-trip to next lines.
  void setNextLineFolding(bool isFolded) { foldsNextLine_ = isFolded && source_.isEBCDIC(); }

  /// Converts the next piece of the source. Returns false if the conversion has stopped, or is not supported.
  /// Everything converted is written to the sink before the call returns; a character that continues in the
  /// next piece is kept.
  bool convert(const char* source, size_t size, VelClConversionSink& sink);
  /// Ends the source. An unfinished character, or double-byte mode, is a fault. An open shift is closed, even
  /// after a stop.
  bool finish(VelClConversionSink& sink);
  /// Same, but the handler decides about every fault, and the policy of the constructor is not used. Pass a
  /// handler to every call for one text: lines and columns of later faults are counted only then.
  bool convert(const char* source, size_t size, VelClConversionSink& sink,
               VelClConversionFaultHandler& handler);
  bool finish(VelClConversionSink& sink, VelClConversionFaultHandler& handler);
  /// Resets the conversion for another source text.
  void restart();

  /// True if a fault was found with the policy STOP, or the handler chose it.
  bool hasStopped() const { return hasStopped_; }
  /// Return the number of faults of one kind, or of every kind, so far.
  uint64_t getFaultCount(VelEnFault kind) const { return faultCounts_[static_cast<int32_t>(kind)]; }
  uint64_t getFaultCount() const;
  /// Returns the first fault; its kind is NONE if there was none.
  const VelStFault& getFirstFault() const { return firstFault_; }
  /// Returns the number of source bytes converted so far.
  uint64_t getOffset() const { return offset_; }

 private:
  size_t convertBlock(const char* source, size_t size, bool isLast, vel::codepage::Output& output);
  bool convertKept(const char*& source, size_t& size, bool isLast, vel::codepage::Output& output);
  bool run(const char* source, size_t size, bool isLast, vel::codepage::Output& output);
  VelStFault describe(VelEnFault kind, uint64_t offset, uint32_t character, const char* bytes,
                      size_t size) const;
  VelEnPolicy decide(const VelStFault& fault, const vel::codepage::Output& output);
  bool writeUnits(const char* source, size_t size, size_t count, vel::codepage::Output& output);
  size_t handleUnmappable(const char* source, size_t size, size_t unit, vel::codepage::Output& output);
  void handleIllFormed(VelEnFault kind, const char* bytes, size_t size, vel::codepage::Output& output);
  void advance(size_t firstUnit, size_t endUnit);

  VelClCCSID source_;
  VelEnPolicy policy_;
  bool foldsNextLine_;
  bool hasStopped_;
  bool followsLines_;              ///< lines and columns are counted even after the first fault
  vel::codepage::Reader* reader_;  ///< owned; null without a route
  vel::codepage::Writer* writer_;  ///< owned; null without a route
  char16_t* units_;                ///< owned
  char* outputBuffer_;             ///< owned
  char kept_[16];                  ///< the start of a character that continues in the next piece
  size_t keptSize_;
  uint64_t offset_;
  uint64_t line_;
  uint64_t column_;
  uint64_t faultCounts_[4];
  VelStFault firstFault_;
};

/// Decides about each fault of a strict conversion, and can report all of them:
///
///   class Report : public VelClConversionFaultHandler {
///     VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault& fault) override {
///       std::cerr << fault.line << ':' << fault.column << '\n';
///       return VelClStrictConversion::VelEnPolicy::REPLACE;
///     }
///   };
///
/// It is called once per fault, in the order of the source.
class VEL_API VelClConversionFaultHandler {
 public:
  VelClConversionFaultHandler() = default;
  VelClConversionFaultHandler(const VelClConversionFaultHandler&) = delete;
  VelClConversionFaultHandler& operator=(const VelClConversionFaultHandler&) = delete;
  virtual ~VelClConversionFaultHandler();

  /// Returns what is done about this fault. The text before it may not have been written to the sink yet. The
  /// conversion must not be used here, except for its getters; getOffset depends on how the text is divided,
  /// fault.offset does not. An exception thrown here stops the conversion: convert and finish return false
  /// until restart.
  virtual VelClStrictConversion::VelEnPolicy handle(const VelClStrictConversion::VelStFault& fault) = 0;
};

#endif

#endif
