#include "fake_companions.hpp"

#include <cstring>

#include "vlkxs.h"

namespace fake {
namespace {

Layer g_layer;

// Binding energies (keV) of a water-like target, rows 0 to 5.
SVLKTARGSH g_rows[6] = {{0.01261, 0, 10}, {0.01261, 0.0159, 2}, {0.01478, 0.0408, 2},
                        {0.01855, 0.0327, 2}, {0.03219, 0.0711, 2}, {0.5397, 0.7957, 2}};

SCMDSTATUS status(int32_t code) {
    SCMDSTATUS s{};
    s.code = code;
    s.level = code == 0 ? 0u : VLKXS_LEVEL_ERROR;
    s.col = -1;
    s.origin = "fake";
    return s;
}

}  // namespace

Layer &layer() { return g_layer; }
void reset() { g_layer = Layer{}; }

}  // namespace fake

using fake::g_layer;
using fake::status;

namespace {

// Init, Free and Space alike for both records: zero-fill or size, counted.
template <class Rec>
SCMDSTATUS wipe(Rec *r, int &calls) {
    ++calls;
    if (r != nullptr) std::memset(r, 0, sizeof *r);
    return status(r != nullptr ? 0 : VLKXS_C_BADADDR);
}
template <class Rec>
SCMDSTATUS size(Rec *r) {
    if (r != nullptr) r->space = sizeof *r;
    return status(0);
}
// A byte copy (the fake's records borrow everything), or a failure that
// leaves `d` zero-filled.
template <class Rec>
SCMDSTATUS dup(Rec *d, const Rec *s, bool fails, int &calls) {
    ++calls;
    if (fails) {
        std::memset(d, 0, sizeof *d);
        return status(VLKXS_C_RUNTIME);
    }
    std::memmove(d, s, sizeof *d);
    return status(0);
}

}  // namespace

SCMDSTATUS VLKProjInit(SVLKPROJ *p, int32_t) { return wipe(p, g_layer.proj_init); }
SCMDSTATUS VLKProjFree(SVLKPROJ *p, int32_t) { return wipe(p, g_layer.proj_free); }
SCMDSTATUS VLKProjSpace(SVLKPROJ *p, int32_t) { return size(p); }
SCMDSTATUS VLKProjDup(SVLKPROJ *d, const SVLKPROJ *s, int32_t) {
    return dup(d, s, g_layer.fail_proj_dup, g_layer.proj_dup);
}
SCMDSTATUS VLKProjIsValid(const SVLKPROJ *p, int32_t m) {
    g_layer.is_valid_mode = m;
    return status(g_layer.invalid_projectile || p == nullptr || p->name == nullptr ? VLKXS_C_BADPROJ : 0);
}
SCMDSTATUS VLKProjInspect(const SVLKPROJ *, int32_t) { return status(0); }
SCMDSTATUS VLKProjFromStr(SVLKPROJ *p, const char *, int32_t) {
    ++g_layer.proj_from_str;
    std::memset(p, 0, sizeof *p);
    if (g_layer.refuse_projectile) return status(VLKXS_C_NOPROJ);
    p->type = VLKPROJ_ELECTRON;
    p->name = const_cast<char *>("fake electron");
    p->symbol = const_cast<char *>("e");
    return status(0);
}
SVLKPROJ _VLKProjTest(int32_t) {
    SVLKPROJ p{};
    VLKProjFromStr(&p, "e", 0);
    return p;
}

SCMDSTATUS VLKTargInit(SVLKTARG *t, int32_t) { return wipe(t, g_layer.targ_init); }
SCMDSTATUS VLKTargFree(SVLKTARG *t, int32_t) { return wipe(t, g_layer.targ_free); }
SCMDSTATUS VLKTargSpace(SVLKTARG *t, int32_t) { return size(t); }
SCMDSTATUS VLKTargDup(SVLKTARG *d, const SVLKTARG *s, int32_t) {
    return dup(d, s, g_layer.fail_targ_dup, g_layer.targ_dup);
}
SCMDSTATUS VLKTargIsValid(const SVLKTARG *t, int32_t m) {
    g_layer.is_valid_mode = m;
    return status(g_layer.invalid_target || t == nullptr || t->name == nullptr ? VLKXS_C_BADTARG : 0);
}
SCMDSTATUS VLKTargInspect(const SVLKTARG *, int32_t) { return status(0); }
SCMDSTATUS VLKTargImportMaterial(SVLKTARG *t, const char *, int32_t) {
    ++g_layer.targ_import;
    std::memset(t, 0, sizeof *t);
    if (g_layer.refuse_material) return status(VLKXS_C_NOMATERIAL);
    t->name = const_cast<char *>("fake water");
    t->M = 18.0153;
    t->nShell = 5;
    t->pShell = fake::g_rows;
    return status(0);
}
SVLKTARG _VLKTargTest(int32_t, int32_t) {
    SVLKTARG t{};
    VLKTargImportMaterial(&t, "H2O", 0);
    return t;
}
