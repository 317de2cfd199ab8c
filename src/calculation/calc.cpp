// Calculation of a set: the companions are checked, a model calculator is
// chosen by projectile type and interaction, it fills the set, and the
// result is validated before the set is switched on.  A failure leaves no
// half-made set behind: the set is emptied.
#include "core/core.hpp"

#include <cstddef>
#include <iterator>
#include <limits>

namespace {

using Calculator = SCMDSTATUS (*)(SVLKXS *, const SVLKXSCALC *, int32_t);

struct CalcRow {
    int32_t type;  // projectile type
    int32_t IA;
    Calculator calc;  // null: nothing to calculate, and no failure
};

// Electrons and ions, by interaction: elastic, ionisation, excitation.  The
// elastic scattering of ions has no model; it succeeds and leaves the set as
// it was.
constexpr CalcRow svCalculator[] = {
    {VLKPROJ_ELECTRON, 1, VLKXSCalcEL}, {VLKPROJ_ELECTRON, 2, VLKXSCalcEI}, {VLKPROJ_ELECTRON, 3, VLKXSCalcEX},
    {VLKPROJ_ION, 1, nullptr},          {VLKPROJ_ION, 2, VLKXSCalcII},      {VLKPROJ_ION, 3, VLKXSCalcIX},
};

// A second row for a pair would never be reached: a bad edit fails here.
constexpr bool one_row_each() {
    for (std::size_t i = 0; i < std::size(svCalculator); ++i)
        for (std::size_t j = i + 1; j < std::size(svCalculator); ++j)
            if (svCalculator[i].type == svCalculator[j].type && svCalculator[i].IA == svCalculator[j].IA) return false;
    return true;
}
static_assert(one_row_each(), "one row for each projectile type and interaction");

const CalcRow *row_of(int32_t type, int32_t IA) noexcept {
    for (const CalcRow &row : svCalculator)
        if (row.type == type && row.IA == IA) return &row;
    return nullptr;
}

// The whole record of a callee becomes the status, so that its origin, item
// and message reach the caller; false ends the work.
bool taken_over(SCMDSTATUS &st, const SCMDSTATUS &r, bool stops) noexcept {
    if (stops) st = r;
    return !stops;
}

}  // namespace

// Bits 16 to 23 of `mode` are this call's own: bit 16 makes an interaction
// without a calculator a success instead of code 20.  Nothing below sees
// them: the calculators, the validation, the grid test and the release all
// get the reduced word, and the companions' checks the trace bit alone.
// The report comes always, after the callee's own; then the set is freed.
SCMDSTATUS VLKXSCalc(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode) {
    const int32_t word = mode & VLKXS_MODE_CALC_MASK;
    return vlk::run(
        vlk::op::Calc, word,
        [&](SCMDSTATUS &st) {
            if (set == nullptr || calc == nullptr) return;
            if (vlk::severe(VLKProjIsValid(&set->proj, vlk::trace_bit(word)).level))
                return vlk::fail(st, VLKXS_C_BADPROJ);
            if (vlk::severe(VLKTargIsValid(&set->targ, vlk::trace_bit(word)).level))
                return vlk::fail(st, VLKXS_C_BADTARG);
            if (set->proj.type != VLKPROJ_ELECTRON && set->proj.type != VLKPROJ_ION) {
                // The name belongs to the projectile, which the release
                // below takes away: a caller can't read it after the return.
                vlk::fail(st, VLKXS_C_NOPROJ);
                st.item = set->proj.name;
                return;
            }
            const CalcRow *row = row_of(set->proj.type, set->IA);
            if (row == nullptr)
                return (mode & VLKXS_MODE_TOLERANT) != 0 ? vlk::succeed(st) : vlk::fail(st, VLKXS_C_IATYPE);
            if (row->calc == nullptr) return vlk::succeed(st);
            // A calculator's warning lets the work go on, and is not handed on.
            SCMDSTATUS r = row->calc(set, calc, word);
            if (!taken_over(st, r, vlk::is_error(r.level))) return;
            r = VLKXSIsValid(set, word);
            if (!taken_over(st, r, vlk::severe(r.level))) return;
            set->flag |= VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED;
            r = VLKXSIsEquivW(set, std::numeric_limits<double>::max(), word);
            if (!taken_over(st, r, vlk::severe(r.level))) return;
            vlk::succeed(st);
        },
        [&] { VLKXSFree(set, word); });
}
