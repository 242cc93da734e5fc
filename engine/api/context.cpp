#include "engine/api/context.h"

#include <new>

vorlane_status vorlane_context_new(vorlane_context** context) noexcept {
  if (context == nullptr) return VORLANE_BAD_ARGUMENT;
  *context = new (std::nothrow) vorlane_context;
  return *context != nullptr ? VORLANE_OK : VORLANE_NO_MEMORY;
}

void vorlane_context_free(vorlane_context* context) noexcept { delete context; }

vorlane_status vorlane_context_trim(vorlane_context* context) noexcept {
  return vorlane::api::InContext(context, [](vorlane::apply::Workspace& space) {
    space = {};
    return VORLANE_OK;
  });
}
