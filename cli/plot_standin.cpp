// Stand-in for the SVG plotter until it arrives: an empty document with a
// comment for each set.  Compiled to nothing once the plotter's own header
// is here.
#if !__has_include("plot.hpp")
#include "plot_standin.hpp"

namespace vlkcli {

std::string plot_svg(const std::vector<const SVLKXS *> &sets, const std::vector<std::string> &labels) {
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"480\">\n";
    for (std::size_t i = 0; i < sets.size() && i < labels.size(); ++i)
        svg += "<!-- set " + std::to_string(i) + " -->\n";
    return svg + "</svg>\n";
}

}  // namespace vlkcli
#endif
