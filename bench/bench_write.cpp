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
//
//   bench_write [runs [calls a sample]]
#include <sys/resource.h>
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
#include "xsfile.hpp"

namespace {

namespace fs = std::filesystem;

fs::path g_dir;  // scratch directory of every file

[[noreturn]] void die(const std::string &what) {
    std::fprintf(stderr, "bench_write: %s\n", what.c_str());
    if (!g_dir.empty()) fs::remove_all(g_dir);
    std::exit(1);
}

struct Times {
    double user_ms, wall_ms;
};

double user_ms() {
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return ru.ru_utime.tv_sec * 1e3 + ru.ru_utime.tv_usec * 1e-3;
}

template <class F>
Times timed(F &&f) {
    const double u0 = user_ms();
    const auto w0 = std::chrono::steady_clock::now();
    f();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - w0;
    return {user_ms() - u0, wall.count()};
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const std::size_t m = v.size() / 2;
    return v.size() % 2 != 0 ? v[m] : 0.5 * (v[m - 1] + v[m]);
}

// The five header lines, with the date of now.
std::string header(const SVLKXS &set) {
    const std::time_t now = std::time(nullptr);
    return std::string("!filetype    xs ") + set.IAtag + "," + set.dimtag + "\n!fileversion 20080825\n!filedate    " +
           std::ctime(&now) + "!target      " + set.targ.name + "\n!projectile  " + set.proj.symbol + "\n";
}

constexpr std::string_view kComment = "#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>\n";

std::span<const SVLKXSSH> shells(const SVLKXS &s) { return {s.pShell, static_cast<std::size_t>(s.nShell)}; }
std::span<const SVLKXSE> records(const SVLKXSSH &s) { return {s.pE, static_cast<std::size_t>(s.nE)}; }

void write_bare(const SVLKXS &set, const std::string &path) {
    std::FILE *f = std::fopen(path.c_str(), "w");
    if (f == nullptr) die("cannot create " + path);
    std::vector<char> buf(std::size_t(1) << 20);
    char *p = buf.data(), *const end = p + buf.size();
    const auto flush = [&] {
        const auto n = static_cast<std::size_t>(p - buf.data());
        if (std::fwrite(buf.data(), 1, n, f) != n) die("short write to " + path);
        p = buf.data();
    };
    // Copies `s`, leaving room for the few numbers that may follow on its line.
    const auto text = [&](std::string_view s) {
        if (static_cast<std::size_t>(end - p) < s.size() + 64) flush();
        p = std::copy(s.begin(), s.end(), p);
    };
    const auto g = [&](double v) {
        char *const from = p;
        p = std::to_chars(p, end, v, std::chars_format::general, 6).ptr;
        for (char *q = from; q < p; ++q)
            if (*q == 'e') *q = 'E';
    };
    text(header(set));
    for (const SVLKXSSH &sh : shells(set)) {
        text("#\n!shell       ");
        p = std::to_chars(p, end, sh.shell).ptr;
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
                    if (end - p < 64) flush();
                    g(e.pdv2[k][m]), *p++ = ' ', g(e.pdvSig2[k][m]), *p++ = ' ', g(e.pdvCum2[k][m]), *p++ = '\n';
                }
            }
        }
    }
    flush();
    std::fclose(f);
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

// The text of a file without its "!filedate" line.
std::string undated(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::string s{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::size_t at = s.find("!filedate"), eol = s.find('\n', at);
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
    if (VLKXSStrFromIAType(&set, 0).code != 0 || VLKXSStrFromIADim(&set, 0).code != 0) die("no tags");

    const std::string prefix = dir + "/";
    const std::string paths[] = {prefix + set.proj.symbol + "." + set.targ.name + "." + set.IAtag + set.dimtag + ".xs",
                                 prefix + "bare.xs", prefix + "fprintf.xs"};
    const char *const names[] = {"writer", "bare", "fprintf"};
    const auto write = [&](int how) {
        if (how == 1) return write_bare(set, paths[1]);
        if (how == 2) return write_fprintf(set, paths[2]);
        const SCMDSTATUS st = VLKXSWrite(&set, prefix.c_str(), VLKXS_MODE_QUIET);
        if (st.code != 0) die("VLKXSWrite failed with code " + std::to_string(st.code));
    };

    // Every call writes a new file: the old one goes before the clock starts.
    std::vector<double> user[3], wall[3];
    for (int r = 0; r < runs; ++r)
        for (int how = 0; how < 3; ++how) {
            Times sum{0, 0};
            for (int k = 0; k < reps; ++k) {
                fs::remove(paths[how]);
                const Times t = timed([&] { write(how); });
                sum.user_ms += t.user_ms / reps, sum.wall_ms += t.wall_ms / reps;
            }
            user[how].push_back(sum.user_ms), wall[how].push_back(sum.wall_ms);
        }

    const auto size = fs::file_size(paths[0]);
    const double mb = static_cast<double>(size) / 1e6;
    const std::string text = undated(paths[0]);
    std::printf("%s: %ju bytes (%.1f MB); bare text %s, fprintf text %s\n", fs::path(paths[0]).filename().c_str(),
                static_cast<std::uintmax_t>(size), mb, undated(paths[1]) == text ? "the same" : "DIFFERENT",
                undated(paths[2]) == text ? "the same" : "DIFFERENT");
    std::printf("medians of %d runs of %d calls; times in ms a call\n", runs, reps);
    std::printf("          wall ms  user ms  MB/s wall\n");
    double mw[3], mu[3];
    for (int how = 0; how < 3; ++how) {
        mw[how] = median(wall[how]), mu[how] = median(user[how]);
        std::printf("%-8s %8.0f %8.0f %10.0f\n", names[how], mw[how], mu[how], mb / (mw[how] * 1e-3));
    }
    std::printf("writer/bare     wall %.2f  user %.2f\n", mw[0] / mw[1], mu[0] / mu[1]);
    std::printf("fprintf/writer  wall %.2f  user %.2f\n", mw[2] / mw[0], mu[2] / mu[0]);

    VLKXSFree(&set, 0);
    fs::remove_all(g_dir);
    return 0;
}
