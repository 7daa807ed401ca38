#pragma once

/// Marks what `Vek::ChartLibrary` exports.
#if defined(_WIN32)
#if defined(VEK_LIBRARY_BUILD)
#define VEK_LIBRARY_API __declspec(dllexport)
#else
#define VEK_LIBRARY_API __declspec(dllimport)
#endif
#else
#define VEK_LIBRARY_API __attribute__((visibility("default")))
#endif
