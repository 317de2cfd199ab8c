// Small pieces of the status protocol shared by the module and the companion
// layer: the start status, success and failure, the severity tests and the
// trace lines.  Header-only, so that a fake of the companion layer can use
// it without linking anything of the module.
#pragma once

#include <cstdint>
#include <cstdio>

#include "vlkxs.h"

namespace vlk {

inline constexpr uint32_t kLevelError = VLKXS_LEVEL_ERROR;
inline constexpr uint32_t kLevelWarning = VLKXS_LEVEL_WARNING;

constexpr bool traced(int32_t mode) noexcept { return mode < 0; }
constexpr bool quiet(int32_t mode) noexcept { return (mode & VLKXS_MODE_QUIET) != 0; }
constexpr int32_t trace_bit(int32_t mode) noexcept { return mode & VLKXS_MODE_TRACE; }

// Any of the top eight bits: an error or a warning of another operation
// stops its caller.
constexpr bool severe(uint32_t level) noexcept { return level > 0xffffffu; }
// The top bit alone: only an error stops (VLKXSCalc after a calculator).
constexpr bool is_error(uint32_t level) noexcept { return (level & kLevelError) != 0; }

inline void trace_enter(const char *tag, int32_t mode) noexcept {
    if (traced(mode)) std::fprintf(stderr, "<D> %s.....\n", tag);
}
inline void trace_leave(const char *tag, int32_t mode) noexcept {
    if (traced(mode)) std::fprintf(stderr, "<D> %s done\n", tag);
}

// Every operation starts as failed with "bad address" until it has proved
// otherwise; col is -1 in every record that this library makes.
inline SCMDSTATUS start_status(const char *origin) noexcept {
    SCMDSTATUS s{};
    s.code = VLKXS_C_BADADDR;
    s.level = kLevelError;
    s.col = -1;
    s.origin = origin;
    return s;
}
inline void succeed(SCMDSTATUS &s) noexcept {
    s.code = VLKXS_C_OK;
    s.level = 0;
}
inline void fail(SCMDSTATUS &s, int32_t code) noexcept {
    s.code = code;
    s.level = kLevelError;
}

// The frame of an operation of the companion layer: trace lines around
// `body(status)`, which starts from the start status and calls succeed()
// once it has done its work.  Companions never report: the caller decides
// what a failure means to it.
template <class Body>
SCMDSTATUS companion_frame(const char *tag, int32_t mode, Body &&body) noexcept {
    trace_enter(tag, mode);
    SCMDSTATUS s = start_status(tag);
    body(s);
    trace_leave(tag, mode);
    return s;
}

}  // namespace vlk
