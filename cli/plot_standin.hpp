// Stand-in for the SVG plotter until it arrives: the same declaration.
#pragma once

#include <string>
#include <vector>

#include "vlkxs.h"

namespace vlkcli {
// An SVG document of one or more completed sets, each labelled (e.g. by its file name).
std::string plot_svg(const std::vector<const SVLKXS *> &sets, const std::vector<std::string> &labels);
}  // namespace vlkcli
