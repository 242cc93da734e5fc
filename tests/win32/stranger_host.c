/*
 * A host that knows nothing of the libraries but their file names, the names they export and what
 * the arguments are on the stack. Calls every export at every alignment that a stack can have,
 * checks what comes back, and that each callee removes exactly the arguments that are its to
 * remove.
 *
 *   stranger_host IMGBUF_DLL VORLANEPIC_DLL REFUSAL
 *
 * REFUSAL is the status with which the image library refuses a record.
 */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

#include "stack_call.h"
#include "stranger_pages.h"

static int failures = 0;

static void Expect(int truth, const char* what, int line) {
  if (truth) return;
  ++failures;
  printf("line %d: not so: %s\n", line, what);
}
#define EXPECT(truth) Expect((truth) != 0, #truth, __LINE__)

static HMODULE imageLibrary;
static HMODULE pageLibrary;
static uint32_t refusal;
static uint32_t slack; /* of every call, in bytes */

enum Convention { CALLEE_CLEANS, CALLER_CLEANS };

static void* Find(HMODULE library, const char* name) {
  void* function = (void*)(INT_PTR)GetProcAddress(library, name);
  if (function == NULL) {
    printf("no export %s\n", name);
    exit(1);
  }
  return function;
}

static StackCall Call(HMODULE library, enum Convention convention, const char* name,
                      const void* words, uint32_t bytes, int real) {
  StackCall call;
  memset(&call, 0, sizeof call);
  call.function = Find(library, name);
  call.words = words;
  call.count = bytes / 4;
  call.slack = slack;
  call.realExpected = (uint32_t)real;
  MakeStackCall(&call);
  if (call.after != call.before - (convention == CALLER_CLEANS ? bytes : 0)) {
    ++failures;
    printf("%s moved the stack pointer by %d with %u bytes of arguments\n", name,
           (int)(call.after - call.before), bytes);
  }
  if (call.keptRegisters != 0) {
    ++failures;
    printf("%s did not preserve esi and edi\n", name);
  }
  return call;
}

/* Arguments are listed as words; the braces make the array, its size the argument bytes. */
#define WORDS(...) (const uint32_t[]){__VA_ARGS__}, sizeof((const uint32_t[]){__VA_ARGS__})
#define AT(pointer) ((uint32_t)(UINT_PTR)(pointer))
#define PAGES(name, ...) (Call(pageLibrary, CALLEE_CLEANS, name, WORDS(__VA_ARGS__), 0).result)
#define MARKS(name, ...) ((int)Call(pageLibrary, CALLER_CLEANS, name, WORDS(__VA_ARGS__), 0).result)
#define IMAGES(name, ...) (Call(imageLibrary, CALLEE_CLEANS, name, WORDS(__VA_ARGS__), 0).result)

/* Records as words: pointers and int32 fields in their order. */
enum { IMAGE_WIDTH, IMAGE_HEIGHT, IMAGE_DEPTH, IMAGE_BYTES, IMAGE_LINE, IMAGE_ROWS, IMAGE_PIXELS };
typedef struct {
  uint32_t word[7];
} Image;
enum { DIB_FILE, DIB_INFO, DIB_RESERVED, DIB_BITS };
typedef struct {
  uint32_t word[4];
} Dib;

static Image AroundScan(const Scan* scan) {
  Image image = {{(uint32_t)scan->width, (uint32_t)scan->height, (uint32_t)scan->bitsPerPixel,
                  (uint32_t)(scan->lineBytes * scan->height), (uint32_t)scan->lineBytes,
                  AT(scan->rows), AT(scan->pixels)}};
  return image;
}

/* Size, depth and every whole byte of each row; what stands behind the last pixel is open. */
static int SamePixels(const Image* a, const Image* b) {
  uint32_t y;
  if (memcmp(a->word, b->word, 20) != 0) return 0;
  for (y = 0; y < a->word[IMAGE_HEIGHT]; ++y) {
    const void* rowA = ((void**)(UINT_PTR)a->word[IMAGE_ROWS])[y];
    const void* rowB = ((void**)(UINT_PTR)b->word[IMAGE_ROWS])[y];
    if (memcmp(rowA, rowB, a->word[IMAGE_WIDTH] * a->word[IMAGE_DEPTH] / 8) != 0) return 0;
  }
  return 1;
}

static Dib AroundBitmap(const Bitmap* bitmap) {
  Dib dib = {{AT(bitmap->fileHeader), AT(bitmap->infoHeader), 0, AT(bitmap->bits)}};
  return dib;
}

/* The 64-byte parameter record, word by word; doubles take two, the lower half first. */
typedef struct {
  uint32_t word[16];
} Param;

static void PutReal(Param* param, int at, double value) { memcpy(&param->word[at], &value, 8); }

static Param MethodParam(uint32_t method) {
  Param param = {{0, 0, method, 2, 8, 5}};
  PutReal(&param, 6, 3.5);
  PutReal(&param, 8, 2.0);
  param.word[10] = 10;
  param.word[11] = 3;
  param.word[12] = 5;
  param.word[13] = 8;
  PutReal(&param, 14, 2.0);
  return param;
}

#define SPREAD(p)                                                                            \
  (p).word[0], (p).word[1], (p).word[2], (p).word[3], (p).word[4], (p).word[5], (p).word[6], \
      (p).word[7], (p).word[8], (p).word[9], (p).word[10], (p).word[11], (p).word[12],       \
      (p).word[13], (p).word[14], (p).word[15]

static int Near(double value, double expected, double tolerance) {
  return fabs(value - expected) <= tolerance;
}

static int Read32(const uint8_t* from) {
  int32_t value;
  memcpy(&value, from, 4);
  return value;
}

static void StraightensARawBuffer(const char* name, int takesThreshold) {
  Scan scan = DrawScan(8, 3);
  int32_t width = scan.width;
  int32_t height = scan.height;
  const uint32_t result = takesThreshold
                              ? PAGES(name, AT(scan.pixels), AT(&width), AT(&height), 8, 2, 0)
                              : PAGES(name, AT(scan.pixels), AT(&width), AT(&height), 8, 2);
  EXPECT(result == 1);
  EXPECT(Near(width, PAGE_WIDTH, 8) && Near(height, PAGE_HEIGHT, 8));
  EXPECT(scan.pixels[(width + 3) / 4 * 4 * (height / 2) + width / 2] == 230);
  FreeScan(&scan);
}

/* An answer does not depend on how the call was made: every pass gives the first one's angle. */
static double FirstAngle(int depth, uint32_t mode, double angle) {
  static double first[32][4];
  if (first[depth][mode] == 0) first[depth][mode] = angle;
  return first[depth][mode];
}

static void StraightensAnImage(int depth, uint32_t mode) {
  Scan scan = DrawScan(depth, 3);
  const Image source = AroundScan(&scan);
  Image result = {{0}};
  Image same = {{0}};
  double angle = -1;
  EXPECT(PAGES("ImageVorlaneEx", AT(&source), mode, 0, 0, AT(&angle), AT(&result)) == 0);
  EXPECT(Near(angle, (360 - 3) * 3.14159265 / 180, 0.005));
  EXPECT(angle == FirstAngle(depth, mode, angle));
  EXPECT(Near(result.word[IMAGE_WIDTH], PAGE_WIDTH, 8));
  EXPECT(Near(result.word[IMAGE_HEIGHT], PAGE_HEIGHT, 8));
  EXPECT(result.word[IMAGE_DEPTH] == (uint32_t)depth);
  EXPECT(PAGES("ImageVorlane", AT(&source), mode, 0, 0, AT(&same)) == 0);
  EXPECT(SamePixels(&result, &same));
  EXPECT(IMAGES("Imgbuf_Check", AT(&result)) == 0);
  EXPECT(IMAGES("Imgbuf_Destory", AT(&result)) == 0);
  EXPECT(IMAGES("Imgbuf_Destory", AT(&same)) == 0);

  EXPECT(PAGES("ImageVorlaneEx", AT(&source), mode, 256, 0, AT(&angle), AT(&result)) == 1);
  EXPECT(PAGES("ImageVorlane", AT(&source), mode, 0, 0, 0) == 1);
  result.word[IMAGE_PIXELS] = 0; /* whatever the release left */
  EXPECT(PAGES("ImageVorlane", AT(&result), mode, 0, 0, AT(&same)) == refusal);
  FreeScan(&scan);
}

static const uint8_t kFill[3] = {0, 0, 0};

/* Methods 1 and 3 answer in radians, method 2 in degrees. */
static double AngleOfMethod(uint32_t method) {
  return method == 2 ? 360 - 3 : (360 - 3) * 3.14159265 / 180;
}

static void DeskewsWithMethod(uint32_t method) {
  Scan scan = DrawScan(8, 3);
  const Image source = AroundScan(&scan);
  Bitmap bitmap = ToBitmap(&scan);
  const Dib dib = AroundBitmap(&bitmap);
  const Param param = MethodParam(method);
  const Dib empty = {{0}};
  Param bad = param;
  Image image = {{0}};
  Dib made = {{0}};
  double angle = -1;
  double again = -1;
  EXPECT(PAGES("ImageDeskewCropEx", AT(&source), 2, 80, 0, 0, AT(kFill), AT(&angle), AT(&image),
               SPREAD(param), 1) == 0);
  EXPECT(Near(angle, AngleOfMethod(method), method == 2 ? 0.3 : 0.005));
  EXPECT(Near(image.word[IMAGE_WIDTH], PAGE_WIDTH, 8));
  EXPECT(IMAGES("Imgbuf_Destory", AT(&image)) == 0);

  EXPECT(PAGES("ImageDeskewCrop", AT(&dib), 2, 80, 0, 0, AT(kFill), AT(&again), AT(&made),
               SPREAD(param), 1) == 0);
  if (made.word[DIB_INFO] != 0) {
    const uint8_t* info = (const uint8_t*)(UINT_PTR)made.word[DIB_INFO];
    EXPECT(Near(Read32(info + 4), PAGE_WIDTH, 8) && Near(Read32(info + 8), PAGE_HEIGHT, 8));
    EXPECT(IMAGES("ImgbufCheck", AT(&made)) == 0);
  }
  angle = -1;
  EXPECT(PAGES("ImageDeskewAngle", AT(&dib), 80, AT(&angle), SPREAD(param)) == 0);
  EXPECT(angle == again);

  bad.word[4] = 21; /* ToLineDistance */
  EXPECT(PAGES("ImageDeskewCropEx", AT(&source), 2, 80, 0, 0, AT(kFill), AT(&angle), AT(&image),
               SPREAD(bad), 1) == 1);
  EXPECT(PAGES("ImageDeskewCrop", AT(&empty), 2, 80, 0, 0, AT(kFill), AT(&angle), AT(&made),
               SPREAD(bad), 1) == refusal);
  EXPECT(PAGES("ImageDeskewAngle", AT(&empty), 80, AT(&angle), SPREAD(bad)) == refusal);
  FreeBitmap(&bitmap);
  FreeScan(&scan);
}

static void FollowsTheBarOfAForm(void) {
  Scan scan = DrawForm(8, 1.5);
  Bitmap bitmap = ToBitmap(&scan);
  const Dib dib = AroundBitmap(&bitmap);
  const Param param = MethodParam(2);
  Dib made = {{0}};
  double degrees = 0;
  double radians = 0;
  double grey = 0;
  EXPECT(PAGES("ImageDeskewCropWithLine", AT(&dib), 2, 100, 0, 0, AT(kFill), AT(&degrees),
               AT(&made), SPREAD(param), 11, 22, 33, 44, 1) == 0);
  EXPECT(Near(degrees, 1.5, 0.1));
  EXPECT(made.word[DIB_BITS] != 0);
  EXPECT(MARKS("GetAngleOMR", AT(&dib), 100, 600, 4, 20, AT(&radians)) == 0);
  EXPECT(radians * 57.29577951308232 == degrees);
  /* 900 pixels need no padding, so the scan is the grey buffer. */
  EXPECT(MARKS("get_angle_omr", AT(scan.pixels), SCAN_HEIGHT, SCAN_WIDTH, 100, 600, 4, 20,
               AT(&grey)) == 0);
  EXPECT(grey == radians);
  EXPECT(MARKS("get_angle_omr", AT(scan.pixels), SCAN_HEIGHT, SCAN_WIDTH, 100, 900, 4, 20,
               AT(&grey)) == -1);
  FreeBitmap(&bitmap);
  FreeScan(&scan);
}

/* A block record is 84 bytes; these are the places of some of its words. */
enum { BLOCK_AREA = 0, BLOCK_CENTER_X = 1, BLOCK_WIDTH = 3, BLOCK_STATE = 9, BLOCK_ROOT = 15 };
enum { BLOCK_WORDS = 21, BLOCK_POINT_COUNT = 18, BLOCK_POINTS = 20 };

static const uint32_t* Block(const uint32_t* set, int i) {
  return (const uint32_t*)(UINT_PTR)set[0] + i * BLOCK_WORDS;
}

static void MarksBlocks(const char* name, uint8_t paper, uint8_t ink) {
  uint8_t image[10 * 30];
  const uint32_t rect[4] = {0, 0, 30, 10};
  uint8_t param[8] = {0};
  uint32_t set[4] = {0};
  param[6] = 100; /* the threshold, behind three 16-bit fields */
  memset(image, paper, sizeof image);
  memset(image + 30 * 2 + 20, ink, 4);
  memset(image + 30 * 3 + 20, ink, 4);
  image[30 * 6 + 5] = ink;
  EXPECT(MARKS(name, AT(image), 10, 30, AT(param), AT(rect), AT(set)) == 0);
  EXPECT(set[2] == 2);
  if (set[2] == 2) {
    EXPECT(Block(set, 0)[BLOCK_AREA] == 8 && Block(set, 0)[BLOCK_WIDTH] == 4);
    EXPECT(Block(set, 0)[BLOCK_STATE] == 2 && Block(set, 0)[BLOCK_POINT_COUNT] == 8);
    EXPECT(*(const uint32_t*)(UINT_PTR)Block(set, 0)[BLOCK_POINTS] == (2u << 16 | 20u));
    EXPECT(Block(set, 1)[BLOCK_AREA] == 1 && Block(set, 1)[BLOCK_CENTER_X] == 5);
  }
  EXPECT(MARKS("DestoryBlockSetRec", AT(set)) == 0);
  EXPECT(set[0] == 0 && set[2] == 0);
  EXPECT(MARKS(name, 0, 10, 30, AT(param), AT(rect), AT(set)) == 1);
}

static void LabelsBlocks(const char* name, int takesArea) {
  uint8_t image[9 * 50] = {0};
  const uint32_t area[4] = {0, 5, 0, 49}; /* rows 0..5, and one more row */
  uint32_t set[4] = {0};
  image[50 * 1 + 40] = 1;
  image[50 * 4 + 10] = 1;
  image[50 * 8 + 25] = 1;
  EXPECT((takesArea ? MARKS(name, AT(image), 9, 50, AT(area), AT(set))
                    : MARKS(name, AT(image), 9, 50, AT(set))) == 1);
  EXPECT(set[2] == (takesArea ? 2u : 3u));
  if (set[2] >= 2) {
    EXPECT(Block(set, 0)[BLOCK_CENTER_X] == 10 && Block(set, 0)[BLOCK_ROOT] == 1);
    EXPECT(Block(set, 1)[BLOCK_CENTER_X] == (takesArea ? 40u : 25u));
    /* A box of one pixel shares one column and one row with itself. */
    EXPECT(Near(Call(pageLibrary, CALLER_CLEANS, "block_distance",
                     WORDS(AT(Block(set, 0)), AT(Block(set, 0))), 1)
                    .real,
                sqrt(2.0), 1e-15));
  }
  EXPECT(MARKS("DestoryBlockSetRec", AT(set)) == 0);
}

static void MeasuresRanges(void) {
  EXPECT(MARKS("overlap_len", 0, 9, 5, 20) == 5);
  EXPECT(MARKS("overlap_len", 0, 4, 5, 9) == 0);
  EXPECT(MARKS("DestoryBlockSetRec", 0) == 1);
}

static void MakesImages(void) {
  Image image = {{0}};
  Dib dib = {{0}};
  EXPECT(IMAGES("Imgbuf_New", AT(&image), 13, 7, 24, 0) == 0);
  EXPECT(image.word[IMAGE_WIDTH] == 13 && image.word[IMAGE_HEIGHT] == 7);
  EXPECT(image.word[IMAGE_LINE] == 40 && image.word[IMAGE_BYTES] == 280);
  EXPECT(IMAGES("Imgbuf_Destory", AT(&image)) == 0);
  EXPECT(IMAGES("Imgbuf_Check", 0) == refusal);
  EXPECT(IMAGES("ImgbufNew", AT(&dib), 13, 7, 8) == 0);
  EXPECT(IMAGES("ImgbufCheck", AT(&dib)) == 0);
}

/* The fixed part of the version resource carries its mark and the file's version. */
static void TellsItsVersion(HMODULE library) {
  HRSRC found = FindResourceA(library, MAKEINTRESOURCEA(1), (LPCSTR)RT_VERSION);
  const uint8_t* data = found != NULL ? LockResource(LoadResource(library, found)) : NULL;
  EXPECT(data != NULL);
  if (data == NULL) return;
  EXPECT((uint32_t)Read32(data + 40) == 0xFEEF04BDu);
  EXPECT(Read32(data + 48) >> 16 >= 1);
}

static void MakeEveryCall(void) {
  MakesImages();
  StraightensARawBuffer("VorlanePic", 1);
  StraightensARawBuffer("VorlanePicEx", 0);
  for (uint32_t mode = 1; mode <= 3; ++mode) {
    StraightensAnImage(1, mode);
    StraightensAnImage(8, mode);
    StraightensAnImage(24, mode);
    DeskewsWithMethod(mode);
  }
  FollowsTheBarOfAForm();
  MarksBlocks("ImageBlockMarkHorEx", 200, 100);
  MarksBlocks("BWBlockMarkHorEx", 0, 7);
  LabelsBlocks("bw_label_center", 0);
  LabelsBlocks("bw_label_left", 0);
  LabelsBlocks("bw_label_center_area", 1);
  LabelsBlocks("bw_label_left_area", 1);
  MeasuresRanges();
}

/* On a thread of its own, with the x87 unit rounding to 24 bits, as graphics libraries leave it. */
static DWORD WINAPI OnAnotherThread(LPVOID unused) {
  const uint16_t shortRounding = 0x007F;
  (void)unused;
  __asm__ volatile("fldcw %0" : : "m"(shortRounding));
  MakeEveryCall();
  return 0;
}

int main(int argc, char** argv) {
  HANDLE thread;
  if (argc != 4) return 2;
  imageLibrary = LoadLibraryA(argv[1]);
  pageLibrary = LoadLibraryA(argv[2]);
  refusal = (uint32_t)atoi(argv[3]);
  if (imageLibrary == NULL || pageLibrary == NULL) {
    printf("cannot load the libraries: error %lu\n", GetLastError());
    return 1;
  }
  TellsItsVersion(pageLibrary);
  for (slack = 0; slack < 16; slack += 4) MakeEveryCall();
  slack = 4;
  thread = CreateThread(NULL, 0, OnAnotherThread, NULL, 0, NULL);
  EXPECT(thread != NULL && WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0);
  EXPECT(FreeLibrary(pageLibrary));
  EXPECT(FreeLibrary(imageLibrary));
  printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
