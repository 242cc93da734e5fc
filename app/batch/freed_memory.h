// What becomes of memory that a page has given back.
#pragma once

namespace vorlane::batch {

// Lets the C library keep more of it for the next pages, which take the same amounts again: at most
// 64 MB at the end of each thread's heap, and blocks of up to 32 MB come from the heap. These are
// the bounds that its own adjustment ends at; it gets there only after blocks of that size. Without
// effect on other C libraries.
void KeepFreedMemory();

}  // namespace vorlane::batch
