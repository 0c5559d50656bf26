// The exported functions: each forwards to the registry or to one operation of a filter.
#include <cstdlib>
#include <memory>
#include <new>

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
  void* const holder = std::malloc(sizeof(zv_priv_filter_t));
  void* const record = std::malloc(sizeof(PrivFilterContext));
  if (holder == nullptr || record == nullptr) {
    std::free(holder);
    std::free(record);
    return nullptr;
  }
  return new (record) PrivFilterContext{
      .destroy = zv_priv_filter_context_destroy,
      .filter = new (holder) zv_priv_filter_t{std::move(filter)},
      .reset = zv_priv_filter_reset,
      .get_config_schema = zv_priv_filter_get_config_schema,
      .update_config = zv_priv_filter_update_config,
      .process = zv_priv_filter_process,
  };
}

void zv_priv_filter_context_destroy(PrivFilterContext* context) {
  if (context == nullptr) return;
  std::destroy_at(context->filter);
  std::free(context->filter);
  std::free(context);
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
