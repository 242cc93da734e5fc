#include "app/commands/deskew_options.h"

#include <climits>

#include "frame/profile_reader.h"

namespace vorlane::commands {
namespace {

CLI::Option* AddProfileOption(CLI::App* app, DeskewOptions* options) {
  return app
      ->add_option("--profile", options->profile,
                   "Take method and settings from this profile instead of the options below")
      ->type_name("FILE");
}

template <typename Value>
void AddSetting(CLI::App* app, CLI::Option* profile, const char* name, Value* value, Value low,
                Value high, const char* meaning) {
  app->add_option(name, *value, meaning)
      ->check(CLI::Range(low, high))
      ->capture_default_str()
      ->excludes(profile);
}

void AddContentSettings(CLI::App* app, CLI::Option* profile, DeskewCropParam* param) {
  AddSetting(app, profile, "--search-limit", &param->SearchLimitNum, 1, 10,
             "SearchLimitNum: bright lines in a row to exceed before content starts");
  AddSetting(app, profile, "--pixel-count", &param->PixelNum, 1, 20,
             "PixelNum: bright pixels to exceed in a line of the source");
  AddSetting(app, profile, "--crop-pixel-count", &param->CropPixelNum, 1, INT_MAX,
             "CropPixelNum: bright pixels to exceed in a line of the turned page");
}

}  // namespace

void AddDeskewOptions(CLI::App* app, DeskewOptions* options) {
  DeskewCropParam* param = &options->param;
  CLI::Option* profile = AddProfileOption(app, options);
  app->add_option("--method", options->method,
                  "1: four border lines; 2: vote among the borders, cut to the content; 3: lines "
                  "through the page's extreme points")
      ->check(CLI::Range(1, 3))
      ->capture_default_str()
      ->excludes(profile);
  AddSetting(app, profile, "--search-border-pixels", &param->SearchBorderPixelNum, 1, 10,
             "SearchBorderPixelNum: page pixels in a row that make a border point");
  AddSetting(app, profile, "--to-line-distance", &param->ToLineDistance, 1, 20,
             "ToLineDistance: pixels within which a border piece votes for a line (method 2)");
  AddSetting(app, profile, "--to-line-mix-distance", &param->ToLineMixDis, 1, 20,
             "ToLineMixDis: checked, without effect (methods 1 and 3)");
  AddSetting(app, profile, "--parallel", &param->parallel, 0.0, 5.0,
             "parallel: degrees within which opposite borders are parallel (method 1; method 3 "
             "checks it only)");
  AddSetting(app, profile, "--perpendicular", &param->perpendicular, 0.0, 5.0,
             "perpendicular: degrees off a right angle up to which a border lends its direction "
             "(method 1; method 3 checks it only)");
  AddSetting(app, profile, "--segment-length", &param->SegmentLen, 5, 50,
             "SegmentLen: border points in one piece of the vote (method 2)");
  AddContentSettings(app, profile, param);
  AddSetting(app, profile, "--group-angle", &param->GroupAngle, 1.0, 5.0,
             "GroupAngle: degrees between directions of one group of the vote (method 2)");
}

void AddContentOptions(CLI::App* app, DeskewOptions* options) {
  options->param.CropPixelNum = 200;
  AddContentSettings(app, AddProfileOption(app, options), &options->param);
}

DeskewCropParam ParamOf(const DeskewOptions& options) {
  DeskewCropParam param = options.param;
  param.DeskewMethod = options.method;
  if (options.profile.empty()) return param;
  param.useProfile = 1;
  param.profilePath = options.profile.c_str();
  return param;
}

int32_t MethodOf(const DeskewOptions& options) {
  int32_t method = options.method;
  if (!options.profile.empty()) {
    vorlanepic::frame::Profile profile;
    profile.Load(options.profile.c_str());
    method = profile.Int("ImageDeskew", "DeskewMethod", 2);
  }
  return method == 1 || method == 3 ? method : 2;
}

}  // namespace vorlane::commands
