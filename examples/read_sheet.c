/*
 * Reads a mark sheet: straightens it by its printed bar and lists the marks on it from left to
 * right.
 *
 *   read_sheet [PROFILE.ini]
 *
 * The sheet is a device-independent image that the program draws itself. With a profile the limits
 * of the bar and of the cut come from its section ImageDeskewLine.
 */
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <vorlanepic/vorlanepic.h>

enum { WIDTH = 1200, HEIGHT = 900, DARK = 100 /* marks and the bar are at or below this level */ };

static int32_t Read32(const uint8_t* from) {
  int32_t value;
  memcpy(&value, from, sizeof value);
  return value;
}

static double Magnitude(double value) { return value < 0 ? -value : value; }

/* The grey level of the sheet at `right` and `down` of its centre: a bar and three marks. */
static uint8_t SheetLevel(double right, double down) {
  static const double kMarks[3][2] = {{250, 100}, {-200, 0}, {40, 200}};
  if (Magnitude(right) > 500 || Magnitude(down) > 350) return 20; /* the scanner's background */
  if (Magnitude(right) <= 350 && Magnitude(down + 250) <= 5) return 30;
  for (int i = 0; i < 3; ++i) {
    if (Magnitude(right - kMarks[i][0]) <= 15 && Magnitude(down - kMarks[i][1]) <= 8) return 30;
  }
  return 235;
}

/* The sheet turned clockwise by 1.5 degrees. Rows of such an image run from the bottom up. */
static int32_t DrawSheet(DibRec* sheet) {
  const int32_t status = ImgbufNew(sheet, WIDTH, HEIGHT, 8);
  if (status != 0) return status;
  const double cosine = 0.99965732; /* of 1.5 degrees */
  const double sine = 0.02617695;
  for (int32_t y = 0; y < HEIGHT; ++y) {
    uint8_t* row = sheet->bits + (ptrdiff_t)(HEIGHT - 1 - y) * WIDTH; /* a multiple of 4 */
    for (int32_t x = 0; x < WIDTH; ++x) {
      const double fromLeft = x - WIDTH / 2.0;
      const double fromTop = y - HEIGHT / 2.0;
      row[x] = SheetLevel(fromLeft * cosine + fromTop * sine, fromTop * cosine - fromLeft * sine);
    }
  }
  return 0;
}

/* What the line-guided deskew reads: the profile, or the three counts. */
static DeskewCropParam SheetParam(const char* profilePath) {
  DeskewCropParam param = {0};
  param.profilePath = profilePath;
  param.useProfile = profilePath != NULL ? 1 : 0;
  param.SearchLimitNum = 3;
  param.PixelNum = 5;
  param.CropPixelNum = 200;
  return param;
}

/* The block functions want one byte a pixel, top row first, without padding: 1 where it is dark. */
static uint8_t* DarkPixels(const DibRec* image, int32_t width, int32_t height) {
  const int32_t lineBytes = (width + 3) / 4 * 4;
  uint8_t* dark = malloc((size_t)width * (size_t)height);
  for (int32_t y = 0; dark != NULL && y < height; ++y) {
    const uint8_t* row = image->bits + (ptrdiff_t)(height - 1 - y) * lineBytes;
    for (int32_t x = 0; x < width; ++x) dark[(ptrdiff_t)y * width + x] = row[x] <= DARK;
  }
  return dark;
}

static int ListMarks(const DibRec* form) {
  const int32_t width = Read32(form->infoHeader + 4);
  const int32_t height = Read32(form->infoHeader + 8);
  uint8_t* dark = DarkPixels(form, width, height);
  if (dark == NULL) return 0;

  BlockSetRec set = {0}; /* zeroed before the first call */
  const int done = bw_label_left(dark, height, width, &set) == 1;
  int marks = 0;
  for (int32_t i = 0; done && i < set.count; ++i) {
    const BlockRec* block = &set.blocks[i];
    if (block->width < 25 || block->width > 40 || block->height > 25) continue; /* not a mark */
    printf("mark %d at %d, %d\n", ++marks, (int)block->centerX, (int)block->centerY);
  }
  DestoryBlockSetRec(&set); /* in every case, also when the call failed */
  free(dark);
  return done;
}

int main(int argc, char** argv) {
  DibRec sheet = {0};
  if (DrawSheet(&sheet) != 0) return 1;

  static const uint8_t kFill[3] = {255, 255, 255};
  double degrees = 0;
  DibRec form = {0};
  const int32_t status =
      ImageDeskewCropWithLine(&sheet, INTERP_BILINEAR, DARK, 0, 0, kFill, &degrees, &form,
                              SheetParam(argc > 1 ? argv[1] : NULL), 0, 0, 0, 0, 1);
  int done = status == STATUS_OK;
  if (done) {
    printf("a form turned by %.2f degrees\n", degrees);
    done = ListMarks(&form);
    ImgbufDestory(&form);
  } else {
    fprintf(stderr, "no form: status %d\n", (int)status);
  }
  ImgbufDestory(&sheet);
  return done ? 0 : 1;
}
