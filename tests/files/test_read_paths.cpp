// The reader takes runs of data lines in one step unless it writes a trace
// line for each of them.  Both ways must give the same set and result: random
// files, good and bad, are read both ways and compared.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "capture.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

// A random file with blank, comment and unknown-tag lines, leading and
// trailing blanks, CRLF line ends, and now and then a fault.
std::string random_file(std::mt19937 &rng, int dim) {
    auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    auto num = [&](int n) { return std::to_string(pick(n)) + "." + std::to_string(pick(10)); };
    std::string f;
    auto line = [&](const std::string &s) {
        f += (pick(4) ? "" : "  ") + s + (pick(5) ? "" : "  ") + (pick(6) ? "\n" : "\r\n");
        if (pick(8) == 0) f += pick(2) ? "\n" : "# note\n";
    };
    const std::string bad[] = {num(9), num(9) + " -1", num(9) + " x", "!bogus tag\n1 2"};
    auto rows = [&](int n) {
        for (int m = 0; m < n; ++m) line(pick(60) < 4 ? bad[pick(4)] : num(9) + " " + num(9) + (pick(2) ? " 1" : ""));
    };
    line(std::string("!filetype xs i,") + "tsd"[dim] + "\n!fileversion 1\n!target H2O\n!projectile e");
    for (int s = 0, shells = 1 + pick(3); s < shells; ++s) {
        line("!shell " + std::to_string(pick(12) ? s + 1 : 1));
        for (int j = 0, nj = pick(4); j < nj; ++j) {
            if (dim == 0) rows(1 + pick(3));
            if (dim > 0) line("!eproj " + num(30));
            for (int k = 0, nk = dim > 0 ? pick(5) : 0; k < nk; ++k) {
                if (dim == 2) line("!esec " + num(20));
                rows(dim == 1 ? 1 : pick(4));
            }
        }
    }
    return f;
}

// Every number the reader stores, in order, with the counts and locations.
std::string contents(const SVLKXS &set) {
    std::string out;
    auto put = [&](double v) { out += std::to_string(v) + ' '; };
    for (int32_t i = 0; i < set.nShell; ++i) {
        const SVLKXSSH &sh = set.pShell[i];
        out += "|S" + std::to_string(sh.shell) + ':' + std::to_string(sh.nE) + '@' + std::to_string(sh.at.line);
        for (int32_t j = 0; j < sh.nE; ++j) {
            const SVLKXSE &e = sh.pE[j];
            out += "|E@" + std::to_string(e.at.line) + ':' + std::to_string(e.n1) + ' ';
            for (double v : {e.E, e.sigtot, e.km}) put(v);
            for (int32_t k = 0; k < e.n1; ++k) {
                put(e.dv1[k]);
                put(e.dvSig1[k]);
                for (int32_t m = 0; e.nv2 != nullptr && m < e.nv2[k]; ++m) {
                    put(e.pdv2[k][m]);
                    put(e.pdvSig2[k][m]);
                }
            }
        }
    }
    return out;
}

TEST(ReadPaths, RunsAndSingleLinesGiveTheSameSet) {
    std::mt19937 rng(20261123);
    vlktest::TempDir dir;
    int good = 0;
    for (int i = 0; i < 600; ++i) {
        const std::string path = dir.write("r.xs", random_file(rng, i % 3));
        SVLKXS fast, slow;
        vlktest::Capture err(stderr);
        const SCMDSTATUS a = VLKXSRead(&fast, path.c_str(), VLKXS_MODE_QUIET);
        const std::string a_text = a.text != nullptr ? std::string(a.text, a.textlen) : "-";
        const SCMDSTATUS b = VLKXSRead(&slow, path.c_str(), VLKXS_MODE_QUIET | VLKXS_MODE_TRACE);
        err.finish();
        ASSERT_EQ(a.code, b.code) << vlktest::read_file(path);
        ASSERT_EQ(a.line, b.line) << vlktest::read_file(path);
        EXPECT_EQ(a_text, b.text != nullptr ? std::string(b.text, b.textlen) : "-");
        EXPECT_EQ(contents(fast), contents(slow));
        good += a.code == 0;
        VLKXSFree(&fast, 0);
        VLKXSFree(&slow, 0);
    }
    EXPECT_GT(good, 150);  // faults are rare enough that many files read
}

}  // namespace
