// Temporary: the calculators answer "no such calculation method" until the
// models land.
#include "vlkxs.h"
#include "core/status.hpp"

namespace {
SCMDSTATUS none(const char *tag) {
    SCMDSTATUS s = vlk::start_status(tag);
    vlk::fail(s, VLKXS_C_NOMETHOD);
    return s;
}
}  // namespace

SCMDSTATUS VLKXSCalcEL(SVLKXS *, const SVLKXSCALC *, int32_t) { return none("vlkxs(CalcEL)"); }
SCMDSTATUS VLKXSCalcEI(SVLKXS *, const SVLKXSCALC *, int32_t) { return none("vlkxs(CalcEI)"); }
SCMDSTATUS VLKXSCalcEX(SVLKXS *, const SVLKXSCALC *, int32_t) { return none("vlkxs(CalcEX)"); }
SCMDSTATUS VLKXSCalcII(SVLKXS *, const SVLKXSCALC *, int32_t) { return none("vlkxs(CalcII)"); }
SCMDSTATUS VLKXSCalcIX(SVLKXS *, const SVLKXSCALC *, int32_t) { return none("vlkxs(CalcIX)"); }
