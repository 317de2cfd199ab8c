// File memory: a whole file read once into one image and handed out line by
// line, any number of passes.
//
// Layout of the one block behind pImage:
//   [0, nImage)          the bytes of the file, line ends replaced (below)
//   [nImage]             a 0 byte that ends a last line without a line end
//   [nImage + 1, ...)    one bit a byte of the image: set where a line ends
//
// Read prepares every line at once: the byte just behind each line becomes
// 0 (the "\n", or the "\r" of a "\r\n", whose "\n" stays), and its bit is
// set.  The bits are needed because a line may hold 0 bytes of its own;
// a 0 in the image ends a line only where its bit says so.  After Read the
// image never changes again, so that the pointers handed out stay valid and
// show the same text in every pass until Close.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "core/alloc.hpp"
#include "vlkxs.h"

namespace vlk {
namespace {

constexpr bool traced(int32_t trace) noexcept { return trace < 0; }

std::FILE *stream_of(const SUFILEMEM *fm) noexcept { return static_cast<std::FILE *>(fm->fp); }

unsigned char *bits_of(const SUFILEMEM *fm) noexcept {
    return reinterpret_cast<unsigned char *>(fm->pImage + fm->nImage + 1);
}
bool ends_line(const unsigned char *bits, std::uint64_t at) noexcept {
    return (bits[at / 8] >> (at % 8) & 1u) != 0;
}
void mark_line_end(unsigned char *bits, std::uint64_t at) noexcept {
    bits[at / 8] = static_cast<unsigned char>(bits[at / 8] | 1u << (at % 8));
}

// Bytes of the stream from its position to its end; false if the stream
// can't tell (a pipe, a terminal).
bool stream_size(std::FILE *f, std::uint64_t &size) noexcept {
#if defined(_WIN32)
    if (_fseeki64(f, 0, SEEK_END) != 0) return false;
    const long long end = _ftelli64(f);
    if (end < 0 || _fseeki64(f, 0, SEEK_SET) != 0) return false;
#else
    if (fseeko(f, 0, SEEK_END) != 0) return false;
    const off_t end = ftello(f);
    if (end < 0 || fseeko(f, 0, SEEK_SET) != 0) return false;
#endif
    size = static_cast<std::uint64_t>(end);
    return true;
}

void close_stream(SUFILEMEM *fm) noexcept {
    if (fm->fp != nullptr) std::fclose(stream_of(fm));
    fm->fp = nullptr;
}

// Terminates every line of a freshly read image in place and marks its end.
void prepare_lines(SUFILEMEM *fm) noexcept {
    char *image = fm->pImage;
    unsigned char *bits = bits_of(fm);
    const std::uint64_t n = fm->nImage;
    std::uint64_t start = 0;
    while (start < n) {
        const void *hit = std::memchr(image + start, '\n', static_cast<std::size_t>(n - start));
        if (hit == nullptr) break;  // a last line without a line end: image[n] is its 0
        const auto nl = static_cast<std::uint64_t>(static_cast<const char *>(hit) - image);
        const std::uint64_t end = (nl > start && image[nl - 1] == '\r') ? nl - 1 : nl;
        image[end] = '\0';
        mark_line_end(bits, end);
        start = nl + 1;
    }
}

}  // namespace
}  // namespace vlk

int32_t uFileMemInit(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    *fm = SUFILEMEM{};
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemInit()\n");
    return 0;
}

// `how` 1 opens the file for reading it whole; no other way exists.  Whatever
// the record held before is released first.
int32_t uFileMemOpen(SUFILEMEM *fm, const char *path, int32_t how, int32_t trace) {
    if (fm == nullptr) return -1;
    uFileMemClose(fm, 0);
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemOpen(%s)\n", path != nullptr ? path : "(null)");
    if (path == nullptr || how != 1) return -1;
    std::FILE *f = std::fopen(path, "rb");
    if (f == nullptr) return -1;
#if !defined(_WIN32)
    // A directory opens as a stream here but has no lines to read.
    struct stat st {};
    if (fstat(fileno(f), &st) == 0 && S_ISDIR(st.st_mode)) {
        std::fclose(f);
        return -1;
    }
#endif
    fm->fp = f;
    return 0;
}

// The stream is closed whatever the outcome.  On failure the record holds no
// image.
int32_t uFileMemRead(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    std::FILE *f = vlk::stream_of(fm);
    if (f == nullptr) return -1;

    std::uint64_t size = 0;
    bool ok = vlk::stream_size(f, size);
    // Image, its 0 byte and the line-end bits in one block.
    constexpr std::uint64_t limit = std::numeric_limits<std::size_t>::max() / 2;
    ok = ok && size < limit;
    const std::uint64_t bytes = size + 1 + (size + 1 + 7) / 8;
    char *image = ok ? static_cast<char *>(vlk::zalloc(static_cast<std::size_t>(bytes), 1)) : nullptr;
    std::uint64_t got = 0;
    if (image != nullptr) {
        got = std::fread(image, 1, static_cast<std::size_t>(size), f);
        // A file that shrank since its size was taken is read as it is now.
        ok = got == size || !std::ferror(f);
    } else {
        ok = false;
    }
    vlk::close_stream(fm);
    if (!ok) {
        std::free(image);
        if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemRead() failed\n");
        return -1;
    }

    std::free(fm->pImage);
    fm->pImage = image;
    fm->nImage = got;
    // The bits start right behind the 0 byte, which moves with a short read;
    // clear the bytes that lay between and any bits they would mean.
    if (got < size) std::memset(image + got, 0, static_cast<std::size_t>(bytes - got));
    vlk::prepare_lines(fm);
    fm->iNext = 0;
    fm->nLineNo = 0;
    fm->pLine = nullptr;
    fm->nLine = 0;
    if (vlk::traced(trace))
        std::fprintf(stderr, "<D> uFileMemRead() %llu bytes\n", static_cast<unsigned long long>(got));
    return 0;
}

int32_t uFileMemLineFirst(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    fm->iNext = 0;
    fm->nLineNo = 0;
    fm->pLine = nullptr;
    fm->nLine = 0;
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemLineFirst()\n");
    return fm->pImage != nullptr ? 0 : -1;
}

// At the end pLine is null and nLine 0.  A line too long for nLine ends the
// delivery like the end of the file does.
int32_t uFileMemLineNext(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    char *image = fm->pImage;
    const std::uint64_t n = fm->nImage;
    const std::uint64_t start = fm->iNext;
    if (image == nullptr || start >= n) {
        fm->pLine = nullptr;
        fm->nLine = 0;
        if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemLineNext() end after %d lines\n", fm->nLineNo);
        return 1;
    }
    const unsigned char *bits = vlk::bits_of(fm);
    std::uint64_t end = start;
    for (;;) {
        const void *hit = std::memchr(image + end, '\0', static_cast<std::size_t>(n - end));
        if (hit == nullptr) {
            end = n;
            break;
        }
        end = static_cast<std::uint64_t>(static_cast<const char *>(hit) - image);
        if (vlk::ends_line(bits, end)) break;
        ++end;  // a 0 byte of the line itself
    }
    if (end - start > std::numeric_limits<uint32_t>::max()) {
        fm->pLine = nullptr;
        fm->nLine = 0;
        if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemLineNext() line too long\n");
        return 1;
    }
    // Behind a line end at `end`: the "\n" of a "\r\n" is still there (every
    // other "\n" became 0), and the next line starts after it.
    std::uint64_t next = end < n ? end + 1 : n;
    if (next < n && image[next] == '\n') ++next;
    fm->pLine = image + start;
    fm->nLine = static_cast<uint32_t>(end - start);
    fm->iNext = next;
    if (fm->nLineNo < std::numeric_limits<int32_t>::max()) ++fm->nLineNo;
    return 0;
}

int32_t uFileMemClose(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemClose()\n");
    vlk::close_stream(fm);
    std::free(fm->pImage);
    *fm = SUFILEMEM{};
    return 0;
}
