// zvfilter advise, as it is used.
#include "kit/chain/chain_file.h"
#include "program.h"

namespace kit {
namespace {

class Advise : public Program {
 protected:
  static constexpr const char* kCamera =
      "camera:frames=9,size=160x112,baseline=200,seed=3,noise=0.1,motion=still ";
};

TEST_F(Advise, WritesAChainThatRunsAndATableOfIt) {
  const Outcome first =
      run(concat("advise ", kCamera, "--evaluations 30 -o chain.json --report page.html"));
  ASSERT_EQ(first.status, 0) << first.err;
  for (const char* part : {"On frames held out:\n", "untouched", "advised", "roughness", "all, weighted",
                           "of the gain", "30 evaluations, seed 1.", "written to chain.json"})
    EXPECT_MENTIONS(first.out, part);
  const ChainFile chain = read_chain_file(folder_ / "chain.json");
  EXPECT_EQ(chain.steps.front().filter, "DisparityTransform");
  EXPECT_GT(chain.steps.size(), 1u);
  const std::string page = text_of(folder_ / "page.html");
  EXPECT_MENTIONS(page, "<h2>On frames held out</h2>");
  EXPECT_MENTIONS(page, "of the gain");
  EXPECT_EQ(run(concat("run --chain chain.json ", kCamera, "-o results")).status, 0);

  const Outcome second = run(concat("advise ", kCamera, "--evaluations 30 -j 1 -o again.json"));
  EXPECT_EQ(text_of(folder_ / "again.json"), text_of(folder_ / "chain.json"));
  EXPECT_EQ(second.out.substr(0, second.out.find("written")),
            first.out.substr(0, first.out.find("written")));
}

TEST_F(Advise, LooksForTheStepsGivenByTruthAndWithinATime) {
  const std::string chain =
      "--chain 'DisparityTransform:; smooth=SpatialAdvancedFilter:; TemporalFilter:weight=0.77' ";
  Outcome outcome = run(concat("advise ", kCamera, chain,
                               "--step smooth --own-truth --budget 1s --weight missing=0 -o chain.json"));
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_MENTIONS(outcome.out, " mm");
  EXPECT_MENTIONS(outcome.out, "evaluations in the time given");
  EXPECT_EQ(outcome.out.find("roughness"), std::string::npos);
  const Chain steps = read_chain_file(folder_ / "chain.json").steps;
  ASSERT_EQ(steps.size(), 3u);
  EXPECT_EQ(step_text(steps[2]), "TemporalFilter:weight=0.77");
  EXPECT_TRUE(step_text(steps[1]).starts_with("smooth=SpatialAdvancedFilter:"));

  outcome = run(concat("advise ", kCamera, chain, "--budget 0.000001s -o none.json"));
  EXPECT_MENTIONS(outcome.out, "No evaluation in the time given; a longer --budget finds more.");
}

TEST_F(Advise, EndsWithTheBestSoFarWhenItIsStopped) {
  // As soon as it can be stopped: SIGTERM is caught.
  const Outcome outcome = run(concat("advise ", kCamera, "--evaluations 100000 -o chain.json & p=$!; ",
                                     "until grep -qE '^State:.*Z|^SigCgt:.*[4-7c-f]...$' "
                                     "/proc/$p/status; do sleep 0.1; done; kill $p; wait $p"));
  EXPECT_EQ(outcome.status, 130) << outcome.err;
  EXPECT_MENTIONS(outcome.err, "stopped; chain.json has the best so far");
  EXPECT_MENTIONS(outcome.out, "all, weighted");
  EXPECT_FALSE(read_chain_file(folder_ / "chain.json").steps.empty());
}

TEST_F(Advise, RefusesWhatMakesNoSense) {
  expect_refused(run(concat("advise ", kCamera, "-o ''")), 2, "the chain file to write has no name");
  expect_refused(2, concat("advise ", kCamera, "-o results "),
                 {{"--weight medain=1", "did you mean median?"},
                  {"--weight off", "expected NAME=VALUE"},
                  {"--budget soon", "expected a time such as 30s or 5m"},
                  {"--evaluations 0", "--evaluations"},
                  {"--evaluations 9 --budget 9s", "excludes"},
                  {"--step smooth", "--step smooth: the chain has no such step"},
                  {"--set smooth.alpha=1", "none is given"},
                  {"--chain DisparityTransform:", "no value that could be advised"},
                  {"--chain 'DepthResize:scale=0.5; TemporalFilter:'", "keeps their size"}});
}

}  // namespace
}  // namespace kit
