#ifndef FILTERPROCESSOR_EXPORT_H
#define FILTERPROCESSOR_EXPORT_H

/** Marks what is visible outside the shared library; everything else is hidden. */
#define FILTERPROCESSOR_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define FILTERPROCESSOR_BEGIN_C extern "C" {
#define FILTERPROCESSOR_END_C }
#else
#define FILTERPROCESSOR_BEGIN_C
#define FILTERPROCESSOR_END_C
#endif

#endif
