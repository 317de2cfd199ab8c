// The SVG picture of sets: a well-formed document with one path per curve,
// axes whose decades bracket the data, and a note where nothing is drawn.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "plot.hpp"
#include "sets.hpp"
#include "tempdir.hpp"

namespace {

using vlkcli::plot_svg;

// Water under electrons, calculated by BEB (IA 2) or screened Rutherford (IA 1).
struct Calculated {
    Calculated(int32_t IA, int32_t dim, std::vector<double> E) : energies(std::move(E)) {
        VLKXSInit(&set, 0);
        VLKProjFromStr(&set.proj, "e", 0);
        VLKTargImportMaterial(&set.targ, "H2O", 0);
        set.IA = IA;
        set.dim = dim;
        SVLKXSCALC rq{};
        rq.method = IA == 2 ? 7 : 9;
        rq.pE = energies.data();
        rq.nE = static_cast<int32_t>(energies.size());
        EXPECT_EQ(VLKXSCalc(&set, &rq, 0).code, 0);
    }
    ~Calculated() { VLKXSFree(&set, 0); }
    std::vector<double> energies;
    SVLKXS set;
};

struct FromFile {
    explicit FromFile(const char *name) {
        EXPECT_EQ(VLKXSRead(&set, vlktest::data_file(name).c_str(), 0).code, 0);
        EXPECT_EQ(VLKXSComplete(&set, 0).code, 0);
    }
    ~FromFile() { VLKXSFree(&set, 0); }
    SVLKXS set;
};

bool well_formed(const std::string &svg) {
    vlktest::TempDir dir;
    const std::string cmd = "python3 -c 'import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])' '" +
                            dir.write("plot.svg", svg) + "'";
    return std::system(cmd.c_str()) == 0;
}

std::size_t count(const std::string &text, const std::string &what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

// The decades of an axis's tick labels, written 10 with a superscript.
std::vector<int> decades(const std::string &svg, const std::string &axis) {
    const std::regex tick("class=\"" + axis + "\"[^>]*>10<tspan[^>]*>(\xe2\x88\x92)?([0-9]+)<");
    std::vector<int> d;
    for (std::sregex_iterator m(svg.begin(), svg.end(), tick), end; m != end; ++m)
        d.push_back(((*m)[1].matched ? -1 : 1) * std::stoi((*m)[2]));
    return d;
}

// The lowest and highest decade bracket [lo, hi], and one labelled step
// further in would not.
void expect_span(const std::vector<int> &d, double lo, double hi) {
    ASSERT_GE(d.size(), 2u);
    const auto [a, b] = std::minmax_element(d.begin(), d.end());
    const int step = d[1] - d[0];
    EXPECT_LE(std::pow(10.0, *a), lo * (1 + 1e-9));
    EXPECT_GT(std::pow(10.0, *a + step), lo);
    EXPECT_GE(std::pow(10.0, *b), hi * (1 - 1e-9));
    EXPECT_LT(std::pow(10.0, *b - step), hi);
}

// The points of a set that a log-log plot can show: every shell's totals, or
// the differential table of the last shell over keV.
void expect_axes_span(const std::string &svg, const SVLKXS &s) {
    double x0 = INFINITY, x1 = 0, y0 = INFINITY, y1 = 0;
    const auto add = [&](double x, double y) {
        if (!(x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y))) return;
        x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
    };
    for (int32_t i = s.dim == 0 ? 0 : s.nShell - 1; i < s.nShell; ++i)
        for (int32_t j = 0; j < s.pShell[i].nE; ++j) {
            const SVLKXSE &e = s.pShell[i].pE[j];
            if (s.dim == 0) add(e.E, e.sigtot);
            for (int32_t k = 0; s.dim > 0 && k < e.n1; ++k) add(e.dv1[k] * e.WNorm, e.dvSig1[k]);
        }
    expect_span(decades(svg, "xtick"), x0, x1);
    expect_span(decades(svg, "ytick"), y0, y1);
}

TEST(Plot, CalculatedSetsDrawAShellOrAnEnergyACurve) {
    const struct {
        int32_t IA, dim, nE;
        std::size_t paths;
        const char *xtitle;
        bool every_record_drawn;
    } cases[] = {{2, 0, 5, 6, "E (keV)", true},
                 {2, 1, 3, 3, "W (keV)", true},
                 {2, 1, 20, 8, "W (keV)", false},
                 {1, 1, 4, 4, "cos \xce\xb8", false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.IA) + "/" + std::to_string(c.dim) + "/" + std::to_string(c.nE));
        std::vector<double> E;
        for (int32_t i = 0; i < c.nE; ++i) E.push_back(0.05 * std::pow(1e5, i / (c.nE - 1.0)));
        Calculated set(c.IA, c.dim, E);
        const std::string svg = plot_svg({&set.set}, {"water"});
        EXPECT_TRUE(well_formed(svg));
        EXPECT_EQ(count(svg, "<path "), c.paths);
        EXPECT_NE(svg.find(c.xtitle), std::string::npos);
        EXPECT_NE(svg.find("electron"), std::string::npos);
        EXPECT_NE(svg.find("H2O"), std::string::npos);
        if (c.every_record_drawn) expect_axes_span(svg, set.set);
    }
}

TEST(Plot, FilesOfEachDimensionAndIons) {
    const struct {
        const char *file;
        std::size_t paths;
        const char *xtitle;
    } cases[] = {{"e.H2O.it.xs", 3, "E (keV)"}, {"e.H2O.is.xs", 1, "W (keV)"}, {"p.H2O.id.xs", 2, "W (keV)"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        FromFile f(c.file);
        const std::string svg = plot_svg({&f.set}, {c.file});
        EXPECT_TRUE(well_formed(svg));
        EXPECT_EQ(count(svg, "<path "), c.paths);
        EXPECT_NE(svg.find(c.xtitle), std::string::npos);
        if (f.set.dim < 2) expect_axes_span(svg, f.set);
    }
    vlktest::SetBuilder ion(0, 2, VLKPROJ_ION);
    SVLKXSE &e = ion.add_shell(1, 1).pE[0];
    e.E = 1, e.sigtot = 1e-17;
    EXPECT_NE(plot_svg({&ion.set}, {"ion"}).find("E (MeV/u)"), std::string::npos);
}

TEST(Plot, PointsALogAxisCannotShowBreakTheLine) {
    vlktest::SetBuilder b(0);
    const double sig[] = {1e-16, 2e-16, 0, 3e-16, 4e-16, -1, 5e-16, NAN};
    SVLKXSSH &sh = b.add_shell(1, 8);
    for (int32_t j = 0; j < 8; ++j) sh.pE[j].E = j + 1.0, sh.pE[j].sigtot = sig[j];
    const std::string svg = plot_svg({&b.set}, {"gaps"});
    EXPECT_TRUE(well_formed(svg));
    std::smatch path;
    ASSERT_TRUE(std::regex_search(svg, path, std::regex("<path d=\"([^\"]*)\"")));
    EXPECT_EQ(count(path[1], "M"), 3u);
    EXPECT_EQ(decades(svg, "ytick"), (std::vector<int>{-16, -15}));
}

TEST(Plot, SetsComparedOnOneAxisEachNamedByItsLabel) {
    Calculated beb(2, 0, {0.05, 1, 100});
    Calculated spectra(2, 1, {1, 10});
    FromFile file("e.H2O.it.xs");
    const std::string svg = plot_svg({&beb.set, &file.set, &spectra.set}, {"beb.xs", "file.xs", "spectra.xs"});
    EXPECT_TRUE(well_formed(svg));
    EXPECT_EQ(count(svg, "<path "), 6u + 3u);  // the spectra have other axes
    for (const char *label : {"beb.xs", "file.xs", "spectra.xs", "not drawn"})
        EXPECT_NE(svg.find(label), std::string::npos) << label;
}

TEST(Plot, NothingToDrawStillGivesADocumentWithANote) {
    SVLKXS empty;
    VLKXSInit(&empty, 0);
    vlktest::SetBuilder zero(0);
    zero.add_shell(1, 2).pE[1].E = 1;
    for (const SVLKXS *s : std::vector<const SVLKXS *>{&empty, &zero.set, nullptr}) {
        const std::string svg = plot_svg({s}, {"<a & \"b\" \xff>"});
        EXPECT_TRUE(well_formed(svg));
        EXPECT_EQ(count(svg, "<path "), 0u);
        EXPECT_NE(svg.find("class=\"note\""), std::string::npos);
        EXPECT_NE(svg.find("&lt;a &amp; &quot;b&quot; ?&gt;"), std::string::npos);
    }
    VLKXSFree(&empty, 0);
    EXPECT_TRUE(well_formed(plot_svg({}, {})));
}

}  // namespace
