// File memory: a whole file read once into one image and handed out line by
// line, any number of passes.
//
// Read prepares every line at once: the byte just behind each line becomes 0
// (the "\n", or the "\r" of a "\r\n", whose "\n" stays), and the length of
// the line goes into an index, one 32-bit entry a line.  A line may hold 0
// bytes of its own; the index, not the 0 bytes, says where it ends.  Every
// later pass steps through the index without looking at the text.  After
// Read the image never changes again, so that the pointers handed out stay
// valid and show the same text in every pass until Close.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "companions/filemem.hpp"
#include "core/alloc.hpp"
#include "core/status.hpp"
#include "vlkxs.h"

namespace vlk {
namespace {

std::FILE *stream_of(const SUFILEMEM *fm) noexcept { return static_cast<std::FILE *>(fm->fp); }

// Lines a signed 32-bit line counter can number; tests may lower it.
constexpr int64_t kMaxLines = std::numeric_limits<int32_t>::max();
#if defined(VLKXS_FAULT_INJECTION)
std::atomic<int64_t> g_max_lines{kMaxLines};
int64_t max_lines() noexcept { return g_max_lines.load(std::memory_order_relaxed); }
#else
constexpr int64_t max_lines() noexcept { return kMaxLines; }
#endif

// An index entry is the length of the line in its low 31 bits and, in its
// top bit, whether a "\r\n" ended it; the next line starts that many bytes
// further on, so no pass has to look at the text to find it.  A line of 2^31
// bytes or more gets the entry kTooLong, which ends the delivery.
constexpr uint32_t kCrlf = 0x80000000u;
constexpr uint32_t kTooLong = std::numeric_limits<uint32_t>::max();
constexpr uint32_t length_of(uint32_t entry) noexcept { return entry & ~kCrlf; }
constexpr uint64_t advance_of(uint32_t entry) noexcept { return length_of(entry) + 1u + (entry >> 31); }

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

// Terminates every line of a freshly read image in place and appends its
// index entry to `index`; the number of lines, or -1 if there are more than a
// line counter holds or the index couldn't grow.
int64_t prepare_lines(char *image, uint64_t n, Buffer<uint32_t> &index) noexcept {
    uint64_t start = 0;
    int64_t lines = 0;
    while (start < n) {
        const void *hit = std::memchr(image + start, '\n', static_cast<std::size_t>(n - start));
        // A last line without a line end: image[n] is its 0.
        const auto nl = hit != nullptr ? static_cast<uint64_t>(static_cast<const char *>(hit) - image) : n;
        const bool crlf = hit != nullptr && nl > start && image[nl - 1] == '\r';
        const uint64_t end = crlf ? nl - 1 : nl;
        image[end] = '\0';
        if (lines == max_lines() || !index.reserve(static_cast<std::size_t>(lines) + 1)) return -1;
        index[static_cast<std::size_t>(lines++)] =
            end - start < kCrlf ? static_cast<uint32_t>(end - start) | (crlf ? kCrlf : 0u) : kTooLong;
        start = nl + 1;
    }
    return lines;
}

}  // namespace

#if defined(VLKXS_FAULT_INJECTION)
int64_t testhook::set_line_limit(int64_t n) noexcept {
    return g_max_lines.exchange(n > 0 && n < kMaxLines ? n : kMaxLines, std::memory_order_relaxed);
}
#endif

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
    // The image and the 0 byte behind it.
    constexpr std::uint64_t limit = std::numeric_limits<std::size_t>::max() / 2;
    ok = ok && size < limit;
    char *image = ok ? static_cast<char *>(vlk::zalloc(static_cast<std::size_t>(size + 1), 1)) : nullptr;
    std::uint64_t got = 0;
    if (image != nullptr) {
        got = std::fread(image, 1, static_cast<std::size_t>(size), f);
        // A file that shrank since its size was taken is read as it is now.
        ok = got == size || !std::ferror(f);
    } else {
        ok = false;
    }
    vlk::close_stream(fm);
    // Line numbers are signed 32-bit counts: a file of more lines is refused
    // before any count can wrap.
    vlk::Buffer<uint32_t> index;
    int64_t lines = -1;
    if (ok) {
        image[got] = '\0';
        lines = index.reserve(static_cast<std::size_t>(got / 32) + 16) ? vlk::prepare_lines(image, got, index) : -1;
    }
    if (lines < 0) {
        std::free(image);
        if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemRead() failed\n");
        return -1;
    }

    std::free(fm->pImage);
    std::free(fm->pLen);
    fm->pImage = image;
    fm->nImage = got;
    fm->pLen = index.release();
    fm->nLines = static_cast<int32_t>(lines);
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
    const int32_t i = fm->nLineNo;
    // nLines is 0 whenever there is no image.
    const uint32_t entry = i < fm->nLines ? fm->pLen[i] : vlk::kTooLong;
    if (entry == vlk::kTooLong) {
        fm->pLine = nullptr;
        fm->nLine = 0;
        if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemLineNext() end after %d lines\n", fm->nLineNo);
        return 1;
    }
    fm->pLine = fm->pImage + fm->iNext;
    fm->nLine = vlk::length_of(entry);
    fm->iNext += vlk::advance_of(entry);
    fm->nLineNo = i + 1;
    return 0;
}

// Steps over lines as LineNext would, without delivering them; stops early
// where LineNext would end the pass.
int32_t uFileMemLineSkip(SUFILEMEM *fm, int32_t count, int32_t trace) {
    if (fm == nullptr || fm->pImage == nullptr || fm->pLen == nullptr || count <= 0) return 0;
    const int32_t first = fm->nLineNo;
    const int32_t last = count < fm->nLines - first ? first + count : fm->nLines;
    // One sum over the entries, with the rare line too long to deliver
    // looked for beside it, so that the loop stays branch-free.
    const uint32_t *const len = fm->pLen;
    uint64_t bytes = 0;
    uint32_t too_long = 0;
    for (int32_t i = first; i < last; ++i) {
        const uint32_t e = len[i];
        too_long |= static_cast<uint32_t>(e == vlk::kTooLong);
        bytes += vlk::advance_of(e);
    }
    int32_t stop = last;
    if (too_long) {
        bytes = 0;
        for (stop = first; stop < last && fm->pLen[stop] != vlk::kTooLong; ++stop) bytes += vlk::advance_of(fm->pLen[stop]);
    }
    fm->iNext += bytes;
    fm->nLineNo = stop;
    fm->pLine = nullptr;
    fm->nLine = 0;
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemLineSkip() %d lines\n", stop - first);
    return stop - first;
}

int32_t uFileMemClose(SUFILEMEM *fm, int32_t trace) {
    if (fm == nullptr) return -1;
    if (vlk::traced(trace)) std::fprintf(stderr, "<D> uFileMemClose()\n");
    vlk::close_stream(fm);
    std::free(fm->pImage);
    std::free(fm->pLen);
    *fm = SUFILEMEM{};
    return 0;
}
