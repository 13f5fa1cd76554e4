#include "Base/HelperThread.h"

#include <sched.h>

#include <optional>
#include <system_error>

namespace velmora {
namespace {

#if defined(__linux__) && defined(__GLIBC__)

using Processors = cpu_set_t;

std::optional<Processors> AllowedProcessors() {
  Processors allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return std::nullopt;
  return allowed;
}

/// Has a thread begin on one of `allowed`, but not on this processor. Where that cannot be had it
/// begins anywhere.
void BeginElsewhere(pthread_attr_t& attributes, Processors allowed) {
  const int here = sched_getcpu();
  if (here < 0 || CPU_COUNT(&allowed) < 2) return;
  CPU_CLR(here, &allowed);
  pthread_attr_setaffinity_np(&attributes, sizeof allowed, &allowed);
}

void GoAnywhere(const Processors& allowed) {
  sched_setaffinity(0, sizeof allowed, &allowed);
}

#else

struct Processors {};

std::optional<Processors> AllowedProcessors() {
  return std::nullopt;
}
void BeginElsewhere(pthread_attr_t&, Processors) {}
void GoAnywhere(const Processors&) {}

#endif

}  // namespace

/// What the new thread gets, and frees.
struct HelperThread::Beginning {
  std::unique_ptr<Task> task;
  std::optional<Processors> allowed;
};

void HelperThread::Start(std::unique_ptr<Task> task) {
  auto beginning = std::make_unique<Beginning>(Beginning{std::move(task), AllowedProcessors()});
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  if (beginning->allowed) BeginElsewhere(attributes, *beginning->allowed);
  const int error = pthread_create(&thread_, &attributes, Run, beginning.get());
  pthread_attr_destroy(&attributes);
  if (error != 0) throw std::system_error(error, std::generic_category(), "pthread_create");
  static_cast<void>(beginning.release());  // now the thread's
  isRunning_ = true;
}

void* HelperThread::Run(void* given) noexcept {
  const std::unique_ptr<Beginning> beginning(static_cast<Beginning*>(given));
  if (beginning->allowed) GoAnywhere(*beginning->allowed);
  beginning->task->Do();
  return nullptr;
}

void HelperThread::Join() {
  if (isRunning_) pthread_join(thread_, nullptr);
  isRunning_ = false;
}

}  // namespace velmora
