/*
 * Another image library of the same interface, to stand in imgbuf.dll's place: records and pixels
 * from the system's heap in separate blocks, and codes of its own.
 */
#include <stdint.h>
#include <string.h>
#include <windows.h>

enum { REFUSED = 77, NO_MEMORY = 78 };

typedef struct {
  int32_t width, height, bitsPerPixel, imageBytes, lineBytes;
  uint8_t** rows;
  uint8_t* pixels;
} Image;

typedef struct {
  uint8_t* fileHeader;
  uint8_t* infoHeader;
  void* reserved;
  uint8_t* bits;
} Dib;

/* What a block holds at first is nobody's business, so it holds nothing of use. */
static void* Take(int32_t bytes) {
  void* block = HeapAlloc(GetProcessHeap(), 0, (SIZE_T)bytes);
  if (block != NULL) memset(block, 0xCD, (size_t)bytes);
  return block;
}
static void Give(void* block) { HeapFree(GetProcessHeap(), 0, block); }

int32_t __stdcall Imgbuf_New(Image* image, int32_t width, int32_t height, int32_t bitsPerPixel,
                             int32_t flag) {
  int32_t y;
  (void)flag;
  if (width < 1 || height < 1) return REFUSED;
  image->width = width;
  image->height = height;
  image->bitsPerPixel = bitsPerPixel;
  image->lineBytes = (width * bitsPerPixel + 31) / 32 * 4;
  image->imageBytes = image->lineBytes * height;
  image->rows = Take(height * (int32_t)sizeof(uint8_t*));
  image->pixels = Take(image->imageBytes);
  if (image->rows == NULL || image->pixels == NULL) return NO_MEMORY;
  for (y = 0; y < height; ++y) image->rows[y] = image->pixels + y * image->lineBytes;
  return 0;
}

int32_t __stdcall Imgbuf_Check(const Image* image) {
  return image != NULL && image->pixels != NULL && image->rows != NULL ? 0 : REFUSED;
}

int32_t __stdcall Imgbuf_Destory(Image* image) {
  Give(image->rows);
  Give(image->pixels);
  image->pixels = NULL;
  return 0;
}

int32_t __stdcall ImgbufNew(Dib* image, int32_t width, int32_t height, int32_t bitsPerPixel) {
  uint8_t* info = Take(40);
  image->fileHeader = Take(14);
  image->infoHeader = info;
  image->reserved = NULL;
  image->bits = Take((width * bitsPerPixel + 31) / 32 * 4 * height);
  if (info == NULL || image->fileHeader == NULL || image->bits == NULL) return NO_MEMORY;
  image->fileHeader[0] = 0x42;
  image->fileHeader[1] = 0x4D;
  *(int32_t*)(info + 4) = width;
  *(int32_t*)(info + 8) = height;
  *(uint16_t*)(info + 14) = (uint16_t)bitsPerPixel;
  return 0;
}

int32_t __stdcall ImgbufCheck(const Dib* image) {
  return image != NULL && image->bits != NULL ? 0 : REFUSED;
}

int32_t __stdcall ImgbufDestory(Dib* image) {
  Give(image->fileHeader);
  Give(image->infoHeader);
  Give(image->bits);
  image->bits = NULL;
  return 0;
}
