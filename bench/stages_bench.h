// The benchmarks of single stages.
#pragma once

namespace vorlanepic::bench {

// Registers Stage/... for every frame.
void RegisterStages();

}  // namespace vorlanepic::bench
