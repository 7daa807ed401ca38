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

/// Marks the hidden state of an exported class, whose members would be exported with it.
#if defined(_WIN32)
#define VEK_HIDDEN
#else
#define VEK_HIDDEN __attribute__((visibility("hidden")))
#endif
