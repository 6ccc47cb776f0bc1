#pragma once

/// Which sanitizers this is built with, each 0 or 1, for the few cases that one of them makes
/// impossible: it needs descriptors, address space or threads of its own.
#if defined(__has_feature)
#define QUILLMARK_HAS_FEATURE(name) __has_feature(name)
#else
#define QUILLMARK_HAS_FEATURE(name) 0
#endif

#if QUILLMARK_HAS_FEATURE(address_sanitizer) || defined(__SANITIZE_ADDRESS__)
#define UNDER_ADDRESS_SANITIZER 1
#else
#define UNDER_ADDRESS_SANITIZER 0
#endif

#if QUILLMARK_HAS_FEATURE(thread_sanitizer) || defined(__SANITIZE_THREAD__)
#define UNDER_THREAD_SANITIZER 1
#else
#define UNDER_THREAD_SANITIZER 0
#endif

#if QUILLMARK_HAS_FEATURE(undefined_behavior_sanitizer)
#define UNDER_UNDEFINED_BEHAVIOR_SANITIZER 1
#else
#define UNDER_UNDEFINED_BEHAVIOR_SANITIZER 0
#endif
