// units2/core/units.h - the whole units library in one include
//
// Parsing, printing and resolving unit expressions (expr.h, factors.h), the
// unit database and the units service (context.h), exact conversions
// (conversion.h). Code that only passes expressions around should include
// expr.h alone: this header brings in the multiprecision integers.

#ifndef UNITS2_CORE_UNITS_H
#define UNITS2_CORE_UNITS_H

#include "units2/core/context.h"
#include "units2/core/conversion.h"
#include "units2/core/conversion_value.h"
#include "units2/core/expr.h"
#include "units2/core/factors.h"
#include "units2/core/magnitude.h"
#include "units2/core/rational.h"
#include "units2/core/unit_id.h"

#endif  // UNITS2_CORE_UNITS_H
