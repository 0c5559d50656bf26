#ifndef KIT_COMMON_DESCRIPTOR_H
#define KIT_COMMON_DESCRIPTOR_H

#include <unistd.h>
#include <utility>

namespace kit {

/// An open file's number; a negative one is none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }
  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  int release() { return std::exchange(number_, -1); }
  bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

}  // namespace kit

#endif
