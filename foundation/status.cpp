// Failures as values: a block of memory with a count of references, the numbers, and the name after them.
#include "foundation/status.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "base/digits.h"
#include "base/utf.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_memmgr.h"

struct VelStStatus {
  std::atomic<std::uint32_t> references;
  std::uint32_t errorId;
  VelEnErrorClass errorClass;
  std::uint32_t systemError;
  std::uint64_t position;
  std::size_t nameSize;

  char* name() noexcept { return reinterpret_cast<char*>(this + 1); }
  const char* name() const noexcept { return reinterpret_cast<const char*>(this + 1); }
};

namespace {

struct NameRow {
  std::uint32_t value;
  const char* name;
};

#include "error_names.inc"

/// Returns the name of a value, or null if the value is not in the table. The rows are sorted by value.
template <std::size_t count>
const char* nameOf(const NameRow (&rows)[count], std::uint32_t value) noexcept {
  const auto* row = std::lower_bound(std::begin(rows), std::end(rows), value,
                                     [](const NameRow& a, std::uint32_t b) { return a.value < b; });
  return row != std::end(rows) && row->value == value ? row->name : nullptr;
}

/// What velStatusCreate returns without memory. It is never freed, so its references are not counted.
struct OutOfMemory {
  VelStStatus status{1, MEMMGR_RUNTIME_OUT_OF_MEMORY, VelEnErrorClass::OUT_OF_MEMORY, 0, 0, 0};
  char name[8] = {};
};
constinit OutOfMemory outOfMemory;

/// Writes as many whole characters of a text as fit, and counts the length of all.
class TextWriter {
 public:
  TextWriter(char* out, std::size_t capacity) noexcept : out_(out), room_(capacity == 0 ? 0 : capacity - 1) {
    if (capacity != 0) *out = '\0';
  }

  void add(std::string_view text) noexcept {
    add(text, [](unsigned char) { return false; });
  }
  /// Adds a text in which control characters are shown in hexadecimal.
  void addEscaped(std::string_view text) noexcept {
    add(text, [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; });
  }
  void addNumber(std::uint64_t number) noexcept {
    char digits[24];
    add({digits, velW64toa(number, digits)});
  }
  /// Adds a name, or the number of a value without one.
  void addName(const char* name, std::uint32_t value) noexcept {
    if (name != nullptr)
      add(name);
    else
      addNumber(value);
  }

  std::size_t length() const noexcept { return length_; }

 private:
  template <typename Test>
  void add(std::string_view text, Test isEscaped) noexcept {
    while (!text.empty()) {
      const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
      const std::size_t size = vel::utf8SequenceAt(bytes, text.size()).size;
      if (isEscaped(*bytes)) {
        const auto digits = vel::hexPair(*bytes);
        const char escaped[] = {'\\', 'x', digits[0], digits[1]};
        addCharacter({escaped, sizeof escaped});
      } else {
        addCharacter(text.substr(0, size));
      }
      text.remove_prefix(size);
    }
  }
  /// Adds a character or an escape as a whole. Nothing is written after one that did not fit.
  void addCharacter(std::string_view character) noexcept {
    const std::size_t start = length_;
    length_ += character.size();
    if (length_ > room_) {
      room_ = 0;
      return;
    }
    std::memcpy(out_ + start, character.data(), character.size());
    out_[length_] = '\0';
  }

  char* out_;
  std::size_t room_;
  std::size_t length_ = 0;
};

void addSystemError(TextWriter& text, vel::platform::NativeError error) noexcept {
  char words[256];
  const std::size_t size = vel::platform::systemErrorText(error, words, sizeof words);
  text.add(": ");
  text.add({words, size});
  text.add(size != 0 ? " (" : "(");
  text.addNumber(error);
  text.add(")");
}

}  // namespace

VelEnErrorClass vel::classOfSystemError(platform::NativeError error, VelEnErrorClass otherwise) noexcept {
  switch (platform::preciseErrno(error)) {
    case ENOENT:
    case ENOTDIR:
      return VelEnErrorClass::IO_NOT_EXISTENT;
    case EACCES:
    case EPERM:
    case EROFS:
      return VelEnErrorClass::IO_PERMISSION_DENIED;
    case EEXIST:
      return VelEnErrorClass::IO_ALREADY_IN_USE;
    case EBUSY:
    case ENOTEMPTY:
    case ETXTBSY:
      return VelEnErrorClass::IO_STILL_IN_USE;
    case ENAMETOOLONG:
    case EILSEQ:
    case EINVAL:
      return VelEnErrorClass::IO_INVALID_NAME;
    case ENOMEM:
      return VelEnErrorClass::OUT_OF_MEMORY;
    case EMFILE:
    case ENFILE:
    case EAGAIN:
      return VelEnErrorClass::RESOURCE_EXHAUSTED;
    case ENOSPC:
      return VelEnErrorClass::IO_WRITE_PROBLEM;
    case ENOSYS:
    case ENOTSUP:
      return VelEnErrorClass::FUNCTION_NOT_SUPPORTED;
    default:
      return otherwise;
  }
}

VelStStatus* velStatusCreate(unsigned long errorId, VelEnErrorClass errorClass, uint32_t systemError,
                             const char* name, size_t nameSize, uint64_t position) {
  if (name == nullptr) nameSize = 0;
  try {
    void* const block = VelClMemoryManager::malloc(sizeof(VelStStatus) + nameSize + 1);
    auto* const status = ::new (block)
        VelStStatus{1, static_cast<std::uint32_t>(errorId), errorClass, systemError, position, nameSize};
    if (nameSize != 0) std::memcpy(status->name(), name, nameSize);
    status->name()[nameSize] = '\0';
    return status;
  } catch (const VelClException&) {
    return &outOfMemory.status;
  }
}

VelStStatus* velStatusShare(VelStStatus* status) {
  if (status != nullptr && status != &outOfMemory.status)
    status->references.fetch_add(1, std::memory_order_relaxed);
  return status;
}

void velStatusFree(VelStStatus* status) {
  if (status == nullptr || status == &outOfMemory.status) return;
  // Acquire and release, so that the last owner frees after all others have read.
  if (status->references.fetch_sub(1, std::memory_order_acq_rel) == 1) VelClMemoryManager::free(status);
}

unsigned long velStatusGetErrorId(const VelStStatus* status) {
  return status != nullptr ? status->errorId : 0UL;
}

VelEnErrorClass velStatusGetClass(const VelStStatus* status) {
  return status != nullptr ? status->errorClass : VelEnErrorClass::UNKNOWN;
}

uint32_t velStatusGetSystemError(const VelStStatus* status) {
  return status != nullptr ? status->systemError : 0;
}

uint64_t velStatusGetPosition(const VelStStatus* status) {
  return status != nullptr ? status->position : 0;
}

const char* velStatusGetName(const VelStStatus* status, size_t* size) {
  if (size != nullptr) *size = status != nullptr ? status->nameSize : 0;
  return status != nullptr ? status->name() : "";
}

size_t velStatusGetText(const VelStStatus* status, char* out, size_t capacity) {
  TextWriter text(out, capacity);
  const std::uint32_t id = status != nullptr ? status->errorId : std::uint32_t{VEL_NO_ERROR};
  text.addName(nameOf(kIdentifierNames, id), id);
  if (status == nullptr) return text.length();
  const auto errorClass = static_cast<std::uint32_t>(status->errorClass);
  text.add(" (");
  text.addName(nameOf(kClassNames, errorClass), errorClass);
  text.add(")");
  if (status->nameSize != 0) {
    text.add(": ");
    text.addEscaped({status->name(), status->nameSize});
  }
  if (status->position != 0) {
    text.add(": ");
    text.addNumber(status->position);
  }
  if (status->systemError != 0) addSystemError(text, status->systemError);
  return text.length();
}

const char* velStatusGetIdName(unsigned long errorId) {
  return nameOf(kIdentifierNames, static_cast<std::uint32_t>(errorId));
}
