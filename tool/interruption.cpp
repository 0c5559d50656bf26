#include "interruption.h"

#include <atomic>

namespace zvfilter {

namespace {

std::atomic<bool> interrupted = false;
constexpr std::array kSignals = {SIGINT, SIGTERM};
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void on_signal(int) { interrupted = true; }

}  // namespace

Interruption::Interruption() {
  struct sigaction ask {};
  ask.sa_handler = on_signal;
  ask.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  for (std::size_t i = 0; i < before_.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &before_[i]);
    // Who started the program may have chosen that it goes on.
    if (before_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &ask, nullptr);
  }
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < before_.size(); ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
}

bool Interruption::asked() { return interrupted; }

}  // namespace zvfilter
