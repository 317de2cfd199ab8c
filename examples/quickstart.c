/* Quick start: a set for electrons in water is made, measured, its
 * companions are shown, and it is released again. */
#include <stdio.h>

#include "vlkxs.h"

static int ok(SCMDSTATUS s) {
    if (s.level > 0xffffffu) {
        VLKXSError(&s, 0); /* prints the report with its message */
        return 0;
    }
    return 1;
}

int main(void) {
    SVLKXS set;
    if (!ok(VLKXSInit(&set, 0))) return 1;
    if (!ok(VLKProjFromStr(&set.proj, "e", 0))) return 1;
    if (!ok(VLKTargImportMaterial(&set.targ, "H2O", 0))) return 1;
    set.IA = 2; /* ionisation */
    if (!ok(VLKXSStrFromIAType(&set, 0))) return 1;
    if (!ok(VLKXSSpace(&set, 0))) return 1;

    printf("projectile: %s (%s)\n", set.proj.name, set.proj.symbol);
    printf("target:     %s, M = %g g/mol, %d shells\n", set.targ.name, set.targ.M, (int)set.targ.nShell);
    for (int32_t k = 1; k <= set.targ.nShell; ++k)
        printf("  shell %d: B = %8.5f keV, U = %8.5f keV, N = %g\n", (int)k, set.targ.pShell[k].Ebind,
               set.targ.pShell[k].Ukin, set.targ.pShell[k].occ);
    printf("interaction: %s\n", set.IAtag);
    printf("space:      %lu bytes\n", (unsigned long)set.space);

    /* The companions dump their records to stderr. */
    VLKProjInspect(&set.proj, 0);
    VLKTargInspect(&set.targ, 0);

    if (!ok(VLKXSFree(&set, 0))) return 1;
    printf("released\n");
    return 0;
}
