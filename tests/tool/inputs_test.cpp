// What the program takes its frames from, and that it never takes them for something else.
#include <unistd.h>

#include "program.h"

namespace kit {
namespace {

const std::string kFill = "run -f HoleFillingFilter ";

class Inputs : public Program {
 protected:
  static std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
  static std::string frames(const std::vector<Image>& images) {
    Bytes all;
    for (const Image& image : images) append_samples(image, ByteOrder::little, all);
    return text(all);
  }
};

TEST_F(Inputs, AreTakenInTheOrderAskedForAndHaveOneSize) {
  put("in/f_2.png", kHoles);
  for (const char* name : {"in/f_10.png", "in/f_11.png"}) put(name, make_image(2, 2));
  EXPECT_EQ(run(kFill + "in -o out").err,
            "zvfilter: in/f_10.png: has 2x2 pixels; the frames before it have 3x3\n");
  EXPECT_EQ(run(kFill + "in -o out --overwrite --order name").err,
            "zvfilter: in/f_2.png: has 3x3 pixels; the frames before it have 2x2\n");
  complete(kFill + "in -o chosen --include 'f_1*' --exclude '*11*'");
  EXPECT_EQ(listing("chosen"), Names{"f_10.png"});
  expect_refused(2, kFill + "-o results ",
                 {{"in --order size", "--order: size: expected name, natural or time"},
                  {"in/f_2.png --include '*'", "--include and --exclude choose from folders"}});
}

TEST_F(Inputs, UseTheCameraFileBesideThem) {
  complete("camera -o cam --frames 1 --size 64x48");
  put("in/disparity_0000.png", get("cam/disparity_0000.png"));
  const std::string steps = R"({"version": 1, "steps": [{"filter": "DisparityTransform"}], "input": )";
  put("disparity.json", steps + text_of("cam/camera.json") + "}");
  put("depth.json", steps + R"({"pixelType": "depth"}})");
  const std::string chain = "run -f DisparityTransform: ",
                    note = "zvfilter: note: using cam/camera.json\n";
  complete(chain + "in --camera cam/camera.json -o expected");
  const std::pair<std::string, std::string> uses[] = {
      {chain + "cam", note},
      {chain + "cam/disparity_0000.png", note},
      {chain + "cam --camera cam/camera.json", ""},
      {"run --chain disparity.json in", ""},
      {"run --chain depth.json in --camera cam/camera.json", ""},
      {"run --chain depth.json cam",
       note.substr(0, note.size() - 1) + " instead of the chain file's input\n"}};
  for (const auto& [arguments, said] : uses) {
    EXPECT_EQ(complete(arguments + " -o out --overwrite").err, said);
    EXPECT_EQ(get("out/disparity_0000.png"), get("expected/disparity_0000.png")) << arguments;
  }
  EXPECT_EQ(
      run(chain + "cam --camera none -o depth").err,
      "zvfilter: note: step 1 (DisparityTransform): these are depth frames, which it hands through; "
      "give --camera or --pixel-type disparity\n");
  EXPECT_EQ(get("depth/disparity_0000.png"), get("in/disparity_0000.png"));

  fs::remove(folder_ / "cam/camera.json");
  fs::create_symlink("gone", folder_ / "cam/camera.json");
  EXPECT_MENTIONS(run(chain + "cam -o results").err, "cam/camera.json: cannot be read: ");
}

TEST_F(Inputs, OfSeveralImagesGiveAFileOfAsMany) {
  put("a.raw", frames({kHoles, make_image(3, 3), kHoles}));
  const std::string filled = frames({kFilled, make_image(3, 3), kFilled});
  for (const std::string format : {"npy", "tiff"}) {
    complete(kFill + "a.raw --size 3x3 -o stacks --format " + format);
    complete(kFill + "stacks/a." + format.substr(0, 3) + " -o again --overwrite --format raw");
    EXPECT_EQ(text_of("again/a.raw"), filled);
  }
  complete(kFill + "a.raw --size 3x3 -o single --format png");
  EXPECT_EQ(listing("single"), (Names{"a_0.png", "a_1.png", "a_2.png"}));
  EXPECT_EQ(get("single/a_2.png"), kFilled);

  put("in/big.raw", "\1\2\3\4");
  EXPECT_MENTIONS(run_probe("run -f EchoFilter in --size 2x1 --endian big -o big").out,
                  "first pixel 258,");
  EXPECT_EQ(text_of("big/big.raw"), "\1\2\3\4");

  complete(kFill + "holes.png --endian big --format raw -o big");
  EXPECT_EQ(text_of("big/holes.raw").substr(0, 4), (std::string{'\0', '\5', '\0', '\6'}));

  expect_refused(2, kFill,
                 {{"a.raw --size 3x3 -o results --preview", "--preview is for images in files"},
                  {"a.raw --size 3x3 -o .", "would replace the input a.raw"}});
}

TEST_F(Inputs, StreamFromStandardInputToStandardOutput) {
  put("in.raw", frames({kHoles, kHoles}));
  const Outcome raw = run(kFill + "- -o - --size 3x3 --format raw", "", "in.raw");
  EXPECT_EQ(raw.status, 0);
  EXPECT_EQ(raw.out, frames({kFilled, kFilled}));
  EXPECT_MENTIONS(raw.err, "HoleFillingFilter       2            12           18        6");
  EXPECT_FALSE(fs::exists(folder_ / "-"));

  const Outcome pgm = run(kFill + "- -o - --size 3x3 --input-format raw --format pgm", "", "in.raw");
  EXPECT_EQ(pgm.out, text(encode_pgm(kFilled)) + text(encode_pgm(kFilled)));

  put("sized.json",
      R"({"version": 1, "input": {"width": 3, "height": 3}, "steps": [{"filter": "HoleFillingFilter"}]})");
  EXPECT_EQ(run("run --chain sized.json - -o - --format raw --endian little", "", "in.raw").out,
            frames({kFilled, kFilled}));
  const Outcome twice = run(kFill + "holes.png holes.png -o - --format raw");
  EXPECT_EQ(twice.out, frames({kFilled, kFilled}));

  // What a plug-in prints is not a frame's.
  const Outcome probe = run_probe("run -f EchoFilter - -o - --size 3x3 --format raw", "in.raw");
  EXPECT_EQ(probe.out, frames({kHoles, kHoles}));
  EXPECT_MENTIONS(probe.err, "frame 2: set 0, first pixel 5,");
}

TEST_F(Inputs, ThatStreamAreRefusedWhereTheyAreNotWhole) {
  put("cut.raw", Bytes(20));
  put("empty.raw", Bytes());
  const std::string start = kFill + "- -o - --format raw ";
  const Outcome cut = run(start + "--size 3x3", "", "cut.raw");
  EXPECT_EQ(cut.status, 1);
  EXPECT_EQ(cut.out.size(), 18u) << "the whole frame";
  EXPECT_EQ(cut.err,
            "1 of 2 frames written to standard output\n"
            "zvfilter: standard input frame 1: is truncated: 2 of 18 bytes came for 3x3 pixels\n");
  for (const char* option : {"", " --keep-going"})
    expect_failed(run(start + "--size 3x3" + option, "", "empty.raw"), 1,
                  "zvfilter: standard input: holds no frame\n");
  expect_failed(run(start + "--size 3x3", "exec > /dev/full; ", "cut.raw"), 1,
                "zvfilter: standard output: cannot be written: ");
  expect_refused(
      2, kFill,
      {{"- -o - --format raw", "raw frames do not say their size"},
       {"- -o -", "standard input has no name to tell its format"},
       {"- -o results --format png", "choose with --input-format"},
       {"- -o results --format raw --size 3x3 --resume", "standard input cannot be read again"},
       {"- -o results --format raw --size 3x3 --report r.html", "--report is for files"},
       {"- -o results --format raw --size 3x3 --truth in", "--truth is for files; standard input"},
       {"- -o results --format raw --size 3x3 --preview", "--preview is for files; standard input"},
       {"holes.png -o - --format raw --resume", "standard output keeps no results"},
       {"holes.png -o - --format raw --preview", "--preview is for images in files"},
       {"holes.png -o -", "standard output takes raw, pgm or npy, not png"},
       {"- holes.png -o - --format raw", "- is standard input and has to be the only input"},
       {"holes.png -o results --input-format raw", "--input-format is for standard input"},
       {"holes.png -o results --metres", "--metres is for .npy files"},
       {"holes.png -o results --endian big", "--endian is for raw images"}});
}

TEST_F(Inputs, OfStreamsAndStacksRunAsAllOthersDo) {
  const std::string all = frames(std::vector<Image>(40, kHoles)),
                    filled = frames(std::vector<Image>(40, kFilled));
  for (const char* name : {"many.raw", "other.raw"}) put(name, all);
  const std::string stream = kFill + "- --size 3x3 --format raw -o ",
                    stack = kFill + "many.raw --size 3x3 -o ";
  for (const char* jobs : {" --jobs 1", " --jobs 4"}) {
    const Outcome out = run(stream + "-" + jobs, "", "many.raw");
    EXPECT_EQ(out.out, filled);
    EXPECT_MENTIONS(out.err, "40 of 40 frames written to standard output");
    complete(stack + "stack --overwrite" + jobs);
    EXPECT_EQ(text_of("stack/many.raw"), filled);
  }
  // Results are not replaced unless that is asked for, and a stack that is there is not made again.
  EXPECT_MENTIONS(run(stack + "stack").err, "many.raw: is there already");
  complete(stack + "both other.raw");
  fs::remove(folder_ / "both/other.raw");
  EXPECT_MENTIONS(run(stack + "both other.raw --resume").out,
                  "40 of 40 frames written to both; 40 were there");
  EXPECT_EQ(text_of("both/other.raw"), filled);
  EXPECT_EQ(run(stream + "numbered", "", "many.raw").status, 0);
  EXPECT_EQ(get("numbered/frame_0039.raw", {3, 3}), kFilled);
  EXPECT_MENTIONS(run(stream + "numbered", "", "many.raw").err, "frame_0000.raw: is there already");
  EXPECT_EQ(run(stream + "numbered --overwrite", "", "many.raw").status, 0);

  // A frame that fails is left out of a stream; of stacks, the whole one is.
  const std::string holes = text(encode_pgm(kHoles)), whole = text(encode_pgm(kFilled));
  put("mixed.pgm", holes + text(encode_pgm(make_image(2, 2))) + holes);
  const Outcome mixed = run(kFill + "- --format pgm -o - --keep-going", "", "mixed.pgm");
  EXPECT_EQ(mixed.out, whole + whole);
  expect_failed(mixed, 1, "zvfilter: standard input frame 1: has 2x2 pixels");
  EXPECT_MENTIONS(mixed.err, "2 of 3 frames written to standard output");
}

TEST_F(Inputs, SayOnceWhatHasNoEffectOnThem) {
  put("in/a.raw", frames({Image{3, 3, {40000, 40000, 65535, 1, 1, 1, 1, 1, 1}}, kHoles}));
  const std::string end = " in -o results --overwrite --size 3x3 --baseline 50 --fx 600";
  const std::pair<const char*, const char*> cases[] = {
      {"DisparityTransform", "these are depth frames, which it hands through"},
      {"HardwareD2DCorrectionFilter",
       "carry no disparity correction (metadata item 32), so it hands them through"},
      {"EdgeNoiseRemovalFilter:margin_y_th=3,limit_y_th=9,width=3,height=3",
       "margin_y_th and limit_y_th have no effect without enable_vertical_direction=1"},
      {"SpatialAdvancedFilter:",
       "16 % of the pixels have values from 32768 up, which are left as they are"},
      {"HoleFillingFilter:hole_filling_mode=1",
       "5 % of the pixels have values from 65535 up, which are taken"},
      {"OpenNIDisparityTransform:x_cut=2 --pixel-type disparity", "x_cut has no effect unless dst_width"},
      {"SpatialAdvancedFilter:magnitude=2 --pixel-type disparity --bits 12",
       "magnitude has no effect on disparity frames, which it goes over once"}};
  for (const auto& [filter, part] : cases) {
    const std::string err = run(concat("run -f ", filter, end)).err;
    const auto at = err.find(part);
    EXPECT_NE(at, std::string::npos) << err;
    EXPECT_EQ(err.find(part, at + 1), std::string::npos) << err;
  }
  const std::string quiet =
      "EdgeNoiseRemovalFilter:margin_y_th=3,enable_vertical_direction=1,width=3,height=3";
  EXPECT_EQ(run("run -f HoleFillingFilter -f " + quiet + end).err, "");
  Image two = make_image(199, 1);
  two.pixels[0] = two.pixels[9] = 40000;
  put("in/a.raw", two);
  EXPECT_MENTIONS(run("run -f SpatialAdvancedFilter: in -o all --size 199x1 --baseline 50 --fx 600").err,
                  ": 1 % of the pixels have values from 32768 up");
}

TEST_F(Inputs, AreNamedWithTheCauseWhereAKernelFails) {
  put("five.json",
      R"({"pixelType": "disparity", "disparity": {"baseline": 50, "fx": 600, "packMode": 5}})");
  expect_refused(
      1, "run -o results -f ",
      {{"EdgeNoiseRemovalFilter holes.png",
        "; frames of 3x3 are too small beside its width and height, 1280x800"},
       {"EdgeNoiseRemovalFilter:margin_x_th=640,width=3,height=3 holes.png",
        "; margin_x_th 640 exceeds its limit, limit_x_th 70"},
       {"EdgeNoiseRemovalFilter:margin_y_th=31,enable_vertical_direction=1,width=3,height=3 holes.png",
        "; margin_y_th 31 exceeds its limit, limit_y_th 30"},
       {"DepthResize:dst_width=7,scale=2 holes.png", "both truncated: 6 and 6 for frames of 3x3"},
       {"DisparityTransform holes.png --camera five.json",
        "; the camera's packMode is 5; expected 1 to 3 for two"}});
}

}  // namespace
}  // namespace kit
