#pragma once

// The shared library is built with hidden visibility; only what carries
// KARVELUI_API is part of its interface. The static archive that the tests
// link needs no decoration.
#if defined(KARVELUI_STATIC)
#define KARVELUI_API
#elif defined(KARVELUI_BUILDING)
#define KARVELUI_API __attribute__((visibility("default")))
#else
#define KARVELUI_API
#endif
