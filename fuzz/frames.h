/// Frames for filters, as the development host makes them.
#ifndef FILTERPROCESSOR_FUZZ_FRAMES_H
#define FILTERPROCESSOR_FUZZ_FRAMES_H

#include <string>

#include "cases/source.h"
#include "dev_host.h"

namespace filterprocessor::fuzz {

/// A small depth frame or frame set that is usually one a camera could send, with any attribute beyond
/// its range now and then and more or fewer bytes than it describes.
devhost::Frame any_frame(Source& input);

/// Everything there is in a frame or in a set and its depth frame, as bytes.
std::string content_of(const zv_frame_t* frame);

}  // namespace filterprocessor::fuzz

#endif
