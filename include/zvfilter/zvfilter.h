/**
 * @file
 * Nine depth-image filters for any program: chains of them, run on 16-bit images in memory.
 *
 *     zvf_error error;
 *     zvf_chain* chain = zvf_chain_parse("HoleFillingFilter:hole_filling_mode=1", &error);
 *     zvf_input input = zvf_input_of(640, 400);
 *     if (chain == NULL || zvf_chain_set_input(chain, &input, &error) != ZVF_OK ||
 *         zvf_chain_run(chain, pixels, 0, filtered, 0, &error) != ZVF_OK) {
 *       fprintf(stderr, "%s\n", error.message);
 *     }
 *     zvf_chain_destroy(chain);
 *
 * Images are rows of unsigned 16-bit samples in the machine's byte order, the left pixel of the top row first. A stride is the
 * distance of two rows in bytes; 0 stands for rows without gaps. 0 is an invalid depth.
 *
 * - Errors: functions that can fail return a code, or null, and describe the failure in `*error`, a record of the caller's own. A
 *   null `error` is accepted everywhere. Without a failure the record is left alone. Nothing is printed and nothing is thrown.
 * - Threads: a chain is used by one thread at a time, whichever it is. Different chains are independent. All else may be called
 *   from any thread at any time.
 * - Null: no function may be given a null chain, but zvf_chain_destroy(); no text may be null unless that is said.
 * - Texts returned live as said there. All texts are UTF-8. Numbers in them are those of the "C" locale whatever the process has
 *   set.
 * - Memory: once a chain has seen a few frames of one size, running it allocates nothing.
 */
#ifndef ZVFILTER_ZVFILTER_H
#define ZVFILTER_ZVFILTER_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ZVF_API __attribute__((visibility("default")))
#else
#define ZVF_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define ZVF_VERSION_MAJOR 1
#define ZVF_VERSION_MINOR 0
#define ZVF_VERSION_PATCH 0

/** "1.0.0", of the library that is loaded. */
ZVF_API const char* zvf_version(void);
/** The processor level that the kernels run at: "scalar", "avx2", "avx512" or "neon". */
ZVF_API const char* zvf_level(void);

/* ---- Errors ---- */

typedef enum zvf_code {
  ZVF_OK = 0,
  ZVF_BAD_ARGUMENT = 1, /**< a size, stride, step number or pointer that cannot be */
  ZVF_BAD_CHAIN = 2,    /**< a text that is no chain, an unknown filter or key, a value out of range */
  ZVF_BAD_INPUT = 3,    /**< the chain cannot take such an input, or needs to know more about it */
  ZVF_FAILED = 4,       /**< a filter failed on a frame */
  ZVF_NO_MEMORY = 5,
  ZVF_NO_FILE = 6 /**< a file that cannot be read or written */
} zvf_code;

/** What went wrong. A record of the caller's; there is nothing to release. Texts that are too long end early. */
typedef struct zvf_error {
  zvf_code code;
  int32_t step;      /**< number of the step from 0, or -1: no step in particular */
  char tag[64];      /**< the step's tag or, without one, its filter; empty: no step in particular */
  char key[64];      /**< the parameter or field; empty: none in particular */
  char message[512]; /**< one line: what is wrong and what would be right */
} zvf_error;

/* ---- What an image means ---- */

enum {
  ZVF_DEPTH = 0,     /**< a sample times `value_scale` is millimetres */
  ZVF_DISPARITY = 2, /**< a sample is a disparity code, which the geometry explains */
  ZVF_LINEAR_DEPTH =
      4 /**< depth, which filters treat without geometry: thresholds do not grow with the distance */
};

/** How a camera makes disparity, for steps that compute with it. */
typedef struct zvf_geometry {
  double zpd;             /**< distance of the reference plane, millimetres; cameras with a projector */
  double zpps;            /**< pixel size on the reference plane, millimetres; cameras with a projector */
  double fx;              /**< focal length, pixels */
  float baseline;         /**< distance of the two viewpoints, millimetres */
  float unit;             /**< factor from the formula to depth units, 1 for millimetres */
  float min_disparity;    /**< smallest disparity searched, pixels */
  float disparity_offset; /**< added to every disparity, pixels */
  int32_t invalid_disparity; /**< disparity code that marks an invalid pixel */
  int32_t integer_bits;      /**< of a disparity code */
  uint8_t bits;              /**< of a disparity code, 1 to 16 */
  uint8_t pack_mode;         /**< layout of a disparity code, 1 to 4 */
  bool dual_camera;          /**< two cameras; else one and a projector */
} zvf_geometry;

/** A pinhole camera, pixels. */
typedef struct zvf_intrinsics {
  float fx, fy, cx, cy;
} zvf_intrinsics;

/** What the frames of a sequence have in common. Begin with zvf_input_of(). */
typedef struct zvf_input {
  uint32_t width, height; /**< pixels, 1 to 32767 each */
  int32_t pixel_type;     /**< ZVF_DEPTH, ZVF_DISPARITY, ZVF_LINEAR_DEPTH */
  uint8_t bits;           /**< of a sample that count, 1 to 16 */
  bool packed;            /**< the low 4 bits of a disparity code are a confidence */
  bool has_geometry;
  bool has_intrinsics;
  bool has_correction;
  float value_scale; /**< millimetres a unit of depth, above 0 */
  int64_t
      correction; /**< the disparity correction that the camera applied, pixels; for `HardwareD2DCorrectionFilter` */
  zvf_geometry geometry;
  zvf_intrinsics intrinsics;
  uint64_t reserved[4]; /**< 0 */
} zvf_input;

/** Depth in millimetres, 16 bits, nothing known of the camera. */
ZVF_API zvf_input zvf_input_of(uint32_t width, uint32_t height);
/** Gives the input the geometry of two cameras: `baseline` in millimetres, `fx` in pixels. */
ZVF_API void zvf_input_set_stereo(zvf_input* input, double baseline, double fx);

/** An image that the library holds. */
typedef struct zvf_view {
  const uint16_t* pixels; /**< rows without gaps */
  uint32_t width, height;
  int32_t pixel_type;
  uint8_t bits;
  float value_scale;
  double milliseconds; /**< that the step took; 0 for an input and for a step that is off */
} zvf_view;

/* ---- Chains ---- */

typedef struct zvf_chain zvf_chain;

/** A chain without steps, which copies its input. Null without memory. */
ZVF_API zvf_chain* zvf_chain_create(zvf_error* error);
/**
 * A chain from a text: the JSON of a chain file, or steps `[TAG=]FILTER[:key=value,...]`, one a line or with semicolons between
 * them. A filter without a colon is left as it is made; with one, parameters not named have the default of its schema.
 */
ZVF_API zvf_chain* zvf_chain_parse(const char* text, zvf_error* error);
/** A chain from a file with such a text. */
ZVF_API zvf_chain* zvf_chain_load(const char* file, zvf_error* error);
/** A chain as people give it: the name of a file, which has a dot or a slash before any of `:;={`, or the text itself. */
ZVF_API zvf_chain* zvf_chain_read(const char* source, zvf_error* error);
/** A chain with the same steps, values and input that has seen no frame. */
ZVF_API zvf_chain* zvf_chain_copy(const zvf_chain* chain, zvf_error* error);
/** Null: nothing. Frames taken from it stay. */
ZVF_API void zvf_chain_destroy(zvf_chain* chain);

/** The JSON of its chain file; it lives until the chain's next call of this function or its end. Null without memory. */
ZVF_API const char* zvf_chain_json(zvf_chain* chain, zvf_error* error);
/** Writes that file, whole or not at all. */
ZVF_API zvf_code zvf_chain_save(zvf_chain* chain, const char* file, zvf_error* error);

/** A step. Its texts live until the chain's steps change. */
typedef struct zvf_step {
  const char* filter;
  const char* tag; /**< empty: none */
  bool enabled;
  bool as_made; /**< it has no values: the filter is left as it is made */
} zvf_step;

ZVF_API size_t zvf_chain_size(const zvf_chain* chain);
ZVF_API zvf_code zvf_chain_step(const zvf_chain* chain, size_t step, zvf_step* out, zvf_error* error);
/** The number of the step with this tag or, if just one has it, of this filter; "1" is the first step, "2" the next; -1: none. */
ZVF_API int32_t zvf_chain_find(const zvf_chain* chain, const char* name);
/** Puts a step, given as in zvf_chain_parse(), before the step `at`, or last when `at` is the chain's size. */
ZVF_API zvf_code zvf_chain_insert(zvf_chain* chain, size_t at, const char* text, zvf_error* error);
ZVF_API zvf_code zvf_chain_remove(zvf_chain* chain, size_t step, zvf_error* error);
/** Moves a step so that its number is `to` afterwards. */
ZVF_API zvf_code zvf_chain_move(zvf_chain* chain, size_t step, size_t to, zvf_error* error);
/** A step that is off hands frames through and keeps what it has seen. */
ZVF_API zvf_code zvf_chain_enable(zvf_chain* chain, size_t step, bool enabled, zvf_error* error);
/**
 * Sets values, `key=value,key=value`, all or none, from the next frame on; what the filter has seen stays, and so do its other
 * values. Those of a step as made become the defaults of the schema.
 */
ZVF_API zvf_code zvf_chain_set(zvf_chain* chain, size_t step, const char* values, zvf_error* error);
/** The value that the step has for a key; of a step as made, the schema's default. */
ZVF_API zvf_code zvf_chain_get(const zvf_chain* chain, size_t step, const char* key, double* value,
                               zvf_error* error);

/* ---- Running ---- */

/**
 * Says what the frames are from now on. Another input than before makes the filters forget what they have seen.
 * Refuses what no filter could take; what a step needs and the input lacks is said by zvf_chain_output() and zvf_chain_run().
 */
ZVF_API zvf_code zvf_chain_set_input(zvf_chain* chain, const zvf_input* input, zvf_error* error);
/**
 * The input as it was set or as the chain file says; a width and height of 0 are still to be set.
 * @return false, and the record as it was: there is none
 */
ZVF_API bool zvf_chain_input(const zvf_chain* chain, zvf_input* input);
/**
 * What the chain will make of such frames: size, pixel type, bits, value scale; intrinsics if the input has them. Tried once on
 * an empty frame for each new input or value; the chain's own filters do not see that.
 */
ZVF_API zvf_code zvf_chain_output(zvf_chain* chain, zvf_input* output, zvf_error* error);
/**
 * Filters a frame. The steps see it in order; what they remember of earlier frames takes part.
 * @param pixels of the input's size; they are only read
 * @param output for an image of the output's size; it may be `pixels` itself. After a failure its contents are unspecified
 */
ZVF_API zvf_code zvf_chain_run(zvf_chain* chain, const uint16_t* pixels, size_t stride, uint16_t* output,
                               size_t output_stride, zvf_error* error);

typedef struct zvf_frame zvf_frame;
/** The same into memory of the chain's pool. The frame is the caller's to release, also after the chain's end. Null: it failed. */
ZVF_API zvf_frame* zvf_chain_run_frame(zvf_chain* chain, const uint16_t* pixels, size_t stride,
                                       zvf_error* error);
ZVF_API zvf_view zvf_frame_view(const zvf_frame* frame);
/** Null: nothing. Any thread. */
ZVF_API void zvf_frame_release(zvf_frame* frame);

/** Whether the frames after each step are kept until the next run; at first they are not. Times are. */
ZVF_API void zvf_chain_keep_stages(zvf_chain* chain, bool keep);
/**
 * What the step made of the last frame; its pixels are null when frames are not kept, and for a step that was off. They live until
 * the chain's next run, reset or change of steps.
 */
ZVF_API zvf_code zvf_chain_stage(const zvf_chain* chain, size_t step, zvf_view* out, zvf_error* error);
/** The filters forget the frames that they have seen, and keep their values. */
ZVF_API zvf_code zvf_chain_reset(zvf_chain* chain, zvf_error* error);

/* ---- What filters there are. All texts live as long as the library is loaded. ---- */

typedef struct zvf_parameter {
  const char* name;
  const char* type; /**< "integer", "float", "bool", "uint16_t" or "uint32_t" */
  double min, max, step, default_value;
  const char* description;
} zvf_parameter;

ZVF_API size_t zvf_filter_count(void);
/** Null past the last. */
ZVF_API const char* zvf_filter_name(size_t filter);
/** What the filter does, in a line. Null past the last. */
ZVF_API const char* zvf_filter_summary(size_t filter);
/** Whether the frames it has seen have a part in what it makes of the next one. */
ZVF_API bool zvf_filter_has_history(size_t filter);
/** Whether its values decide the size of what it makes. */
ZVF_API bool zvf_filter_changes_size(size_t filter);
/** 0 past the last filter. */
ZVF_API size_t zvf_parameter_count(size_t filter);
/** @return false, and the record as it was, past the last */
ZVF_API bool zvf_parameter_at(size_t filter, size_t parameter, zvf_parameter* out);
/** The JSON Schema of chain files, made from the filters' own schemas. */
ZVF_API const char* zvf_chain_file_schema(void);

#ifdef __cplusplus
}
#endif

#endif
