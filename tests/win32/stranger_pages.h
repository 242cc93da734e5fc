/* Pages and forms as a host has them in its memory, drawn without any help of the project. */
#ifndef STRANGER_PAGES_H
#define STRANGER_PAGES_H

#include <stdint.h>

/* A light page of pageWidth x pageHeight in the middle of a dark image, turned clockwise. */
typedef struct Scan {
  int width, height, bitsPerPixel, lineBytes;
  uint8_t* pixels; /* top row first, rows padded to 4 bytes */
  uint8_t** rows;
} Scan;

enum { SCAN_WIDTH = 900, SCAN_HEIGHT = 1000, PAGE_WIDTH = 700, PAGE_HEIGHT = 800 };

Scan DrawScan(int bitsPerPixel, double degrees);

/* The same with a dark bar of 640 x 10 pixels, 250 above the page's centre. */
Scan DrawForm(int bitsPerPixel, double degrees);

void FreeScan(Scan* scan);

/* The pieces of a BMP file with the scan's picture. */
typedef struct Bitmap {
  uint8_t fileHeader[14];
  uint8_t infoHeader[40];
  uint8_t* bits; /* bottom row first */
} Bitmap;

Bitmap ToBitmap(const Scan* scan);
void FreeBitmap(Bitmap* bitmap);

#endif /* STRANGER_PAGES_H */
