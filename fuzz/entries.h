// Entry points of the fuzz targets.  Each takes one input, drives the public
// interface with it and checks the properties that hold for every input; a
// broken property ends the process through abort().  The libFuzzer targets
// and the replay test of the corpus call the same functions.  Each returns 0.
#pragma once

#include <cstddef>
#include <cstdint>

int vlkxs_fuzz_read(const uint8_t *data, size_t size);
int vlkxs_fuzz_limits(const uint8_t *data, size_t size);
int vlkxs_fuzz_tags(const uint8_t *data, size_t size);
