// Hand-made sets for the tests of the consistency and completion code.
// Every array is a calloc block, as in a set that the library made.  Until
// hand_over() the builder keeps track of its blocks and releases them itself,
// so that a test may break counts and pointers of the set at will; after
// hand_over() the set owns them and VLKXSFree releases everything.
#pragma once

#include <set>
#include <vector>

#include "vlkxs.h"

namespace vlktest {

using Row = std::vector<double>;

class SetBuilder {
public:
    // An electron (or `proj_type`, a test projectile) in water.
    explicit SetBuilder(int32_t dim, int32_t IA = 2, int32_t proj_type = VLKPROJ_ELECTRON);
    ~SetBuilder();
    SetBuilder(const SetBuilder &) = delete;
    SetBuilder &operator=(const SetBuilder &) = delete;

    // Appends a shell of the given number with nE zero-filled records, or
    // with a null pE if `records` is false.
    SVLKXSSH &add_shell(int32_t number, int32_t nE, bool records = true);
    SVLKXSE &rec(int32_t i, int32_t j) { return set.pShell[i].pE[j]; }

    // A copy of `v` in a calloc block; null for an empty row.
    double *doubles(const Row &v);
    // A copy of `v`, or a zero-filled table of n row pointers.
    int32_t *ints(const std::vector<int32_t> &v);
    double **rows(std::size_t n);
    // First level: grid, differential and cumulated values (an empty row
    // leaves its array null).  n1 is the size of the grid.
    void sdcs(SVLKXSE &e, const Row &grid, const Row &sig, const Row &cum = {});
    // Second level of every point: one row of each table per point, with
    // nv2[k] the size of grid row k.  `sig1` gives dvSig1 (may be empty).
    void ddcs(SVLKXSE &e, const Row &dv1, const std::vector<Row> &grid, const std::vector<Row> &sig,
              const std::vector<Row> &cum = {}, const Row &sig1 = {});

    // From now on the set owns its blocks (for operations that reallocate
    // or add to them); the builder releases it with VLKXSFree.
    SVLKXS *hand_over();

    SVLKXS set{};

private:
    void *block(std::size_t count, std::size_t size);
    std::set<void *> blocks_;
    bool handed_ = false;
};

}  // namespace vlktest
