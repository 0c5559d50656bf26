#ifndef FILTERPROCESSOR_FRAMEWORK_PRINTED_H
#define FILTERPROCESSOR_FRAMEWORK_PRINTED_H

#include <concepts>
#include <cstddef>

namespace filterprocessor {

/// A text for standard output that goes out when it is complete, through std::cout but with numbers as a
/// new stream in the "C" locale writes them, whatever the program has set there or for itself. Takes no
/// memory.
class Printed {
 public:
  Printed() = default;
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;
  ~Printed() { put_out(); }

  Printed& operator<<(const char* text);
  Printed& operator<<(char character);
  Printed& operator<<(unsigned char character) { return *this << static_cast<char>(character); }
  Printed& operator<<(double number);
  template <std::integral Number>
  Printed& operator<<(Number number) {
    return add(static_cast<long long>(number));
  }

 private:
  static constexpr std::size_t kMostOfANumber = 64;

  Printed& add(long long number);
  /// Where `count` characters can be added.
  char* room(std::size_t count);
  void put_out();

  char text_[1024];
  std::size_t size_ = 0;
};

}  // namespace filterprocessor

#endif
