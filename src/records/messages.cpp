// The message table: one text for each status code.  Codes that no operation
// of this module sets belong to other modules of the library, which hand
// their records to VLKXSError; their rows stand here all the same.
#include "core/core.hpp"
#include "vlkxs.h"

const char *const cvMsg[VLKXS_C_COUNT] = {
    "unknown error",                                   //  0
    "run time system error",                           //  1
    "bad address",                                     //  2
    "bad number",                                      //  3
    "bad number of primary energies",                  //  4
    "bad projectile",                                  //  5
    "bad target",                                      //  6
    "bad number of shells",                            //  7
    "bad number of primary energies",                  //  8
    "bad energy",                                      //  9
    "bad total cross section",                         // 10
    "bad number of secondary energies",                // 11
    "bad number of secondary angles",                  // 12
    "bad double differential cross section",           // 13
    "no such projectile",                              // 14
    "projectile duplication failed",                   // 15
    "target duplication failed",                       // 16
    "no such calculation method",                      // 17
    "bad secondary energies",                          // 18
    "bad angle(s) for secondary particles",            // 19
    "bad (unsupported) interaction type",              // 20
    "bad (unsupported) interaction dimension",         // 21
    "bad cross sections for projectile(s)",            // 22
    "bad cross sections for target",                   // 23
    "bad item list",                                   // 24
    "no such material",                                // 25
    "particle energy out-of-range",                    // 26
    "not a Compton cross section",                     // 27
    "bad energy differential cross sections",          // 28
    "bad angular differential cross sections",         // 29
    "target material mismatch",                        // 30
    "projectile mismatch",                             // 31
    "no valid interaction cross section found",        // 32
    "cross section data base is empty",                // 33
    "cross section base is not properly initialized",  // 34
    "bad item list",                                   // 35
    "bad file list",                                   // 36
    "Rudd model: unsupported target",                  // 37
    "read: unknown tag",                               // 38
    "read: syntax error",                              // 39
    "read: no data",                                   // 40
    "read: too few data",                              // 41
    "read: bad file type",                             // 42
    "read: bad file version",                          // 43
    "read: bad number",                                // 44
    "read: bad target",                                // 45
    "read: bad projectile",                            // 46
    "read: bad shell",                                 // 47
    "read: bad # of shells",                           // 48
    "read: bad primary energy",                        // 49
    "read: bad secondary energy",                      // 50
    "read: bad cross section data",                    // 51
    "read: duplicate shell number",                    // 52
    "read: duplicate primary energy",                  // 53
    "read: duplicate secondary energy",                // 54
    "bad SDCS table(s)",                               // 55
    "bad SDCS value",                                  // 56
    "bad SDCS cumulation",                             // 57
    "bad DDCS table(s)",                               // 58
    "bad DDCS value",                                  // 59
    "bad DDCS cumulation",                             // 60
    "target completion failed",                        // 61
    "bad shell number",                                // 62
    "cross section calculation for target failed",     // 63
    "bad target constituents",                         // 64
    "projectile copying failed",                       // 65
    "target copying failed",                           // 66
    "target is a mixture",                             // 67
    "no such target cross section",                    // 68
    "Green-Stolarski model: unsupported target",       // 69
};

static_assert(sizeof(cvMsg) / sizeof(cvMsg[0]) == 70, "one message for each of the 70 codes");

// Attaches the message and hands the record to the message printer.  It makes
// no record of its own; its tag appears in the trace lines only.
int32_t VLKXSError(SCMDSTATUS *status, int32_t mode) {
    static constexpr const char *kTag = "vlkxs(Error)";
    vlk::trace_enter(kTag, mode);
    if (status != nullptr) {
        int32_t code = status->code;
        if (code < 0 || code >= VLKXS_C_COUNT) code = VLKXS_C_OK;
        status->msg = cvMsg[code];
        _cmderrMsg(status, 0);
    }
    vlk::trace_leave(kTag, mode);
    return 0;
}
