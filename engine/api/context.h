// What a context holds, and how calls take it.
#pragma once

#include <atomic>
#include <exception>
#include <new>

#include "engine/apply/workspace.h"
#include "vorlane/vorlane.h"

struct vorlane_context {
  std::atomic<bool> isBusy{false};
  vorlane::apply::Workspace space;
};

namespace vorlane::api {

// Calls work(Workspace&), which returns a status, while no other call has the context. Exceptions
// end here.
template <typename Work>
vorlane_status InContext(vorlane_context* context, const Work& work) noexcept {
  if (context == nullptr) return VORLANE_BAD_ARGUMENT;
  if (context->isBusy.exchange(true, std::memory_order_acquire)) return VORLANE_BUSY;
  vorlane_status status = VORLANE_INTERNAL;
  try {
    status = work(context->space);
  } catch (const std::bad_alloc&) {
    status = VORLANE_NO_MEMORY;
  } catch (...) {
    status = VORLANE_INTERNAL;
  }
  context->isBusy.store(false, std::memory_order_release);
  return status;
}

}  // namespace vorlane::api
