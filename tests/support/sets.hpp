// Hand-made sets, every array a calloc block.  Until hand_over() the builder
// releases its blocks itself (a test may break the set at will); after it,
// VLKXSFree releases everything.
#pragma once

#include <cstdlib>
#include <cstring>
#include <new>
#include <set>
#include <vector>

#include "vlkxs.h"

namespace vlktest {

using Row = std::vector<double>;

class SetBuilder {
public:
    // An electron (or `proj_type`, a test projectile) in water, borrowed.
    explicit SetBuilder(int32_t dim, int32_t IA = 2, int32_t proj_type = VLKPROJ_ELECTRON) {
        VLKXSInit(&set, 0);
        set.dim = dim;
        set.IA = IA;
        set.proj = _VLKProjTest(proj_type);
        set.targ = _VLKTargTest(0, 0);
    }
    ~SetBuilder() {
        if (handed_) VLKXSFree(&set, 0);
        for (void *p : blocks_) std::free(p);
    }
    SetBuilder(const SetBuilder &) = delete;
    SetBuilder &operator=(const SetBuilder &) = delete;

    // Appends a shell with nE zero-filled records, or a null pE.
    SVLKXSSH &add_shell(int32_t number, int32_t nE, bool records = true) {
        const std::size_t n = static_cast<std::size_t>(set.nShell);
        SVLKXSSH *grown = block<SVLKXSSH>(n + 1);
        if (n > 0) std::memcpy(grown, set.pShell, n * sizeof(SVLKXSSH));
        blocks_.erase(set.pShell);
        std::free(set.pShell);
        set.pShell = grown;
        SVLKXSSH &sh = set.pShell[set.nShell++];
        sh.shell = number;
        sh.nE = nE;
        if (records) sh.pE = block<SVLKXSE>(static_cast<std::size_t>(nE > 0 ? nE : 0));
        return sh;
    }
    SVLKXSE &rec(int32_t i, int32_t j) { return set.pShell[i].pE[j]; }

    // A copy of `v` in a calloc block; null for an empty row.
    double *doubles(const Row &v) { return v.empty() ? nullptr : copy(v); }
    // A copy of `v`, or a zero-filled table of n row pointers.
    int32_t *ints(const std::vector<int32_t> &v) { return copy(v); }
    double **rows(std::size_t n) { return block<double *>(n); }
    // First level: grid, differential and cumulated values (empty: null).
    void sdcs(SVLKXSE &e, const Row &grid, const Row &sig, const Row &cum = {}) {
        e.n1 = static_cast<int32_t>(grid.size());
        e.dv1 = doubles(grid);
        e.dvSig1 = doubles(sig);
        e.dvCum1 = doubles(cum);
    }
    // Second level: one row of each table per point; `sig1` gives dvSig1.
    void ddcs(SVLKXSE &e, const Row &dv1, const std::vector<Row> &grid, const std::vector<Row> &sig,
              const std::vector<Row> &cum = {}, const Row &sig1 = {}) {
        const std::size_t n1 = dv1.size();
        e.n1 = static_cast<int32_t>(n1);
        e.dv1 = doubles(dv1);
        e.dvSig1 = doubles(sig1);
        e.nv2 = ints(std::vector<int32_t>(n1));
        e.pdv2 = rows(n1);
        e.pdvSig2 = rows(n1);
        e.pdvCum2 = cum.empty() ? nullptr : rows(n1);
        for (std::size_t k = 0; k < n1; ++k) {
            e.nv2[k] = static_cast<int32_t>(grid[k].size());
            e.pdv2[k] = doubles(grid[k]);
            e.pdvSig2[k] = doubles(sig[k]);
            if (!cum.empty()) e.pdvCum2[k] = doubles(cum[k]);
        }
    }

    // From now on the set owns its blocks, released with VLKXSFree.
    SVLKXS *hand_over() {
        handed_ = true;
        blocks_.clear();
        return &set;
    }

    SVLKXS set{};

private:
    template <class T>
    T *block(std::size_t count) {
        void *p = std::calloc(count > 0 ? count : 1, sizeof(T));
        if (p == nullptr) throw std::bad_alloc();
        if (!handed_) blocks_.insert(p);
        return static_cast<T *>(p);
    }
    template <class T>
    T *copy(const std::vector<T> &v) {
        T *p = block<T>(v.size());
        if (!v.empty()) std::memcpy(p, v.data(), v.size() * sizeof(T));
        return p;
    }
    std::set<void *> blocks_;
    bool handed_ = false;
};

}  // namespace vlktest
