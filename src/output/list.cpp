// The summary listing of a valid set, through the protocol printer.
#include <cstdio>

#include "core/core.hpp"

namespace {

constexpr int32_t kHead = 0x30000;   // class word of the first line of the block, marked "<I>"
constexpr int32_t kMore = 0x130000;  // class word of every other line

// One line at a time into the same 256-character buffer.
class Lines {
public:
    template <class... Args>
    void put(int32_t cls, const char *format, Args... args) {
        std::snprintf(buf_, sizeof buf_, format, args...);
        _prtcl(buf_, cls);
    }

private:
    char buf_[256] = {};
};

}  // namespace

SCMDSTATUS VLKXSList(SVLKXS *set, int32_t mode) {
    return vlk::run(vlk::op::List, mode, [&](SCMDSTATUS &st) {
        if (set == nullptr) return;
        if (!vlk::in_turn(st, set, mode, {vlk::is_valid, VLKXSStrFromIAType})) return;
        Lines out;
        out.put(kMore, "                     space = %lu bytes", static_cast<unsigned long>(set->space));
        out.put(kHead, "<I>             projectile = %.80s", vlk::printable(set->proj.name));
        out.put(kMore, "                    target = %.80s", vlk::printable(set->targ.name));
        out.put(kMore, "               interaction = %s", set->IAtag);
        out.put(kMore, "    # of electronic shells = %d", set->nShell);
        for (const SVLKXSSH &sh : vlk::shells(*set)) {
            out.put(kMore, "                      shell #%d", sh.shell);
            out.put(kMore, "     # of primary energies = %d", sh.nE);
            for (const SVLKXSE &e : vlk::records(sh)) {
                out.put(kMore, "     # of secondaries (d1) = %d", e.n1);
                for (int32_t k = 0; e.nv2 != nullptr && k < e.n1; ++k)
                    out.put(kMore, "     # of secondaries (d2) = %d", e.nv2[k]);
            }
        }
        vlk::succeed(st);
    });
}
