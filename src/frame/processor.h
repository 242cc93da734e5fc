// What the processor at hand can do.
#pragma once

#include <cstdint>

namespace vorlanepic::frame {

enum class InstructionSet : int32_t { kScalar, kSse2, kAvx2, kAvx512 };
inline constexpr InstructionSet kInstructionSets[] = {
    InstructionSet::kScalar, InstructionSet::kSse2, InstructionSet::kAvx2, InstructionSet::kAvx512};

// Whether this machine has the instruction set and this library code for it. AVX-512 stands for its
// byte and word instructions, byte permutations among them, and all of AVX2.
bool HasInstructionSet(InstructionSet set);

// The last of kInstructionSets that this machine has; in builds with test hooks, the one that the
// environment variable VORLANEPIC_INSTRUCTION_SET names (scalar, sse2, avx2, avx512).
InstructionSet BestInstructionSet();

// Whether the processor moves bytes within a vector (SSSE3).
bool HasByteShuffle();

}  // namespace vorlanepic::frame
