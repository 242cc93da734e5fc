#include "app/run_command.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdlib.h>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"

namespace vorlane::testing {

std::vector<nlohmann::json> CommandResult::Objects() const {
  std::vector<nlohmann::json> objects;
  std::istringstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
    EXPECT_TRUE(object.is_object()) << line;
    objects.push_back(std::move(object));
  }
  return objects;
}

WorkFolder::WorkFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "vorlane-test-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw files::FileError("no temporary folder");
  path_ = name;
}

WorkFolder::~WorkFolder() {
  std::error_code code;
  std::filesystem::remove_all(path_, code);
}

std::vector<std::string> WorkFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void WorkFolder::Write(const std::string& name, const std::vector<const TestImage*>& pages,
                       int32_t dpi) const {
  files::Page source;
  source.metadata.resolution = {static_cast<double>(dpi), static_cast<double>(dpi)};
  const files::FileFormat format = *files::FormatOfName(name);
  files::PictureWriter writer(At(name), format, files::Replacing::kNever,
                              files::Durability::kLeftToSystem);
  std::vector<std::string> notes;
  for (const TestImage* page : pages) {
    writer.Add(files::EncodePage(format, *page->rec(), source, {}, &notes));
  }
  writer.Commit();
}

void WorkFolder::WriteText(const std::string& name, const std::string& bytes) const {
  std::ofstream(At(name), std::ios::binary) << bytes;
}

std::string WorkFolder::Bytes(const std::string& name) const {
  std::ifstream file(At(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<files::Page> WorkFolder::Read(const std::string& name) const {
  const files::PictureFile file(At(name));
  std::vector<files::Page> pages;
  for (int32_t number = 1; number <= file.count(); ++number) pages.push_back(file.Read(number));
  return pages;
}

CommandResult WorkFolder::Run(const std::string& arguments) const {
  return Shell(VORLANE_COMMAND " " + arguments);
}

CommandResult WorkFolder::Shell(const std::string& words) const {
  const WorkFolder streams;
  const std::string line = "cd '" + path_.string() + "' && " + words + " >'" + streams.At("out") +
                           "' 2>'" + streams.At("err") + "'";
  const int status = std::system(line.c_str());  // NOLINT(cert-env33-c): a shell is wanted
  CommandResult result;
  result.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = streams.Bytes("out");
  result.err = streams.Bytes("err");
  return result;
}

TestImage SmallPage(int32_t bitsPerPixel, double degrees) {
  return DrawPage({.imageHeight = 480,
                   .bitsPerPixel = bitsPerPixel,
                   .pageWidth = 240,
                   .pageHeight = 320,
                   .centerY = 240,
                   .degrees = degrees,
                   .text = true});
}

TestImage DarkField() {
  TestImage image(300, 300, 8);
  image.Fill(30);
  return image;
}

}  // namespace vorlane::testing
