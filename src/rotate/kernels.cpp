#include "rotate/kernels.h"

#include <atomic>

#if defined(VORLANEPIC_TEST_HOOKS)
#include <cstdlib>
#include <string_view>
#endif

namespace vorlanepic {
namespace {

const KernelTable& TableOf(InstructionSet set) {
  switch (set) {
#if defined(VORLANEPIC_X86)
    case InstructionSet::kAvx2:
      return kAvx2Kernels;
    case InstructionSet::kSse2:
      return kSse2Kernels;
#endif
    default:
      return kScalarKernels;
  }
}

// Null until the first use or selection.
std::atomic<const KernelTable*> selected{nullptr};

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
    constexpr std::string_view kNames[] = {"scalar", "sse2", "avx2"};
    for (const InstructionSet set : kInstructionSets) {
      if (kNames[static_cast<size_t>(set)] == wanted && HasInstructionSet(set)) return set;
    }
  }
#endif
  return best;
}

const KernelTable& RotateKernels() {
  const KernelTable* table = selected.load(std::memory_order_relaxed);
  if (table == nullptr) {
    table = &TableOf(BestInstructionSet());
    selected.store(table, std::memory_order_relaxed);
  }
  return *table;
}

void SelectRotateKernels(InstructionSet set) { selected = &TableOf(set); }

}  // namespace vorlanepic
