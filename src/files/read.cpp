// The multi-pass reader of xs files.
//
// The file is loaded once; then every pass walks its lines with the same
// line handling and the same table of states, and learns one more level of
// counts.  After each pass the next level of arrays is allocated with its
// final size, and the last pass converts the data lines and stores them.
// Nothing is ever reallocated.  The first pass notes the runs of data lines
// between tag lines; the passes that only count them step over each run in
// one go, so that only the first and the last pass look at every line.
//
//   pass | dim 0               | dim 1                | dim 2
//   0    | header, companions, number of shells (all dimensions)
//   1    | shell numbers; records per shell (data lines or "!eproj")
//   2    | data stored         | E, km; points/record | E, km; "!esec"/record
//   3    |                     | data stored          | dv1; rows per "!esec"
//   4    |                     |                      | data stored
#include "core/core.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "files/format.hpp"
#include "files/repeats.hpp"

namespace {

using namespace vlk::xs;

// A terminated copy of a tag's argument, for the routines that take texts
// (word splitting, the companions): one block, reused for every tag line.
class ArgCopy {
public:
    // Null if the block couldn't grow.
    char *take(std::string_view arg) noexcept {
        if (!buf_.reserve(arg.size() + 1)) return nullptr;
        char *p = buf_.data();
        std::memcpy(p, arg.data(), arg.size());
        p[arg.size()] = '\0';
        return p;
    }

private:
    vlk::Buffer<char> buf_;
};

// A run of data lines with no tag line among them, noted in the first pass.
// The passes that only count data lines take a run in one step: after its
// first line the state stays what it is, so only the count of its data lines
// and the lines it spans matter.
struct Run {
    int32_t first;  // line number of its first data line
    int32_t data;   // data lines in it
    int32_t span;   // lines from the first data line to the last, both included
};

// The file memory record, closed on every way out of the read.
struct FileMemory {
    SUFILEMEM fm{};
    int32_t trace;
    explicit FileMemory(int32_t t) : trace(t) { uFileMemInit(&fm, trace); }
    ~FileMemory() { uFileMemClose(&fm, trace); }
    FileMemory(const FileMemory &) = delete;
    FileMemory &operator=(const FileMemory &) = delete;
};

// The offending line of a failed read outlives the file image: the returned
// record points at this copy, which stays until the thread's next failed
// read.  A fixed buffer, so that keeping the line can't fail when memory is
// short; a longer line is cut to its first 511 bytes.
thread_local vlk::FixedText<512> t_line;

class Reader {
public:
    Reader(SVLKXS &set, const char *path, int32_t mode, SCMDSTATUS &st, SUFILEMEM &fm)
        : set_(set), path_(path), mode_(mode), trace_(vlk::trace_bit(mode)), st_(st), fm_(fm) {}

    // All passes and the work at their ends.  False with the running record
    // holding the failure.
    bool run() {
        for (pass_ = 0; pass_ < npass_; ++pass_) {
            if (!walk()) return false;
            if (!end_of_pass()) return false;
        }
        return true;
    }

private:
    bool fail(int32_t code) {
        vlk::fail(st_, code);
        return false;
    }
    bool last_pass() const { return pass_ == npass_ - 1; }
    SVLKXSSH &shell() { return set_.pShell[cur_shell_]; }
    SVLKXSE &energy() { return shell().pE[cur_e_]; }

    void warn(SCMDSTATUS copy, int32_t code) {
        copy.code = code;
        copy.level = vlk::kLevelWarning;
        copy.origin = vlk::op::Read.tag;
        VLKXSError(&copy, trace_);
    }

    int8_t next_state(int32_t kind) const { return bvStateTable[dim_][kind][state_]; }

    void reset_counts() {
        cnt_shell_ = cur_shell_ = cnt_e_ = cur_e_ = cnt1_ = cur1_ = cnt2_ = 0;
    }

    // The running record at the line just delivered.
    void locate() {
        st_.line = iline_;
        st_.text = fm_.pLine;
        st_.textlen = static_cast<int32_t>(fm_.nLine);
    }
    // The loops over runs touch each line once, in order, long after the
    // image was read: fetching the text a little ahead keeps the number
    // conversion from waiting on memory.  A hint only, harmless past the end.
    void ahead() const {
#if defined(__GNUC__)
        __builtin_prefetch(fm_.pLine + 1024);
#endif
    }
    // The current line without its leading blanks: enough to classify it,
    // and to read its numbers, which end at blanks anyway.
    std::string_view current_front() const {
        std::string_view s(fm_.pLine, fm_.nLine);
        while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
        return s;
    }

    bool walk() {
        st_.file = path_;
        uFileMemLineFirst(&fm_, trace_);
        iline_ = 0;
        state_ = 0;
        cnt_shell_ = cur_shell_ = cnt_e_ = cur_e_ = 0;
        next_run_ = 0;
        bool more = uFileMemLineNext(&fm_, trace_) == 0;
        while (more) {
            ++iline_;
            locate();
            // Trailing blanks matter to tag lines alone: numbers end at them.
            const std::string_view line = current_front();
            bool pending = false;  // a run ended at a line delivered but not yet handled
            switch (classify(line)) {
                case LineKind::Empty:
                case LineKind::Comment: break;
                case LineKind::Tag:
                    if (!tag_line(trim_blanks(line))) return false;
                    break;
                case LineKind::Data: {
                    const bool shown = itag_ != kUnknownTag;
                    if (!data_line(line)) return false;
                    if (shown && !vlk::traced(mode_) && !rest_of_run(pending)) return false;
                    break;
                }
            }
            more = pending || uFileMemLineNext(&fm_, trace_) == 0;
        }
        st_.line = 0;
        st_.text = nullptr;
        st_.textlen = 0;
        return true;
    }

    // The data lines behind the first of a run, which data_line() has taken,
    // in one go: each of them leaves the state as it is, so only counting
    // and storing remain.  Without trace lines to write for each line, the
    // first pass notes the run, the counting passes step over it, and the
    // last pass stores its rows.
    bool rest_of_run(bool &pending) {
        if (pass_ == 0) return note_run(pending);
        if (next_run_ >= nruns_ || runs_[next_run_].first != iline_) return true;
        const Run &r = runs_[next_run_++];
        if (last_pass()) return state_ == 11 || store_run(r);
        if (r.data > 1 && state_ != 11 && pass_ >= dim_ + 1) count_rows(r.data - 1);
        iline_ += uFileMemLineSkip(&fm_, r.span - 1, trace_);
        return true;
    }

    // Reads on up to the next tag line, which is left pending, or the end.
    bool note_run(bool &pending) {
        if (!runs_.reserve(static_cast<std::size_t>(nruns_) + 1)) return fail(VLKXS_C_RUNTIME);
        Run &r = runs_[static_cast<std::size_t>(nruns_++)];
        r = Run{iline_, 1, 1};
        int32_t i = iline_;
        while (uFileMemLineNext(&fm_, trace_) == 0) {
            ahead();
            const LineKind kind = classify(current_front());
            if (kind == LineKind::Tag) {
                pending = true;
                break;
            }
            ++i;
            if (kind == LineKind::Data) {
                ++r.data;
                r.span = i - r.first + 1;
            }
        }
        iline_ = i;
        return true;
    }

    // The last pass: the rows behind the first of a run, stored straight into
    // the table they belong to, and counted at the end.
    bool store_run(const Run &r) {
        int32_t rows = 0;
        bool ok = true;
        switch (dim_) {
            case 0: {
                SVLKXSSH &sh = shell();
                SVLKXSE *e = sh.pE + cnt_e_;
                const bool km = sh.shell == 0;
                ok = store_lines(r.span, [&](const double *v) {
                    e->E = v[0];
                    e->sigtot = v[1];
                    if (km) e->km = v[2];
                    ++e;
                    ++rows;
                });
                break;
            }
            case 1: {
                SVLKXSE &e = energy();
                double *x = e.dv1 + cnt1_, *y = e.dvSig1 + cnt1_;
                ok = store_lines(r.span, [&](const double *v) {
                    *x++ = v[0];
                    *y++ = v[1];
                    ++rows;
                });
                break;
            }
            default: {
                SVLKXSE &e = energy();
                double *x = e.pdv2[cur1_] + cnt2_, *y = e.pdvSig2[cur1_] + cnt2_;
                ok = store_lines(r.span, [&](const double *v) {
                    *x++ = v[0];
                    *y++ = v[1];
                    ++rows;
                });
                break;
            }
        }
        if (rows > 0) count_rows(rows);
        return ok;
    }

    template <class Put>
    bool store_lines(int32_t span, Put &&put) {
        for (int32_t n = 1; n < span; ++n) {
            if (uFileMemLineNext(&fm_, trace_) != 0) break;
            ++iline_;
            ahead();
            const std::string_view line = current_front();
            if (classify(line) != LineKind::Data) continue;
            double v[3] = {0, 0, 0};
            if (!numbers(line, v)) {
                locate();
                return false;
            }
            put(v);
        }
        return true;
    }

    bool tag_line(std::string_view line) {
        const int32_t tag = match_tag(line);
        if (tag == kUnknownTag) {
            // The file stays readable: warn, and hide the data lines below.
            warn(st_, VLKXS_C_R_UNKNOWNTAG);
            itag_ = kUnknownTag;
            return true;
        }
        itag_ = tag;
        const std::string_view arg = tag_argument(line, tag);
        // Only the texts need a terminated copy; numbers are read in place.
        char *copy = nullptr;
        if (tag == 0 || (pass_ == 0 && (tag == 3 || tag == 4))) {
            copy = arg_.take(arg);
            if (copy == nullptr) return fail(VLKXS_C_RUNTIME);
        }
        if (vlk::traced(mode_)) std::fprintf(stderr, "<D> %d %d =>", tag, state_);
        const int8_t next = next_state(tag);
        if (vlk::traced(mode_)) std::fprintf(stderr, " %d\n", next);
        state_ = next;
        if (next < 0) return fail(VLKXS_C_R_SYNTAX);
        switch (tag) {
            case 0: return filetype(copy);
            case 1: return fileversion(arg);
            case 2: return true;
            case 3: return target(copy);
            case 4: return projectile(copy);
            case 5: return shell_tag(arg);
            case 6: return eproj(arg);
            default: return esec(arg);
        }
    }

    bool filetype(char *copy) {
        char *words[3] = {nullptr, nullptr, nullptr};
        if (c2vc(copy, words, 1, 3) <= 2 || stricnb(words[0], "xs") != 0) return fail(VLKXS_C_R_FILETYPE);
        SCMDSTATUS r = VLKXSIATypeFromStr(&set_, words[1], mode_);
        if (vlk::severe(r.level)) return vlk::take_code(st_, r), false;
        r = VLKXSIADimFromStr(&set_, words[2], mode_);
        if (vlk::severe(r.level)) return vlk::take_code(st_, r), false;
        dim_ = set_.dim;
        npass_ = 3 + dim_;
        return true;
    }

    // The argument of a tag is tested in the first pass.  A later pass reads
    // the same unchanged text, so it converts the number only where it uses
    // it; the outcome of the tests is the same in every pass.
    bool tested() const { return pass_ != 0; }

    bool fileversion(std::string_view arg) {
        if (tested()) return true;
        if (*arg.data() == '\0') return fail(VLKXS_C_R_VERSION);
        int32_t version = 0;
        if (cn2l(arg.data(), static_cast<int32_t>(arg.size()), &version) < 0) return fail(VLKXS_C_R_NUMBER);
        return true;
    }

    bool target(const char *copy) {
        if (pass_ == 0 && vlk::severe(VLKTargImportMaterial(&set_.targ, copy, 0).level)) return fail(VLKXS_C_R_TARGET);
        reset_counts();
        return true;
    }

    bool projectile(const char *copy) {
        if (pass_ == 0 && vlk::severe(VLKProjFromStr(&set_.proj, copy, 0).level)) return fail(VLKXS_C_R_PROJECTILE);
        reset_counts();
        return true;
    }

    bool shell_tag(std::string_view arg) {
        int32_t number = 0;
        if (!tested() || pass_ == 1) {
            if (cn2l(arg.data(), static_cast<int32_t>(arg.size()), &number) < 0) return fail(VLKXS_C_R_NUMBER);
            if (number < 0) return fail(VLKXS_C_R_SHELL);
        }
        if (pass_ == 1) {
            if (repeats_.seen(number)) return fail(VLKXS_C_R_DUPSHELL);
            set_.pShell[cnt_shell_].shell = number;
            set_.pShell[cnt_shell_].at = st_;
        }
        if (pass_ == 2) repeats_.next_section();  // energies repeat only within a shell
        cur_shell_ = cnt_shell_++;
        cnt_e_ = cur_e_ = cnt1_ = cur1_ = cnt2_ = 0;
        return true;
    }

    bool eproj(std::string_view arg) {
        double v[3] = {0, 0, 0};
        if (!tested() || pass_ == 2) {
            if (cn2vd(arg.data(), static_cast<int32_t>(arg.size()), v, 1, 3) < 1) return fail(VLKXS_C_R_SYNTAX);
            if (v[0] < 0) return fail(VLKXS_C_R_EPROJ);
        }
        if (pass_ == 1) shell().nE = cnt_e_ + 1;
        if (pass_ == 2) {
            SVLKXSSH &sh = shell();
            if (repeats_.seen(v[0])) return fail(VLKXS_C_R_DUPEPROJ);
            SVLKXSE &e = sh.pE[cnt_e_];
            e.E = v[0];
            if (sh.shell == 0) e.km = v[1];
            e.at = st_;
        }
        if (pass_ == 3) repeats_.next_section();  // secondary energies repeat only within a record
        cur_e_ = cnt_e_++;
        cnt1_ = cur1_ = cnt2_ = 0;
        return true;
    }

    bool esec(std::string_view arg) {
        double w = 0;
        if (!tested() || pass_ == 3) {
            if (cn2d(arg.data(), static_cast<int32_t>(arg.size()), &w) < 0) return fail(VLKXS_C_R_NUMBER);
            if (w < 0) return fail(VLKXS_C_R_ESEC);
        }
        if (pass_ == 2) energy().n1 = cnt1_ + 1;
        if (pass_ == 3) {
            if (repeats_.seen(w)) return fail(VLKXS_C_R_DUPESEC);
            energy().dv1[cnt1_] = w;
        }
        cur1_ = cnt1_++;
        cnt2_ = 0;
        return true;
    }

    bool data_line(std::string_view line) {
        if (itag_ == kUnknownTag) return true;  // hidden by an unknown tag
        if (vlk::traced(mode_)) std::fprintf(stderr, "<D> data: %d %d =>", kDataLine, state_);
        const int8_t next = next_state(kDataLine);
        if (vlk::traced(mode_)) std::fprintf(stderr, " %d\n", next);
        state_ = next;
        if (next < 0) return fail(VLKXS_C_R_SYNTAX);
        if (next == 11) {
            itag_ = kDataLine;
            return true;
        }
        if (last_pass()) return row(line);
        if (pass_ >= dim_ + 1) count_rows(1);
        itag_ = kDataLine;
        return true;
    }

    // A data line of the last pass: its numbers tested and its row stored.
    bool row(std::string_view line) {
        double v[3] = {0, 0, 0};
        if (!numbers(line, v)) return false;
        store_row(v);
        count_rows(1);
        itag_ = kDataLine;
        return true;
    }

    // The numbers of a data line: two or three, none below 0 behind the first.
    bool numbers(std::string_view line, double (&v)[3]) {
        const int32_t n = cn2vd(line.data(), static_cast<int32_t>(line.size()), v, 1, 3);
        if (n < 1) return fail(VLKXS_C_R_SYNTAX);
        if (n == 1) return fail(VLKXS_C_R_TOOFEW);
        if (v[1] < 0 || (n > 2 && v[2] < 0)) return fail(VLKXS_C_R_DATA);
        return true;
    }

    // The row of a data line at the current place of its table.
    void store_row(const double (&v)[3]) {
        switch (dim_) {
            case 0: {
                SVLKXSSH &sh = shell();
                SVLKXSE &e = sh.pE[cnt_e_];
                e.E = v[0];
                e.sigtot = v[1];
                if (sh.shell == 0) e.km = v[2];
                break;
            }
            case 1: {
                SVLKXSE &e = energy();
                e.dv1[cnt1_] = v[0];
                e.dvSig1[cnt1_] = v[1];
                break;
            }
            default: {
                SVLKXSE &e = energy();
                e.pdv2[cur1_][cnt2_] = v[0];
                e.pdvSig2[cur1_][cnt2_] = v[1];
                break;
            }
        }
    }

    // Counts k rows of the current table (the two last passes).
    void count_rows(int32_t k) {
        switch (dim_) {
            case 0:
                cnt_e_ += k;
                shell().nE = cnt_e_;
                cur_e_ = cnt_e_ - 1;
                break;
            case 1:
                cnt1_ += k;
                energy().n1 = cnt1_;
                cur1_ = cnt1_ - 1;
                break;
            default:
                cnt2_ += k;
                energy().nv2[cur1_] = cnt2_;
                break;
        }
    }

    template <class T>
    bool make(T *&p, int32_t n) {
        return vlk::make(p, n) || fail(VLKXS_C_RUNTIME);
    }
    // Sizes the search for repeats for the largest section of the next pass.
    bool expect_sections(int32_t largest) { return repeats_.reserve(largest) || fail(VLKXS_C_RUNTIME); }

    // Allocates the next level of arrays, each at its counted size; an empty
    // section only warns, pointing at its "!shell" or "!eproj" line.
    bool end_of_pass() {
        int32_t largest = 0;
        switch (pass_) {
            case 0:
                if (cnt_shell_ < 1) return fail(VLKXS_C_R_NSHELL);
                if (!make(set_.pShell, cnt_shell_)) return false;
                set_.nShell = cnt_shell_;
                return expect_sections(cnt_shell_);
            case 1:
                for (SVLKXSSH &sh : vlk::shells(set_)) {
                    if (sh.nE < 1) {
                        warn(sh.at, VLKXS_C_R_NODATA);
                        continue;
                    }
                    if (!make(sh.pE, sh.nE)) return false;
                    largest = std::max(largest, sh.nE);
                }
                return dim_ < 1 || expect_sections(largest);
            case 2:
                if (dim_ < 1) return true;
                return vlk::for_each_record(set_, [&](SVLKXSE &e) {
                    if (e.n1 < 1) {
                        warn(e.at, VLKXS_C_R_NODATA);
                        return true;
                    }
                    largest = std::max(largest, e.n1);
                    if (!make(e.dv1, e.n1) || !make(e.dvSig1, e.n1)) return false;
                    if (dim_ == 2 && (!make(e.nv2, e.n1) || !make(e.pdv2, e.n1) || !make(e.pdvSig2, e.n1)))
                        return false;
                    return true;
                }) && (dim_ < 2 || expect_sections(largest));
            case 3:
                if (dim_ < 2) return true;
                return vlk::for_each_record(set_, [&](SVLKXSE &e) {
                    if (e.nv2 == nullptr) return true;
                    for (int32_t k = 0; k < e.n1; ++k) {
                        if (e.nv2[k] < 1) {
                            warn(e.at, VLKXS_C_R_NODATA);
                            continue;
                        }
                        if (!make(e.pdv2[k], e.nv2[k]) || !make(e.pdvSig2[k], e.nv2[k])) return false;
                    }
                    return true;
                });
            default: return true;
        }
    }

    SVLKXS &set_;
    const char *path_;
    int32_t mode_;
    int32_t trace_;
    SCMDSTATUS &st_;
    SUFILEMEM &fm_;
    ArgCopy arg_;
    Repeats repeats_;
    vlk::Buffer<Run> runs_;
    int32_t nruns_ = 0;
    int32_t next_run_ = 0;
    int32_t iline_ = 0;
    int32_t pass_ = 0;
    int32_t npass_ = 1;  // the first "!filetype" line decides on the others
    int32_t dim_ = 0;
    int32_t itag_ = -1;  // no tag yet
    int32_t state_ = 0;
    int32_t cnt_shell_ = 0, cur_shell_ = 0, cnt_e_ = 0, cur_e_ = 0;
    int32_t cnt1_ = 0, cur1_ = 0, cnt2_ = 0;
};

}  // namespace

SCMDSTATUS VLKXSRead(SVLKXS *set, const char *path, int32_t mode) {
    return vlk::run(
        vlk::op::Read, mode,
        [&](SCMDSTATUS &st) {
            FileMemory mem(vlk::trace_bit(mode));
            if (set == nullptr) return;
            VLKXSInit(set, mode);
            if (path == nullptr) return;
            if (uFileMemOpen(&mem.fm, path, 1, mem.trace) != 0 || uFileMemRead(&mem.fm, mem.trace) != 0) {
                st.item = path;
                vlk::fail(st, VLKXS_C_RUNTIME);
                return;
            }
            if (vlk::traced(mode)) std::fprintf(stderr, "<D> strdup(%s)...\n", path);
            set->infile = vlk::dup_text(path);
            if (set->infile == nullptr) {
                vlk::fail(st, VLKXS_C_RUNTIME);
                return;
            }
            Reader reader(*set, path, mode, st, mem.fm);
            if (reader.run()) {
                vlk::succeed(st);
            } else if (st.text != nullptr) {
                t_line.assign({st.text, vlk::count_of(st.textlen)});
                st.text = t_line.c_str();
                st.textlen = static_cast<int32_t>(t_line.size());
            }
        },
        [&] {
            if (set != nullptr) VLKXSFree(set, mode);
        });
}
