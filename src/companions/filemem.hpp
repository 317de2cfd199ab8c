// Test access to the file memory routines.
#pragma once

#include <cstdint>

namespace vlk::testhook {

#if defined(VLKXS_FAULT_INJECTION)
// Lowers the number of lines that uFileMemRead accepts, so that a test can
// meet the limit without a file of two thousand million lines; 0 or a value
// beyond the real limit restores it.  Returns the limit before the call.
int64_t set_line_limit(int64_t n) noexcept;
#endif

}  // namespace vlk::testhook
