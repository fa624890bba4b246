// ui-core unit: what the units library makes of a unit expression.

#include <iostream>
#include <memory>
#include <string>

#include "command.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/context.h"
#include "units2/core/conversion.h"

namespace ui_core_tool {
namespace {

namespace units = units2::core;

// The expression, or a refusal carrying the reason it is invalid.
units::Expr parse_or_refuse(const std::string& text) {
  units::Expr expr(from_arg(text));
  if (!expr.isValid()) {
    throw krel::MessageException(expr.problem().value_or(units::Expr::invalidMessage()));
  }
  return expr;
}

std::string exact_and_decimal(const units::ConversionRational& value) {
  std::string out = to_string(value);
  if (!value.isInteger()) out += " (" + units::to_decimal_string(value) + ")";
  return out;
}

// One unit of `expr` in base units: the scale and the base product.
void print_base(const units::Expr& expr) {
  const units::Context& context = *expr.context();
  units::Factors base;
  units::Magnitude scale;
  for (const auto& [id, exponent] : expr.info().factors) {
    const units::Unit& unit = *context.find(id.view());
    base *= unit.dimension.pow(exponent);
    scale *= unit.scale.pow(exponent);
  }
  const std::string base_text = units::to_raw_expr(base).text();
  std::cout << "base: 1 " << units::to_raw_expr(expr.info().factors).text() << " = "
            << scale.to_string();
  if (!scale.is_rational()) {
    std::cout << " (" << units::to_decimal_string(units::ConversionRational(1)) << "*"
              << scale.to_double() << ")";
  } else if (!scale.rational_part().isInteger()) {
    std::cout << " (" << units::to_decimal_string(scale.rational_part()) << ")";
  }
  std::cout << ' ' << base_text << '\n';
  if (expr.info().affine) {
    const units::Unit& unit = *context.find(expr.info().factors.singleton()->view());
    std::cout << "zero: " << exact_and_decimal(unit.offset) << ' ' << base_text << '\n';
  }
}

void setup_unit(CLI::App& app, Outcome& /*outcome*/) {
  struct Options {
    std::string expression;
    std::string to;
    bool nonaffine = false;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "unit", "Show a unit expression's canonical text, its conversion to another and its non-affine text");
  cmd->add_option("expression", opts->expression, "Unit expression, e.g. kg*m^2/s^2, degF, km/h")
      ->required();
  cmd->add_option("--to", opts->to, "Print the exact conversion to this unit expression");
  cmd->add_flag("--nonaffine", opts->nonaffine,
                "Convert without offsets (linear) and show the non-affine (delta) unit text");
  cmd->callback([opts] {
    const units::Expr expr = parse_or_refuse(opts->expression);
    std::cout << "text: " << units::to_raw_expr(expr.info().factors).text() << '\n';
    std::cout << "affine: " << (expr.info().affine ? "yes" : "no") << '\n';
    print_base(expr);
    if (!opts->to.empty()) {
      const units::Expr to = parse_or_refuse(opts->to);
      const units::ConversionMode mode =
          opts->nonaffine ? units::ConversionMode::linear : units::ConversionMode::affine;
      const units::Conversion c = units::conversion(expr, to, mode);
      std::cout << "to: " << units::to_raw_expr(to.info().factors).text() << " ("
                << (opts->nonaffine ? "linear" : "affine") << ": y = factor*x + offset)\n";
      std::cout << "factor: " << exact_and_decimal(c.linear()) << '\n';
      std::cout << "offset: " << exact_and_decimal(c.offset()) << '\n';
    }
    std::cout << (opts->nonaffine ? "nonaffine display: " : "display: ")
              << to_out(ui::core::ps2dravik_nonaffine_unit_conversion(expr, opts->nonaffine))
              << '\n';
  });
}

const Registration unit_registration{"unit", &setup_unit};

}  // namespace
}  // namespace ui_core_tool
