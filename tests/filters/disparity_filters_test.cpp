// DisparityTransform and OpenNIDisparityTransform, driven as a host does.
#include <cmath>
#include <cstring>

#include "filters/disparity_transform.h"
#include "filters/open_ni_disparity_transform.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kTransform = "DisparityTransform";
constexpr const char* kOpenNI = "OpenNIDisparityTransform";
using Values = std::vector<std::string>;

ZVDisparityParam camera(std::uint8_t pack_mode, bool dual, std::uint8_t bit_size = 16) {
  ZVDisparityParam p = {};
  p.zpd = 1000.0;
  p.zpps = 0.5;
  p.baseline = 50.1f;
  p.fx = 593.6;
  p.bitSize = bit_size;
  p.unit = 1.0f;
  p.packMode = pack_mode;
  p.isDualCamera = dual ? 2 : 0;
  p.dispIntPlace = 8;
  return p;
}

/// 256 x 256 pixels, one of every value.
devhost::FrameTraits every_code(const ZVDisparityParam& params) {
  devhost::FrameTraits traits;
  traits.width = traits.height = 256;
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  traits.bits = params.bitSize;
  traits.disparity = params;
  traits.pixels.resize(65536);
  for (std::size_t i = 0; i < traits.pixels.size(); ++i) traits.pixels[i] = static_cast<std::uint16_t>(i);
  return traits;
}

struct Settings {
  std::uint32_t max = 65535;
  std::uint32_t min = 0;
  float unit = 1.0f;
  float metadata = 0.0f;
  bool packed = false;
};

/// The depth of one code, one branch per way to read it; shares nothing with the library.
int expected_depth(const ZVDisparityParam& p, const Settings& s, bool open_ni, int code) {
  const float inverse = 1.0f / s.unit;
  const float low = inverse * static_cast<float>(s.min);
  const float high = inverse * static_cast<float>(s.max);
  if (p.bitSize < 16 && code >= 1 << p.bitSize) return 0;
  const double q8 = std::pow(2.0, p.bitSize - 8);
  double z = 0;
  if (open_ni || p.isDualCamera != 0) {
    if (code >= 65532) return 0;
    double d = code / q8;
    double end = 256;
    if (open_ni || p.packMode == 1) {
      d = 200.375 - 2.0 * code / q8;
      d += 128.0;
      d -= static_cast<double>(p.minDisparity);
    } else if (p.packMode == 3) {
      d = code / std::pow(2.0, p.bitSize - 10);
      end = 1024;
    }
    if (std::abs(d - p.invalidDisp) < 1e-4 || d <= 0 || d >= end) return 0;
    const float factor = p.unit * inverse;
    z = p.fx * p.baseline / (d + p.dispOffset + s.metadata);
    z *= factor;
    if (!open_ni && s.packed && z >= 4096) return 0;
  } else {
    double d = 0;
    if (p.packMode == 1) {
      if (code == 0 || code == 65535) return 0;
      d = 200.375 - 2.0 * code / q8;
    } else if (p.packMode == 2) {
      if (code == 8192 || code == 65535) return 0;
      int number = code % 16384;
      if (number >= 8192) number -= 16384;
      d = number / q8;
    } else {
      if (code > 65531) return 0;
      d = code / q8;
    }
    d += p.dispOffset;
    const double focal_baseline = p.fx * p.baseline;
    z = p.zpd * (static_cast<double>(p.unit) * inverse) / std::fma(d, p.zpd / focal_baseline, 1.0);
  }
  return z < low || z > high || z >= 65536 ? 0 : static_cast<int>(z);
}

void expect_every_code(const char* name, const ZVDisparityParam& params, const Settings& s,
                       const std::string& what) {
  FilterDriver filter(name);
  const bool open_ni = name == kOpenNI;
  if (s.unit != 1.0f || s.min != 0) {
    std::vector<std::string> values = {std::to_string(s.max), std::to_string(s.min),
                                       std::to_string(s.unit)};
    if (open_ni) values.insert(values.end(), {"0", "0", "1", "0", "0", "0", "0"});
    ASSERT_EQ(filter.update(values), kNoError);
  }
  devhost::FrameTraits traits = every_code(params);
  if (s.packed) traits.format = ZV_FORMAT_PACKED_CODE;
  if (s.metadata != 0.0f) traits.metadata[32] = static_cast<std::int64_t>(s.metadata);
  const devhost::Frame frame = devhost::make_frame(traits);
  // The third frame is the second that a table serves at the latest, where it may be computed instead of
  // loaded.
  for (int n = 0; n < 3; ++n) {
    const devhost::Frame output = filter.process(frame);
    ASSERT_EQ(filter.last_error(), kNoError) << what;
    const Pixels depth = devhost::inspect(output.get()).pixels;
    int valid = 0;
    for (int i = 0; i < 65536; ++i) {
      const int code = s.packed && !open_ni ? i >> 4 : i;
      int expected = expected_depth(params, s, open_ni, code);
      valid += expected != 0;
      if (s.packed && !open_ni) expected = (expected << 4 | (i & 15)) & 0xffff;
      ASSERT_EQ(depth[static_cast<std::size_t>(i)], expected)
          << what << ", pixel " << i << ", frame " << n;
    }
    EXPECT_GT(valid, 50) << what << ": the case must have something to compare";
  }
}

TEST(DisparityTables, EqualAnIndependentEvaluationForEveryCode) {
  struct Kind {
    std::uint8_t mode;
    bool dual;
  };
  for (const Kind kind : {Kind{1, true}, {2, true}, {3, true}, {1, false}, {2, false}, {4, false}}) {
    for (const std::uint8_t bits : {std::uint8_t{12}, std::uint8_t{14}, std::uint8_t{16}}) {
      const std::string what = std::string(kind.dual ? "dual" : "mono") + " mode " +
                               std::to_string(kind.mode) + ", " + std::to_string(bits) + " bits";
      const ZVDisparityParam plain = camera(kind.mode, kind.dual, bits);
      expect_every_code(kTransform, plain, {}, what);
      ZVDisparityParam offset = plain;
      offset.dispOffset = 1.37f;
      offset.minDisparity = 96.5f;
      offset.invalidDisp = 20;
      offset.unit = 0.75f;
      expect_every_code(kTransform, offset, {4000, 300, 0.5f, 3.0f}, what + ", every parameter");
      if (bits == 12) {
        expect_every_code(kTransform, plain, {10000, 100, 2.0f, 0.0f, true}, what + ", packed");
        expect_every_code(kTransform, offset, {10000, 100, 0.25f, -2.0f, true},
                          what + ", packed, offsets");
      }
      expect_every_code(kOpenNI, plain, {10000, 100}, what + ", OpenNI");
      expect_every_code(kOpenNI, offset, {5000, 200, 0.5f, 2.0f, true},
                        what + ", OpenNI, every parameter");
    }
  }
}

/// One row of pixels.
devhost::FrameTraits row(const ZVDisparityParam& params, Pixels pixels) {
  devhost::FrameTraits traits = every_code(params);
  traits.width = static_cast<std::uint32_t>(pixels.size());
  traits.height = 1;
  traits.pixels = std::move(pixels);
  return traits;
}

Pixels converted(FilterDriver& filter, const devhost::FrameTraits& traits) {
  const devhost::Frame output = filter.process(devhost::make_frame(traits));
  EXPECT_EQ(filter.last_error(), kNoError);
  return output ? devhost::inspect(output.get()).pixels : Pixels{};
}

/// Codes with 8 fraction bits at 10, 20 and 40 pixels of disparity: 2974.., 1487.. and 743.. mm.
const Pixels kCodes = {2560, 5120, 10240};
const Pixels kDepths = {2973, 1486, 743};

TEST(DisparityTransform, DescribesItsOutputAsDepth) {
  FilterDriver filter(kTransform);
  EXPECT_EQ(filter.update({"4000", "1", "0.5"}), kNoError);
  const devhost::Frame output = filter.process(devhost::make_frame(row(camera(2, true), kCodes)));
  ASSERT_TRUE(output);
  const devhost::FrameTraits depth = devhost::inspect(output.get());
  EXPECT_EQ(depth.pixel_type, ZV_PIXEL_TYPE_DEPTH);
  EXPECT_EQ(depth.bits, 13) << "4000 units of 0.5 need 13 bits";
  EXPECT_EQ(depth.value_scale, 0.5f);
  EXPECT_EQ(depth.pixels, (Pixels{5947, 2973, 1486}));
}

TEST(DisparityTransform, PassesOtherFramesThroughAsCopies) {
  FilterDriver filter(kTransform);
  devhost::FrameTraits depth = row(camera(2, true), kCodes);
  depth.pixel_type = ZV_PIXEL_TYPE_DEPTH;
  EXPECT_EQ(converted(filter, depth), kCodes);
  const devhost::Frame set = filter.process(devhost::make_frame_set(devhost::make_frame(depth)));
  ASSERT_TRUE(set);
  EXPECT_EQ(devhost::inspect(set.get()).type, ZV_FRAME_TYPE_SET);
  EXPECT_EQ(devhost::inspect(devhost::depth_frame_of(set.get()).get()).pixels, kCodes);
}

TEST(DisparityTransform, IgnoresABadConfigurationInSilence) {
  FilterDriver filter(kTransform);
  const devhost::FrameTraits traits = row(camera(2, true), kCodes);
  for (const std::vector<std::string>& values :
       std::vector<std::vector<std::string>>{{"0", "1", "1"},
                                             {"65536", "1", "1"},
                                             {"-1", "1", "1"},
                                             {"2000", "0", "1"},
                                             {"2000", "65536", "1"},
                                             {"2000", "1", "0.0005"},
                                             {"2000", "1", "10.5"},
                                             {"2000", "1", "nan"}}) {
    EXPECT_EQ(filter.update(values), kNoError);
    EXPECT_EQ(converted(filter, traits), kDepths);
  }
  EXPECT_EQ(filter.update({"2000", "1", "1", "1"}), kBadCount);
  EXPECT_EQ(filter.update({"2000", "1", "0.001"}), kNoError);
  EXPECT_EQ(filter.update({"2000", "1", "10.0"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{0, 148, 74}));
  for (const char* name : {kTransform, kOpenNI}) {  // each end of each range, seen by the unit
    for (Values ends : {Values{"1", "65535", "0.001"}, {"65535", "1", "10.0"}}) {
      const float unit = std::stof(ends[2]);
      if (name == kOpenNI) ends.insert(ends.end(), {"0", "0", "1", "0", "0", "0", "0"});
      FilterDriver at_the_ends(name);
      EXPECT_EQ(at_the_ends.update(ends), kNoError);
      const devhost::Frame output = at_the_ends.process(devhost::make_frame(traits));
      EXPECT_FLOAT_EQ(devhost::inspect(output.get()).value_scale, unit) << name;
    }
  }
}

TEST(DisparityTransform, DropsAChangeOfTheLowerLimitAlone) {
  FilterDriver filter(kTransform);
  const devhost::FrameTraits traits = row(camera(2, true), kCodes);
  EXPECT_EQ(filter.update({"5000", "1", "1"}), kNoError);
  EXPECT_EQ(filter.update({"5000", "1000", "1"}), kNoError);
  EXPECT_EQ(converted(filter, traits), kDepths);
  EXPECT_EQ(filter.update({"5001", "2", "1"}), kNoError);
  EXPECT_EQ(converted(filter, traits), kDepths) << "not even remembered";
  EXPECT_EQ(filter.update({"5000", "1000", "1"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{2973, 1486, 0}));
  EXPECT_EQ(filter.update({"2000", "1000", "1"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{0, 1486, 0})) << "a new upper limit alone counts";
}

TEST(DisparityTransform, ANewCorrectionAloneRebuildsNothing) {
  FilterDriver filter(kTransform);
  devhost::FrameTraits traits = row(camera(2, true), kCodes);
  EXPECT_EQ(converted(filter, traits), kDepths);
  traits.metadata[32] = 10;
  EXPECT_EQ(converted(filter, traits), kDepths);
  EXPECT_EQ(filter.update({"60000", "1", "1"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{1486, 991, 594})) << "20, 30 and 50 pixels";
}

TEST(DisparityTransform, RebuildsAtEveryFrameWhereAParameterIsNoNumberOrTheBitSizesDiffer) {
  for (const bool nan : {true, false}) {
    FilterDriver filter(kTransform);
    devhost::FrameTraits traits = row(camera(2, true), kCodes);
    if (nan) traits.disparity.zpps = std::nan("");
    if (!nan) traits.disparity.bitSize = 14;
    EXPECT_EQ(converted(filter, traits), kDepths) << "the frame's 16 bits count";
    traits.metadata[32] = 10;
    EXPECT_EQ(converted(filter, traits), (Pixels{1486, 991, 594}));
    traits.metadata.clear();
    EXPECT_EQ(converted(filter, traits), kDepths) << "a kept table is the right one";
  }
}

TEST(DisparityTransform, TheProfileIsReadAgainOnlyForANewSizeFormatOrBitSize) {
  FilterDriver filter(kTransform);
  devhost::FrameTraits traits = row(camera(2, true), kCodes);
  EXPECT_EQ(converted(filter, traits), kDepths);
  traits.disparity.baseline *= 2;
  EXPECT_EQ(converted(filter, traits), kDepths) << "a new baseline alone goes unnoticed";
  traits.format = 1;
  EXPECT_EQ(converted(filter, traits), (Pixels{5947, 2973, 1486}));
  traits.disparity.baseline /= 2;
  traits.bits = 15;  // read with one fraction bit less
  EXPECT_EQ(converted(filter, traits), (Pixels{1486, 743, 371}));
}

TEST(DisparityFilters, AFrameOfAnotherSizeBringsItsOwnProfile) {
  for (const char* name : {kTransform, kOpenNI}) {
    FilterDriver filter(name);
    devhost::FrameTraits traits = row(camera(1, true), {30000});
    for (const auto& [width, height] : {std::pair{4u, 1u}, {8u, 1u}, {8u, 2u}}) {
      traits.width = width;
      traits.height = height;
      traits.pixels.resize(std::size_t{width} * height, 30000);
      traits.disparity.baseline *= 1.5f;
      traits.disparity.fx *= 2;
      const int depth = expected_depth(traits.disparity, {}, name == kOpenNI, 30000);
      EXPECT_EQ(converted(filter, traits),
                Pixels(traits.pixels.size(), static_cast<std::uint16_t>(depth)))
          << name;
    }
  }
}

TEST(DisparityTransform, AResetTableIsRebuilt) {
  FilterDriver filter(kTransform);
  const devhost::FrameTraits traits = row(camera(2, true), kCodes);
  EXPECT_EQ(converted(filter, traits), kDepths);
  filter.reset();
  EXPECT_EQ(converted(filter, traits), kDepths);
}

TEST(DisparityTransform, AnUnknownPackModeFailsOnceAndThenGivesZeros) {
  for (const bool dual : {true, false}) {
    FilterDriver filter(kTransform);
    const char* rule = dual ? "stereo_camera_init_lookup_table" : "mono_camera_init_lookup_table";
    const devhost::FrameTraits traits = row(camera(dual ? 4 : 3, dual), kCodes);
    const devhost::LiveObjects before = devhost::live_objects();
    const std::string printed =
        FilterDriver::output_of([&] { EXPECT_FALSE(filter.process(devhost::make_frame(traits))); });
    EXPECT_EQ(filter.last_error(),
              (ErrorTexts{"Unsupported disparity data pack type error", rule, rule, 4}));
    EXPECT_NE(printed.find(std::string("call: ") + rule + "(" + rule + ")"), std::string::npos);
    EXPECT_EQ(devhost::live_objects().frames, before.frames);
    EXPECT_EQ(converted(filter, traits), Pixels(3));
  }
}

TEST(DisparityTransform, CodesPastTheTableGiveZero) {
  FilterDriver filter(kTransform);
  devhost::FrameTraits traits = row(camera(2, true, 12), {160, 4095, 4096, 65535});
  for (int n = 0; n < 3; ++n) EXPECT_EQ(converted(filter, traits), (Pixels{2973, 116, 0, 0}));
  traits.disparity.bitSize = traits.bits = 0;
  EXPECT_EQ(converted(filter, traits), Pixels(4));
  traits.disparity.bitSize = traits.bits = 200;
  EXPECT_EQ(converted(filter, traits), Pixels(4));
}

Values open_ni(int width, int height, const char* scale, int x_cut = 0, int y_cut = 0, int x_set = 0,
               int y_set = 0) {
  return {"65535",
          "1",
          "1",
          std::to_string(width),
          std::to_string(height),
          scale,
          std::to_string(x_cut),
          std::to_string(y_cut),
          std::to_string(x_set),
          std::to_string(y_set)};
}
ErrorTexts out_of_range(const char* name) {
  return {"params out of range", "update_filter_config", name, 4};
}

/// Codes whose depth tells where they stood: column plus 16 times the row, all of them distinct depths.
devhost::FrameTraits positions(std::uint32_t width, std::uint32_t height) {
  devhost::FrameTraits traits = every_code(camera(1, true, 16));
  traits.width = width;
  traits.height = height;
  traits.pixels.clear();
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      traits.pixels.push_back(static_cast<std::uint16_t>(40000 + 60 * (x + 16 * y)));
    }
  }
  traits.intrinsic = {500, 501, 320, 200, 640, 400};
  return traits;
}
int depth_at(const devhost::FrameTraits& source, std::uint32_t x, std::uint32_t y) {
  if (x >= source.width || y >= source.height) return 0;
  return expected_depth(source.disparity, {65535, 1}, true, source.pixels[y * source.width + x]);
}

TEST(OpenNIDisparityTransform, SamplesScalesCropsAndBlanks) {
  struct Case {
    int width, height;
    const char* scale;
    int x_cut, y_cut, x_set, y_set;
  };
  for (const Case& c : {Case{16, 12, "1", 0, 0, 0, 0},
                        {8, 6, "0.5", 0, 0, 0, 0},
                        {30, 20, "2", 1, 2, 3, 1},
                        {20, 20, "1", 5, 4, 0, 0},
                        {6, 5, "1", 3, 0, -1, 7},
                        {16, 12, "1", 65536, 65535, 0, 0}}) {
    FilterDriver filter(kOpenNI);
    ASSERT_EQ(filter.update(open_ni(c.width, c.height, c.scale, c.x_cut, c.y_cut, c.x_set, c.y_set)),
              kNoError);
    devhost::FrameTraits source = positions(16, 12);
    source.format = 7;
    const devhost::Frame output = filter.process(devhost::make_frame(source));
    ASSERT_TRUE(output) << filter.last_error();
    const devhost::FrameTraits depth = devhost::inspect(output.get());
    ASSERT_EQ(depth.pixels.size(), static_cast<std::size_t>(c.width * c.height));
    const auto step = static_cast<std::uint32_t>(65536 / std::stof(c.scale) + 1);
    for (int y = 0; y < c.height; ++y) {
      for (int x = 0; x < c.width; ++x) {
        const auto sx =
            ((static_cast<std::uint32_t>(c.x_cut) << 16) + static_cast<std::uint32_t>(x) * step) >> 16;
        const auto sy =
            ((static_cast<std::uint32_t>(c.y_cut) << 16) + static_cast<std::uint32_t>(y) * step) >> 16;
        const bool reached = static_cast<float>(x) < std::trunc(16 * std::stof(c.scale)) &&
                             static_cast<float>(y) < std::trunc(12 * std::stof(c.scale));
        const bool kept = x >= c.x_set && x < c.width - c.x_set && y >= c.y_set && y < c.height - c.y_set;
        ASSERT_EQ(depth.pixels[static_cast<std::size_t>(y * c.width + x)],
                  reached && kept ? depth_at(source, sx, sy) : 0)
            << x << ", " << y << " of " << c.width << " x " << c.height;
      }
    }
    EXPECT_EQ(depth.type, ZV_FRAME_TYPE_DEPTH);
    EXPECT_EQ(depth.format, 7);
    EXPECT_EQ(depth.pixel_type, ZV_PIXEL_TYPE_DEPTH);
    EXPECT_EQ(depth.width, static_cast<std::uint32_t>(c.width));
    EXPECT_EQ(devhost::inspect_profile(output.get()).height, static_cast<std::uint32_t>(c.height));
  }
}

TEST(OpenNIDisparityTransform, RewritesTheIntrinsicsOfTheSampledProfile) {
  struct Case {
    int width, height;
    float cx;
  };
  for (const Case& c :
       {Case{640, 320, 280}, {270, 200, 295}, {320, 160, 300}, {540, 400, 270}, {640, 400, 320}}) {
    FilterDriver filter(kOpenNI);
    ASSERT_EQ(filter.update(open_ni(c.width, c.height, "0.5")), kNoError);
    const devhost::LiveObjects before = devhost::live_objects();
    const devhost::Frame set =
        filter.process(devhost::make_frame_set(devhost::make_frame(positions(16, 12))));
    ASSERT_TRUE(set);
    EXPECT_EQ(devhost::inspect(set.get()).type, ZV_FRAME_TYPE_SET);
    const devhost::Frame depth = devhost::depth_frame_of(set.get());
    EXPECT_EQ(devhost::inspect(depth.get()).type, ZV_FRAME_TYPE_SET) << "the type handed in";
    const ZVCameraIntrinsic i = devhost::inspect_profile(depth.get()).intrinsic;
    EXPECT_EQ(i.cx, c.cx);
    EXPECT_EQ(i.cy, 200);
    EXPECT_EQ(i.fx, 500);
    EXPECT_EQ(i.width, c.width);
    EXPECT_EQ(devhost::live_objects().profiles, before.profiles + 2) << "the cached one and the output's";
  }
}

TEST(OpenNIDisparityTransform, SamplingClearsEntryZeroForGood) {
  FilterDriver filter(kOpenNI);
  devhost::FrameTraits traits = row(camera(1, true), {0, 30000});
  traits.disparity.minDisparity = 100;  // code 0 is then a disparity of 228.375 pixels
  const Pixels whole = converted(filter, traits);
  EXPECT_NE(whole[0], 0);
  EXPECT_EQ(filter.update({"10000", "100", "1", "2", "1", "1", "0", "0", "0", "0"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{0, whole[1]}));
  EXPECT_EQ(filter.update({"10000", "100", "1", "0", "0", "1", "0", "0", "0", "0"}), kNoError);
  EXPECT_EQ(converted(filter, traits), (Pixels{0, whole[1]})) << "until the next rebuild";
  filter.reset();
  EXPECT_EQ(converted(filter, traits), whole);
}

TEST(OpenNIDisparityTransform, KeepsWhatWasCheckedBeforeABadValue) {
  FilterDriver filter(kOpenNI);
  EXPECT_EQ(filter.update(open_ni(2, 1, "1")), kNoError);
  EXPECT_EQ(filter.update(open_ni(65536, 1, "1")), out_of_range("dst_width"));
  EXPECT_EQ(filter.update(open_ni(-1, 1, "1")), out_of_range("dst_width"));
  EXPECT_EQ(filter.update(open_ni(4, 70000, "1")), out_of_range("dst_height"));
  EXPECT_EQ(converted(filter, positions(16, 12)).size(), 4u);
  EXPECT_EQ(filter.update(open_ni(3, 3, "0.05")), out_of_range("scale"));
  EXPECT_EQ(filter.update(open_ni(3, 3, "nan")), out_of_range("scale"));
  EXPECT_EQ(filter.update(open_ni(3, 3, "50.5")), out_of_range("scale"));
  EXPECT_EQ(converted(filter, positions(16, 12)).size(), 9u);
  EXPECT_EQ(filter.update(open_ni(0, 3, "0.05")), out_of_range("scale"));
  EXPECT_FALSE(filter.process(devhost::make_frame(positions(16, 12))));
  EXPECT_EQ(filter.last_error(),
            (ErrorTexts{"Frame sampling process error", "filter_process", "frameType", 4}))
      << "sampling stays enabled with a width of 0";
  EXPECT_EQ(filter.update({"1"}), kBadCount);
}

TEST(OpenNIDisparityTransform, RefusesATargetOfMoreThan32BitsOfBytes) {
  FilterDriver filter(kOpenNI);
  EXPECT_EQ(filter.update(open_ni(65535, 65535, "1")), kNoError);
  devhost::start_call_log();
  EXPECT_FALSE(filter.process(devhost::make_frame(positions(16, 12))));
  const std::vector<std::string> calls = devhost::stop_call_log();
  EXPECT_EQ(filter.last_error(),
            (ErrorTexts{"Frame sampling process error", "filter_process", "frameType", 4}));
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "zv_create_frame"), 0);
}

}  // namespace
}  // namespace filterprocessor
