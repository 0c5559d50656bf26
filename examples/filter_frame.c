/* Fills the holes of a depth image and smooths it: filter_frame WIDTH HEIGHT <depth.raw >filtered.raw
 * Raw images are rows of 16-bit samples in the machine's byte order. */
#include <stdio.h>
#include <stdlib.h>

#include <zvfilter/zvfilter.h>

int main(int argc, char** argv) {
  if (argc != 3) return fprintf(stderr, "usage: filter_frame WIDTH HEIGHT <depth.raw >filtered.raw\n"), 2;
  zvf_error error;
  zvf_input input = zvf_input_of((uint32_t)atoi(argv[1]), (uint32_t)atoi(argv[2]));
  zvf_input_set_stereo(&input, 50.0, 0.7 * input.width); /* baseline in mm, focal length in pixels */
  zvf_chain* chain =
      zvf_chain_parse("HoleFillingFilter:hole_filling_mode=1; SpatialAdvancedFilter:alpha=0.4", &error);
  if (chain == NULL || zvf_chain_set_input(chain, &input, &error) != ZVF_OK)
    return fprintf(stderr, "%s\n", error.message), 1;

  const size_t pixels = (size_t)input.width * input.height;
  uint16_t* frame = malloc(pixels * sizeof *frame);
  int status = 0;
  while (frame != NULL && status == 0 && fread(frame, sizeof *frame, pixels, stdin) == pixels) {
    if (zvf_chain_run(chain, frame, 0, frame, 0, &error) != ZVF_OK) {
      fprintf(stderr, "%s\n", error.message);
      status = 1;
    } else if (fwrite(frame, sizeof *frame, pixels, stdout) != pixels) {
      status = 1;
    }
  }
  free(frame);
  zvf_chain_destroy(chain);
  return status;
}
