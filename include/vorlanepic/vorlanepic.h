/*
 * VorlanePic: straightens and trims scanned pages.
 *
 * Four services: pruned rotation (VorlanePic ... ImageVorlaneEx), deskew and crop by parameters or
 * profile (ImageDeskewCropEx ... ImageDeskewAngle), line-guided deskew of forms
 * (ImageDeskewCropWithLine), and mark-sheet blocks and bar angle (ImageBlockMarkHorEx ...
 * get_angle_omr). This header is plain C (C99) and compiles alone in C and in C++.
 *
 * The image services keep process-wide settings between calls; calls that overlap take turns. The
 * block functions and the bar angle keep none and run at the same time, each with a set of its own.
 *
 * Calling conventions on 32-bit Windows: the image services are stdcall, the block and mark-sheet
 * functions cdecl. Elsewhere there is one convention.
 */
#ifndef VORLANEPIC_VORLANEPIC_H
#define VORLANEPIC_VORLANEPIC_H

#include <stdint.h>

#include "vorlanepic/imgbuf.h"

#if defined(_WIN32) && !defined(_WIN64)
#define VORLANEPIC_STDCALL __stdcall
#define VORLANEPIC_CDECL __cdecl
#else
#define VORLANEPIC_STDCALL
#define VORLANEPIC_CDECL
#endif

#if defined(__GNUC__) && !defined(_WIN32)
#define VORLANEPIC_API __attribute__((visibility("default")))
#else
#define VORLANEPIC_API
#endif

#if defined(__cplusplus)
#define VORLANEPIC_NOEXCEPT noexcept
extern "C" {
#else
#define VORLANEPIC_NOEXCEPT
#endif

/* What the image services return. Any other non-zero value is a code of the image library. */
enum {
  STATUS_OK = 0,
  BAD_ARGUMENT = 1,       /* a null pointer or a value out of range */
  OUT_OF_MEMORY = 2,      /* heap exhausted */
  BORDER_NOT_FOUND = 496, /* no document border, or a border geometry that is not a document */
  ANGLE_NOT_FOUND = 497,  /* a line could not be fitted, or no border gave an angle */
  EDGE_NOT_FOUND = 498    /* an edge kept no segment, or its segments scatter */
};

/* How output pixels are sampled. 1-bit images always take the nearest pixel. */
enum { INTERP_BICUBIC = 1, INTERP_BILINEAR = 2, INTERP_NEAREST = 3 };

/*
 * Pruned rotation: finds the page on the darker scanner background by its four borders, turns it
 * upright about its centre and cuts it out.
 *
 * Arguments that the four functions share:
 *   mode        INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
 *   threshold   grey level that separates background from page, 0..255; 0: estimated from the outer
 *               columns of the image, at least 80
 *   background  0: the page is what is at or above threshold; 255: what lies within 9 levels of it
 *
 * The squares of an edge's length are summed in 32 bits: an edge of more than 46340 pixels comes
 * out with a wrong length, and the result with a wrong size, under status 0. A page that lies in a
 * picture whose diagonal is at most 46340 pixels has none. This goes for methods 1 and 3, too.
 */

/*
 * Straightens the page in the caller's buffer, in place.
 *
 *   pixels        in: rows as Imgbuf_New lays them out, each padded to 4 bytes; out: the result's
 *                 rows, laid out alike. Holds the larger of the two images
 *   width, height in: the image's size in pixels; out: the result's size
 *   bitsPerPixel  1, 8 or 24
 *   threshold     not range-checked; its low 8 bits are compared with pixels
 *
 * Returns 1 when the page was processed, 0 when a stage failed (buffer and sizes are unchanged),
 * and 1 when an argument was rejected: a null pointer, neither size above 0, another depth or mode.
 * The filling outside the page is blue 255, green 0, red 0 at 24 bits and 255 below.
 *
 * Nothing tells the function how large the buffer is, and no multiple of the picture is enough for
 * all results: a picture of 230 x 299 pixels can give 181 x 2149, 5.7 times its bytes. Pictures of
 * unknown origin are safer with ImageVorlaneEx, which makes an image of its own; with the same mode
 * and threshold and background 0 its result has the same size, too.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL VorlanePic(uint8_t* pixels, int32_t* width,
                                                     int32_t* height, int32_t bitsPerPixel,
                                                     int32_t mode,
                                                     int32_t threshold) VORLANEPIC_NOEXCEPT;

/* VorlanePic with threshold 0. */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL VorlanePicEx(uint8_t* pixels, int32_t* width,
                                                       int32_t* height, int32_t bitsPerPixel,
                                                       int32_t mode) VORLANEPIC_NOEXCEPT;

/*
 * ImageVorlaneEx without the angle: straightens the page of `source` into a new image in *result.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL ImageVorlane(const ImageRec* source, int32_t mode,
                                                       int32_t threshold, int32_t background,
                                                       ImageRec* result) VORLANEPIC_NOEXCEPT;

/*
 * Straightens the page of `source` into a new image in *result.
 *
 *   source  1, 8 or 24 bits per pixel; not changed
 *   angle   receives the angle, in radians from 0 up to 2 pi, by which the page was turned
 *           clockwise; it may be written although a later stage fails
 *   result  empty on entry; on success the caller owns the new image and releases it with
 *           Imgbuf_Destory. Pixels outside the page are 0
 *
 * Returns STATUS_OK; BAD_ARGUMENT for a null pointer, a threshold outside 0..255, another mode or a
 * background other than 0 and 255; the image library's code when it refuses `source`; or the code
 * of the stage that failed.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL ImageVorlaneEx(const ImageRec* source, int32_t mode,
                                                         int32_t threshold, int32_t background,
                                                         double* angle,
                                                         ImageRec* result) VORLANEPIC_NOEXCEPT;

/*
 * What deskew and crop is told, passed by value. With useProfile 1 the settings come from the
 * profile, otherwise from the record; the method's own settings are range-checked either way.
 * Fields are read by the methods named; a value out of range makes the call return BAD_ARGUMENT.
 */
typedef struct DeskewCropParam {
  const char* profilePath; /* zero-terminated path, read once a call when useProfile is 1: a regular
                              file of at most 1 MB (2^20 bytes); all else gives the defaults */
  int32_t useProfile;      /* 1: settings from the profile; else from this record */
  int32_t DeskewMethod;    /* 1 or 3: pruned rotation; any other value: method 2, border vote */
  int32_t SearchBorderPixelNum; /* all methods, 1..10: document pixels that make a border point */
  int32_t ToLineDistance;       /* all methods, 1..20 pixels: inlier distance of the border vote */
  int32_t ToLineMixDis;         /* methods 1 and 3, 1..20: checked only */
  double parallel;              /* methods 1 and 3, 0.0..5.0 degrees: opposite edges are parallel;
                                   method 3 checks the range only */
  double perpendicular;         /* methods 1 and 3, 0.0..5.0 degrees off a right angle; method 3
                                   checks the range only */
  int32_t SegmentLen;           /* method 2, 5..50: border segments in a chunk of the vote */
  int32_t SearchLimitNum;       /* method 2, 1..10: bright lines to exceed before content starts */
  int32_t PixelNum;     /* method 2, 1..20: bright pixels to exceed in a line, source image */
  int32_t CropPixelNum; /* method 2, 1 and more: the same in the turned image */
  double GroupAngle;    /* method 2, 1.0..5.0 degrees between directions of one group */
} DeskewCropParam;

/*
 * Deskew and crop. Methods 1 and 3 run the pruned rotation; method 2 takes the skew from a vote
 * among the four borders, turns the content rectangle and crops it to its content.
 *
 * Arguments that the functions share:
 *   interpolation  INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
 *   threshold      grey level that separates background from page; 0: estimated
 *   background     not used
 *   cornerOption   method 1: every edge moves outwards by twice this many pixels, but where two
 *                  opposite edges could not be fitted and all go through the outermost points.
 *                  Methods 2 and 3 move none
 *   fill           value of pixels outside the page: 3 bytes for 24-bit images (blue, green, red),
 *                  else 1; at 1 bit the byte is written eight pixels at a time
 *   angleOut       receives the clockwise turn of the first image, with rows in memory order from
 *                  the top: radians for methods 1 and 3, degrees from 0 up to 360 for method 2
 *   imageNum       images in a set, at least 1: exposures of one page, all turned and cut with the
 *                  geometry of the first; methods 1 and 3 ask them to have its size and depth
 */

/*
 * Deskews and crops the imageNum images of `images` into new images in `outImages`.
 *
 *   outImages  imageNum empty records; the caller owns the new images and releases them with
 *              Imgbuf_Destory. On a failure of method 2 images made before it stay there for the
 *              caller to release; methods 1 and 3 leave all empty
 *
 * Returns STATUS_OK; BAD_ARGUMENT for imageNum below 1, a null array or a setting out of range; the
 * image library's code; or the code of the stage that failed.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL
ImageDeskewCropEx(const ImageRec* images, int32_t interpolation, int32_t threshold,
                  int32_t background, int32_t cornerOption, const uint8_t* fill, double* angleOut,
                  ImageRec* outImages, DeskewCropParam param, int32_t imageNum) VORLANEPIC_NOEXCEPT;

/*
 * ImageDeskewCropEx on device-independent images.
 *
 *   inImages   read in memory order, so that a page turned clockwise as seen counts as turned the
 *              other way
 *   outImages  imageNum records; the caller owns the new images, made by ImgbufNew, also those that
 *              were made before ImgbufNew failed
 *
 * Returns what ImageDeskewCropEx does; BAD_ARGUMENT also for a null outImages and a later image of
 * the set that cannot be used.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL ImageDeskewCrop(const DibRec* inImages,
                                                          int32_t interpolation, int32_t threshold,
                                                          int32_t background, int32_t cornerOption,
                                                          const uint8_t* fill, double* angleOut,
                                                          DibRec* outImages, DeskewCropParam param,
                                                          int32_t imageNum) VORLANEPIC_NOEXCEPT;

/* Measures the angle of one image as ImageDeskewCrop does, and makes no image. */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL
ImageDeskewAngle(const DibRec* inImages, int32_t threshold, double* angleOut,
                 DeskewCropParam param) VORLANEPIC_NOEXCEPT;

/*
 * Straightens and crops a form by the angle of its reference bar instead of the page's borders.
 *
 *   threshold      grey level, 0..255: the bar is at or below it, paper above it
 *   angleOut       receives the angle in degrees, positive where the bar descends to the right
 *   param          only profilePath, useProfile, SearchLimitNum, PixelNum and CropPixelNum are
 *                  read, and not range-checked. Without a profile the bar is at least 600 pixels
 *                  long and 4..20 thick at 200 dots per inch; the limits are scaled to the image's
 *                  resolution
 *   outImages      as ImageDeskewCrop takes it
 *   background, cornerOption, spare1..spare4  not read
 *
 * Returns STATUS_OK; -1 when no bar gives an angle, and when memory runs out while it is looked
 * for; or a code as ImageDeskewCrop does.
 */
VORLANEPIC_API int32_t VORLANEPIC_STDCALL ImageDeskewCropWithLine(
    const DibRec* inImages, int32_t interpolation, int32_t threshold, int32_t background,
    int32_t cornerOption, const uint8_t* fill, double* angleOut, DibRec* outImages,
    DeskewCropParam param, int32_t spare1, int32_t spare2, int32_t spare3, int32_t spare4,
    int32_t imageNum) VORLANEPIC_NOEXCEPT;

/* One pixel of a block. */
typedef struct BlockPoint {
  uint16_t x;
  uint16_t y;
} BlockPoint;

/* States of a BlockRec. Blocks that a successful call hands back are finished. */
enum { BLOCK_GROWING = 1, BLOCK_FINISHED = 2, BLOCK_MERGED = 3 };

/*
 * One block: pixels that touch each other, diagonals included. All coordinates are inclusive.
 *
 * The coordinates of its pixels are summed in 32 bits: once the sum of all x, or of all y, passes
 * 2^31 - 1 the centre is wrong. It is right where area times right, and area times bottom, stay
 * below 2^31; for larger blocks take the mean of the points. Points hold 16 bits of each
 * coordinate.
 */
typedef struct BlockRec {
  int32_t area;    /* pixels */
  int32_t centerX; /* mean x, truncated (the sum of x while the block grows) */
  int32_t centerY; /* mean y, truncated (the sum of y while the block grows) */
  int32_t width;   /* right - left + 1; 0 while the block grows */
  int32_t left;
  int32_t right;
  int32_t height; /* bottom - top + 1; 0 while the block grows */
  int32_t bottom;
  int32_t top;
  int32_t state;         /* BLOCK_GROWING, BLOCK_FINISHED or BLOCK_MERGED */
  int32_t reserved1;     /* -1 */
  int32_t reserved2;     /* -1 */
  int32_t childCount;    /* blocks merged into this one, while marking; 0 when handed back */
  int32_t childCapacity; /* likewise */
  int32_t* children;     /* likewise */
  int32_t root;          /* index of the block this one belongs to; its own when handed back */
  uint32_t minValue;     /* smallest pixel value */
  uint32_t maxValue;     /* largest pixel value */
  int32_t pointCount;    /* equals area when handed back */
  int32_t pointCapacity; /* what the list counted up to; memory is for pointCount */
  BlockPoint* points;    /* every pixel of the block */
} BlockRec;

/*
 * A set of blocks. The caller zeroes it before first use and owns it; DestoryBlockSetRec releases
 * it, also after a failed call. A set that holds blocks keeps them in front of those added.
 */
typedef struct BlockSetRec {
  BlockRec* blocks;
  int32_t capacity; /* records allocated */
  int32_t count;    /* records in use */
  int32_t reserved; /* 0 */
} BlockSetRec;

/* How rows are cut into runs. */
typedef struct BlockMarkParam {
  int16_t minRunLen; /* shortest and longest run kept, in pixels; */
  int16_t maxRunLen; /* tested only when both are non-zero */
  int16_t joinGap;   /* runs whose start is at most this far behind the last end join; 0: never */
  uint8_t threshold; /* ImageBlockMarkHorEx: pixels at or below it are marked */
} BlockMarkParam;

/*
 * The rectangle that is searched: columns x .. x + w and rows y .. y + h, cut to the image.
 * Negative w and h extend it to the left and upwards.
 */
typedef struct BlockRect {
  int32_t x;
  int32_t y;
  int32_t w;
  int32_t h;
} BlockRect;

/* An area of an image, inclusive. */
typedef struct LabelArea {
  int32_t top;
  int32_t bottom;
  int32_t left;
  int32_t right;
} LabelArea;

/*
 * Blocks of dark pixels (at or below param->threshold) in a rectangle of an image.
 *
 *   image          one byte per pixel, top row first, width bytes a row without padding
 *   height, width  pixels
 *   set            receives the blocks, behind those it already holds
 *
 * Returns 0; 1 for a null pointer or a rectangle whose origin lies outside the image (nothing is
 * changed); 2 when memory runs out (the set then holds the blocks that it held before and behind
 * them those that were finished by then, and is released as usual); 10 for a set whose numbers
 * contradict each other (it is left as it is).
 */
VORLANEPIC_API int32_t VORLANEPIC_CDECL ImageBlockMarkHorEx(const uint8_t* image, int32_t height,
                                                            int32_t width,
                                                            const BlockMarkParam* param,
                                                            const BlockRect* rect,
                                                            BlockSetRec* set) VORLANEPIC_NOEXCEPT;

/* ImageBlockMarkHorEx with every non-zero pixel marked; the threshold is not read. */
VORLANEPIC_API int32_t VORLANEPIC_CDECL BWBlockMarkHorEx(const uint8_t* image, int32_t height,
                                                         int32_t width, const BlockMarkParam* param,
                                                         const BlockRect* rect,
                                                         BlockSetRec* set) VORLANEPIC_NOEXCEPT;

/*
 * Blocks of non-zero pixels of an image, or of an area of it and one more row and column, in
 * ascending order of their centres (centerX) or of their left edges (left). `root` keeps each
 * block's place before the sorting.
 *
 * Return 1, or 0 for any failure (the set is then unsorted, and released as usual).
 */
VORLANEPIC_API int32_t VORLANEPIC_CDECL bw_label_center(const uint8_t* image, int32_t height,
                                                        int32_t width,
                                                        BlockSetRec* set) VORLANEPIC_NOEXCEPT;
VORLANEPIC_API int32_t VORLANEPIC_CDECL bw_label_left(const uint8_t* image, int32_t height,
                                                      int32_t width,
                                                      BlockSetRec* set) VORLANEPIC_NOEXCEPT;
VORLANEPIC_API int32_t VORLANEPIC_CDECL bw_label_center_area(const uint8_t* image, int32_t height,
                                                             int32_t width, const LabelArea* area,
                                                             BlockSetRec* set) VORLANEPIC_NOEXCEPT;
VORLANEPIC_API int32_t VORLANEPIC_CDECL bw_label_left_area(const uint8_t* image, int32_t height,
                                                           int32_t width, const LabelArea* area,
                                                           BlockSetRec* set) VORLANEPIC_NOEXCEPT;

/* How many integers the ranges a1..a2 and b1..b2, both inclusive, have in common. */
VORLANEPIC_API int32_t VORLANEPIC_CDECL overlap_len(int32_t a1, int32_t a2, int32_t b1,
                                                    int32_t b2) VORLANEPIC_NOEXCEPT;

/*
 * The diagonal, in pixels, of the shared columns and rows of two blocks' bounding boxes: 0 when
 * they share neither or one of the blocks is null, growing with the overlap.
 */
VORLANEPIC_API double VORLANEPIC_CDECL block_distance(const BlockRec* blockA,
                                                      const BlockRec* blockB) VORLANEPIC_NOEXCEPT;

/*
 * Releases a set's blocks with their points and zeroes the set. Returns 0, also for an empty set; 1
 * for a null one.
 */
VORLANEPIC_API int32_t VORLANEPIC_CDECL DestoryBlockSetRec(BlockSetRec* set) VORLANEPIC_NOEXCEPT;

/*
 * The skew of a mark sheet, measured on its reference bar: one long, thin, solid dark bar.
 *
 *   threshold     pixels at or below it are dark, above it light
 *   minLength     shortest bar, in pixels along its diagonal; at least 20
 *   minThickness  the bar's mean thickness in pixels lies between these two, inclusive; at least 1
 *   maxThickness
 *   angle         receives the angle in radians: positive when a wide bar descends to the right,
 *                 near pi/2 or -pi/2 for a tall bar; unchanged on failure
 *
 * Return 0, or -1 when no sheet or no bar is found, the bar's edges disagree, an argument cannot be
 * used or memory runs out. Only where memory runs out while blocks are marked, the bar is looked
 * for among those that were finished by then.
 */

/* On a device-independent image of 1, 8 or 24 bits per pixel; colour tables are not looked at. */
VORLANEPIC_API int32_t VORLANEPIC_CDECL GetAngleOMR(const DibRec* image, int32_t threshold,
                                                    int32_t minLength, int32_t minThickness,
                                                    int32_t maxThickness,
                                                    double* angle) VORLANEPIC_NOEXCEPT;

/* On a grey buffer: one byte per pixel, top row first, width bytes a row without padding. */
VORLANEPIC_API int32_t VORLANEPIC_CDECL get_angle_omr(const uint8_t* pixels, int32_t height,
                                                      int32_t width, int32_t threshold,
                                                      int32_t minLength, int32_t minThickness,
                                                      int32_t maxThickness,
                                                      double* angle) VORLANEPIC_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif /* VORLANEPIC_VORLANEPIC_H */
