/* A user's program: one set with an electron in water, measured and freed. */
#include <stdio.h>
#include <vlkxs.h>

int main(void) {
    SVLKXS set;
    SCMDSTATUS s = VLKXSInit(&set, 0);
    if (s.code != 0) return 1;
    s = VLKProjFromStr(&set.proj, "e", 0);
    if (s.code != 0) return 2;
    s = VLKTargImportMaterial(&set.targ, "H2O", 0);
    if (s.code != 0) return 3;
    s = VLKXSSpace(&set, 0);
    if (s.code != 0 || set.space < sizeof(SVLKXS)) return 4;
    s = VLKXSFree(&set, 0);
    printf("consumer: ok\n");
    return s.code == 0 ? 0 : 5;
}
