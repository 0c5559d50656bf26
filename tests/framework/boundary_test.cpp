// The exported functions around the filters, and the numbers that they read.
#include "common/saturate.h"
#include "filters/temp_filter1.h"
#include "framework/config_values.h"
#include "framework/errors.h"
#include "framework/registry/filter_factory.h"
#include "support/every_filter.h"
#include "support/filter_driver.h"

namespace filterprocessor {
namespace {

TEST(Registry, ListsNineFiltersAndRefusesOtherIndices) {
  ASSERT_EQ(zv_get_filter_count(), 9);
  for (int i = 0; i < 9; ++i) {
    EXPECT_STREQ(zv_get_filter_name(i), every_filter(1, 1)[static_cast<std::size_t>(i)].name);
  }
  for (const int index : {9, -1, 1 << 30, std::numeric_limits<int>::min()}) {
    EXPECT_STREQ(zv_get_filter_name(index), "UnknownFilter");
    EXPECT_EQ(zv_create_filter(index), nullptr);
  }
  EXPECT_EQ(FilterFactory::getInstance(), FilterFactory::getInstance());
}

TEST(Registry, CommitHashIsSevenLowerCaseHexDigits) {
  const std::string hash = zv_get_commit_hash();
  EXPECT_EQ(hash.size(), 7u);
  EXPECT_EQ(hash.find_first_not_of("0123456789abcdef"), std::string::npos);
}

TEST(Boundary, TheRecordHoldsTheExportedFunctions) {
  FilterDriver filter("HoleFillingFilter");
  const PrivFilterContext& context = *filter.context();
  EXPECT_EQ(context.destroy, zv_priv_filter_context_destroy);
  EXPECT_EQ(context.reset, zv_priv_filter_reset);
  EXPECT_EQ(context.get_config_schema, zv_priv_filter_get_config_schema);
  EXPECT_EQ(context.update_config, zv_priv_filter_update_config);
  EXPECT_EQ(context.process, zv_priv_filter_process);
  EXPECT_EQ(offsetof(PrivFilterContext, filter), 8u);
  EXPECT_EQ(offsetof(PrivFilterContext, process), 40u);
}

TEST(Boundary, NullHandlesDoNothing) {
  zv_error* error = nullptr;
  const devhost::Frame frame = devhost::make_frame(frame_of({1234}));
  zv_priv_filter_context_destroy(nullptr);
  EXPECT_EQ(zv_priv_filter_get_config_schema(nullptr, &error), nullptr);
  zv_priv_filter_update_config(nullptr, 0, nullptr, &error);
  EXPECT_EQ(zv_priv_filter_process(nullptr, frame.get(), &error), nullptr);
  zv_priv_filter_reset(nullptr, &error);
  EXPECT_EQ(error, nullptr);
}

TEST(Errors, AreMadeByTheHostEvenWhenNobodyListens) {
  zv_error* error = nullptr;
  report_error(&error, "message", "function", "argument", 9);
  EXPECT_EQ(text_of(error), error_text("message", "function", "argument", 9));
  const std::size_t count = devhost::error_count();
  report_error(nullptr, "message", "function", "argument");
  EXPECT_EQ(devhost::error_count(), count + 1);
}

TEST(DevelopmentHost, CopiesWhatItIsTold) {
  const devhost::Frame from = devhost::make_frame(frame_of({1, 2}));
  const devhost::Frame to = devhost::make_frame(frame_of({3, 4}));
  devhost::ProfileTraits profile = devhost::inspect_profile(from.get());
  profile.disparity.fx = 700;
  devhost::attach_profile(from.get(), profile);
  zv_frame_copy_info(from.get(), to.get(), nullptr);
  const std::uint16_t pixels[] = {5, 6};
  zv_frame_update_data(to.get(), pixels, sizeof pixels, nullptr);
  const double fx = devhost::inspect(to.get()).disparity.fx;
  EXPECT_EQ(fx, 700);
  EXPECT_EQ(devhost::inspect(to.get()).pixels, (Pixels{5, 6}));
}

/// TempFilter1 is abstract; this gives it what it lacks.
struct CompleteTempFilter1 : TempFilter1 {
  void print_key_params() override {}
};

TEST(TempFilter1, MakesAFrameLikeAnyFrame) {
  CompleteTempFilter1 filter;
  devhost::FrameTraits traits = frame_of({1234});
  traits.type = 1;
  zv_error* error = nullptr;
  const devhost::Frame frame = devhost::make_frame(traits);
  devhost::start_call_log();
  const devhost::Frame output(filter.filter_process(frame.get(), &error));
  EXPECT_EQ(devhost::stop_call_log(),
            (std::vector<std::string>{"zv_frame_get_data", "zv_frame_get_stream_profile",
                                      "zv_create_frame_from_other_frame", "zv_frame_get_data",
                                      "zv_frame_get_data_size", "zv_delete_stream_profile"}));
  ASSERT_TRUE(output);
  EXPECT_EQ(devhost::inspect(output.get()).type, 1);
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(filter.filter_process(nullptr, &error), nullptr);
}

TEST(Saturate, TruncatesTowardZeroAndStopsAtTheEndsOfTheRange) {
  EXPECT_EQ(saturate<std::int32_t>(2.9f), 2);
  EXPECT_EQ(saturate<std::int32_t>(-2.9f), -2);
  EXPECT_EQ(saturate<std::int32_t>(2147483648.0f), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(saturate<std::int32_t>(2147483647.5), 2147483647);
  EXPECT_EQ(saturate<std::int32_t>(-3e9f), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(saturate<std::uint32_t>(-0.5f), 0u);
  EXPECT_EQ(saturate<std::uint32_t>(-1.0f), 0u);
  EXPECT_EQ(saturate<std::uint32_t>(4294967295.0), 4294967295u);
  EXPECT_EQ(saturate<std::uint16_t>(65535.9f), 65535);
  EXPECT_EQ(saturate<std::int64_t>(1e30f), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(saturate<std::int32_t>(std::numeric_limits<float>::quiet_NaN()), 0);
  EXPECT_EQ(saturate<std::int32_t>(-std::numeric_limits<double>::infinity()),
            std::numeric_limits<std::int32_t>::min());
}

TEST(ConfigValues, ReadsWhatIsNotANumberAsZero) {
  std::array texts = {"12x", "nothing", " -7", "0.25", static_cast<const char*>(nullptr), "010"};
  const ConfigValues values(texts.size(), texts.data(), nullptr);
  EXPECT_EQ(values.integer(0), 12);
  EXPECT_EQ(values.integer(1), 0);
  EXPECT_EQ(values.integer(2), -7);
  EXPECT_EQ(values.number(3), 0.25);
  EXPECT_EQ(values.number(4), 0.0);
  EXPECT_EQ(values.integer(5), 10);
  EXPECT_EQ(ConfigValues(1, nullptr, nullptr).integer(0), 0);
}

}  // namespace
}  // namespace filterprocessor
