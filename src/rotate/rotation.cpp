#include "rotate/rotation.h"

#include <algorithm>
#include <new>

#include "rotate/plain_rotation.h"

namespace vorlanepic::rotate {

bool Rotation::Build() {
  const auto mostSteps = static_cast<size_t>(std::max(job_.halfWidth(), job_.halfHeight()));
  const Turn& turn = job_.turn;
  if (!job_.steps.Build(turn.angle, mostSteps + kMostNeighbours, turn.quarterTurns)) return false;
  if (!TiledRotation::Suits(job_)) return true;
  tiled_.reset(new (std::nothrow) TiledRotation(job_));
  return tiled_ != nullptr && tiled_->Build();
}

void Rotation::RotateRows(int32_t first, int32_t last) const {
  if (tiled_ != nullptr) {
    tiled_->RotateRows(first, last);
  } else {
    RotateRowsPlain(job_, first, last);
  }
}

}  // namespace vorlanepic::rotate
