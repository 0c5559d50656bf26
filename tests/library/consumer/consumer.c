/* A host in C that links the library: it lists filters, calls a kernel, and reads an exported limit. */
#include <stdio.h>
#include <string.h>

#include <filterprocessor/filter_processor.h>
#include <filterprocessor/hole_filling.h>
#include <filterprocessor/speckle.h>

int main(void) {
  if (zv_get_filter_count() != 9 || strcmp(zv_get_filter_name(1), "HoleFillingFilter") != 0) return 1;
  if (strlen(zv_get_commit_hash()) != 7) return 2;
  uint16_t pixels[24] = {1, 1, 1, 1, 1, 1, 1, 1, 5, 0, 5, 5, 5, 5, 5, 5, 9, 9, 9, 9, 9, 9, 9, 9};
  if (depth_api_hole_filling_filter(pixels, 8, 3, 2) != 0 || pixels[9] != 9) return 5;
  return Depth_MaxSpeckleSize_640x480 == 480 ? 0 : 3;
}
