/**
 * @file
 * The host's C interface: every function of `libZelvinSDK` that the plug-in calls.
 *
 * The plug-in defines none of these names. It takes them from the process that loads it, or from a
 * library named when it is linked.
 *
 * Rules that hold for every function here:
 * - Errors: a function with a `zv_error** error` argument leaves `*error` alone on success and stores a
 *   new error object there on failure. It never clears `*error`. The result of a failed call is 0, false
 *   or null.
 * - Threads: any thread. Two threads may use one object at a time only to read it.
 * - Null: no object argument may be null; a null object is a failure, not a crash.
 */
#ifndef FILTERPROCESSOR_HOST_H
#define FILTERPROCESSOR_HOST_H

#include <stdbool.h>
#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

typedef struct zv_error zv_error;
typedef struct zv_frame_t zv_frame_t;
typedef struct zv_stream_profile_t zv_stream_profile_t;

/** Codes that the filters use by value. */
enum {
  ZV_FRAME_TYPE_DEPTH = 3,
  ZV_FRAME_TYPE_SET = 5,
  ZV_PIXEL_TYPE_DEPTH = 0,
  ZV_PIXEL_TYPE_DISPARITY = 2,
  ZV_PIXEL_TYPE_LINEAR_DEPTH = 4,
  ZV_FORMAT_PACKED_CODE = 34,
  ZV_METADATA_DISPARITY_CORRECTION = 32,
  ZV_EXCEPTION_KERNEL = 0,
  ZV_EXCEPTION_INVALID_VALUE = 4
};

/** A pinhole camera: focal lengths and principal point in pixels, image size in pixels. 20 bytes. */
typedef struct ZVCameraIntrinsic {
  float fx, fy, cx, cy;
  int16_t width, height;
} ZVCameraIntrinsic;

/** How a camera encodes disparity. Byte-packed, 51 bytes, little-endian. */
#pragma pack(push, 1)
typedef struct ZVDisparityParam {
  double zpd;           /**< distance of the reference plane */
  double zpps;          /**< pixel size on the reference plane */
  float baseline;       /**< distance of the two viewpoints */
  double fx;            /**< focal length in pixels */
  uint8_t bitSize;      /**< bits of a disparity code */
  float unit;           /**< factor from the raw formula to depth units */
  float minDisparity;   /**< smallest disparity searched */
  uint8_t packMode;     /**< layout of a disparity code, 1 to 4 */
  float dispOffset;     /**< added to every disparity */
  int32_t invalidDisp;  /**< disparity that marks an invalid pixel */
  int32_t dispIntPlace; /**< integer bits of a disparity code */
  uint8_t isDualCamera; /**< nonzero: two cameras; zero: one camera and a projector */
} ZVDisparityParam;
#pragma pack(pop)

/* Errors. The texts given to zv_create_error are copied; the texts read back live as long as the error.
 */
FILTERPROCESSOR_API zv_error* zv_create_error(int32_t status, const char* message, const char* function,
                                              const char* args, int32_t exception_type);
FILTERPROCESSOR_API const char* zv_error_get_message(const zv_error* error);
FILTERPROCESSOR_API const char* zv_error_get_function(const zv_error* error);
FILTERPROCESSOR_API const char* zv_error_get_args(const zv_error* error);
FILTERPROCESSOR_API int32_t zv_error_get_exception_type(const zv_error* error);

/* Frames and frame sets. */

/** 3 for a depth frame, 5 for a frame set. */
FILTERPROCESSOR_API int32_t zv_frame_get_type(const zv_frame_t* frame, zv_error** error);
FILTERPROCESSOR_API int32_t zv_frame_get_format(const zv_frame_t* frame, zv_error** error);
/** The frame's own data, valid as long as the frame; writable for a frame that the caller made. */
FILTERPROCESSOR_API void* zv_frame_get_data(const zv_frame_t* frame, zv_error** error);
/** Size of the frame's data in bytes. */
FILTERPROCESSOR_API uint32_t zv_frame_get_data_size(const zv_frame_t* frame, zv_error** error);
/** Copies `size` bytes into the frame; `data` may be the frame's own data. */
FILTERPROCESSOR_API void zv_frame_update_data(zv_frame_t* frame, const void* data, uint32_t size,
                                              zv_error** error);
FILTERPROCESSOR_API bool zv_frame_has_metadata(const zv_frame_t* frame, int32_t item, zv_error** error);
/** Fails when the frame has no such item. */
FILTERPROCESSOR_API int64_t zv_frame_get_metadata_value(const zv_frame_t* frame, int32_t item,
                                                        zv_error** error);
/** Copies format, size, pixel type, bit size, value scale, metadata and profile; not the data nor the
 * type.
 */
FILTERPROCESSOR_API void zv_frame_copy_info(const zv_frame_t* from, zv_frame_t* to, zv_error** error);
/** A new zero-filled frame, owned by the caller. A host may refuse a size of 0. */
FILTERPROCESSOR_API zv_frame_t* zv_create_frame(int32_t frame_type, int32_t format, uint32_t data_size,
                                                zv_error** error);
/** A new frame like `other`, owned by the caller. Without `copy_data` its data are unspecified and a set
 * is empty. */
FILTERPROCESSOR_API zv_frame_t* zv_create_frame_from_other_frame(const zv_frame_t* other, bool copy_data,
                                                                 zv_error** error);
/** Gives up the caller's reference, even when it fails. */
FILTERPROCESSOR_API void zv_delete_frame(const zv_frame_t* frame, zv_error** error);
/** Borrowed from the set, or null when it has none. */
FILTERPROCESSOR_API zv_frame_t* zv_frameset_get_depth_frame(const zv_frame_t* set, zv_error** error);
/** The set takes over the caller's reference to `frame`; on failure the caller keeps it. */
FILTERPROCESSOR_API void zv_frameset_push_frame(zv_frame_t* set, const zv_frame_t* frame,
                                                zv_error** error);
/** A new reference, which the caller deletes. */
FILTERPROCESSOR_API zv_stream_profile_t* zv_frame_get_stream_profile(const zv_frame_t* frame,
                                                                     zv_error** error);
/** The frame takes a reference of its own. */
FILTERPROCESSOR_API void zv_frame_set_stream_profile(zv_frame_t* frame,
                                                     const zv_stream_profile_t* profile,
                                                     zv_error** error);

/* Attributes of video and depth frames. Sizes in pixels, bit sizes in bits. */
FILTERPROCESSOR_API uint32_t zv_video_frame_get_width(const zv_frame_t* frame, zv_error** error);
FILTERPROCESSOR_API uint32_t zv_video_frame_get_height(const zv_frame_t* frame, zv_error** error);
FILTERPROCESSOR_API int32_t zv_video_frame_get_pixel_type(const zv_frame_t* frame, zv_error** error);
FILTERPROCESSOR_API void zv_video_frame_set_pixel_type(zv_frame_t* frame, int32_t pixel_type,
                                                       zv_error** error);
FILTERPROCESSOR_API uint8_t zv_video_frame_get_pixel_available_bit_size(const zv_frame_t* frame,
                                                                        zv_error** error);
FILTERPROCESSOR_API void zv_video_frame_set_pixel_available_bit_size(zv_frame_t* frame, uint8_t bits,
                                                                     zv_error** error);
FILTERPROCESSOR_API float zv_depth_frame_get_value_scale(const zv_frame_t* frame, zv_error** error);
FILTERPROCESSOR_API void zv_depth_frame_set_value_scale(zv_frame_t* frame, float value_scale,
                                                        zv_error** error);

/* Stream profiles. */

/** A new profile like `other`, owned by the caller. */
FILTERPROCESSOR_API zv_stream_profile_t* zv_create_stream_profile_from_other_stream_profile(
    const zv_stream_profile_t* other, zv_error** error);
/** Gives up the caller's reference, even when it fails. */
FILTERPROCESSOR_API void zv_delete_stream_profile(const zv_stream_profile_t* profile, zv_error** error);
FILTERPROCESSOR_API int32_t zv_stream_profile_get_format(const zv_stream_profile_t* profile,
                                                         zv_error** error);
FILTERPROCESSOR_API uint32_t zv_video_stream_profile_get_width(const zv_stream_profile_t* profile,
                                                               zv_error** error);
FILTERPROCESSOR_API uint32_t zv_video_stream_profile_get_height(const zv_stream_profile_t* profile,
                                                                zv_error** error);
FILTERPROCESSOR_API void zv_video_stream_profile_set_width(zv_stream_profile_t* profile, uint32_t width,
                                                           zv_error** error);
FILTERPROCESSOR_API void zv_video_stream_profile_set_height(zv_stream_profile_t* profile, uint32_t height,
                                                            zv_error** error);
FILTERPROCESSOR_API ZVCameraIntrinsic
zv_video_stream_profile_get_intrinsic(const zv_stream_profile_t* profile, zv_error** error);
FILTERPROCESSOR_API void zv_video_stream_profile_set_intrinsic(zv_stream_profile_t* profile,
                                                               ZVCameraIntrinsic intrinsic,
                                                               zv_error** error);
FILTERPROCESSOR_API ZVDisparityParam zv_disparity_based_stream_profile_get_disparity_param(
    const zv_stream_profile_t* profile, zv_error** error);

FILTERPROCESSOR_END_C

#ifdef __cplusplus
static_assert(sizeof(ZVCameraIntrinsic) == 20, "ZVCameraIntrinsic is 20 bytes");
static_assert(sizeof(ZVDisparityParam) == 51, "ZVDisparityParam is byte-packed");
#else
_Static_assert(sizeof(ZVCameraIntrinsic) == 20, "ZVCameraIntrinsic is 20 bytes");
_Static_assert(sizeof(ZVDisparityParam) == 51, "ZVDisparityParam is byte-packed");
#endif

#endif
