#ifndef GSTREAMER_LIVE_CHAIN_H
#define GSTREAMER_LIVE_CHAIN_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "input_properties.h"
#include "zvfilter/zvfilter.h"

namespace zvgst {

struct DestroyChain {
  void operator()(zvf_chain* chain) const { zvf_chain_destroy(chain); }
};
using ChainHandle = std::unique_ptr<zvf_chain, DestroyChain>;

struct Size {
  std::uint32_t width = 0, height = 0;
  bool operator==(const Size&) const = default;
};

/// A chain that any thread may ask to be another one; the thread that runs it takes that over between two frames.
class LiveChain {
 public:
  // Any thread.

  /// Another chain: the name of a file, read here, or a text; null: none. What is wrong with it is said by update().
  void ask_chain(const char* source);
  /// Another value for the first step.
  void ask_value(const char* key, const std::string& value);
  /// The last value asked for; nothing: the schema's default.
  std::optional<double> asked_value(const std::string& key);
  void ask_input(std::size_t property, double value);
  std::optional<double> asked_input(std::size_t property);
  /// Whether sizes may change on the way, now or once the chain is what was asked for.
  bool resizes();

  // The thread that runs the chain.

  /// Takes over what was asked for. A chain or value that is refused stays so until another is asked for.
  /// @return false: failure() says why, here and below
  bool update();
  /// Says how large frames are, and tells how large they will be.
  bool negotiate(Size input, Size& output);
  bool run(const std::uint16_t* pixels, std::size_t stride, std::uint16_t* output,
           std::size_t output_stride, Size output_size);
  void reset();
  const char* failure() const { return failure_ ? failure_->message : ""; }

 private:
  bool update_chain();
  bool set_input();
  bool refuse(const std::string& message);
  /// Calls a function of the library and keeps its error.
  template <typename Function, typename... Arguments>
  bool checked(Function* function, Arguments... arguments) {
    zvf_error error = {};
    if (function(arguments..., &error) == ZVF_OK) return true;
    failure_ = error;
    return false;
  }

  std::mutex lock_;  // of what is asked for
  ChainHandle next_;
  std::optional<zvf_error> next_failure_;
  bool next_resizes_ = false;
  std::map<std::string, std::string> values_;  // since that chain was asked for
  InputValues input_;
  bool asked_ = false;

  ChainHandle chain_;
  bool resizes_ = false;
  std::optional<zvf_input> own_input_;  // as its file says
  Size size_;                           // of frames
  bool refused_ = false;
  bool has_input_ = false;
  std::optional<zvf_error> failure_;  // the last
};

}  // namespace zvgst

#endif
