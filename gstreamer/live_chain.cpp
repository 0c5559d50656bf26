#include "live_chain.h"

#include <cstdio>
#include <utility>

namespace zvgst {

namespace {

bool has_resizing_step(const zvf_chain* chain) {
  for (std::size_t i = 0; i < zvf_chain_size(chain); ++i) {
    zvf_step step;
    if (zvf_chain_step(chain, i, &step, nullptr) != ZVF_OK) continue;
    for (std::size_t filter = 0; filter < zvf_filter_count(); ++filter) {
      if (zvf_filter_changes_size(filter) && zvf_filter_name(filter) == std::string(step.filter))
        return true;
    }
  }
  return false;
}

std::string text_of(const Size& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace

void LiveChain::ask_chain(const char* source) {
  zvf_error error = {};
  std::snprintf(error.message, sizeof error.message,
                "there is no chain; give a file or a text with chain=...");
  ChainHandle chain(source != nullptr ? zvf_chain_read(source, &error) : nullptr);
  const bool resizing = chain && has_resizing_step(chain.get());
  const std::lock_guard guard(lock_);
  next_failure_ = chain ? std::nullopt : std::optional(error);
  next_ = std::move(chain);
  next_resizes_ = resizing;
  values_.clear();
  asked_ = true;
}

void LiveChain::ask_value(const char* key, const std::string& value) {
  const std::lock_guard guard(lock_);
  values_[key] = value;
  asked_ = true;
}

std::optional<double> LiveChain::asked_value(const std::string& key) {
  const std::lock_guard guard(lock_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return g_ascii_strtod(found->second.c_str(), nullptr);
}

void LiveChain::ask_input(std::size_t property, double value) {
  const std::lock_guard guard(lock_);
  input_[property] = value;
  asked_ = true;
}

std::optional<double> LiveChain::asked_input(std::size_t property) {
  const std::lock_guard guard(lock_);
  return input_[property];
}

bool LiveChain::resizes() {
  const std::lock_guard guard(lock_);
  return next_resizes_ || resizes_;
}

bool LiveChain::refuse(const std::string& message) {
  failure_.emplace();
  failure_->code = ZVF_BAD_INPUT;
  std::snprintf(failure_->message, sizeof failure_->message, "%s", message.c_str());
  return false;
}

bool LiveChain::update() {
  const std::lock_guard guard(lock_);
  if (!std::exchange(asked_, false)) return !refused_;
  refused_ = !update_chain();
  if (!refused_ && size_ != Size()) has_input_ = set_input();
  return !refused_;
}

bool LiveChain::update_chain() {
  if (next_failure_) {
    failure_ = next_failure_;
    return false;
  }
  if (next_) {
    chain_ = std::move(next_);
    resizes_ = std::exchange(next_resizes_, false);
    zvf_input input;
    own_input_.reset();
    if (zvf_chain_input(chain_.get(), &input)) own_input_ = input;
  }
  if (values_.empty()) return true;
  std::string text;
  for (const auto& [key, value] : values_) text.append(text.empty() ? "" : ",").append(key + "=" + value);
  return checked(&zvf_chain_set, chain_.get(), std::size_t{0}, text.c_str());
}

bool LiveChain::set_input() {
  zvf_input input = own_input_.value_or(zvf_input_of(size_.width, size_.height));
  const Size expected = {input.width, input.height};
  if (expected != Size() && expected != size_)
    return refuse("the chain is for frames of " + text_of(expected) + "; these are " + text_of(size_));
  input.width = size_.width;
  input.height = size_.height;
  const std::string missing = put_values(input_, input);
  if (!missing.empty()) return refuse(missing);
  return checked(&zvf_chain_set_input, chain_.get(), &input);
}

bool LiveChain::negotiate(Size input, Size& output) {
  {
    const std::lock_guard guard(lock_);
    const bool known = std::exchange(size_, input) == input;
    if (refused_) return false;
    if (!known || !has_input_) has_input_ = set_input();
    if (!has_input_) return false;
  }
  zvf_input made;
  if (!checked(&zvf_chain_output, chain_.get(), &made)) return false;
  output = {made.width, made.height};
  return true;
}

bool LiveChain::run(const std::uint16_t* pixels, std::size_t stride, std::uint16_t* output,
                    std::size_t output_stride, Size output_size) {
  zvf_input made;
  if (refused_ || !has_input_ || !checked(&zvf_chain_output, chain_.get(), &made)) return false;
  const Size size = {made.width, made.height};
  if (size != output_size)
    return refuse("frames became " + text_of(size) + " where " + text_of(output_size) + " was agreed on");
  return checked(&zvf_chain_run, chain_.get(), pixels, stride, output, output_stride);
}

void LiveChain::reset() {
  if (chain_) checked(&zvf_chain_reset, chain_.get());
}

}  // namespace zvgst
