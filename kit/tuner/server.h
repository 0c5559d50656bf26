#ifndef KIT_TUNER_SERVER_H
#define KIT_TUNER_SERVER_H

#include <memory>
#include <string>

#include "kit/filter/filter_library.h"
#include "kit/pipeline/frame_source.h"
#include "kit/tuner/answers.h"

namespace kit::tuner {

/// Serves the tuner's page on this machine. Every page has a session of its own; the one unused for longest goes when there are
/// too many.
class Server {
 public:
  /// @param port 0: a free one
  /// @throws Error when the port is taken
  Server(const FilterLibrary& library, FrameSource source, Settings settings, int port);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// Of the page.
  std::string address() const;
  /// Answers from now on, on threads of its own.
  void start();
  /// Waits until a chain that is being saved is whole, and saves no more.
  void finish();

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace kit::tuner

#endif
