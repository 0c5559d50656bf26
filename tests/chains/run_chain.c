/* Runs a chain file on raw frames of its input's size: run_chain CHAIN DIR FRAME.raw... writes DIR/FRAME.raw */
#include <libgen.h>
#include <stdio.h>
#include <stdlib.h>

#include <zvfilter/zvfilter.h>

#define NEED(condition) \
  if (!(condition)) return fprintf(stderr, "%s: %s\n", #condition, error.message), 1

int main(int argc, char** argv) {
  zvf_error error = {0};
  zvf_chain* chain = zvf_chain_load(argv[1], &error);
  NEED(chain != NULL);
  zvf_input input, output;
  NEED(zvf_chain_input(chain, &input));
  NEED(zvf_chain_output(chain, &output, &error) == ZVF_OK);
  const size_t size = (size_t)input.width * input.height,
               result_size = (size_t)output.width * output.height;
  uint16_t* frame = malloc(size * 2);
  uint16_t* result = malloc(result_size * 2);
  for (int i = 3; i < argc; ++i) {
    FILE* in = fopen(argv[i], "rb");
    NEED(in != NULL && fread(frame, 2, size, in) == size);
    fclose(in);
    NEED(zvf_chain_run(chain, frame, 0, result, 0, &error) == ZVF_OK);
    char name[4096];
    snprintf(name, sizeof name, "%s/%s", argv[2], basename(argv[i]));
    FILE* out = fopen(name, "wb");
    NEED(out != NULL && fwrite(result, 2, result_size, out) == result_size);
    fclose(out);
  }
  free(frame);
  free(result);
  zvf_chain_destroy(chain);
  return 0;
}
