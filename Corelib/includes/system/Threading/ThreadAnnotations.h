#pragma once

// Lock annotations that a clang build checks with -Wthread-safety; other compilers see nothing.
#if defined(__clang__)
#define NFX_ANNOTATE(...) __attribute__((__VA_ARGS__))
#else
#define NFX_ANNOTATE(...)
#endif

#define NFX_CAPABILITY(NAME) NFX_ANNOTATE(capability(NAME))
#define NFX_SCOPED_CAPABILITY NFX_ANNOTATE(scoped_lockable)
#define NFX_GUARDED_BY(LOCK) NFX_ANNOTATE(guarded_by(LOCK))
#define NFX_PT_GUARDED_BY(LOCK) NFX_ANNOTATE(pt_guarded_by(LOCK))
#define NFX_REQUIRES(...) NFX_ANNOTATE(requires_capability(__VA_ARGS__))
#define NFX_ACQUIRE(...) NFX_ANNOTATE(acquire_capability(__VA_ARGS__))
#define NFX_RELEASE(...) NFX_ANNOTATE(release_capability(__VA_ARGS__))
#define NFX_NO_THREAD_SAFETY_ANALYSIS NFX_ANNOTATE(no_thread_safety_analysis)
