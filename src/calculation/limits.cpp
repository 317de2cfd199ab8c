// Limit strings: one text gives the limits of one axis of a calculation
// request, and an explicit sorted list of values where it names more than
// two.  Mode bits choose the axis.  An item that begins with "*" is an open
// end, the largest finite double or its negative: the calculators compare
// against it, so it must not be an infinity.
#include "core/core.hpp"

#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace {

constexpr double kOpenHigh = std::numeric_limits<double>::max();
constexpr double kOpenLow = -kOpenHigh;

// What one text says about an axis.  `count` is 0 for the forms of one and
// two items, which have no list.
struct Limits {
    double low = kOpenLow;
    double high = kOpenHigh;
    int32_t count = 0;
};

// Ends the operation with code 3 at the item that isn't a number; `item`
// points into the caller's text.
bool bad_number(SCMDSTATUS &st, std::string_view item) noexcept {
    vlk::fail(st, VLKXS_C_BADNUMBER);
    st.item = item.data();
    st.itemlen = static_cast<int32_t>(item.size());
    return false;
}

// Only the first character decides: "*x" is an open end as well.
constexpr bool open_end(std::string_view item) noexcept { return !item.empty() && item.front() == '*'; }

// The converter reads "nan" as well, but a NaN has no place in an ordered
// axis: it would leave the list unsorted and its ends no limits.  It is
// refused as a bad number in every form.  An infinity is kept; the
// calculators take it for an open end.
bool convert(std::string_view item, double &value, bool strict) noexcept {
    const int32_t r = cn2d(item.data(), static_cast<int32_t>(item.size()), &value);
    return (strict ? r == 0 : r >= 0) && !std::isnan(value);
}

// An item of the forms of one and two items, already trimmed, that isn't an
// open end: any refusal of the converter counts.
bool number(SCMDSTATUS &st, std::string_view item, double &value) noexcept {
    return convert(item, value, true) || bad_number(st, item);
}

// One item: a single number gives both limits, a star the whole range.
bool one_item(SCMDSTATUS &st, std::string_view item, Limits &out) noexcept {
    item = vlk::trim_blanks(item);
    if (open_end(item)) return true;
    double v = 0.0;
    if (!number(st, item, v)) return false;
    out.low = out.high = v;
    return true;
}

// Two items: a pair of limits in either order, each end open or a number.
bool two_items(SCMDSTATUS &st, std::string_view first, std::string_view second, Limits &out) noexcept {
    first = vlk::trim_blanks(first);
    second = vlk::trim_blanks(second);
    if (!open_end(first) && !number(st, first, out.low)) return false;
    if (!open_end(second) && !number(st, second, out.high)) return false;
    if (out.high < out.low) std::swap(out.low, out.high);
    return true;
}

// Three items or more, untrimmed, into `list` (room for n): only the first
// and the last may be open ends; a star elsewhere goes to the converter,
// which refuses it, as it refuses the empty item between two commas.  The
// list is sorted, duplicates kept; its ends are the limits.  Only a negative
// result of the converter counts as a refusal (or a NaN).
template <class Item>
bool list_items(SCMDSTATUS &st, Item &&item, int32_t n, double *list, Limits &out) noexcept {
    for (int32_t i = 0; i < n; ++i) {
        const std::string_view it = item(i);
        if (i == 0 && open_end(it)) {
            list[i] = kOpenLow;
        } else if (i == n - 1 && open_end(it)) {
            list[i] = kOpenHigh;
        } else if (!convert(it, list[i], false)) {
            return bad_number(st, it);
        }
    }
    vshsrtd(&list, 1, 1, n);
    out.low = list[0];
    out.high = list[n - 1];
    out.count = n;
    return true;
}

// The limits into the fields of one axis.  A count of 0 (no list) leaves
// the axis's count as it was, while its list pointer takes `list` all the
// same: null for the forms without a list, and for every axis after the
// first one that took the list.
void store(const Limits &in, double *list, double &low, double &high, int32_t &count, double *&field) noexcept {
    low = in.low;
    high = in.high;
    if (in.count != 0) count = in.count;
    field = list;
}

}  // namespace

// The request is written only once the whole text has been understood, so a
// failure leaves it as it was.  A list that the axis held before is
// overwritten, not released: that is the caller's to do.
SCMDSTATUS VLKXSCalcLimitsFromStr(SVLKXSCALC *calc, const char *text, int32_t mode) {
    return vlk::run(vlk::op::CalcLimitsFromStr, mode & VLKXS_MODE_CALC_MASK, [&](SCMDSTATUS &st) {
        if (calc == nullptr || text == nullptr) return;
        auto bad_list = [&] {
            vlk::fail(st, VLKXS_C_ITEMLIST);
            st.item = text;
        };
        // A text without any item can't be read as any form.
        const int32_t counted = c2vcn(text, nullptr, nullptr, 1, 0x7fffffff);
        if (counted <= 0) return bad_list();
        vlk::Buffer<const char *> items;
        vlk::Buffer<int32_t> lens;
        if (!items.reserve(vlk::count_of(counted)) || !lens.reserve(vlk::count_of(counted)))
            return vlk::fail(st, VLKXS_C_RUNTIME);
        // The second count stops at `counted` items, all that the arrays hold.
        const int32_t n = c2vcn(text, items.data(), lens.data(), 1, counted);
        if (n <= 0) return bad_list();
        auto item = [&](int32_t i) { return std::string_view{items[i], vlk::count_of(lens[i])}; };

        Limits limits;
        vlk::Buffer<double> list;  // released here unless an axis takes it
        if (n == 1) {
            if (!one_item(st, item(0), limits)) return;
        } else if (n == 2) {
            if (!two_items(st, item(0), item(1), limits)) return;
        } else {
            if (!list.reserve(vlk::count_of(counted))) return vlk::fail(st, VLKXS_C_RUNTIME);
            if (!list_items(st, item, n, list.data(), limits)) return;
        }

        // Every named axis takes the limits and the count; only the first
        // of them, in the order E, W, A, takes the list.
        if ((mode & VLKXS_MODE_LIMIT_E) != 0) store(limits, list.release(), calc->Emin, calc->Emax, calc->nE, calc->pE);
        if ((mode & (VLKXS_MODE_LIMIT_W | VLKXS_MODE_LIMIT_WFLAG)) != 0) {
            store(limits, list.release(), calc->Wmin, calc->Wmax, calc->nW, calc->pW);
            if ((mode & VLKXS_MODE_LIMIT_WFLAG) != 0) calc->flag |= 1;
        }
        if ((mode & VLKXS_MODE_LIMIT_A) != 0) store(limits, list.release(), calc->Amin, calc->Amax, calc->nA, calc->pA);
        vlk::succeed(st);
    });
}
