// The plain C functions of the trace facility. Without an instance they do nothing, so that programs may call
// them whether or not they are traced.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "vel_include/vel_trace.h"

VelClTraceInstance* velTraceCreateInstance(const char* key, const char* instance) {
  return VelClTraceInstance::createInstance(key, instance);
}

void velTraceDeleteInstance(void) {
  VelClTraceInstance::deleteInstance();
}

bool velTraceIsEnabled(void) {
  return VelClTraceInstance::getInstance() != nullptr;
}

VelClTraceInstance* VelClTraceInstance_getInstance(void) {
  return VelClTraceInstance::getInstance();
}

void velTraceFlush(void) {
  if (VelClTraceInstance* const instance = VelClTraceInstance::getInstance()) instance->flush();
}

void velTraceDump(VelEnTraceDetail detail, unsigned short componentId, VelEnTraceDataType type,
                  const char* origin, const char* message, const void* data, size_t size) {
  VelClTraceInstance* const instance = VelClTraceInstance::getInstance();
  if (instance == nullptr) return;
  if (type == VelEnTraceDataType::FUNCTION_ENTRY || type == VelEnTraceDataType::FUNCTION_EXIT)
    instance->dumpFunction(detail, componentId, type, origin);
  else
    instance->dump(detail, componentId, type, origin, message, data, size);
}

// Asks the instance even while it is disabled: a program may look after it has stopped tracing.
uint64_t velTraceGetLostBytes(void) {
  const VelClTraceInstance* const instance = VelClTraceInstance::getSingletonInstance();
  return instance == nullptr ? 0 : instance->getEnvironment().getLostBytes();
}

int velTraceGetLastSystemError(void) {
  const VelClTraceInstance* const instance = VelClTraceInstance::getSingletonInstance();
  return instance == nullptr ? 0 : instance->getEnvironment().getLastSystemError();
}

[[gnu::format(printf, 3, 4)]] void vel_tprintf(const char* file, int line, const char* format, ...) {
  std::printf("[%s:%d] ", file, line);
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
  // Intentional: a line break anywhere in the format counts, also one that is not at its end.
  if (std::strchr(format, '\n') == nullptr) std::putchar('\n');
  std::fflush(stdout);
}

void vel_tprint(std::ostream& stream, const char* file, int line) {
  // The number is not written by the stream, which may be set to another base or to a locale with digit
  // grouping.
  char number[sizeof "-2147483648"] = {};
  std::snprintf(number, sizeof number, "%d", line);
  stream << '[' << file << ':' << number << "] ";
}
