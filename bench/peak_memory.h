// How much memory a job takes at its worst.
#pragma once

#include <cstdint>
#include <functional>

namespace vorlanepic::bench {

// Does `prepare` and then what it returns in a child process, and returns by how many bytes the
// second step raised the resident memory at its peak, libraries' own start included. The calling
// process has no other threads yet.
// Throws std::runtime_error where the system does not tell, or when the job fails.
int64_t PeakBytes(const std::function<std::function<bool()>()>& prepare);

}  // namespace vorlanepic::bench
