// The message printer and the protocol printer of the library.
#include <cstdio>

#include "vlkxs.h"

namespace {

// A counted or terminated text as printf arguments; null prints as "".
struct Counted {
    int len;
    const char *p;
};
Counted counted(const char *p, int32_t len) {
    if (p == nullptr) return {0, ""};
    if (len > 0) return {len, p};
    int n = 0;
    while (p[n] != '\0') ++n;
    return {n, p};
}

}  // namespace

// One report a call, on stderr.  The first line names the severity, the
// origin, the message and the code; the lines under it, indented by four
// blanks, locate the fault: the file and line with the text of the line, and
// the item.
int32_t _cmderrMsg(const SCMDSTATUS *s, int32_t /*flags*/) {
    if (s == nullptr) return 0;
    const char *mark = (s->level & VLKXS_LEVEL_ERROR) != 0     ? "<E> "
                       : (s->level & VLKXS_LEVEL_WARNING) != 0 ? "<W> "
                                                               : "<I> ";
    std::fprintf(stderr, "%s%s: %s (code %d)\n", mark, s->origin != nullptr ? s->origin : "vlkxs",
                 s->msg != nullptr ? s->msg : "", s->code);
    if (s->file != nullptr) {
        if (s->line > 0 && s->text != nullptr) {
            Counted t = counted(s->text, s->textlen);
            if (s->textlen <= 0) t.len = 0;
            std::fprintf(stderr, "    %s:%d: %.*s\n", s->file, s->line, t.len, t.p);
        } else if (s->line > 0) {
            std::fprintf(stderr, "    %s:%d\n", s->file, s->line);
        } else {
            std::fprintf(stderr, "    %s\n", s->file);
        }
    }
    if (s->item != nullptr) {
        Counted i = counted(s->item, s->itemlen);
        std::fprintf(stderr, "    item: %.*s\n", i.len, i.p);
    }
    return 0;
}

// The protocol goes to stdout, one line for each call.
int32_t _prtcl(const char *text, int32_t /*cls*/) {
    std::fprintf(stdout, "%s\n", text != nullptr ? text : "");
    return 0;
}
