#include "app/cage/cage.h"

#include <system_error>
#include <utility>

#include "app/cage/worker_main.h"

namespace vorlane::cage {

Cage::Cage(const files::Decoders& decoders, files::HelperWalls helpers, const CageLimits& limits)
    : limits_(limits), helpers_(helpers) {
#if defined(VORLANE_HAS_NO_WALLS)
  throw CageError("this build watches its decoders by a sanitizer");
#endif
  try {
    keeper_ = std::make_unique<Keeper>(
        [&decoders](Descriptor end) { DecodeWhatIsAsked(std::move(end), decoders); });
  } catch (const std::system_error& error) {
    throw CageError(error.what());
  }
  idle_.push_back(std::make_unique<CageWorker>(keeper_.get(), limits_));
}

template <class Action>
void Cage::WithWorker(const Action& action) const {
  std::unique_ptr<CageWorker> worker;
  {
    const std::lock_guard lock(mutex_);
    // One that ended while nothing was asked of it costs no page.
    while (!idle_.empty() && (worker == nullptr || !worker->IsAlive())) {
      worker = std::move(idle_.back());
      idle_.pop_back();
    }
  }
  try {
    if (worker == nullptr || !worker->IsAlive()) {
      worker = std::make_unique<CageWorker>(keeper_.get(), limits_);
    }
  } catch (const CageError& error) {
    throw files::DecodeError(std::string("no decoder can be started: ") + error.what());
  }
  // It goes back whether the page could be read or not, unless it is done for.
  struct Return {
    const Cage* cage;
    std::unique_ptr<CageWorker>* worker;
    ~Return() {
      if (!(*worker)->IsAlive()) return;
      const std::lock_guard lock(cage->mutex_);
      cage->idle_.push_back(std::move(*worker));
    }
  } const back{this, &worker};
  action(worker.get());
}

files::FileContents Cage::Look(const files::ByteSource& source,
                               const files::ReadLimits& limits) const {
  files::FileContents contents;
  WithWorker([&](CageWorker* worker) { contents = worker->Look(source, limits); });
  return contents;
}

void Cage::Decode(const files::ByteSource& source, const files::PicturePlace& place,
                  const files::ReadLimits& limits, files::Page* page) const {
  WithWorker([&](CageWorker* worker) { worker->Decode(source, place, limits, page); });
}

}  // namespace vorlane::cage
