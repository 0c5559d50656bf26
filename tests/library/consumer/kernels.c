/* Calls a kernel, without any host. */
#include <filterprocessor/hole_filling.h>

int main(void) {
  uint16_t pixels[24] = {1, 1, 1, 1, 1, 1, 1, 1, 5, 0, 5, 5, 5, 5, 5, 5, 9, 9, 9, 9, 9, 9, 9, 9};
  return depth_api_hole_filling_filter(pixels, 8, 3, 2) == 0 && pixels[9] == 9 ? 0 : 1;
}
