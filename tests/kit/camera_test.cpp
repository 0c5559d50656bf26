// The virtual camera's options and the camera file.
#include <algorithm>
#include <cstring>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "kit/frame/camera_file.h"
#include "kit/pipeline/camera_options.h"
#include "refusal.h"

namespace kit {
namespace {

TEST(CameraOptions, AreRefusedByName) {
  const std::pair<const char*, const char*> cases[] = {
      {"pack_mode=2", "camera: unknown option \"pack_mode\"; did you mean pack-mode?"},
      {"size=96x64,", "camera: unknown option \"\"; "},
      {"frames", "camera: frames: expected frames=N"},
      {"mono=1", "camera: mono=1: expected mono alone"},
      {"bits=12,bits=12", "camera: bits is given twice"},
      {"frames=0", "camera: frames=0: expected 1 to 10000"},
      {"size=640", "camera: size=640: expected WIDTHxHEIGHT"},
      {"size=640x5000", "camera: size=640x5000: height has to be 48 to 4096"},
      {"seed=-1", "camera: seed=-1: expected a whole number"},
      {"pack-mode=5", "camera: pack-mode=5: expected 1 to 4"},
      {"pack-mode=3,mono", "camera: pack-mode=3: has to be 1, 2 or 4 with one camera"},
      {"bits=300", "camera: bits=300: expected a whole number from 0 to 255"},
      {"mono,bits=12", "camera: bits=12: has to be 0 or 14 to 16 here"},
      {"pixel-format=1", "camera: pixel-format=1: has to be 0 or 34"},
      {"correction=129", "camera: correction=129: has to be -128 to 128"},
      {"baseline=nan", "camera: baseline=nan: expected a number"},
      {"fx=1", "camera: fx=1: has to be"},
      {"motion=fast", "camera: motion=fast: expected still, objects or camera"},
      {"texture=2", "camera: texture=2: has to be 0 to 1"},
      {"noise=-1", "camera: noise=-1: expected a number from 0 to 4"},
      {"speckle=0.5", "camera: speckle=0.5: has to be 0 to 0.3"},
      {"dropouts=1.5", "camera: dropouts=1.5: has to be 0 to 1"},
  };
  for (const auto& [options, start] : cases) {
    const std::string input = concat("camera:", options);
    const std::string line =
        refusal(Error::Kind::bad_request, [&] { make_camera_request(parse_camera_input(input)); });
    EXPECT_TRUE(line.starts_with(start)) << line;
  }
}

Frame sample_camera() {
  Frame camera;
  camera.format = 34;
  camera.pixel_type = ZV_PIXEL_TYPE_DISPARITY;
  camera.bits = 12;
  camera.value_scale = 0.1f;
  camera.metadata = {{32, std::numeric_limits<std::int64_t>::min()}, {-7, 5}};
  camera.intrinsic = {500.1f, 501.2f, 319.5f, 199.5f, 640, -400};
  camera.disparity = {1000.0 / 3, 1e-300, 50.3f,  448.1,           255, 1e-3f,
                      -0.5f,      4,      -22.4f, -2147483647 - 1, 8,   1};
  return camera;
}

TEST(CameraFile, KeepsEveryBit) {
  const Frame camera = sample_camera();
  const Frame back = parse_camera_json(camera_json(camera), "camera.json").traits;
  const auto fields = [](const Frame& frame) {
    return std::tuple(frame.format, frame.pixel_type, frame.bits, frame.value_scale, frame.metadata);
  };
  EXPECT_EQ(fields(back), fields(camera));
  EXPECT_EQ(std::memcmp(&back.intrinsic, &camera.intrinsic, sizeof camera.intrinsic), 0);
  EXPECT_EQ(std::memcmp(&back.disparity, &camera.disparity, sizeof camera.disparity), 0);
}

TEST(CameraFile, IsRefusedByField) {
  const auto refused = [](const std::string& text) {
    return refusal(Error::Kind::failed_run, [&] { parse_camera_json(text, "c.json"); });
  };
  using Json = nlohmann::ordered_json;
  const Json sample = Json::parse(camera_json(sample_camera()));
  const std::tuple<const char*, const char*, const char*> changes[] = {
      {"/disparity/packMode", "256", "is 256; expected a whole number from 0 to 255"},
      {"/disparity/packMode", "-1", "is -1; expected a whole number from 0 to 255"},
      {"/disparity/bitSize", "12.5", "is 12.5; expected a whole number from 0 to 255"},
      {"/disparity/fx", "\"500\"", "is \"500\"; expected a number"},
      {"/disparity/unit", "1e39", "is 1e+39; expected a number of 32 bits"},
      {"/valueScale", "null", "is null; expected a number of 32 bits"},
      {"/intrinsics/width", "32768", "is 32768; expected a whole number from -32768 to 32767"},
      {"/metadata/32", "9223372036854775808",
       "is 9223372036854775808; expected a whole number from -9223372036854775808 to "
       "9223372036854775807"},
      {"/metadata/x", "1", "is no metadata item; expected its number"},
      {"/disparity", "[]", "is an array; expected an object"},
      {"/disparity/packmode", "1", "is unknown; did you mean packMode?"},
      {"/intrinsic", "{}", "is unknown; did you mean intrinsics?"}};
  for (const auto& [pointer, value, complaint] : changes) {
    Json json = sample;
    json[Json::json_pointer(pointer)] = Json::parse(value);
    std::string field = pointer + 1;
    std::replace(field.begin(), field.end(), '/', '.');
    EXPECT_EQ(refused(json.dump()), concat("c.json: ", field, ": ", complaint));
  }
  const std::pair<std::string, const char*> texts[] = {
      {R"({"disparity": {"fx": 500}})", "disparity.baseline: is missing; expected a number"},
      {R"({"bits": 12, "bits": 12})", "bits: is given twice"},
      {R"({"bits": 17})", "bits: is 17; expected 1 to 16"},
      {R"({"valueScale": 0})", "valueScale: is 0; expected a number above 0"},
      {R"({"pixelType": "dept"})",
       "pixelType: is \"dept\"; expected depth, disparity, linear or the host's number"},
      {"[]", "is no JSON object"},
      {std::string(60000, '['), "is nested more than 8 deep"},
      {std::string(65537, ' '), "has 65537 bytes; at most 65536 are read"}};
  for (const auto& [text, complaint] : texts) EXPECT_EQ(refused(text), concat("c.json: ", complaint));
  for (const char* text : {"", "{\"bits\": 1e999}", "{", "\xff"}) {
    const std::string line = refused(text);
    EXPECT_TRUE(line.starts_with("c.json: is no JSON: ")) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos);
  }
}

TEST(CameraFile, MaySayLittle) {
  const Input nothing = parse_camera_json("{}", "c.json");
  EXPECT_FALSE(nothing.has_geometry);
  EXPECT_EQ(nothing.traits.bits, 16);
  const Input stereo =
      parse_camera_json(R"({"bits": 12, "disparity": {"baseline": 40, "fx": 500}})", "c.json");
  EXPECT_TRUE(stereo.has_geometry);
  EXPECT_EQ(+stereo.traits.disparity.bitSize, 12);
  EXPECT_EQ(+stereo.traits.disparity.dispIntPlace, 8);
}

}  // namespace
}  // namespace kit
