// A fake of the projectile and target companions, for linking the module
// against instead of the real ones.  Its records borrow static texts and a
// static shell table (water, five orbitals), it allocates nothing, and each
// operation can be made to fail on demand.  It counts the calls it gets.
#pragma once

#include <cstdint>

namespace fake {

struct Layer {
    // Failures on demand.
    bool refuse_projectile = false;  // VLKProjFromStr: code 14
    bool refuse_material = false;    // VLKTargImportMaterial: code 25
    bool invalid_projectile = false; // VLKProjIsValid: code 5
    bool invalid_target = false;     // VLKTargIsValid: code 6
    bool fail_proj_dup = false;      // VLKProjDup: code 1, dst zero-filled
    bool fail_targ_dup = false;      // VLKTargDup: code 1, dst zero-filled
    // Calls seen, and the mode of the last IsValid call.
    int proj_init = 0, proj_free = 0, proj_dup = 0, proj_from_str = 0;
    int targ_init = 0, targ_free = 0, targ_dup = 0, targ_import = 0;
    int32_t is_valid_mode = 0;
};

// The one layer of the process; reset() gives it back its defaults.
Layer &layer();
void reset();

}  // namespace fake
