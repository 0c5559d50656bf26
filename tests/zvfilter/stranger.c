/* A program in C with a comma in its locale's numbers, in which somebody counts every allocation; run alone and beside functions
 * of a host. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <zvfilter/zvfilter.h>

static long allocations;

#define COUNTED(type, name, parameters, arguments)              \
  type name parameters {                                        \
    static type(*real) parameters;                              \
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, #name); \
    ++allocations;                                              \
    return real arguments;                                      \
  }
COUNTED(void*, malloc, (size_t size), (size))
COUNTED(void*, realloc, (void* memory, size_t size), (memory, size))
COUNTED(void*, aligned_alloc, (size_t alignment, size_t size), (alignment, size))

#define EXPECT(condition) \
  if (!(condition)) return printf("%s:%d: %s\n", __FILE__, __LINE__, #condition), 1

enum { WIDTH = 160, HEIGHT = 100 };

int main(void) {
  EXPECT(setlocale(LC_ALL, "de_DE.UTF-8") != NULL);
  char number[8];
  snprintf(number, sizeof number, "%.1f", 0.5);
  EXPECT(strcmp(number, "0,5") == 0);
  zvf_error error;
  zvf_parameter parameter;
  EXPECT(zvf_parameter_at(3, 1, &parameter) && parameter.default_value == 0.5);
  zvf_chain* chain = zvf_chain_parse(
      "NoiseRemovalFilter:;SpatialAdvancedFilter:alpha=0.35;TemporalFilter:;HoleFillingFilter:;"
      "EdgeNoiseRemovalFilter:;"
      "DepthResize:scale=0.5",
      &error);
  EXPECT(chain != NULL);
  zvf_input input = zvf_input_of(WIDTH, HEIGHT);
  input.pixel_type = ZVF_LINEAR_DEPTH;
  input.value_scale = 0.1f;
  EXPECT(zvf_chain_set_input(chain, &input, &error) == ZVF_OK);
  char json[4096];
  snprintf(json, sizeof json, "%s", zvf_chain_json(chain, &error));
  EXPECT(strstr(json, "\"alpha\": 0.35") != NULL);
  zvf_chain* again = zvf_chain_parse(json, &error);
  EXPECT(again != NULL && strcmp(zvf_chain_json(again, &error), json) == 0);
  zvf_chain_destroy(again);

  static uint16_t frame[WIDTH * HEIGHT], result[WIDTH * HEIGHT];
  for (int i = 0; i < WIDTH * HEIGHT; ++i) frame[i] = (uint16_t)(i % 13 == 0 ? 0 : 1000 + i % WIDTH);
  for (int i = 0; i < 3; ++i) EXPECT(zvf_chain_run(chain, frame, 0, result, 0, &error) == ZVF_OK);
  const long warm = allocations;
  for (int i = 0; i < 10; ++i) EXPECT(zvf_chain_run(chain, frame, 0, result, 0, &error) == ZVF_OK);
  EXPECT(allocations == warm);
  EXPECT(warm > 10);
  EXPECT(zvf_chain_set(chain, 1, "alpha=0,5", &error) == ZVF_BAD_CHAIN);
  zvf_chain_destroy(chain);
  return 0;
}
