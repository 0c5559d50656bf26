// What is agreed on before frames flow, and what is refused then and why.
#include <fstream>

#include "gstreamer/harness.h"

namespace zvfilter {

namespace {

constexpr std::uint32_t kWidth = 33, kHeight = 24;

Pixels ramp() {
  Pixels pixels(kWidth * kHeight);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint16_t>(400 + 7 * i);
  return pixels;
}

/// What the element says when it is given a frame that it should refuse.
std::string refusal(const std::string& element, const char* format = "GRAY16_LE") {
  Harness harness(element);
  harness.set_size(kWidth, kHeight, format);
  EXPECT_EQ(harness.push(ramp()), GST_FLOW_NOT_NEGOTIATED);
  EXPECT_EQ(harness.pull(), std::nullopt);
  return harness.error();
}

TEST(Sizes, AreThoseOfTheResizedFrame) {
  Harness harness("zvdepthresize scale=2 ex-left=3", kWidth, kHeight);
  EXPECT_EQ(harness.filtered(ramp()),
            run(chain_for("DepthResize:scale=2,ex_left=3", kWidth, kHeight), ramp()));
  harness.set_size(kWidth - 1, kHeight);
  EXPECT_EQ(harness.filtered(Pixels((kWidth - 1) * kHeight, 500)).size(), 67u * 48u);
}

TEST(Sizes, ThatWhatFollowsDoesNotTakeAreRefused) {
  Harness harness("zvdepthresize scale=0.5");
  gst_harness_set_sink_caps_str(harness.get(), "video/x-raw,format=GRAY16_LE,width=20,height=12");
  harness.set_size(kWidth, kHeight);
  EXPECT_EQ(harness.push(ramp()), GST_FLOW_NOT_NEGOTIATED);
  EXPECT_TRUE(has(harness.error(), "frames of 33x24 become 16x12, and what follows takes 20x12"));
}

TEST(Sizes, PassThroughFiltersThatKeepThem) {
  const Harness harness("zvholefillingfilter");
  gst_harness_set_sink_caps_str(harness.get(), "video/x-raw,format=GRAY16_LE,width=20,height=12");
  GstCaps* const caps = gst_pad_peer_query_caps(harness.get()->srcpad, nullptr);
  int width = 0;
  EXPECT_TRUE(gst_structure_get_int(gst_caps_get_structure(caps, 0), "width", &width));
  EXPECT_EQ(width, 20);
  gst_caps_unref(caps);
}

TEST(Refusals, SayWhatAStepNeeds) {
  EXPECT_TRUE(has(refusal("zvspatialadvancedfilter"), "give the baseline and fx"));
  EXPECT_TRUE(has(refusal("zvspatialadvancedfilter baseline=50"), "baseline (mm) and fx (pixels)"));
  EXPECT_TRUE(has(refusal("zvdepthresize scale=2 dst-width=10 dst-height=10"), "66 and 48"));
  EXPECT_EQ(refusal("zvholefillingfilter", "GRAY16_BE"), "");  // the caps say it
  Harness linear("zvspatialadvancedfilter pixel-type=linear", kWidth, kHeight);
  EXPECT_EQ(linear.push(ramp()), GST_FLOW_OK) << linear.error();
}

TEST(Refusals, OfAChainComeBeforeAnyFrame) {
  const auto start = [](const char* chain) {
    Harness harness("zvchain chain=HoleFillingFilter:");
    gst_element_set_state(harness.element(), GST_STATE_NULL);
    g_object_set(harness.element(), "chain", chain, nullptr);
    EXPECT_EQ(gst_element_set_state(harness.element(), GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE);
    return harness.error();
  };
  EXPECT_TRUE(has(start(nullptr), "chain="));
  EXPECT_TRUE(has(start("HoleFilingFilter:"), "HoleFillingFilter"));
  EXPECT_TRUE(has(start("TemporalFilter:weight=7"), "weight"));
  EXPECT_TRUE(has(start("/nowhere/chain.json"), "/nowhere/chain.json"));
}

TEST(Chains, BringTheirInputAndMayBeExchanged) {
  const std::string file = testing::TempDir() + "zvchain.json";
  std::ofstream(file) << R"({"version": 1, "input": {"pixelType": "linear", "width": 33, "height": 24},
                            "steps": [{"filter": "SpatialAdvancedFilter", "values": {"alpha": 0.3}}]})";
  Harness harness("zvchain chain=" + file, kWidth, kHeight);
  const ChainHandle chain = parse("SpatialAdvancedFilter:alpha=0.3");
  zvf_input input = zvf_input_of(kWidth, kHeight);
  input.pixel_type = ZVF_LINEAR_DEPTH;
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  EXPECT_EQ(harness.filtered(ramp()), run(chain, ramp()));
  harness.set("chain", "DepthResize:scale=0.5; HoleFillingFilter:");
  EXPECT_EQ(harness.filtered(ramp()),
            run(chain_for("DepthResize:scale=0.5; HoleFillingFilter:", kWidth, kHeight), ramp()));
  harness.set("chain", file);
  harness.set_size(kWidth - 1, kHeight);
  EXPECT_EQ(harness.push(Pixels((kWidth - 1) * kHeight)), GST_FLOW_NOT_NEGOTIATED);
  EXPECT_TRUE(has(harness.error(), "the chain is for frames of 33x24; these are 32x24"));
  harness.set_size(kWidth, kHeight);
  EXPECT_EQ(harness.filtered(ramp()), run(chain, ramp()));
}

}  // namespace

}  // namespace zvfilter
