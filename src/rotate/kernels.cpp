#include "rotate/kernels.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#if defined(VORLANEPIC_TEST_HOOKS)
#include <string_view>
#endif

namespace vorlanepic::rotate {
namespace {

const KernelTable& TableOf(InstructionSet set) {
  switch (set) {
#if defined(VORLANEPIC_X86)
    case InstructionSet::kAvx512:
      return kAvx512Kernels;
    case InstructionSet::kAvx2:
      return kAvx2Kernels;
    case InstructionSet::kSse2:
      return kSse2Kernels;
#endif
    default:
      return kScalarKernels;
  }
}

// Of which rotations use the kernels; none until the first use or selection.
constexpr auto kNoneYet = static_cast<InstructionSet>(-1);
std::atomic<InstructionSet> selected{kNoneYet};

InstructionSet SelectedSet() {
  InstructionSet set = selected.load(std::memory_order_relaxed);
  if (set == kNoneYet) {
    set = BestInstructionSet();
    selected.store(set, std::memory_order_relaxed);
  }
  return set;
}

}  // namespace

bool HasInstructionSet(InstructionSet set) {
  switch (set) {
    case InstructionSet::kScalar:
      return true;
#if defined(VORLANEPIC_X86)
    case InstructionSet::kSse2:
      return __builtin_cpu_supports("sse2") != 0;
    case InstructionSet::kAvx2:
      return __builtin_cpu_supports("avx2") != 0;
    case InstructionSet::kAvx512:
      return HasInstructionSet(InstructionSet::kAvx2) && __builtin_cpu_supports("avx512f") != 0 &&
             __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
             __builtin_cpu_supports("avx512vbmi") != 0;
#endif
    default:
      return false;
  }
}

InstructionSet BestInstructionSet() {
  InstructionSet best = InstructionSet::kScalar;
  for (const InstructionSet set : kInstructionSets) {
    if (HasInstructionSet(set)) best = set;
  }
#if defined(VORLANEPIC_TEST_HOOKS)
  if (const char* wanted = std::getenv("VORLANEPIC_INSTRUCTION_SET")) {
    constexpr std::string_view kNames[] = {"scalar", "sse2", "avx2", "avx512"};
    for (const InstructionSet set : kInstructionSets) {
      if (kNames[static_cast<size_t>(set)] == wanted && HasInstructionSet(set)) return set;
    }
  }
#endif
  return best;
}

const RotateKernel& RotateKernelFor(PixelKind kind, const StepTables& steps) {
  for (auto set = static_cast<int32_t>(SelectedSet());; --set) {
    const KernelTable& table = TableOf(static_cast<InstructionSet>(set));
    const RotateKernel& kernel = table.kernels[static_cast<size_t>(kind)];
    if (RowsOfNeighbours(kernel.neighbours, steps) <= kernel.mostRows) return kernel;
  }
}

int32_t RowsOfNeighbours(int32_t count, const StepTables& steps) {
  // Steps k apart differ by at most the k-th entry and 2; 99 is the most that the first one lies
  // behind a whole pixel.
  return std::max(1, (std::abs(steps.Sin(count - 1)) + 101) / 100);
}

void SelectRotateKernels(InstructionSet set) { selected = set; }

}  // namespace vorlanepic::rotate
