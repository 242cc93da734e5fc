// The JPEG library's records with its errors as exceptions.
#pragma once

#include <climits>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>
#include <string>

namespace vorlane::files {

// Takes the library's errors and warnings. An error leaves the library by longjmp, since no
// exception may pass its C frames: whoever calls the library does so in a frame that holds no
// object with a destructor, after setjmp(errors.jump).
struct JpegErrors {
  jpeg_error_mgr manager{};
  std::jmp_buf jump{};
  char error[JMSG_LENGTH_MAX] = "";
  char warning[JMSG_LENGTH_MAX] = "";  // the first one
  int warnings = 0;
  // From this row of blocks on nothing is stored, and what is said about that is no warning.
  unsigned endsAtRow = UINT_MAX;

  JpegErrors();
};

}  // namespace vorlane::files
