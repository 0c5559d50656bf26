/**
 * @file
 * The plug-in's C interface: how many filters there are, what they are called, and how one is made and
 * driven.
 *
 * Order of use: zv_get_filter_count(), zv_get_filter_name() for each index, zv_create_filter(); then,
 * through the record, `get_config_schema`, `update_config`, `process` once a frame, `reset` at will, and
 * `destroy` once.
 *
 * Load the library with RTLD_NOW: a host that lacks a function is then refused at once, and not when the
 * function is first used.
 *
 * Rules that hold for every function here:
 * - Threads: any thread. Different filters are independent. One filter is driven by one thread at a
 *   time, but for `update_config`, which may run beside `process` where the filter has a lock of its own
 *   (all but `HoleFillingFilter`, `DepthResize`, `TemporalFilter` and `HardwareD2DCorrectionFilter`).
 * - Errors: failures are reported by storing a new host error in `*error`. A null `error` is accepted:
 *   the operation does the same work and the report is lost. `*error` should be null on entry; an error
 *   that is already there is taken for a failure of the first host call.
 * - Stack: 64 KiB are enough for every operation.
 * - Memory: without it, creating gives null and processing gives an error; nothing is thrown, and the next
 *   call tries again.
 */
#ifndef FILTERPROCESSOR_FILTER_PROCESSOR_H
#define FILTERPROCESSOR_FILTER_PROCESSOR_H

#include <stddef.h>
#include <stdint.h>

#include "filterprocessor/export.h"
#include "filterprocessor/host.h"

FILTERPROCESSOR_BEGIN_C

/** A filter as the host sees it; made by zv_create_filter(). */
typedef struct zv_priv_filter_t zv_priv_filter_t;

/**
 * Everything a host needs to drive one filter. The host owns the record and everything behind it until it
 * calls `destroy` with it. The other four functions take `filter`, never the record.
 */
typedef struct PrivFilterContext {
  void (*destroy)(struct PrivFilterContext* context);
  zv_priv_filter_t* filter;
  void (*reset)(zv_priv_filter_t* filter, zv_error** error);
  const char* (*get_config_schema)(zv_priv_filter_t* filter, zv_error** error);
  void (*update_config)(zv_priv_filter_t* filter, size_t argc, const char** argv, zv_error** error);
  zv_frame_t* (*process)(zv_priv_filter_t* filter, const zv_frame_t* frame, zv_error** error);
} PrivFilterContext;

/** The number of filters, 9. */
FILTERPROCESSOR_API int32_t zv_get_filter_count(void);

/**
 * The name at `index`, or "UnknownFilter". The text belongs to the library and lives as long as it is
 * loaded.
 */
FILTERPROCESSOR_API const char* zv_get_filter_name(int32_t index);

/**
 * A new filter of the class named at `index`, or null when there is none or no memory. The caller owns it:
 * see `destroy`.
 */
FILTERPROCESSOR_API PrivFilterContext* zv_create_filter(int32_t index);

/** Destroys the filter and the record. Null: nothing. */
FILTERPROCESSOR_API void zv_priv_filter_context_destroy(PrivFilterContext* context);

/**
 * The filter's parameters, one line each: name, type, min, max, step, default, description, separated by
 * commas. The text belongs to the library and lives as long as it is loaded. Null `filter`: null.
 */
FILTERPROCESSOR_API const char* zv_priv_filter_get_config_schema(zv_priv_filter_t* filter,
                                                                 zv_error** error);

/**
 * Sets every parameter from `argc` texts in schema order, which are read before the call returns. A text
 * that is null or not a number reads as 0; numbers are those of the "C" locale whatever the process has
 * set, and of whole numbers past 32 bits the low 32 count. Fails when the count is wrong or a value is
 * refused; some filters have stored the values before the refused one by then. The disparity transforms
 * ignore bad depth limits in silence, and `HardwareD2DCorrectionFilter` ignores everything. Null `filter`:
 * nothing.
 */
FILTERPROCESSOR_API void zv_priv_filter_update_config(zv_priv_filter_t* filter, size_t argc,
                                                      const char** argv, zv_error** error);

/**
 * Filters a depth frame, or the depth frame of a set, and returns a new frame or set, owned by the
 * caller. `frame` is not changed and stays the caller's. Null with an error on failure; null without one
 * when `filter` or `frame` is null.
 */
FILTERPROCESSOR_API zv_frame_t* zv_priv_filter_process(zv_priv_filter_t* filter, const zv_frame_t* frame,
                                                       zv_error** error);

/**
 * Returns the filter to its initial parameters and drops its history. The two disparity transforms drop
 * their table only. `DepthResize` starts with a scale of 0, which refuses every frame, and goes back to a
 * scale of 1 and a target of 1280 x 720. Null `filter`: nothing.
 */
FILTERPROCESSOR_API void zv_priv_filter_reset(zv_priv_filter_t* filter, zv_error** error);

/** The commit that the library was built from: seven lower-case hexadecimal digits. */
FILTERPROCESSOR_API const char* zv_get_commit_hash(void);

FILTERPROCESSOR_END_C

#endif
