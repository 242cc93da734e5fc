/*
 * Finds how a page lies in its picture, says what was found, and writes the upright page.
 *
 *   detect_page [IN.pnm OUT.pnm]
 *
 * Reads and writes binary PBM, PGM and PPM files: P4, P5 and P6, the latter two of 255 levels.
 * Without arguments it takes a scan that it draws itself and writes nothing.
 */
#include <stdio.h>
#include <stdlib.h>

#include <vorlane/vorlane.h>

/* Room for a picture: rows one behind the other, none of them padded. */
static uint8_t* NewPixels(int32_t format, int32_t width, int32_t height) {
  return malloc(vorlane_row_bytes(format, width) * (size_t)height);
}

static double Magnitude(double value) { return value < 0 ? -value : value; }

/* A light page of 280 x 360 pixels, turned clockwise by 3 degrees, on a dark background. */
static uint8_t* DrawScan(vorlane_image* scan) {
  scan->width = 400;
  scan->height = 500;
  scan->stride = 400;
  scan->format = VORLANE_GREY8;
  uint8_t* pixels = NewPixels(VORLANE_GREY8, scan->width, scan->height);
  const double cosine = 0.99862953; /* of 3 degrees */
  const double sine = 0.05233596;
  for (int32_t i = 0; pixels != NULL && i < scan->width * scan->height; ++i) {
    const int32_t row = i / scan->width;
    const double x = i % scan->width - 199.5;
    const double y = row - 249.5;
    const double right = x * cosine + y * sine;
    const double down = y * cosine - x * sine;
    pixels[i] = Magnitude(right) <= 140 && Magnitude(down) <= 180 ? 230 : 20;
  }
  scan->pixels = pixels;
  return pixels;
}

/* The pixels are the caller's to free; null when the file cannot be read. */
static uint8_t* ReadScan(const char* path, vorlane_image* scan) {
  static const int32_t kFormats[] = {VORLANE_BIT_DARK, VORLANE_GREY8, VORLANE_RGB24};
  FILE* file = fopen(path, "rb");
  if (file == NULL) return NULL;
  int kind = 0;
  int width = 0;
  int height = 0;
  int levels = 255;
  uint8_t* pixels = NULL;
  if (fscanf(file, "P%1d %d %d", &kind, &width, &height) == 3 && kind >= 4 && kind <= 6 &&
      (kind == 4 || fscanf(file, "%d", &levels) == 1) && levels == 255 && fgetc(file) != EOF &&
      width > 0 && height > 0 && width <= VORLANE_MAX_EDGE && height <= VORLANE_MAX_EDGE) {
    scan->format = kFormats[kind - 4];
    scan->width = width;
    scan->height = height;
    scan->stride = (ptrdiff_t)vorlane_row_bytes(scan->format, width);
    pixels = NewPixels(scan->format, width, height);
  }
  if (pixels != NULL &&
      fread(pixels, (size_t)scan->stride, (size_t)height, file) != (size_t)height) {
    free(pixels);
    pixels = NULL;
  }
  fclose(file);
  scan->pixels = pixels;
  return pixels;
}

static int WritePage(const char* path, int32_t format, const vorlane_result* page) {
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  const int kind = format == VORLANE_BIT_DARK ? 4 : format == VORLANE_GREY8 ? 5 : 6;
  fprintf(file, "P%d\n%d %d\n%s", kind, (int)page->width, (int)page->height,
          kind == 4 ? "" : "255\n");
  fwrite(page->pixels, (size_t)page->stride, (size_t)page->height, file);
  const int done = !ferror(file);
  return fclose(file) == 0 && done;
}

static void PrintFinding(const vorlane_finding* finding) {
  printf("turn %.2f degrees: %s; cut: %s\n", finding->turn,
         vorlane_confidence_name(finding->turn_confidence),
         vorlane_confidence_name(finding->cut_confidence));
  for (int i = 0; i < VORLANE_EVIDENCE_KINDS; ++i) {
    if ((finding->by & 1u << i) != 0) printf("  by %s\n", vorlane_evidence_name(i));
  }
  for (int i = 0; i < finding->reason_count; ++i) {
    printf("  because %s\n", vorlane_reason_text(finding->reasons[i].code));
  }
}

/* The upright page in memory of its own; the caller frees page->pixels. */
static vorlane_status MakePage(vorlane_context* context, const vorlane_image* scan,
                               const vorlane_finding* finding, vorlane_result* page) {
  vorlane_status status = vorlane_result_size(scan, finding, NULL, &page->width, &page->height);
  if (status != VORLANE_OK) return status;
  page->stride = (ptrdiff_t)vorlane_row_bytes(scan->format, page->width);
  page->pixels = NewPixels(scan->format, page->width, page->height);
  if (page->pixels == NULL) return VORLANE_NO_MEMORY;
  return vorlane_apply(context, scan, finding, NULL, page);
}

static vorlane_status Straighten(const vorlane_image* scan, vorlane_result* page) {
  vorlane_context* context = NULL;
  vorlane_status status = vorlane_context_new(&context);
  if (status != VORLANE_OK) return status;
  vorlane_finding finding;
  vorlane_finding_init(&finding, sizeof finding);
  status = vorlane_detect(context, scan, NULL /* default options */, &finding);
  if (status == VORLANE_OK) {
    PrintFinding(&finding);
    status = MakePage(context, scan, &finding, page);
  }
  vorlane_context_free(context);
  return status;
}

int main(int argc, char** argv) {
  if (argc != 1 && argc != 3) {
    fprintf(stderr, "usage: detect_page [IN.pnm OUT.pnm]\n");
    return 2;
  }
  vorlane_image scan;
  uint8_t* pixels = argc == 3 ? ReadScan(argv[1], &scan) : DrawScan(&scan);
  if (pixels == NULL) {
    fprintf(stderr, "cannot read the scan\n");
    return 1;
  }
  vorlane_result page = {0};
  const vorlane_status status = Straighten(&scan, &page);
  int done = status == VORLANE_OK;
  if (done) {
    printf("a page of %d x %d pixels\n", (int)page.width, (int)page.height);
    done = argc != 3 || WritePage(argv[2], scan.format, &page);
  } else {
    fprintf(stderr, "left as it is: %s\n", vorlane_status_text(status));
  }
  free(page.pixels);
  free(pixels);
  return done ? 0 : 1;
}
