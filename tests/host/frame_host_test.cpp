#include "frame_host.h"

#include <numeric>

#include <gtest/gtest.h>

namespace framehost {
namespace {

TEST(FrameHost, KeepsWhatIsWrittenIntoAFrameOfAnySize) {
  const PoolHandle pool = make_pool();
  const Scope scope(*pool);
  zv_error* error = nullptr;
  const Frame frame(zv_create_frame(ZV_FRAME_TYPE_DEPTH, 0, 8, &error));
  const auto pixels = [&] {
    return std::vector(pixels_of(frame.get()), pixels_of(frame.get()) + pixel_count(frame.get()));
  };
  EXPECT_EQ(pixels(), (std::vector<std::uint16_t>{0, 0, 0, 0}));
  for (const std::size_t count : {4u, 100u, 3u, 0u, 5u}) {
    std::vector<std::uint16_t> written(count);
    std::iota(written.begin(), written.end(), std::uint16_t{1});
    zv_frame_update_data(frame.get(), written.data(), static_cast<std::uint32_t>(2 * count), &error);
    EXPECT_EQ(pixels(), written);
  }
  zv_frame_update_data(frame.get(), pixels_of(frame.get()) + 1, 6, &error);
  EXPECT_EQ(pixels(), (std::vector<std::uint16_t>{2, 3, 4}));
  EXPECT_EQ(error, nullptr);
}

}  // namespace
}  // namespace framehost
