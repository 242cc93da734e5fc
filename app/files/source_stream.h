// Sources as streams of the C library, for libraries that want one; no file is opened for them.
#pragma once

#include <cstdio>

#include "app/files/byte_source.h"

namespace vorlane::files {

// A stream to read from; the source outlives it. The caller closes it. Throws std::bad_alloc.
std::FILE* StreamOf(const ByteSource& source);

}  // namespace vorlane::files
