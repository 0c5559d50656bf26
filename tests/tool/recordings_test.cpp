// What the virtual camera writes, and what a run says of frames whose truth or rest is known.
#include "program.h"

namespace kit {
namespace {

using Recordings = Program;

TEST_F(Recordings, CameraFilesAndTheCameraItselfGiveTheSameResults) {
  const std::map<std::string, std::string> option_forms = {
      {"", ""},
      {",pack-mode=1,correction=-3", "--pack-mode 1 --correction -3"},
      {",pixel-format=34,mono", "--pixel-format 34 --mono"},
  };
  for (const auto& [in_input, typed] : option_forms) {
    SCOPED_TRACE(typed);
    fs::remove_all(folder_ / "cam");
    complete("camera -o cam --frames 2 --size 96x64 --seed 5 " + typed);
    const Names frames = {"disparity_0000.png", "disparity_0001.png"};
    EXPECT_EQ(listing("cam"), (Names{"camera.json", frames[0], frames[1], "truth"}));
    EXPECT_EQ(listing("cam/truth"), frames);
    EXPECT_NE(get("cam/" + frames[0]), get("cam/" + frames[1]));

    const std::string start = "run -f DisparityTransform: --preview --overwrite ";
    const Outcome files = complete(start + "cam --camera cam/camera.json --truth cam/truth -o a");
    const Outcome itself = complete(concat(start, "-o b camera:frames=2,size=96x64,seed=5", in_input));
    EXPECT_EQ(files.err + itself.err, "");
    const auto accuracy = [](const std::string& out) {
      const auto table = out.find("\nafter ");
      return out.substr(table, out.rfind(" to ") - table);
    };
    EXPECT_EQ(accuracy(files.out), accuracy(itself.out));
    EXPECT_MENTIONS(text_of("b/.zvfilter.json"), "\"camera:frames=2,");
    EXPECT_MENTIONS(files.out, "\n(input)                    -  ");
    EXPECT_EQ(files.out.find("\nDisparityTransform         -  "), std::string::npos);
    const Names made = listing("b");
    EXPECT_EQ(made,
              (Names{frames[0], "disparity_0000_preview.png", frames[1], "disparity_0001_preview.png"}));
    for (const std::string& name : made)
      EXPECT_EQ(text_of(fs::path("a") / name), text_of(fs::path("b") / name));
  }
}

TEST_F(Recordings, NeverMixesTwoRecordings) {
  complete("camera -o cam --frames 2 --size 64x48 --sync");
  const std::string frame = text_of("cam/disparity_0000.png");
  fs::remove_all(folder_ / "cam/truth");
  expect_refused(run("camera -o cam --frames 1 --size 96x64"), 1,
                 ": belongs to another recording; expected a folder without one");
  EXPECT_EQ(text_of("cam/disparity_0000.png"), frame);
  fs::create_directories(folder_ / "far/truth");
  for (const char* other : {"far/disparity.png", "far/disparity_0007.txt"}) put(other, "x");
  put("far/truth/disparity_0007.png", kHoles);
  expect_refused(run("camera -o far --frames 1 --size 96x64"), 1,
                 "far/truth/disparity_0007.png: belongs");
}

TEST_F(Recordings, ComparesEveryStageWithTheTruth) {
  fs::create_directory(folder_ / "truth");
  put("in/a.png", Image{2, 2, {1100, 0, 1050, 1200}});  // 5 % is not above 5 %
  put("in/b.pgm", Image{2, 2, {1010, 0, 1040, 1200}});
  put("truth/a.npy", Image{2, 2, {1000, 1000, 1000, 0}});
  put("truth/b.raw", Image{2, 2, {1000, 1000, 1001, 0}});
  EXPECT_MENTIONS(
      complete("run -f HoleFillingFilter:hole_filling_mode=1 -f DepthResize:scale=2 in/a.png in/b.pgm "
               "-o results --truth truth --size 2x2")
          .out,
      "\nafter              coverage  median error mm  p95 error mm  off > 5 %  flicker mm\n"
      "(input)             75.00 %             39.0         100.0    25.00 %        90.0\n"
      "HoleFillingFilter   75.00 %             39.0         100.0    25.00 %        90.0\n"
      "DepthResize               -                -             -          -           -\n");
}

TEST_F(Recordings, SaysHowSteadyAStillSceneIs) {
  for (std::uint16_t i = 0; i < 8; ++i)
    put(concat("in/", i, ".png"), Image{1, 1, {static_cast<std::uint16_t>(1000 + i % 2 * 4)}});
  EXPECT_MENTIONS(complete("run -f HoleFillingFilter in -o results --value-scale 0.5").out,
                  "\n\nat rest  pixels used  flicker mm  noise mm\n"
                  "before      100.00 %         2.0       1.5\n"
                  "after       100.00 %         2.0       1.5\n");
}

TEST_F(Recordings, RefusesWrongCamerasAndTruths) {
  put("in/b.png", kHoles);
  fs::create_directory(folder_ / "truth");
  put("truth/holes.png", kHoles);
  const std::string start = "run -f HoleFillingFilter -o results ";
  expect_refused(1, start,
                 {{"in --truth truth", "in/b.png: has no truth; expected a file named b in truth"},
                  {"holes.png --truth in/none", "in/none: no such file or folder"}});
  expect_refused(
      2, start,
      {{"camera:bist=12", "camera: unknown option \"bist\"; did you mean bits?"},
       {"camera: in", "camera: has to be the only input"},
       {"camera: --truth truth", "--truth is for files; camera: brings its own"},
       {"camera: --size 64x64", "--size is for raw files; camera: takes its own: camera:size=WxH"},
       {"in --size 3x3", "--size 3x3: is for raw files"}});
  expect_refused(2, "",
                 {{"camera -o results --pack-mode 3 --mono", "--pack-mode 3: has to be 1, 2 or 4 with"},
                  {"camera -o ''", "the folder for the frames has no name"},
                  {"camera", "--output is required"},
                  {"run -f HoleFillingFilter holes.png --truth truth -o truth",
                   "would replace the input truth/holes.png"}});
  put("truth/holes.pgm", Image{1, 1, {1}});
  expect_refused(run(start + "holes.png --truth truth"), 2, "would both be the truth of holes.png");
  fs::remove(folder_ / "truth/holes.png");
  expect_refused(run(start + "holes.png --truth truth"), 1,
                 "truth/holes.pgm: is 1x1; expected 3x3, the size of holes.png");
}

}  // namespace
}  // namespace kit
