// The constant tables that name interaction types and dimensions.  A row
// with a null tag ends each table; its value is what a search that finds
// nothing yields.
#pragma once

#include <cstdint>

namespace vlk {

struct TagRow {
    const char *tag;
    int32_t value;
};

// Dimension of the tables: total, single and double differential.
inline constexpr TagRow svDimTag[] = {{"t", 0}, {"s", 1}, {"d", 2}, {nullptr, -1}};

// Interaction type: elastic, ionisation, excitation, and five further kinds
// that no calculator of this module builds.
inline constexpr TagRow svIATag[] = {{"l", 1}, {"i", 2}, {"x", 3}, {"b", 4}, {"a", 5},
                                     {"f", 6}, {"c", 7}, {"p", 8}, {nullptr, 0}};

// Plot colour of an interaction type: blue, red, green; none for the rest.
inline constexpr TagRow svIAColourTag[] = {{"b", 1}, {"r", 2}, {"g", 3}, {"", 4}, {"", 5},
                                           {"", 6},  {"", 7},  {"", 8},  {nullptr, 0}};

static_assert(sizeof(svDimTag) / sizeof(TagRow) == 4);
static_assert(sizeof(svIATag) / sizeof(TagRow) == 9);
static_assert(sizeof(svIAColourTag) / sizeof(TagRow) == 9);

}  // namespace vlk
