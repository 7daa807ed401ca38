#pragma once

/// Marks what `Vek::ChartWidgets` exports.
#if defined(_WIN32)
#if defined(VEK_WIDGETS_BUILD)
#define VEK_WIDGETS_API __declspec(dllexport)
#else
#define VEK_WIDGETS_API __declspec(dllimport)
#endif
#else
#define VEK_WIDGETS_API __attribute__((visibility("default")))
#endif
