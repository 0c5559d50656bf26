// Runs a chain file on frames made here, changes a value between two of them and shows what each step took:
// run_chain chain.json
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

#include <zvfilter/zvfilter.h>

namespace {

struct Destroy {
  void operator()(zvf_chain* chain) const { zvf_chain_destroy(chain); }
};

void check(zvf_code code, const zvf_error& error) {
  if (code != ZVF_OK) throw std::runtime_error(error.message);
}

std::vector<uint16_t> slope(uint32_t width, uint32_t height, unsigned number) {
  std::vector<uint16_t> pixels(std::size_t{width} * height);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] =
        i % 97 == number ? uint16_t{0} : static_cast<uint16_t>(800 + i % width + (i * 7919 + number) % 5);
  }
  return pixels;
}

void run(const char* file) {
  zvf_error error = {};
  const std::unique_ptr<zvf_chain, Destroy> chain(zvf_chain_load(file, &error));
  if (!chain) throw std::runtime_error(error.message);
  zvf_input input = zvf_input_of(640, 400), output = {};
  input.pixel_type = ZVF_LINEAR_DEPTH;
  check(zvf_chain_set_input(chain.get(), &input, &error), error);
  check(zvf_chain_output(chain.get(), &output, &error), error);
  std::vector<uint16_t> result(std::size_t{output.width} * output.height);
  for (unsigned number = 0; number < 20; ++number) {
    if (number == 10 && zvf_chain_find(chain.get(), "smooth") >= 0) {
      check(zvf_chain_set(chain.get(), static_cast<size_t>(zvf_chain_find(chain.get(), "smooth")),
                          "alpha=0.3", &error),
            error);
    }
    const std::vector<uint16_t> frame = slope(input.width, input.height, number);
    check(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), error);
  }
  for (std::size_t i = 0; i < zvf_chain_size(chain.get()); ++i) {
    zvf_step step;
    zvf_view view;
    check(zvf_chain_step(chain.get(), i, &step, &error), error);
    check(zvf_chain_stage(chain.get(), i, &view, &error), error);
    std::printf("%-30s %.3f ms\n", step.filter, view.milliseconds);
  }
  std::printf("%ux%u to %ux%u\n", input.width, input.height, output.width, output.height);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(argc > 1 ? argv[1] : "chain.json");
    return 0;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
  }
}
