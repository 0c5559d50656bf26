#include "kit/tuner/sessions.h"

#include <algorithm>

namespace kit::tuner {

bool Sessions::work(const std::string& client, std::uint64_t number,
                    const std::function<void(Session&)>& work) {
  const std::shared_ptr<Seat> seat = seat_of(client, number);
  const std::lock_guard lock(seat->mutex);
  if (!is_newest(*seat, number)) return false;
  work(seat->session);
  return true;
}

std::shared_ptr<Sessions::Seat> Sessions::seat_of(const std::string& client, std::uint64_t number) {
  const std::lock_guard lock(mutex_);
  auto found = seats_.find(client);
  if (found == seats_.end()) {
    if (seats_.size() == kMost) {
      // Whoever works in it keeps it until then.
      seats_.erase(std::min_element(seats_.begin(), seats_.end(), [](const auto& a, const auto& b) {
        return a.second->used < b.second->used;
      }));
    }
    found = seats_.emplace(client, std::make_shared<Seat>(library_, frames_)).first;
  }
  found->second->used = ++uses_;
  found->second->newest = std::max(found->second->newest, number);
  return found->second;
}

bool Sessions::is_newest(const Seat& seat, std::uint64_t number) {
  const std::lock_guard lock(mutex_);
  return seat.newest == number;
}

}  // namespace kit::tuner
