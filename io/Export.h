#pragma once

/// Marks what `Vek::ChartIo` exports.
#if defined(_WIN32)
#if defined(VEK_IO_BUILD)
#define VEK_IO_API __declspec(dllexport)
#else
#define VEK_IO_API __declspec(dllimport)
#endif
#else
#define VEK_IO_API __attribute__((visibility("default")))
#endif
