// The process's trace instance: creates and deletes it, enables it, and passes entries that the filter lets
// through to the environment, which owns the ring.
//
// Two pointers tell the states apart. cv_pclSingletonInstance is the instance; gs_pclVelTraceInstance is the
// same instance while it is enabled and null otherwise, so that a trace call in a program that is not traced
// costs one load and one branch.
#include <atomic>
#include <new>
#include <utility>

#include "foundation/allocator.h"
#include "trace/save_lock.h"
#include "trace/thread_rings.h"
#include "vel_include/vel_trace.h"

VelClTraceInstance* gs_pclVelTraceInstance = nullptr;
VelClTraceInstance* VelClTraceInstance::cv_pclSingletonInstance = nullptr;

namespace {

using vel::trace::ThreadRings;

/// Threads may trace while another one switches tracing on and off.
std::atomic_ref<VelClTraceInstance*> enabledInstance() {
  return std::atomic_ref(gs_pclVelTraceInstance);
}

/// Saves the last entries when the process ends or the library is unloaded. Threads that still trace then
/// keep the instance's memory.
class AtUnload {
 public:
  AtUnload() { ThreadRings::prepare(); }
  AtUnload(const AtUnload&) = delete;
  AtUnload& operator=(const AtUnload&) = delete;
  ~AtUnload() {
    vel::trace::SaveLock::processEnds();
    VelClTraceInstance* const instance = VelClTraceInstance::getSingletonInstance();
    if (instance == nullptr) return;
    enabledInstance().store(nullptr);
    instance->getEnvironment().flush();
    if (!ThreadRings::of(instance->getEnvironment()).isUsedByOthers()) VelClTraceInstance::deleteInstance();
  }
};

const AtUnload atUnload;

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
  enabledInstance().store(nullptr);
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
    // vel::create cannot call the private constructor.
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
  // Cleared first, so that nobody finds an instance that is being destroyed.
  VelClTraceInstance* const instance = std::exchange(cv_pclSingletonInstance, nullptr);
  if (instance == nullptr) return;
  instance->~VelClTraceInstance();
  VelClMemoryManager::free(instance);
}

void VelClTraceInstance::enable() {
  if (isActive()) enabledInstance().store(this);
}

void VelClTraceInstance::disable() {
  flush();
  enabledInstance().store(nullptr);
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
  // An exit without its entry makes the level negative; the formatter then shows no indentation.
  int32_t& level = ThreadRings::of(*environment_).nestingLevel(nestingLevel_);
  level += type == VelEnTraceDataType::FUNCTION_ENTRY ? 1 : -1;
  // Intentional: only LOW is lowered. Function records of level LOW then pass every filter of details.
  if (detail == VelEnTraceDetail::LOW) detail = VelEnTraceDetail::OFF;
  dump(detail, componentId, type, origin, "", &level, sizeof level);
}

// Intentional: does not test whether the instance is active. Callers of
// dump() record even when nothing is enabled.
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
