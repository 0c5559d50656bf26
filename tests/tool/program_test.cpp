// The built program, run as a user runs it.
#include "program.h"

#include <set>

#include <nlohmann/json.hpp>

namespace kit {
namespace {

TEST_F(Program, ListsTheFiltersOfAPlugin) {
  const std::string own = complete("list").out;
  EXPECT_MENTIONS(
      own,
      "1  HoleFillingFilter: gives holes the value of a neighbour\n"
      "     hole_filling_mode  integer   0 to 2, step 1, default 0; 0 top, 1 nearest, 2 farthest\n");
  EXPECT_MENTIONS(own, "\n     width     integer   1 to 1280, step 1, default 848; ");
  EXPECT_EQ(run("schema HoleFillingFilter").out,
            "hole_filling_mode, integer, 0, 2, 1, 0, "
            "ZV_HOLE_FILL_TOP/ZV_HOLE_FILL_NEAREST/ZV_HOLE_FILL_FAREST\n");
  const std::string wish = run("list", "export FILTERPROCESSOR_CPU=best; ").err;
  EXPECT_TRUE(wish.starts_with("filterprocessor: FILTERPROCESSOR_CPU=best: no such level; using "))
      << wish;
  EXPECT_TRUE(wish.find(". Levels: scalar") != wish.npos && wish.ends_with('\n')) << wish;
  const std::string probe = run_probe("list").out;
  EXPECT_MENTIONS(probe, "0  MissingFilter  (not available)\n1  FailingFilter\n     count  ");
  EXPECT_MENTIONS(probe, "\nThe kernels run at level probing.\n");
  const auto list = nlohmann::json::parse(run_probe("list --json").out);
  EXPECT_EQ(list[0]["available"], false);
  EXPECT_EQ(list[3]["index"], 3);
  EXPECT_EQ(list[3]["available"], true);
  EXPECT_EQ(list[3]["parameters"][1]["default"], 0.5);
  expect_refused(1, "list --plugin ",
                 {{"nowhere.so", "nowhere.so does not load: "},
                  {"'" ZVFILTER_INCOMPLETE_PLUGIN "'", "lacks the function zv_create_filter"}});
}

TEST_F(Program, ExplainsFiltersAndPresets) {
  EXPECT_TRUE(run("--version").out.starts_with("zvfilter "));
  EXPECT_MENTIONS(run("help").out, "TemporalFilter               steadies each pixel");
  EXPECT_MENTIONS(run("help TemporalFilter").out, "points. It remembers\n          the last result, ");
  EXPECT_MENTIONS(run("help HoleFillingFilter").out,
                  "default 0\n  Which neighbour a hole takes its value from. Disparity frames are "
                  "understood: nearest is nearest\n  there too.\n    0  top: the pixel above, ");
  EXPECT_MENTIONS(run_probe("help EchoFilter").out,
                  "EchoFilter is not described; its own words:\n\n"
                  "count: 0 to 10, step 1, default 3\n  how many\n");
  for (const char* command : {"run", "advise", "tune", "bench", "camera", "chain convert"}) {
    const std::string help = run(concat(command, " --help")).out;
    EXPECT_MENTIONS(help, concat("Examples:\n  zvfilter ", command));
    for (const char* type : {" TEXT", " INT", " UINT", " FLOAT"})
      EXPECT_EQ(help.find(type), help.npos) << command << ": a value has no name of its own";
  }
  EXPECT_MENTIONS(run("run camera:bist=12 --help").out, "Examples:");
  EXPECT_MENTIONS(run_probe("help").out, "EchoFilter      not described\n");
  EXPECT_MENTIONS(run("presets").out, "\nmoving-camera\n  A camera that moves");
  put("fill.json", run("presets fill-holes").out);
  const std::string end = " holes.png --set clean.enabled=false --fx 1 --baseline 1 -o ";
  complete("run --preset fill-holes" + end + "a");
  complete("run --chain fill.json" + end + "b");
  EXPECT_EQ(get("a/holes.png"), get("b/holes.png"));
  EXPECT_NE(get("a/holes.png"), kHoles);
}

TEST_F(Program, FiltersEveryFormat) {
  const Names files = {"a.png", "b.pgm", "c.npy", "d.raw", "e.BIN", "f.tif"};
  std::string arguments = "run -f HoleFillingFilter -f HoleFillingFilter -o results/deep --size 3x3";
  for (const std::string& name : files) {
    put("in/" + name, kHoles);
    arguments += " in/" + name;
  }
  const Outcome outcome = complete(arguments);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(listing("results/deep"), files);
  for (const std::string& name : files) EXPECT_EQ(get("results/deep/" + name, {3, 3}), kFilled) << name;
  EXPECT_TRUE(
      outcome.out.starts_with("filter             frames  valid before  valid after  changed  median ms\n"
                              "HoleFillingFilter       6            36           54       18"))
      << outcome.out;
  EXPECT_MENTIONS(outcome.out, "\nHoleFillingFilter       6            54           54        0");
  put("m.npy", npy_of("1, 1", {"\0\0\xa0?", 4}, "'<f4'"));
  complete("run -f HoleFillingFilter m.npy --metres --value-scale 0.5 -o out --format pgm");
  EXPECT_EQ(get("out/m.pgm"), (Image{1, 1, {2500}})) << "1.25 m";
}

TEST_F(Program, ConfiguresOnlyWhatIsAskedForAndKeepsOneInstance) {
  put("in/b.png", Image{1, 1, {22}});
  put("in/a.png", Image{1, 1, {11}});
  const std::string start = "run -o out --overwrite in/a.png -f EchoFilter";
  const Outcome plain = run_probe("run -f EchoFilter in/b.png in/a.png -o out");
  EXPECT_EQ(plain.status, 0) << plain.err;
  EXPECT_EQ(plain.out.find("configured"), std::string::npos);
  EXPECT_MENTIONS(plain.out,
                  "frame 1: set 0, first pixel 11, bits 16, type 0, scale 1, baseline 50, fx 0.7\n");
  EXPECT_MENTIONS(plain.out, "frame 2: set 0, first pixel 22, ");
  EXPECT_EQ(plain.err,
            "zvfilter: note: the files carry no stereo geometry; assuming a nominal camera with baseline "
            "50 mm, fx 0.7 times the width, 8 fraction bits (--baseline, --fx and --bits set them)\n");
  EXPECT_MENTIONS(run_probe(start + " --baseline 75 --bits 8").err,
                  "assuming a nominal camera with fx 0.7 times the width, 0 fraction bits (");
  EXPECT_MENTIONS(run_probe(start + " --fx 400").err,
                  "assuming a nominal camera with baseline 50 mm, 8 fraction bits (");
  put("c.json",
      R"({"bits": 14, "pixelType": "linear", "valueScale": 2, "disparity": {"baseline": 1, "fx": 1}})");
  const Outcome set = run_probe(
      start +
      ":on=0,count=9 --frame-set --bits 12 --pixel-type disparity --value-scale 0.25 --baseline 75 "
      "--fx 400 --camera c.json");
  EXPECT_MENTIONS(set.out, "configured: 9 0.5 0\n");
  EXPECT_MENTIONS(set.out,
                  "frame 1: set 1, first pixel 11, bits 12, type 2, scale 0.25, baseline 75, fx 400\n");
  EXPECT_EQ(set.err, "");
}

TEST_F(Program, PaintsPreviewsAsTheyAreAskedFor) {
  std::set<std::string> pictures;
  for (const char* asked : {"", "--colors viridis", "--colors grey", "--range 5:9"}) {
    complete(concat("run -f HoleFillingFilter holes.png -o a --overwrite --preview ", asked));
    EXPECT_TRUE(pictures.insert(text_of("a/holes_preview.png")).second) << asked;
  }
}

TEST_F(Program, MeasuresThePartsOfARun) {
  const std::string out =
      complete(
          "bench --jobs 2 --chain 'DisparityTransform:; TemporalFilter; off=TemporalFilter' "
          "--set off.enabled=false camera:frames=4,size=96x64")
          .out;
  EXPECT_TRUE(out.starts_with("4 frames; frames a second:\n" + std::string(34, ' ') +
                              "1 thread   2 threads\ndecode   "))
      << out;
  const auto rates = [&](const std::string& part) {
    std::pair<double, double> found;
    const auto place = out.find('\n' + part + "  ");
    if (place != out.npos) std::istringstream(out.substr(place + 31)) >> found.first >> found.second;
    return found;
  };
  EXPECT_MENTIONS(out, "\nstep 3 (off)                             -           -\n");
  EXPECT_EQ(out.find(' ', out.find('.')), out.find('.') + 2) << "tenths";
  EXPECT_TRUE(complete("bench --jobs 1 -f HoleFillingFilter holes.png")
                  .out.starts_with("1 frame; frames a second:\n" + std::string(34, ' ') +
                                   "1 thread    1 thread\n"));
  const auto whole = rates("whole");
  EXPECT_GT(std::min(whole.first, whole.second), 0);
  for (const char* part : {"decode", "step 1 (DisparityTransform)", "step 2 (TemporalFilter)", "encode"})
    EXPECT_GT(rates(part).first, whole.first) << part << " is less work than the whole";
}

TEST_F(Program, ReportsFilterErrorsWithAllTheirTexts) {
  expect_refused(1, "run holes.png -o results --baseline 50 --fx 1" + kProbe + "-f ",
                 {{"FailingFilter",
                   "holes.png: step 1 (FailingFilter): FailingFilter failed: \"out of order\" (function "
                   "filter_process, args a frame, exception type 7)"},
                  {"SilentFilter", "SilentFilter gave neither a frame nor an error"},
                  {"MissingFilter", "the filter MissingFilter is not available"}});
}

TEST_F(Program, TakesChainsAsFilesAndTexts) {
  complete(
      "chain convert 'fill=HoleFillingFilter:hole_filling_mode=1; DepthResize:scale=2' -o chain.json");
  complete("run --chain chain.json holes.png -o a");
  put("z.ini", "[run]\noutput=b\nsync=true\n");
  complete(
      "run --filter HoleFillingFilter:hole_filling_mode=1 -f DepthResize:scale=2 holes.png --config "
      "z.ini");
  EXPECT_EQ(get("a/holes.png"), get("b/holes.png"));
  EXPECT_NE(get("a/holes.png"), kHoles);
  complete("run --chain chain.json --set fill.enabled=false --set 2.scale=1 holes.png -o c");
  EXPECT_EQ(get("c/holes.png"), kHoles);
  EXPECT_EQ(run("chain convert --text chain.json --set 2.scale=3").out,
            "fill=HoleFillingFilter:hole_filling_mode=1\nDepthResize:scale=3\n");
  EXPECT_MENTIONS(run("chain show chain.json").out,
                  "1  HoleFillingFilter  tag fill\n     hole_filling_mode = 1\n2  DepthResize\n");
  EXPECT_EQ(run("chain check chain.json TemporalFilter").out,
            "chain.json: 2 steps, right\nTemporalFilter: 1 step, right\n");
  expect_refused(run("chain check chain.json 'a=TemporalFilter:weigth=1'"), 2,
                 "step 1 (a): unknown key weigth; did you mean weight?");
  expect_refused(2, "run --chain chain.json holes.png -o results ",
                 {{"--set full.scale=1", "has no step full"},
                  {"--set fill=1.5", "expected TAG.key=value"},
                  {"--set fill.scale", "expected TAG.key=value"},
                  {"--set fill.scale=", "expected TAG.key=value"},
                  {"--set fill.enabled=1", "expected true or false"},
                  {"-f TemporalFilter", "excludes"}});
  put("sized.json",
      R"({"version": 1, "description": "for the hall", "input": {"width": 640, "height": 400},
          "steps": [{"filter": "TemporalFilter", "enabled": false}]})");
  const std::string shown = run("chain show sized.json").out;
  EXPECT_TRUE(shown.starts_with("for the hall\n\ninput {\"width\":640,\"height\":400,")) << shown;
  EXPECT_MENTIONS(shown, "}\n\n1  TemporalFilter  off  as it is made\n");
  expect_refused(run("chain convert --text sized.json"), 2, "the chain has an input, which only");
  EXPECT_MENTIONS(run("chain schema").out, "hole_filling_mode");
  complete("run -f DepthResize --set DepthResize.scale=2 holes.png -o d");
  EXPECT_EQ(get("d/holes.png").width, 6u);
  expect_refused(run("run --chain sized.json holes.png -o results"), 1,
                 "the chain file's input has 640x400");
}

TEST_F(Program, RefusesWrongUsage) {
  for (const char* name : {"holes.pgm", "holes.raw"}) put(name, kHoles);
  put("other.ini", "[run]\ncolour=3\n");
  expect_refused(
      2, "",
      {{"", "subcommand is required"},
       {"rnu", "unknown command rnu; did you mean run?"},
       {"--bogus", "unknown option --bogus; known: --help"},
       {"schema HoleFilingFilter", "unknown filter HoleFilingFilter; did you mean HoleFillingFilter?"},
       {"help TemporalFliter", "did you mean TemporalFilter?"},
       {"run holes.png -o results", "no filter is named"},
       {"run holes.png -o results --preset fill", "unknown preset fill; did you mean fill-holes?"},
       {"run -f HoleFillingFilter holes.png -o ''", "the folder for the results has no name"},
       {"run -f HoleFillingFilter holes.png -o in/..", "would replace the input holes.png"}});
  expect_refused(2, "run -o results -f HoleFillingFilter",
                 {{"", "INPUT is required"},
                  {" holes.png --preset light", "excludes"},
                  {" holes.png --config other.ini", "run.colour"},
                  {" holes.png --range 5:4", "--range: 5:4: expected NEAR:FAR"},
                  {" holes.png --range 5", "--range: 5: expected NEAR:FAR"},
                  {" holes.png --range=-1:4", "--range: -1:4: expected NEAR:FAR"},
                  {" holes.png --compression best", "best: expected fast or small"},
                  {" holes.raw --size 3x3 --endian middle", "middle: expected little or big"},
                  {" holes.png --colors jet", "--colors: jet: expected turbo, viridis or grey"},
                  {" holes.png --format jpg", "--format: jpg: expected png, pgm, npy, raw or tiff"},
                  {" holes.png --bits 17", "--bits: Value 17 not in range 1 to 16"},
                  {" holes.png --jobs 1025", "--jobs: Value 1025 not in range 1 to 1024"},
                  {" holes.png --baseline -1", "--baseline: -1: expected a number above 0"},
                  {" holes.png --pixel-type x", "--pixel-type: x: expected depth"},
                  {" holes.raw --size 3", "--size: 3: expected WIDTHxHEIGHT"},
                  {" holes.raw", "holes.raw: a raw file does not say its size; give it with --size"},
                  {" err.txt", "err.txt: is of no known format"},
                  {" holes.png holes.pgm --preview", "and the preview of holes.png would both"},
                  {" holes.png holes.pgm --format npy",
                   "holes.pgm and holes.png would both be written to results/holes.npy"}});
  EXPECT_EQ(get("holes.png"), kHoles);
}

TEST_F(Program, RefusesBadInputsAndLeavesNothingBehind) {
  fs::create_directory(folder_ / "empty");
  put("in/a.raw", kHoles);
  put("in/b.raw", Image{2, 2, {1, 2, 3, 4}});
  put("colour.png", encode_png(ColorImage{1, 1, {{1, 2, 3}}}));
  put("large.png", "x");
  fs::resize_file(folder_ / "large.png", std::uintmax_t{20} << 30);
  fs::create_symlink("/dev/zero", folder_ / "endless.png");
  expect_refused(
      1, "run -f HoleFillingFilter -o results ",
      {{"missing.png", "missing.png: no such file or folder"},
       {"empty", "empty: holds no image"},
       {"in --size 3x3", "in/b.raw: is truncated: 8 bytes of pixels, expected 18 for 3x3"},
       {"colour.png", "colour.png: is 8-bit colour; expected a 16-bit grayscale PNG file"},
       {"large.png", "large.png: has 21474836480 bytes; at most 1073741824 are read"},
       {"endless.png", "endless.png: is no regular file; expected an image file"},
       {"holes.png --camera large.png", "large.png: has 21474836480 bytes; at most 65536 are read"}});
}

TEST_F(Program, ShowsTheControlCharactersOfFilesAndNames) {
  put("in/\x1b[31m.npy", npy_of("1, 1", "", "'\\u001b[2J'"));
  put("c.json", R"({"\u001b[2J\u0000": 1})");
  const std::string start = "run -f HoleFillingFilter -o results in ";
  for (const std::string& arguments : {start, start + "--camera c.json", start + "'\x1b.png'",
                                       std::string("schema '\x1b'"), std::string("'\x1b'")}) {
    const Outcome outcome = run(arguments);
    EXPECT_NE(outcome.status, 0);
    EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos) << arguments;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << arguments;
  }
  EXPECT_MENTIONS(run(start).err, "in/\\x1b[31m.npy: has elements of type '\\x1b[2J'");
  const Outcome made = run("camera --size 64x48 --frames 1 -o 'a\x1b'");
  EXPECT_EQ(made.out, "1 frame of 64x48 and camera.json in a\\x1b, true depth in a\\x1b/truth\n");
}

TEST_F(Program, SaysWhereNothingCanBeWritten) {
  put("in/a.raw", make_image(100, 100));
  expect_failed(run("run -f HoleFillingFilter in -o full --size 100x100", "trap '' XFSZ; ulimit -f 2; "),
                1, "zvfilter: full/a.raw: cannot be written: ");
  EXPECT_EQ(listing("full"), Names{});
  expect_failed(run("run -f HoleFillingFilter holes.png -o out.txt"), 1, "out.txt: cannot be made: ");
  expect_refused(run("list", "exec > /dev/full; "), 1, "standard output cannot be written");
}

}  // namespace
}  // namespace kit
