// Records of callers that may have been compiled with an older header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vorlane/vorlane.h"

namespace vorlane::api {

// The defaults of each record.
vorlane_detect_options DefaultDetectOptions();
vorlane_apply_options DefaultApplyOptions();
vorlane_finding DefaultFinding();

// Whether every option is in its range.
bool AreInRange(const vorlane_detect_options& options);
bool AreInRange(const vorlane_apply_options& options);

// Whether a version of the library had a record of this size. So far there is one version.
template <typename Record>
bool IsKnownSize(size_t size) {
  return size == sizeof(Record);
}

// Fills a record of `size` bytes with defaults.
template <typename Record>
vorlane_status InitRecord(const Record& defaults, Record* record, size_t size) {
  if (record == nullptr || !IsKnownSize<Record>(size)) return VORLANE_BAD_ARGUMENT;
  std::memcpy(record, &defaults, size);
  record->struct_size = static_cast<uint32_t>(size);
  return VORLANE_OK;
}

// Takes a caller's record over the defaults in *read; a null one leaves them.
template <typename Record>
vorlane_status ReadRecord(const Record* given, Record* read) {
  if (given == nullptr) return VORLANE_OK;
  if (!IsKnownSize<Record>(given->struct_size)) return VORLANE_BAD_ARGUMENT;
  std::memcpy(read, given, given->struct_size);
  return VORLANE_OK;
}

// The caller's options, or the defaults: VORLANE_OK, VORLANE_BAD_ARGUMENT or VORLANE_BAD_OPTION.
template <typename Record>
vorlane_status ReadOptions(const Record* given, Record* read) {
  const vorlane_status status = ReadRecord(given, read);
  if (status != VORLANE_OK) return status;
  return AreInRange(*read) ? VORLANE_OK : VORLANE_BAD_OPTION;
}

// Writes as much of `finding` as the caller's record, which was initialised, has room for.
void WriteFinding(const vorlane_finding& finding, vorlane_finding* record);

}  // namespace vorlane::api
