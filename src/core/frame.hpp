// The frame of every operation of the module: trace line in, start status,
// the work, the report rule, clean-up after a failure, trace line out.
// Operations are thin shells over `run`.
#pragma once

#include <initializer_list>
#include <new>

#include "core/status.hpp"
#include "vlkxs.h"

namespace vlk {

// Which failures an operation reports through VLKXSError.
enum class Report { UnlessQuiet, Always, Never };

struct Op {
    const char *tag;  // origin tag, also the text of the trace lines
    Report report;
};

// One row per operation; the tag text is what callers see in `origin`.
namespace op {
inline constexpr Op Error{"vlkxs(Error)", Report::Never};
inline constexpr Op TestTCS{"vlkxs(_TestTCS)", Report::Never};
inline constexpr Op TestL{"vlkxs(_TestL)", Report::Never};
inline constexpr Op TestSDCS{"vlkxs(_TestSDCS)", Report::Never};
inline constexpr Op TestDDCS{"vlkxs(_TestDDCS)", Report::Never};
inline constexpr Op IsEquivW{"vlkxs(IsEquivW)", Report::UnlessQuiet};
inline constexpr Op Enable{"vlkxs(Enable)", Report::Always};
inline constexpr Op Disable{"vlkxs(Disable)", Report::Always};
inline constexpr Op StrFromIADim{"vlkxs(StrFromIADim)", Report::Always};
inline constexpr Op IADimFromStr{"vlkxs(IADimFromFromStr)", Report::Always};
inline constexpr Op StrFromIAType{"vlkxs(StrFromIAType)", Report::Always};
inline constexpr Op ColFromIAType{"vlkxs(ColFromIAType)", Report::Always};
inline constexpr Op IATypeFromStr{"vlkxs(IATypeFromStr)", Report::Always};
inline constexpr Op CalcInspect{"vlkxs(CalcInspect)", Report::UnlessQuiet};
inline constexpr Op CalcFree{"vlkxs(CalcFree)", Report::Never};
inline constexpr Op Space{"vlkxs(Space)", Report::UnlessQuiet};
inline constexpr Op IsValid{"vlkxs(IsValid)", Report::UnlessQuiet};
inline constexpr Op Write{"vlkxs(Write)", Report::Always};
inline constexpr Op List{"vlkxs(List)", Report::UnlessQuiet};
inline constexpr Op Inspect{"vlkxs(Inspect)", Report::Always};
inline constexpr Op Init{"vlkxs(Init)", Report::Never};
inline constexpr Op Free{"vlkxs(Free)", Report::Never};
inline constexpr Op Read{"vlkxs(Read)", Report::UnlessQuiet};
inline constexpr Op Exportgd{"vlkxs(Exportgd)", Report::Always};
inline constexpr Op Dup{"vlkxs(Dup)", Report::Always};
inline constexpr Op Complete{"vlkxs(Complete)", Report::Always};
inline constexpr Op Calc{"vlkxs(Calc)", Report::Always};
inline constexpr Op CalcMethodFromStr{"vlkxs(CalcMethodFromStr)", Report::UnlessQuiet};
inline constexpr Op CalcLimitsFromStr{"vlkxs(CalcLimitsFromStr)", Report::UnlessQuiet};
inline constexpr Op CalcEL{"vlkxs(CalcEL)", Report::UnlessQuiet};
inline constexpr Op CalcEI{"vlkxs(CalcEI)", Report::UnlessQuiet};
inline constexpr Op CalcEX{"vlkxs(CalcEX)", Report::UnlessQuiet};
inline constexpr Op CalcII{"vlkxs(CalcII)", Report::UnlessQuiet};
inline constexpr Op CalcIX{"vlkxs(CalcIX)", Report::UnlessQuiet};
inline constexpr Op Sigma{"vlkxs(Sigma)", Report::UnlessQuiet};
inline constexpr Op SampleShell{"vlkxs(SampleShell)", Report::UnlessQuiet};
inline constexpr Op SampleW{"vlkxs(SampleW)", Report::UnlessQuiet};
inline constexpr Op SampleCos{"vlkxs(SampleCos)", Report::UnlessQuiet};
inline constexpr Op Ekin{"vlkxs(Ekin)", Report::UnlessQuiet};
}  // namespace op

constexpr bool reports(Report rule, int32_t mode) noexcept {
    return rule == Report::Always || (rule == Report::UnlessQuiet && !quiet(mode));
}

// Takes over the outcome of another operation in the manner "code and level
// only": the location fields and origin stay the caller's.
inline void take_code(SCMDSTATUS &own, const SCMDSTATUS &other) noexcept {
    own.code = other.code;
    own.level = other.level;
}

// Other operations run in turn on a set with the caller's mode word, as the
// writers of files and the listing begin: the first one that fails has its
// code and level taken over, and false ends the caller's work.
using SetStep = SCMDSTATUS (*)(SVLKXS *, int32_t);
inline SCMDSTATUS is_valid(SVLKXS *set, int32_t mode) noexcept { return VLKXSIsValid(set, mode); }
inline bool in_turn(SCMDSTATUS &own, SVLKXS *set, int32_t mode, std::initializer_list<SetStep> steps) noexcept {
    for (SetStep step : steps) {
        const SCMDSTATUS r = step(set, mode);
        if (severe(r.level)) {
            take_code(own, r);
            return false;
        }
    }
    return true;
}

struct NoCleanup {
    void operator()() const noexcept {}
};

// Runs `body(status)` inside the frame.  The body starts from the start
// status and calls succeed() once it has done its work.  An exception that
// escapes it (only std::bad_alloc can) becomes "run time system error".  A
// record whose level isn't 0 is reported by the operation's rule, and then
// `on_failure` runs: the report comes first, the clean-up second.
template <class Body, class OnFailure = NoCleanup>
SCMDSTATUS run(const Op &o, int32_t mode, Body &&body, OnFailure &&on_failure = {}) noexcept {
    trace_enter(o.tag, mode);
    SCMDSTATUS st = start_status(o.tag);
    try {
        body(st);
    } catch (...) {
        fail(st, VLKXS_C_RUNTIME);
    }
    if (st.level != 0) {
        if (reports(o.report, mode)) VLKXSError(&st, trace_bit(mode));
        on_failure();
    }
    trace_leave(o.tag, mode);
    return st;
}

}  // namespace vlk
