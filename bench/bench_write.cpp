// The xs writer against bare formatting loops, on one large completed set.
//
// A generated double differential file (5 shells x 50 primary energies x 100
// secondary energies x 100 rows) is read and completed, which adds the sum
// shell; written out it is some 80 MB.  Three ways of writing it, in the same
// layout and to the same scratch directory, are timed in turn over several
// runs: VLKXSWrite; a bare loop that formats every number with std::to_chars
// (six significant digits, 'e' raised to 'E': the text of %G) into a 1 MB
// buffer handed to fwrite whenever it is full, about the least work that any
// writer of the format does; and the same loop with one fprintf a line, the
// obvious way.  Medians of wall and user time are printed, with writer/bare
// and fprintf/writer.  The three texts are compared, the date line left out.
// The gd plot export of the same set is timed in the same way against a bare
// loop and an fprintf loop that write its layout.
//
//   bench_write [runs [calls a sample]]
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vlkxs.h"
#include "timing.hpp"
#include "xsfile.hpp"

namespace {

namespace fs = std::filesystem;

fs::path &g_dir = vlkbench::scratch();  // scratch directory of every file

[[noreturn]] void die(const std::string &what) { vlkbench::die("bench_write", what); }

using vlkbench::median;
using vlkbench::timed;
using vlkbench::Times;

// The five header lines, with the date of now: each begins with `lead`, and
// `after_date` follows ctime's own line end ("\n" in gd files).
std::string header(const SVLKXS &set, const std::string &lead = "!", const char *after_date = "") {
    const std::time_t now = std::time(nullptr);
    return lead + "filetype    xs " + set.IAtag + "," + set.dimtag + "\n" + lead + "fileversion 20080825\n" + lead +
           "filedate    " + std::ctime(&now) + after_date + lead + "target      " + set.targ.name + "\n" + lead +
           "projectile  " + set.proj.symbol + "\n";
}

// The head of a gd file of a double differential set.
std::string gd_header(const SVLKXS &set) {
    return std::string(set.proj.symbol) + "->" + set.targ.name + ", " + set.IAtag + "\n" + header(set, "c:", "\n") +
           "x: \ny: dsi^/dE/dOm^[cm2@/keVsr]\np: ylog\n";
}
constexpr std::string_view kGdColumns =
    "c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV\n";

constexpr std::string_view kComment = "#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>\n";

std::span<const SVLKXSSH> shells(const SVLKXS &s) { return {s.pShell, static_cast<std::size_t>(s.nShell)}; }
std::span<const SVLKXSE> records(const SVLKXSSH &s) { return {s.pE, static_cast<std::size_t>(s.nE)}; }

// A 1 MB buffer handed to fwrite whenever it is full, and the bare
// formatting into it.
struct Bare {
    explicit Bare(const std::string &path_) : path(path_), f(std::fopen(path.c_str(), "w")) {
        if (f == nullptr) die("cannot create " + path);
    }
    void flush() {
        const auto n = static_cast<std::size_t>(p - buf.data());
        if (std::fwrite(buf.data(), 1, n, f) != n) die("short write to " + path);
        p = buf.data();
    }
    void close() { flush(), std::fclose(f); }
    // Copies `s`, leaving room for the few numbers that may follow on its line.
    void text(std::string_view s) {
        if (static_cast<std::size_t>(end - p) < s.size() + 64) flush();
        p = std::copy(s.begin(), s.end(), p);
    }
    void g(double v) {
        char *const from = p;
        p = std::to_chars(p, end, v, std::chars_format::general, 6).ptr;
        for (char *q = from; q < p; ++q)
            if (*q == 'e') *q = 'E';
    }
    void d(int32_t v) { p = std::to_chars(p, end, v).ptr; }

    std::string path;
    std::FILE *f;
    std::vector<char> buf = std::vector<char>(std::size_t(1) << 20);
    char *p = buf.data(), *const end = p + buf.size();
};

void write_bare(const SVLKXS &set, const std::string &path) {
    Bare b(path);
    char *&p = b.p;
    const auto text = [&](std::string_view s) { b.text(s); };
    const auto g = [&](double v) { b.g(v); };
    text(header(set));
    for (const SVLKXSSH &sh : shells(set)) {
        text("#\n!shell       ");
        b.d(sh.shell);
        text("\n\n");
        for (const SVLKXSE &e : records(sh)) {
            text("!eproj      ");
            g(e.E);
            if (sh.shell == 0) *p++ = ' ', g(e.km);
            *p++ = '\n';
            for (int32_t k = 0; k < e.n1; ++k) {
                text("!esec       ");
                g(e.dv1[k] * e.WNorm);
                *p++ = '\n';
                text(kComment);
                for (int32_t m = 0; m < e.nv2[k]; ++m) {
                    if (b.end - p < 64) b.flush();
                    g(e.pdv2[k][m]), *p++ = ' ', g(e.pdvSig2[k][m]), *p++ = ' ', g(e.pdvCum2[k][m]), *p++ = '\n';
                }
            }
        }
    }
    b.close();
}

void write_fprintf(const SVLKXS &set, const std::string &path) {
    std::FILE *f = std::fopen(path.c_str(), "w");
    if (f == nullptr) die("cannot create " + path);
    std::fputs(header(set).c_str(), f);
    for (const SVLKXSSH &sh : shells(set)) {
        std::fprintf(f, "#\n!shell       %d\n\n", sh.shell);
        for (const SVLKXSE &e : records(sh)) {
            if (sh.shell == 0)
                std::fprintf(f, "!eproj      %G %G\n", e.E, e.km);
            else
                std::fprintf(f, "!eproj      %G\n", e.E);
            for (int32_t k = 0; k < e.n1; ++k) {
                std::fprintf(f, "!esec       %G\n%s", e.dv1[k] * e.WNorm, kComment.data());
                for (int32_t m = 0; m < e.nv2[k]; ++m)
                    std::fprintf(f, "%G %G %G\n", e.pdv2[k][m], e.pdvSig2[k][m], e.pdvCum2[k][m]);
            }
        }
    }
    std::fclose(f);
}

// The gd layout of this set only: an electron projectile, so the secondary
// energies aren't scaled, and many angles at each point, so one table over the
// cosine for each secondary energy (main checks both).
void write_gd_bare(const SVLKXS &set, const std::string &path) {
    Bare b(path);
    b.text(gd_header(set));
    for (const SVLKXSSH &sh : shells(set)) {
        const std::string style = std::string("),l") + set.coltag + std::to_string(sh.shell);
        b.text("c:\nc:shell       "), b.d(sh.shell), b.text("\nc:\n");
        for (const SVLKXSE &e : records(sh)) {
            b.text("c:eproj      "), b.g(e.E), *b.p++ = '\n';
            for (int32_t k = 0; k < e.n1; ++k) {
                b.text("c:esec       "), b.g(e.dv1[k]), b.text(" keV\nH: x y1("), b.g(e.dv1[k]), b.text(style);
                b.text(" (n1=acos(y1)/3.14159*180) n2("), b.g(e.dv1[k]), b.text(style), *b.p++ = '\n';
                b.text(kGdColumns);
                for (int32_t j = 0; j < e.nv2[k]; ++j) {
                    if (b.end - b.p < 64) b.flush();
                    b.g(e.pdv2[k][j]), *b.p++ = ' ', b.g(e.pdvSig2[k][j]), *b.p++ = ' ', b.g(e.pdvCum2[k][j]);
                    *b.p++ = '\n';
                }
            }
        }
    }
    b.close();
}

void write_gd_fprintf(const SVLKXS &set, const std::string &path) {
    std::FILE *f = std::fopen(path.c_str(), "w");
    if (f == nullptr) die("cannot create " + path);
    std::fputs(gd_header(set).c_str(), f);
    for (const SVLKXSSH &sh : shells(set)) {
        std::fprintf(f, "c:\nc:shell       %d\nc:\n", sh.shell);
        for (const SVLKXSE &e : records(sh)) {
            std::fprintf(f, "c:eproj      %G\n", e.E);
            for (int32_t k = 0; k < e.n1; ++k) {
                std::fprintf(f, "c:esec       %G keV\nH: x y1(%G),l%s%d (n1=acos(y1)/3.14159*180) n2(%G),l%s%d\n%s",
                             e.dv1[k], e.dv1[k], set.coltag, sh.shell, e.dv1[k], set.coltag, sh.shell,
                             kGdColumns.data());
                for (int32_t j = 0; j < e.nv2[k]; ++j)
                    std::fprintf(f, "%G %G %G\n", e.pdv2[k][j], e.pdvSig2[k][j], e.pdvCum2[k][j]);
            }
        }
    }
    std::fclose(f);
}

// The text of a file without its date line, which begins with `key`.
std::string undated(const std::string &path, std::string_view key = "!filedate") {
    std::ifstream in(path, std::ios::binary);
    std::string s{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::size_t at = s.find(key), eol = s.find('\n', at);
    if (eol != std::string::npos) s.erase(at, eol + 1 - at);
    return s;
}

}  // namespace

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5,
              reps = argc > 2 ? std::max(1, std::atoi(argv[2])) : 1;
    std::string dir = (fs::temp_directory_path() / "vlkxs-write-XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) die("cannot make a scratch directory");
    g_dir = dir;

    SVLKXS set;
    const std::string input = vlkbench::make_file(2, 5, 50, 100, 100, g_dir).first;
    if (VLKXSRead(&set, input.c_str(), VLKXS_MODE_QUIET).code != 0) die("cannot read " + input);
    fs::remove(input);
    if (VLKXSComplete(&set, 0).code != 0 || VLKXSIsValid(&set, 0).code != 0) die("no valid completed set");
    if (VLKXSStrFromIAType(&set, 0).code != 0 || VLKXSStrFromIADim(&set, 0).code != 0 ||
        VLKXSColFromIAType(&set, 0).code != 0 || set.coltag == nullptr)
        die("no tags");
    // The gd loops write only the unscaled many-angle tables.
    if (set.dim != 2 || set.proj.type == VLKPROJ_ION) die("not a double differential set of a light projectile");
    for (const SVLKXSSH &sh : shells(set))
        for (const SVLKXSE &e : records(sh))
            if (e.n1 > 0 && e.nv2[0] == 1) die("a record with one angle at its first point");

    const std::string prefix = dir + "/";
    const std::string xs = prefix + set.proj.symbol + "." + set.targ.name + "." + set.IAtag + set.dimtag + ".xs";
    const std::string paths[] = {xs,         prefix + "bare.xs",    prefix + "fprintf.xs",
                                 xs + ".gd", prefix + "bare.xs.gd", prefix + "fprintf.xs.gd"};
    const char *const names[] = {"writer", "bare", "fprintf", "exportgd", "bare", "fprintf"};
    const auto write = [&](int how) {
        if (how == 1) return write_bare(set, paths[1]);
        if (how == 2) return write_fprintf(set, paths[2]);
        if (how == 4) return write_gd_bare(set, paths[4]);
        if (how == 5) return write_gd_fprintf(set, paths[5]);
        const SCMDSTATUS st = how == 0 ? VLKXSWrite(&set, prefix.c_str(), VLKXS_MODE_QUIET)
                                       : VLKXSExportgd(&set, prefix.c_str(), VLKXS_MODE_QUIET);
        if (st.code != 0) die(std::string(names[how]) + " failed with code " + std::to_string(st.code));
    };

    // Every call writes a new file: the old one goes before the clock starts.
    std::vector<double> user[6], wall[6];
    for (int r = 0; r < runs; ++r)
        for (int how = 0; how < 6; ++how) {
            Times sum{0, 0};
            for (int k = 0; k < reps; ++k) {
                fs::remove(paths[how]);
                const Times t = timed([&] { write(how); });
                sum.user_ms += t.user_ms / reps, sum.wall_ms += t.wall_ms / reps;
            }
            user[how].push_back(sum.user_ms), wall[how].push_back(sum.wall_ms);
        }

    // The figures of the library call at `at` and of its bare and fprintf loops.
    const auto report = [&](int at, std::string_view key) {
        const auto size = fs::file_size(paths[at]);
        const double mb = static_cast<double>(size) / 1e6;
        const std::string text = undated(paths[at], key);
        std::printf("%s: %ju bytes (%.1f MB); bare text %s, fprintf text %s\n", fs::path(paths[at]).filename().c_str(),
                    static_cast<std::uintmax_t>(size), mb, undated(paths[at + 1], key) == text ? "the same" : "DIFFERENT",
                    undated(paths[at + 2], key) == text ? "the same" : "DIFFERENT");
        std::printf("medians of %d runs of %d calls; times in ms a call\n", runs, reps);
        std::printf("          wall ms  user ms  MB/s wall\n");
        double mw[3], mu[3];
        for (int i = 0; i < 3; ++i) {
            mw[i] = median(wall[at + i]), mu[i] = median(user[at + i]);
            std::printf("%-8s %8.0f %8.0f %10.0f\n", names[at + i], mw[i], mu[i], mb / (mw[i] * 1e-3));
        }
        const std::string lib = names[at];
        std::printf("%-17s wall %.2f  user %.2f\n", (lib + "/bare").c_str(), mw[0] / mw[1], mu[0] / mu[1]);
        std::printf("%-17s wall %.2f  user %.2f\n", ("fprintf/" + lib).c_str(), mw[2] / mw[0], mu[2] / mu[0]);
    };
    report(0, "!filedate");
    std::printf("\n");
    report(3, "c:filedate");

    VLKXSFree(&set, 0);
    fs::remove_all(g_dir);
    return 0;
}
