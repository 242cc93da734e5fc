/*
 * Straightens a page: finds it on the dark scanner background, turns it upright and cuts it out.
 *
 *   straighten_page [IN.pgm OUT.pgm]
 *
 * Reads and writes grey pictures (binary PGM). Without arguments it takes a scan that it draws
 * itself and writes nothing.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <vorlanepic/vorlanepic.h>

/* A record around pixels of our own: the row table and the pixels are ours to release. */
static int MakeScan(ImageRec* scan, int32_t width, int32_t height) {
  memset(scan, 0, sizeof *scan);
  scan->width = width;
  scan->height = height;
  scan->bitsPerPixel = 8;
  scan->lineBytes = (width + 3) / 4 * 4;
  scan->imageBytes = scan->lineBytes * height;
  scan->pixels = calloc((size_t)scan->imageBytes, 1);
  scan->rows = malloc((size_t)height * sizeof *scan->rows);
  if (scan->pixels == NULL || scan->rows == NULL) return 0;
  for (int32_t y = 0; y < height; ++y) scan->rows[y] = scan->pixels + y * scan->lineBytes;
  return 1;
}

static void FreeScan(ImageRec* scan) {
  free(scan->rows);
  free(scan->pixels);
}

static double Magnitude(double value) { return value < 0 ? -value : value; }

/* A light page of 280 x 360 pixels, turned clockwise by 3 degrees, on a dark background. */
static int DrawScan(ImageRec* scan) {
  if (!MakeScan(scan, 400, 500)) return 0;
  const double cosine = 0.99862953; /* of 3 degrees */
  const double sine = 0.05233596;
  for (int32_t y = 0; y < scan->height; ++y) {
    for (int32_t x = 0; x < scan->width; ++x) {
      const double right = (x - 200) * cosine + (y - 250) * sine;
      const double down = (y - 250) * cosine - (x - 200) * sine;
      scan->rows[y][x] = Magnitude(right) <= 140 && Magnitude(down) <= 180 ? 230 : 20;
    }
  }
  return 1;
}

static int ReadScan(const char* path, ImageRec* scan) {
  FILE* file = fopen(path, "rb");
  if (file == NULL) return 0;
  int width = 0;
  int height = 0;
  int done = fscanf(file, "P5 %d %d 255", &width, &height) == 2 && fgetc(file) != EOF &&
             width > 0 && height > 0 && width <= 100000 && height <= 20000 &&
             MakeScan(scan, width, height);
  for (int32_t y = 0; done && y < height; ++y) {
    done = fread(scan->rows[y], 1, (size_t)width, file) == (size_t)width;
  }
  fclose(file);
  return done;
}

static int WritePage(const char* path, const ImageRec* page) {
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  fprintf(file, "P5\n%d %d\n255\n", (int)page->width, (int)page->height);
  for (int32_t y = 0; y < page->height; ++y) {
    fwrite(page->rows[y], 1, (size_t)page->width, file);
  }
  return fclose(file) == 0;
}

static const char* Reason(int32_t status) {
  switch (status) {
    case BAD_ARGUMENT:
      return "an argument is out of range";
    case OUT_OF_MEMORY:
      return "out of memory";
    case BORDER_NOT_FOUND:
      return "no page on a darker background";
    case ANGLE_NOT_FOUND:
      return "no border is straight enough to give an angle";
    case EDGE_NOT_FOUND:
      return "an edge of the page is too ragged or missing";
    default:
      return "the image library refused";
  }
}

/* Degrees clockwise from -180 up to 180, from radians from 0 up to 2 pi. */
static double SignedDegrees(double radians) {
  const double degrees = radians * 180 / 3.14159265358979;
  return degrees < 180 ? degrees : degrees - 360;
}

int main(int argc, char** argv) {
  if (argc != 1 && argc != 3) {
    fprintf(stderr, "usage: straighten_page [IN.pgm OUT.pgm]\n");
    return 2;
  }
  ImageRec scan = {0};
  int done = argc == 3 ? ReadScan(argv[1], &scan) : DrawScan(&scan);
  if (!done) {
    fprintf(stderr, "cannot read the scan\n");
    FreeScan(&scan);
    return 1;
  }

  double angle = 0;
  ImageRec page = {0}; /* empty: the library fills it on success */
  const int32_t status =
      ImageVorlaneEx(&scan, INTERP_BICUBIC, 0 /* threshold: estimate it */, 0, &angle, &page);
  if (status == STATUS_OK) {
    printf("a page of %d x %d pixels, turned by %.2f degrees\n", (int)page.width, (int)page.height,
           SignedDegrees(angle));
    done = argc != 3 || WritePage(argv[2], &page);
    Imgbuf_Destory(&page); /* what the library made goes back to the image library */
  } else {
    fprintf(stderr, "not straightened: %s (status %d)\n", Reason(status), (int)status);
    done = 0;
  }
  FreeScan(&scan);
  return done ? 0 : 1;
}
