#include "file_straighteners.h"

#include <vector>

#include "app/files/errors.h"
#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"
#include "frame/scratch.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::bench {
namespace {

namespace files = vorlane::files;

void Write(const std::string& to, const ImageRec& image, const files::Page& page) {
  std::vector<std::string> notes;
  const files::FileFormat format = files::FormatOfName(to).value();
  files::PictureWriter writer(to, format, files::Replacing::kAllowed,
                              files::Durability::kLeftToSystem);
  writer.Add(files::EncodePage(format, image, page, {}, &notes));
  writer.Commit();
}

}  // namespace

bool StraightenFile(const std::string& from, const std::string& to) try {
  const files::Page page = files::PictureFile(from).Read(1);
  double angle = 0;
  frame::ScratchImage upright;
  const int32_t status =
      ImageVorlaneEx(page.image.rec(), INTERP_BICUBIC, 0, 0, &angle, upright.rec());
  if (status != STATUS_OK) return false;
  Write(to, *upright.rec(), page);
  return true;
} catch (const files::FileError&) {
  return false;
}

bool CopyByOurCodecs(const std::string& from, const std::string& to) try {
  const files::Page page = files::PictureFile(from).Read(1);
  Write(to, *page.image.rec(), page);
  return true;
} catch (const files::FileError&) {
  return false;
}

}  // namespace vorlanepic::bench
