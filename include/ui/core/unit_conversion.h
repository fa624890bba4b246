/// \file ui/core/unit_conversion.h
/// Which unit text to show for a non-affine conversion.
///
/// A unit with an offset, such as degC, has a difference unit whose id is
/// "delta" followed by the unit's own id (deltadegC). When a value is converted
/// without its offset, the interface shows that difference unit - but only when
/// it really is the same unit without the offset: it must exist, have no offset
/// of its own, measure the same quantity and have exactly the same scale.
/// Otherwise, and for anything that is not a single unit, the expression's own
/// text is shown.
///
/// ```
/// using units2::core::Expr;
/// ui::core::ps2dravik_nonaffine_unit_conversion(Expr(u"degC"), true);   // u"deltadegC"
/// ui::core::ps2dravik_nonaffine_unit_conversion(Expr(u"degC"), false);  // u"degC"
/// ui::core::ps2dravik_nonaffine_unit_conversion(Expr(u"m/s"), true);    // u"m/s"
/// ```

#ifndef UI_CORE_UNIT_CONVERSION_H
#define UI_CORE_UNIT_CONVERSION_H

#include "ui/core/errors.h"
#include "units2/core/expr.h"

namespace ui::core {

/// The text of the unit to show for `expr`: when `nonaffine` is set and expr
/// is a single unit whose delta unit exists in the units service's current
/// context, is not itself affine, is commensurate with expr and converts to it
/// with a linear factor of exactly 1, the delta unit's canonical text;
/// otherwise expr's own canonical text. An invalid expression gives the units
/// library's invalid-expression message text (Expr::invalidMessage()) instead
/// of a unit text; this function throws nothing of its own, while exceptions
/// of the units library (from the delta id check, the service or the
/// conversion) pass through unchanged.
[[nodiscard]] ustring ps2dravik_nonaffine_unit_conversion(const units2::core::Expr& expr,
                                                          bool nonaffine);

}  // namespace ui::core

#endif  // UI_CORE_UNIT_CONVERSION_H
