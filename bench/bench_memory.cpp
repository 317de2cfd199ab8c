// Peak memory of reading and completing a large double-differential file,
// against the size of the file and the bytes of the numbers the set keeps.
// A plain program: run it alone, as the peak of the process is what counts.
//
//   bench_memory [megabytes]    (default 100)
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "vlkxs.h"
#include "xsfile.hpp"

namespace {

double peak_mib() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

// Doubles of the set: the fourteen of each record and every table.
long long doubles_of(const SVLKXS &s) {
    long long n = 0;
    for (int32_t i = 0; i < s.nShell; ++i)
        for (int32_t j = 0; j < s.pShell[i].nE; ++j) {
            const SVLKXSE &e = s.pShell[i].pE[j];
            n += 14;
            n += static_cast<long long>(e.n1) * ((e.dv1 != nullptr) + (e.dvSig1 != nullptr) + (e.dvCum1 != nullptr));
            if (e.nv2 == nullptr) continue;
            for (int32_t k = 0; k < e.n1; ++k)
                n += static_cast<long long>(e.nv2[k]) *
                     ((e.pdv2 != nullptr && e.pdv2[k] != nullptr) + (e.pdvSig2 != nullptr && e.pdvSig2[k] != nullptr) +
                      (e.pdvCum2 != nullptr && e.pdvCum2[k] != nullptr));
        }
    return n;
}

}  // namespace

int main(int argc, char **argv) {
    const double want = argc > 1 ? std::atof(argv[1]) : 100.0;
    // Some 26 bytes a data line: 2 shells x 100 energies x 200 tables x rows.
    const int rows = static_cast<int>(want * 1e6 / 26.0 / (2 * 100 * 200)) + 1;
    const auto dir = std::filesystem::temp_directory_path();
    const auto [path, lines] = vlkbench::make_file(2, 2, 100, 200, rows < 2 ? 2 : rows, dir);
    const double file_mib = static_cast<double>(std::filesystem::file_size(path)) / 1048576.0;

    const double base = peak_mib();
    SVLKXS set;
    SCMDSTATUS s = VLKXSRead(&set, path.c_str(), 0);
    if (s.code != 0) return 1;
    const double after_read = peak_mib();
    const double read_doubles = static_cast<double>(doubles_of(set)) * 8.0 / 1048576.0;
    s = VLKXSComplete(&set, 0);
    if (s.code != 0) return 1;
    const double after_complete = peak_mib();
    const double doubles = static_cast<double>(doubles_of(set)) * 8.0 / 1048576.0;
    VLKXSSpace(&set, VLKXS_MODE_QUIET);

    std::printf("file            %8.1f MiB, %ld data lines\n", file_mib, lines);
    std::printf("read:  doubles  %8.1f MiB, peak %8.1f MiB (+%.1f over the start)\n", read_doubles, after_read,
                after_read - base);
    std::printf("complete: doubles %6.1f MiB, peak %8.1f MiB (+%.1f over the start)\n", doubles, after_complete,
                after_complete - base);
    std::printf("set space       %8.1f MiB (VLKXSSpace, 32-bit)\n", static_cast<double>(set.space) / 1048576.0);
    std::printf("peak / (file + doubles) = %.2f\n", (after_complete - base) / (file_mib + doubles));
    VLKXSFree(&set, 0);
    std::filesystem::remove(path);
    return 0;
}
