// Conversions between the numbers IA and dim and their tags.
#include "core/core.hpp"

#include "records/tags.hpp"


namespace {

using vlk::TagRow;

// The tag of `value`, or an empty text for a number outside the table.
template <std::size_t N>
const char *tag_of(const TagRow (&table)[N], int32_t value) noexcept {
    for (const TagRow &row : table) {
        if (row.tag == nullptr) break;
        if (row.value == value) return row.tag;
    }
    return "";
}

// The value of the first row whose tag begins with `c` (exact case), or the
// value of the end row.
template <std::size_t N>
int32_t value_of(const TagRow (&table)[N], char c) noexcept {
    for (const TagRow &row : table) {
        if (row.tag == nullptr) return row.value;
        if (row.tag[0] == c) return row.value;
    }
    return table[N - 1].value;
}

}  // namespace

SCMDSTATUS VLKXSStrFromIADim(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::StrFromIADim, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        set->dimtag = tag_of(vlk::svDimTag, set->dim);
        vlk::succeed(st);
    });
}

SCMDSTATUS VLKXSStrFromIAType(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::StrFromIAType, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        set->IAtag = tag_of(vlk::svIATag, set->IA);
        vlk::succeed(st);
    });
}

SCMDSTATUS VLKXSColFromIAType(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::ColFromIAType, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        set->coltag = tag_of(vlk::svIAColourTag, set->IA);
        vlk::succeed(st);
    });
}

// Only the very first character counts, blanks included: " s" is no
// dimension.  An empty word has the 0 byte as its first character, which no
// tag begins with.
SCMDSTATUS VLKXSIADimFromStr(SVLKXS *set, const char *word, int32_t mode) {
    return vlk::run(vlk::op::IADimFromStr, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || word == nullptr) return;
        const int32_t dim = word[0] == '\0' ? -1 : value_of(vlk::svDimTag, word[0]);
        if (dim < 0) {
            vlk::fail(st, VLKXS_C_IADIM);
            return;
        }
        set->dim = dim;
        vlk::succeed(st);
    });
}

// Leading blanks are skipped; the first letter selects IA and the one behind
// it the bit of dimmask ("is": ionisation, single differential).
SCMDSTATUS VLKXSIATypeFromStr(SVLKXS *set, const char *word, int32_t mode) {
    return vlk::run(vlk::op::IATypeFromStr, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr || word == nullptr) return;
        while (*word == ' ') ++word;
        const int32_t ia = word[0] == '\0' ? 0 : value_of(vlk::svIATag, word[0]);
        if (ia == 0) {
            vlk::fail(st, VLKXS_C_IATYPE);
            return;
        }
        set->IA = ia;
        switch (word[1]) {
            case 't': set->dimmask = 1; break;
            case 's': set->dimmask = 2; break;
            case 'd': set->dimmask = 4; break;
            default: set->dimmask = 0; break;
        }
        vlk::succeed(st);
    });
}
