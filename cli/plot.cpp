// The picture of completed sets as an SVG document.
//
// Totals (dim 0) are drawn as one curve per shell over the primary energy,
// the sum shell heavier; differential sets as a family of curves of the sum
// shell (or the only shell), one per primary energy, thinned to a handful
// spread over the range.  The y axis is logarithmic, and so is the x axis
// unless it holds a cosine.  Several sets share one pair of axes, each in a
// colour of its own, its curves told apart by dash pattern; a set whose
// quantities differ from the first drawn set's is named in the legend but
// not drawn.  Points a log axis can't show (zero, negative, NaN) break the
// line.
#include "plot.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <set>
#include <string_view>
#include <utility>

namespace vlkcli {
namespace {

// Canvas: the plot area on the left, the legend on the right.
constexpr double kWidth = 1000.0;
constexpr double kMinHeight = 640.0;
constexpr double kLeft = 100.0, kRight = 700.0, kTop = 70.0, kBottom = 560.0;
constexpr double kLegendX = 725.0;
constexpr double kRow = 18.0;  // legend row height
constexpr std::size_t kMostEnergies = 8;
constexpr std::size_t kLabelChars = 28;  // of a set label in the legend: 14 px bold, 265 px wide

const char *const kPalette[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e",
                                "#9467bd", "#8c564b", "#e377c2", "#17becf"};
const char *const kDashes[] = {"", "8 4", "2 3", "10 3 2 3", "16 4", "4 2 1 2", "1 5", "12 3 2 3 2 3"};
constexpr std::size_t kStyles = sizeof kPalette / sizeof kPalette[0];
const char *const kMinus = "\xe2\x88\x92";  // U+2212, the typographic minus

std::string fixed(double v) {
    char b[40];
    std::snprintf(b, sizeof b, "%.1f", v);
    return b;
}

std::string short_g(double v) {
    char b[40];
    std::snprintf(b, sizeof b, "%.4g", v);
    return b;
}

// Length of the UTF-8 sequence at s[i], 0 where the bytes aren't one (stray
// continuation bytes, overlong forms, surrogates, beyond U+10FFFF).
std::size_t utf8_length(std::string_view s, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = byte(i);
    const std::size_t n = c >= 0xc2 && c <= 0xdf ? 2 : c >= 0xe0 && c <= 0xef ? 3 : c >= 0xf0 && c <= 0xf4 ? 4 : 0;
    if (n == 0 || i + n > s.size()) return 0;
    for (std::size_t k = 1; k < n; ++k)
        if ((byte(i + k) & 0xc0) != 0x80) return 0;
    const unsigned char c1 = byte(i + 1);
    if ((c == 0xe0 && c1 < 0xa0) || (c == 0xed && c1 >= 0xa0) || (c == 0xf0 && c1 < 0x90) || (c == 0xf4 && c1 >= 0x90))
        return 0;
    return n;
}

// The text as XML character data: markup characters escaped, control
// characters and bytes that aren't UTF-8 replaced by '?', so that any file
// name still gives a well-formed document.
std::string xml(std::string_view s) {
    std::string out;
    for (std::size_t i = 0; i < s.size();) {
        const char c = s[i];
        if (static_cast<unsigned char>(c) < 0x80) {
            switch (c) {
                case '&': out += "&amp;"; break;
                case '<': out += "&lt;"; break;
                case '>': out += "&gt;"; break;
                case '"': out += "&quot;"; break;
                case '\'': out += "&apos;"; break;
                default: out += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
            }
            ++i;
        } else if (const std::size_t n = utf8_length(s, i); n > 0) {
            out.append(s.substr(i, n));
            i += n;
        } else {
            out += '?';
            ++i;
        }
    }
    return out;
}

// A long label keeps its end (the file name of a path) behind an ellipsis.
std::string tail(const std::string &s, std::size_t most) {
    std::size_t chars = 0, start = s.size();
    while (start > 0 && chars < most) {
        --start;
        if ((static_cast<unsigned char>(s[start]) & 0xc0) != 0x80) ++chars;
    }
    return start == 0 ? s : "\xe2\x80\xa6" + s.substr(start);
}

struct Point {
    double x, y;
};

bool drawable(Point p, bool xlin) {
    return std::isfinite(p.x) && std::isfinite(p.y) && p.y > 0.0 && (xlin || p.x > 0.0);
}

struct Curve {
    std::vector<Point> pts;
    std::string name;
    std::string tag;   // short label beside the curve: its energy
    bool sum = false;  // the sum shell of several
};

bool has_data(const Curve &c, bool xlin) {
    return std::any_of(c.pts.begin(), c.pts.end(), [&](Point p) { return drawable(p, xlin); });
}

// What one set contributes: its legend texts, its axes and its curves, or
// the reason why nothing of it is drawn.
struct View {
    std::string label, who, interaction, kind, shell;
    std::string xtitle, ytitle;
    bool xlin = false;
    bool energies = false;  // curves are primary energies rather than shells
    std::vector<Curve> curves;
    std::string note;
};

std::string interaction_words(int32_t IA) {
    switch (IA) {
        case 1: return "elastic scattering";
        case 2: return "ionisation";
        case 3: return "excitation";
        default: return "interaction " + std::to_string(IA);
    }
}

std::string dim_words(int32_t dim) {
    switch (dim) {
        case 0: return "total cross sections";
        case 1: return "single differential";
        case 2: return "double differential, over all angles";
        default: return "dimension " + std::to_string(dim);
    }
}

// A shell by number, with its binding energy for ionisation.  The shells of
// excitation are levels, named by number alone: once read from a file their
// km is the target's binding energy of that row, not the level's energy.
std::string shell_name(const SVLKXS &s, const SVLKXSSH &sh) {
    const int32_t n = sh.shell;
    if (n == 0) return s.nShell > 1 ? "sum of shells" : "all shells";
    if (s.IA == 3) return "level " + std::to_string(n);
    std::string name = "shell " + std::to_string(n);
    if (s.IA == 2 && s.targ.pShell != nullptr && n > 0 && n <= s.targ.nShell && s.targ.pShell[n].Ebind > 0.0)
        name += ", B = " + short_g(s.targ.pShell[n].Ebind * 1e3) + " eV";
    return name;
}

void add_shells(const SVLKXS &s, View &v) {
    for (int32_t i = 0; i < s.nShell; ++i) {
        const SVLKXSSH &sh = s.pShell[i];
        Curve c;
        c.name = shell_name(s, sh);
        c.sum = sh.shell == 0 && s.nShell > 1;
        for (int32_t j = 0; sh.pE != nullptr && j < sh.nE; ++j) c.pts.push_back({sh.pE[j].E, sh.pE[j].sigtot});
        v.curves.push_back(std::move(c));
    }
}

// At most `most` of the energies, spread evenly in ln E (by position where
// one isn't positive), the lowest and the highest among them; indices in
// ascending order.
std::vector<std::size_t> spread(const std::vector<double> &E, std::size_t most) {
    std::vector<std::size_t> all(E.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (E.size() <= most) return all;
    const auto [lo, hi] = std::minmax_element(E.begin(), E.end());
    const bool logs = *lo > 0.0 && std::isfinite(*hi) && std::all_of(E.begin(), E.end(), [](double e) { return e > 0.0; });
    std::set<std::size_t> chosen;
    for (std::size_t i = 0; i < most; ++i) {
        const double f = static_cast<double>(i) / static_cast<double>(most - 1);
        if (!logs) {
            chosen.insert(static_cast<std::size_t>(std::lround(f * static_cast<double>(E.size() - 1))));
            continue;
        }
        const double target = std::log(*lo) + f * (std::log(*hi) - std::log(*lo));
        chosen.insert(*std::min_element(all.begin(), all.end(), [&](std::size_t a, std::size_t b) {
            return std::fabs(std::log(E[a]) - target) < std::fabs(std::log(E[b]) - target);
        }));
    }
    return {chosen.begin(), chosen.end()};
}

void add_energies(const SVLKXS &s, View &v) {
    int32_t ish = s.nShell - 1;
    for (int32_t i = 0; i < s.nShell; ++i)
        if (s.pShell[i].shell == 0) ish = i;
    const SVLKXSSH &sh = s.pShell[ish];
    if (s.nShell > 1 || sh.shell != 0) v.shell = shell_name(s, sh);
    const char *unit = s.proj.type == VLKPROJ_ION ? " MeV/u" : " keV";
    std::vector<Curve> all;
    std::vector<double> E;
    for (int32_t j = 0; sh.pE != nullptr && j < sh.nE; ++j) {
        const SVLKXSE &e = sh.pE[j];
        Curve c;
        c.tag = short_g(e.E) + unit;
        c.name = "E = " + c.tag;
        // Ionisation grids hold fractions of WNorm once completed.
        const double scale = s.IA == 2 && e.WNorm > 0.0 ? e.WNorm : 1.0;
        for (int32_t k = 0; e.dv1 != nullptr && e.dvSig1 != nullptr && k < e.n1; ++k)
            c.pts.push_back({e.dv1[k] * scale, e.dvSig1[k]});
        if (!has_data(c, v.xlin)) continue;
        all.push_back(std::move(c));
        E.push_back(e.E);
    }
    for (std::size_t i : spread(E, kMostEnergies)) v.curves.push_back(std::move(all[i]));
    v.energies = true;
}

View describe(const SVLKXS *s, std::string label) {
    View v;
    v.label = std::move(label);
    if (s == nullptr) {
        v.note = "no set";
        return v;
    }
    v.who = std::string(s->proj.name ? s->proj.name : "unknown projectile") + " in " +
            (s->targ.name ? s->targ.name : "unknown target");
    v.interaction = interaction_words(s->IA);
    v.kind = dim_words(s->dim);
    if (s->dim == 0) {
        v.xtitle = s->proj.type == VLKPROJ_ION ? "E (MeV/u)" : "E (keV)";
        v.ytitle = "\xcf\x83 (cm\xc2\xb2)";
    } else if (s->IA == 1 && s->dim == 1) {
        v.xtitle = "cos \xce\xb8";
        v.ytitle = "d\xcf\x83/d\xce\xa9 (cm\xc2\xb2/sr)";
        v.xlin = true;
    } else {
        v.xtitle = "W (keV)";
        v.ytitle = "d\xcf\x83/dW (cm\xc2\xb2/keV)";
    }
    if (s->nShell <= 0 || s->pShell == nullptr) {
        v.note = "holds no shells";
        return v;
    }
    if (s->dim == 0)
        add_shells(*s, v);
    else
        add_energies(*s, v);
    if (std::none_of(v.curves.begin(), v.curves.end(), [&](const Curve &c) { return has_data(c, v.xlin); }))
        v.note = "no cross section above zero";
    return v;
}

// An axis from pixel `a` (at lo) to pixel `b` (at hi); lo, hi and step are
// decades (log10) on a log axis, values on a linear one.
struct Axis {
    bool lin = false;
    double lo = 0.0, hi = 1.0, step = 1.0;
    double a = 0.0, b = 1.0;
    double at(double v) const { return a + ((lin ? v : std::log10(v)) - lo) / (hi - lo) * (b - a); }
};

// Rounded out to whole decades (to whole steps on a linear axis), with no
// more than about eight labelled ticks; the ends are always labelled.
Axis make_axis(bool lin, double min, double max, double a, double b) {
    Axis ax;
    ax.lin = lin, ax.a = a, ax.b = b;
    if (lin) {
        if (max <= min) min -= 0.5, max += 0.5;
        const double rough = (max - min) / 5.0;
        const double mag = std::pow(10.0, std::floor(std::log10(rough)));
        const double r = rough / mag;
        ax.step = (r <= 1.0 ? 1.0 : r <= 2.0 ? 2.0 : r <= 5.0 ? 5.0 : 10.0) * mag;
        ax.lo = std::floor(min / ax.step + 1e-9) * ax.step;
        ax.hi = std::ceil(max / ax.step - 1e-9) * ax.step;
        return ax;
    }
    const double lo = std::floor(std::log10(min) + 1e-9);
    double hi = std::ceil(std::log10(max) - 1e-9);
    if (hi <= lo) hi = lo + 1.0;
    ax.step = std::ceil((hi - lo) / 8.0);
    ax.lo = std::floor(lo / ax.step) * ax.step;
    ax.hi = std::ceil(hi / ax.step) * ax.step;
    return ax;
}

// A tick label: 10 with the decade as exponent, or the value itself.
std::string tick_text(const Axis &ax, double v) {
    if (ax.lin) {
        std::string t = short_g(std::fabs(v) < ax.step * 1e-6 ? 0.0 : v);
        return t[0] == '-' ? kMinus + t.substr(1) : t;
    }
    const long d = std::lround(v);
    return "10<tspan dy=\"-7\" font-size=\"10\">" + (d < 0 ? kMinus + std::to_string(-d) : std::to_string(d)) +
           "</tspan>";
}

// Ticks, labels and grid lines of both axes.
std::string draw_axes(const Axis &x, const Axis &y) {
    std::string out = "<g stroke=\"#000\" stroke-width=\"1\">\n";
    std::string labels = "<g font-size=\"13\" fill=\"#000\">\n";
    std::string grid = "<g stroke=\"#e4e4e4\" stroke-width=\"1\">\n";
    for (const Axis *ax : {&x, &y}) {
        const bool horizontal = ax == &x;
        const auto mark = [&](double pos, double len) {
            out += horizontal ? "<line x1=\"" + fixed(pos) + "\" y1=\"" + fixed(kBottom) + "\" x2=\"" + fixed(pos) +
                                    "\" y2=\"" + fixed(kBottom - len) + "\"/>\n"
                              : "<line x1=\"" + fixed(kLeft) + "\" y1=\"" + fixed(pos) + "\" x2=\"" +
                                    fixed(kLeft + len) + "\" y2=\"" + fixed(pos) + "\"/>\n";
        };
        const double decades = ax->hi - ax->lo;
        const long n = std::lround((ax->hi - ax->lo) / ax->step);
        for (long i = 0; i <= n; ++i) {
            const double v = ax->lo + static_cast<double>(i) * ax->step;
            const double pos = ax->a + static_cast<double>(i) / static_cast<double>(n) * (ax->b - ax->a);
            mark(pos, 7.0);
            if (i > 0 && i < n)
                grid += horizontal ? "<line x1=\"" + fixed(pos) + "\" y1=\"" + fixed(kTop) + "\" x2=\"" + fixed(pos) +
                                         "\" y2=\"" + fixed(kBottom) + "\"/>\n"
                                   : "<line x1=\"" + fixed(kLeft) + "\" y1=\"" + fixed(pos) + "\" x2=\"" +
                                         fixed(kRight) + "\" y2=\"" + fixed(pos) + "\"/>\n";
            labels += horizontal ? "<text class=\"xtick\" x=\"" + fixed(pos) + "\" y=\"" + fixed(kBottom + 24) +
                                       "\" text-anchor=\"middle\">"
                                 : "<text class=\"ytick\" x=\"" + fixed(kLeft - 8) + "\" y=\"" + fixed(pos + 5) +
                                       "\" text-anchor=\"end\">";
            labels += tick_text(*ax, v) + "</text>\n";
        }
        if (ax->lin) continue;
        // Unlabelled decades, and the values 2 to 9 within each decade while
        // there are few.
        for (double d = ax->lo; d < ax->hi && decades <= 40.0; d += 1.0)
            for (int k = 1; k <= 9; ++k) {
                if (k == 1 && std::fmod(d - ax->lo, ax->step) == 0.0) continue;
                if (k > 1 && decades > 6.0) break;
                mark(ax->at(k * std::pow(10.0, d)), k == 1 ? 5.0 : 3.5);
            }
    }
    return grid + "</g>\n" + out + "</g>\n" + labels + "</g>\n";
}

// The path of a curve: a point that can't be drawn ends the line, and a
// point alone becomes a small ring around it.
std::string path_data(const std::vector<Point> &pts, const Axis &x, const Axis &y) {
    std::string d;
    std::size_t run = 0;
    const auto ring = [&] {
        if (run == 1) d += "m-3 0a3 3 0 1 0 6 0a3 3 0 1 0 -6 0";
    };
    for (const Point &p : pts) {
        if (!drawable(p, x.lin)) {
            ring();
            run = 0;
            continue;
        }
        d += run > 0 ? "L" : d.empty() ? "M" : " M";
        d += fixed(x.at(p.x)) + " " + fixed(y.at(p.y));
        ++run;
    }
    ring();
    return d;
}

struct Style {
    std::string colour, dash;
    double width = 1.8;
};

// A colour from dark blue through purple to orange, for energies in order.
std::string ramp(double f) {
    static const double stops[][3] = {{13, 8, 135}, {126, 3, 168}, {204, 71, 120}, {240, 130, 40}};
    const double t = std::clamp(f, 0.0, 1.0) * 3.0;
    const int i = std::min(2, static_cast<int>(t));
    char b[8];
    unsigned rgb[3];
    for (int k = 0; k < 3; ++k)
        rgb[k] = static_cast<unsigned>(std::lround(stops[i][k] + (t - i) * (stops[i + 1][k] - stops[i][k])));
    std::snprintf(b, sizeof b, "#%02x%02x%02x", rgb[0], rgb[1], rgb[2]);
    return b;
}

// The colour `hex` mixed with white by the share f.
std::string lighten(const char *hex, double f) {
    unsigned r = 0, g = 0, bl = 0;
    std::sscanf(hex, "#%2x%2x%2x", &r, &g, &bl);
    const auto mix = [&](unsigned c) { return static_cast<unsigned>(std::lround(c + f * (255.0 - c))); };
    char b[8];
    std::snprintf(b, sizeof b, "#%02x%02x%02x", mix(r), mix(g), mix(bl));
    return b;
}

// One set alone: a colour per shell (the sum black) or a ramp over the
// energies.  Several: the set's colour, its curves told apart by dashes (and
// energies by lightness too), the sum shell solid.
Style style_of(const View &v, std::size_t set, std::size_t sets, std::size_t j) {
    Style st;
    const std::size_t n = v.curves.size();
    const double f = n > 1 ? static_cast<double>(j) / static_cast<double>(n - 1) : 0.0;
    if (v.curves[j].sum) {
        st.colour = sets == 1 ? "#000000" : kPalette[set % kStyles];
        st.width = 3.2;
    } else if (sets == 1) {
        st.colour = v.energies ? ramp(f) : kPalette[j % kStyles];
    } else {
        st.colour = v.energies ? lighten(kPalette[set % kStyles], 0.45 * f) : kPalette[set % kStyles];
        st.dash = kDashes[j % kStyles];
    }
    return st;
}

std::string stroke(const Style &st) {
    std::string s = "fill=\"none\" stroke=\"" + st.colour + "\" stroke-width=\"" + fixed(st.width) +
                    "\" stroke-linejoin=\"round\" stroke-linecap=\"round\"";
    if (!st.dash.empty()) s += " stroke-dasharray=\"" + st.dash + "\"";
    return s;
}

std::string text_at(double x, double y, const std::string &attrs, const std::string &body) {
    return "<text x=\"" + fixed(x) + "\" y=\"" + fixed(y) + "\"" + attrs + ">" + body + "</text>\n";
}

// Beside each curve of one set's energy family, its energy: at the right
// end on a log axis, where the ends of the spectra lie apart, at the left
// end on a cosine axis, where the forward peaks crowd the right.  A label
// that would cover one placed before moves down.
std::string energy_labels(const View &v, const Axis &x, const Axis &y) {
    std::string out;
    std::vector<std::pair<double, double>> placed;  // left end and baseline
    for (std::size_t j = 0; j < v.curves.size(); ++j) {
        const Curve &c = v.curves[j];
        const Point *end = nullptr;
        for (const Point &p : c.pts)
            if (drawable(p, x.lin) && (end == nullptr || !x.lin)) end = &p;
        if (end == nullptr) continue;
        const double w = 7.0 * static_cast<double>(c.tag.size());
        const double px = x.at(end->x), py = y.at(end->y);
        const bool after = x.lin || px + 5.0 + w < kRight;
        const double left = after ? px + 5.0 : px - 5.0 - w;
        double base = after && !x.lin ? py + 4.0 : py - 6.0;
        for (bool hit = true; hit;) {
            hit = std::any_of(placed.begin(), placed.end(), [&](const auto &q) {
                return std::fabs(q.second - base) < 12.0 && std::fabs(q.first - left) < w;
            });
            if (hit) base += 12.0;
        }
        placed.emplace_back(left, base);
        out += text_at(left, std::clamp(base, kTop + 12.0, kBottom - 4.0),
                       " class=\"curve-label\" font-size=\"11\" stroke=\"#fff\" stroke-width=\"3\" paint-order=\"stroke\" fill=\"" +
                           style_of(v, 0, 1, j).colour + "\"", xml(c.tag));
    }
    return out;
}

}  // namespace

std::string plot_svg(const std::vector<const SVLKXS *> &sets, const std::vector<std::string> &labels) {
    std::vector<View> views;
    for (std::size_t i = 0; i < sets.size(); ++i)
        views.push_back(describe(sets[i], i < labels.size() ? labels[i] : "set " + std::to_string(i + 1)));

    // The first set with something to draw fixes the axes; the others join
    // it where their quantities are the same.
    const auto first = std::find_if(views.begin(), views.end(), [](const View &v) { return v.note.empty(); });
    std::vector<const View *> shown;
    double x0 = INFINITY, x1 = -INFINITY, y0 = INFINITY, y1 = -INFINITY;
    for (View &v : views) {
        if (!v.note.empty()) continue;
        if (v.xtitle != first->xtitle || v.ytitle != first->ytitle) {
            v.note = "not drawn: other quantities";
            continue;
        }
        shown.push_back(&v);
        for (const Curve &c : v.curves)
            for (const Point &p : c.pts)
                if (drawable(p, v.xlin)) x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y),
                                         y1 = std::max(y1, p.y);
    }
    const View *ref = first != views.end() ? &*first : !views.empty() ? &views.front() : nullptr;

    // Legend rows, in order, to size the canvas.
    std::string legend;
    double ly = kTop + 6.0;
    const auto row = [&](const std::string &attrs, const std::string &body, double indent = 0.0) {
        legend += text_at(kLegendX + indent, ly, attrs, body);
        ly += kRow;
    };
    for (std::size_t i = 0; i < views.size(); ++i) {
        const View &v = views[i];
        const auto at = std::find(shown.begin(), shown.end(), &v);
        const std::size_t set = static_cast<std::size_t>(at - shown.begin());
        const std::string colour = at != shown.end() && shown.size() > 1 ? kPalette[set % kStyles] : "#000000";
        if (i > 0) ly += kRow / 2;
        row(" font-weight=\"bold\" font-size=\"14\" fill=\"" + colour + "\"", xml(tail(v.label, kLabelChars)));
        for (const std::string *t : {&v.who, &v.interaction, &v.kind, &v.shell})
            if (!t->empty()) row(" fill=\"#333\"", xml(*t));
        if (!v.note.empty()) row(" class=\"note\" font-style=\"italic\" fill=\"#a00000\"", xml(v.note));
        if (at == shown.end()) continue;
        for (std::size_t j = 0; j < v.curves.size(); ++j) {
            const Style st = style_of(v, set, shown.size(), j);
            legend += "<line x1=\"" + fixed(kLegendX) + "\" y1=\"" + fixed(ly - 4.5) + "\" x2=\"" +
                      fixed(kLegendX + 40) + "\" y2=\"" + fixed(ly - 4.5) + "\" " + stroke(st) + "/>\n";
            const bool empty = !has_data(v.curves[j], v.xlin);
            row("", xml(v.curves[j].name) + (empty ? " (nothing above 0)" : ""), 48.0);
        }
    }
    const double height = std::max(kMinHeight, ly + kRow);

    // The title names the one set, or what the compared sets share.
    std::string title = "Cross sections";
    if (shown.size() > 1) {
        const bool same = std::all_of(shown.begin(), shown.end(),
                                      [&](const View *v) { return v->interaction == shown.front()->interaction; });
        title = std::to_string(shown.size()) + " sets compared: " +
                (same ? shown.front()->interaction + ", " : std::string()) +
                (shown.front()->energies ? "differential cross sections" : "total cross sections");
    } else if (ref != nullptr && !ref->who.empty()) {
        title = ref->who + ": " + ref->interaction + ", " + ref->kind + (ref->shell.empty() ? "" : ", " + ref->shell);
    }

    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + fixed(kWidth) + "\" height=\"" + fixed(height) +
           "\" viewBox=\"0 0 " + fixed(kWidth) + " " + fixed(height) +
           "\" font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\">\n";
    svg += "<title>" + xml(title) + "</title>\n";
    svg += "<rect x=\"0\" y=\"0\" width=\"" + fixed(kWidth) + "\" height=\"" + fixed(height) + "\" fill=\"#ffffff\"/>\n";
    svg += text_at(kLeft, 38.0, " font-size=\"18\" font-weight=\"bold\"", xml(title));

    if (!shown.empty()) {
        const Axis x = make_axis(first->xlin, x0, x1, kLeft, kRight);
        const Axis y = make_axis(false, y0, y1, kBottom, kTop);
        svg += draw_axes(x, y);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const View &v = *shown[i];
            for (std::size_t j = 0; j < v.curves.size(); ++j) {
                if (!has_data(v.curves[j], v.xlin)) continue;
                svg += "<path d=\"" + path_data(v.curves[j].pts, x, y) + "\" " +
                       stroke(style_of(v, i, shown.size(), j)) + "><title>" + xml(v.label) + ": " +
                       xml(v.curves[j].name) + "</title></path>\n";
            }
        }
        if (shown.size() == 1 && shown.front()->energies) svg += energy_labels(*shown.front(), x, y);
    } else {
        svg += text_at((kLeft + kRight) / 2, (kTop + kBottom) / 2,
                       " class=\"note\" text-anchor=\"middle\" font-size=\"16\" fill=\"#a00000\"",
                       xml(ref != nullptr ? "Nothing to draw: " + ref->note : "Nothing to draw: no set"));
    }
    svg += "<rect x=\"" + fixed(kLeft) + "\" y=\"" + fixed(kTop) + "\" width=\"" + fixed(kRight - kLeft) +
           "\" height=\"" + fixed(kBottom - kTop) + "\" fill=\"none\" stroke=\"#000\" stroke-width=\"1.2\"/>\n";
    if (ref != nullptr) {
        svg += text_at((kLeft + kRight) / 2, kBottom + 50, " font-size=\"15\" text-anchor=\"middle\"", xml(ref->xtitle));
        svg += "<text x=\"30\" y=\"" + fixed((kTop + kBottom) / 2) + "\" font-size=\"15\" text-anchor=\"middle\"" +
               " transform=\"rotate(-90 30 " + fixed((kTop + kBottom) / 2) + ")\">" + xml(ref->ytitle) + "</text>\n";
    }
    svg += "<g font-size=\"13\">\n" + legend + "</g>\n</svg>\n";
    return svg;
}

}  // namespace vlkcli
