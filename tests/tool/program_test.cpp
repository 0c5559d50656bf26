// The built program, run as a user runs it.
#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdlib.h>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include "kit/common/text.h"
#include "kit/image/codec.h"

namespace kit {
namespace {

namespace fs = std::filesystem;

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

constexpr std::size_t kMostBytes = 1 << 20;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

class Program : public testing::Test {
 protected:
  Program() {
    std::string pattern = (fs::temp_directory_path() / "zvfilter_test_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    fs::create_directory(folder_ / "in");
  }
  ~Program() override { fs::remove_all(folder_); }

  std::string text_of(const fs::path& file) const {
    const Bytes bytes = read_whole(file, kMostBytes);
    return {bytes.begin(), bytes.end()};
  }
  /// Runs the program inside the folder.
  Outcome run(const std::string& arguments) const {
    const std::string command = "cd '" + folder_.string() + "' && " ZVFILTER_COMMAND " " + arguments +
                                " > out.txt 2> err.txt < /dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(folder_ / "out.txt"),
            text_of(folder_ / "err.txt")};
  }
  Outcome run_probe(const std::string& arguments) const {
    return run(arguments + " --plugin '" ZVFILTER_PROBE_PLUGIN "'");
  }
  /// Expects one line on standard error with the text, the status, and no result.
  void expect_refused(const Outcome& outcome, int status, const std::string& part) const {
    EXPECT_EQ(outcome.status, status) << outcome.err;
    EXPECT_TRUE(outcome.err.starts_with("zvfilter: ")) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_MENTIONS(outcome.err, part);
    EXPECT_FALSE(fs::exists(folder_ / "results"));
  }
  void put(const std::string& name, const Bytes& bytes) const {
    write_whole(folder_ / name, bytes, Durability::buffered);
  }
  void put(const std::string& name, const Image& image) const {
    put(name, codec_of_extension(fs::path(name).extension().string())->encode(image));
  }
  Image get(const std::string& name, Size size = {}) const {
    const fs::path file = folder_ / name;
    return codec_of_extension(file.extension().string())->decode(read_whole(file, kMostBytes), size);
  }
  std::vector<std::string> listing(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_ / name))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path folder_;
};

using Names = std::vector<std::string>;

const Image kHoles{3, 3, {5, 6, 7, 0, 8, 0, 9, 0, 1}};
const Image kFilled{3, 3, {5, 6, 7, 5, 8, 7, 9, 8, 1}};  // each hole takes the pixel above

TEST_F(Program, ListsTheFiltersOfItsOwnPlugin) {
  const Outcome text = run("list");
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_MENTIONS(text.out,
                  "1  HoleFillingFilter\n     hole_filling_mode  integer   0 to 2, step 1, default 0\n");

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

TEST_F(Program, ListsAFilterThatIsNotAvailable) {
  EXPECT_MENTIONS(run_probe("list").out,
                  "0  MissingFilter  (not available)\n1  FailingFilter\n     count  ");
  EXPECT_TRUE(run_probe("list").out.ends_with("\nThe kernels run at level probing.\n"));
  const auto list = nlohmann::json::parse(run_probe("list --json").out);
  EXPECT_EQ(list[0]["available"], false);
  EXPECT_EQ(list[3]["parameters"][1]["default"], 0.5);
}

TEST_F(Program, FiltersEveryFormat) {
  for (const char* name : {"a.png", "b.pgm", "c.npy", "d.raw", "e.BIN"})
    put(std::string("in/") + name, kHoles);
  put("in/notes.txt", Bytes{'x'});
  const Outcome outcome = run("run -f HoleFillingFilter in -o results --size 3x3");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(listing("results"), (Names{"a.png", "b.pgm", "c.npy", "d.raw", "e.BIN"}));
  for (const std::string& name : listing("results"))
    EXPECT_EQ(get("results/" + name, {3, 3}), kFilled) << name;

  const auto line_end = outcome.out.find('\n');
  EXPECT_EQ(outcome.out.substr(0, line_end),
            "filter             frames  valid before  valid after  changed  median ms");
  EXPECT_TRUE(outcome.out.substr(line_end + 1)
                  .starts_with("HoleFillingFilter       5            30           45       15"));
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

  const Outcome set = run_probe(
      "run -f EchoFilter:on=0,count=12 in/a.png -o results --frame-set --bits 12 --pixel-type disparity "
      "--value-scale 0.25 --baseline 75 --fx 400");
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_MENTIONS(set.out, "configured: 12 0.5 0\n");
  EXPECT_MENTIONS(set.out,
                  "frame 1: set 1, first pixel 11, bits 12, type 2, scale 0.25, baseline 75, fx 400\n");
  EXPECT_EQ(set.err,
            "zvfilter: warning: EchoFilter: count=12 is outside the schema's 0 to 10; "
            "the filter takes 0 to 10 and will refuse it\n");
}

TEST_F(Program, ReportsFilterErrorsWithAllTheirTexts) {
  put("in/a.png", kHoles);
  const std::string rest = " in/a.png -o results --baseline 50 --fx 1";
  expect_refused(
      run_probe("run -f FailingFilter" + rest), 1,
      "in/a.png: FailingFilter failed: \"out of order\" (function filter_process, args a frame, "
      "exception type 7)");
  expect_refused(run("run -f DepthResize:dst_width=4,dst_height=3,scale=1" + rest), 1,
                 "\"incorrect config schema\" (function filter_process, args DepthResize, exception type "
                 "4); dst_width has to be the frame's width x scale + ex_left + ex_right");
  expect_refused(run_probe("run -f SilentFilter" + rest), 1,
                 "SilentFilter gave neither a frame nor an error");
  expect_refused(run_probe("run -f MissingFilter" + rest), 1,
                 "the filter MissingFilter is not available");

  const Outcome refused = run("run -f HoleFillingFilter:hole_filling_mode=7" + rest);
  EXPECT_EQ(refused.status, 1);
  EXPECT_MENTIONS(refused.err, "zvfilter: warning: HoleFillingFilter: hole_filling_mode=7 is outside");
  EXPECT_MENTIONS(
      refused.err,
      "\nzvfilter: HoleFillingFilter refuses its configuration: \"invalid hole filling mode params\" "
      "(function update_filter_config, args argv, exception type 4)\n");
  EXPECT_FALSE(fs::exists(folder_ / "results"));
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

    const std::string filters = "run -f EchoFilter -f ConvertingFilter --preview ";
    const Outcome files = run_probe(filters + "cam --camera cam/camera.json --truth cam/truth -o a");
    const Outcome itself = run_probe(concat(filters, "-o b camera:frames=2,size=96x64,seed=5", in_input));
    EXPECT_EQ(itself.status, 0) << itself.err;
    EXPECT_EQ(files.err + itself.err, "");
    const auto except_times = [](const std::string& out) {
      return out.substr(0, out.find("\nfilter ")).append(out.substr(out.find("\nafter ")));
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
  put("in/a.png", Image{2, 2, {1000, 0, 1040, 1200}});
  put("in/b.pgm", Image{2, 2, {1010, 0, 1040, 1200}});
  put("truth/a.npy", Image{2, 2, {1000, 1000, 1000, 1000}});
  put("truth/b.raw", Image{2, 2, {1000, 1000, 1001, 0}});
  const Outcome outcome = run_probe(
      "run -f ConvertingFilter -f CroppingFilter in -o results --truth truth --size 2x2 --baseline 1 "
      "--fx 1");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_MENTIONS(outcome.out,
                  "\nafter             coverage  median error mm  p95 error mm  off > 5 %  flicker mm\n"
                  "(input)            75.00 %             39.0         200.0    20.00 %        10.0\n"
                  "ConvertingFilter   75.00 %             39.0         200.0    20.00 %        10.0\n"
                  "CroppingFilter           -                -             -          -           -\n");
}

TEST_F(Program, RefusesWrongCamerasAndTruths) {
  put("in/a.png", kHoles);
  put("in/b.png", kHoles);
  fs::create_directory(folder_ / "truth");
  put("truth/a.png", kHoles);
  put("broken.json", Bytes{'{'});
  const std::map<std::string, std::string> wrong_content = {
      {"in/a.png --camera broken.json", "broken.json: is no JSON: "},
      {"in/a.png --camera nowhere.json", "nowhere.json: cannot be read: "},
      {"in --truth truth", "in/b.png: has no truth; expected a file named b in truth"},
      {"in/a.png --truth in/none", "in/none: no such file or folder"},
  };
  for (const auto& [arguments, part] : wrong_content) {
    SCOPED_TRACE(arguments);
    expect_refused(run("run -f HoleFillingFilter -o results " + arguments), 1, part);
  }
  const std::map<std::string, std::string> wrong_usage = {
      {"run -f HoleFillingFilter -o results camera:bist=12",
       "camera: unknown option \"bist\"; did you mean bits?"},
      {"run -f HoleFillingFilter -o results camera: in", "camera: has to be the only input"},
      {"run -f HoleFillingFilter -o results camera: --truth truth",
       "--truth is for files; camera: brings its own"},
      {"run -f HoleFillingFilter -o truth in/a.png --truth truth", "would replace the input truth/a.png"},
      {"run -f HoleFillingFilter -o results camera: --size 64x64",
       "--size is for raw files; camera: takes its own: camera:size=WxH"},
      {"run -f HoleFillingFilter -o results in --size 3x3", "--size 3x3: is for raw files"},
      {"camera -o results --pack-mode 3 --mono", "--pack-mode 3: has to be 1, 2 or 4 with"},
      {"--bogus", "unknown option --bogus; known: --help"},
      {"camera -o results --frames 0", "--frames 0: expected 1 to 10000"},
      {"camera -o ''", "the folder for the frames has no name"},
      {"camera", "--output is required"},
  };
  for (const auto& [arguments, part] : wrong_usage) {
    SCOPED_TRACE(arguments);
    expect_refused(run(arguments), 2, part);
  }
  put("truth/a.pgm", Image{1, 1, {1}});
  expect_refused(run("run -f HoleFillingFilter -o results in/a.png --truth truth"), 2,
                 "would both be the truth of in/a.png");
  fs::remove(folder_ / "truth/a.png");
  expect_refused(run("run -f HoleFillingFilter -o results in/a.png --truth truth"), 1,
                 "truth/a.pgm: is 1x1; expected 3x3, the size of in/a.png");
}

TEST_F(Program, RefusesWrongUsage) {
  put("in/a.png", kHoles);
  put("in/a.pgm", kHoles);
  put("in/a.raw", kHoles);
  const std::map<std::string, std::string> cases = {
      {"", "subcommand is required"},
      {"rnu", "unknown command rnu; did you mean run?"},
      {"schema HoleFilingFilter", "unknown filter HoleFilingFilter; did you mean HoleFillingFilter?"},
      {"run in/a.png -o results", "--filter is required"},
      {"run -f HoleFillingFilter -o results", "INPUT is required"},
      {"run -f HoleFillingFilter:hole_filling_mod=1 in/a.png -o results",
       "did you mean hole_filling_mode?"},
      {"run -f HoleFillingFilter:hole_filling_mode=top in/a.png -o results",
       "hole_filling_mode=top is not a whole"},
      {"run -f HoleFillingFilter in/a.png -o results --format jpg",
       "--format: jpg: expected png, pgm, npy or raw"},
      {"run -f HoleFillingFilter in/a.png -o results --bits 17", "--bits: Value 17 not in range 1 to 16"},
      {"run -f HoleFillingFilter in/a.png -o results --baseline -1",
       "--baseline: -1: expected a number above 0"},
      {"run -f HoleFillingFilter in/a.png -o results --pixel-type x", "--pixel-type: x: expected depth"},
      {"run -f HoleFillingFilter in/a.raw -o results --size 3", "--size: 3: expected WIDTHxHEIGHT"},
      {"run -f HoleFillingFilter in/a.raw -o results", "in/a.raw: a raw file does not say its size"},
      {"run -f HoleFillingFilter err.txt -o results", "err.txt: is of no known format"},
      {"run -f HoleFillingFilter in/a.png in/a.pgm -o results --format npy",
       "in/a.pgm and in/a.png would both be written to results/a.npy"},
      {"run -f HoleFillingFilter in/a.png in/../in/a.png -o results", "would both be written"},
      {"run -f HoleFillingFilter in/a.png -o in/../in", "would replace the input in/a.png"},
  };
  for (const auto& [arguments, part] : cases) {
    SCOPED_TRACE(arguments);
    expect_refused(run(arguments), 2, part);
  }
  EXPECT_EQ(get("in/a.png"), kHoles);
}

TEST_F(Program, RefusesBadInputsAndLeavesNothingBehind) {
  Bytes truncated = encode_png(kHoles);
  truncated.resize(truncated.size() - 15);
  put("cut.png", truncated);
  put("colour.png", encode_png(ColorImage{1, 1, {{1, 2, 3}}}));
  put("other.raw", Image{2, 2, {1, 2, 3, 4}});
  fs::create_directory(folder_ / "empty");
  const std::map<std::string, std::string> cases = {
      {"missing.png", "missing.png: no such file or folder"},
      {"empty", "empty: holds no image"},
      {"cut.png", "cut.png: is damaged or truncated"},
      {"colour.png", "colour.png: is 8-bit colour; expected a 16-bit grayscale PNG file"},
      {"other.raw --size 3x3", "other.raw: is truncated: 8 bytes of pixels, expected 18 for 3x3"},
  };
  for (const auto& [input, part] : cases) {
    SCOPED_TRACE(input);
    expect_refused(run("run -f HoleFillingFilter -o results " + input), 1, part);
  }
}

TEST_F(Program, RefusesWhatNoImageAndNoCameraCanBe) {
  put("large.png", Bytes{1});
  fs::resize_file(folder_ / "large.png", std::uintmax_t{20} << 30);
  put("large.json", Bytes(20 << 20, '['));
  fs::create_symlink("/dev/zero", folder_ / "endless.png");
  const std::map<std::string, std::string> cases = {
      {"large.png", "large.png: has 21474836480 bytes; at most 1073741824 are read"},
      {"endless.png", "endless.png: is no regular file; expected one of at most 1073741824 bytes"},
      {"large.png --camera large.json", "large.json: has 20971520 bytes; at most 65536 are read"},
      {"large.png --camera /dev/zero", "/dev/zero: is no regular file"},
  };
  for (const auto& [input, part] : cases) {
    SCOPED_TRACE(input);
    expect_refused(run("run -f HoleFillingFilter -o results " + input), 1, part);
  }
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

TEST_F(Program, KeepsWholeResultsAndNoOthersWhenAnInputOrTheFolderFails) {
  put("in/a.raw", kHoles);
  put("in/b.raw", Image{2, 2, {1, 2, 3, 4}});
  EXPECT_EQ(run("run -f HoleFillingFilter in -o results --size 3x3").status, 1);
  EXPECT_EQ(listing("results"), Names{"a.raw"});

  fs::create_directories(folder_ / "taken/a.raw/x");  // a folder in the way of the result
  const Outcome outcome = run("run -f HoleFillingFilter in/a.raw -o taken --size 3x3");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_MENTIONS(outcome.err, "zvfilter: taken/a.raw: cannot be written: ");
  EXPECT_EQ(listing("taken"), Names{"a.raw"});
  EXPECT_MENTIONS(run("run -f HoleFillingFilter in/a.raw -o out.txt --size 3x3").err,
                  "zvfilter: out.txt: cannot be made: ");
}

}  // namespace
}  // namespace kit
