// Runs from their first frame to their last: threads, what is there already, what fails, what is stopped.
#include <csignal>

#include <gtest/gtest.h>

#include "program.h"

namespace kit {
namespace {

/// A run over images in folders of the test, frame_000 and so on.
class Runs : public Program {
 protected:
  void put_frames(const std::string& folder, std::size_t count) const {
    fs::create_directories(folder_ / folder);
    for (std::size_t i = 0; i < count; ++i) {
      Image image = make_image(16, 8);
      for (std::size_t at = 0; at < image.pixels.size(); ++at) {
        image.pixels[at] = static_cast<std::uint16_t>((at * 37 + i * 11) % 900 * (at % 7 != 0));
      }
      put(name(folder, i), image);
    }
  }
  static std::string name(const std::string& folder, std::size_t index) {
    return concat(folder, "/frame_", std::setfill('0'), std::setw(3), index, ".png");
  }
  void expect_same(const std::string& a, const std::string& b) const {
    ASSERT_EQ(listing(a), listing(b));
    for (const std::string& file : listing(a))
      EXPECT_EQ(text_of(fs::path(a) / file), text_of(fs::path(b) / file)) << file;
  }
};

const std::string kChain = " -f TemporalFilter: -f HoleFillingFilter:hole_filling_mode=1 ";

TEST_F(Runs, TakeFoldersAsSequencesThatAreTheSameWithAnyNumberOfThreads) {
  put_frames("day/left", 5);
  put_frames("day/right", 30);
  const Outcome both = complete("run day/left day/right/ -o both --preview --jobs 4" + kChain);
  EXPECT_EQ(listing("both"), (Names{"left", "right"}));
  for (const std::string folder : {"left", "right"}) {
    complete(concat("run day/", folder, " -o alone/", folder, " --preview --jobs 1", kChain));
    expect_same("alone/" + folder, "both/" + folder);
  }
  for (const char* part : {"left:\n", "\nall:\n", "\n35 of 35 frames written to both\n"})
    EXPECT_MENTIONS(both.out, part);
  fs::remove(folder_ / "both/left/frame_003_preview.png");
  complete("run day/left day/right/ -o both --preview --resume" + kChain);
  expect_same("alone/left", "both/left");
  const Outcome truthful =
      complete("run day/left day/right -o truthful --truth day -f HardwareD2DCorrectionFilter");
  EXPECT_MENTIONS(truthful.out, "off > 5 %");
  EXPECT_EQ(std::count(truthful.err.begin(), truthful.err.end(), '\n'), 1) << truthful.err;

  complete(concat("run day/left ", name("day/right", 29), " -o mixed", kChain));
  put(name("day/right", 1), "x");
  put(name("day/left", 4), "x");
  for (const char* jobs : {"1", "4"})
    EXPECT_EQ(run(concat("run day/left day/right -o d", jobs, " --jobs ", jobs, kChain)).err,
              "zvfilter: day/left/frame_004.png: is no PNG file\n");
  put_frames("night/left", 1);
  const std::string command = "run -f HoleFillingFilter -o ", folders = " day/left day/right";
  expect_refused(
      2, "",
      {{command + "results day/left night/left", "day/left and night/left have one name, left"},
       {command + "results day/left day/../day/left", "have one name, left"},
       {command + "results day/left night/left in/a.png", "several folders and files together"},
       {command + "-" + folders, "standard output is one sequence"},
       {command + "d --report page.html" + folders, "--report is about one sequence"},
       {"bench -f HoleFillingFilter" + folders, "several folders; expected one"},
       {"bench -f HoleFillingFilter - --format raw --size 3x3", "standard input cannot be measured"},
       {"advise -o chain.json" + folders, "several folders; expected one"}});
}

TEST_F(Runs, GoOnWhereTheyEnded) {
  put_frames("in", 12);
  for (const char* folder : {"whole", "part"}) complete(concat("run in -o ", folder, kChain));
  for (const std::size_t lost : {4u, 9u}) fs::remove(folder_ / name("part", lost));
  put(name("part", 2), "kept");
  expect_failed(run("run in -o part" + kChain), 2,
                "part/frame_000.png: is there already; --overwrite replaces it");
  const Outcome resumed = complete("run in -o part --resume" + kChain);
  EXPECT_MENTIONS(resumed.out, "\n2 of 2 frames written to part; 10 were there\n");
  // The frames before the lost ones are filtered again, for what the filters remember.
  EXPECT_MENTIONS(resumed.out, "\nTemporalFilter         10 ");
  EXPECT_EQ(text_of(name("part", 2)), "kept");
  put(name("part", 2), text_of(name("whole", 2)));
  expect_same("whole", "part");

  complete("run in -o plain -f HoleFillingFilter:");
  fs::remove(folder_ / name("plain", 7));
  EXPECT_MENTIONS(run("run ./in/ -o plain -f HoleFillingFilter: --resume").out,
                  "\nHoleFillingFilter       1 ");

  fs::remove(folder_ / name("part", 3));
  put_frames("other", 12);
  expect_failed(run("run in -o part --resume -f TemporalFilter:"), 2, "were made with other chain");
  for (const char* frames : {"--bits 12", "--fx 9"}) {
    expect_failed(run(concat("run in ", frames, " -o part --resume", kChain)), 2,
                  "were made with other frames");
  }
  expect_failed(run("run other -o part --resume" + kChain), 2, "were made with other inputs");
  EXPECT_FALSE(fs::exists(folder_ / name("part", 3)));
  fs::remove(folder_ / "part/.zvfilter.json");
  EXPECT_MENTIONS(run("run in -o part --resume" + kChain).err,
                  "is not there to say what made the results");
}

TEST_F(Runs, GoOnWithAsManyInputsAsTheyHad) {
  const std::string folder(200, 'd');
  put_frames("in/" + folder, 400);
  const std::string one_by_one = "run in/" + folder + "/* -o out -f HoleFillingFilter:";
  complete(one_by_one);
  ASSERT_GT(fs::file_size(folder_ / "out/.zvfilter.json"), 65536u);
  EXPECT_MENTIONS(complete(one_by_one + " --resume").out, "400 were there");
}

TEST_F(Runs, EndAtTheFirstBadFrameInOrderOrPassOverAll) {
  put_frames("in", 40);
  put(name("in", 21), "x");
  put(name("in", 30), Image{1, 1, {0}});
  for (const char* jobs : {"1", "4"}) {
    const std::string out = concat("out", jobs),
                      command = concat("run in -o ", out, " --overwrite --jobs ", jobs, kChain),
                      first = concat("zvfilter: ", out, "/frame_020.png: cannot be written: ");
    fs::create_directories(folder_ / name(out, 20) / "taken");
    const Outcome ended = run(command);
    EXPECT_TRUE(ended.err.starts_with(first)) << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << ended.err;
    EXPECT_EQ(listing(out).size(), 21u) << "with what is in the way";
    EXPECT_EQ(ended.out, concat("20 of 40 frames written to ", out, '\n'));
    const Outcome passed = run(command + " --keep-going");
    EXPECT_EQ(passed.status, 1);
    EXPECT_MENTIONS(passed.out, "\n37 of 40 frames written to out");
    EXPECT_TRUE(passed.err.starts_with(first)) << passed.err;
    EXPECT_TRUE(passed.err.ends_with(
        "\nzvfilter: in/frame_021.png: is no PNG file\n"
        "zvfilter: in/frame_030.png: has 1x1 pixels; the frames before it have 16x8\n"
        "zvfilter: 3 frames failed\n"))
        << passed.err;
  }
}

TEST_F(Runs, EndAfterWholeFramesWhenTheyAreStoppedAndGoOnLater) {
  put_frames("in", 40);
  const Image plain = get(name("in", 10));
  Image marked = plain;
  marked.pixels[0] = 4242;  // at which the filter asks for an end
  for (const char* jobs : {"1", "4"}) {
    const std::string folder = concat("out", jobs);
    const std::string command =
        concat("run -f StoppingFilter in -o ", folder, " --baseline 50 --fx 600 --jobs ", jobs);
    put(name("in", 10), marked);
    const Outcome stopped = run_probe(command);
    EXPECT_EQ(stopped.status, 130);
    const std::size_t written = listing(folder).size();
    EXPECT_GE(written, 11u);
    EXPECT_LE(written, *jobs == '1' ? 11u : 21u);
    EXPECT_EQ(stopped.err,
              concat("zvfilter: stopped; ", written, " of 40 frames written to ", folder, '\n'));

    put(name("in", 10), plain);
    const Outcome resumed = run_probe(command + " --resume");
    ASSERT_EQ(resumed.status, 0) << resumed.err;
    EXPECT_MENTIONS(resumed.out, concat(40 - written, " of ", 40 - written, " frames written to ", folder,
                                        "; ", written, " were there\n"));
    for (std::size_t i = 0; i < 40; ++i)
      EXPECT_EQ(get(name(folder, i)), i == 10 ? marked : get(name("in", i)));
  }
}

TEST_F(Runs, EndAtOnceWhenTheyAreStoppedTwice) {
  put_frames("in", 3);
  Image marked = get(name("in", 1));
  marked.pixels[0] = 4243;  // at which the filter asks twice
  put(name("in", 1), marked);
  const Outcome ended = run_probe("run -f StoppingFilter in -o out --baseline 50 --fx 600 --jobs 1");
  EXPECT_TRUE(ended.status == -1 || ended.status == 128 + SIGTERM) << ended.status;
  EXPECT_EQ(ended.err.find("frames written"), std::string::npos) << ended.err;
  EXPECT_FALSE(fs::exists(folder_ / name("out", 1)));
}

TEST_F(Runs, ShowATerminalHowFarTheyAre) {
  put_frames("day", 3);
  const auto shown = [&](const std::string& arguments, const std::string& before = "") {
    return run(arguments + "' /dev/null", concat("script -qefc '", before)).out;
  };
  const std::string run_shown = shown("run -o a day" + kChain);
  EXPECT_MENTIONS(run_shown, "\r[##########....................] 1/3  ");
  EXPECT_MENTIONS(run_shown, "\r[##############################] 3/3  ");
  EXPECT_MENTIONS(run_shown, " left\x1b[K\r\x1b[K");
  EXPECT_MENTIONS(shown("camera -o rec --frames 3 --size 64x48"), ".] 1/3 ");
  for (const auto& [columns, start] : {std::pair(20u, "\r1/3 "), {40u, "\r[#"}}) {
    const std::string line =
        shown("run -o b --overwrite day" + kChain, concat("stty cols ", columns, "; "));
    EXPECT_EQ(line.find("\x1b[K") - line.find(start), columns) << "all but the last column";
  }
  EXPECT_MENTIONS(shown("advise camera:frames=9,size=160x112,baseline=200,seed=3,noise=0.1,motion=still "
                        "--evaluations 30 -o chain.json"),
                  "left  best 0.691\x1b[K\r\x1b[K");
}

TEST_F(Runs, WriteSmallerFilesWhenTheyAreAskedTo) {
  const std::string start = "run camera:frames=1,size=160x112 -f HoleFillingFilter -o ";
  complete(start + "fast --compression fast");
  complete(start + "small --compression small");
  EXPECT_EQ(get("fast/disparity_0000.png"), get("small/disparity_0000.png"));
  EXPECT_LT(fs::file_size(folder_ / "small/disparity_0000.png"),
            fs::file_size(folder_ / "fast/disparity_0000.png"));
}

TEST_F(Runs, WriteAReportThatHoldsThemAndNothingElse) {
  put("in/a.pgm", kHoles);
  put("in/<b>'.pgm", kHoles);
  complete("run -f 'fill=HoleFillingFilter:' in/a.pgm \"in/<b>'.pgm\" -o far --report pages/run.html");
  const std::string page = text_of("pages/run.html");
  for (const char* part :
       {"66.7\u202f% → 100.0\u202f%",  // six of nine pixels, then all
        "changed 33.3\u202f%", "in/a.pgm &#39;in/&lt;b&gt;&#39;\\&#39;&#39;.pgm&#39; -o far",
        "<h1>in/a.pgm in/&lt;b&gt;&#39;.pgm</h1>", "&quot;filter&quot;: &quot;HoleFillingFilter&quot;",
        "<dt>hole_filling_mode</dt><dd>0<"})
    EXPECT_MENTIONS(page, part);
  for (const char* part : {"<b>'.pgm", "http://", "https://"})
    EXPECT_EQ(page.find(part), std::string::npos) << part;
  fs::create_directory(folder_ / "other");
  put("other/b.pgm", kHoles);
  complete("run -f HoleFillingFilter in/a.pgm -o far --overwrite --format npy");
  complete("run -f HoleFillingFilter in -o near --report near.html --against far --truth in");
  for (const char* part : {"<h3>Beside the results in far", "Median error"})
    EXPECT_MENTIONS(text_of("near.html"), part);
  expect_refused(
      2, "run -f HoleFillingFilter: ",
      {{"other -o in --report r.html --against in", "--against in: is the folder for the results"},
       {"in/a.pgm -o results --report r.html --report-frames 0,1",
        "--report-frames 1: expected numbers from 0 to 0"},
       {"in/a.pgm -o results --report r.html --against other", "other: has no result named a"},
       {"in/a.pgm -o results --report in/a.pgm", "in/a.pgm would replace the input in/a.pgm"},
       {"in/a.pgm -o results --against other", "--against requires --report"}});
}

}  // namespace
}  // namespace kit
