/* The public header is C99: this program includes it, uses its records and
 * constants from C and runs the lifecycle of a set through the library. */
#include <stdio.h>
#include <string.h>

#include "vlkxs.h"

#define CHECK(cond)                                                  \
    do {                                                             \
        if (!(cond)) {                                               \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
            return 1;                                                \
        }                                                            \
    } while (0)

int main(void) {
    SVLKXS set;
    SCMDSTATUS s;
    memset(&set, 0xab, sizeof set); /* raw storage */

    s = VLKXSInit(&set, 0);
    CHECK(s.code == VLKXS_C_OK && s.level == VLKXS_LEVEL_OK && s.col == -1);
    CHECK(s.origin != NULL && strcmp(s.origin, "vlkxs(Init)") == 0 && s.msg == NULL);
    CHECK(set.flag == 0 && set.nShell == 0 && set.pShell == NULL && set.infile == NULL);

    CHECK(VLKProjFromStr(&set.proj, "e", 0).code == 0);
    CHECK(VLKTargImportMaterial(&set.targ, "H2O", 0).code == 0);
    CHECK(set.proj.type == VLKPROJ_ELECTRON && strcmp(set.targ.name, "H2O") == 0);

    s = VLKXSSpace(&set, 0);
    CHECK(s.code == 0 && set.space >= sizeof(SVLKXS));

    s = VLKXSEnable(&set, 0);
    CHECK(s.code == 0 && set.flag == VLKXS_FLAG_ENABLED);

    set.IA = 2;
    CHECK(VLKXSStrFromIAType(&set, 0).code == 0 && strcmp(set.IAtag, "i") == 0);

    s = VLKXSInit(NULL, VLKXS_MODE_QUIET);
    CHECK(s.code == VLKXS_C_BADADDR && s.level == VLKXS_LEVEL_ERROR);
    CHECK(VLKXSError(&s, 0) == 0 && strcmp(s.msg, cvMsg[VLKXS_C_BADADDR]) == 0);

    CHECK(VLKXSFree(&set, 0).code == 0);
    CHECK(set.proj.name == NULL && set.targ.name == NULL);
    printf("C header test: ok\n");
    return 0;
}
