// zvfilter advise, as it is used.
#include "kit/chain/chain_file.h"
#include "program.h"

namespace kit {
namespace {

class Advise : public Program {
 protected:
  const std::string start_ =
      "advise camera:frames=9,size=160x112,baseline=200,seed=3,noise=0.1,motion=still ";
};

TEST_F(Advise, WritesAChainAndATableOfIt) {
  const Outcome made = complete(start_ + "--evaluations 30 --seed 2 -o chain.json --report page.html");
  for (const char* part :
       {"On frames held out:\n", "  0.1   +5 %\n", "untouched", "advised", "roughness",
        "all, weighted           1 ", "of the gain", "30 evaluations, seed 2.", "written to chain.json"})
    EXPECT_MENTIONS(made.out, part);
  const ChainFile chain = read_chain_file(folder_ / "chain.json");
  EXPECT_TRUE(chain.description.starts_with("Advised for camera:frames=9,")) << chain.description;
  EXPECT_EQ(chain.steps.front().filter, "DisparityTransform");
  EXPECT_GT(chain.steps.size(), 1u);
  complete(start_ + "--evaluations 30 --seed 2 --jobs 1 -o one.json");
  EXPECT_EQ(text_of("one.json"), text_of("chain.json"));
  for (const char* part : {"<h2>On frames held out</h2>", "of the gain", "zvfilter advise camera:"})
    EXPECT_MENTIONS(text_of("page.html"), part);
}

TEST_F(Advise, LooksForTheStepsGivenByTruthAndWithinATime) {
  const std::string start =
      start_ +
      "--chain 'DisparityTransform:; smooth=SpatialAdvancedFilter:; TemporalFilter:weight=0.77' ";
  const Outcome outcome =
      complete(start + "--step smooth --own-truth --budget 3s --weight missing=0 -o chain.json");
  EXPECT_MENTIONS(outcome.out, " mm     0.3 ");
  EXPECT_MENTIONS(outcome.out, "evaluations in the time given");
  EXPECT_EQ(outcome.out.find("roughness"), std::string::npos);
  const Chain steps = read_chain_file(folder_ / "chain.json").steps;
  EXPECT_EQ(step_text(steps.at(2)), "TemporalFilter:weight=0.77");
  EXPECT_MENTIONS(run(start + "--budget 0.000001s -o none.json").out,
                  "No evaluation in the time given; a longer --budget finds more.");
}

TEST_F(Advise, UsesAllFramesWhereTheyAreFew) {
  complete("camera -o cam --frames 4 --size 160x112");
  const Outcome few = run("advise cam --camera none --evaluations 3 -o chain.json --report page.html");
  EXPECT_MENTIONS(few.out, "On the frames searched on:\n");
  EXPECT_MENTIONS(few.err, "assuming a nominal camera");
  EXPECT_MENTIONS(text_of("page.html"), "disparity_0000.png");
}

TEST_F(Advise, EndsWithTheBestSoFarWhenItIsStopped) {
  // As soon as it can be stopped: SIGTERM is caught.
  const Outcome outcome = run(start_ +
                              "--evaluations 100000 -o chain.json & p=$!; "
                              "until [ ! -e /proc/$p ] || grep -qE '^State:.*Z|^SigCgt:.*[4-7c-f]...$' "
                              "/proc/$p/status; do sleep 0.1; done; kill $p; wait $p");
  expect_failed(outcome, 130, "stopped; chain.json has the best so far");
  EXPECT_MENTIONS(outcome.out, "all, weighted");
  EXPECT_FALSE(read_chain_file(folder_ / "chain.json").steps.empty());
}

TEST_F(Advise, RefusesWhatMakesNoSense) {
  expect_refused(2, start_ + "-o ",
                 {{"''", "the chain file to write has no name"},
                  {"results --weight medain=1", "did you mean median?"},
                  {"results --weight off", "expected NAME=VALUE"},
                  {"results --budget soon", "expected a time such as 30s or 5m"},
                  {"results --budget 0", "expected a time"},
                  {"results --budget 86401", "expected a time"},
                  {"results --evaluations 0", "--evaluations"},
                  {"results --evaluations 9 --budget 9s", "excludes"},
                  {"results --step smooth", "--step smooth: the chain has no such step"},
                  {"results --set smooth.alpha=1", "none is given"},
                  {"results --chain DisparityTransform:", "no value that could be advised"},
                  {"results -f DepthResize:scale=0.5 -f TemporalFilter:", "keeps their size"}});
}

}  // namespace
}  // namespace kit
