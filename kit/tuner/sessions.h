#ifndef KIT_TUNER_SESSIONS_H
#define KIT_TUNER_SESSIONS_H

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "kit/tuner/session.h"

namespace kit::tuner {

/// The sessions of the pages, by the names that these have chosen. For any thread.
class Sessions {
 public:
  static constexpr std::size_t kMost = 16;

  Sessions(const FilterLibrary& library, FrameCache& frames) : library_(library), frames_(frames) {}

  /// Does the work of a page's wish in its session, one wish at a time. Wishes that have waited while a newer one came are not
  /// worth the work.
  /// @return whether it was done
  bool work(const std::string& client, std::uint64_t number, const std::function<void(Session&)>& work);

 private:
  struct Seat {
    Seat(const FilterLibrary& library, FrameCache& frames) : session(library, frames) {}
    std::mutex mutex;  // of the session
    Session session;
    std::uint64_t newest = 0;  // of all wishes that have come
    std::uint64_t used = 0;
  };
  std::shared_ptr<Seat> seat_of(const std::string& client, std::uint64_t number);
  bool is_newest(const Seat& seat, std::uint64_t number);

  const FilterLibrary& library_;
  FrameCache& frames_;
  std::mutex mutex_;  // of all but the sessions
  std::unordered_map<std::string, std::shared_ptr<Seat>> seats_;
  std::uint64_t uses_ = 0;
};

}  // namespace kit::tuner

#endif
