#ifndef KIT_REPORT_ENCODING_H
#define KIT_REPORT_ENCODING_H

#include <span>
#include <string>

#include "kit/report/pictures.h"

namespace kit {

std::string base64(std::span<const unsigned char> bytes);

/// The picture as a PNG file that says nothing but its colours: no gamma, no profile.
std::vector<unsigned char> png_of(const IndexedPicture& picture);
std::string png_uri(const IndexedPicture& picture);

/// Samples for a page: what each exceeds the one before it, or that of `base` at its place where there is a base of their
/// number, modulo 65536; all high bytes before all low bytes, compressed by zlib, as base64.
std::string pack_samples(std::span<const std::uint16_t> samples,
                         std::span<const std::uint16_t> base = {});

}  // namespace kit

#endif
