#include "frame_host.h"

#include <numeric>
#include <string>

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

TEST(FrameHost, ShortensTheTextsOfErrors) {
  const PoolHandle pool = make_pool();
  const Scope scope(*pool);
  const zv_error* const error = zv_create_error(1, std::string(300, 'm').c_str(), "function", nullptr, 7);
  zv_create_error(1, "another", "", "", 8);
  EXPECT_EQ(zv_error_get_message(error), std::string(255, 'm'));
  EXPECT_STREQ(zv_error_get_function(error), "function");
  EXPECT_STREQ(zv_error_get_args(error), "");
  EXPECT_EQ(zv_error_get_exception_type(error), 7);
}

}  // namespace
}  // namespace framehost
