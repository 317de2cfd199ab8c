// The tool's version: the library's, as the build knows it.
#pragma once

namespace vlkcli {
const char *version() noexcept;
}
