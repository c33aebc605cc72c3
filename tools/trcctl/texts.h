// The ids of trcctl's texts among the library's messages.
#pragma once

namespace vel::trcctl {

enum TextId : unsigned long {
  kTitle = 150,
  kUsage = 151,
  kHelp = 152,
  kSwitchKey = 153,
  kSwitchInstance = 154,
  kSwitchFile = 155,
  kSwitchVerbose = 156,
  kSwitchDisplay = 159,
  kSwitchFormat = 162,
  kSwitchHideFunctions = 163,
  kSwitchHideRepeated = 164,
  kSwitchHex = 165,
  kSwitchBinary = 166,
  kSwitchNesting = 167,
  kSwitchIndentation = 168,
  kSwitchDetail = 169,
  kSwitchComponents = 170,
  kSwitchProcess = 171,
  kSwitchThread = 172,
  kKeyAndInstance = 173,
  kTraceStatus = 174,
  kTraceFilter = 175,
  kTraceActive = 176,
  kTraceEnabled = 177,
  kSharedMemory = 178,
  kBufferSize = 179,
  kTraceFile = 180,
  kDetailLevel = 181,
  kFilterProcess = 182,
  kFilterThread = 183,
  kComponentSet = 184,
  kCompressionRate = 185,
  kNumberOfEntries = 186,
  kIncluded = 187,
  kExcluded = 188,
  kBytes = 189,
  kFileNotFound = 193,
  kInvalidInstance = 194,
  kFileNotIdentified = 195,
  kNotInitialized = 196,
  kFileNotReadable = 197,
  kUnexpectedEnd = 198,
  kInvalidData = 199
};

/// Not in the catalog, whose messages are numbered for good.
inline constexpr char kNotATrace[] = "Not a trace file: it does not begin with a complete entry";

/// As kNotATrace.
inline constexpr char kUnknownDetail[] = "The detail must be OFF, LOW, MED or HIGH";
inline constexpr char kFormatWithoutData[] = "The format must have this variable exactly once";

/// Not in the catalog, because all tools report this in the same words.
inline constexpr char kNotWritten[] = "The output could not be written";

}  // namespace vel::trcctl
