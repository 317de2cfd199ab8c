/*
 * vlkxs.h - cross sections of charged particles in matter.
 *
 * The one public header of the vlkxs module and of the companion layer that
 * stands beside it.  It compiles as C99 and as C++; every function has C
 * linkage, so that C, C++, Fortran (bind(C)) and Python (ctypes/cffi) callers
 * see the same symbols.
 *
 * Conventions that hold for every operation below unless its comment says
 * otherwise:
 *   - Records are handed by pointer: destination first, source second, and the
 *     `mode` word last.  The status record comes back by value; it owns
 *     nothing.
 *   - A failure is a `level` with any of its top eight bits set; `code` is the
 *     row of the message table (VLKXS_C_... below).  `msg` stays null until
 *     VLKXSError has run on the record.
 *   - Bit 31 of `mode` (VLKXS_MODE_TRACE) writes "<D> tag....." and
 *     "<D> tag done" lines to stderr; bit 30 (VLKXS_MODE_QUIET) keeps the
 *     operations that honour it from reporting their failure.
 *   - Every array that a set owns is a separate zero-filled block from
 *     calloc/realloc and is released by VLKXSFree with free(), whoever made it.
 *   - Units: primary energy `E` in keV (MeV/u for ions, projectile type 5);
 *     secondary energies, `km`, `Ekin`, `WNorm` in keV; cross sections in cm2,
 *     differential ones per keV and per sr; `LET` in keV cm2/g.
 *   - No global state, no locks: a set or a request must not be used by two
 *     threads at once; different sets are independent.
 */
#ifndef VLKXS_H
#define VLKXS_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(VLKXS_SHARED)
#  if defined(VLKXS_BUILDING)
#    define VLKXS_API __declspec(dllexport)
#  else
#    define VLKXS_API __declspec(dllimport)
#  endif
#elif defined(__GNUC__)
#  define VLKXS_API __attribute__((visibility("default")))
#else
#  define VLKXS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ========================================================================
 * Status record, mode word, message table
 * ======================================================================== */

/* The status record.  Returned by value by nearly every operation; copied
 * into the `at` fields of shells and energy records by the reader.  It owns
 * nothing: `origin` and `msg` point at constant texts, `file` and `item` at
 * the caller's strings or at thread-local scratch text, `text` at a line of
 * the file being read. */
typedef struct SCMDSTATUS {
    int32_t code;        /* 0 success, else a row of the message table      */
    uint32_t level;      /* 0 success, VLKXS_LEVEL_ERROR, VLKXS_LEVEL_WARNING */
    const char *file;    /* path of the file being read                      */
    int32_t line;        /* current line, from 1; 0 when no line is current  */
    const char *item;    /* offending item or the text that locates it       */
    int32_t itemlen;     /* length of `item`; 0: `item` is terminated        */
    const char *text;    /* current line of the file, not terminated         */
    int32_t textlen;     /* length of `text`                                 */
    int32_t col;         /* always -1 in records that the module makes       */
    const char *origin;  /* origin tag of the operation, "vlkxs(Read)"       */
    const char *msg;     /* message text; null until VLKXSError has run      */
} SCMDSTATUS;

/* `level` values.  Tests on another operation's record look at the top eight
 * bits (level > 0xffffff); the low 24 bits carry no severity. */
#define VLKXS_LEVEL_OK 0x00000000u
#define VLKXS_LEVEL_ERROR 0x80000000u
#define VLKXS_LEVEL_WARNING 0x40000000u
#define VLKXS_LEVEL_SEVERE_MASK 0xff000000u

/* Bits of the signed 32-bit `mode` word. */
#define VLKXS_MODE_TRACE ((int32_t)(-2147483647 - 1)) /* bit 31: trace lines */
#define VLKXS_MODE_QUIET ((int32_t)0x40000000)        /* bit 30: no report   */
#define VLKXS_MODE_CHECK ((int32_t)0x10000000)   /* bit 28: given to the companions' IsValid by VLKXSIsValid */
#define VLKXS_MODE_SHALLOW ((int32_t)0x4000000)  /* bit 26: VLKXSDup borrows instead of copying */
#define VLKXS_MODE_DEEP ((int32_t)0x2000000)     /* bit 25: VLKXSInspect dumps every table */
#define VLKXS_MODE_FORCED ((int32_t)0x1000000)   /* bit 24: VLKXSInspect dumps an empty set */
#define VLKXS_MODE_LIMIT_WFLAG ((int32_t)0x80000) /* bit 19: W axis, and flag bit 1 of the request */
#define VLKXS_MODE_LIMIT_A ((int32_t)0x40000)     /* bit 18: angle axis */
#define VLKXS_MODE_LIMIT_W ((int32_t)0x20000)     /* bit 17: secondary energy axis */
#define VLKXS_MODE_LIMIT_E ((int32_t)0x10000)     /* bit 16: primary energy axis */
#define VLKXS_MODE_TOLERANT ((int32_t)0x10000)    /* bit 16 in VLKXSCalc: no calculator is no failure */
#define VLKXS_MODE_CALC_MASK ((int32_t)0xff00ffff) /* what VLKXSCalc passes on */

/* Status codes: the rows of the message table, in order. */
enum {
    VLKXS_C_OK = 0,               /* "unknown error" when reported          */
    VLKXS_C_RUNTIME = 1,          /* "run time system error"                */
    VLKXS_C_BADADDR = 2,          /* "bad address"                          */
    VLKXS_C_BADNUMBER = 3,        /* "bad number"                           */
    VLKXS_C_NPRIMARY = 4,         /* "bad number of primary energies"       */
    VLKXS_C_BADPROJ = 5,          /* "bad projectile"                       */
    VLKXS_C_BADTARG = 6,          /* "bad target"                           */
    VLKXS_C_NSHELL = 7,           /* "bad number of shells"                 */
    VLKXS_C_NE = 8,               /* "bad number of primary energies"       */
    VLKXS_C_ENERGY = 9,           /* "bad energy"                           */
    VLKXS_C_SIGTOT = 10,          /* "bad total cross section"              */
    VLKXS_C_NSEC = 11,            /* "bad number of secondary energies"     */
    VLKXS_C_NANGLE = 12,          /* "bad number of secondary angles"       */
    VLKXS_C_DDCS = 13,            /* "bad double differential cross section" */
    VLKXS_C_NOPROJ = 14,          /* "no such projectile"                   */
    VLKXS_C_PROJDUP = 15,         /* "projectile duplication failed"        */
    VLKXS_C_TARGDUP = 16,         /* "target duplication failed"            */
    VLKXS_C_NOMETHOD = 17,        /* "no such calculation method"           */
    VLKXS_C_SECENERGY = 18,       /* "bad secondary energies"               */
    VLKXS_C_SECANGLE = 19,        /* "bad angle(s) for secondary particles" */
    VLKXS_C_IATYPE = 20,          /* "bad (unsupported) interaction type"   */
    VLKXS_C_IADIM = 21,           /* "bad (unsupported) interaction dimension" */
    VLKXS_C_XSPROJ = 22,          /* "bad cross sections for projectile(s)" */
    VLKXS_C_XSTARG = 23,          /* "bad cross sections for target"        */
    VLKXS_C_ITEMLIST = 24,        /* "bad item list"                        */
    VLKXS_C_NOMATERIAL = 25,      /* "no such material"                     */
    VLKXS_C_RANGE = 26,           /* "particle energy out-of-range"         */
    VLKXS_C_NOTCOMPTON = 27,      /* "not a Compton cross section"          */
    VLKXS_C_EDCS = 28,            /* "bad energy differential cross sections" */
    VLKXS_C_ADCS = 29,            /* "bad angular differential cross sections" */
    VLKXS_C_TARGMISMATCH = 30,    /* "target material mismatch"             */
    VLKXS_C_PROJMISMATCH = 31,    /* "projectile mismatch"                  */
    VLKXS_C_NOXS = 32,            /* "no valid interaction cross section found" */
    VLKXS_C_DBEMPTY = 33,         /* "cross section data base is empty"     */
    VLKXS_C_DBINIT = 34,          /* "cross section base is not properly initialized" */
    VLKXS_C_ITEMLIST2 = 35,       /* "bad item list"                        */
    VLKXS_C_FILELIST = 36,        /* "bad file list"                        */
    VLKXS_C_RUDDTARG = 37,        /* "Rudd model: unsupported target"       */
    VLKXS_C_R_UNKNOWNTAG = 38,    /* "read: unknown tag" (warning)          */
    VLKXS_C_R_SYNTAX = 39,        /* "read: syntax error"                   */
    VLKXS_C_R_NODATA = 40,        /* "read: no data" (warning)              */
    VLKXS_C_R_TOOFEW = 41,        /* "read: too few data"                   */
    VLKXS_C_R_FILETYPE = 42,      /* "read: bad file type"                  */
    VLKXS_C_R_VERSION = 43,       /* "read: bad file version"               */
    VLKXS_C_R_NUMBER = 44,        /* "read: bad number"                     */
    VLKXS_C_R_TARGET = 45,        /* "read: bad target"                     */
    VLKXS_C_R_PROJECTILE = 46,    /* "read: bad projectile"                 */
    VLKXS_C_R_SHELL = 47,         /* "read: bad shell"                      */
    VLKXS_C_R_NSHELL = 48,        /* "read: bad # of shells"                */
    VLKXS_C_R_EPROJ = 49,         /* "read: bad primary energy"             */
    VLKXS_C_R_ESEC = 50,          /* "read: bad secondary energy"           */
    VLKXS_C_R_DATA = 51,          /* "read: bad cross section data"         */
    VLKXS_C_R_DUPSHELL = 52,      /* "read: duplicate shell number"         */
    VLKXS_C_R_DUPEPROJ = 53,      /* "read: duplicate primary energy"       */
    VLKXS_C_R_DUPESEC = 54,       /* "read: duplicate secondary energy"     */
    VLKXS_C_SDCS_TABLE = 55,      /* "bad SDCS table(s)"                    */
    VLKXS_C_SDCS_VALUE = 56,      /* "bad SDCS value"                       */
    VLKXS_C_SDCS_CUM = 57,        /* "bad SDCS cumulation"                  */
    VLKXS_C_DDCS_TABLE = 58,      /* "bad DDCS table(s)"                    */
    VLKXS_C_DDCS_VALUE = 59,      /* "bad DDCS value"                       */
    VLKXS_C_DDCS_CUM = 60,        /* "bad DDCS cumulation"                  */
    VLKXS_C_TARGCOMPLETE = 61,    /* "target completion failed"             */
    VLKXS_C_SHELLNUMBER = 62,     /* "bad shell number"                     */
    VLKXS_C_TARGCALC = 63,        /* "cross section calculation for target failed" */
    VLKXS_C_CONSTITUENTS = 64,    /* "bad target constituents"              */
    VLKXS_C_PROJCOPY = 65,        /* "projectile copying failed"            */
    VLKXS_C_TARGCOPY = 66,        /* "target copying failed"                */
    VLKXS_C_MIXTURE = 67,         /* "target is a mixture"                  */
    VLKXS_C_NOTARGXS = 68,        /* "no such target cross section"         */
    VLKXS_C_GSTARG = 69,          /* "Green-Stolarski model: unsupported target" */
    VLKXS_C_COUNT = 70            /* number of rows                         */
};

/* The 70 message texts, indexed by code. */
VLKXS_API extern const char *const cvMsg[VLKXS_C_COUNT];

/* Attaches the message of `status->code` to `status->msg` (a code below 0 or
 * of 70 and more gives "unknown error") and prints the record through
 * _cmderrMsg.  A null record prints nothing.  Only the trace bit of `mode`
 * counts.  Always returns 0.  Not thread-hostile: it touches only the record. */
VLKXS_API int32_t VLKXSError(SCMDSTATUS *status, int32_t mode);

/* ========================================================================
 * Companion records: projectile and target
 * ======================================================================== */

/* Projectile types. */
#define VLKPROJ_PHOTON 1   /* E in keV   */
#define VLKPROJ_ELECTRON 3 /* E in keV   */
#define VLKPROJ_POSITRON 4 /* E in keV   */
#define VLKPROJ_ION 5      /* E in MeV/u */

/* The projectile.  The module reads `type`, `space`, `name` and `symbol`;
 * the rest is the companion's own.  `name` and `symbol` are owned by the
 * record when bit VLKPROJ_OWNS of `own` is set (after VLKProjFromStr and a
 * deep VLKProjDup); test records and shallow duplicates borrow them. */
typedef struct SVLKPROJ {
    int32_t type;     /* VLKPROJ_... or 0/2 for the test particles        */
    uint32_t space;   /* bytes occupied, the record included (VLKProjSpace) */
    char *name;       /* readable name: "electron", "proton", ...        */
    char *symbol;     /* canonical text, accepted back by VLKProjFromStr  */
    uint32_t own;     /* VLKPROJ_OWNS: name and symbol are heap blocks    */
    int32_t Z;        /* charge number of the bare nucleus; 0 for leptons */
    int32_t A;        /* nucleon number; 0 for leptons and photons       */
    double charge;    /* charge in elementary charges                    */
    double mass;      /* rest energy in keV                               */
} SVLKPROJ;

#define VLKPROJ_OWNS 1u

/* One row of a target's shell table.  Row 0 stands for the target as a
 * whole: its Ebind is the first ionisation threshold, its occ the number of
 * electrons of the molecule or atom. */
typedef struct SVLKTARGSH {
    double Ebind; /* binding energy, keV                 */
    double Ukin;  /* mean orbital kinetic energy, keV    */
    double occ;   /* occupation number (electrons)       */
} SVLKTARGSH;

/* The target.  The module reads `space`, `name`, `M`, `nShell`, `pShell`;
 * the rest is the companion's own.  `pShell` has nShell + 1 rows, 0 to
 * nShell.  Owned when VLKTARG_OWNS is set in `own`. */
typedef struct SVLKTARG {
    uint32_t space;       /* bytes occupied, the record included          */
    char *name;           /* material name, accepted back by ImportMaterial */
    double M;             /* molar mass, g/mol                             */
    int32_t nShell;       /* largest shell number                          */
    SVLKTARGSH *pShell;   /* rows 0 to nShell                               */
    uint32_t own;         /* VLKTARG_OWNS: name and pShell are heap blocks  */
    int32_t nAtom;        /* number of distinct elements in the molecule   */
    int32_t Zatom[4];     /* their atomic numbers                          */
    int32_t natom[4];     /* atoms of each element per molecule            */
    double density;       /* g/cm3 of the condensed or standard phase      */
} SVLKTARG;

#define VLKTARG_OWNS 1u

/* Projectile companion.  Each takes its record and a mode (trace bit only)
 * and never reports: failures come back in the record (level ERROR). */
VLKXS_API SCMDSTATUS VLKProjInit(SVLKPROJ *proj, int32_t mode);
VLKXS_API SCMDSTATUS VLKProjFree(SVLKPROJ *proj, int32_t mode);
VLKXS_API SCMDSTATUS VLKProjSpace(SVLKPROJ *proj, int32_t mode);
/* `dst` holds a byte copy of `src` (or anything); its pointers are
 * overwritten, never released.  VLKXS_MODE_SHALLOW: borrow; else own copies. */
VLKXS_API SCMDSTATUS VLKProjDup(SVLKPROJ *dst, const SVLKPROJ *src, int32_t mode);
VLKXS_API SCMDSTATUS VLKProjIsValid(const SVLKPROJ *proj, int32_t mode);
VLKXS_API SCMDSTATUS VLKProjInspect(const SVLKPROJ *proj, int32_t mode);
/* Accepts "e", "e+", "p", "alpha", "gamma" and the other symbols listed in
 * the README, case ignored.  Releases what the record held first. */
VLKXS_API SCMDSTATUS VLKProjFromStr(SVLKPROJ *proj, const char *text, int32_t mode);
/* Test record k (0 to 5), of type k; it borrows static texts. */
VLKXS_API SVLKPROJ _VLKProjTest(int32_t k);

/* Target companion, same rules. */
VLKXS_API SCMDSTATUS VLKTargInit(SVLKTARG *targ, int32_t mode);
VLKXS_API SCMDSTATUS VLKTargFree(SVLKTARG *targ, int32_t mode);
VLKXS_API SCMDSTATUS VLKTargSpace(SVLKTARG *targ, int32_t mode);
VLKXS_API SCMDSTATUS VLKTargDup(SVLKTARG *dst, const SVLKTARG *src, int32_t mode);
VLKXS_API SCMDSTATUS VLKTargIsValid(const SVLKTARG *targ, int32_t mode);
VLKXS_API SCMDSTATUS VLKTargInspect(const SVLKTARG *targ, int32_t mode);
/* Accepts "H2O", "H", "He", "N2", "Ar", case ignored. */
VLKXS_API SCMDSTATUS VLKTargImportMaterial(SVLKTARG *targ, const char *text, int32_t mode);
/* Test target: (0, 0) gives water; it borrows static data. */
VLKXS_API SVLKTARG _VLKTargTest(int32_t i, int32_t j);

/* ========================================================================
 * Cross-section set
 * ======================================================================== */

/* Bits of SVLKXS.flag. */
#define VLKXS_FLAG_READY 1u   /* tables built and validated               */
#define VLKXS_FLAG_ENABLED 2u /* switched on for its users                */
#define VLKXS_FLAG_SHALLOW 4u /* the set borrows its arrays: Free releases nothing */
/* Bit of SVLKXSSH.flag. */
#define VLKXS_SHFLAG_EQUIVW 1u /* all records of the shell share one dv1 grid */

/* One primary energy of one shell. */
typedef struct SVLKXSE {
    double E;       /* primary energy, keV (MeV/u for ions)               */
    double Escal;   /* scaled energy                                      */
    double sigtot;  /* total cross section of the shell at E, cm2         */
    double scaled;  /* scaled total cross section, cm2                    */
    double km;      /* binding energy (sum shell: weighted mean), keV     */
    double beta2;   /* (v/c)^2 of the projectile                           */
    double gamma;   /* Lorentz factor                                     */
    double Ekin;    /* mean kinetic energy of the secondaries, keV         */
    double LET;     /* energy loss per mass thickness, keV cm2/g          */
    double WNorm;   /* scale of the secondary energies, keV               */
    double W[4];    /* four further values, carried only                  */
    int32_t n1;     /* first-level points                                 */
    double *dv1;    /* first-level grid                  [n1]             */
    double *dvSig1; /* first-level differential values   [n1]             */
    double *dvCum1; /* first-level cumulated values      [n1]             */
    int32_t *nv2;   /* second-level points per first-level point [n1]     */
    double **pdv2;    /* second-level grids              [n1][nv2[k]]     */
    double **pdvSig2; /* second-level differential values [n1][nv2[k]]    */
    double **pdvCum2; /* second-level cumulated values   [n1][nv2[k]]     */
    SCMDSTATUS at;  /* place in the file while the reader runs            */
} SVLKXSE;

/* One electronic shell. */
typedef struct SVLKXSSH {
    uint32_t flag;  /* VLKXS_SHFLAG_EQUIVW                                */
    int32_t shell;  /* 0: sum of all shells; k: row k of the target table */
    int32_t nE;     /* records in pE                                      */
    SVLKXSE *pE;    /* primary energies                                   */
    SCMDSTATUS at;  /* place in the file while the reader runs            */
} SVLKXSSH;

/* The set: one projectile, one target, one interaction, one dimension. */
typedef struct SVLKXS {
    uint32_t flag;       /* VLKXS_FLAG_...                                */
    int32_t IA;          /* interaction type: 1 elastic, 2 ionisation, 3 excitation, 4..8 */
    uint32_t space;      /* bytes, as VLKXSSpace last computed them       */
    int32_t dim;         /* 0 total, 1 single, 2 double differential      */
    uint32_t dimmask;    /* 1, 2, 4 or 0 from the interaction word         */
    char *infile;        /* path the set was read from, owned              */
    const char *IAtag;   /* tag of IA, null until VLKXSStrFromIAType       */
    const char *dimtag;  /* tag of dim, null until VLKXSStrFromIADim       */
    const char *coltag;  /* colour tag of IA, null until VLKXSColFromIAType */
    int32_t nShell;      /* records in pShell                             */
    SVLKXSSH *pShell;    /* shells; a sum shell (shell 0) stands last      */
    SVLKTARG targ;       /* target                                         */
    SVLKPROJ proj;       /* projectile                                     */
} SVLKXS;

/* Lifecycle.  Init zero-fills the record (releasing nothing) and initialises
 * both companions.  Free releases everything the set owns (nothing if
 * VLKXS_FLAG_SHALLOW) and re-initialises it; safe on half-built sets.  Space
 * stores the byte size of the whole tree in `space`.  Enable/Disable set and
 * clear VLKXS_FLAG_ENABLED.  A null set gives code 2; Init and Free never
 * report, Space reports unless quiet, Enable/Disable always report. */
VLKXS_API SCMDSTATUS VLKXSInit(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSFree(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSSpace(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSEnable(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSDisable(SVLKXS *set, int32_t mode);

/* Duplication: deep by default, borrowing with VLKXS_MODE_SHALLOW.  `dst` is
 * raw storage or an empty set (its old content isn't released) and a record
 * other than `src`.
 *  - Shallow: a byte copy of `src` with VLKXS_FLAG_SHALLOW set, sharing every
 *    array; VLKXSFree on it releases nothing.  `src` must outlive it and
 *    stay unchanged.
 *  - Deep: arrays of its own for every table (a table the source lacks stays
 *    missing); `infile` null; shell flags and every `at` zero; `flag` the
 *    source's without VLKXS_FLAG_SHALLOW; `space` computed afresh.
 * Failures, always reported, leave `dst` empty and `src` untouched: 2 a null
 * `dst` or `src`; 15 or 16 the projectile's or the target's duplication
 * failed; 1 no memory for a table. */
VLKXS_API SCMDSTATUS VLKXSDup(SVLKXS *dst, const SVLKXS *src, int32_t mode);

/* Tags.  Number to tag: fills IAtag / dimtag / coltag with a constant text
 * ("" for a number outside the table).  Text to number: the first letter of
 * the word selects dim (exact case, no blank skipped) or IA (leading blanks
 * skipped; the second letter gives dimmask).  All five always report. */
VLKXS_API SCMDSTATUS VLKXSStrFromIADim(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSIADimFromStr(SVLKXS *set, const char *word, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSStrFromIAType(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSColFromIAType(SVLKXS *set, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSIATypeFromStr(SVLKXS *set, const char *word, int32_t mode);

/* ========================================================================
 * xs files
 * ======================================================================== */

/* Reads an xs file into `set` (raw storage or an empty set: VLKXSInit runs
 * first and releases nothing).  The set then holds the file's primary tables
 * only; complete it with VLKXSComplete before use.  `infile` gets a copy of
 * `path`, owned by the set and released by VLKXSFree.
 *
 * Failures (the set is then empty, as after VLKXSFree; reported through
 * VLKXSError unless VLKXS_MODE_QUIET):
 *   2  null set (nothing initialised) or null path
 *   1  the file can't be opened or read, or has more than 2147483647 lines
 *      (`item` is `path`); no memory (`item` null)
 *   39 a line out of place, an "!eproj" without a number, a data line
 *      without a number; 41 a data line with one number; 51 a negative
 *      number behind the first of a data line
 *   42 bad "!filetype"; 20, 21 unknown interaction or dimension word (taken
 *      over from VLKXSIATypeFromStr / VLKXSIADimFromStr, which report it)
 *   43 "!fileversion" without argument; 44 a tag's number that isn't one
 *      ("!fileversion", "!shell", "!esec")
 *   45, 46 target or projectile refused by its companion
 *   47 negative shell, 48 no "!shell" at all, 49 negative primary energy,
 *   50 negative secondary energy
 *   52, 53, 54 a shell number, a primary energy within a shell, a secondary
 *      energy within a record, repeated (the first repeat in the file)
 * Warnings never show in the result and are always reported: 38 unknown tag
 * (the data lines under it are skipped), 40 a shell, record or table
 * without data.
 *
 * The returned record: `file` is the caller's `path` (from the first pass
 * on); `line` is the number (from 1) of the offending line, 0 where none is
 * current (48, 1, 2); `text` and `textlen` then hold that line, without its
 * line end, in thread-local storage of this library that stays until the
 * same thread's next failed read (a line of more than 511 bytes is cut
 * there); `item` is `path` for a file that can't be read, else null.  On
 * success `line` is 0 and `text` null.
 *
 * The `at` of every shell and energy record is a plain copy of the reader's
 * running record at the line that opened it: its `file` and `line` stay
 * useful, but its `text` points into the file image, which is released
 * before VLKXSRead returns.  It is a location to compare, never to read:
 * don't hand a kept `at` to VLKXSError or _cmderrMsg. */
VLKXS_API SCMDSTATUS VLKXSRead(SVLKXS *set, const char *path, int32_t mode);
/* Writes a valid set as an xs file named "<prefix><proj.symbol>.<targ.name>.
 * <IAtag><dimtag>.xs" (the prefix unchanged: a directory needs its own
 * separator; "" is valid), replacing a file of that name.  The set is only
 * read, but for IAtag and dimtag, which are filled.  Numbers are printed as
 * printf's "%G" (six significant digits); the first-level grid is printed
 * times the record's WNorm, km in shell 0 alone.  The date line is the
 * local time in ctime's form.  Failures, always reported, and no file made:
 * 2 a null set or prefix; the code of VLKXSIsValid for a set that isn't
 * valid (a differential set must be completed first); 1 no memory, or the
 * file can't be opened.  Errors while writing aren't detected: a full disk
 * leaves a cut file and success. */
VLKXS_API SCMDSTATUS VLKXSWrite(SVLKXS *set, const char *prefix, int32_t mode);

/* ========================================================================
 * Consistency
 * ======================================================================== */

/* Validates a set and changes nothing in it.  Checks, in this order, and
 * stops at the first fault: the set pointer (2), the projectile (5) and the
 * target (6) through their companions' IsValid, the shell count (7); then
 * shell by shell its records (8, item "Shell[i]"); record by record E >= 0
 * (9) and sigtot >= 0 (10); for dim 1 or more the three first-level arrays
 * (55), and point by point dvSig1[k] >= 0 (56) and dvCum1 within [0, 1] and
 * never falling (57); for dim 2 or more, at the same point, the second-level
 * tables including nv2 (58) and their rows (58), pdvSig2 >= 0 (59) and the
 * cumulated row (60).  Indices are positions, from 0.  Bounds pass, and so
 * does a NaN (all tests are ordered comparisons).  Grids aren't looked at.
 * On failure `item` points at a thread-local location text such as
 * "Shell[0].E[1].SigTot=-1E-20" (itemlen 0), readable until the same
 * thread validates again.  Reports unless quiet. */
VLKXS_API SCMDSTATUS VLKXSIsValid(const SVLKXS *set, int32_t mode);
/* Sets VLKXS_SHFLAG_EQUIVW on each shell whose records all have the dv1 of
 * the first record, compared value by value with exact equality (0.0 ==
 * -0.0, a NaN equals nothing), and clears it on the others; a shell without
 * records or without a first grid gets no.  Other bits of the shell flag
 * stay.  `limit` is not read.  Fails with 2 (null set) or 7 (no shells),
 * reported unless quiet. */
VLKXS_API SCMDSTATUS VLKXSIsEquivW(SVLKXS *set, double limit, int32_t mode);

/* ========================================================================
 * Completion
 * ======================================================================== */

/* Completes a set in place:
 *  - a shell numbered 0 goes to the end of pShell (the last of several); a
 *    set of two shells or more without one gets a sum shell there, shaped
 *    after the first shell (pShell is reallocated: take pointers into it
 *    again afterwards);
 *  - every record of the shells present at entry gets gamma, beta2, Escal
 *    and WNorm (projectile types 3, 4, 5; others get beta2 1 and Escal E),
 *    km from the target's shell table where it isn't positive, and for dim
 *    1 and 2 the running integrals (pdvCum2, the dvSig1 of dim 2, dvCum1),
 *    sigtot and Ekin; then LET (keV cm2/g) and scaled.  For IA 2, dv1 ends
 *    in fractions of WNorm: such a set must not be completed twice;
 *  - the sum shell gets the sums, with km and Ekin as means weighted by
 *    sigtot;
 *  - every cumulated table with a positive end is normalised to end at 1.
 * Failures, always reported: 2 for a null set or pShell, a missing table or
 * record array, a target without a shell table, or, where a sum shell is to
 * be made, a shell larger than the first shell or a set with
 * VLKXS_FLAG_SHALLOW, whose pShell belongs to another set and can't grow
 * (both refused before anything changes); 21 for a dim other than 0, 1, 2; 9 for an ionisation
 * record of dim 1 or 2 whose WNorm or 1/WNorm is infinite, so that its grid
 * can't be held in fractions of WNorm (`item` null); 62 for a shell number outside
 * 0..targ.nShell (nothing changed); 1 for a failed allocation.  Nothing is
 * rolled back after the arrangement: the set stays safe to release. */
VLKXS_API SCMDSTATUS VLKXSComplete(SVLKXS *set, int32_t mode);

/* ========================================================================
 * Calculation
 * ======================================================================== */

/* Calculation request.  Owns pE, pW, pA (released by VLKXSCalcFree). */
typedef struct SVLKXSCALC {
    double relchange; /* value for the calculators                    */
    double Emin;      /* primary energy limits                        */
    double Emax;
    double Wmin;      /* secondary energy limits                      */
    double Wmax;
    double Amin;      /* angle limits                                 */
    double Amax;
    double *pE;       /* explicit lists, or null                      */
    double *pW;
    double *pA;
    int32_t nE;
    int32_t nW;
    int32_t nA;
    int32_t method;   /* calculation method, see VLKXSCalcMethodFromStr */
    int32_t flag;     /* bit 1: set by VLKXS_MODE_LIMIT_WFLAG          */
} SVLKXSCALC;

/* A request starts zeroed (or as VLKXSCalcFree left it) and is filled by the
 * caller:
 *  - VLKXSCalcMethodFromStr sets `method` from a model name, compared whole
 *    with case ignored: "bea" 1, "rudd" 2, "hks" 3, "cdw-eis" 4, "rel" 5,
 *    "rbeb" 6, "beb" 7, "emp" 8, "rutherford" and "rford" 9,
 *    "green-stolarski" 10.  Any other name (" beb", "") gives 0 and success:
 *    the calculators refuse method 0.  2 for a null request or text, and
 *    `method` unchanged.
 *  - VLKXSCalcLimitsFromStr reads a text of items (separated by commas or
 *    blanks) into the axes named by VLKXS_MODE_LIMIT_E, _W, _WFLAG (the W
 *    axis, and bit 1 of `flag`) and _A.  An item that begins with "*" is an
 *    open end, -/+1.7976931348623157e308 (never an infinity).  One item: both
 *    limits, or the whole range for "*".  Two items: the limits in ascending
 *    order, either one open.  Three or more: a sorted list, duplicates kept,
 *    whose first and last items may be open ends; its ends are the limits, it
 *    goes to pE, pW or pA (a calloc block that the request owns from then on)
 *    and its length to nE, nW or nA.  The forms of one and two items set the
 *    axis's list pointer to null and leave its count.  A list the axis held
 *    before is overwritten, not released.  With several axis bits every named
 *    axis takes the limits and the count, but only the first of them (E, W,
 *    A) the list; with none, nothing is stored.  Failures store nothing and
 *    are reported unless quiet: 2 a null request or text; 24 a text without
 *    items (`item` the whole text); 3 an item that isn't a number or is a
 *    NaN (`item` and `itemlen` the piece of the caller's text: the record is
 *    good only as long as that text lives); 1 no memory.
 *  - VLKXSCalcInspect dumps the record to stderr, trace bit or not; 2 for a
 *    null request, reported unless quiet.
 *  - VLKXSCalcFree releases the three lists and zeroes the record, which can
 *    be filled again; a second call finds nothing to release and succeeds.
 *    2 for a null request; never reports.
 *
 * VLKXSCalc fills a set that has a valid projectile, target and IA: electrons
 * (projectile type 3) with IA 1, 2, 3 go to VLKXSCalcEL, EI, EX, ions (type
 * 5) with IA 2, 3 to VLKXSCalcII, IX; an ion with IA 1 has nothing to
 * calculate and succeeds with the set unchanged.  After the calculator the
 * set is validated, gets VLKXS_FLAG_READY | VLKXS_FLAG_ENABLED, and
 * VLKXSIsEquivW sets the shells' equivW bits.  Bits 16 to 23 of `mode` never
 * reach the calculators, VLKXSIsValid, VLKXSIsEquivW or VLKXSFree; bit 16
 * (VLKXS_MODE_TOLERANT) makes an IA without a calculator a success (set
 * unchanged) instead of code 20.  A calculator's warning doesn't stop the
 * work and isn't handed on.  The request is only read.  Failures, always
 * reported, after which the set is emptied by VLKXSFree, its companions
 * included: 2 a null set or request; 5, 6 the projectile or the target
 * refused by its companion; 14 a projectile type other than 3 and 5 (`item`
 * is the projectile's name, released with the set: don't read it after the
 * return); 20 an IA without a calculator; or the whole record of a failing
 * calculator, VLKXSIsValid or VLKXSIsEquivW, with their origin and item. */
VLKXS_API SCMDSTATUS VLKXSCalc(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcMethodFromStr(SVLKXSCALC *calc, const char *text, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcLimitsFromStr(SVLKXSCALC *calc, const char *text, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcInspect(const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcFree(SVLKXSCALC *calc, int32_t mode);

/* Model calculators, called by VLKXSCalc with validated companions; each
 * can be called alone on a set prepared the same way (projectile, target,
 * IA, dim).  They replace any tables the set held by a complete set
 * (VLKXSComplete has run: sum shell, cumulated tables, LET), one shell per
 * orbital or level numbered as the target's shell rows:
 *   VLKXSCalcEI  electrons, IA 2, "beb" (7): binary-encounter-Bethe, dim 0, 1
 *   VLKXSCalcII  ions, IA 2, "rudd" (2): Rudd's model, water only, dim 0, 1
 *   VLKXSCalcEL  electrons, IA 1, "rutherford" (9): screened Rutherford,
 *                one shell numbered 0, dim 0, 1
 *   VLKXSCalcEX  electrons, IA 3, "emp" (8): five levels of water, dim 0
 *   VLKXSCalcIX  ions, IA 3, "emp" (8): five levels of water, dim 0
 * Grids: the primary energies are the request's list (sorted, repeats
 * dropped), else a logarithmic grid from Emin to Emax with neighbours no
 * further apart than the factor 1 + relchange (0.1 for relchange <= 0, and
 * never closer than 1 + 1e-4, which six printed digits still tell apart).
 * The secondary axis (W, keV) and the angle axis (A, degrees) take the
 * request's list, else its limits, else, for an axis never set (both limits
 * 0) or an open end, the model's physical range: 0 to (T-B)/2 for BEB, 0 to
 * 4 (m/M) T for Rudd, 0 to 180 degrees for elastic scattering.  Without a
 * list the grid is the calculator's own, logarithmic towards 0 where the
 * tables peak and fine enough that their integrals agree with the models'
 * totals within 1e-3.  relchange shapes the primary grid only; `flag` isn't
 * read.  All orbitals share one grid per energy, so that the sum shell adds
 * like with like; a table is 0 beyond its orbital's own end.
 * Tables: dsigma/dW in cm2/keV over W for ionisation; dsigma/dOmega in
 * cm2/sr over ascending cosines for elastic scattering, whose sigtot is then
 * the plain integral over the cosine, sigma / (2 pi).  Totals of dim 0
 * ionisation sets come with the mean secondary energy in Ekin (a dim 0 file
 * doesn't keep it); excitation records carry the level energy in km, and
 * their sum shell the mean of the levels weighted by cross section.  Energies
 * below a threshold give cross sections of 0.  Ions scale by their charge
 * squared at the same energy per nucleon.
 * Failures, reported unless quiet, leave the set without shells (companions
 * kept): 2 a null set or request, or a shallow set; 14 a projectile of
 * another type (`item` its name); 20 another IA; 17 another method; 21 a dim
 * the model lacks; 37 (Rudd) or 23 a target without the model's data; 26 a
 * primary energy that is open, NaN or outside 1e-6 to 1e9 (keV or MeV/u;
 * `item` "Emin" or "Emax"); 4 more than 1e7 primary energies; 1 no memory. */
VLKXS_API SCMDSTATUS VLKXSCalcEL(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcEI(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcEX(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcII(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);
VLKXS_API SCMDSTATUS VLKXSCalcIX(SVLKXS *set, const SVLKXSCALC *calc, int32_t mode);

/* ========================================================================
 * Output
 * ======================================================================== */

/* Summary listing of a valid set through _prtcl, one call a line: space (as
 * the set holds it: VLKXSSpace isn't run), projectile and target names (cut
 * at 80 characters; a null name prints as "(null)"), interaction tag, number
 * of shells, and for each shell its number and records, for each record its
 * first-level points, and for each point its second-level points where the
 * record has nv2.  Only IAtag is written into the set.  Validation comes
 * first: an invalid set prints nothing and fails with VLKXSIsValid's code
 * (2 for a null set).  Reports unless quiet. */
VLKXS_API SCMDSTATUS VLKXSList(SVLKXS *set, int32_t mode);
/* Dump of a set in any state on stderr: the set's fields and its companions;
 * with shells, each shell's number and records; with VLKXS_MODE_DEEP every
 * record and every number of its tables ("--" where an array is missing).
 * A set without shells prints nothing unless VLKXS_MODE_FORCED or DEEP is
 * given.  Changes nothing; fails only for a null set (2), always reported. */
VLKXS_API SCMDSTATUS VLKXSInspect(const SVLKXS *set, int32_t mode);
/* Writes a valid set as a gd plot file "<prefix><proj.symbol>.<targ.name>.
 * <IAtag><dimtag>.xs.gd" (replaced if it exists): title, the set's identity
 * in "c:" comments, axis labels by dim, IA and projectile type, then one
 * table or more for each shell behind "H:" lines that name the columns and
 * the curve styles ("l", coltag, shell number).  Secondary energies are
 * scaled by WNorm for ions only.  Fills IAtag, dimtag and coltag.  Failures,
 * always reported, no file made: 2 null set or prefix, the code of
 * VLKXSIsValid, 1 no memory or a file that can't be opened. */
VLKXS_API SCMDSTATUS VLKXSExportgd(SVLKXS *set, const char *prefix, int32_t mode);

/* ========================================================================
 * Using a completed set: cross sections at any energy, Monte Carlo sampling
 * ======================================================================== */

/* The set must be complete (VLKXSComplete, or a calculator) and valid
 * (VLKXSIsValid), with the records of each shell in ascending energy; these
 * operations check no more than what they touch.  They read the set only,
 * allocate nothing and may run in many threads on one set at once.
 * `ish` is an index into pShell (a sum shell stands last); `E` is in the
 * unit of the set (keV, MeV/u for ions); `u` a uniform number in [0, 1).
 * Between two records a quantity is interpolated in ln E; at a record's own
 * energy it is that record's own.  Failures, reported unless quiet, leave
 * every output unchanged: 2 a null pointer; 7 `ish` out of range, or a set
 * without shells; 26 `E` below the shell's first or above its last energy,
 * or `u` outside [0, 1); 34 a table the operation needs is missing, or the
 * set's dim or IA has none; 32 no cross section at E to sample from. */

/* sigtot of shell ish at E (cm2): log-log between the two records around
 * E, linear in E where either value is 0. */
VLKXS_API SCMDSTATUS VLKXSSigma(const SVLKXS *set, int32_t ish, double E, double *sigma, int32_t mode);
/* Ekin (keV) and LET (keV cm2/g) of shell ish at E, interpolated as sigtot. */
VLKXS_API SCMDSTATUS VLKXSEkin(const SVLKXS *set, int32_t ish, double E, double *Ekin, double *LET, int32_t mode);
/* A shell other than the sum shell, with probability sigma_i(E) / sum_j
 * sigma_j(E) (each interpolated as by VLKXSSigma); shell 0 for a set of one
 * shell.  32 when no shell has a cross section at E. */
VLKXS_API SCMDSTATUS VLKXSSampleShell(const SVLKXS *set, double E, double u, int32_t *ish, int32_t mode);
/* The secondary energy W (keV), dim 1 and 2: dvCum1 inverted at u, linear
 * between grid points, at the two records around E; the two quantiles mixed
 * linearly in ln E in the reduced variable of dv1 (fractions of WNorm for
 * IA 2, then times WNorm at E).  Non-decreasing in u.  34 for IA 1, whose
 * first level is a cosine: VLKXSSampleCos serves it. */
VLKXS_API SCMDSTATUS VLKXSSampleW(const SVLKXS *set, int32_t ish, double E, double u, double *W, int32_t mode);
/* The cosine of the emission or scattering angle, in [-1, 1] and
 * non-decreasing in u: for dim 2, pdvCum2 inverted at the first-level
 * points around W (keV; reduced by WNorm at E for IA 2), linear in W
 * between them and in ln E between the records; for dim 1 of IA 1, dvCum1
 * over the cosines, W unused.  34 for other sets. */
VLKXS_API SCMDSTATUS VLKXSSampleCos(const SVLKXS *set, int32_t ish, double E, double W, double u, double *cosine,
                                   int32_t mode);

/* ========================================================================
 * Built-in test sets.  They point at static tables: never hand one to
 * VLKXSFree; a deep VLKXSDup of one can be.
 * ======================================================================== */

VLKXS_API SVLKXS _VLKXSTestTCS(int32_t index, int32_t mode);
VLKXS_API SVLKXS _VLKXSTestL(int32_t mode);
VLKXS_API SVLKXS _VLKXSTestSDCS(int32_t mode);
VLKXS_API SVLKXS _VLKXSTestDDCS(int32_t mode);

/* ========================================================================
 * Support layer: messages, protocol, file memory, text and vector routines
 * ======================================================================== */

/* Prints one report of `status` (msg already set) to stderr:
 *   "<E> origin: msg (code N)"   for an error   (top bit of level)
 *   "<W> ..."                     for a warning  (bit 30)
 *   "<I> ..."                     otherwise
 * followed by "    file:line: text" and "    item: ..." where present. */
VLKXS_API int32_t _cmderrMsg(const SCMDSTATUS *status, int32_t flags);
/* Writes `text` and a line end to stdout.  `cls` is the protocol class. */
VLKXS_API int32_t _prtcl(const char *text, int32_t cls);

/* File memory: one image of a whole file, delivered line by line.  Each
 * line is followed by a 0 byte; a "\r" before the "\n" is not part of it.
 * Read also keeps the length of every line, so that each further pass steps
 * from line to line without scanning the text again.  A file of more lines
 * than a signed 32-bit count holds (2147483647) is refused by Read. */
typedef struct SUFILEMEM {
    char *pLine;      /* first byte of the current line                   */
    uint32_t nLine;   /* its length, line end not counted                 */
    void *fp;         /* open stream between Open and Read                */
    char *pImage;     /* the file, with room for a terminating 0 byte     */
    uint64_t nImage;  /* bytes of the file                                */
    uint64_t iNext;   /* offset of the next line                          */
    int32_t nLineNo;  /* lines delivered in this pass                      */
    int32_t nLines;   /* lines of the image                               */
    uint32_t *pLen;   /* length of each line, nLines entries               */
} SUFILEMEM;

VLKXS_API int32_t uFileMemInit(SUFILEMEM *fm, int32_t trace);
VLKXS_API int32_t uFileMemOpen(SUFILEMEM *fm, const char *path, int32_t how, int32_t trace);
VLKXS_API int32_t uFileMemRead(SUFILEMEM *fm, int32_t trace);
VLKXS_API int32_t uFileMemLineFirst(SUFILEMEM *fm, int32_t trace);
VLKXS_API int32_t uFileMemLineNext(SUFILEMEM *fm, int32_t trace);
/* Steps over up to `count` lines as LineNext would, without delivering them
 * (pLine is null afterwards); returns how many were skipped. */
VLKXS_API int32_t uFileMemLineSkip(SUFILEMEM *fm, int32_t count, int32_t trace);
VLKXS_API int32_t uFileMemClose(SUFILEMEM *fm, int32_t trace);

/* Splits `text` in place on blanks and commas into at most `max` words. */
VLKXS_API int32_t c2vc(char *text, char **words, int32_t stride, int32_t max);
/* Cuts a limit string into items (pointer + length, not terminated); with
 * null arrays it only counts.  Negative for a text without any item. */
VLKXS_API int32_t c2vcn(const char *text, const char **items, int32_t *lens, int32_t stride, int32_t max);
/* Counted-text number conversions; they never read past `len`. */
VLKXS_API int32_t cn2l(const char *p, int32_t len, int32_t *value);
VLKXS_API int32_t cn2d(const char *p, int32_t len, double *value);
VLKXS_API int32_t cn2vd(const char *p, int32_t len, double *values, int32_t stride, int32_t max);
VLKXS_API int32_t strnicmp(const char *a, const char *b, size_t n);
VLKXS_API int32_t stricmp(const char *a, const char *b);
VLKXS_API int32_t stricnb(const char *a, const char *b);

/* Vector routines.  Strides count elements (1 or more); nothing is allocated.
 * vtrapz:  cum[i] = running trapezoidal integral of y over x from x[0], in the
 *          direction of the grid (a descending grid gives negative values);
 *          returns the whole integral.  For n = 1 the single value is taken as
 *          flat over a cosine range of [-1, 1]: cum[0] = 2*y[0], so that 2 pi
 *          times it is the integral over the full solid angle.  cum may be
 *          null; n < 1 returns 0 and writes nothing.
 * vtrapz1: the mean of x weighted by y (trapezoidal integral of x*y over the
 *          integral of y); 0 when the integral of y is 0, x[0] for n = 1 with
 *          y[0] not 0.  A non-null cum receives the running first moment.
 * vsmul:   out[i] = v[i]*s for n elements; out may be v.
 * vshsrtd: sorts the n values of list[0] ascending in place, equal values
 *          kept and NaNs last; list[1] .. list[nvec-1] are permuted alike. */
VLKXS_API double vtrapz(const double *x, int32_t incx, const double *y, int32_t incy, double *cum, int32_t incc, int32_t n);
VLKXS_API double vtrapz1(const double *x, int32_t incx, const double *y, int32_t incy, double *cum, int32_t incc, int32_t n);
VLKXS_API void vsmul(double *v, int32_t incv, double s, double *out, int32_t inco, int32_t n);
VLKXS_API void vshsrtd(double **list, int32_t nvec, int32_t stride, int32_t n);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VLKXS_H */
