// DisparityTransform and OpenNIDisparityTransform, driven as a host does.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

constexpr const char* kTransform = "DisparityTransform";
constexpr const char* kOpenNI = "OpenNIDisparityTransform";
using Values = std::vector<std::string>;

ZVDisparityParam camera(int pack_mode, bool dual, int bit_size = 16) {
  ZVDisparityParam p = {};
  p.zpd = 1000.0;
  p.zpps = 0.5;
  p.baseline = 50.1f;
  p.fx = 593.6;
  p.bitSize = static_cast<std::uint8_t>(bit_size);
  p.unit = 1.0f;
  p.packMode = static_cast<std::uint8_t>(pack_mode);
  p.isDualCamera = dual ? 2 : 0;
  p.dispIntPlace = 8;
  return p;
}

devhost::FrameTraits disparity_frame(const ZVDisparityParam& params, Pixels codes,
                                     std::uint32_t height = 1) {
  devhost::FrameTraits traits = frame_of(std::move(codes), height);
  traits.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  traits.bits = params.bitSize;
  traits.disparity = params;
  return traits;
}

/// The texts of both filters' parameters; all of them for OpenNIDisparityTransform, which does not sample.
Values limits_for(const char* name, Values limits) {
  if (name == kOpenNI) limits.insert(limits.end(), {"0", "0", "1", "0", "0", "0", "0"});
  return limits;
}

struct Settings {
  std::uint32_t max = 65535;
  std::uint32_t min = 0;
  float unit = 1.0f;
  float metadata = 0.0f;
  bool packed = false;
};

Settings of_a_new_filter(bool open_ni) { return open_ni ? Settings{10000, 100} : Settings{}; }

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

void expect_every_code(const char* name, const ZVDisparityParam& params, const Settings& s) {
  SCOPED_TRACE(testing::Message() << name << (params.isDualCamera ? ", dual mode " : ", mono mode ")
                                  << int{params.packMode} << ", " << int{params.bitSize}
                                  << " bits, offset " << double{params.dispOffset} << ", packed "
                                  << s.packed);
  const bool open_ni = name == kOpenNI;
  const Settings fresh = of_a_new_filter(open_ni);
  Values values;
  if (s.unit != 1.0f || s.max != fresh.max || s.min != fresh.min)
    values = limits_for(name, {std::to_string(s.max), std::to_string(s.min), std::to_string(s.unit)});
  FilterDriver filter(name, values);
  Pixels every_code(65536), expected;
  std::iota(every_code.begin(), every_code.end(), std::uint16_t{0});
  devhost::FrameTraits traits = disparity_frame(params, every_code, 256);
  if (s.packed) traits.format = ZV_FORMAT_PACKED_CODE;
  if (s.metadata != 0.0f) traits.metadata[32] = static_cast<std::int64_t>(s.metadata);
  for (int i = 0; i < 65536; ++i) {
    const bool packed = s.packed && !open_ni;
    const int depth = expected_depth(params, s, open_ni, packed ? i >> 4 : i);
    expected.push_back(static_cast<std::uint16_t>(packed ? depth << 4 | (i & 15) : depth));
  }
  EXPECT_GT(std::ranges::count_if(expected, [](int depth) { return depth > 15; }), 50)
      << "the case must have something to compare";
  // The third frame is the second that a table serves at the latest, where it may be computed instead of
  // loaded.
  for (int n = 0; n < 3; ++n) {
    const Pixels depth = filter.filtered(traits);
    const auto [wrong, right] = std::ranges::mismatch(depth, expected);
    ASSERT_EQ(depth.end() - wrong, 0) << "frame " << n << ": " << *wrong << ", not " << *right
                                      << ", for pixel " << wrong - depth.begin();
  }
}

TEST(DisparityTables, EqualAnIndependentEvaluationForEveryCode) {
  for (const auto& [mode, dual] :
       {std::pair{1, true}, {2, true}, {3, true}, {1, false}, {2, false}, {4, false}}) {
    for (const int bits : {12, 14, 16}) {
      const ZVDisparityParam plain = camera(mode, dual, bits);
      expect_every_code(kTransform, plain, {});
      ZVDisparityParam offset = plain;
      offset.dispOffset = 1.37f;
      offset.minDisparity = 96.5f;
      offset.invalidDisp = 20;
      offset.unit = 0.75f;
      expect_every_code(kTransform, offset, {4000, 300, 0.5f, 3.0f});
      if (bits == 12) {
        expect_every_code(kTransform, plain, {10000, 100, 2.0f, 0.0f, true});
        expect_every_code(kTransform, offset, {10000, 100, 0.25f, -2.0f, true});
      }
      expect_every_code(kOpenNI, plain, {10000, 100});
      ZVDisparityParam near = plain;
      near.baseline = 10;
      expect_every_code(kOpenNI, near, {10000, 100});
      expect_every_code(kOpenNI, offset, {5000, 200, 0.5f, 2.0f, true});
    }
  }
}

/// Codes with 8 fraction bits at 10, 20 and 40 pixels of disparity: 2974.., 1487.. and 743.. mm.
const devhost::FrameTraits kThreeCodes = disparity_frame(camera(2, true), {2560, 5120, 10240});
const Pixels kDepths = {2973, 1486, 743};

TEST(DisparityTransform, DescribesItsOutputAsDepthAndCopiesOtherFrames) {
  FilterDriver filter(kTransform, {"4000", "1", "0.5"});
  const devhost::FrameTraits depth = filter.output(kThreeCodes);
  EXPECT_EQ(depth.pixel_type, ZV_PIXEL_TYPE_DEPTH);
  EXPECT_EQ(depth.bits, 13) << "4000 millimetres are 8000 units";
  EXPECT_EQ(depth.value_scale, 0.5f);
  EXPECT_EQ(depth.pixels, (Pixels{5947, 2973, 1486}));
  EXPECT_EQ(filter.filtered(depth), depth.pixels);
  EXPECT_EQ(filter.update({"4096", "1", "1"}), kNoError);
  EXPECT_EQ(filter.output(kThreeCodes).bits, 13);
}

TEST(DisparityFilters, IgnoreBadDepthLimitsInSilence) {
  for (const char* name : {kTransform, kOpenNI}) {
    const auto unit_after = [&](const Values& limits) {
      return FilterDriver(name, limits_for(name, limits)).output(kThreeCodes).value_scale;
    };
    for (const Values& limits : {Values{"0", "1", "2"},
                                 {"65536", "1", "2"},
                                 {"2000", "0", "2"},
                                 {"2000", "65536", "2"},
                                 {"2000", "1", "0.0005"},
                                 {"2000", "1", "10.5"},
                                 {"2000", "1", "nan"}}) {
      EXPECT_EQ(unit_after(limits), 1.0f) << name << ": " << limits[0] << ' ' << limits[1];
    }
    EXPECT_FLOAT_EQ(unit_after({"1", "65535", "0.001"}), 0.001f) << name;
    EXPECT_FLOAT_EQ(unit_after({"65535", "1", "10.0"}), 10.0f) << name;
  }
}

TEST(DisparityTransform, DropsAChangeOfTheLowerLimitAlone) {
  FilterDriver filter(kTransform);
  const auto converted_with = [&](const Values& limits) {
    EXPECT_EQ(filter.update(limits), kNoError);
    return filter.filtered(kThreeCodes);
  };
  EXPECT_EQ(converted_with({"5000", "1", "1"}), kDepths);
  EXPECT_EQ(converted_with({"5000", "1000", "1"}), kDepths);
  EXPECT_EQ(converted_with({"5001", "2", "1"}), kDepths) << "not even remembered";
  EXPECT_EQ(converted_with({"5000", "1000", "1"}), (Pixels{2973, 1486, 0}));
  EXPECT_EQ(converted_with({"2000", "1000", "1"}), (Pixels{0, 1486, 0}))
      << "a new upper limit alone counts";
}

TEST(DisparityTransform, OnlyWhereAParameterIsNoNumberOrTheBitSizesDifferEveryFrameRebuilds) {
  for (const auto& [zpps, bits, always] : {std::tuple{0.5, 16, false},
                                           {std::nan(""), 16, true},
                                           {0.5, 14, true}}) {  // the frame's 16 bits count
    FilterDriver filter(kTransform, {"50000", "1", "1"});
    devhost::FrameTraits traits = kThreeCodes;
    traits.disparity.zpps = zpps;
    traits.disparity.bitSize = static_cast<std::uint8_t>(bits);
    EXPECT_EQ(filter.filtered(traits), kDepths);
    traits.metadata[32] = 10;
    const Pixels corrected = {1486, 991, 594};  // 20, 30 and 50 pixels
    EXPECT_EQ(filter.filtered(traits), always ? corrected : kDepths);
    traits.metadata.clear();
    EXPECT_EQ(filter.filtered(traits), kDepths) << "a kept table is the right one";
    traits.metadata[32] = 10;
    EXPECT_EQ(filter.update({"60000", "1", "1"}), kNoError);
    EXPECT_EQ(filter.filtered(traits), corrected);
  }
}

TEST(DisparityTransform, TheProfileIsReadAgainOnlyForANewSizeFormatOrBitSize) {
  FilterDriver filter(kTransform);
  devhost::FrameTraits traits = kThreeCodes;
  EXPECT_EQ(filter.filtered(traits), kDepths);
  traits.disparity.baseline *= 2;
  EXPECT_EQ(filter.filtered(traits), kDepths) << "a new baseline alone goes unnoticed";
  traits.format = 1;
  EXPECT_EQ(filter.filtered(traits), (Pixels{5947, 2973, 1486}));
  traits.disparity.baseline /= 2;
  traits.bits = 15;  // read with one fraction bit less
  EXPECT_EQ(filter.filtered(traits), (Pixels{1486, 743, 371}));
}

TEST(DisparityFilters, AFrameOfAnotherSizeBringsItsOwnProfile) {
  using Change = void (*)(ZVDisparityParam&);
  const Change changes[] = {
      [](ZVDisparityParam& p) { p.baseline = 40; },   [](ZVDisparityParam& p) { p.fx = 500; },
      [](ZVDisparityParam& p) { p.unit = 0.5f; },     [](ZVDisparityParam& p) { p.minDisparity = 2; },
      [](ZVDisparityParam& p) { p.dispOffset = 1; },  [](ZVDisparityParam& p) { p.invalidDisp = 211; },
      [](ZVDisparityParam& p) { p.isDualCamera = 0; }};
  const Pixels codes = {30000, 15008};  // 94 pixels of disparity and, for two cameras, 211.125
  for (const bool open_ni : {false, true}) {
    for (const Change& change : changes) {
      for (const std::uint32_t height : {1u, 2u}) {
        FilterDriver filter(open_ni ? kOpenNI : kTransform);
        ZVDisparityParam params = camera(1, true);
        filter.filtered(disparity_frame(params, {30000}));
        change(params);
        Pixels expected;
        for (const int code : codes) {
          const int depth = expected_depth(params, of_a_new_filter(open_ni), open_ni, code);
          expected.push_back(static_cast<std::uint16_t>(depth));
        }
        EXPECT_EQ(filter.filtered(disparity_frame(params, codes, height)), expected) << open_ni;
      }
    }
  }
}

TEST(DisparityTransform, AnUnknownPackModeFailsOnceAndThenGivesZeros) {
  for (const bool dual : {true, false}) {
    FilterDriver filter(kTransform);
    const std::string rule = dual ? "stereo_camera_init_lookup_table" : "mono_camera_init_lookup_table";
    const devhost::FrameTraits traits = disparity_frame(camera(dual ? 4 : 3, dual), {2560, 5120});
    EXPECT_EQ(filter.refused(traits),
              error_text("Unsupported disparity data pack type error", rule, rule));
    EXPECT_EQ(filter.printed(), filter.last_error());
    EXPECT_EQ(filter.filtered(traits), Pixels(2));
  }
}

TEST(DisparityTransform, BitSizesWithoutATableGiveZeros) {
  FilterDriver filter(kTransform);
  EXPECT_EQ(filter.filtered(kThreeCodes), kDepths);
  for (const int bits : {0, 200})
    EXPECT_EQ(filter.filtered(disparity_frame(camera(2, true, bits), {160, 65535})), Pixels(2));
}

/// A configuration of OpenNIDisparityTransform.
struct Sampling {
  int width, height;
  const char* scale = "1";
  int x_cut = 0, y_cut = 0, x_set = 0, y_set = 0;

  operator Values() const {
    Values values = {"65535", "1", "0.5", std::to_string(width), std::to_string(height), scale};
    for (const int value : {x_cut, y_cut, x_set, y_set}) values.push_back(std::to_string(value));
    return values;
  }
};

/// 16 x 12 codes of different depths.
devhost::FrameTraits positions() {
  Pixels codes;
  for (int i = 0; i < 16 * 12; ++i) codes.push_back(static_cast<std::uint16_t>(40000 + 10 * i));
  devhost::FrameTraits traits = disparity_frame(camera(1, true), codes, 12);
  traits.intrinsic = {500, 501, 320, 200, 640, 400};
  traits.format = 7;
  return traits;
}

TEST(OpenNIDisparityTransform, SamplesScalesCropsAndBlanks) {
  const devhost::FrameTraits source = positions();
  const Pixels whole = FilterDriver(kOpenNI, Sampling{0, 0}).filtered(source);
  EXPECT_EQ(std::ranges::count(whole, 0), 0);
  for (const Sampling& c : {Sampling{16, 12},
                            {8, 6, "0.5"},
                            {30, 20, "2", 1, 2, 3, 1},
                            {20, 20, "1", 5, 4},
                            {6, 5, "1", 3, 0, -1, 2},
                            {6, 5, "1", 3, 2},
                            {1, 1, "1", 3, 2},
                            {16, 12, "1", 65536, 65535}}) {
    const devhost::FrameTraits depth = FilterDriver(kOpenNI, c).output(source);
    const float scale = std::stof(c.scale);
    const auto step = static_cast<std::uint32_t>(65536 / scale + 1);
    const auto source_of = [&](int position, int cut) {
      return ((static_cast<std::uint32_t>(cut) << 16) + static_cast<std::uint32_t>(position) * step) >>
             16;
    };
    Pixels expected;
    for (int i = 0; i < c.width * c.height; ++i) {
      const int x = i % c.width, y = i / c.width;
      const std::uint32_t sx = source_of(x, c.x_cut), sy = source_of(y, c.y_cut);
      const bool reached = static_cast<float>(x) < 16 * scale && static_cast<float>(y) < 12 * scale;
      const bool kept = x >= c.x_set && x < c.width - c.x_set && y >= c.y_set && y < c.height - c.y_set;
      expected.push_back(reached && kept && sx < 16 && sy < 12 ? whole[sy * 16 + sx] : 0);
    }
    EXPECT_EQ(depth.pixels, expected) << c.width << " x " << c.height << " at " << c.scale;
    EXPECT_EQ(depth.type, ZV_FRAME_TYPE_DEPTH);
    EXPECT_EQ(depth.value_scale, 0.5f);
    EXPECT_EQ(depth.format, 7);
    EXPECT_EQ(depth.pixel_type, ZV_PIXEL_TYPE_DEPTH);
    EXPECT_EQ(depth.width, static_cast<std::uint32_t>(c.width));
  }
}

TEST(OpenNIDisparityTransform, RewritesTheIntrinsicsOfTheSampledProfile) {
  for (const auto& [width, height, cx] : {std::tuple{640, 320, 280.0f},
                                          {270, 200, 295.0f},
                                          {320, 160, 300.0f},
                                          {540, 400, 270.0f},
                                          {640, 400, 320.0f}}) {
    FilterDriver filter(kOpenNI, Sampling{width, height, "0.5"});
    const devhost::LiveObjects before = devhost::live_objects();
    const devhost::Frame input = devhost::make_frame_set(devhost::make_frame(positions()));
    devhost::start_call_log();
    const devhost::Frame set = filter.process(input);
    const std::vector<std::string> calls = devhost::stop_call_log();
    ASSERT_TRUE(set);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "zv_frame_update_data"), 1)
        << "a host that keeps pixels elsewhere is told of them";
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "zv_frame_copy_info"), 1);
    EXPECT_EQ(devhost::inspect(set.get()).type, ZV_FRAME_TYPE_SET);
    const devhost::Frame depth = devhost::depth_frame_of(set.get());
    EXPECT_EQ(devhost::inspect(depth.get()).type, ZV_FRAME_TYPE_SET) << "the type handed in";
    const devhost::ProfileTraits profile = devhost::inspect_profile(depth.get());
    EXPECT_EQ(profile.height, static_cast<std::uint32_t>(height));
    const ZVCameraIntrinsic i = profile.intrinsic;
    EXPECT_EQ(i.cx, cx);
    EXPECT_EQ(i.cy, 200);
    EXPECT_EQ(i.fx, 500);
    EXPECT_EQ(i.width, width);
    EXPECT_EQ(i.height, height);
    EXPECT_EQ(devhost::live_objects().profiles, before.profiles + 2) << "the cached one and the output's";
  }
}

TEST(OpenNIDisparityTransform, SamplingClearsEntryZeroForGood) {
  FilterDriver filter(kOpenNI);
  devhost::FrameTraits traits = disparity_frame(camera(1, true), {0, 30000});
  traits.disparity.minDisparity = 100;  // code 0 is then a disparity of 228.375 pixels
  const Pixels whole = filter.filtered(traits);
  EXPECT_NE(whole[0], 0);
  EXPECT_EQ(filter.update({"10000", "100", "1", "2", "1", "1", "0", "0", "0", "0"}), kNoError);
  EXPECT_EQ(filter.filtered(traits), (Pixels{0, whole[1]}));
  EXPECT_EQ(filter.update({"10000", "100", "1", "0", "0", "1", "0", "0", "0", "0"}), kNoError);
  EXPECT_EQ(filter.filtered(traits), (Pixels{0, whole[1]})) << "until the next rebuild";
  filter.reset();
  EXPECT_EQ(filter.filtered(traits), whole);
}

TEST(OpenNIDisparityTransform, KeepsWhatWasCheckedBeforeABadValue) {
  const std::string failed = error_text("Frame sampling process error", "filter_process", "frameType");
  FilterDriver filter(kOpenNI, Sampling{2, 1});
  EXPECT_EQ(filter.update(Sampling{65536, 2}), out_of_range("dst_width"));
  EXPECT_EQ(filter.update(Sampling{4, 70000, "0"}), out_of_range("dst_height"));
  EXPECT_EQ(filter.filtered(positions()).size(), 4u);
  EXPECT_EQ(filter.update(Sampling{3, 3, "0.05"}), out_of_range("scale"));
  EXPECT_EQ(filter.filtered(positions()).size(), 9u);
  EXPECT_EQ(filter.update(Sampling{3, 0}), kNoError);
  EXPECT_EQ(filter.filtered(positions()).size(), 192u) << "no sampling to a height of 0";
  EXPECT_EQ(filter.update(Sampling{3, 3}), kNoError);
  EXPECT_EQ(filter.update(Sampling{0, 3, "0.05"}), out_of_range("scale"));
  EXPECT_EQ(filter.refused(positions()), failed) << "sampling stays enabled with a width of 0";

  EXPECT_EQ(filter.update(Sampling{65535, 65535}), kNoError);
  devhost::start_call_log();
  EXPECT_EQ(filter.refused(positions()), failed) << "more than 32 bits of bytes";
  for (const std::string& call : devhost::stop_call_log()) EXPECT_NE(call, "zv_create_frame");
}

}  // namespace
}  // namespace filterprocessor
