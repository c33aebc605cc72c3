// The vocabulary for failures that all components share: error identifiers with a class, a severity and a
// recommended action; the records and exceptions that carry them; assertions; and the names of Windows error
// codes.
#ifndef VEL_ERROR_H_
#define VEL_ERROR_H_

#include <stdint.h>

#include "vel_export.h"

// windows.h defines two of the names below as macros, so this header suspends them. While such a macro is
// defined, use VEL_NO_ERROR and VelEnErrorAction::NO_ACTION instead.
#pragma push_macro("NO_ERROR")
#pragma push_macro("IGNORE")
#undef NO_ERROR
#undef IGNORE

/// Identifies a failure. The console user interface uses 201 to 205, which are also exit codes of programs;
/// every other component has a block of one hundred, from 1000001 on. Functions pass identifiers as unsigned
/// 32-bit numbers, so programs can add their own.
// clang-format off
enum VelEnErrorId VEL_ENUM_TYPE(uint32_t) {
  VEL_NO_ERROR = 0,  ///< same as NO_ERROR; this name is never a macro
  NO_ERROR = 0,                            ///< success
  CONUI_USAGE = 201,                       ///< as an exit code: invalid command line, or usage shown
  CONUI_ARG_MISSING = 202,                 ///< as an exit code: a switch is missing, in a tool without usage
  CONUI_ARG_EXPECTING_VALUE = 203,         ///< as an exit code: the value of a switch is missing
  CONUI_ARG_VALUE_TYPE_MISMATCH = 204,     ///< as an exit code: a value is not a number
  CONUI_MSGCAT_CORRUPTED = 205,            ///< not reported by the library
  INIFILE_INVAL_SECTION = 1000001,         ///< a section header without "]"
  INIFILE_INVAL_OPTION = 1000002,          ///< an option without "="
  INIFILE_INVAL_WHITESPACE = 1000003,      ///< a line begins with white space but continues nothing
  DIRECTORY_EXPANSION_FAILED = 1000101,    ///< a name goes above the root, or is too long
  DIRECTORY_COULD_NOT_CHANGE = 1000102,    ///< the current directory could not be changed
  DIRECTORY_COULD_NOT_CREATE = 1000103,    ///< a directory could not be created
  DIRECTORY_COULD_NOT_REMOVE = 1000104,    ///< a directory, or some of its contents, could not be removed
  DIRECTORY_COULD_NOT_DETACH = 1000105,    ///< the directory is a root
  PROCESS_COULD_NOT_KILL = 1000201,        ///< the system failed to end a process
  PROCESS_COULD_NOT_LAUNCH = 1000202,      ///< a program was not started; getResult has the system's code
  THREAD_COULD_NOT_KILL = 1000301,         ///< not reported; the library starts no threads
  THREAD_COULD_NOT_LAUNCH = 1000302,       ///< not reported
  THREAD_COULD_NOT_SUSPEND = 1000303,      ///< not reported
  THREAD_COULD_NOT_RESUME = 1000304,       ///< not reported
  FILE_COULD_NOT_COPY = 1000401,           ///< a file could not be copied
  FILE_COULD_NOT_REMOVE = 1000402,         ///< a file could not be removed
  FILE_COULD_NOT_COPY_SELF = 1000403,      ///< the target of the copy has the file's own name
  FILE_COULD_NOT_RENAME = 1000404,         ///< a file was not renamed, for example because the name exists
  DIRWALK_COULD_NOT_INIT = 1000601,        ///< a directory cannot be listed
  DIRWALK_NO_CONTINUATION = 1000602,       ///< the listing of a directory broke off
  TRACEFORMAT_COULD_NOT_OPEN = 1000701,    ///< the trace file cannot be opened
  TRACEFORMAT_UNEXPECTED_EOF = 1000702,    ///< the trace file ends within an entry's data
  TRACEFORMAT_FILE_CORRUPTED = 1000703,    ///< data in the trace file does not fit its type
  MEMORYPOOL_COULD_NOT_GROW = 1000801,     ///< no memory for another block
  MEMORYPOOL_CHUNK_TOO_BIG = 1000802,      ///< a request exceeds the block size; impossible alignment
  CPCONVERTER_UNSUPPORTED = 1000901,       ///< no route leads from one code page to the other
  CPCONVERTER_INVALID_SEQ = 1000902,       ///< ICU found an ill-formed sequence
  CPCONVERTER_TOO_BIG = 1000903,           ///< the target is too small
  CPCONVERTER_INCOMPLETE = 1000904,        ///< the source ends within a character, or in double-byte mode
  CPCONVERTER_BAD_DESCR = 1000905,         ///< not reported by the library
  CPCONVERTER_NO_TMP_BUFFER = 1000906,     ///< not reported by the library
  MEMMGR_USER_OUT_OF_MEMORY = 1001001,     ///< the program's allocator returned null
  MEMMGR_RUNTIME_OUT_OF_MEMORY = 1001002,  ///< the runtime's allocator returned null
  MEMMGR_NO_USER_REALLOC_FUNC = 1001003,   ///< the program's memory manager cannot reallocate
  MEMMGR_ZERO_SIZE_OBJECT = 1001004,       ///< 0 bytes were requested
  ICU_UNEXPECTED_ICU_ERROR = 1001101,      ///< a status of ICU without an identifier below
  ICU_ILLEGAL_ARGUMENT_ERROR = 1001102,    ///< U_ILLEGAL_ARGUMENT_ERROR
  ICU_MISSING_RESOURCE_ERROR = 1001103,    ///< U_MISSING_RESOURCE_ERROR
  ICU_INVALID_FORMAT_ERROR = 1001104,      ///< U_INVALID_FORMAT_ERROR
  ICU_FILE_ACCESS_ERROR = 1001105,         ///< U_FILE_ACCESS_ERROR: mostly a code page that ICU does not know
  ICU_INTERNAL_PROGRAM_ERROR = 1001106,    ///< U_INTERNAL_PROGRAM_ERROR
  ICU_MESSAGE_PARSE_ERROR = 1001107,       ///< U_MESSAGE_PARSE_ERROR
  ICU_MEMORY_ALLOCATION_ERROR = 1001108,   ///< U_MEMORY_ALLOCATION_ERROR
  ICU_INDEX_OUTOFBOUNDS_ERROR = 1001109,   ///< U_INDEX_OUTOFBOUNDS_ERROR
  ICU_PARSE_ERROR = 1001110,               ///< U_PARSE_ERROR
  ICU_INVALID_TABLE_FORMAT = 1001111,      ///< U_INVALID_TABLE_FORMAT
  ICU_INVALID_TABLE_FILE = 1001112,        ///< U_INVALID_TABLE_FILE
  ICU_UNSUPPORTED_ERROR = 1001113,         ///< U_UNSUPPORTED_ERROR; also if ICU is not installed
  ICU_RESOURCE_TYPE_MISMATCH = 1001114,    ///< U_RESOURCE_TYPE_MISMATCH
  ICU_ILLEGAL_ESCAPE_SEQUENCE = 1001115,   ///< U_ILLEGAL_ESCAPE_SEQUENCE
  ICU_UNSUPPORTED_ESCAPE_SEQ = 1001116,    ///< U_UNSUPPORTED_ESCAPE_SEQUENCE
  ICU_NO_SPACE_AVAILABLE = 1001117,        ///< U_NO_SPACE_AVAILABLE
  ICU_ERROR_LIMIT = 1001118                ///< U_ERROR_LIMIT: no failure
};
// clang-format on

#if defined(__cplusplus)

/// The kind of failure. The values are not contiguous.
enum class VelEnErrorClass : int32_t {
  UNKNOWN = 0,  ///< also the class of success
  /// The requested function does not exist, or is not enabled.
  FUNCTION_NOT_SUPPORTED = 1,
  FUNCTION_NOT_ENABLED = 2,
  /// The user made an error, or supplied invalid data.
  USER_ERROR = 100,
  USER_DATA_ERROR = 101,
  /// Memory or another resource is exhausted.
  OUT_OF_MEMORY = 200,
  RESOURCE_EXHAUSTED = 201,
  /// Values are invalid, or exceed a limit.
  INVALID_DATA = 202,
  DATA_OUT_OF_BOUNDS = 203,
  INVALID_POINTER = 204,
  /// The process or resource does not exist.
  UNKNOWN_PROCESS = 205,
  RESOURCE_MISSING = 206,
  /// The operation is invalid in this state, or contradicts itself.
  LOGIC = 300,
  INCONSISTENT_SITUATION = 301,
  COMMUNICATION_PROBLEM = 400,  ///< not used by the library
  /// An input or output operation failed; the class is as precise as the system reports it.
  IO_PROBLEM = 500,
  IO_WRITE_PROBLEM = 501,
  IO_READ_PROBLEM = 502,
  IO_PERMISSION_DENIED = 503,
  IO_NOT_EXISTENT = 504,
  IO_ALREADY_IN_USE = 505,
  IO_STILL_IN_USE = 506,
  IO_INVALID_NAME = 507,
  /// Not used by the library.
  HARDWARE_PROBLEM = 900,
  HARDWARE_SETUP = 901,
  HARDWARE_PERFORMANCE = 902,
  HARDWARE_NOT_SUPPORTED = 903
};

/// The severity of a failure. The gaps (3, 4, 9) are reserved.
enum class VelEnErrorSeverity : int32_t {
  /// Nothing has failed.
  NONE = 0,
  INFO = 1,
  WARNING = 2,
  /// NORMAL: an operation has failed, and the program can continue. FATAL: it can hardly continue.
  NORMAL = 5,
  FATAL = 6,
  /// An error in the program itself, and worse.
  INTERNAL = 7,
  CRITICAL = 8,
  PANIC = 10
};

/// The action that the caller is advised to take.
enum class VelEnErrorAction : int32_t {
  NO_ACTION = 0,  ///< IGNORE, under a name that is never a macro
  /// Continue, silently or after informing the user.
  IGNORE = 0,
  INFORM = 1,
  WARN = 2,
  /// Retry, immediately or later.
  RETRY = 3,
  RETRYDELAY = 4,
  USER = 5,  ///< ask the user
  /// End the program, in an orderly way or immediately.
  TERMINATE = 6,
  ABORT = 8,
  PANIC = 10
};

#else

/// C programs pass the numbers of the C++ enumerations.
typedef int32_t VelEnErrorClass;
typedef int32_t VelEnErrorSeverity;
typedef int32_t VelEnErrorAction;

#endif

/// Return the number of the built-in message that holds the symbolic name of an error identifier, class,
/// severity or action, or 0 for a value without a name.
VEL_C_API unsigned int velErrorGetIdAsMessageId(unsigned long id);
VEL_C_API unsigned int velErrorGetClassAsMessageId(VelEnErrorClass errorClass);
VEL_C_API unsigned int velErrorGetSeverityAsMessageId(VelEnErrorSeverity severity);
VEL_C_API unsigned int velErrorGetActionAsMessageId(VelEnErrorAction action);

/// Returns the symbolic name of a Windows error code, such as "ERROR_FILE_NOT_FOUND" for 2, on every system;
/// returns null for a code without a name. `code` is read as a signed 32-bit number: 0xFFFFFFF8 is -8. The
/// text is a literal.
VEL_C_API const char* velWinGetErrorAsString(unsigned long code);

/// Report a failed assertion on standard error, show the report in a message box where the system has one,
/// and end the process abnormally. They never return.
/// `module` is the source file and `line` its line. Texts of any length are shown in full. The report on
/// standard error needs no allocation, because exhausted memory may be the reason for the failure. `function`
/// is printed only together with `message`; both may be null.
/// If the environment variable VEL_NO_ASSERT_POPUP is ON, YES, TRUE or 1 (in any case) at the first assertion
/// of the process, that assertion shows no message box. A second assertion, raised while the first one is
/// being reported, always shows it.
VEL_C_API void vel__assert(const char* expression, const char* module, unsigned int line);
VEL_C_API void vel__assert_msg(const char* expression, const char* module, unsigned int line,
                               const char* function, const char* message);

/// Ends the process through vel__assert if `expression` is false, in every build.
#define VEL_ASSERT(expression) ((expression) ? (void)0 : vel__assert(#expression, __FILE__, __LINE__))

#if defined(VEL_HAS_CLASSES)

/// The last error of an object, and the error that plain functions return through an out parameter. An
/// identifier of 0 means success.
struct VEL_API _VelStError {
  /// The error identifier and the class of the failure.
  uint32_t errorId;
  VelEnErrorClass errorClass;

  /// Construct success, or a failure. Only the low 32 bits of the identifier are used.
  constexpr _VelStError() noexcept : errorId(VEL_NO_ERROR), errorClass(VelEnErrorClass::UNKNOWN) {}
  constexpr _VelStError(unsigned long id, VelEnErrorClass cls) noexcept
      : errorId(static_cast<uint32_t>(id)), errorClass(cls) {}

  /// Resets the record to success.
  constexpr void reset() noexcept { *this = _VelStError(); }
  /// Returns the identifier, 0 for success.
  constexpr unsigned long getErrorId() const noexcept { return errorId; }
};

/// The full classification of a failure, from which exceptions are constructed.
struct VEL_API _VelStUserError {
  /// The four parts of the classification.
  uint32_t errorId;
  VelEnErrorClass errorClass;
  VelEnErrorSeverity severity;
  VelEnErrorAction action;

  /// Construct success, or a failure.
  constexpr _VelStUserError() noexcept
      : errorId(VEL_NO_ERROR),
        errorClass(VelEnErrorClass::UNKNOWN),
        severity(VelEnErrorSeverity::NONE),
        action(VelEnErrorAction::NO_ACTION) {}
  constexpr _VelStUserError(unsigned long id, VelEnErrorClass cls, VelEnErrorSeverity sev,
                            VelEnErrorAction act) noexcept
      : errorId(static_cast<uint32_t>(id)), errorClass(cls), severity(sev), action(act) {}
};

/// The base class of all exceptions of the library, which are thrown by value. Cause and origin are stored as
/// pointers and never copied or freed: pass literals. Copying cannot fail.
class VEL_API VelClExceptionABase {
 public:
  /// A null cause counts as "".
  explicit VelClExceptionABase(const char* cause) noexcept;
  VelClExceptionABase(const VelClExceptionABase& other) noexcept;
  VelClExceptionABase& operator=(const VelClExceptionABase& other) noexcept;
  virtual ~VelClExceptionABase();

  /// True if the library itself may have thrown the exception.
  virtual bool isVelException() const = 0;
  /// Returns the cause in words; never null.
  virtual const char* getCause() const;

  /// Returns the place where it was thrown, such as "VelClMemoryManager::realloc, line 267", or null before
  /// setOrigin was called.
  const char* getOrigin() const noexcept { return origin_; }
  /// Returns the line of the origin, or 0 before setOrigin was called.
  unsigned int getLine() const noexcept { return line_; }
  /// Stores the place where the exception is thrown; `origin` is not copied.
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
  /// Construct from the parts of the classification, or from a record of them. Only the low 32 bits of the
  /// identifier are used.
  VelClException(unsigned long id, VelEnErrorClass errorClass, VelEnErrorSeverity severity,
                 VelEnErrorAction action, const char* cause) noexcept;
  VelClException(const _VelStUserError& error, const char* cause) noexcept;
  VelClException(const VelClException& other) noexcept;
  VelClException& operator=(const VelClException& other) noexcept;
  ~VelClException() override;

  /// Always returns true.
  bool isVelException() const override;
  const char* getCause() const override;

  /// Return the parts of the classification.
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

/// An exception after which a program can hardly continue; its severity is always FATAL.
class VEL_API VelClExceptionFatal : public VelClException {
 public:
  /// Sets the severity FATAL.
  VelClExceptionFatal(unsigned long id, VelEnErrorClass errorClass, VelEnErrorAction action,
                      const char* cause) noexcept;
  VelClExceptionFatal(const VelClExceptionFatal& other) noexcept;
  VelClExceptionFatal& operator=(const VelClExceptionFatal& other) noexcept = default;
  ~VelClExceptionFatal() override;

  bool isVelException() const override;
  const char* getCause() const override;
};

#endif

#pragma pop_macro("IGNORE")
#pragma pop_macro("NO_ERROR")

#endif
