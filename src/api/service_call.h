// What the calls of the image services share: one set of settings, and one call at a time.
#pragma once

#include <mutex>

#include "deskew/page_records.h"
#include "frame/lock.h"
#include "frame/settings.h"

namespace vorlanepic::api {

// The process-wide settings, all zero at load. Only a ServiceCall touches them.
extern frame::Settings settings;

// One call of an image service: while it lives, calls of other threads wait. Its records begin with
// the extreme segments that the call before left, and leave theirs to the next one.
class ServiceCall {
 public:
  ServiceCall();
  ServiceCall(const ServiceCall&) = delete;
  ServiceCall& operator=(const ServiceCall&) = delete;
  ~ServiceCall();

  frame::Settings& settings() { return api::settings; }
  deskew::PageRecords* page() { return &page_; }

 private:
  std::lock_guard<frame::Lock> turn_;
  deskew::PageRecords page_;
};

}  // namespace vorlanepic::api
