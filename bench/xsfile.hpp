// Synthetic xs files for the benchmarks.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace vlkbench {

// Creates `path` and writes the four header lines of a water/electron
// ionisation file of `dim`.
inline std::FILE *open_xs(const std::string &path, int dim) {
    std::FILE *f = std::fopen(path.c_str(), "w");
    if (f == nullptr) {
        std::perror(path.c_str());
        std::exit(1);
    }
    const char dims[] = "tsd";
    std::fprintf(f, "!filetype    xs i,%c\n!fileversion 20080825\n!target      H2O\n!projectile  e\n", dims[dim]);
    return f;
}

// Writes a water/electron ionisation file of `dim` with `shells` shells,
// `energies` records a shell, `points` first-level and `rows` second-level
// points, in `dir`; returns its path and the number of data lines.
inline std::pair<std::string, long> make_file(
    int dim, int shells, int energies, int points, int rows,
    const std::filesystem::path &dir = std::filesystem::temp_directory_path()) {
    const std::string path =
        (dir / ("vlkxs-bench-" + std::to_string(dim) + "-" + std::to_string(energies) + ".xs")).string();
    std::FILE *f = open_xs(path, dim);
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

// Writes a file of `dim` whose every section holds a single data line, `n`
// sections in all: dim 0 has shells 1 to n, dim 1 one shell with n "!eproj"
// records, dim 2 one shell and one "!eproj" with n "!esec" tables.  Every
// number that tells sections apart is distinct: the file is valid, and it
// stresses the reader's search for duplicate sections.  Returns the path.
inline std::string make_sections(int dim, int n,
                                 const std::filesystem::path &dir = std::filesystem::temp_directory_path()) {
    const std::string path = (dir / ("vlkxs-sections-" + std::to_string(dim) + ".xs")).string();
    std::FILE *f = open_xs(path, dim);
    if (dim == 0) {
        for (int k = 1; k <= n; ++k) std::fprintf(f, "!shell %d\n1 1E-16\n", k);
    } else if (dim == 1) {
        std::fprintf(f, "!shell 1\n");
        for (int k = 1; k <= n; ++k) std::fprintf(f, "!eproj %d\n0.01 1E-17 1\n", k);
    } else {
        std::fprintf(f, "!shell 1\n!eproj 100\n");
        for (int k = 1; k <= n; ++k) std::fprintf(f, "!esec %d\n0 1E-18 1\n", k);
    }
    std::fclose(f);
    return path;
}

}  // namespace vlkbench
