// The exported functions: each forwards to the registry or to one operation of a filter.
#include <memory>

#include "commit_hash.h"
#include "filterprocessor/filter_processor.h"
#include "framework/registry/filter_factory.h"

using filterprocessor::FilterFactory;
using filterprocessor::IPrivFilter;

struct zv_priv_filter_t {
  std::shared_ptr<IPrivFilter> filter;
};

extern "C" {

int32_t zv_get_filter_count() { return FilterFactory::getInstance()->getFilterCount(); }

const char* zv_get_filter_name(int32_t index) {
  return FilterFactory::getInstance()->getFilterName(index);
}

PrivFilterContext* zv_create_filter(int32_t index) {
  std::shared_ptr<IPrivFilter> filter = FilterFactory::getInstance()->createFilter(index);
  if (!filter) return nullptr;
  auto holder = std::make_unique<zv_priv_filter_t>(zv_priv_filter_t{std::move(filter)});
  auto context = std::make_unique<PrivFilterContext>();
  context->destroy = zv_priv_filter_context_destroy;
  context->filter = holder.release();
  context->reset = zv_priv_filter_reset;
  context->get_config_schema = zv_priv_filter_get_config_schema;
  context->update_config = zv_priv_filter_update_config;
  context->process = zv_priv_filter_process;
  return context.release();
}

void zv_priv_filter_context_destroy(PrivFilterContext* context) {
  if (context == nullptr) return;
  delete context->filter;
  delete context;
}

const char* zv_priv_filter_get_config_schema(zv_priv_filter_t* filter, zv_error** error) {
  return filter != nullptr ? filter->filter->get_filter_config_schema(error) : nullptr;
}

void zv_priv_filter_update_config(zv_priv_filter_t* filter, size_t argc, const char** argv,
                                  zv_error** error) {
  if (filter != nullptr) filter->filter->update_filter_config(argc, argv, error);
}

zv_frame_t* zv_priv_filter_process(zv_priv_filter_t* filter, const zv_frame_t* frame, zv_error** error) {
  return filter != nullptr ? filter->filter->filter_process(frame, error) : nullptr;
}

void zv_priv_filter_reset(zv_priv_filter_t* filter, zv_error** error) {
  if (filter != nullptr) filter->filter->reset_filter(error);
}

const char* zv_get_commit_hash() { return FILTERPROCESSOR_COMMIT_HASH; }

}  // extern "C"

static_assert(sizeof(PrivFilterContext) == 6 * sizeof(void*), "the host reads six pointers");
