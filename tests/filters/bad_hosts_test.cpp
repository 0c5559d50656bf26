// Hosts that describe frames badly: every filter either refuses with an error or gives a frame, and
// leaves nothing behind. That it reads and writes nothing outside its buffers is for the sanitizers to
// say.
#include <functional>
#include <limits>

#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

using Traits = devhost::FrameTraits;

struct Fault {
  std::string name;
  std::function<void(Traits&)> apply;
};

std::vector<Fault> all_faults() {
  std::vector<Fault> faults;
  const auto add = [&](const std::string& name, auto value, auto set) {
    faults.push_back({name + " " + std::to_string(value), [=](Traits& t) { set(t, value); }});
  };
  for (const std::uint32_t size : {0u, 1u, 65535u, 65536u, 0x80000000u, 0xffffffffu}) {
    add("width", size, [](Traits& t, std::uint32_t v) { t.width = v; });
    add("height", size, [](Traits& t, std::uint32_t v) { t.height = v; });
    add("width and height", size, [](Traits& t, std::uint32_t v) { t.width = t.height = v; });
  }
  for (const int pixels : {0, 1, 40 * 24 - 1, 40 * 24 + 1}) {
    add("pixels", pixels, [](Traits& t, int v) { t.pixels.resize(static_cast<std::size_t>(v), 1000); });
  }
  for (const int bits : {0, 1, 7, 17, 32, 255}) {
    const auto narrow = static_cast<std::uint8_t>(bits);
    add("bits", narrow, [](Traits& t, std::uint8_t v) { t.bits = v; });
    add("bits of the profile", narrow, [](Traits& t, std::uint8_t v) { t.disparity.bitSize = v; });
    add("both bits", narrow, [](Traits& t, std::uint8_t v) { t.bits = t.disparity.bitSize = v; });
    add("pack mode", narrow, [](Traits& t, std::uint8_t v) { t.disparity.packMode = v; });
    add("pack mode of one camera", narrow, [](Traits& t, std::uint8_t v) {
      t.disparity.packMode = v;
      t.disparity.isDualCamera = 0;
    });
    add("packed codes with bits", narrow, [](Traits& t, std::uint8_t v) {
      t.format = ZV_FORMAT_PACKED_CODE;
      t.bits = v;
    });
  }
  for (const std::int32_t code : {-2147483647 - 1, -1, 0, 99, 2147483647}) {
    add("integer bits", code, [](Traits& t, std::int32_t v) { t.disparity.dispIntPlace = v; });
    add("invalid disparity", code, [](Traits& t, std::int32_t v) { t.disparity.invalidDisp = v; });
    add("pixel type", code, [](Traits& t, std::int32_t v) { t.pixel_type = v; });
    add("metadata", code, [](Traits& t, std::int32_t v) { t.metadata[32] = std::int64_t{v} << 32; });
  }
  using Limits = std::numeric_limits<float>;
  for (const float number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 0.0f, -1.0f,
                             Limits::denorm_min(), Limits::max()}) {
    add("value scale", number, [](Traits& t, float v) { t.value_scale = v; });
    add("focal length", number, [](Traits& t, float v) { t.disparity.fx = double{v}; });
    add("baseline", number, [](Traits& t, float v) { t.disparity.baseline = v; });
    add("unit", number, [](Traits& t, float v) { t.disparity.unit = v; });
    add("smallest disparity", number, [](Traits& t, float v) { t.disparity.minDisparity = v; });
    add("offset", number, [](Traits& t, float v) { t.disparity.dispOffset = v; });
    add("plane of one camera", number, [](Traits& t, float v) {
      t.disparity.isDualCamera = 0;
      t.disparity.zpd = t.disparity.zpps = double{v};
    });
  }
  return faults;
}

/// Two frames, so that kept tables, buffers and histories are used too. Returns how many came back.
int drive(const FilterUse& use, const devhost::Frame& input, const std::string& what) {
  int frames = 0;
  FilterDriver filter(use.name);
  EXPECT_EQ(filter.update(use.configuration), kNoError);
  for (int n = 0; n < 2; ++n) {
    const devhost::Frame output = filter.process(input);
    EXPECT_EQ(output != nullptr, filter.last_error() == kNoError) << what << ": " << filter.last_error();
    frames += output != nullptr;
  }
  PrivFilterContext* context = filter.context();
  const devhost::Frame unheard(context->process(context->filter, input.get(), nullptr));
  EXPECT_EQ(unheard != nullptr, frames > 0) << what << ", without an error slot";
  return frames;
}

TEST(BadHosts, GetAnErrorOrAFrameAndLoseNothing) {
  int tried = 0;
  int refused = 0;
  testing::internal::CaptureStdout();
  for (const Fault& fault : all_faults()) {
    for (FilterUse use : every_filter(40, 24)) {
      for (const std::int32_t pixel_type : {0, 2, 4}) {
        const devhost::LiveObjects before = devhost::live_objects();
        Traits traits = lively_frame(40, 24, pixel_type, 1);
        fault.apply(traits);
        const std::string what =
            std::string(use.name) + ", type " + std::to_string(pixel_type) + ", " + fault.name;
        refused += drive(use, devhost::make_frame(traits), what) == 0;
        EXPECT_EQ(devhost::live_objects(), before) << what;
        ++tried;
      }
    }
  }
  testing::internal::GetCapturedStdout();
  std::cout << tried << " badly described frames, " << refused << " refused\n";
  EXPECT_GT(refused, 100);
  EXPECT_GT(tried - refused, 1000);
}

TEST(BadHosts, WithoutDataEveryFilterRefuses) {
  for (const FilterUse& use : every_filter(40, 24)) {
    const devhost::Frame input = devhost::make_frame(lively_frame(40, 24, use.pixel_type, 1));
    FilterDriver filter(use.name);
    EXPECT_EQ(filter.update(use.configuration), kNoError);
    const devhost::LiveObjects before = devhost::live_objects();
    devhost::hide_data(true);
    EXPECT_FALSE(filter.process(input)) << use.name;
    EXPECT_EQ(filter.last_error(), kBadFrame) << use.name;
    devhost::hide_data(false);
    EXPECT_EQ(devhost::live_objects().frames, before.frames) << use.name;
    EXPECT_TRUE(filter.process(input)) << use.name << " afterwards: " << filter.last_error();
  }
}

}  // namespace
}  // namespace filterprocessor
