// Running the tool's commands in-process and as the built program, and
// reading what they print and write.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "capture.hpp"
#include "commands.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace vlktest {

struct Result {
    int status;
    std::string out, err;
};

// Words of a command line split at blanks.
inline vlkcli::Argv words(const std::string &line) {
    vlkcli::Argv argv;
    std::istringstream in(line);
    for (std::string w; in >> w;) argv.push_back(w);
    return argv;
}

// A command called in-process, its stdout and stderr captured.
inline Result call(int (*cmd)(const vlkcli::Argv &), const vlkcli::Argv &argv) {
    Capture err(stderr), out(stdout);
    const int status = cmd(argv);
    std::string o = out.finish();
    return {status, o, err.finish()};
}

// The built program run in `dir` by the shell, with `env` assignments before it.
inline Result tool(const std::string &args, const TempDir &dir, const std::string &env = "") {
    const std::string line =
        "cd '" + dir.path().string() + "' && " + env + " '" VLKXS_TOOL "' " + args + " >.out 2>.err";
    const int rc = std::system(line.c_str());
    return {WIFEXITED(rc) ? WEXITSTATUS(rc) : 128 + WTERMSIG(rc), read_file(dir.path() / ".out"),
            read_file(dir.path() / ".err")};
}

// Names in `dir` of the tool's temporaries.
inline int temporaries(const TempDir &dir) {
    int n = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir.path()))
        n += e.path().filename().string().starts_with(".vlkxs-");
    return n;
}

// Shells and records of shell 0 of an xs file as read back; -1, -1 if it doesn't read.
inline std::pair<int, int> shape(const std::string &path) {
    SVLKXS set;
    const SCMDSTATUS s = VLKXSRead(&set, path.c_str(), VLKXS_MODE_QUIET);
    const std::pair<int, int> r = s.code != 0 ? std::pair{-1, -1} : std::pair{set.nShell, set.pShell[0].nE};
    VLKXSFree(&set, 0);
    return r;
}

// A flat JSON object: each key with its value as JSON text (strings decoded,
// numbers and words as written).  Empty if `text` isn't one.
inline std::map<std::string, std::string> parse_object(const std::string &text) {
    std::map<std::string, std::string> obj;
    std::size_t i = 0;
    const auto str = [&](std::string &out) {
        if (text[i++] != '"') return false;
        for (; i < text.size() && text[i] != '"'; ++i) {
            if (text[i] != '\\') {
                out += text[i];
                continue;
            }
            const char c = text[++i];
            if (c != 'u') {
                out += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
                continue;
            }
            const unsigned long cp = std::stoul(text.substr(i + 1, 4), nullptr, 16);
            i += 4;
            if (cp < 0x80)
                out += char(cp);
            else if (cp < 0x800)
                (out += char(0xc0 | cp >> 6)) += char(0x80 | (cp & 0x3f));
            else
                ((out += char(0xe0 | cp >> 12)) += char(0x80 | (cp >> 6 & 0x3f))) += char(0x80 | (cp & 0x3f));
        }
        return i++ < text.size();
    };
    if (text.empty() || text[i++] != '{') return {};
    while (i < text.size() && text[i] != '}') {
        std::string key, value;
        if (!str(key) || text[i++] != ':') return {};
        if (text[i] == '"') {
            if (!str(value)) return {};
        } else {
            while (i < text.size() && text[i] != ',' && text[i] != '}') value += text[i++];
        }
        obj[key] = value;
        if (text[i] == ',') ++i;
    }
    return obj;
}

}  // namespace vlktest
