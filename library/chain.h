/// What stands behind the handles of zvfilter.h.
#ifndef ZVFILTER_LIBRARY_CHAIN_H
#define ZVFILTER_LIBRARY_CHAIN_H

#include <optional>
#include <string>

#include "kit/chain/chain_file.h"
#include "kit/chain/pipeline.h"
#include "zvfilter/zvfilter.h"

struct zvf_chain {
  explicit zvf_chain(kit::ChainFile file);

  kit::ChainFile file() const;
  /// @throws kit::Error for a number past the last step
  std::size_t step(std::size_t number) const;

  std::string description;
  std::optional<kit::Input> input;  // as set or as the file says, which may leave out the size
  bool has_input = false;           // the pipeline knows it
  bool keeps_stages = false;
  kit::Pipeline pipeline;
  std::string json;  // the last that was asked for
};

namespace zvfilter {

/// The filters of this library.
const kit::FilterLibrary& filters();

kit::Input read_input(const zvf_input& input);
zvf_input input_record(const kit::Input& input);
zvf_view view_of(const zv_frame_t* frame, double milliseconds);

}  // namespace zvfilter

#endif
