// Conversion between code pages for those who must not lose data silently: every fault is found, counted and
// treated as the caller decides.
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

/// Takes what a strict conversion writes.
class VEL_API VelClConversionSink {
 public:
  VelClConversionSink() = default;
  VelClConversionSink(const VelClConversionSink&) = delete;
  VelClConversionSink& operator=(const VelClConversionSink&) = delete;
  virtual ~VelClConversionSink();

  /// The next bytes, not kept. What it throws ends the conversion, which must be restarted then.
  virtual void write(const char* bytes, size_t size) = 0;
};

/// Converts a text of any size, in pieces of any size:
///
///   VelClStrictConversion conversion(VelClCCSID::CCSID_37, VelClCCSID::CCSID_UTF8);
///   while ((size = read(buffer)) != 0 && conversion.convert(buffer, size, sink)) {
///   }
///   if (!conversion.finish(sink)) report(conversion.getFirstFault().offset);
///
/// It stands on the converters and takes their ways, through UCS-2 with surrogate pairs, for 1200, 13488,
/// 17584, 61955, 65500 and 65501 alike. Of a text without faults it makes what they make of it, but for the
/// next line (see setNextLineFolding), for U+FDD0 to U+FDEF and U+FFFE, which stay themselves in UTF-8, and
/// for shifts (0E, 0F) that change nothing, which are left out where ICU converts, and are faults of a table.
/// Byte order marks count as characters. How a text is cut in pieces never shows.
///
/// A character counts as representable when the target's own converter, or its table, brings its bytes back
/// to the same character: best fits, truncation and substitution are faults. Of the system's own conversion
/// to a page without a table here only its "?" can be told. A byte without a character is
/// an invalid sequence, and so is everything in UTF-8 that RFC 3629 forbids. Half a pair of surrogates is
/// one, too.
///
/// Nothing here throws but for memory (VelClExceptionFatal) and what the sink throws. One conversion must not
/// be used by two threads at once.
class VEL_API VelClStrictConversion {
 public:
  /// The kinds of ways, as the converters have them.
  using VelEnRoute = VelClConverterABase::VelEnRoute;

  /// What becomes of a fault.
  enum class VelEnPolicy : int32_t {
    STOP = 0,     ///< the conversion ends before it
    SKIP = 1,     ///< nothing is written for it
    REPLACE = 2,  ///< one substitute is written: U+FFFD, the converters' best fit, or the target's substitute
    ESCAPE = 3    ///< \u20AC, \U0001F600; \xFF for each byte that is no character. Back-slashes stay as they
                  ///< are
  };

  /// The kinds of faults.
  enum class VelEnFault : int32_t {
    NONE = 0,               ///< no fault
    INVALID_SEQUENCE = 1,   ///< these bytes are no character of the source's code page
    INCOMPLETE = 2,         ///< the source ends within a character, or in double-byte mode
    NOT_REPRESENTABLE = 3,  ///< a character that the target's code page lacks
  };

  /// What is known of a fault, and where it is.
  struct VelStFault {
    VelEnFault kind;  ///< what is wrong
    /// Of the source in bytes, from its beginning, before the fault.
    uint64_t offset;
    /// From 1; lines end with U+000A, and with U+0085 where the source is EBCDIC-based.
    uint64_t line;
    /// In characters, from 1.
    uint64_t column;
    /// The character, 0 unless `kind` is NOT_REPRESENTABLE.
    uint32_t character;
    /// The bytes of any other fault, at most 4, and how many they are; 0 at the end in double-byte mode.
    uint32_t size;
    unsigned char bytes[4];
  };

  /// From the numbers of the CCSIDs; properties that they lack do not count.
  VelClStrictConversion(const VelClCCSID& source, const VelClCCSID& target,
                        VelEnPolicy policy = VelEnPolicy::STOP);
  VelClStrictConversion(const VelClStrictConversion&) = delete;
  VelClStrictConversion& operator=(const VelClStrictConversion&) = delete;
  ~VelClStrictConversion();

  /// The ways of single conversions; NONE without one.
  static VelEnRoute getRouteToUcs2(const VelClCCSID& source);
  static VelEnRoute getRouteFromUcs2(const VelClCCSID& target);

  /// Whether there is a way from the source and one to the target; also between equal CCSIDs. Without them
  /// nothing is ever converted.
  bool isSupported() const { return reader_ != nullptr && writer_ != nullptr; }

  // The converters fold where they have a table of their own; here it is a matter of the source alone.
  /// Whether the next line (U+0085) of an EBCDIC-based source becomes a line feed (U+000A). Not so at first,
  /// because line feeds do not come back as next lines.
  void setNextLineFolding(bool isFolded) { foldsNextLine_ = isFolded && source_.isEBCDIC(); }

  /// Converts the next piece of the source. False when the conversion has stopped, or is not supported. All
  /// that was converted is written before it returns; a character that goes on in the next piece is kept.
  bool convert(const char* source, size_t size, VelClConversionSink& sink);
  /// The end of the source. What is left is a fault; shifts are closed, also after a stop.
  bool finish(VelClConversionSink& sink);
  /// Makes ready for another source text.
  void restart();

  /// Whether the policy STOP has met a fault.
  bool hasStopped() const { return hasStopped_; }
  /// All faults of a kind, or of every kind, so far.
  uint64_t getFaultCount(VelEnFault kind) const { return faultCounts_[static_cast<int32_t>(kind)]; }
  uint64_t getFaultCount() const;
  /// Its kind is NONE when there is none.
  const VelStFault& getFirstFault() const { return firstFault_; }
  /// The bytes converted so far.
  uint64_t getOffset() const { return offset_; }

 private:
  size_t convertBlock(const char* source, size_t size, bool isLast, vel::codepage::Output& output);
  bool convertKept(const char*& source, size_t& size, bool isLast, vel::codepage::Output& output);
  bool run(const char* source, size_t size, bool isLast, VelClConversionSink& sink);
  bool writeUnits(const char* source, size_t size, size_t count, vel::codepage::Output& output);
  size_t takeLackingCharacter(const char* source, size_t size, size_t unit, vel::codepage::Output& output);
  void takeBadBytes(VelEnFault kind, const char* bytes, size_t size, vel::codepage::Output& output);
  bool count(VelEnFault kind, uint64_t offset, uint32_t character, const char* bytes, size_t size);
  void advance(size_t firstUnit, size_t endUnit);

  VelClCCSID source_;
  VelEnPolicy policy_;
  bool foldsNextLine_;
  bool hasStopped_;
  vel::codepage::Reader* reader_;  ///< owned, null without a way
  vel::codepage::Writer* writer_;  ///< owned, null without a way
  char16_t* units_;                ///< owned
  char* outputBuffer_;             ///< owned
  char kept_[16];                  ///< the beginning of a character
  size_t keptSize_;
  uint64_t offset_;
  uint64_t line_;
  uint64_t column_;
  uint64_t faultCounts_[4];
  VelStFault firstFault_;
};

#endif

#endif
