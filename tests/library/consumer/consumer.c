/* A host in C that links the library: it lists filters, calls kernels, and what it writes to the exported limits counts. */
#include <stdio.h>
#include <string.h>

#include <filterprocessor/filter_processor.h>
#include <filterprocessor/hole_filling.h>
#include <filterprocessor/speckle.h>

/* Pixels left of a region of 20 after speckle removal by the library's default limit. */
static int pixels_left(void) {
  uint16_t image[20];
  uint8_t work[9 * 20 + 1];
  int left = 0;
  for (int i = 0; i < 20; ++i) image[i] = 1000;
  depth_api_softfilter(work, image, NULL, 20, 1, NULL, 0, 0, 16, 0, 4, 4, 0, 1);
  for (int i = 0; i < 20; ++i) left += image[i] != 0;
  return left;
}

int main(void) {
  if (zv_get_filter_count() != 9 || strcmp(zv_get_filter_name(1), "HoleFillingFilter") != 0) return 1;
  if (strlen(zv_get_commit_hash()) != 7) return 2;
  uint16_t pixels[24] = {1, 1, 1, 1, 1, 1, 1, 1, 5, 0, 5, 5, 5, 5, 5, 5, 9, 9, 9, 9, 9, 9, 9, 9};
  if (depth_api_hole_filling_filter(pixels, 8, 3, 2) != 0 || pixels[9] != 9) return 5;
  if (pixels_left() != 0) return 3;
  Depth_MaxSpeckleSize_640x480 = 19;
  return pixels_left() == 20 ? 0 : 4;
}
