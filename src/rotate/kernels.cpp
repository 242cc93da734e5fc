#include "rotate/kernels.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace vorlanepic::rotate {
namespace {

const KernelTable& TableOf(frame::InstructionSet set) {
  switch (set) {
#if defined(VORLANEPIC_X86)
    case frame::InstructionSet::kAvx512:
      return kAvx512Kernels;
    case frame::InstructionSet::kAvx2:
      return kAvx2Kernels;
    case frame::InstructionSet::kSse2:
      return kSse2Kernels;
#endif
    default:
      return kScalarKernels;
  }
}

// Of which rotations use the kernels; none until the first use or selection.
constexpr auto kNoneYet = static_cast<frame::InstructionSet>(-1);
std::atomic<frame::InstructionSet> selected{kNoneYet};

frame::InstructionSet SelectedSet() {
  frame::InstructionSet set = selected.load(std::memory_order_relaxed);
  if (set == kNoneYet) {
    set = frame::BestInstructionSet();
    selected.store(set, std::memory_order_relaxed);
  }
  return set;
}

}  // namespace

const RotateKernel& RotateKernelFor(PixelKind kind, const StepTables& steps) {
  for (auto set = static_cast<int32_t>(SelectedSet());; --set) {
    const KernelTable& table = TableOf(static_cast<frame::InstructionSet>(set));
    const RotateKernel& kernel = table.kernels[static_cast<size_t>(kind)];
    if (RowsOfNeighbours(kernel.neighbours, steps) <= kernel.mostRows) return kernel;
  }
}

int32_t RowsOfNeighbours(int32_t count, const StepTables& steps) {
  // Steps k apart differ by at most the k-th entry and 2; 99 is the most that the first one lies
  // behind a whole pixel.
  return std::max(1, (std::abs(steps.Sin(count - 1)) + 101) / 100);
}

void SelectRotateKernels(frame::InstructionSet set) { selected = set; }

}  // namespace vorlanepic::rotate
