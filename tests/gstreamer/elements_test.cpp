// What the elements make of frames is what the library makes of them.
#include <atomic>
#include <thread>

#include <gst/controller/gstdirectcontrolbinding.h>
#include <gst/controller/gstinterpolationcontrolsource.h>

#include "gstreamer/harness.h"
#include "support/every_filter.h"

namespace zvfilter {

namespace {

constexpr std::uint32_t kWidth = 97, kHeight = 41;
constexpr unsigned kFrames = 4;

using filterprocessor::FilterUse;

Pixels frame_of(std::int32_t pixel_type, unsigned number) {
  return filterprocessor::lively_frame(kWidth, kHeight, pixel_type, number).pixels;
}

std::string element_of(const std::string& filter) {
  std::string name = "zv";
  for (const char letter : filter) name += g_ascii_tolower(letter);
  return name;
}

class EveryElement : public testing::TestWithParam<FilterUse> {};

TEST_P(EveryElement, EqualsTheLibrary) {
  const FilterUse& use = GetParam();
  Harness harness(element_of(use.name), kWidth, kHeight);
  const ChainHandle chain = chain_for(std::string(use.name) + ":", kWidth, kHeight);
  const std::vector<zvf_parameter> parameters = parameters_of(use.name);
  const auto configure = [&](const std::vector<std::string>& values) {
    for (std::size_t i = 0; i < parameters.size(); ++i) harness.set(parameters[i].name, values[i]);
    EXPECT_EQ(zvf_chain_set(chain.get(), 0, values_text(use.name, values).c_str(), nullptr), ZVF_OK);
  };
  harness.set("pixel-type", use.pixel_type == ZVF_DISPARITY ? "disparity" : "depth");
  harness.set("baseline", "50");
  harness.set("fx", "600");
  harness.set("correction", "25");
  zvf_input input;
  ASSERT_TRUE(zvf_chain_input(chain.get(), &input));
  input.pixel_type = use.pixel_type;
  input.has_correction = true;
  input.correction = 25;
  ASSERT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);

  bool changed = false;
  for (unsigned i = 0; i < kFrames; ++i) {
    if (i % 2 == 0) configure(i == 0 ? use.configuration : use.other);
    const Pixels frame = frame_of(use.pixel_type, i), expected = run(chain, frame);
    EXPECT_EQ(harness.filtered(frame), expected) << "frame " << i;
    changed = changed || expected != frame;
  }
  EXPECT_TRUE(changed);
}

TEST_P(EveryElement, HasTheRangesOfTheSchema) {
  const Harness harness(element_of(GetParam().name));
  GObject* const element = G_OBJECT(harness.element());
  for (const zvf_parameter& parameter : parameters_of(GetParam().name)) {
    SCOPED_TRACE(parameter.name);
    GParamSpec* const property =
        g_object_class_find_property(G_OBJECT_GET_CLASS(element), parameter.name);
    ASSERT_NE(property, nullptr);
    EXPECT_TRUE(property->flags & GST_PARAM_CONTROLLABLE);
    EXPECT_STREQ(g_param_spec_get_blurb(property), parameter.description);
    if (property->value_type == G_TYPE_BOOLEAN) {
      gboolean value = FALSE;
      g_object_get(element, parameter.name, &value, nullptr);
      EXPECT_EQ(value, parameter.default_value);
      continue;
    }
    GValue number = G_VALUE_INIT;
    g_value_init(&number, G_TYPE_DOUBLE);
    g_object_get_property(element, parameter.name, &number);
    EXPECT_EQ(g_value_get_double(&number), parameter.default_value);
    const auto takes = [&](double wanted) {
      GValue value = G_VALUE_INIT;
      g_value_init(&value, property->value_type);
      g_value_set_double(&number, wanted);
      return g_value_transform(&number, &value) && !g_param_value_validate(property, &value);
    };
    EXPECT_TRUE(takes(parameter.min) && takes(parameter.max));
    EXPECT_FALSE(takes(parameter.max + parameter.step));
    if (property->value_type == G_TYPE_UINT && parameter.min < parameter.step) continue;
    EXPECT_FALSE(takes(parameter.min - parameter.step));
  }
}

INSTANTIATE_TEST_SUITE_P(Filters, EveryElement,
                         testing::ValuesIn(filterprocessor::every_filter(kWidth, kHeight)),
                         [](const auto& each) { return std::string(each.param.name); });

Pixels depth(unsigned number) { return frame_of(ZVF_DEPTH, number); }

TEST(History, EndsWithAFlushAndADiscontinuity) {
  Harness harness("zvtemporalfilter diff-scale=1 weight=0.1", kWidth, kHeight);
  const Pixels first = harness.filtered(depth(0)), second = harness.filtered(depth(1));
  const Pixels alone =
      run(chain_for("TemporalFilter:diff_scale=1,weight=0.1", kWidth, kHeight), depth(1));
  ASSERT_NE(second, alone);
  EXPECT_EQ(harness.filtered(depth(1), true), alone);
  ASSERT_NE(harness.filtered(depth(0)), first);
  ASSERT_TRUE(gst_harness_push_event(harness.get(), gst_event_new_flush_start()));
  ASSERT_TRUE(gst_harness_push_event(harness.get(), gst_event_new_flush_stop(TRUE)));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  ASSERT_TRUE(gst_harness_push_event(harness.get(), gst_event_new_segment(&segment)));
  EXPECT_EQ(harness.filtered(depth(1)), alone);
}

TEST(History, IsKeptFromDrops) {
  for (const auto& [element, drops] : {std::pair("zvtemporalfilter", false),
                                       {"zvchain chain=HoleFillingFilter:", false},
                                       {"zvholefillingfilter", true}}) {
    const Harness harness(element);
    gboolean qos = FALSE;
    g_object_get(harness.element(), "qos", &qos, nullptr);
    EXPECT_EQ(qos != FALSE, drops) << element;
  }
}

TEST(Properties, AreControlledByStreamTime) {
  Harness harness("zvtemporalfilter diff-scale=1", kWidth, kHeight);
  GstControlSource* const source = gst_interpolation_control_source_new();
  g_object_set(source, "mode", GST_INTERPOLATION_MODE_NONE, nullptr);
  auto* const values = GST_TIMED_VALUE_CONTROL_SOURCE(source);
  gst_timed_value_control_source_set(values, 0, 0.1);
  gst_timed_value_control_source_set(values, GST_SECOND / 30, 0.9);
  gst_object_add_control_binding(
      GST_OBJECT(harness.element()),
      gst_direct_control_binding_new_absolute(GST_OBJECT(harness.element()), "weight", source));
  gst_object_unref(source);
  const ChainHandle chain = chain_for("TemporalFilter:diff_scale=1,weight=0.1", kWidth, kHeight);
  EXPECT_EQ(harness.filtered(depth(0)), run(chain, depth(0)));
  ASSERT_EQ(zvf_chain_set(chain.get(), 0, "weight=0.9", nullptr), ZVF_OK);
  EXPECT_EQ(harness.filtered(depth(1)), run(chain, depth(1)));
}

TEST(Properties, MayBeSetByAnotherThread) {
  Harness harness("zvtemporalfilter diff-scale=1", kWidth, kHeight);
  std::atomic<bool> running = true;
  std::thread other([&] {
    for (unsigned i = 0; running; ++i) {
      g_object_set(harness.element(), "weight", i % 2 != 0 ? 0.2 : 0.7, "value-scale", 1.0, nullptr);
      std::this_thread::yield();
    }
  });
  for (unsigned i = 0; i < 300; ++i) EXPECT_EQ(harness.filtered(depth(i % 4)).size(), depth(0).size());
  running = false;
  other.join();
  harness.set("weight", "1");
  EXPECT_EQ(harness.filtered(depth(2)), depth(2));
}

}  // namespace

}  // namespace zvfilter
