#include "framework/printed.h"

#include <charconv>
#include <iostream>

namespace filterprocessor {

Printed& Printed::operator<<(const char* text) {
  for (; *text != '\0'; ++text) *this << *text;
  return *this;
}

Printed& Printed::operator<<(char character) {
  *room(1) = character;
  ++size_;
  return *this;
}

Printed& Printed::operator<<(double number) {
  char* const at = room(kMostOfANumber);
  const auto end = std::to_chars(at, at + kMostOfANumber, number, std::chars_format::general, 6).ptr;
  size_ += static_cast<std::size_t>(end - at);
  return *this;
}

Printed& Printed::add(long long number) {
  char* const at = room(kMostOfANumber);
  size_ += static_cast<std::size_t>(std::to_chars(at, at + kMostOfANumber, number).ptr - at);
  return *this;
}

char* Printed::room(std::size_t count) {
  if (sizeof text_ - size_ < count) put_out();
  return text_ + size_;
}

void Printed::put_out() {
  std::cout.write(text_, static_cast<std::streamsize>(size_)).flush();
  size_ = 0;
}

}  // namespace filterprocessor
