#pragma once

/// Marks what `Vek::Platform` exports.
#if defined(_WIN32)
#if defined(VEK_PLATFORM_BUILD)
#define VEK_PLATFORM_API __declspec(dllexport)
#else
#define VEK_PLATFORM_API __declspec(dllimport)
#endif
#else
#define VEK_PLATFORM_API __attribute__((visibility("default")))
#endif
