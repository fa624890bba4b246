#include "units2/core/conversion.h"

#include "expr_impl.h"
#include "messages.h"

namespace units2::core {
namespace {

krel::ustring text_of(const detail::ExprRep& rep) {
  return to_raw_expr(rep.info.factors);
}

}  // namespace

Conversion conversion(const Expr& from, const Expr& to, ConversionMode mode) {
  const detail::ExprRep& a = detail::ExprAccess::rep(from);
  const detail::ExprRep& b = detail::ExprAccess::rep(to);
  if (!a.valid || !b.valid) throw krel::MessageException(Expr::invalidMessage());
  if (mode != ConversionMode::affine && mode != ConversionMode::linear) {
    detail::throw_error(detail::MessageId::InvalidConversionMode, static_cast<std::int64_t>(mode));
  }
  if (a.reduced.dimension != b.reduced.dimension) {
    detail::throw_error(detail::MessageId::NotCommensurate, text_of(a), text_of(b));
  }
  const Magnitude ratio = a.reduced.scale / b.reduced.scale;
  if (!ratio.is_rational()) {
    detail::throw_error(detail::MessageId::InexactConversion, text_of(a), text_of(b),
                        ratio.to_string());
  }
  ConversionRational offset;
  if (mode == ConversionMode::affine) {
    // y = (a.scale * x + a.offset - b.offset) / b.scale
    const ConversionRational shift = a.reduced.offset - b.reduced.offset;
    if (!shift.isZero()) {
      if (!b.reduced.scale.is_rational()) {
        detail::throw_error(detail::MessageId::InexactConversion, text_of(a), text_of(b),
                            (Magnitude(1) / b.reduced.scale).to_string());
      }
      offset = shift / b.reduced.scale.rational_part();
    }
  }
  return Conversion(ratio.rational_part(), offset);
}

}  // namespace units2::core
