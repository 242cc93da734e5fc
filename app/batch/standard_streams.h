// The first three descriptors, and pictures that come and go through them.
#pragma once

#include <string>

namespace vorlane::batch {

// Takes the descriptors 0, 1 and 2 where they are closed, so that no file that is opened later gets
// one of them and what is printed goes into it. What is then written to them fails as it would
// have. Before anything is opened.
void SecureStandardStreams();

// A folder of its own for what passes through, removed with its scope.
class PassingFolder {
 public:
  PassingFolder() = default;
  PassingFolder(const PassingFolder&) = delete;
  PassingFolder& operator=(const PassingFolder&) = delete;
  ~PassingFolder();

  // Throws FileError when no folder can be made.
  std::string At(const std::string& name);

 private:
  std::string path_;
};

// Copies the standard input into a file, and a file to the standard output. Throw FileError.
void KeepStandardInput(const std::string& path);
void PassToStandardOutput(const std::string& path);

// The extension of the format that a file's first bytes are of, with its dot; ".png" for others.
std::string ExtensionByContent(const std::string& path);

}  // namespace vorlane::batch
