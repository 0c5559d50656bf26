// The built program, run as a user runs it.
#include "program.h"

#include <filesystem>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

namespace kit {
namespace {

const Image kHoles{3, 3, {5, 6, 7, 0, 8, 0, 9, 0, 1}};
const Image kFilled{3, 3, {5, 6, 7, 5, 8, 7, 9, 8, 1}};  // each hole takes the pixel above

TEST_F(Program, ListsTheFiltersOfItsOwnPlugin) {
  const Outcome text = run("list");
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_MENTIONS(
      text.out,
      "1  HoleFillingFilter: gives holes the value of a neighbour\n"
      "     hole_filling_mode  integer   0 to 2, step 1, default 0; 0 top, 1 nearest, 2 farthest\n");

  const auto list = nlohmann::json::parse(run("list --json").out);
  ASSERT_EQ(list.size(), 9u);
  EXPECT_EQ(list[1]["name"], "HoleFillingFilter");
  EXPECT_EQ(list[1]["available"], true);
  EXPECT_EQ(list[1]["parameters"][0]["max"], 2);
  EXPECT_EQ(list[8]["index"], 8);

  EXPECT_EQ(run("schema HoleFillingFilter").out,
            "hole_filling_mode, integer, 0, 2, 1, 0, "
            "ZV_HOLE_FILL_TOP/ZV_HOLE_FILL_NEAREST/ZV_HOLE_FILL_FAREST\n");
}

TEST_F(Program, ExplainsFiltersAndPresets) {
  EXPECT_MENTIONS(run("help").out, "TemporalFilter               steadies each pixel");
  const std::string text = run("help TemporalFilter").out;
  EXPECT_MENTIONS(text, "\nweight: 0.1 to 1, step 0.01, default 0.4\n  Weight of the new frame");
  EXPECT_MENTIONS(text, "\n  -> larger steadies less and follows faster\n");
  EXPECT_MENTIONS(run_probe("help EchoFilter").out, "EchoFilter is not described");
  expect_refused(run("help TemporalFliter"), 2, "did you mean TemporalFilter?");

  EXPECT_MENTIONS(run("presets").out, "\nmoving-camera\n  A camera that moves");
  const std::string chain = run("presets fill-holes").out;
  put("fill.json", Bytes(chain.begin(), chain.end()));
  put("in/a.png", kHoles);
  ASSERT_EQ(
      run("run --preset fill-holes in/a.png -o a --set clean.enabled=false --fx 1 --baseline 1").status,
      0);
  ASSERT_EQ(
      run("run --chain fill.json in/a.png -o b --set clean.enabled=false --fx 1 --baseline 1").status, 0);
  EXPECT_EQ(get("a/a.png"), get("b/a.png"));
  ASSERT_EQ(run("run --preset fill-holes --set fill.enabled=false in/a.png -o c --set "
                "clean.enabled=false --fx 1 --baseline 1")
                .status,
            0);
  EXPECT_NE(get("a/a.png"), get("c/a.png"));
  expect_refused(2, "run in/a.png -o results ",
                 {{"--preset fill", "unknown preset fill; did you mean fill-holes?"},
                  {"--preset light -f TemporalFilter", "excludes"},
                  {"-f TemporalFilter --range 5:4", "--range: 5:4: expected NEAR:FAR"},
                  {"-f TemporalFilter --colors jet", "--colors: jet: expected turbo, viridis or grey"}});
}

TEST_F(Program, ListsAFilterThatIsNotAvailable) {
  const std::string text = run_probe("list").out;
  EXPECT_MENTIONS(text, "0  MissingFilter  (not available)\n1  FailingFilter\n     count  ");
  EXPECT_MENTIONS(text, "\nThe kernels run at level probing.\n");
  const auto list = nlohmann::json::parse(run_probe("list --json").out);
  EXPECT_EQ(list[0]["available"], false);
  EXPECT_EQ(list[3]["parameters"][1]["default"], 0.5);
}

TEST_F(Program, FiltersEveryFormat) {
  for (const char* name : {"a.png", "b.pgm", "c.npy", "d.raw", "e.BIN", "f.tif"})
    put(std::string("in/") + name, kHoles);
  const Outcome outcome =
      run("run -f HoleFillingFilter in/a.png in/b.pgm in/c.npy in/d.raw in/e.BIN in/f.tif -o results "
          "--size 3x3");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(listing("results"), (Names{"a.png", "b.pgm", "c.npy", "d.raw", "e.BIN", "f.tif"}));
  for (const std::string& name : listing("results"))
    EXPECT_EQ(get("results/" + name, {3, 3}), kFilled) << name;

  const auto line_end = outcome.out.find('\n');
  EXPECT_EQ(outcome.out.substr(0, line_end),
            "filter             frames  valid before  valid after  changed  median ms");
  EXPECT_TRUE(outcome.out.substr(line_end + 1)
                  .starts_with("HoleFillingFilter       6            36           54       18"));
}

TEST_F(Program, ConvertsAndPreviews) {
  put("in/a.pgm", kHoles);
  const Outcome outcome =
      run("run -f HoleFillingFilter:hole_filling_mode=0 -f HoleFillingFilter: in/a.pgm -o "
          "results/deep --format npy --preview --frame-set");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(listing("results/deep"), (Names{"a.npy", "a_preview.png"}));
  EXPECT_EQ(get("results/deep/a.npy"), kFilled);
}

TEST_F(Program, ConvertsTheDisparityOfPlainFiles) {
  put("in/a.png", Image{3, 1, {2560, 5120, 0}});
  const Outcome outcome =
      run("run -f DisparityTransform in/a.png -o results --pixel-type disparity --baseline 50 --fx 600");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(get("results/a.png"), (Image{3, 1, {3000, 1500, 0}}));
}

TEST_F(Program, ConfiguresOnlyWhatIsAskedForAndKeepsOneInstance) {
  put("in/b.png", Image{1, 1, {22}});
  put("in/a.png", Image{1, 1, {11}});
  const Outcome plain = run_probe("run -f EchoFilter in/b.png in/a.png -o results");
  EXPECT_EQ(plain.status, 0) << plain.err;
  EXPECT_EQ(plain.out.find("configured"), std::string::npos);
  EXPECT_MENTIONS(plain.out,
                  "frame 1: set 0, first pixel 11, bits 16, type 0, scale 1, baseline 50, fx 0.7\n");
  EXPECT_MENTIONS(plain.out, "frame 2: set 0, first pixel 22, ");
  EXPECT_EQ(plain.err,
            "zvfilter: note: the files carry no stereo geometry; assuming a nominal camera with baseline "
            "50 mm, "
            "fx 0.7 times the width, 8 fraction bits (--baseline, --fx and --bits set them)\n");

  EXPECT_MENTIONS(run_probe("run -f EchoFilter in/a.png -o results --overwrite --baseline 75").err,
                  "assuming a nominal camera with fx 0.7 times the width, ");

  const Outcome set = run_probe(
      "run -f EchoFilter:on=0,count=9 in/a.png -o results --overwrite --frame-set --bits 12 --pixel-type "
      "disparity "
      "--value-scale 0.25 --baseline 75 --fx 400");
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_MENTIONS(set.out, "configured: 9 0.5 0\n");
  EXPECT_MENTIONS(set.out,
                  "frame 1: set 1, first pixel 11, bits 12, type 2, scale 0.25, baseline 75, fx 400\n");
  EXPECT_EQ(set.err, "");
}

TEST_F(Program, ReportsFilterErrorsWithAllTheirTexts) {
  put("in/a.png", kHoles);
  const std::string rest = " in/a.png -o results --baseline 50 --fx 1";
  expect_refused(run_probe("run -f FailingFilter" + rest), 1,
                 "in/a.png: step 1 (FailingFilter): FailingFilter failed: \"out of order\" (function "
                 "filter_process, args a frame, "
                 "exception type 7)");
  expect_refused(run("run -f DepthResize:dst_width=4,dst_height=3,scale=1" + rest), 1,
                 "\"incorrect config schema\" (function filter_process, args DepthResize, exception type "
                 "4); dst_width has to be the frame's width x scale + ex_left + ex_right");
  expect_refused(run_probe("run -f SilentFilter" + rest), 1,
                 "SilentFilter gave neither a frame nor an error");
  expect_refused(run_probe("run -f MissingFilter" + rest), 1,
                 "the filter MissingFilter is not available");

  expect_refused(run("run -f HoleFillingFilter:hole_filling_mode=7" + rest), 2,
                 "step 1 (HoleFillingFilter): hole_filling_mode=7 is out of range; expected 0 to 2");
  EXPECT_FALSE(fs::exists(folder_ / "results"));
}

TEST_F(Program, TakesChainsAsFilesAndTexts) {
  put("in/a.png", kHoles);
  const std::string text = "fill=HoleFillingFilter:hole_filling_mode=1; DepthResize:scale=2";
  ASSERT_EQ(run("chain convert '" + text + "' -o chain.json").status, 0);
  ASSERT_EQ(run("run --chain chain.json in/a.png -o a").status, 0);
  ASSERT_EQ(
      run("run -f HoleFillingFilter:hole_filling_mode=1 -f DepthResize:scale=2 in/a.png -o b").status, 0);
  EXPECT_EQ(get("a/a.png"), get("b/a.png"));
  EXPECT_NE(get("a/a.png"), kHoles);
  ASSERT_EQ(run("run --chain chain.json --set fill.enabled=false --set 2.scale=1 in/a.png -o c").status,
            0);
  EXPECT_EQ(get("c/a.png"), kHoles);
  EXPECT_EQ(run("chain convert --text chain.json").out,
            "fill=HoleFillingFilter:hole_filling_mode=1\nDepthResize:scale=2\n");
  EXPECT_MENTIONS(run("chain show chain.json").out, "hole_filling_mode = 1\n");
  EXPECT_MENTIONS(run("chain check chain.json").out, "chain.json: 2 steps, right\n");

  expect_refused(run("chain check chain.json 'a=TemporalFilter:weigth=1'"), 2,
                 "step 1 (a): unknown key weigth; did you mean weight?");
  expect_refused(run("run --chain chain.json --set full.scale=1 in/a.png -o d"), 2, "has no step full");
  expect_refused(run("run --chain chain.json --set fill=1 in/a.png -o d"), 2, "expected TAG.key=value");
  expect_refused(run("run --chain chain.json --set fill.enabled=1 in/a.png -o d"), 2,
                 "expected true or false");
  expect_refused(run("run --chain chain.json -f TemporalFilter in/a.png -o d"), 2, "excludes");
  const std::string sized = R"({"version": 1, "input": {"width": 640, "height": 400}, "steps": []})";
  put("sized.json", Bytes(sized.begin(), sized.end()));
  expect_refused(run("run --chain sized.json in/a.png -o d"), 1, "the chain file's input has 640x400");
  EXPECT_FALSE(fs::exists(folder_ / "d"));
}

TEST_F(Program, RefusesPluginsThatAreNone) {
  put("broken.so", Bytes{'x'});
  expect_refused(run("list --plugin nowhere.so"), 1, "nowhere.so does not load: ");
  expect_refused(run("list --plugin broken.so"), 1, "broken.so does not load: ");
  expect_refused(run("list --plugin '" ZVFILTER_INCOMPLETE_PLUGIN "'"), 1,
                 "lacks the function zv_create_filter");
}

TEST_F(Program, CameraFilesAndTheCameraItselfGiveTheSameResults) {
  const std::map<std::string, std::string> option_forms = {
      {"", ""},
      {",pack-mode=1,correction=-3", "--pack-mode 1 --correction -3"},
      {",pack-mode=4", "--pack-mode 4"},
      {",pixel-format=34,mono", "--pixel-format 34 --mono"},
  };
  for (const auto& [in_input, typed] : option_forms) {
    SCOPED_TRACE(typed);
    fs::remove_all(folder_ / "cam");
    const Outcome made = run("camera -o cam --frames 2 --size 96x64 --seed 5 " + typed);
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(listing("cam"),
              (Names{"camera.json", "disparity_0000.png", "disparity_0001.png", "truth"}));
    EXPECT_EQ(listing("cam/truth"), (Names{"disparity_0000.png", "disparity_0001.png"}));

    const std::string filters = "run -f EchoFilter -f ConvertingFilter --preview --overwrite ";
    const Outcome files = run_probe(filters + "cam --camera cam/camera.json --truth cam/truth -o a");
    const Outcome itself = run_probe(concat(filters, "-o b camera:frames=2,size=96x64,seed=5", in_input));
    EXPECT_EQ(itself.status, 0) << itself.err;
    EXPECT_EQ(files.err + itself.err, "");
    const auto except_times = [](const std::string& out) {
      const auto tables = out.find("\nafter ");
      return out.substr(0, out.find("\nfilter ")).append(out, tables, out.rfind(" to ") - tables);
    };
    EXPECT_EQ(except_times(files.out), except_times(itself.out));
    EXPECT_EQ(listing("a"), listing("b"));
    EXPECT_EQ(listing("a").size(), 4u);
    for (const std::string& name : listing("a"))
      EXPECT_EQ(text_of(folder_ / "a" / name), text_of(folder_ / "b" / name));
    EXPECT_EQ(get("a/disparity_0001.png"), get("cam/disparity_0001.png"));
    EXPECT_NE(get("cam/disparity_0000.png"), get("cam/disparity_0001.png"));
    EXPECT_MENTIONS(files.out, ", type 2, scale 1, baseline 50, fx 67.2\n");
    EXPECT_MENTIONS(files.out, "\n(input)                  -  ");
    EXPECT_MENTIONS(files.out, "\nEchoFilter               -  ");
    EXPECT_EQ(files.out.find("\nConvertingFilter         -  "), std::string::npos);
  }
}

TEST_F(Program, NeverMixesTwoRecordings) {
  ASSERT_EQ(run("camera -o cam --frames 2 --size 64x48").status, 0);
  const std::string frame = text_of(folder_ / "cam/disparity_0000.png");
  expect_refused(run("camera -o cam --frames 1 --size 96x64"), 1,
                 ": belongs to another recording; expected a folder without one");
  EXPECT_EQ(text_of(folder_ / "cam/disparity_0000.png"), frame);
  fs::remove_all(folder_ / "cam");
  fs::create_directories(folder_ / "cam/truth");
  put("cam/truth/disparity_0007.png", kHoles);
  expect_refused(run("camera -o cam --frames 1 --size 96x64"), 1,
                 "cam/truth/disparity_0007.png: belongs");
}

TEST_F(Program, ComparesEveryStageWithTheTruth) {
  fs::create_directory(folder_ / "truth");
  put("in/a.png", Image{2, 2, {1100, 0, 1050, 1200}});  // 5 % is not above 5 %
  put("in/b.pgm", Image{2, 2, {1010, 0, 1040, 1200}});
  put("truth/a.npy", Image{2, 2, {1000, 1000, 1000, 0}});
  put("truth/b.raw", Image{2, 2, {1000, 1000, 1001, 0}});
  const Outcome outcome = run_probe(
      "run -f ConvertingFilter -f CroppingFilter in/a.png in/b.pgm -o results --truth truth --size 2x2 "
      "--baseline 1 "
      "--fx 1");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_MENTIONS(outcome.out,
                  "\nafter             coverage  median error mm  p95 error mm  off > 5 %  flicker mm\n"
                  "(input)            75.00 %             39.0         100.0    25.00 %        90.0\n"
                  "ConvertingFilter   75.00 %             39.0         100.0    25.00 %        90.0\n"
                  "CroppingFilter           -                -             -          -           -\n");
}

TEST_F(Program, SaysHowSteadyAStillSceneIs) {
  for (std::size_t i = 0; i < 8; ++i) {
    Image image = make_image(10, 10);
    for (std::size_t at = 0; at < image.pixels.size(); ++at)
      image.pixels[at] = static_cast<std::uint16_t>(1000 + (i + at) % 2 * 4);
    put(concat("in/", i, ".png"), image);
  }
  const Outcome outcome = run("run -f HoleFillingFilter in -o results --value-scale 0.5");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_MENTIONS(outcome.out,
                  "\n\nat rest  pixels used  flicker mm  noise mm\n"
                  "before      100.00 %         2.0       1.5\n"
                  "after       100.00 %         2.0       1.5\n");
}

TEST_F(Program, RefusesWrongCamerasAndTruths) {
  put("in/a.png", kHoles);
  put("in/b.png", kHoles);
  fs::create_directory(folder_ / "truth");
  put("truth/a.png", kHoles);
  put("broken.json", Bytes{'{'});
  const std::string start = "run -f HoleFillingFilter -o results ";
  expect_refused(1, start,
                 {{"in/a.png --camera broken.json", "broken.json: is no JSON: "},
                  {"in/a.png --camera nowhere.json", "nowhere.json: cannot be read: "},
                  {"in --truth truth", "in/b.png: has no truth; expected a file named b in truth"},
                  {"in/a.png --truth in/none", "in/none: no such file or folder"}});
  expect_refused(
      2, start,
      {{"camera:bist=12", "camera: unknown option \"bist\"; did you mean bits?"},
       {"camera: in", "camera: has to be the only input"},
       {"camera: --truth truth", "--truth is for files; camera: brings its own"},
       {"camera: --size 64x64", "--size is for raw files; camera: takes its own: camera:size=WxH"},
       {"in --size 3x3", "--size 3x3: is for raw files"}});
  expect_refused(2, "camera ",
                 {{"-o results --pack-mode 3 --mono", "--pack-mode 3: has to be 1, 2 or 4 with"},
                  {"-o results --frames 0", "--frames 0: expected 1 to 10000"},
                  {"-o ''", "the folder for the frames has no name"},
                  {"", "--output is required"}});
  expect_refused(2, "run -f HoleFillingFilter ",
                 {{"in/a.png --truth truth -o truth", "would replace the input truth/a.png"}});
  put("truth/a.pgm", Image{1, 1, {1}});
  expect_refused(2, start, {{"in/a.png --truth truth", "would both be the truth of in/a.png"}});
  fs::remove(folder_ / "truth/a.png");
  expect_refused(1, start,
                 {{"in/a.png --truth truth", "truth/a.pgm: is 1x1; expected 3x3, the size of in/a.png"}});
}

TEST_F(Program, RefusesWrongUsage) {
  put("in/a.png", kHoles);
  put("in/a.pgm", kHoles);
  put("in/a.raw", kHoles);
  expect_refused(
      2, "",
      {{"", "subcommand is required"},
       {"rnu", "unknown command rnu; did you mean run?"},
       {"--bogus", "unknown option --bogus; known: --help"},
       {"schema HoleFilingFilter", "unknown filter HoleFilingFilter; did you mean HoleFillingFilter?"},
       {"run in/a.png -o results", "no filter is named"}});
  expect_refused(2, "run -o results -f HoleFillingFilter",
                 {{"", "INPUT is required"},
                  {":hole_filling_mod=1 in/a.png", "did you mean hole_filling_mode?"},
                  {":hole_filling_mode=top in/a.png", "hole_filling_mode=top is not a whole"},
                  {" in/a.png --format jpg", "--format: jpg: expected png, pgm, npy, raw or tiff"},
                  {" in/a.png --bits 17", "--bits: Value 17 not in range 1 to 16"},
                  {" in/a.png --baseline -1", "--baseline: -1: expected a number above 0"},
                  {" in/a.png --pixel-type x", "--pixel-type: x: expected depth"},
                  {" in/a.raw --size 3", "--size: 3: expected WIDTHxHEIGHT"},
                  {" in/a.raw", "in/a.raw: a raw file does not say its size"},
                  {" err.txt", "err.txt: is of no known format"},
                  {" in/a.png in/a.pgm --format npy",
                   "in/a.pgm and in/a.png would both be written to results/a.npy"},
                  {" in/a.png in/../in/a.png", "would both be written"}});
  expect_refused(2, "run -f HoleFillingFilter ",
                 {{"in/a.png -o in/../in", "would replace the input in/a.png"}});
  EXPECT_EQ(get("in/a.png"), kHoles);
}

TEST_F(Program, RefusesBadInputsAndLeavesNothingBehind) {
  Bytes truncated = encode_png(kHoles);
  truncated.resize(truncated.size() - 15);
  put("cut.png", truncated);
  put("colour.png", encode_png(ColorImage{1, 1, {{1, 2, 3}}}));
  put("other.raw", Image{2, 2, {1, 2, 3, 4}});
  put("large.png", Bytes{1});
  fs::resize_file(folder_ / "large.png", std::uintmax_t{20} << 30);
  put("large.json", Bytes(20 << 20, '['));
  fs::create_symlink("/dev/zero", folder_ / "endless.png");
  fs::create_directory(folder_ / "empty");
  expect_refused(
      1, "run -f HoleFillingFilter -o results ",
      {{"missing.png", "missing.png: no such file or folder"},
       {"empty", "empty: holds no image"},
       {"cut.png", "cut.png: is damaged or truncated"},
       {"colour.png", "colour.png: is 8-bit colour; expected a 16-bit grayscale PNG file"},
       {"other.raw --size 3x3", "other.raw: is truncated: 8 bytes of pixels, expected 18 for 3x3"},
       {"large.png", "large.png: has 21474836480 bytes; at most 1073741824 are read"},
       {"endless.png", "endless.png: is no regular file; expected an image file"},
       {"large.png --camera large.json", "large.json: has 20971520 bytes; at most 65536 are read"},
       {"large.png --camera /dev/zero", "/dev/zero: is no regular file"}});
}

TEST_F(Program, ShowsTheControlCharactersOfFilesAndNames) {
  const std::string type = "{'descr': '\\u001b[2J', 'fortran_order': False, 'shape': (1, 1)}";
  std::string npy = concat("\x93NUMPY\x01", '\0', static_cast<char>(type.size()), '\0', type);
  const std::string camera = R"({"\u001b[2J\u0000": 1})";
  put("in/\x1b[31m.npy", Bytes(npy.begin(), npy.end()));
  put("c.json", Bytes(camera.begin(), camera.end()));
  const std::string start = "run -f HoleFillingFilter -o results in ";
  for (const std::string& arguments : {start, start + "--camera c.json", start + "'\x1b.png'",
                                       std::string("camera -o results --frames '\x1b'"),
                                       std::string("schema '\x1b'"), std::string("'\x1b'")}) {
    const Outcome outcome = run(arguments);
    EXPECT_NE(outcome.status, 0);
    EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos) << arguments;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << arguments;
  }
  EXPECT_MENTIONS(run(start).err, "in/\\x1b[31m.npy: has elements of type '\\x1b[2J'");
  const Outcome made = run("camera --size 64x48 --frames 1 -o 'a\x1b'");
  EXPECT_TRUE(made.out.ends_with("camera.json in a\\x1b, true depth in a\\x1b/truth\n")) << made.out;
}

TEST_F(Program, SaysThatADiskOrStandardOutputIsFull) {
  put("in/a.raw", make_image(100, 100));
  const Outcome disk =
      run("run -f HoleFillingFilter in -o results --size 100x100", "trap '' XFSZ; ulimit -f 2; ");
  EXPECT_EQ(disk.status, 1);
  EXPECT_MENTIONS(disk.err, "zvfilter: results/a.raw: cannot be written: ");
  EXPECT_EQ(listing("results"), Names{});
  fs::remove_all(folder_ / "results");
  expect_refused(run("list", "exec > /dev/full; "), 1, "standard output cannot be written");
}

TEST_F(Program, KeepsWholeResultsAndNoOthersWhenAnInputOrTheFolderFails) {
  put("in/a.raw", kHoles);
  put("in/b.raw", Image{2, 2, {1, 2, 3, 4}});
  expect_refused(run("run -f HoleFillingFilter in -o results --size 3x3"), 1, "in/b.raw: is truncated");
  put("in/a.png", kHoles);
  put("in/b.png", Bytes{1});
  EXPECT_EQ(run("run -f HoleFillingFilter in --include '*.png' -o results").status, 1);
  EXPECT_EQ(listing("results"), Names{"a.png"});

  fs::create_directories(folder_ / "taken/a.raw/x");  // a folder in the way of the result
  const Outcome outcome = run("run -f HoleFillingFilter in/a.raw -o taken --size 3x3");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_MENTIONS(outcome.err, "zvfilter: taken/a.raw: cannot be written: ");
  EXPECT_EQ(listing("taken"), Names{"a.raw"});
  EXPECT_MENTIONS(run("run -f HoleFillingFilter in/a.raw -o out.txt --size 3x3").err,
                  "zvfilter: out.txt: cannot be made: ");
}

TEST_F(Program, WritesAReportThatHoldsItsRunAndNothingElse) {
  put("in/a.pgm", kHoles);
  put("in/<b>.pgm", kHoles);
  const Outcome made = run("run -f 'fill=HoleFillingFilter:' in -o results --report pages/run.html");
  ASSERT_EQ(made.status, 0) << made.err;
  const std::string page = text_of(folder_ / "pages/run.html");
  EXPECT_MENTIONS(page, "66.7\u202f% → 100.0\u202f%");  // six of nine pixels, then all
  EXPECT_MENTIONS(page, "changed 33.3\u202f%");
  EXPECT_MENTIONS(page, "-f fill=HoleFillingFilter: in -o results");
  EXPECT_MENTIONS(page, "in/&lt;b&gt;.pgm");
  EXPECT_EQ(page.find("<b>.pgm"), std::string::npos);
  EXPECT_EQ(page.find("http://"), std::string::npos);
  EXPECT_EQ(page.find("https://"), std::string::npos);

  ASSERT_EQ(
      run("run -f HoleFillingFilter:hole_filling_mode=2 in -o far --report far.html --against results")
          .status,
      0);
  EXPECT_MENTIONS(text_of(folder_ / "far.html"), "Beside the results in results");
}

TEST_F(Program, RefusesAReportThatCannotBe) {
  put("in/a.pgm", kHoles);
  fs::create_directory(folder_ / "other");
  put("other/b.pgm", kHoles);
  expect_refused(run("run -f HoleFillingFilter: other -o in --report r.html --against in"), 2,
                 "--against in: is the folder for the results");
  expect_refused(
      2, "run -f HoleFillingFilter: in -o results ",
      {{"--report r.html --report-frames 0,1", "--report-frames 1: expected numbers from 0 to 0"},
       {"--report r.html --against other", "other: has no result named a"},
       {"--report in/a.pgm", "in/a.pgm would replace the input in/a.pgm"},
       {"--against other", "--against requires --report"}});
}

}  // namespace
}  // namespace kit
