#ifndef KIT_IMAGE_IMAGE_FILES_H
#define KIT_IMAGE_IMAGE_FILES_H

#include <filesystem>
#include <string>
#include <vector>

#include "kit/image/image_file.h"

namespace kit {

/// The end of a preview's file name.
inline constexpr const char* kPreviewSuffix = "_preview.png";

enum class FileOrder {
  name,     ///< byte by byte
  natural,  ///< as natural_less()
  time,     ///< by the last change, at the same time in natural order
};

/// What is taken from folders, and in what order files come.
struct Selection {
  FileOrder order = FileOrder::natural;
  std::vector<std::string> include = {};  ///< patterns of names, of which one has to fit; none: all do
  std::vector<std::string> exclude = {};  ///< patterns of names, of which none may fit
  bool one_format = true;                 ///< a folder's images have to be of one
};

/// The image files named: files as they are, folders as the images in them, all in order. What is no image, hidden files and our
/// own previews (which their name and their colours tell) are left out of folders.
/// @throws Error for an input that is missing, unreadable, of no known format or holds no image, and for a folder with images of a format
/// that is not read, or of two
std::vector<std::filesystem::path> collect_images(const std::vector<std::string>& inputs,
                                                  const Selection& selection = {});

/// The one image of a file.
/// @param file of a known format
/// @param size of a file that does not say its own
/// @throws Error
Image read_image(const std::filesystem::path& file, const Size& size = {});

}  // namespace kit

#endif
