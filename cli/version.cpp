#include "version.hpp"

namespace vlkcli {
const char *version() noexcept { return VLKXS_VERSION; }
}  // namespace vlkcli
