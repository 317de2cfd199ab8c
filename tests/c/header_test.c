/* The public header is C99: this program includes it, uses its records and
 * constants from C and runs the lifecycle of a set through the library. */
#include <stdio.h>
#include <string.h>

#include "vlkxs.h"

#define CHECK(cond) \
    if (!(cond)) return fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond), 1

int main(void) {
    SVLKXS set;
    SCMDSTATUS s;
    memset(&set, 0xab, sizeof set); /* raw storage */
    s = VLKXSInit(&set, 0);
    CHECK(s.code == VLKXS_C_OK && s.level == VLKXS_LEVEL_OK && strcmp(s.origin, "vlkxs(Init)") == 0);
    CHECK(set.flag == 0 && set.space == 0 && set.IA == 0 && set.dim == 0 && set.dimmask == 0 && set.nShell == 0);
    CHECK(!set.pShell && !set.infile && !set.IAtag && !set.dimtag && !set.coltag && !set.proj.name && !set.targ.name);
    CHECK(VLKProjFromStr(&set.proj, "e", 0).code == 0 && VLKTargImportMaterial(&set.targ, "H2O", 0).code == 0);
    CHECK(VLKXSSpace(&set, 0).code == 0 && set.space >= sizeof(SVLKXS));
    CHECK(VLKXSEnable(&set, 0).code == 0 && set.flag == VLKXS_FLAG_ENABLED);
    s = VLKXSInit(NULL, VLKXS_MODE_QUIET);
    CHECK(s.code == VLKXS_C_BADADDR && s.level == VLKXS_LEVEL_ERROR && s.msg == NULL);
    CHECK(VLKXSError(&s, 0) == 0 && strcmp(s.msg, cvMsg[VLKXS_C_BADADDR]) == 0);
    CHECK(VLKXSFree(&set, 0).code == 0 && set.proj.name == NULL && set.targ.name == NULL);
    printf("C header test: ok\n");
    return 0;
}
