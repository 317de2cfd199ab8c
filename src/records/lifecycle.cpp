// Beginning, end, size and switch of a set.
#include "core/core.hpp"

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <utility>


namespace {

using vlk::succeed;

// Releases every block below one energy record.  Each pointer is tested, so
// that a record of any stage of completeness, or one that a failed operation
// left half built, is walked safely.
void release_energy(SVLKXSE &e) noexcept {
    // A record of a total cross section has no arrays at all, and a set may
    // hold millions of them: skip the calls to free() for nothing.
    if (e.dv1 == nullptr && e.dvSig1 == nullptr && e.dvCum1 == nullptr && e.nv2 == nullptr && e.pdv2 == nullptr &&
        e.pdvSig2 == nullptr && e.pdvCum2 == nullptr)
        return;
    for (int32_t k = 0; k < e.n1; ++k) {
        if (e.pdv2 != nullptr) std::free(e.pdv2[k]);
        if (e.pdvSig2 != nullptr) std::free(e.pdvSig2[k]);
        if (e.pdvCum2 != nullptr) std::free(e.pdvCum2[k]);
    }
    std::free(e.dv1);
    std::free(e.dvSig1);
    std::free(e.dvCum1);
    std::free(e.nv2);
    std::free(e.pdv2);
    std::free(e.pdvSig2);
    std::free(e.pdvCum2);
}

void release_tree(SVLKXS &set) noexcept {
    for (SVLKXSSH &sh : vlk::shells(set)) {
        for (SVLKXSE &e : vlk::records(sh)) release_energy(e);
        std::free(sh.pE);
    }
    std::free(set.pShell);
}

// Bytes of one energy record and everything it points at.  The tables of
// row pointers add nothing of their own; rows count by their contents.
uint64_t energy_bytes(const SVLKXSE &e) noexcept {
    uint64_t bytes = sizeof(SVLKXSE);
    const uint64_t n1 = vlk::count_of(e.n1);
    for (const double *a : {e.dv1, e.dvSig1, e.dvCum1})
        if (a != nullptr) bytes += n1 * sizeof(double);
    if (e.nv2 != nullptr) {
        bytes += n1 * sizeof(int32_t);
        for (uint64_t k = 0; k < n1; ++k) {
            const uint64_t n2 = vlk::count_of(e.nv2[k]);
            for (double **rows : {e.pdv2, e.pdvSig2, e.pdvCum2})
                if (rows != nullptr && rows[k] != nullptr) bytes += n2 * sizeof(double);
        }
    }
    return bytes;
}

}  // namespace

SCMDSTATUS VLKXSInit(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Init, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        std::memset(set, 0, sizeof *set);
        VLKProjInit(&set->proj, vlk::trace_bit(mode));
        VLKTargInit(&set->targ, vlk::trace_bit(mode));
        succeed(st);
    });
}

SCMDSTATUS VLKXSFree(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Free, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        // A shallow set borrows everything it points at: wipe the record only.
        if ((set->flag & VLKXS_FLAG_SHALLOW) == 0) {
            VLKProjFree(&set->proj, vlk::trace_bit(mode));
            VLKTargFree(&set->targ, vlk::trace_bit(mode));
            std::free(set->infile);
            set->infile = nullptr;
            release_tree(*set);
        }
        VLKXSInit(set, mode);
        succeed(st);
    });
}

SCMDSTATUS VLKXSSpace(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Space, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        uint64_t bytes = sizeof(SVLKXS);
        if (set->infile != nullptr) bytes += std::strlen(set->infile) + 1;
        // The companions count their own records, which already lie inside
        // the set: take those out again.
        VLKProjSpace(&set->proj, vlk::trace_bit(mode));
        bytes += set->proj.space;
        bytes -= sizeof(SVLKPROJ);
        VLKTargSpace(&set->targ, vlk::trace_bit(mode));
        bytes += set->targ.space;
        bytes -= sizeof(SVLKTARG);
        for (const SVLKXSSH &sh : vlk::shells(std::as_const(*set))) {
            bytes += sizeof(SVLKXSSH);
            for (const SVLKXSE &e : vlk::records(sh)) bytes += energy_bytes(e);
        }
        // The field is 32 bits wide; a larger set keeps the low bits.
        set->space = static_cast<uint32_t>(bytes);
        succeed(st);
    });
}

SCMDSTATUS VLKXSEnable(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Enable, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        set->flag |= VLKXS_FLAG_ENABLED;
        succeed(st);
    });
}

SCMDSTATUS VLKXSDisable(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::Disable, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        set->flag &= ~VLKXS_FLAG_ENABLED;
        succeed(st);
    });
}
