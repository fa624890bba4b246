// fuzz/unit_expr.cpp - unit expressions and their non-affine counterpart
//
// Properties of units2::core::Expr(text):
// - building an expression never throws for any text;
// - an invalid expression has empty factors, is not affine and names its
//   problem; a valid one has no problem;
// - the canonical text of a valid expression (to_raw_expr of its factors)
//   parses to a valid expression with the same factors and the same affine
//   flag, and is its own canonical text;
// - an expression is commensurate with itself exactly when it is valid.
// Properties of ps2dravik_nonaffine_unit_conversion(expr, nonaffine):
// - it never throws for an expression built from any text;
// - without the flag it gives the expression's own text: the canonical text
//   when valid, the invalid-expression message text otherwise;
// - with the flag it gives the same, or - only for a single unit U - the text
//   "deltaU" of a unit that is valid, not affine and commensurate with U.

#include <cstdint>
#include <optional>
#include <string>

#include "fuzz_support.h"
#include "krel/message.h"
#include "krel/ustring.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/expr.h"
#include "units2/core/factors.h"

namespace {

using fuzz::ustring;
using units2::core::Expr;

ustring own_text(const Expr& e) {
  if (e.isValid()) return units2::core::to_raw_expr(e.info().factors);
  ustring text;
  Expr::invalidMessage().formattedMessage_(text);
  return text;
}

void check(const ustring& text) {
  std::optional<Expr> parsed;
  fuzz::require_no_throw([&] { parsed.emplace(text); }, "Expr never throws for bad text", text);
  const Expr& e = *parsed;
  if (!e.isValid()) {
    fuzz::require(e.info().factors.empty() && !e.info().affine && e.problem().has_value(),
                  "an invalid expression has no factors, is not affine and names its problem",
                  text);
  } else {
    fuzz::require(!e.problem().has_value(), "a valid expression has no problem", text);
    const ustring canonical = units2::core::to_raw_expr(e.info().factors);
    const Expr again(canonical);
    fuzz::require(again.isValid() && again.info().factors == e.info().factors &&
                      again.info().affine == e.info().affine,
                  "the canonical text parses to the same factors", text);
    fuzz::require(ustring(units2::core::to_raw_expr(again.info().factors)) == canonical,
                  "the canonical text is its own canonical text", text);
  }
  fuzz::require(units2::core::commensurate(e, e) == e.isValid(),
                "an expression is commensurate with itself exactly when valid", text);

  ustring plain;
  ustring nonaffine;
  fuzz::require_no_throw(
      [&] {
        plain = ui::core::ps2dravik_nonaffine_unit_conversion(e, false);
        nonaffine = ui::core::ps2dravik_nonaffine_unit_conversion(e, true);
      },
      "ps2dravik_nonaffine_unit_conversion throws nothing for a parsed expression", text);
  const ustring own = own_text(e);
  fuzz::require(plain == own, "without the flag the expression's own text is given", text);
  if (nonaffine != own) {
    const auto single = e.info().factors.singleton();
    fuzz::require(e.isValid() && single.has_value(),
                  "only a single unit is replaced by its delta unit", text);
    const std::string delta = "delta" + std::string(single->data(), single->size());
    fuzz::require(nonaffine == fuzz::u(delta), "the replacement is the unit's delta unit", text);
    const Expr replacement(nonaffine);
    fuzz::require(replacement.isValid() && !replacement.info().affine &&
                      units2::core::commensurate(replacement, e),
                  "the delta unit is valid, not affine and commensurate with the unit", text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const ustring& text : fuzz::texts_of(data, size)) check(text);
  return 0;
}
