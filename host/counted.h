/// Objects with counted references, which end by their own dispose().
#ifndef FILTERPROCESSOR_HOST_COUNTED_H
#define FILTERPROCESSOR_HOST_COUNTED_H

#include <atomic>

namespace counted {

template <typename Object>
void drop(const Object* object) {
  if (object != nullptr && object->references.fetch_sub(1) == 1) const_cast<Object*>(object)->dispose();
}

template <typename Object>
Object* share(const Object* object) {
  object->references.fetch_add(1);
  return const_cast<Object*>(object);
}

}  // namespace counted

#endif
