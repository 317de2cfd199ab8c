// libFuzzer target: see vlkxs_fuzz_limits in entries.cpp.
#include "entries.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return vlkxs_fuzz_limits(data, size); }
