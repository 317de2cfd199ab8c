// Telling the user what went wrong, and how far long work has come.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "vlkxs.h"

namespace vlkcli {

// Exit statuses of the tool.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// True when a status record tells of a failure: any of the top eight bits of
// its level.
bool failed(const SCMDSTATUS &s);

// The parts of a failed status record as plain texts, copied at once: the
// library's texts behind `item` and `text` don't outlive the next call.
struct Fault {
    int code = 0;
    std::string message;  // the row of cvMsg
    std::string origin;   // "vlkxs(Read)"
    std::string file;     // file being read, or ""
    int line = 0;         // its line, from 1; 0 for none
    std::string item;     // offending item or location text, or ""
    std::string text;     // the line of the file, or ""

    // "file:line" for a fault in a file, else the item; "" for neither.
    std::string location() const;
    // "<message> (code N, <origin>) at <location>".
    std::string describe() const;
};

Fault fault_of(const SCMDSTATUS &s);

// Prints "vlkxs CMD: CONTEXT: description" (or without the context) on
// stderr and returns kExitFailed.
int report(std::string_view cmd, std::string_view context, const SCMDSTATUS &s);
// Prints "vlkxs CMD: TEXT" on stderr and returns kExitFailed.
int report_text(std::string_view cmd, std::string_view text);

// `text` as a JSON string, quotes included; bytes that aren't UTF-8 become
// U+FFFD, so that the result is always valid JSON.
std::string json_string(std::string_view text);

// One line of progress on stderr, rewritten in place, when stderr is a
// terminal (or `enabled` says so); nothing at all otherwise.  The tool's own
// reports take the line away first (clear_progress).
class Progress {
public:
    Progress();
    explicit Progress(bool enabled, std::FILE *stream = stderr) : enabled_(enabled), stream_(stream) {}
    ~Progress() { clear(); }
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    void show(std::string_view text);
    // Removes the line, before other output or at the end.
    void clear();

private:
    bool enabled_;
    std::FILE *stream_;
    bool shown_ = false;
};

// Clears the progress line on show, if any, before other output.
void clear_progress();

}  // namespace vlkcli
