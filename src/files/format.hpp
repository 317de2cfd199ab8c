// The xs text format: its tags, its table of states and the classification
// of lines.  Shared by the reader and the writer.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/words.hpp"
#include "vlkxs.h"

namespace vlk::xs {

struct Tag {
    std::string_view text;
    int32_t number;
};

// Tags in the order of the lookup; the first row that the line begins with
// wins (case ignored).  No tag is the beginning of another.  The end row has
// an empty text.
inline constexpr Tag svTag[] = {
    {"!filetype", 0}, {"!fileversion", 1}, {"!filedate", 2}, {"!target", 3},
    {"!projectile", 4}, {"!shell", 5},     {"!eproj", 6},    {"!esec", 7},
    {{}, 8},
};

// Line kinds beyond the tag numbers.
inline constexpr int32_t kUnknownTag = 8;
inline constexpr int32_t kDataLine = 9;
inline constexpr int kKinds = 10;
inline constexpr int kStates = 12;

// States: 0 start, 1 "!filetype", 2 "!fileversion", 3 "!filedate",
// 4 "!target", 5 "!projectile" (header complete), 6 "!shell", 7 "!eproj",
// 8 "!esec", 9 after an unknown tag, 10 in a table, 11 a data line below an
// unknown tag.  States 9 and 11 never arise: an unknown tag is handled before
// the table is consulted, and the data lines below it are dropped.
//
// bvStateTable[dim][kind][state] is the next state, -1 where the line can't
// stand.
inline constexpr int8_t X = -1;
inline constexpr int8_t bvStateTable[3][kKinds][kStates] = {
    {   // dim 0, total cross sections: "!shell" sections of data lines
        {1, X, X, X, X, X, X, X, X, X, X, X},     // "!filetype"
        {X, 2, X, X, X, X, X, X, X, X, X, X},     // "!fileversion"
        {X, X, 3, 3, 3, X, X, X, X, 3, X, 3},     // "!filedate"
        {X, X, 4, 4, X, X, X, X, X, 4, X, 4},     // "!target"
        {X, X, X, X, 5, X, X, X, X, 5, X, 5},     // "!projectile"
        {X, X, X, X, X, 6, 6, X, X, 6, 6, 6},     // "!shell"
        {X, X, X, X, X, X, X, X, X, X, X, X},     // "!eproj"
        {X, X, X, X, X, X, X, X, X, X, X, X},     // "!esec"
        {X, X, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9},     // unknown tag
        {X, X, X, X, X, X, 10, X, X, 11, 10, 11}, // data line
    },
    {   // dim 1, single differential: data lines below "!eproj"
        {1, X, X, X, X, X, X, X, X, X, X, X},
        {X, 2, X, X, X, X, X, X, X, X, X, X},
        {X, X, 3, 3, 3, X, X, X, X, 3, X, 3},
        {X, X, 4, 4, X, X, X, X, X, 4, X, 4},
        {X, X, X, X, 5, X, X, X, X, 5, X, 5},
        {X, X, X, X, X, 6, 6, 6, X, 6, 6, 6},
        {X, X, X, X, X, X, 7, 7, X, 7, 7, 7},
        {X, X, X, X, X, X, X, X, X, X, X, X},
        {X, X, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9},
        {X, X, X, X, X, X, X, 10, X, 11, 10, 11},
    },
    {   // dim 2, double differential: data lines below "!esec"
        {1, X, X, X, X, X, X, X, X, X, X, X},
        {X, 2, X, X, X, X, X, X, X, X, X, X},
        {X, X, 3, 3, 3, X, X, X, X, 3, X, 3},
        {X, X, 4, 4, X, X, X, X, X, 4, X, 4},
        {X, X, X, X, 5, X, X, X, X, 5, X, 5},
        {X, X, X, X, X, 6, 6, 6, X, 6, 6, 6},
        {X, X, X, X, X, X, 7, 7, X, 7, 7, 7},
        {X, X, X, X, X, X, X, 8, 8, X, 8, X},
        {X, X, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9},
        {X, X, X, X, X, X, X, X, 10, 11, 10, 11},
    },
};

static_assert(sizeof(svTag) / sizeof(Tag) == 9, "eight tags and the end row");
// A data line behind a data line leaves the state as it is: the reader relies
// on it to take runs of data lines in one step.
static_assert([] {
    for (const auto &d : bvStateTable)
        if (d[9][10] != 10 || d[9][11] != 11) return false;
    return true;
}());
static_assert(sizeof(bvStateTable) == 3 * 10 * 12, "3 dimensions x 10 line kinds x 12 states");

// What the first character of a trimmed line makes of it.
enum class LineKind { Empty, Tag, Comment, Data };

using vlk::trim_blanks;

constexpr LineKind classify(std::string_view trimmed) noexcept {
    if (trimmed.empty()) return LineKind::Empty;
    switch (trimmed.front()) {
        case '!': return LineKind::Tag;
        case '#': return LineKind::Comment;
        case '\0': return LineKind::Empty;
        default: return LineKind::Data;
    }
}

// The row of svTag that the line begins with, case ignored, or kUnknownTag.
// The second character rules out most rows before any comparison.
inline int32_t match_tag(std::string_view trimmed) noexcept {
    if (trimmed.size() < 2) return kUnknownTag;
    const unsigned char second = vlk::ascii_lower(trimmed[1]);
    for (const Tag &t : svTag) {
        if (t.text.empty()) break;
        if (static_cast<unsigned char>(t.text[1]) != second || trimmed.size() < t.text.size()) continue;
        if (strnicmp(trimmed.data(), t.text.data(), t.text.size()) == 0) return t.number;
    }
    return kUnknownTag;
}

// The argument of a tag line: what follows the tag, blanks dropped at both
// ends; empty if nothing remains.
inline std::string_view tag_argument(std::string_view trimmed, int32_t tag) noexcept {
    trimmed.remove_prefix(svTag[tag].text.size());
    return trim_blanks(trimmed);
}

}  // namespace vlk::xs
