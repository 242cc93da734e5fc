#include "app/files/jpeg_codec.h"

namespace vorlane::files {
namespace {

// The manager is the first field of the record around it.
JpegErrors* ErrorsOf(j_common_ptr info) { return reinterpret_cast<JpegErrors*>(info->err); }

[[noreturn]] void Leave(j_common_ptr info) {
  JpegErrors* errors = ErrorsOf(info);
  errors->manager.format_message(info, errors->error);
  std::longjmp(errors->jump, 1);  // NOLINT(cert-err52-cpp): the library is C
}

void Keep(j_common_ptr info, int level) {
  if (level >= 0) return;  // traces
  JpegErrors* errors = ErrorsOf(info);
  if (errors->warnings++ == 0) errors->manager.format_message(info, errors->warning);
}

void PrintNothing(j_common_ptr /*info*/) {}

}  // namespace

JpegErrors::JpegErrors() {
  (void)jpeg_std_error(&manager);
  manager.error_exit = Leave;
  manager.emit_message = Keep;
  manager.output_message = PrintNothing;
}

}  // namespace vorlane::files
