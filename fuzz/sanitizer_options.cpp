// Options of the address sanitizer for the fuzz targets: requests that no machine can serve get
// null, as they do without it, instead of ending the run.
extern "C" const char* __asan_default_options();  // NOLINT(bugprone-reserved-identifier)

extern "C" const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "allocator_may_return_null=1";
}
