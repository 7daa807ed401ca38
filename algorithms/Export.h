#pragma once

/// Marks the exports of this folder; they are part of `Vek::ChartLibrary`.
#if defined(_WIN32)
#if defined(VEK_LIBRARY_BUILD)
#define VEK_ALGORITHMS_API __declspec(dllexport)
#else
#define VEK_ALGORITHMS_API __declspec(dllimport)
#endif
#else
#define VEK_ALGORITHMS_API __attribute__((visibility("default")))
#endif
