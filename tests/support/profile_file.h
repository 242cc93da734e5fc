// A profile on disk for the length of a test.
#pragma once

#include <string>
#include <string_view>

namespace vorlanepic::testing {

// A file of exactly `bytes`, removed with its scope.
class ProfileOnDisk {
 public:
  explicit ProfileOnDisk(std::string_view bytes);
  ~ProfileOnDisk();
  ProfileOnDisk(const ProfileOnDisk&) = delete;
  ProfileOnDisk& operator=(const ProfileOnDisk&) = delete;

  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace vorlanepic::testing
