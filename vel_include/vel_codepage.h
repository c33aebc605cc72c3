// Code pages, named by their coded character set identifiers (CCSIDs), and the conversion of text between
// them. Conversions use the vector instructions that the processor has; see velGetKernelLevel.
#ifndef VEL_CODEPAGE_H_
#define VEL_CODEPAGE_H_

#include <stddef.h>
#include <stdint.h>

#include "vel_error.h"
#include "vel_export.h"

/// Returns 256 UCS-2 units, one per byte, stored with the high byte first; unmapped bytes have U+FFFD.
/// Returns null for a CCSID without such a table. This table and those below are constant.
VEL_C_API const uint16_t* velGetSBCStoUCS2Table(unsigned int ccsid);
/// Returns a two-level table of 256-byte pages. Page 0 maps a unit's high byte to a page number; the byte for
/// unit v is at index (page number * 256 + low byte of v). Unmappable units have the substitution byte of the
/// code page. Returns null for a CCSID without such a table.
VEL_C_API const unsigned char* velGetUCS2toSBCSTable(unsigned int ccsid);
/// Always returns null: the library does not contain tables of this kind.
VEL_C_API const void* velGetEUCtoUCS2Table(unsigned int ccsid);

/// Returns the CCSID of a name that IANA, MIME or iconv use for a code page: 819 for "latin1", 1208 for
/// "utf8", 5348 for "Windows-1252" and "cp1252", 37 for "CP037". Names are compared as Unicode Technical
/// Standard 22 defines it: case and everything but letters and digits are ignored, and so are leading zeros.
/// Returns 0 for null and for a name that is not known, a mere number included. UTF-16LE is 65501 and
/// UTF-16BE 65500. UTF-16, which begins with a byte order mark, UTF-32 and UTF-7 are not known: there is no
/// CCSID that the library converts them with. Not all of these code pages are in the table of VelClCCSID, so
/// VelClCCSID::isValid may be false for the result; most of them need ICU.
VEL_C_API unsigned int velGetCCSIDOfName(const char* name);
/// Returns the names that velGetCCSIDOfName knows for a CCSID: the preferred one at index 0, then the others.
/// Returns null after the last one, and for a CCSID without a name.
VEL_C_API const char* velGetNameOfCCSID(unsigned int ccsid, size_t index);

/// Returns the name of the instructions that conversions use: "avx512" (with VBMI2), "avx2", "sse4" (SSE4.1)
/// or "portable". All have the same results. The best one that processor and operating system support is
/// chosen when this, or the first conversion, is called. The environment variable VEL_KERNELS can then name a
/// lower one; a name that is unknown, or not supported here, has no effect.
VEL_C_API const char* velGetKernelLevel(void);

/// Closes a converter that velGetICUConverter opened; null is ignored.
VEL_C_API void velDeleteICUConverter(const void* converter);

#if defined(VEL_HAS_CLASSES)

/// A row of the table of CCSIDs.
struct VelStCcsid;

/// A coded character set identifier: the number of an encoding. Properties are looked up in a built-in table,
/// which has the CCSIDs listed below. It is a plain value type: nothing here allocates, throws or reports
/// errors.
///
///   VelClCCSID(VelClCCSID::CCSID_850).isASCII()   // true
///   VelClCCSID("utf-8").getAsInt()                // 1208
///
/// 1250 and 1252 are the code pages without the euro sign; 5346 and 5348 have it.
class VEL_API VelClCCSID {
 public:
  /// The values are the CCSIDs themselves. Numbers not listed here may be converted to this type, too.
  enum VelEnCCSID : uint32_t {
    CCSID_UNKNOWN = 0,                 ///< not valid
    CCSID_UTF8 = 1208,                 ///< the same number as CCSID_1208
    CCSID_UCS2 = 13488,                ///< in host byte order, without a byte order mark
    CCSID_UCS2_BIG_ENDIAN = 65500,     ///< high byte first
    CCSID_UCS2_LITTLE_ENDIAN = 65501,  ///< low byte first
    // clang-format off
    CCSID_37 = 37, CCSID_256 = 256, CCSID_259 = 259, CCSID_273 = 273, CCSID_274 = 274, CCSID_275 = 275,
    CCSID_277 = 277, CCSID_278 = 278, CCSID_280 = 280, CCSID_284 = 284, CCSID_285 = 285, CCSID_286 = 286,
    CCSID_290 = 290, CCSID_293 = 293, CCSID_297 = 297, CCSID_300 = 300, CCSID_301 = 301, CCSID_367 = 367,
    CCSID_420 = 420, CCSID_421 = 421, CCSID_423 = 423, CCSID_424 = 424, CCSID_437 = 437, CCSID_500 = 500,
    CCSID_737 = 737, CCSID_803 = 803, CCSID_806 = 806, CCSID_813 = 813, CCSID_819 = 819, CCSID_833 = 833,
    CCSID_834 = 834, CCSID_835 = 835, CCSID_836 = 836, CCSID_837 = 837, CCSID_838 = 838, CCSID_839 = 839,
    CCSID_848 = 848, CCSID_850 = 850, CCSID_851 = 851, CCSID_852 = 852, CCSID_853 = 853, CCSID_855 = 855,
    CCSID_856 = 856, CCSID_857 = 857, CCSID_858 = 858, CCSID_860 = 860, CCSID_861 = 861, CCSID_862 = 862,
    CCSID_863 = 863, CCSID_864 = 864, CCSID_865 = 865, CCSID_866 = 866, CCSID_867 = 867, CCSID_868 = 868,
    CCSID_869 = 869, CCSID_870 = 870, CCSID_871 = 871, CCSID_872 = 872, CCSID_874 = 874, CCSID_875 = 875,
    CCSID_878 = 878, CCSID_880 = 880, CCSID_891 = 891, CCSID_895 = 895, CCSID_896 = 896, CCSID_897 = 897,
    CCSID_901 = 901, CCSID_902 = 902, CCSID_903 = 903, CCSID_904 = 904, CCSID_905 = 905, CCSID_912 = 912,
    CCSID_915 = 915, CCSID_916 = 916, CCSID_918 = 918, CCSID_920 = 920, CCSID_921 = 921, CCSID_922 = 922,
    CCSID_923 = 923, CCSID_924 = 924, CCSID_926 = 926, CCSID_927 = 927, CCSID_928 = 928, CCSID_929 = 929,
    CCSID_930 = 930, CCSID_931 = 931, CCSID_932 = 932, CCSID_933 = 933, CCSID_934 = 934, CCSID_935 = 935,
    CCSID_936 = 936, CCSID_937 = 937, CCSID_938 = 938, CCSID_939 = 939, CCSID_941 = 941, CCSID_942 = 942,
    CCSID_943 = 943, CCSID_944 = 944, CCSID_946 = 946, CCSID_947 = 947, CCSID_948 = 948, CCSID_949 = 949,
    CCSID_950 = 950, CCSID_951 = 951, CCSID_952 = 952, CCSID_954 = 954, CCSID_955 = 955, CCSID_960 = 960,
    CCSID_961 = 961, CCSID_963 = 963, CCSID_964 = 964, CCSID_970 = 970, CCSID_971 = 971, CCSID_1004 = 1004,
    CCSID_1006 = 1006, CCSID_1008 = 1008, CCSID_1009 = 1009, CCSID_1010 = 1010, CCSID_1011 = 1011,
    CCSID_1012 = 1012, CCSID_1013 = 1013, CCSID_1014 = 1014, CCSID_1015 = 1015, CCSID_1016 = 1016,
    CCSID_1017 = 1017, CCSID_1018 = 1018, CCSID_1019 = 1019, CCSID_1025 = 1025, CCSID_1026 = 1026,
    CCSID_1027 = 1027, CCSID_1040 = 1040, CCSID_1041 = 1041, CCSID_1042 = 1042, CCSID_1043 = 1043,
    CCSID_1046 = 1046, CCSID_1047 = 1047, CCSID_1051 = 1051, CCSID_1088 = 1088, CCSID_1089 = 1089,
    CCSID_1097 = 1097, CCSID_1098 = 1098, CCSID_1112 = 1112, CCSID_1114 = 1114, CCSID_1115 = 1115,
    CCSID_1122 = 1122, CCSID_1123 = 1123, CCSID_1124 = 1124, CCSID_1125 = 1125, CCSID_1129 = 1129,
    CCSID_1130 = 1130, CCSID_1131 = 1131, CCSID_1137 = 1137, CCSID_1140 = 1140, CCSID_1141 = 1141,
    CCSID_1142 = 1142, CCSID_1143 = 1143, CCSID_1144 = 1144, CCSID_1145 = 1145, CCSID_1146 = 1146,
    CCSID_1147 = 1147, CCSID_1148 = 1148, CCSID_1149 = 1149, CCSID_1153 = 1153, CCSID_1154 = 1154,
    CCSID_1155 = 1155, CCSID_1156 = 1156, CCSID_1157 = 1157, CCSID_1158 = 1158, CCSID_1159 = 1159,
    CCSID_1160 = 1160, CCSID_1161 = 1161, CCSID_1163 = 1163, CCSID_1164 = 1164, CCSID_1200 = 1200,
    CCSID_1208 = 1208, CCSID_1250 = 1250, CCSID_1251 = 1251, CCSID_1252 = 1252, CCSID_1253 = 1253,
    CCSID_1254 = 1254, CCSID_1255 = 1255, CCSID_1256 = 1256, CCSID_1257 = 1257, CCSID_1258 = 1258,
    CCSID_1275 = 1275, CCSID_1276 = 1276, CCSID_1277 = 1277, CCSID_1280 = 1280, CCSID_1281 = 1281,
    CCSID_1282 = 1282, CCSID_1283 = 1283, CCSID_1350 = 1350, CCSID_1351 = 1351, CCSID_1363 = 1363,
    CCSID_1364 = 1364, CCSID_1380 = 1380, CCSID_1381 = 1381, CCSID_1382 = 1382, CCSID_1383 = 1383,
    CCSID_1386 = 1386, CCSID_1388 = 1388, CCSID_1390 = 1390, CCSID_1392 = 1392, CCSID_1394 = 1394,
    CCSID_1399 = 1399, CCSID_4133 = 4133, CCSID_4352 = 4352, CCSID_4369 = 4369, CCSID_4370 = 4370,
    CCSID_4371 = 4371, CCSID_4372 = 4372, CCSID_4373 = 4373, CCSID_4374 = 4374, CCSID_4376 = 4376,
    CCSID_4378 = 4378, CCSID_4380 = 4380, CCSID_4381 = 4381, CCSID_4386 = 4386, CCSID_4393 = 4393,
    CCSID_4396 = 4396, CCSID_4516 = 4516, CCSID_4519 = 4519, CCSID_4520 = 4520, CCSID_4533 = 4533,
    CCSID_4596 = 4596, CCSID_4909 = 4909, CCSID_4929 = 4929, CCSID_4930 = 4930, CCSID_4932 = 4932,
    CCSID_4933 = 4933, CCSID_4934 = 4934, CCSID_4946 = 4946, CCSID_4947 = 4947, CCSID_4948 = 4948,
    CCSID_4949 = 4949, CCSID_4951 = 4951, CCSID_4952 = 4952, CCSID_4953 = 4953, CCSID_4960 = 4960,
    CCSID_4964 = 4964, CCSID_4965 = 4965, CCSID_4966 = 4966, CCSID_4967 = 4967, CCSID_4970 = 4970,
    CCSID_4971 = 4971, CCSID_4976 = 4976, CCSID_4993 = 4993, CCSID_5014 = 5014, CCSID_5026 = 5026,
    CCSID_5028 = 5028, CCSID_5029 = 5029, CCSID_5031 = 5031, CCSID_5033 = 5033, CCSID_5035 = 5035,
    CCSID_5039 = 5039, CCSID_5048 = 5048, CCSID_5049 = 5049, CCSID_5050 = 5050, CCSID_5067 = 5067,
    CCSID_5123 = 5123, CCSID_5142 = 5142, CCSID_5210 = 5210, CCSID_5346 = 5346, CCSID_5347 = 5347,
    CCSID_5348 = 5348, CCSID_5349 = 5349, CCSID_5350 = 5350, CCSID_5351 = 5351, CCSID_5352 = 5352,
    CCSID_5353 = 5353, CCSID_5354 = 5354, CCSID_5478 = 5478, CCSID_5488 = 5488, CCSID_8229 = 8229,
    CCSID_8448 = 8448, CCSID_8476 = 8476, CCSID_8482 = 8482, CCSID_8489 = 8489, CCSID_8612 = 8612,
    CCSID_8629 = 8629, CCSID_8692 = 8692, CCSID_9027 = 9027, CCSID_9030 = 9030, CCSID_9044 = 9044,
    CCSID_9047 = 9047, CCSID_9048 = 9048, CCSID_9049 = 9049, CCSID_9056 = 9056, CCSID_9060 = 9060,
    CCSID_9061 = 9061, CCSID_9066 = 9066, CCSID_9089 = 9089, CCSID_9122 = 9122, CCSID_9145 = 9145,
    CCSID_9146 = 9146, CCSID_9238 = 9238, CCSID_12325 = 12325, CCSID_12544 = 12544, CCSID_12712 = 12712,
    CCSID_12725 = 12725, CCSID_12788 = 12788, CCSID_13121 = 13121, CCSID_13152 = 13152, CCSID_13218 = 13218,
    CCSID_13219 = 13219, CCSID_13242 = 13242, CCSID_13488 = 13488, CCSID_16421 = 16421, CCSID_16684 = 16684,
    CCSID_16821 = 16821, CCSID_16884 = 16884, CCSID_17248 = 17248, CCSID_17584 = 17584, CCSID_18030 = 18030,
    CCSID_20517 = 20517, CCSID_20917 = 20917, CCSID_20980 = 20980, CCSID_21427 = 21427, CCSID_24613 = 24613,
    CCSID_24877 = 24877, CCSID_25013 = 25013, CCSID_25076 = 25076, CCSID_25426 = 25426, CCSID_25427 = 25427,
    CCSID_25428 = 25428, CCSID_25429 = 25429, CCSID_25431 = 25431, CCSID_25432 = 25432, CCSID_25433 = 25433,
    CCSID_25436 = 25436, CCSID_25437 = 25437, CCSID_25438 = 25438, CCSID_25439 = 25439, CCSID_25440 = 25440,
    CCSID_25441 = 25441, CCSID_25444 = 25444, CCSID_25445 = 25445, CCSID_25450 = 25450, CCSID_25467 = 25467,
    CCSID_25473 = 25473, CCSID_25479 = 25479, CCSID_25480 = 25480, CCSID_25502 = 25502, CCSID_25503 = 25503,
    CCSID_25504 = 25504, CCSID_25505 = 25505, CCSID_25508 = 25508, CCSID_25510 = 25510, CCSID_25512 = 25512,
    CCSID_25514 = 25514, CCSID_25518 = 25518, CCSID_25520 = 25520, CCSID_25522 = 25522, CCSID_25524 = 25524,
    CCSID_25616 = 25616, CCSID_25617 = 25617, CCSID_25618 = 25618, CCSID_25619 = 25619, CCSID_28709 = 28709,
    CCSID_29109 = 29109, CCSID_29172 = 29172, CCSID_29522 = 29522, CCSID_29523 = 29523, CCSID_29524 = 29524,
    CCSID_29525 = 29525, CCSID_29527 = 29527, CCSID_29528 = 29528, CCSID_29529 = 29529, CCSID_29532 = 29532,
    CCSID_29533 = 29533, CCSID_29534 = 29534, CCSID_29535 = 29535, CCSID_29536 = 29536, CCSID_29537 = 29537,
    CCSID_29540 = 29540, CCSID_29541 = 29541, CCSID_29546 = 29546, CCSID_29614 = 29614, CCSID_29616 = 29616,
    CCSID_29618 = 29618, CCSID_29620 = 29620, CCSID_29712 = 29712, CCSID_29713 = 29713, CCSID_29714 = 29714,
    CCSID_29715 = 29715, CCSID_32805 = 32805, CCSID_33058 = 33058, CCSID_33205 = 33205, CCSID_33268 = 33268,
    CCSID_33618 = 33618, CCSID_33619 = 33619, CCSID_33620 = 33620, CCSID_33621 = 33621, CCSID_33623 = 33623,
    CCSID_33624 = 33624, CCSID_33632 = 33632, CCSID_33636 = 33636, CCSID_33637 = 33637, CCSID_33665 = 33665,
    CCSID_33698 = 33698, CCSID_33699 = 33699, CCSID_33700 = 33700, CCSID_33722 = 33722, CCSID_37301 = 37301,
    CCSID_37364 = 37364, CCSID_37719 = 37719, CCSID_37728 = 37728, CCSID_37732 = 37732, CCSID_37761 = 37761,
    CCSID_37796 = 37796, CCSID_41397 = 41397, CCSID_41460 = 41460, CCSID_41824 = 41824, CCSID_41828 = 41828,
    CCSID_45493 = 45493, CCSID_45556 = 45556, CCSID_45920 = 45920, CCSID_49589 = 49589, CCSID_49652 = 49652,
    CCSID_53748 = 53748, CCSID_61696 = 61696, CCSID_61697 = 61697, CCSID_61698 = 61698, CCSID_61699 = 61699,
    CCSID_61700 = 61700, CCSID_61712 = 61712, CCSID_61955 = 61955, CCSID_65500 = 65500, CCSID_65501 = 65501,
    // clang-format on
  };

  /// Construct from a number, whether or not the table contains it.
  VelClCCSID(VelEnCCSID ccsid) : ccsid_(ccsid), row_(nullptr) {}
  explicit VelClCCSID(int ccsid) : VelClCCSID(static_cast<VelEnCCSID>(ccsid)) {}
  /// Parses a name. A text that begins with a digit yields the decimal number at its start: "1252abc" is
  /// 1252. Otherwise the names in the table are compared ignoring case: "UTF-8", "ucs-2b", "ISO8859-15".
  /// Any other text yields the first number in it, or 0 without one, and is never valid, because that number
  /// is not looked up: "CP1252" has the CCSID 1252 and is not valid. Null counts as "".
  VelClCCSID(const char* name);
  /// Returns the CCSID of an everyday name, such as "latin1", CCSID_UNKNOWN if it is not known: see
  /// velGetCCSIDOfName. Unlike the constructor, it never takes a number out of a text.
  static VelClCCSID fromName(const char* name) {
    return VelClCCSID(static_cast<VelEnCCSID>(velGetCCSIDOfName(name)));
  }
  VelClCCSID(const VelClCCSID& other);
  VelClCCSID& operator=(const VelClCCSID& other);

  // Intentional: only 65501 equals 13488; 1200, 17584 and 61955 are different encodings to callers that
  // compare.
  /// Compares the numbers, where 65501 counts as 13488.
  bool operator==(const VelClCCSID& other) const;
  bool operator==(VelEnCCSID ccsid) const;

  /// Return the number as it was given.
  int getAsInt() const { return static_cast<int>(ccsid_); }
  VelEnCCSID getCCSID() const { return ccsid_; }
  /// Returns the name from the table, in most cases the number; a variant has the name of its base page.
  /// Returns "???" for a CCSID that is not in the table.
  const char* getName() const;
  /// Returns the preferred everyday name, such as "ISO-8859-1" or "CP037", or null if there is none.
  const char* getPreferredName() const { return velGetNameOfCCSID(ccsid_, 0); }
  /// True if the table contains the CCSID. 0 is not valid.
  bool isValid() const;

  /// Return properties from the table; all are false for a CCSID that is not in it. 806, 813 and 838 are
  /// single-byte, but neither ASCII- nor EBCDIC-based; mixed and multi-byte code pages may be neither single-
  /// nor double-byte.
  bool isASCII() const;
  bool isEBCDIC() const;
  bool isDBCS() const;
  bool isSBCS() const;
  bool isUCS2() const;
  /// True for 65500.
  bool isUCS2BigEndian() const;
  /// True for 65501 and, because the library's hosts are little-endian, for the CCSIDs without a stated byte
  /// order: 1200, 13488, 17584, 61955.
  bool isUCS2LittleEndian() const;
  /// Same as isUCS2LittleEndian.
  bool isUCS2HostEndian() const;

  /// Returns 65500 or 65501 for a text of at least two bytes that begins with FE FF or FF FE, else 0.
  static VelEnCCSID getCCSIDForUCS2EndianId(const char* mark);
  /// Returns the single-byte code page of the process (Windows: ANSI; elsewhere that of the locale), queried
  /// on every call. The code page number is used as the CCSID; for UTF-8 the result is 1208, on every system.
  /// Returns 0 if the system does not report one.
  static VelEnCCSID getSystemCCSID();
  /// Returns the code page of the console (Windows: OEM, or 1208 if velIsUtf8Used), queried once per process.
  static VelEnCCSID getConsoleCCSID();

 private:
  const VelStCcsid& determineProperties() const;
  bool hasFlag(uint32_t flag) const;

  VelEnCCSID ccsid_;
  mutable const VelStCcsid* row_;  ///< null until first needed
};

/// The base class of all converters. A converter is constructed for a source and a target CCSID and selects
/// its conversion route once:
///
///   VelClCodePage2CodePageConverter converter(VelClCCSID::CCSID_500, VelClCCSID::CCSID_850);
///   if (!converter.isSupported()) return false;
///   size = converter.convertBytes(target, targetSize, source, sourceSize);
///   if (converter.getLastError().errorId != VEL_NO_ERROR) ...
///
/// The library's own tables and algorithms are preferred, then ICU if it is installed (version 3.2 or later,
/// found at run time), then, from UCS-2 only, the system's own conversion to the code pages of the process.
///
/// UCS-2 may contain surrogate pairs if the other side supports them. It is in host byte order, except for
/// 65500. No shift state and no partial character is kept between calls.
/// Without ICU, most code pages are not supported; velGetICUConverter then reports ICU_UNSUPPORTED_ERROR for
/// any CCSID.
///
/// Conversions report errors through getLastError and do not throw, with two exceptions: when memory runs out
/// (VelClExceptionFatal), and when ICU returns a status without an error identifier
/// (ICU_UNEXPECTED_ICU_ERROR). One converter must not be used by two threads at the same time.
class VEL_API VelClConverterABase {
 public:
  /// The routes that a conversion can use.
  enum class VelEnRoute : int32_t {
    NONE = 0,       ///< not supported, or needs ICU, which is not installed
    ALGORITHM = 1,  ///< an algorithm, also between the forms of UCS-2
    TABLE = 2,      ///< a table of the library
    ICU = 3,        ///< ICU, bound at run time
    SYSTEM = 4      ///< the system's own conversion to its code pages
  };

  struct _VelStConverter;
  /// Converts as the record describes; returns the number of bytes written.
  using VelConversionFunction = size_t (*)(_VelStConverter& call);

  /// The arguments of a conversion function.
  struct _VelStConverter {
    const VelClConverterABase& converter;  ///< for its table or ICU converter, target CCSID and last error
    char* target;                          ///< receives the bytes
    uint64_t targetSize;                   ///< in bytes
    const char** source;                   ///< advanced past what was consumed
    uint64_t sourceSize;                   ///< in bytes

    /// For conversion functions: returns the table or the ICU converter of the route, and stores an error.
    const void* getConversionData() const { return converter.conversionData_; }
    void setError(const _VelStError& error) const { converter.lastError_ = error; }
  };

  VelClConverterABase(const VelClConverterABase&) = delete;
  VelClConverterABase& operator=(const VelClConverterABase&) = delete;
  virtual ~VelClConverterABase();

  /// Returns the target CCSID.
  virtual const VelClCCSID& getTargetCCSID() const;
  /// True if a route exists. Without one every conversion fails with CPCONVERTER_UNSUPPORTED.
  virtual bool isSupported() const;
  /// True if no route exists. Only an external routine could convert then, and the library does not know any.
  virtual bool requiresExternalICONVRoutine() const;
  /// True if ICU converts.
  virtual bool requiresExternalICUData() const;
  /// Returns the maximum number of target bytes for `length` characters.
  virtual size_t getMaximumSizeForLength(size_t length) const = 0;
  /// Returns the maximum number of target bytes for `size` source bytes, as far as the properties of the
  /// CCSIDs tell: shifts and longer characters of code pages that ICU converts are not included. See
  /// getSufficientSizeForSize.
  virtual size_t getMaximumSizeForSize(size_t size) const = 0;
  /// Returns a number of target bytes with which no source of `size` bytes can end with CPCONVERTER_TOO_BIG,
  /// whatever its content, if the CCSIDs are valid; the system's own conversion still reports that error
  /// whenever it fails. Saturates at the largest number.
  size_t getSufficientSizeForSize(size_t size) const;
  /// Convert, advance `source` past the consumed bytes, and return the number of bytes written. Sizes are in
  /// bytes. The last error is
  /// - CPCONVERTER_INCOMPLETE if the source ends within a character (which is not consumed), after an odd
  ///   number of bytes of UCS-2, or in double-byte mode; everything before that is converted;
  /// - CPCONVERTER_TOO_BIG if the target is too small. Table conversions and those to ISO8859-1 then convert
  ///   nothing; to and from UTF-8 the character that did not fit counts as consumed;
  /// - an identifier of ICU, or CPCONVERTER_UNSUPPORTED.
  /// Unmappable characters are replaced, without an error.
  virtual size_t convertBytes(char* target, size_t targetSize, const char** source, size_t sourceSize) const;
  virtual size_t convertBytes(char* target, size_t targetSize, const char* source, size_t sourceSize) const;

  /// Returns the source CCSID.
  const VelClCCSID& getSourceCCSID() const { return source_; }
  /// Returns the route of the conversion; between two code pages that of the first stage, to UCS-2.
  VelEnRoute getRoute() const;
  /// Returns the error of the last conversion. If there was none yet, returns the error of the construction:
  /// CPCONVERTER_UNSUPPORTED, or ICU_MEMORY_ALLOCATION_ERROR of class OUT_OF_MEMORY if there was not enough
  /// memory to select a route.
  const _VelStError& getLastError() const { return lastError_; }

  /// Return the byte order marks: two bytes and a NUL. The host is little-endian.
  static const char* getUCS2BigEndianId() { return "\xFE\xFF"; }
  static const char* getUCS2LittleEndianId() { return "\xFF\xFE"; }
  static const char* getUCS2HostEndianId() { return getUCS2LittleEndianId(); }
  /// True if a NUL-terminated text begins with the mark; nothing after the NUL is read.
  static bool isUCS2BigEndianId(const char* text);
  static bool isUCS2LittleEndianId(const char* text);

  /// Decodes the UTF-8 character at `text` to its scalar value. All its bytes must be present; nothing is
  /// validated.
  static uint32_t convertUtf8CharToUtf32(const char* text);

 protected:
  /// Constructs a converter without a route; derived classes select one.
  VelClConverterABase(const VelClCCSID& source, const VelClCCSID& target);

  /// Select the route for this direction.
  void initCodePage2Unicode();
  void initUnicode2CodePage();
  /// Selects a route for another source; it replaces the present one.
  void initNewCodePage2Unicode(const VelClCCSID& source);
  /// Closes the ICU converter. Afterwards no route exists.
  void deinit();
  /// Removes the route; every conversion then fails with CPCONVERTER_UNSUPPORTED.
  void setConverterError();
  /// Clears the last error and runs the conversion function, unless its output could overflow the target.
  size_t runConversion(char* target, size_t targetSize, const char** source, size_t sourceSize) const;
  /// Returns getSufficientSizeForSize for this conversion function alone.
  size_t sufficientSizeOfStage(size_t size) const;

  /// See getLastError.
  mutable _VelStError lastError_;

 private:
  void setConversionByUsingIconv();
  void useFunction(VelConversionFunction function, const void* data);
  bool useIcu(uint32_t ccsid, VelConversionFunction function);
  void useNothing();

  VelClCCSID source_;
  VelClCCSID target_;
  void* externalRoutine_;  ///< always null
  const void* conversionData_;
  VelConversionFunction function_;
};

/// Converts from a code page to UCS-2 in host byte order (13488).
class VEL_API VelClCodePage2UnicodeConverter : public VelClConverterABase {
 public:
  /// Selects the route; isSupported tells whether there is one. The same applies to the converters below.
  explicit VelClCodePage2UnicodeConverter(const VelClCCSID& source);
  ~VelClCodePage2UnicodeConverter() override;

  size_t getMaximumSizeForLength(size_t length) const override;
  size_t getMaximumSizeForSize(size_t size) const override;
};

/// Converts from UCS-2 in host byte order to a code page.
class VEL_API VelClUnicode2CodePageConverter : public VelClConverterABase {
 public:
  /// Selects the route to `target`.
  explicit VelClUnicode2CodePageConverter(const VelClCCSID& target);
  ~VelClUnicode2CodePageConverter() override;

  size_t getMaximumSizeForLength(size_t length) const override;
  size_t getMaximumSizeForSize(size_t size) const override;
};

/// Converts from one code page to another, through UCS-2 in a buffer that grows with the largest source and
/// is then kept. If both CCSIDs are equal the bytes are copied, as many as fit and without an error, even if
/// no route is supported.
class VEL_API VelClCodePage2CodePageConverter : public VelClCodePage2UnicodeConverter {
 public:
  /// Selects a route for each of the two stages.
  VelClCodePage2CodePageConverter(const VelClCCSID& source, const VelClCCSID& target);
  ~VelClCodePage2CodePageConverter() override;

  const VelClCCSID& getTargetCCSID() const override;
  bool isSupported() const override;
  bool requiresExternalICONVRoutine() const override;
  bool requiresExternalICUData() const override;
  size_t getMaximumSizeForLength(size_t length) const override;
  // Intentional: for source 1392 the documented result is the size of the buffer, which UTF-8 can exceed.
  size_t getMaximumSizeForSize(size_t size) const override;
  using VelClConverterABase::convertBytes;
  /// If the target is too small, the source may be consumed nevertheless.
  size_t convertBytes(char* target, size_t targetSize, const char** source, size_t sourceSize) const override;

 private:
  friend class VelClConverterABase;

  size_t sufficientSize(size_t sourceSize) const;
  size_t copyBytes(char* target, size_t targetSize, const char** source, size_t sourceSize) const;
  size_t convertInTwoStages(char* target, size_t targetSize, const char** source, size_t sourceSize) const;
  void growBuffer(size_t size) const;

  VelClUnicode2CodePageConverter secondStage_;
  mutable char* buffer_;
  mutable size_t bufferSize_;
};

/// Converts from a code page to UTF-8.
class VEL_API VelClCodePage2UTF8Converter : public VelClCodePage2CodePageConverter {
 public:
  /// Selects the route from `source`.
  explicit VelClCodePage2UTF8Converter(const VelClCCSID& source);
  ~VelClCodePage2UTF8Converter() override;
};

/// The result of velGetDBCStoUCS2Table. Single bytes are looked up in page 1; the pair (lead, trail) is at
/// index trail of page (page number of lead - 1). Units are stored with the high byte first; unmapped entries
/// have U+FFFD.
struct VelStDoubleByteTable {
  uint32_t ccsid;                ///< the CCSID of the table
  uint8_t isEbcdic;              ///< 1 for shifted tables, else 0
  uint8_t pageNumbers[256];      ///< never 0
  const void* reserved;          ///< null
  const uint16_t (*pages)[256];  ///< as many pages as the page numbers refer to
  const uint8_t* leadBytes;      ///< 256 bytes, non-zero for a lead byte; null if `isEbcdic`
};

/// Returns null, and leaves `isEbcdic` unchanged, for a CCSID without such a table.
VEL_API const VelStDoubleByteTable* velGetDBCStoUCS2Table(unsigned int ccsid, bool& isEbcdic);

/// The functions below return the number of bytes written and advance the source past the consumed bytes.
/// Where the size of the target is not checked, the caller provides enough room for the whole source;
/// converters check that in advance.
///
/// Copies UCS-2: as many bytes as are available on both sides. CPCONVERTER_INCOMPLETE if that number is odd.
VEL_API size_t velConvertByCopying(VelClConverterABase::_VelStConverter& call);
/// Same, swapping the bytes of each unit.
VEL_API size_t velConvertByEndianSwap(VelClConverterABase::_VelStConverter& call);
/// Writes two target bytes per source byte. The size of the target is not checked.
VEL_API size_t velConvertByTablesSBCS_ASCIItoUCS2(VelClConverterABase::_VelStConverter& call);
/// Same, with U+0085 (NEL) as U+000A (LF).
VEL_API size_t velConvertByTablesSBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call);
/// Converts mixed single and double bytes to two target bytes per character. The size of the target is not
/// checked. A lead byte at the end of the source is CPCONVERTER_INCOMPLETE.
VEL_API size_t velConvertByTablesDBCS_ASCIItoUCS2(VelClConverterABase::_VelStConverter& call);
/// Same with shift-out (0E) and shift-in (0F), beginning in single-byte mode, and U+0085 as U+000A. A source
/// that ends in double-byte mode is CPCONVERTER_INCOMPLETE.
VEL_API size_t velConvertByTablesDBCS_EBCDICtoUCS2(VelClConverterABase::_VelStConverter& call);
/// Converts nothing.
VEL_API size_t velConvertByTablesEUCtoUCS2(VelClConverterABase::_VelStConverter& call);
/// Writes one byte per unit. The size of the target is not checked. CPCONVERTER_INCOMPLETE for an odd source
/// size.
VEL_API size_t velConvertByTablesUCS2toSBCS(VelClConverterABase::_VelStConverter& call);
/// Same, using the low byte of each unit.
VEL_API size_t velConvertByAlgorithmUCS2to819(VelClConverterABase::_VelStConverter& call);
/// Decodes UTF-8 as in the Unicode Consortium's ConvertUTF, 2001: sequences of up to six bytes. Trailing
/// bytes are not validated; 80 to BF as lead bytes stand for themselves. A value beyond 31 bits yields
/// U+FFFD.
VEL_API size_t velConvertByAlgorithmUTF8toUCS2(VelClConverterABase::_VelStConverter& call);
// Intentional: ill-formed input yields U+FFFF, not U+FFFD; the documented result is EF BF BF.
/// Unpaired surrogates, U+FDD0 to U+FDEF, U+FFFE and U+FFFF are written as EF BF BF.
VEL_API size_t velConvertByAlgorithmUCS2toUTF8(VelClConverterABase::_VelStConverter& call);
// Intentional: callers rely on the source staying put, even on success.
/// Uses the system's own conversion to the code page whose number is the target CCSID. The source is not
/// advanced. CPCONVERTER_TOO_BIG if the conversion fails, also for an empty source or target.
VEL_API size_t velConvertByWindowsCallUCS2ToWinCP(VelClConverterABase::_VelStConverter& call);
/// Writes nothing and sets CPCONVERTER_UNSUPPORTED.
VEL_API size_t velConvertError(VelClConverterABase::_VelStConverter& call);
/// Convert with ICU and replace what cannot be converted. The last error corresponds to ICU's status; a
/// warning, or a status without an identifier, throws ICU_UNEXPECTED_ICU_ERROR.
VEL_API size_t velConvertByAlgorithmIcuToUnicode(VelClConverterABase::_VelStConverter& call);
VEL_API size_t velConvertByAlgorithmIcuFromUnicode(VelClConverterABase::_VelStConverter& call);

/// Opens the ICU converter for a CCSID, with fallback mappings; the caller closes it with
/// velDeleteICUConverter. On failure returns null and stores the reason in `error`: ICU_UNSUPPORTED_ERROR if
/// ICU is not installed, usually ICU_FILE_ACCESS_ERROR if ICU does not know the CCSID. 65502 is ICU's LMBCS.
VEL_API const void* velGetICUConverter(unsigned int ccsid, _VelStError& error);

/// Translates ICU's status codes (UErrorCode) to the library's errors. An unknown status throws
/// VelClException ICU_UNEXPECTED_ICU_ERROR from every function except isIcuError.
class VEL_API VelClIcuInterface {
 public:
  /// A status code and the error it corresponds to.
  struct _VelStIcuRc2VelIdMap;

  VelClIcuInterface() = delete;

  /// True for a status above 0; warnings are below 0.
  static bool isIcuError(int32_t status);
  /// Return the identifier, class, action and severity of a status one by one, or store them in a record.
  static unsigned long getVelErrorIdForIcuError(int32_t status);
  static VelEnErrorClass getVelErrorClassForIcuError(int32_t status);
  static VelEnErrorAction getVelErrorActionForIcuError(int32_t status);
  static VelEnErrorSeverity getVelErrorSeverityForIcuError(int32_t status);
  static void mapIcuError(_VelStError& error, int32_t status);
  static void mapIcuError(_VelStUserError& error, int32_t status);
  /// Throws a VelClException for an error; returns for 0 and warnings.
  static void handleIcuErrorCode(int32_t status);

 private:
  static const _VelStIcuRc2VelIdMap& getVelEntryForIcuError(int32_t status);
};

#endif

#endif
