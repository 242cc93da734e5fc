#include "app/files/jpeg_codec.h"

#include <jerror.h>

namespace vorlane::files {
namespace {

// The manager is the first field of the record around it.
JpegErrors* ErrorsOf(j_common_ptr info) { return reinterpret_cast<JpegErrors*>(info->err); }

[[noreturn]] void Leave(j_common_ptr info) {
  JpegErrors* errors = ErrorsOf(info);
  errors->manager.format_message(info, errors->error);
  std::longjmp(errors->jump, 1);  // NOLINT(cert-err52-cpp): the library is C
}

// What the data says, or the lack of it, where a row of blocks is read that nothing is stored of.
bool IsBehindEnd(j_common_ptr info, unsigned endsAtRow) {
  if (info->is_decompressor == FALSE) return false;
  const int code = info->err->msg_code;
  return reinterpret_cast<j_decompress_ptr>(info)->input_iMCU_row >= endsAtRow &&
         (code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC);
}

void Keep(j_common_ptr info, int level) {
  if (level >= 0) return;  // traces
  JpegErrors* errors = ErrorsOf(info);
  if (IsBehindEnd(info, errors->endsAtRow)) return;
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
