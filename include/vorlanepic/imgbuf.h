/*
 * The image library: page images in memory.
 *
 * Two kinds of image are exchanged with hosts. An ImageRec is a plain pixel block with a table of
 * its rows, top row first. A DibRec is a device-independent image as it stands in a BMP file,
 * bottom row first. This header is plain C (C99) and compiles alone in C and in C++.
 *
 * Every function may be called from several threads at once on different records.
 */
#ifndef VORLANEPIC_IMGBUF_H
#define VORLANEPIC_IMGBUF_H

#include <stdint.h>

#if defined(_WIN32) && !defined(_WIN64)
#define IMGBUF_CALL __stdcall
#else
#define IMGBUF_CALL
#endif

#if defined(__GNUC__) && !defined(_WIN32)
#define IMGBUF_API __attribute__((visibility("default")))
#else
#define IMGBUF_API
#endif

#if defined(__cplusplus)
#define IMGBUF_NOEXCEPT noexcept
extern "C" {
#else
#define IMGBUF_NOEXCEPT
#endif

/*
 * A page image. Pixel x of row y:
 *   1 bit per pixel    bit 0x80 >> (x % 8) of byte rows[y][x / 8]; a set bit is light
 *   8 bits per pixel   byte rows[y][x], 0 is black
 *   24 bits per pixel  bytes rows[y][3 * x + 0 .. 2]: blue, green, red
 * An all-zero record is empty. An image made by Imgbuf_New is released with Imgbuf_Destory; a host
 * may also lay a record around pixels of its own, with rows and pixels of its own to release.
 */
typedef struct ImageRec {
  int32_t width;        /* pixels in a row */
  int32_t height;       /* rows */
  int32_t bitsPerPixel; /* 1, 8 or 24 */
  int32_t imageBytes;   /* lineBytes * height */
  int32_t lineBytes;    /* bytes from one row to the next */
  uint8_t** rows;       /* height pointers: row y at pixels + y * lineBytes */
  uint8_t* pixels;      /* the pixel block */
} ImageRec;

/*
 * A device-independent image: the pieces of a BMP file in memory. bits holds the rows, the
 * picture's bottom row first, each padded to a multiple of 4 bytes.
 */
typedef struct DibRec {
  uint8_t* fileHeader; /* begins with 0x42 0x4D; null when the host has none */
  uint8_t* infoHeader; /* width: int32 at byte 4, height: int32 at 8, bit count: uint16 at 14,
                          horizontal pixels per metre: int32 at 24; little-endian */
  void* reserved;      /* not read */
  uint8_t* bits;       /* ((width * bitCount + 31) / 32) * 4 bytes a row */
} DibRec;

/*
 * Makes an image of width x height pixels in *image; what the record held before is not looked at.
 * Rows are padded to a multiple of 4 bytes and every byte is 0. The caller releases the image with
 * Imgbuf_Destory.
 *
 *   bitsPerPixel  1, 4, 8, 16, 24 or 32
 *   flag          any value: all images are made alike
 *
 * Returns 0; 1 for a null record, a size below 1, another depth or an image that takes more than
 * 2^31 - 1 bytes with its row table; 2 when there is no memory. *image is unchanged on failure.
 */
IMGBUF_API int32_t IMGBUF_CALL Imgbuf_New(ImageRec* image, int32_t width, int32_t height,
                                          int32_t bitsPerPixel, int32_t flag) IMGBUF_NOEXCEPT;

/*
 * Tells whether a record can be used: 0 when record, rows and pixels are non-null, the size is at
 * least 1 x 1, the depth is 1, 4, 8, 16, 24 or 32, lineBytes holds a row and imageBytes is
 * lineBytes * height; otherwise 1. The rows themselves are not looked at.
 */
IMGBUF_API int32_t IMGBUF_CALL Imgbuf_Check(const ImageRec* image) IMGBUF_NOEXCEPT;

/*
 * Releases an image that Imgbuf_New made and empties its record. Returns 0; 1 for a null record or
 * an empty one.
 */
IMGBUF_API int32_t IMGBUF_CALL Imgbuf_Destory(ImageRec* image) IMGBUF_NOEXCEPT;

/*
 * Gives the memory that is kept back to the system. On Linux the block of the image released last,
 * of either kind, is kept for the next image if it takes 2 to 64 MB; it is cleared before it
 * serves again. When the library is unloaded nothing stays. Returns 0.
 */
IMGBUF_API int32_t IMGBUF_CALL Imgbuf_Trim(void) IMGBUF_NOEXCEPT;

/*
 * Sets how many bytes are kept at most, for the whole process; 0 or less: none. It is 64 MB at
 * first, and no more than that. What is kept is given back. Returns the limit before; 0 where the
 * system's library keeps nothing.
 */
IMGBUF_API int32_t IMGBUF_CALL Imgbuf_KeepLimit(int32_t bytes) IMGBUF_NOEXCEPT;

/*
 * Makes a device-independent image in *image: one block laid out as a BMP file (file header,
 * 40-byte information header, a grey ramp as colour table for 1 and 8 bits, rows of 0), so that
 * everything from fileHeader on can be written to disk as it stands. Its length in bytes is the
 * uint32 at byte 2. The caller releases it with ImgbufDestory.
 *
 *   bitsPerPixel  1, 4, 8, 16, 24 or 32
 *
 * Returns 0; 1 for a null record, a size below 1, another depth or a block of more than 2^31 - 1
 * bytes; 2 when there is no memory. *image is unchanged on failure.
 */
IMGBUF_API int32_t IMGBUF_CALL ImgbufNew(DibRec* image, int32_t width, int32_t height,
                                         int32_t bitsPerPixel) IMGBUF_NOEXCEPT;

/*
 * Tells whether a device-independent image can be used: 0 when record, information header and
 * bits are non-null, the size is at least 1 x 1, the depth is 1, 4, 8, 16, 24 or 32 and the rows
 * take at most 2^31 - 1 bytes; otherwise 1. An image without a file header passes: only the search
 * for a reference bar asks for one.
 */
IMGBUF_API int32_t IMGBUF_CALL ImgbufCheck(const DibRec* image) IMGBUF_NOEXCEPT;

/*
 * Releases an image that ImgbufNew made and empties its record. Returns 0; 1 for a null record or
 * an empty one.
 */
IMGBUF_API int32_t IMGBUF_CALL ImgbufDestory(DibRec* image) IMGBUF_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif /* VORLANEPIC_IMGBUF_H */
