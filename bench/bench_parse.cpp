// The xs reader against a bare parsing pass, on the same large files.
//
// For one generated file per dimension (total, single and double
// differential, 50 MB or more each) the program times VLKXSRead next to the
// least work that any reader of the format has to do: load the file with one
// fread, find its lines with memchr, and convert every number of the data
// lines and of the "!shell", "!eproj" and "!esec" lines with one
// std::from_chars each into preallocated arrays.  The ratio of the two is
// what the reader's passes, state table and records cost on top of number
// conversion.  The two are run alternately, several times, and the medians
// are printed.
//
// The ratio is taken on user CPU time only.  System time is dominated by the
// kernel zero-filling the pages of the set's records (one SVLKXSE of some
// 250 bytes per primary energy), which is the cost of the record layout and
// not of the parser.  Wall times are printed beside it.
//
// A second part reads files of many one-line sections (shells, "!eproj"
// records, "!esec" tables), whose cost is that of the reader's checks for
// duplicate sections, and prints each timing as soon as it is known.
//
//   bench_parse [--runs R] [--reps K] [--hostile N] [--skip-hostile]
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vlkxs.h"
#include "timing.hpp"
#include "xsfile.hpp"

namespace {

namespace fs = std::filesystem;

fs::path &g_dir = vlkbench::scratch();  // scratch directory of the generated files

[[noreturn]] void die(const std::string &what) { vlkbench::die("bench_parse", what); }

using vlkbench::median;
using vlkbench::timed;
using vlkbench::Times;

// Converts up to `max` numbers of [p, end) separated by blanks, tabs or
// commas; a leading '+' is stepped over, from_chars doesn't take one.
// Returns how many were converted.
int numbers(const char *p, const char *end, double *out, int max) {
    int n = 0;
    while (n < max) {
        while (p < end && (*p == ' ' || *p == '\t' || *p == ',')) ++p;
        if (p < end && *p == '+') ++p;
        const auto [next, ec] = std::from_chars(p, end, out[n]);
        if (ec != std::errc()) break;
        p = next;
        ++n;
    }
    return n;
}

// Where the bare pass stores its numbers: the columns of the data lines and
// the arguments of the section tags, sized before any timing.
struct Columns {
    std::vector<double> col[3], tag;
    Columns(std::size_t rows, std::size_t tags) : tag(tags) {
        for (std::vector<double> &v : col) v.resize(rows);
    }
};

// The bare pass over the file at `path`; returns the number of data lines.
std::size_t bare_pass(const std::string &path, Columns &c) {
    std::FILE *f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) die("cannot open " + path);
    std::fseek(f, 0, SEEK_END);
    const auto size = static_cast<std::size_t>(std::ftell(f));
    std::fseek(f, 0, SEEK_SET);
    const std::unique_ptr<char[]> image(new char[size]);
    const std::size_t got = std::fread(image.get(), 1, size, f);
    std::fclose(f);
    if (got != size) die("short read of " + path);

    std::size_t row = 0, ntag = 0;
    const char *p = image.get(), *const end = p + size;
    while (p < end) {
        const char *eol = static_cast<const char *>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
        if (eol == nullptr) eol = end;
        const char *q = p;
        p = eol + 1;
        while (q < eol && (*q == ' ' || *q == '\t')) ++q;
        if (q == eol || *q == '#' || *q == '\r') continue;
        if (*q == '!') {
            const char *word = ++q;
            while (q < eol && *q >= 'a' && *q <= 'z') ++q;
            const std::string_view tag(word, static_cast<std::size_t>(q - word));
            if (tag != "shell" && tag != "eproj" && tag != "esec") continue;
            if (ntag == c.tag.size() || numbers(q, eol, &c.tag[ntag++], 1) != 1) die("bad tag line in " + path);
            continue;
        }
        double v[3] = {0, 0, 0};
        if (row == c.col[0].size() || numbers(q, eol, v, 3) < 2) die("bad data line in " + path);
        for (int i = 0; i < 3; ++i) c.col[i][row] = v[i];
        ++row;
    }
    return row;
}

Times read_file(const std::string &path) {
    SVLKXS set;
    SCMDSTATUS st{};
    const Times t = timed([&] { st = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET); });
    if (st.code != 0) die("VLKXSRead failed on " + path + " with code " + std::to_string(st.code));
    VLKXSFree(&set, 0);
    return t;
}

struct Shape {
    int dim, shells, energies, points, rows;
    std::size_t tags() const {
        const std::size_t e = dim > 0 ? energies : 0, w = dim > 1 ? std::size_t(energies) * points : 0;
        return std::size_t(shells) * (1 + e + w);
    }
};

// User time is sampled by the kernel's clock ticks, a few milliseconds
// apart: each figure is the mean over `reps` calls in a row, so that one
// sample spans enough ticks to be steady.
void compare(const Shape &s, int runs, int reps) {
    const auto [path, lines] = vlkbench::make_file(s.dim, s.shells, s.energies, s.points, s.rows, g_dir);
    Columns c(static_cast<std::size_t>(lines), s.tags());
    std::vector<double> bu, bw, ru, rw;
    for (int r = 0; r < runs; ++r) {
        Times b{0, 0}, t{0, 0};
        for (int k = 0; k < reps; ++k) {
            std::size_t rows = 0;
            const Times one = timed([&] { rows = bare_pass(path, c); });
            if (rows != static_cast<std::size_t>(lines)) die("bare pass miscounted " + path);
            const Times other = read_file(path);
            b.user_ms += one.user_ms / reps, b.wall_ms += one.wall_ms / reps;
            t.user_ms += other.user_ms / reps, t.wall_ms += other.wall_ms / reps;
        }
        bu.push_back(b.user_ms), bw.push_back(b.wall_ms), ru.push_back(t.user_ms), rw.push_back(t.wall_ms);
    }
    const double mb = static_cast<double>(fs::file_size(path)) / 1e6;
    std::printf("%3d %8.1f %9ld %10.0f %10.0f %6.2f %10.0f %10.0f\n", s.dim, mb, lines, median(bu), median(ru),
                median(ru) / median(bu), median(bw), median(rw));
    std::fflush(stdout);
    fs::remove(path);
}

void sections(int dim, int n) {
    static const char *const what[] = {"shells", "\"!eproj\" records", "\"!esec\" tables"};
    const std::string path = vlkbench::make_sections(dim, n, g_dir);
    const Times t = read_file(path);
    std::printf("dim %d, %d %s of one line: user %.0f ms, wall %.0f ms\n", dim, n, what[dim], t.user_ms, t.wall_ms);
    std::fflush(stdout);
    fs::remove(path);
}

int number_arg(const char *text) {
    int n = 0;
    const char *end = text + std::strlen(text);
    const auto [next, ec] = std::from_chars(text, end, n);
    if (ec != std::errc() || next != end || n < 1) die(std::string("not a positive number: ") + text);
    return n;
}

}  // namespace

int main(int argc, char **argv) {
    int runs = 5, reps = 3, hostile = 200000;
    for (int i = 1; i < argc; ++i) {
        const std::string_view a = argv[i];
        if (a == "--skip-hostile") {
            hostile = 0;
        } else if (a == "--hostile" && i + 1 < argc) {
            hostile = number_arg(argv[++i]);
        } else if (a == "--runs" && i + 1 < argc) {
            runs = number_arg(argv[++i]);
        } else if (a == "--reps" && i + 1 < argc) {
            reps = number_arg(argv[++i]);
        } else {
            die("usage: bench_parse [--runs R] [--reps K] [--hostile N] [--skip-hostile]");
        }
    }
    std::string dir = (fs::temp_directory_path() / "vlkxs-parse-XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) die("cannot make a scratch directory");
    g_dir = dir;

    // About 60 MB each: 3M total, 2.5M single and 2.5M double differential lines.
    const Shape shapes[] = {{0, 5, 600000, 0, 0}, {1, 5, 200, 2500, 0}, {2, 5, 50, 100, 100}};
    std::printf("medians of %d runs of %d calls; times in ms a call, ratio = reader/bare on user time\n", runs, reps);
    std::printf("dim  size/MB     lines  bare user  read user  ratio  bare wall  read wall\n");
    for (const Shape &s : shapes) compare(s, runs, reps);

    if (hostile > 0)
        for (int dim = 0; dim < 3; ++dim) sections(dim, hostile);
    fs::remove_all(g_dir);
    return 0;
}
