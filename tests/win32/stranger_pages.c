#include "stranger_pages.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

static const double kRadiansPerDegree = 3.14159265358979 / 180;

static void PutPixel(Scan* scan, int x, int y, int grey) {
  uint8_t* row = scan->rows[y];
  if (scan->bitsPerPixel == 24) {
    memset(row + 3 * x, grey, 3);
  } else if (scan->bitsPerPixel == 8) {
    row[x] = (uint8_t)grey;
  } else if (grey > 127) {
    row[x / 8] |= (uint8_t)(0x80 >> (x % 8));
  }
}

static Scan Draw(int bitsPerPixel, double degrees, int withBar) {
  Scan scan = {SCAN_WIDTH, SCAN_HEIGHT, bitsPerPixel, 0, 0, 0};
  const double c = cos(degrees * kRadiansPerDegree);
  const double s = sin(degrees * kRadiansPerDegree);
  int x, y;
  scan.lineBytes = (SCAN_WIDTH * bitsPerPixel + 31) / 32 * 4;
  scan.pixels = calloc((size_t)scan.lineBytes, SCAN_HEIGHT);
  scan.rows = malloc(SCAN_HEIGHT * sizeof(uint8_t*));
  for (y = 0; y < SCAN_HEIGHT; ++y) {
    scan.rows[y] = scan.pixels + y * scan.lineBytes;
    for (x = 0; x < SCAN_WIDTH; ++x) {
      const double dx = x - SCAN_WIDTH / 2;
      const double dy = y - SCAN_HEIGHT / 2;
      const double u = dx * c + dy * s;
      const double v = dy * c - dx * s;
      const int onPage = fabs(u) <= PAGE_WIDTH / 2 && fabs(v) <= PAGE_HEIGHT / 2;
      const int onBar = withBar && fabs(u) <= 320 && fabs(v + 250) <= 5;
      PutPixel(&scan, x, y, onPage && !onBar ? 230 : 20);
    }
  }
  return scan;
}

Scan DrawScan(int bitsPerPixel, double degrees) { return Draw(bitsPerPixel, degrees, 0); }
Scan DrawForm(int bitsPerPixel, double degrees) { return Draw(bitsPerPixel, degrees, 1); }

void FreeScan(Scan* scan) {
  free(scan->pixels);
  free(scan->rows);
}

static void Put32(uint8_t* to, int32_t value) { memcpy(to, &value, 4); }

Bitmap ToBitmap(const Scan* scan) {
  Bitmap bitmap;
  int y;
  memset(&bitmap, 0, sizeof bitmap);
  memcpy(bitmap.fileHeader, "BM", 2);
  Put32(bitmap.infoHeader, 40);
  Put32(bitmap.infoHeader + 4, scan->width);
  Put32(bitmap.infoHeader + 8, scan->height);
  bitmap.infoHeader[12] = 1;
  bitmap.infoHeader[14] = (uint8_t)scan->bitsPerPixel;
  Put32(bitmap.infoHeader + 24, 7880); /* 200 dots per inch */
  bitmap.bits = malloc((size_t)(scan->lineBytes * scan->height));
  for (y = 0; y < scan->height; ++y) {
    memcpy(bitmap.bits + (scan->height - 1 - y) * scan->lineBytes, scan->rows[y],
           (size_t)scan->lineBytes);
  }
  return bitmap;
}

void FreeBitmap(Bitmap* bitmap) { free(bitmap->bits); }
