/* Quick start: electron-impact ionisation of water by the BEB model, as
 * single differential tables; the cross section at 1 keV, and five
 * secondary electrons drawn from the tables there. */
#include <stdio.h>
#include <stdlib.h>

#include "vlkxs.h"

static int failed(SCMDSTATUS s) { return s.level > 0xffffffu; } /* the library has reported it */

int main(void) {
    SVLKXS set;
    SVLKXSCALC rq = {0};
    double sigma = 0.0, W = 0.0;
    VLKXSInit(&set, 0);
    if (failed(VLKProjFromStr(&set.proj, "e", 0)) || failed(VLKTargImportMaterial(&set.targ, "H2O", 0)) ||
        failed(VLKXSIATypeFromStr(&set, "i", 0)) || failed(VLKXSIADimFromStr(&set, "s", 0)))
        return 1;
    VLKXSCalcMethodFromStr(&rq, "beb", 0);
    VLKXSCalcLimitsFromStr(&rq, "0.01,100", VLKXS_MODE_LIMIT_E); /* keV */
    if (failed(VLKXSCalc(&set, &rq, 0))) return 1;               /* complete and valid */

    int32_t sum = set.nShell - 1; /* the sum shell stands last */
    VLKXSSigma(&set, sum, 1.0, &sigma, 0);
    printf("%d shells, %d energies; sigma(1 keV) = %.4g cm2\n", (int)set.nShell, (int)set.pShell[sum].nE, sigma);
    for (int i = 0; i < 5; ++i) {
        int32_t ish = 0;
        double u = rand() / (RAND_MAX + 1.0);
        VLKXSSampleShell(&set, 1.0, u, &ish, 0);
        VLKXSSampleW(&set, ish, 1.0, rand() / (RAND_MAX + 1.0), &W, 0);
        printf("  shell %d, W = %.4g keV\n", (int)set.pShell[ish].shell, W);
    }
    VLKXSCalcFree(&rq, 0);
    VLKXSFree(&set, 0);
    return 0;
}
