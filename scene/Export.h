#pragma once

/// Marks what `Vek::ChartScene` exports.
#if defined(_WIN32)
#if defined(VEK_SCENE_BUILD)
#define VEK_SCENE_API __declspec(dllexport)
#else
#define VEK_SCENE_API __declspec(dllimport)
#endif
#else
#define VEK_SCENE_API __attribute__((visibility("default")))
#endif
