// Decoders behind walls: each file is taken apart in a process that can open nothing, and whose
// crash, endless loop or hunger for memory costs the page that it worked on.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "app/cage/cage_worker.h"
#include "app/cage/keeper.h"
#include "app/files/decoders.h"

namespace vorlane::cage {

// One process for each thread that decodes at a time; they are kept for the pages that come.
class Cage : public files::Decoders {
 public:
  // `decoders` do the work, in their processes. Made while ours has one thread, which outlives the
  // cage. Throws CageError where the kernel does not allow it.
  explicit Cage(const files::Decoders& decoders, files::HelperWalls helpers,
                const CageLimits& limits = {});

  // The sources are open files. Beside the decoders' own words a DecodeError tells how their
  // process ended.
  files::FileContents Look(const files::ByteSource& source,
                           const files::ReadLimits& limits) const override;
  void Decode(const files::ByteSource& source, const files::PicturePlace& place,
              const files::ReadLimits& limits, files::Page* page) const override;
  files::HelperWalls helperWalls() const override { return helpers_; }

 private:
  template <class Action>
  void WithWorker(const Action& action) const;

  CageLimits limits_;
  files::HelperWalls helpers_;
  std::unique_ptr<Keeper> keeper_;
  mutable std::mutex mutex_;
  mutable std::vector<std::unique_ptr<CageWorker>> idle_;
};

}  // namespace vorlane::cage
