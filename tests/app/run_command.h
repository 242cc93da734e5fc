// Runs the built command on files in a folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/files/page.h"
#include "support/page_drawing.h"

namespace vorlane::testing {

using vorlanepic::testing::DrawBarSheet;
using vorlanepic::testing::DrawnPage;
using vorlanepic::testing::DrawPage;
using vorlanepic::testing::FillRectangle;
using vorlanepic::testing::SamePixels;
using vorlanepic::testing::TestImage;

struct CommandResult {
  int exit = -1;
  std::string out;
  std::string err;

  // The lines of `out` as JSON objects; a line that is none fails the test.
  std::vector<nlohmann::json> Objects() const;
};

// A folder that is removed with its scope.
class WorkFolder {
 public:
  WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder();

  std::string At(const std::string& name) const { return (path_ / name).string(); }
  bool Has(const std::string& name) const { return std::filesystem::exists(path_ / name); }
  // Names in the folder, sorted; temporary files would show here.
  std::vector<std::string> Names() const;

  // Writes page images as one file in the format of its name.
  void Write(const std::string& name, const std::vector<const TestImage*>& pages,
             int32_t dpi = 200) const;
  void WriteText(const std::string& name, const std::string& bytes) const;
  std::string Bytes(const std::string& name) const;

  // All pages of a file, as the command reads them.
  std::vector<files::Page> Read(const std::string& name) const;

  // Runs a line of the shell in the folder.
  CommandResult Shell(const std::string& line) const;

  // Runs `vorlane` in the folder with these words, as a shell would.
  CommandResult Run(const std::string& arguments) const;

 private:
  std::filesystem::path path_;
};

// A page of 240 x 320 pixels turned by `degrees` on a dark ground of 400 x 480.
TestImage SmallPage(int32_t bitsPerPixel, double degrees);

// A picture without a page: one dark level everywhere.
TestImage DarkField();

}  // namespace vorlane::testing
