/* Read, complete, validate, list and write an xs file: the round a data
 * file takes before a transport code uses it.
 *
 *   read_write FILE [PREFIX]
 *
 * The completed set is written under PREFIX (a directory needs its own
 * trailing '/'), with the name the library gives it, e.g. "out/e.H2O.is.xs". */
#include <stdio.h>

#include "vlkxs.h"

/* A status whose level has a severe bit: the library has already reported
 * it on stderr (no VLKXS_MODE_QUIET below). */
static int failed(SCMDSTATUS s) { return (s.level & VLKXS_LEVEL_SEVERE_MASK) != 0; }

/* Everything between the set's Init and its Free; 0 on success. */
static int run(SVLKXS *set, const char *path, const char *prefix) {
    if (failed(VLKXSRead(set, path, 0))) return 1; /* the set stays empty */
    if (failed(VLKXSComplete(set, 0))) return 1;   /* kinematics, sums, cumulated tables */
    if (failed(VLKXSIsValid(set, 0))) return 1;
    if (failed(VLKXSList(set, 0))) return 1;       /* what the set holds, on stdout */

    /* The sum shell stands last; its first and last records in a line of our own. */
    const SVLKXSSH *sum = &set->pShell[set->nShell - 1];
    for (int32_t j = 0; j < sum->nE; j += sum->nE > 1 ? sum->nE - 1 : 1)
        printf("%s in %s: sigma(%g) = %g cm2, LET %g keV cm2/g\n", set->proj.name, set->targ.name, sum->pE[j].E,
               sum->pE[j].sigtot, sum->pE[j].LET);
    if (prefix != NULL && failed(VLKXSWrite(set, prefix, 0))) return 1;
    return 0;
}

int main(int argc, char **argv) {
    SVLKXS set;
    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: read_write FILE [PREFIX]\n");
        return 2;
    }
    VLKXSInit(&set, 0);
    const int rc = run(&set, argv[1], argc == 3 ? argv[2] : NULL);
    VLKXSFree(&set, 0); /* whatever happened before */
    return rc;
}
