// ui-core unit: what the units library makes of a unit expression.

#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
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

std::string exact_and_decimal(const units::Magnitude& value) {
  if (value.is_rational()) return exact_and_decimal(value.rational_part());
  std::ostringstream decimal;
  decimal << std::setprecision(10) << value.to_double();
  return value.to_string() + " (" + decimal.str() + ")";
}

// One unit of `expr` in base units: "1 degF = 5/9 (0.5555555556) K", and for an
// affine unit where its zero lies.
std::string base_lines(const units::Expr& expr) {
  const units::Context& context = *expr.context();
  units::Factors base;
  units::Magnitude scale;
  for (const auto& [id, exponent] : expr.info().factors) {
    const units::Unit& unit = *context.find(id.view());
    base *= unit.dimension.pow(exponent);
    scale *= unit.scale.pow(exponent);
  }
  const std::string base_text = units::to_raw_expr(base).text();
  std::string out = "base: 1 " + units::to_raw_expr(expr.info().factors).text() + " = " +
                    exact_and_decimal(scale) + " " + base_text + "\n";
  if (expr.info().affine) {
    const units::Unit& unit = *context.find(expr.info().factors.singleton()->view());
    out += "zero: " + exact_and_decimal(unit.offset) + " " + base_text + "\n";
  }
  return out;
}

void setup_unit(CLI::App& app, Outcome& /*outcome*/) {
  struct Options {
    std::string expression;
    std::string to;
    bool nonaffine = false;
  };
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "unit",
      "Show a unit expression's canonical text, its conversion to another and its non-affine text");
  cmd->add_option("expression", opts->expression, "Unit expression, e.g. kg*m^2/s^2, degF, km/h")
      ->required();
  cmd->add_option("--to", opts->to, "Print the exact conversion to this unit expression");
  cmd->add_flag("--nonaffine", opts->nonaffine,
                "Convert without offsets (linear) and show the non-affine (delta) unit text");
  cmd->callback([opts] {
    // Everything is worked out before anything is printed, so a refused input
    // prints only its error.
    const units::Expr expr = parse_or_refuse(opts->expression);
    std::string out = "text: " + units::to_raw_expr(expr.info().factors).text() + "\n";
    out += std::string("affine: ") + (expr.info().affine ? "yes" : "no") + "\n";
    out += base_lines(expr);
    if (!opts->to.empty()) {
      const units::Expr to = parse_or_refuse(opts->to);
      const units::ConversionMode mode =
          opts->nonaffine ? units::ConversionMode::linear : units::ConversionMode::affine;
      const units::Conversion c = units::conversion(expr, to, mode);
      out += "to: " + units::to_raw_expr(to.info().factors).text() + " (" +
             (opts->nonaffine ? "linear" : "affine") + ": y = factor*x + offset)\n";
      out += "factor: " + exact_and_decimal(c.linear()) + "\n";
      out += "offset: " + exact_and_decimal(c.offset()) + "\n";
    }
    out += std::string(opts->nonaffine ? "nonaffine display: " : "display: ") +
           to_out(ui::core::ps2dravik_nonaffine_unit_conversion(expr, opts->nonaffine)) + "\n";
    std::cout << out;
  });
}

const Registration unit_registration{"unit", &setup_unit};

}  // namespace
}  // namespace ui_core_tool
