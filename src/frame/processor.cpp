#include "frame/processor.h"

#if defined(VORLANEPIC_TEST_HOOKS)
#include <cstddef>
#include <cstdlib>
#include <string_view>
#endif

namespace vorlanepic::frame {

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

bool HasByteShuffle() {
#if defined(VORLANEPIC_TEST_HOOKS)
  if (BestInstructionSet() <= InstructionSet::kSse2) return false;
#endif
#if defined(VORLANEPIC_X86)
  return __builtin_cpu_supports("ssse3") != 0;
#else
  return false;
#endif
}

}  // namespace vorlanepic::frame
