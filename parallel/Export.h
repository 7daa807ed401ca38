#pragma once

/// Marks what `Vek::ChartParallel` exports.
#if defined(_WIN32)
#if defined(VEK_PARALLEL_BUILD)
#define VEK_PARALLEL_API __declspec(dllexport)
#else
#define VEK_PARALLEL_API __declspec(dllimport)
#endif
#else
#define VEK_PARALLEL_API __attribute__((visibility("default")))
#endif
