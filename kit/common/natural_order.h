#ifndef KIT_COMMON_NATURAL_ORDER_H
#define KIT_COMMON_NATURAL_ORDER_H

#include <string_view>

namespace kit {

/// Whether `a` comes before `b` as a person counts: runs of digits compare as numbers of any length, everything else byte by
/// byte, so f_2 comes before f_10. Texts that differ only in leading zeros are in the order of their bytes.
bool natural_less(std::string_view a, std::string_view b);

}  // namespace kit

#endif
