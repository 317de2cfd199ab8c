// The SVG plotter, vlkcli::plot_svg; its stand-in while the plotter is absent.
#pragma once

#if __has_include("plot.hpp")
#include "plot.hpp"
#else
#include "plot_standin.hpp"
#endif
