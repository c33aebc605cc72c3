// The process's trace instance: what is enabled, and the way of an entry into the ring.
#include <new>
#include <utility>

#include "foundation/allocator.h"
#include "vel_include/vel_trace.h"

VelClTraceInstance* gs_pclVelTraceInstance = nullptr;
VelClTraceInstance* VelClTraceInstance::cv_pclSingletonInstance = nullptr;

namespace {

const VelClTraceAutomaticInstanceDestructor destroyedAtUnload;

}  // namespace

VelClTraceInstance::VelClTraceInstance(const char* key, const char* instance, bool controllerMode)
    : unused_{},
      environment_(vel::create<VelClTraceEnvironment>(key, instance, controllerMode)),
      callback_(&dumpImp),
      context_(this),
      nestingLevel_(0) {
  enable();
}

VelClTraceInstance::~VelClTraceInstance() {
  flush();
  gs_pclVelTraceInstance = nullptr;
  vel::destroy(environment_);
}

VelClTraceInstance* VelClTraceInstance::createInstance(const char* key, const char* instance) {
  return create(key, instance, false);
}

VelClTraceInstance* VelClTraceInstance::createControllerInstance(const char* key, const char* instance) {
  return create(key, instance, true);
}

VelClTraceInstance* VelClTraceInstance::create(const char* key, const char* instance, bool controllerMode) {
  if (cv_pclSingletonInstance == nullptr) {
    vel::OwnedBlock block(VelClMemoryManager::malloc(sizeof(VelClTraceInstance)));
    cv_pclSingletonInstance = ::new (block.get()) VelClTraceInstance(key, instance, controllerMode);
    static_cast<void>(block.release());
  }
  return cv_pclSingletonInstance;
}

VelClTraceInstance* VelClTraceInstance::getSingletonInstance() {
  return cv_pclSingletonInstance;
}

void VelClTraceInstance::deleteInstance() {
  VelClTraceInstance* const instance = std::exchange(cv_pclSingletonInstance, nullptr);
  if (instance == nullptr) return;
  instance->~VelClTraceInstance();
  VelClMemoryManager::free(instance);
}

void VelClTraceInstance::enable() {
  if (isActive()) gs_pclVelTraceInstance = this;
}

void VelClTraceInstance::disable() {
  flush();
  gs_pclVelTraceInstance = nullptr;
}

void VelClTraceInstance::activate() {
  environment_->activate();
}

bool VelClTraceInstance::isActive() const {
  return environment_->isActive();
}

void VelClTraceInstance::flush() {
  if (isActive()) environment_->flush();
}

void VelClTraceInstance::registerUserCallback(VelTraceCallback callback, void* context) {
  callback_ = callback;
  context_ = context;
}

void VelClTraceInstance::dumpFunction(VelEnTraceDetail detail, unsigned short componentId,
                                      VelEnTraceDataType type, const char* origin) {
  // An exit without an entry leaves a level below 0.
  nestingLevel_ += type == VelEnTraceDataType::FUNCTION_ENTRY ? 1 : -1;
  if (detail == VelEnTraceDetail::LOW) detail = VelEnTraceDetail::OFF;
  dump(detail, componentId, type, origin, "", &nestingLevel_, sizeof nestingLevel_);
}

// Whether the instance is active does not matter here. Keep.
void VelClTraceInstance::dumpImp(void* context, VelEnTraceDetail detail, unsigned short componentId,
                                 VelEnTraceDataType type, const char* origin, const char* message,
                                 const void* data, size_t size) {
  VelClTraceEnvironment& environment = *static_cast<VelClTraceInstance*>(context)->environment_;
  if (!environment.getSettings().isToBeDumped(detail, componentId)) return;
  environment.add(detail, componentId, type, origin, message, data, size);
}

VelClTraceAutomaticInstanceDestructor::~VelClTraceAutomaticInstanceDestructor() {
  VelClTraceInstance::deleteInstance();
}
