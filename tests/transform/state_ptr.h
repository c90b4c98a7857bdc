// Owning pointers for the core's states in tests.
#ifndef MAPWRIGHT_TESTS_TRANSFORM_STATE_PTR_H
#define MAPWRIGHT_TESTS_TRANSFORM_STATE_PTR_H

#include <memory>

#include "datum_shift.h"
#include "mercator.h"
#include "tm.h"

struct PlainRelease {
    void operator()(ProjState* s) const { projection_state_free(s); }
};
struct MercRelease {
    void operator()(ProjState* s) const { merc_free(s); }
};
struct ShiftRelease {
    void operator()(DatumShiftState* s) const { datum_shift_free(s); }
};
using PlainState = std::unique_ptr<ProjState, PlainRelease>;
using MercState = std::unique_ptr<ProjState, MercRelease>;
using ShiftState = std::unique_ptr<DatumShiftState, ShiftRelease>;

#endif
