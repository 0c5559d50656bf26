// The virtual camera's options and the camera file.
#include <cstring>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "kit/frame/camera_file.h"
#include "kit/pipeline/camera_options.h"
#include "refusal.h"

namespace kit {
namespace {

CameraRequest request_of(std::string_view input) {
  return make_camera_request(parse_camera_input(input));
}

TEST(CameraOptions, AreRefusedByName) {
  const std::pair<const char*, const char*> cases[] = {
      {"pack_mode=2", "camera: unknown option \"pack_mode\"; did you mean pack-mode?"},
      {"", "camera: unknown option \"\"; "},
      {"frames", "camera: frames: expected frames=N"},
      {"mono=1", "camera: mono=1: expected mono alone"},
      {"bits=12,bits=12", "camera: bits is given twice"},
      {"frames=0", "camera: frames=0: expected 1 to 10000"},
      {"frames=", "camera: frames=: expected 1 to 10000"},
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
  };
  for (const auto& [options, start] : cases) {
    const std::string input = concat("camera:size=96x64,", options);
    const std::string typed =
        std::string_view(options).starts_with("size") ? concat("camera:", options) : input;
    const std::string line = refusal(Error::Kind::bad_request, [&] { request_of(typed); });
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
  const Frame back = parse_camera_json(camera_json(camera), "camera.json");
  EXPECT_EQ(back.format, camera.format);
  EXPECT_EQ(back.pixel_type, camera.pixel_type);
  EXPECT_EQ(back.bits, camera.bits);
  EXPECT_EQ(back.value_scale, camera.value_scale);
  EXPECT_EQ(back.metadata, camera.metadata);
  EXPECT_EQ(std::memcmp(&back.intrinsic, &camera.intrinsic, sizeof camera.intrinsic), 0);
  EXPECT_EQ(std::memcmp(&back.disparity, &camera.disparity, sizeof camera.disparity), 0);
}

TEST(CameraFile, IsRefusedByField) {
  const auto refused = [](const std::string& text) {
    return refusal(Error::Kind::failed_run, [&] { parse_camera_json(text, "c.json"); });
  };
  const auto changed = [&](const char* pointer, const char* value) {
    auto json = nlohmann::ordered_json::parse(camera_json(sample_camera()));
    json[nlohmann::ordered_json::json_pointer(pointer)] = nlohmann::ordered_json::parse(value);
    return refused(json.dump());
  };
  const auto without = [&](const char* object, const char* field) {
    auto json = nlohmann::ordered_json::parse(camera_json(sample_camera()));
    (*object != 0 ? json[object] : json).erase(field);
    return refused(json.dump());
  };
  EXPECT_EQ(changed("/disparity/packMode", "256"),
            "c.json: disparity.packMode: is 256; expected a whole number from 0 to 255");
  EXPECT_EQ(changed("/disparity/packMode", "-1"),
            "c.json: disparity.packMode: is -1; expected a whole number from 0 to 255");
  EXPECT_EQ(changed("/disparity/bitSize", "12.5"),
            "c.json: disparity.bitSize: is 12.5; expected a whole number from 0 to 255");
  EXPECT_EQ(changed("/disparity/fx", "\"500\""), "c.json: disparity.fx: is \"500\"; expected a number");
  EXPECT_EQ(changed("/disparity/unit", "1e39"),
            "c.json: disparity.unit: is 1e+39; expected a number of 32 bits");
  EXPECT_EQ(changed("/valueScale", "null"), "c.json: valueScale: is null; expected a number of 32 bits");
  EXPECT_EQ(changed("/intrinsics/width", "32768"),
            "c.json: intrinsics.width: is 32768; expected a whole number from -32768 to 32767");
  EXPECT_EQ(
      changed("/metadata/32", "9223372036854775808"),
      "c.json: metadata.32: is 9223372036854775808; expected a whole number from -9223372036854775808 "
      "to 9223372036854775807");
  EXPECT_EQ(changed("/metadata/x", "1"), "c.json: metadata.x: is no metadata item; expected its number");
  EXPECT_EQ(changed("/disparity", "[]"), "c.json: disparity: is an array; expected an object");
  EXPECT_EQ(changed("/disparity/packmode", "1"),
            "c.json: disparity.packmode: is unknown; did you mean packMode?");
  EXPECT_EQ(changed("/intrinsic", "{}"), "c.json: intrinsic: is unknown; did you mean intrinsics?");
  EXPECT_EQ(without("disparity", "zpd"), "c.json: disparity.zpd: is missing; expected a number");
  EXPECT_EQ(without("", "metadata"), "c.json: metadata: is missing; expected an object");
  EXPECT_EQ(without("", "bits"), "c.json: bits: is missing; expected a whole number from 0 to 255");

  EXPECT_EQ(refused("[]"), "c.json: is no JSON object");
  EXPECT_EQ(refused(std::string(60000, '[')), "c.json: is nested more than 8 deep");
  EXPECT_EQ(refused(std::string(65537, ' ')), "c.json: has 65537 bytes; at most 65536 are read");
  for (const char* text : {"", "{\"bits\": 1e999}", "{", "\xff"}) {
    const std::string line = refused(text);
    EXPECT_TRUE(line.starts_with("c.json: is no JSON: ")) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos);
  }
}

}  // namespace
}  // namespace kit
