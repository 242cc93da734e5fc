// What the threads of a run share.
#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "app/batch/batch.h"
#include "app/batch/journal.h"
#include "app/batch/memory_budget.h"
#include "app/batch/plan.h"
#include "app/batch/reporter.h"

namespace vorlane::batch {

struct RunContext {
  RunContext(const BatchRequest& itsRequest, const Plan* itsPlan, PageService pageService,
             SetService setService, int64_t memory)
      : request(itsRequest),
        plan(*itsPlan),
        page(std::move(pageService)),
        set(std::move(setService)),
        budget(memory) {}

  const BatchRequest& request;
  const Plan& plan;
  PageService page;  // one of the two
  SetService set;
  MemoryBudget budget;
  Reporter* reporter = nullptr;
  Journal* journal = nullptr;  // null: none is kept
  OutputCheck* check = nullptr;
  std::mutex checkMutex;                                  // of *check
  std::function<void(const std::string& words)> onFatal;  // the run cannot go on
};

}  // namespace vorlane::batch
