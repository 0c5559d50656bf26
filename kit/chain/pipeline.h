#ifndef KIT_CHAIN_PIPELINE_H
#define KIT_CHAIN_PIPELINE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "frame_host.h"
#include "kit/chain/chain.h"
#include "kit/filter/filter_library.h"
#include "kit/input/input.h"

namespace kit {

/// How filters are handed a frame.
enum class Handover { frame, frame_set };

/// What a step made of the last frame.
struct Stage {
  framehost::Frame frame;  ///< null where the step is off or stages are not kept
  double milliseconds = 0;
};

/// Rows of samples that somebody else holds.
struct Rows {
  const std::uint16_t* pixels;
  std::size_t stride;  ///< bytes from one row to the next
};

/// A chain at work: its filters, which remember the frames they have seen. Used by one thread at a time. What is refused
/// changes nothing.
class Pipeline {
 public:
  /// @throws Error for a filter, a key or a value that the library doesn't have or refuses; it names the step
  Pipeline(const FilterLibrary& library, const Chain& chain);

  const Chain& chain() const { return chain_; }
  const std::vector<SchemaParameter>& parameters(std::size_t step) const {
    return runners_[step].parameters;
  }
  framehost::Pool& pool() const { return *pool_; }

  void insert(std::size_t at, const Step& step);
  void remove(std::size_t step);
  void move(std::size_t step, std::size_t to);
  void enable(std::size_t step, bool enabled);
  /// Gives the step other values, from the next frame on. What it has seen stays.
  void configure(std::size_t step, const Values& values);
  /// The filters are as new, with their values.
  void reset();

  /// What the frames are from now on; its size is known. Another input than before resets.
  void set_input(const Input& input);
  const Input& input() const { return input_; }
  /// What the chain makes of such frames.
  /// @throws Error when a step cannot take what it would be given
  const Input& output();

  /// Sends a frame through the steps that are on.
  /// @param rows of the input's size; without gaps and at an even address they are not copied
  /// @param memory where the result is made if the last step makes a new frame of the output's size; may be null
  /// @throws Error of the step that cannot take the frame or fails
  framehost::Frame run(const Rows& rows, void* memory = nullptr, Handover handover = Handover::frame);

  /// Whether the frames of the steps are kept until the next run.
  void keep_stages(bool keep);
  const Stage& stage(std::size_t step) const { return runners_[step].stage; }

 private:
  struct Runner {
    Filter filter;
    std::vector<SchemaParameter> parameters;
    Stage stage = {};
  };

  Runner make_runner(const Chain& chain, std::size_t step) const;
  void configure_runner(Runner& runner, const Values& values) const;
  void check_geometry(std::size_t step, const zv_frame_t* frame) const;
  framehost::Frame process(std::size_t step, const zv_frame_t* frame);
  void try_empty_frame();

  FilterLibrary library_;
  framehost::PoolHandle pool_;
  Chain chain_;
  std::vector<Runner> runners_;
  Input input_;
  framehost::Profile profile_;
  Input output_;
  bool output_known_ = false;
  bool keep_stages_ = false;
};

/// The value that the step has for a key; of a step as made, the schema's default.
/// @throws Error for an unknown key, with the nearest ones
double value_of(const Pipeline& pipeline, std::size_t step, const std::string& key);

}  // namespace kit

#endif
