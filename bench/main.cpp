// Runs every form of every row, interleaved, and prints the medians as a table of nanoseconds a pixel and
// of multiples of memcpy of the same frame.
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef FILTERPROCESSOR_PEER_OPENCV
#include <opencv2/core/utility.hpp>
#endif

#include "rows.h"

namespace {

using filterprocessor::bench::kPlain;
using filterprocessor::bench::median;

/// The columns: the levels that are compiled in, then the peers.
std::vector<std::string> all_forms() {
  std::vector<std::string> forms = {std::string(kPlain)};
  for (const auto& set : filterprocessor::kernel_sets().subspan(1)) forms.emplace_back(set.level);
  forms.insert(forms.end(), {"peer", "libyuv"});
  return forms;
}

class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      std::string name = run.benchmark_name();
      name = name.substr(0, name.find("/manual_time"));
      const auto slash = name.rfind('/');
      const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
      times_[name.substr(0, slash)][name.substr(slash + 1)].push_back(1e9 * seconds /
                                                                      run.counters.at("pixels").value);
    }
    std::fprintf(stderr, ".");
  }

  void Finalize() override {
    std::printf("\nns a pixel (in brackets: times memcpy of the frame), medians\n\n| %-44s | memcpy",
                "kernel, scene, size");
    for (const std::string& form : forms_) std::printf(" | %-15s", form.c_str());
    std::printf(" | plain / best |\n|---|---:");
    for (std::size_t i = 0; i < forms_.size() + 1; ++i) std::printf("|---:");
    std::printf("|\n");
    for (auto& [row, forms] : times_) print_row(row, forms);
  }

 private:
  using Forms = std::map<std::string, std::vector<double>>;

  void print_row(const std::string& row, Forms& forms) const {
    const double copy = forms.contains("memcpy") ? median(forms["memcpy"]) : 0;
    std::printf("| %-44s | %6.4f", row.c_str(), copy);
    double plain = 0;
    double best = 0;
    for (const std::string& form : forms_) {
      if (!forms.contains(form)) {
        std::printf(" | %-15s", "");
        continue;
      }
      const double time = median(forms[form]);
      std::printf(" | %7.4f (%5.2f)", time, copy > 0 ? time / copy : 0);
      if (form == kPlain) plain = time;
      const bool is_peer = form == "peer" || form == "libyuv";
      if (!is_peer) best = time;
    }
    std::printf(" | %12.1f |\n", best > 0 ? plain / best : 0);
  }

  std::vector<std::string> forms_ = all_forms();
  std::map<std::string, Forms> times_;
};

}  // namespace

// Arguments go to the benchmark library; `chain` alone measures the chain of filters alone.
int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "chain") {
    filterprocessor::bench::print_chain_tables();
    return 0;
  }
  // Short runs, many times over, in random order: a form that always followed another one looked up
  // to 1.4 times slower.
  std::vector<std::string> arguments = {argv[0], "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_repetitions=15", "--benchmark_min_time=0.01"};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;

#ifdef FILTERPROCESSOR_PEER_OPENCV
  cv::setNumThreads(1);  // all figures are of one core
#endif
  filterprocessor::bench::add_all_rows();

  const auto scene =
      filterprocessor::bench::figures_of(filterprocessor::bench::stereo_scene(848, 480), 80);
  std::printf("the library works at level %s\n", filterprocessor::active_kernels().level);
  std::printf("scene at 848x480: %.1f %% holes, %.3f runs a pixel at a threshold of 80\n",
              100 * scene.hole_share, scene.runs_per_pixel);
  TableReporter table;
  benchmark::RunSpecifiedBenchmarks(&table);
  if (argc == 1) filterprocessor::bench::print_chain_tables();
  return 0;
}
