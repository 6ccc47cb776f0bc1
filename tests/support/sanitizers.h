#pragma once

// Which sanitizers this is built with, each 0 or 1, for the few tests that one of them makes
// impossible because it uses descriptors, address space or threads itself.
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
