#ifndef KIT_IMAGE_IMAGE_FILES_H
#define KIT_IMAGE_IMAGE_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include "kit/image/codec.h"

namespace kit {

/// The end of a preview's file name.
inline constexpr const char* kPreviewSuffix = "_preview.png";

/// The format that the name says; null for none.
const Codec* codec_of(const std::filesystem::path& file);

/// The image files named: files as they are, folders as the images in them (other files, hidden files and
/// previews left out), all in the order of their names.
/// @throws Error for an input that is missing, is of no known format or holds no image
std::vector<std::filesystem::path> collect_images(const std::vector<std::string>& inputs);

/// @param file of a known format
/// @param size of a file that does not say its own
/// @throws Error
Image read_image(const std::filesystem::path& file, const Size& size = {});

}  // namespace kit

#endif
