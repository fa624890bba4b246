#include "ui/core/unit_conversion.h"

#include <memory>
#include <optional>
#include <string>

#include "units2/core/context.h"
#include "units2/core/conversion.h"

namespace ui::core {
namespace {

namespace units = units2::core;

// What the interface shows for an expression: its canonical text, or, for an
// invalid one, the units library's text saying that it is invalid.
ustring text_of(const units::Expr& expr) {
  if (expr.isValid()) return ustring(units::to_raw_expr(expr.info().factors));
  ustring text;
  units::Expr::invalidMessage().formattedMessage_(text);
  return text;
}

}  // namespace

ustring ps2dravik_nonaffine_unit_conversion(const units::Expr& expr, bool nonaffine) {
  if (!nonaffine) return text_of(expr);

  const std::optional<units::UnitId> single = expr.info().factors.singleton();
  if (!single) return text_of(expr);

  std::string candidate_text(single->data(), single->size());
  candidate_text.insert(0, "delta");
  const std::string checked = units::detail::CheckUnitId()(candidate_text);
  const units::UnitId candidate_id(checked.data(), checked.size());

  // The service is only the way to the context; the context is shared and
  // stays alive on its own, so the service is let go at once.
  std::shared_ptr<units::Service> service = units::get_service();
  const std::shared_ptr<const units::Context> context = service->context();
  service.reset();

  const auto& known = context->units();
  if (known.find(std::string(candidate_id.data(), candidate_id.size())) == known.end()) {
    return text_of(expr);
  }

  const units::Expr candidate(units::ContextGetter(),
                              units::Factors(candidate_id, units::Exponent(1, 1)));
  if (candidate.info().affine) return text_of(expr);
  if (!units::commensurate(expr, candidate)) return text_of(expr);

  const units::Conversion factor = units::conversion(candidate, expr, units::ConversionMode(1));
  return factor.linear().isOne() ? text_of(candidate) : text_of(expr);
}

}  // namespace ui::core
