// The library's one vocabulary for failures: identifiers with a class, a severity and a
// recommended action; the records and exceptions that carry them; assertions; and the
// names of the platform's own error codes.
#ifndef VEL_ERROR_H_
#define VEL_ERROR_H_

#include <stdint.h>

#include "vel_export.h"

// windows.h defines two of the names below as macros. They are put aside for the
// length of this header. While such a macro lives, write VEL_NO_ERROR and
// VelEnErrorAction::NO_ACTION.
#pragma push_macro("NO_ERROR")
#pragma push_macro("IGNORE")
#undef NO_ERROR
#undef IGNORE

#if defined(__cplusplus)
#define VEL_ENUM_TYPE(type) : type
#else
#define VEL_ENUM_TYPE(type)
#endif

/// What failed. The console user interface uses 201 to 205, which are exit codes of
/// programs as well; every other component has a block of one hundred from 1000001 on.
/// Identifiers travel as unsigned 32-bit numbers, so that programs can add their own.
enum VelEnErrorId VEL_ENUM_TYPE(uint32_t){VEL_NO_ERROR = 0,  ///< NO_ERROR, under a name that is never a macro
                                          NO_ERROR = 0,
                                          CONUI_USAGE = 201,
                                          CONUI_ARG_MISSING = 202,
                                          CONUI_ARG_EXPECTING_VALUE = 203,
                                          CONUI_ARG_VALUE_TYPE_MISMATCH = 204,
                                          CONUI_MSGCAT_CORRUPTED = 205,
                                          INIFILE_INVAL_SECTION = 1000001,
                                          INIFILE_INVAL_OPTION = 1000002,
                                          INIFILE_INVAL_WHITESPACE = 1000003,
                                          DIRECTORY_EXPANSION_FAILED = 1000101,
                                          DIRECTORY_COULD_NOT_CHANGE = 1000102,
                                          DIRECTORY_COULD_NOT_CREATE = 1000103,
                                          DIRECTORY_COULD_NOT_REMOVE = 1000104,
                                          DIRECTORY_COULD_NOT_DETACH = 1000105,
                                          PROCESS_COULD_NOT_KILL = 1000201,
                                          PROCESS_COULD_NOT_LAUNCH = 1000202,
                                          THREAD_COULD_NOT_KILL = 1000301,
                                          THREAD_COULD_NOT_LAUNCH = 1000302,
                                          THREAD_COULD_NOT_SUSPEND = 1000303,
                                          THREAD_COULD_NOT_RESUME = 1000304,
                                          FILE_COULD_NOT_COPY = 1000401,
                                          FILE_COULD_NOT_REMOVE = 1000402,
                                          FILE_COULD_NOT_COPY_SELF = 1000403,
                                          FILE_COULD_NOT_RENAME = 1000404,
                                          DIRWALK_COULD_NOT_INIT = 1000601,
                                          DIRWALK_NO_CONTINUATION = 1000602,
                                          TRACEFORMAT_COULD_NOT_OPEN = 1000701,
                                          TRACEFORMAT_UNEXPECTED_EOF = 1000702,
                                          TRACEFORMAT_FILE_CORRUPTED = 1000703,
                                          MEMORYPOOL_COULD_NOT_GROW = 1000801,
                                          MEMORYPOOL_CHUNK_TOO_BIG = 1000802,
                                          CPCONVERTER_UNSUPPORTED = 1000901,
                                          CPCONVERTER_INVALID_SEQ = 1000902,
                                          CPCONVERTER_TOO_BIG = 1000903,
                                          CPCONVERTER_INCOMPLETE = 1000904,
                                          CPCONVERTER_BAD_DESCR = 1000905,
                                          CPCONVERTER_NO_TMP_BUFFER = 1000906,
                                          MEMMGR_USER_OUT_OF_MEMORY = 1001001,
                                          MEMMGR_RUNTIME_OUT_OF_MEMORY = 1001002,
                                          MEMMGR_NO_USER_REALLOC_FUNC = 1001003,
                                          MEMMGR_ZERO_SIZE_OBJECT = 1001004,
                                          ICU_UNEXPECTED_ICU_ERROR = 1001101,
                                          ICU_ILLEGAL_ARGUMENT_ERROR = 1001102,
                                          ICU_MISSING_RESOURCE_ERROR = 1001103,
                                          ICU_INVALID_FORMAT_ERROR = 1001104,
                                          ICU_FILE_ACCESS_ERROR = 1001105,
                                          ICU_INTERNAL_PROGRAM_ERROR = 1001106,
                                          ICU_MESSAGE_PARSE_ERROR = 1001107,
                                          ICU_MEMORY_ALLOCATION_ERROR = 1001108,
                                          ICU_INDEX_OUTOFBOUNDS_ERROR = 1001109,
                                          ICU_PARSE_ERROR = 1001110,
                                          ICU_INVALID_TABLE_FORMAT = 1001111,
                                          ICU_INVALID_TABLE_FILE = 1001112,
                                          ICU_UNSUPPORTED_ERROR = 1001113,
                                          ICU_RESOURCE_TYPE_MISMATCH = 1001114,
                                          ICU_ILLEGAL_ESCAPE_SEQUENCE = 1001115,
                                          ICU_UNSUPPORTED_ESCAPE_SEQ = 1001116,
                                          ICU_NO_SPACE_AVAILABLE = 1001117,
                                          ICU_ERROR_LIMIT = 1001118};

#if defined(__cplusplus)

/// What kind of failure it is. The values are not contiguous.
enum class VelEnErrorClass : int32_t {
  UNKNOWN = 0,
  FUNCTION_NOT_SUPPORTED = 1,
  FUNCTION_NOT_ENABLED = 2,
  USER_ERROR = 100,
  USER_DATA_ERROR = 101,
  OUT_OF_MEMORY = 200,
  RESOURCE_EXHAUSTED = 201,
  INVALID_DATA = 202,
  DATA_OUT_OF_BOUNDS = 203,
  INVALID_POINTER = 204,
  UNKNOWN_PROCESS = 205,
  RESOURCE_MISSING = 206,
  LOGIC = 300,
  INCONSISTENT_SITUATION = 301,
  COMMUNICATION_PROBLEM = 400,
  IO_PROBLEM = 500,
  IO_WRITE_PROBLEM = 501,
  IO_READ_PROBLEM = 502,
  IO_PERMISSION_DENIED = 503,
  IO_NOT_EXISTENT = 504,
  IO_ALREADY_IN_USE = 505,
  IO_STILL_IN_USE = 506,
  IO_INVALID_NAME = 507,
  HARDWARE_PROBLEM = 900,
  HARDWARE_SETUP = 901,
  HARDWARE_PERFORMANCE = 902,
  HARDWARE_NOT_SUPPORTED = 903
};

/// How bad it is. The gaps (3, 4, 9) are reserved.
enum class VelEnErrorSeverity : int32_t {
  NONE = 0,
  INFO = 1,
  WARNING = 2,
  NORMAL = 5,
  FATAL = 6,
  INTERNAL = 7,
  CRITICAL = 8,
  PANIC = 10
};

/// What the caller is advised to do.
enum class VelEnErrorAction : int32_t {
  NO_ACTION = 0,  ///< IGNORE, under a name that is never a macro
  IGNORE = 0,
  INFORM = 1,
  WARN = 2,
  RETRY = 3,
  RETRYDELAY = 4,
  USER = 5,
  TERMINATE = 6,
  ABORT = 8,
  PANIC = 10
};

#else

/// C programs hand over the numbers of the C++ enumerations.
typedef int32_t VelEnErrorClass;
typedef int32_t VelEnErrorSeverity;
typedef int32_t VelEnErrorAction;

#endif

/// The number of the built-in message that holds the symbolic name of an error
/// identifier, class, severity or action, and 0 for a value that has none.
VEL_C_API unsigned int velErrorGetIdAsMessageId(unsigned long id);
VEL_C_API unsigned int velErrorGetClassAsMessageId(VelEnErrorClass errorClass);
VEL_C_API unsigned int velErrorGetSeverityAsMessageId(VelEnErrorSeverity severity);
VEL_C_API unsigned int velErrorGetActionAsMessageId(VelEnErrorAction action);

/// The symbolic name of a Windows error code, such as "ERROR_FILE_NOT_FOUND" for 2, the
/// same on every system; null for a code without a name. `code` is taken as a signed
/// 32-bit number: 0xFFFFFFF8 is -8. The text is a literal.
VEL_C_API const char* velWinGetErrorAsString(unsigned long code);

/// Report a failed assertion on standard error, show the report in a message box where
/// the system has one, and end the process abnormally. They never return.
/// `module` is the source file, `line` its line. Of each text 2000 characters are shown at most. `function`
/// is printed only together with `message`; both may be null. If the environment variable VEL_NO_ASSERT_POPUP
/// is ON, YES, TRUE or 1 (in any letter case) at the first assertion of the process, that assertion shows no
/// message box. A second assertion, raised while the first one is being reported, always shows it.
VEL_C_API void vel__assert(const char* expression, const char* module, unsigned int line);
VEL_C_API void vel__assert_msg(const char* expression, const char* module, unsigned int line,
                               const char* function, const char* message);

/// Ends the process through vel__assert when `expression` is false, in every build.
#define VEL_ASSERT(expression) ((expression) ? (void)0 : vel__assert(#expression, __FILE__, __LINE__))

#if defined(VEL_HAS_CLASSES)

/// The last error of an object, and what plain functions report through an
/// out-parameter. An identifier of 0 means success.
struct VEL_API _VelStError {
  uint32_t errorId;
  VelEnErrorClass errorClass;

  constexpr _VelStError() noexcept : errorId(VEL_NO_ERROR), errorClass(VelEnErrorClass::UNKNOWN) {}
  constexpr _VelStError(unsigned long id, VelEnErrorClass cls) noexcept
      : errorId(static_cast<uint32_t>(id)), errorClass(cls) {}

  /// Back to success.
  constexpr void reset() noexcept { *this = _VelStError(); }
  constexpr unsigned long getErrorId() const noexcept { return errorId; }
};

/// The full classification of a failure, from which exceptions are made.
struct VEL_API _VelStUserError {
  uint32_t errorId;
  VelEnErrorClass errorClass;
  VelEnErrorSeverity severity;
  VelEnErrorAction action;

  constexpr _VelStUserError() noexcept
      : errorId(VEL_NO_ERROR),
        errorClass(VelEnErrorClass::UNKNOWN),
        severity(VelEnErrorSeverity::NONE),
        action(VelEnErrorAction::NO_ACTION) {}
  constexpr _VelStUserError(unsigned long id, VelEnErrorClass cls, VelEnErrorSeverity sev,
                            VelEnErrorAction act) noexcept
      : errorId(static_cast<uint32_t>(id)), errorClass(cls), severity(sev), action(act) {}
};

/// The root of every exception of the library; they are thrown by value.
/// Cause and origin are kept by pointer and never copied or freed: hand over literals.
/// Copying cannot fail.
class VEL_API VelClExceptionABase {
 public:
  /// A null cause counts as "".
  explicit VelClExceptionABase(const char* cause) noexcept;
  VelClExceptionABase(const VelClExceptionABase& other) noexcept;
  VelClExceptionABase& operator=(const VelClExceptionABase& other) noexcept;
  virtual ~VelClExceptionABase();

  virtual bool isVelException() const noexcept = 0;
  /// Why, in words; never null.
  virtual const char* getCause() const noexcept;

  /// Where it was thrown, such as "VelClMemoryManager::realloc, line 267"; null until
  /// setOrigin was called.
  const char* getOrigin() const noexcept { return origin_; }
  /// The line of the origin, 0 until setOrigin was called.
  unsigned int getLine() const noexcept { return line_; }
  void setOrigin(const char* origin, unsigned int line) noexcept;

 protected:
  VelClExceptionABase() noexcept;

 private:
  const char* cause_;
  const char* origin_;
  uint32_t line_;
};

/// An exception with the full classification of the failure.
class VEL_API VelClException : public VelClExceptionABase {
 public:
  VelClException(unsigned long id, VelEnErrorClass errorClass, VelEnErrorSeverity severity,
                 VelEnErrorAction action, const char* cause) noexcept;
  VelClException(const _VelStUserError& error, const char* cause) noexcept;
  VelClException(const VelClException& other) noexcept;
  VelClException& operator=(const VelClException& other) noexcept;
  ~VelClException() override;

  /// Always true.
  bool isVelException() const noexcept override;
  const char* getCause() const noexcept override;

  unsigned long getId() const noexcept { return errorId_; }
  VelEnErrorClass getClass() const noexcept { return errorClass_; }
  VelEnErrorSeverity getSeverity() const noexcept { return severity_; }
  VelEnErrorAction getAction() const noexcept { return action_; }
  /// Replaces the identifier only.
  void setNewId(unsigned long id) noexcept { errorId_ = static_cast<uint32_t>(id); }

 private:
  uint32_t errorId_;
  VelEnErrorClass errorClass_;
  VelEnErrorSeverity severity_;
  VelEnErrorAction action_;
};

/// An exception that a program can hardly go on after; its severity is always FATAL.
class VEL_API VelClExceptionFatal : public VelClException {
 public:
  VelClExceptionFatal(unsigned long id, VelEnErrorClass errorClass, VelEnErrorAction action,
                      const char* cause) noexcept;
  VelClExceptionFatal(const VelClExceptionFatal& other) noexcept;
  VelClExceptionFatal& operator=(const VelClExceptionFatal& other) noexcept = default;
  ~VelClExceptionFatal() override;

  bool isVelException() const noexcept override;
  const char* getCause() const noexcept override;
};

#endif

#undef VEL_ENUM_TYPE
#pragma pop_macro("IGNORE")
#pragma pop_macro("NO_ERROR")

#endif
