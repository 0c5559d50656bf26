#include "kit/pipeline/workers.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace kit {

struct Workers::Arena {
  explicit Arena(std::size_t threads)
      : limit(tbb::global_control::max_allowed_parallelism, threads), arena(static_cast<int>(threads)) {}

  tbb::global_control limit;  // more threads than processors too
  tbb::task_arena arena;
};

Workers::Workers(std::size_t threads)
    : threads_(threads != 0 ? threads : static_cast<std::size_t>(tbb::info::default_concurrency())),
      arena_(threads_ > 1 ? std::make_unique<Arena>(threads_) : nullptr) {}

Workers::~Workers() = default;

void Workers::for_each(std::size_t count, const std::function<void(std::size_t number)>& work) const {
  if (!arena_) {
    for (std::size_t i = 0; i < count; ++i) work(i);
    return;
  }
  arena_->arena.execute([&] {
    // Who waits inside one piece of work begins no other: what is under way stays bounded.
    const auto alone = [&](std::size_t i) { tbb::this_task_arena::isolate([&] { work(i); }); };
    tbb::parallel_for(std::size_t{0}, count, std::size_t{1}, alone, tbb::simple_partitioner());
  });
}

}  // namespace kit
