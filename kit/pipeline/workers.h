#ifndef KIT_PIPELINE_WORKERS_H
#define KIT_PIPELINE_WORKERS_H

#include <cstddef>
#include <functional>
#include <memory>

namespace kit {

/// The threads of a run.
class Workers {
 public:
  /// @param threads with the caller's own; 0: one for each processor
  explicit Workers(std::size_t threads);
  ~Workers();

  std::size_t threads() const { return threads_; }
  /// Does the work for every number below count; with one thread in their order. The work may send frames through
  /// run_sequence(), which then has these threads.
  void for_each(std::size_t count, const std::function<void(std::size_t number)>& work) const;

 private:
  struct Arena;

  std::size_t threads_;
  std::unique_ptr<Arena> arena_;  // null: the caller's thread is enough
};

}  // namespace kit

#endif
