// Synthetic xs files for the benchmarks.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

namespace vlkbench {

// Writes a water/electron ionisation file of `dim` with `shells` shells,
// `energies` records a shell, `points` first-level and `rows` second-level
// points; returns its path and the number of data lines.
inline std::pair<std::string, long> make_file(int dim, int shells, int energies, int points, int rows) {
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("vlkxs-bench-" + std::to_string(dim) + "-" + std::to_string(energies) + ".xs"))
                                 .string();
    std::FILE *f = std::fopen(path.c_str(), "w");
    const char dims[] = "tsd";
    std::fprintf(f, "!filetype    xs i,%c\n!fileversion 20080825\n!target      H2O\n!projectile  e\n", dims[dim]);
    long lines = 0;
    for (int s = 1; s <= shells; ++s) {
        std::fprintf(f, "#\n!shell       %d\n\n", s);
        for (int j = 0; j < energies; ++j) {
            const double E = 0.01 * (j + 1);
            if (dim == 0) {
                std::fprintf(f, "%G %G\n", E, 1e-16 * (j + 1));
                ++lines;
                continue;
            }
            std::fprintf(f, "!eproj      %G\n", E);
            for (int k = 0; k < points; ++k) {
                const double W = 0.001 * (k + 1);
                if (dim == 1) {
                    std::fprintf(f, "%G %G %G\n", W, 1e-17 / (k + 1), double(k) / points);
                    ++lines;
                    continue;
                }
                std::fprintf(f, "!esec       %G\n", W);
                for (int m = 0; m < rows; ++m) {
                    std::fprintf(f, "%G %G %G\n", -1.0 + 2.0 * m / (rows - 1), 1e-18 * (m + 1), double(m) / rows);
                    ++lines;
                }
            }
        }
    }
    std::fclose(f);
    return {path, lines};
}

}  // namespace vlkbench
