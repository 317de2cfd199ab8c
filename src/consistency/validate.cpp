// Validation of a set: sound companions, every table its dimension calls
// for, no negative cross section, and cumulated tables in [0, 1] that never
// fall.  The first fault ends the walk; the location text names the record
// by its indices.
#include "core/core.hpp"

#include <charconv>
#include <cstddef>
#include <string_view>

namespace {

// The location text of the last failed validation of this thread.  The
// returned record points at it, and VLKXSCalc reports that record after the
// call, so it has to outlive the call; 132 characters hold the longest text
// (88) with room to spare.
thread_local vlk::FixedText<132> t_location;

// Builds a location text such as "Shell[0].E[1].SigTot=-1E-20" in
// t_location, piece by piece.
class Location {
public:
    Location() { t_location.clear(); }
    Location &text(std::string_view s) {
        t_location.append(s);
        return *this;
    }
    Location &index(std::string_view name, int32_t i) {
        text(name).text("[");
        char digits[12];
        const auto r = std::to_chars(digits, digits + sizeof digits, i);
        return text({digits, static_cast<std::size_t>(r.ptr - digits)}).text("]");
    }
    Location &value(double v) {
        char g[vlk::kWriteGMax];
        return text({g, vlk::write_g(g, v)});
    }
    const char *c_str() const { return t_location.c_str(); }
};

Location shell_at(int32_t i) { return Location().index("Shell", i); }
Location record_at(int32_t i, int32_t j) { return shell_at(i).text(".").index("E", j); }

// A failure with a location text; itemlen 0 marks `item` as terminated.
bool fail_at(SCMDSTATUS &st, int32_t code, const Location &where) {
    vlk::fail(st, code);
    st.item = where.c_str();
    st.itemlen = 0;
    return false;
}

// One value of a cumulated table: range first, then no decrease against the
// value before (0 before the first point).  Every test is an ordered
// comparison, so a NaN passes, and so does the value after it.  `where()`
// gives the location up to and including the "=".
template <class Where>
bool rising(SCMDSTATUS &st, int32_t code, double v, double &before, Where &&where) {
    if (v < 0.0 || v > 1.0) return fail_at(st, code, where().value(v));
    if (v < before) return fail_at(st, code, where().value(v).text(" ").value(before));
    before = v;
    return true;
}

// The second level of point k of record (i, j), for a set of dim 2 or more.
bool check_point_rows(SCMDSTATUS &st, const SVLKXSE &e, int32_t i, int32_t j, int32_t k) {
    // A set with the second-level tables but no counts can't be walked: it
    // is refused like one that lacks a table.
    if (e.pdv2 == nullptr || e.pdvSig2 == nullptr || e.pdvCum2 == nullptr || e.nv2 == nullptr)
        return fail_at(st, VLKXS_C_DDCS_TABLE, record_at(i, j));
    const struct {
        double *const *rows;
        const char *name;
    } tables[] = {{e.pdv2, "d2"}, {e.pdvSig2, "Sig2"}, {e.pdvCum2, "Cum2"}};
    for (const auto &t : tables)
        if (t.rows[k] == nullptr) return fail_at(st, VLKXS_C_DDCS_TABLE, record_at(i, j).text(".").index(t.name, k));
    const auto row = [&](const char *name, int32_t m) {
        return record_at(i, j).text(".").index(name, k).index("", m).text("=");
    };
    double before = 0.0;
    for (int32_t m = 0; m < e.nv2[k]; ++m) {
        const double v = e.pdvSig2[k][m];
        if (v < 0.0) return fail_at(st, VLKXS_C_DDCS_VALUE, row("Sig2", m).value(v));
        if (!rising(st, VLKXS_C_DDCS_CUM, e.pdvCum2[k][m], before, [&] { return row("Cum2", m); })) return false;
    }
    return true;
}

bool check_record(SCMDSTATUS &st, const SVLKXSE &e, int32_t dim, int32_t i, int32_t j) {
    if (e.E < 0.0) return fail_at(st, VLKXS_C_ENERGY, record_at(i, j).text(".E=").value(e.E));
    if (e.sigtot < 0.0) return fail_at(st, VLKXS_C_SIGTOT, record_at(i, j).text(".SigTot=").value(e.sigtot));
    if (dim <= 0) return true;
    if (e.dv1 == nullptr || e.dvSig1 == nullptr || e.dvCum1 == nullptr)
        return fail_at(st, VLKXS_C_SDCS_TABLE, record_at(i, j));
    const auto point = [&](const char *name, int32_t k) { return record_at(i, j).text(".").index(name, k).text("="); };
    double before = 0.0;
    for (int32_t k = 0; k < e.n1; ++k) {
        const double v = e.dvSig1[k];
        if (v < 0.0) return fail_at(st, VLKXS_C_SDCS_VALUE, point("Sig1", k).value(v));
        if (!rising(st, VLKXS_C_SDCS_CUM, e.dvCum1[k], before, [&] { return point("Cum1", k); })) return false;
        // The second level of point k is checked before point k + 1.
        if (dim >= 2 && !check_point_rows(st, e, i, j, k)) return false;
    }
    return true;
}

}  // namespace

SCMDSTATUS VLKXSIsValid(const SVLKXS *set, int32_t mode) {
    t_location.clear();
    return vlk::run(vlk::op::IsValid, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        const int32_t check = vlk::trace_bit(mode) | VLKXS_MODE_CHECK;
        if (vlk::severe(VLKProjIsValid(&set->proj, check).level)) return vlk::fail(st, VLKXS_C_BADPROJ);
        if (vlk::severe(VLKTargIsValid(&set->targ, check).level)) return vlk::fail(st, VLKXS_C_BADTARG);
        const auto shells = vlk::shells(*set);
        if (shells.empty()) return vlk::fail(st, VLKXS_C_NSHELL);
        for (std::size_t i = 0; i < shells.size(); ++i) {
            const auto records = vlk::records(shells[i]);
            if (records.empty()) {
                fail_at(st, VLKXS_C_NE, shell_at(static_cast<int32_t>(i)));
                return;
            }
            for (std::size_t j = 0; j < records.size(); ++j)
                if (!check_record(st, records[j], set->dim, static_cast<int32_t>(i), static_cast<int32_t>(j))) return;
        }
        vlk::succeed(st);
    });
}
