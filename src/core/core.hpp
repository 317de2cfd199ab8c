// The module's own foundation, included first by every subsystem: the status
// protocol and the frame of the operations, the one allocation path, number
// reading and writing, text matching, the walk over shells and records, the
// physical constants, the fixed thread-local texts of returned records and
// the buffered output of the files the module writes.
#pragma once

#include "core/alloc.hpp"
#include "core/constants.hpp"
#include "core/frame.hpp"
#include "core/kinematics.hpp"
#include "core/numbers.hpp"
#include "core/scratch.hpp"
#include "core/status.hpp"
#include "core/textout.hpp"
#include "core/walk.hpp"
#include "core/words.hpp"
