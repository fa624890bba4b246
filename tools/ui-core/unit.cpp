// ui-core unit: what the units library makes of unit expressions, and the
// unit database itself.
//
//   ui-core unit degF --to degC
//   ui-core unit --json --to Pa psi bar
//   ui-core unit --list

#include <algorithm>
#include <iomanip>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "command.h"
#include "line_io.h"
#include "render.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/context.h"
#include "units2/core/conversion.h"

namespace ui_core_tool {
namespace {

namespace units = units2::core;

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

// Exact text of a magnitude (a fraction, or a product with pi).
std::string exact(const units::Magnitude& value) {
  return value.is_rational() ? to_string(value.rational_part()) : value.to_string();
}

// Everything `ui-core unit` shows about one expression, worked out before
// anything is printed, so that a refused input prints only its error.
struct UnitReport {
  std::string text;
  bool affine = false;
  units::Magnitude scale;
  std::string base_text;
  std::optional<units::ConversionRational> zero;
  struct Target {
    std::string text;
    bool linear = false;
    units::ConversionRational factor;
    units::ConversionRational offset;
  };
  std::optional<Target> to;
  bool nonaffine = false;
  std::string display;
};

UnitReport work_out(const krel::ustring& text, const std::optional<units::Expr>& to,
                    bool nonaffine) {
  units::Expr expr(text);
  if (!expr.isValid()) {
    throw krel::MessageException(expr.problem().value_or(units::Expr::invalidMessage()));
  }
  UnitReport r;
  r.text = units::to_raw_expr(expr.info().factors).text();
  r.affine = expr.info().affine;
  // One unit of the expression in base units, and for an affine unit where
  // its zero lies.
  const units::Context& context = *expr.context();
  units::Factors base;
  for (const auto& [id, exponent] : expr.info().factors) {
    const units::Unit& unit = *context.find(id.view());
    base *= unit.dimension.pow(exponent);
    r.scale *= unit.scale.pow(exponent);
  }
  r.base_text = units::to_raw_expr(base).text();
  if (r.affine) r.zero = context.find(expr.info().factors.singleton()->view())->offset;
  if (to) {
    const units::ConversionMode mode =
        nonaffine ? units::ConversionMode::linear : units::ConversionMode::affine;
    const units::Conversion c = units::conversion(expr, *to, mode);
    r.to = UnitReport::Target{units::to_raw_expr(to->info().factors).text(), nonaffine, c.linear(),
                              c.offset()};
  }
  r.nonaffine = nonaffine;
  r.display = to_out(ui::core::ps2dravik_nonaffine_unit_conversion(expr, nonaffine));
  return r;
}

// Each line of the report is one field of the line form.
void add_line(Result& out, std::string name, nlohmann::ordered_json json, const std::string& line) {
  out.add({std::move(name), std::move(json), line, line});
}

void add_report(const UnitReport& r, Result& out) {
  add_line(out, "text", r.text, "text: " + r.text);
  add_line(out, "affine", r.affine, std::string("affine: ") + (r.affine ? "yes" : "no"));
  add_line(out, "scale", exact(r.scale),
           "base: 1 " + r.text + " = " + exact_and_decimal(r.scale) + " " + r.base_text);
  out.json("base", r.base_text);
  if (r.zero) {
    add_line(out, "zero", to_string(*r.zero),
             "zero: " + exact_and_decimal(*r.zero) + " " + r.base_text);
  }
  if (r.to) {
    const std::string mode = r.to->linear ? "linear" : "affine";
    auto to = nlohmann::ordered_json::object();
    to["text"] = r.to->text;
    to["mode"] = mode;
    to["factor"] = to_string(r.to->factor);
    to["offset"] = to_string(r.to->offset);
    add_line(out, "to", std::move(to),
             "to: " + r.to->text + " (" + mode + ": y = factor*x + offset)");
    const std::string factor = "factor: " + exact_and_decimal(r.to->factor);
    const std::string offset = "offset: " + exact_and_decimal(r.to->offset);
    out.add({"factor", std::nullopt, factor, factor});
    out.add({"offset", std::nullopt, offset, offset});
  }
  add_line(out, r.nonaffine ? "nonaffine_display" : "display", r.display,
           (r.nonaffine ? "nonaffine display: " : "display: ") + r.display);
}

// "all", "none" or the symbols ("M G"): the prefixes a unit takes.
std::string prefixes_text(const units::Context& context, const units::Unit& unit) {
  if (unit.prefix_symbols.empty()) return "none";
  if (unit.prefix_symbols.size() == context.prefixes().size()) return "all";
  std::string out;
  for (const std::string& symbol : unit.prefix_symbols) {
    if (!out.empty()) out += ' ';
    out += symbol;
  }
  return out;
}

std::string joined(const std::vector<std::string>& items) {
  std::string out;
  for (const std::string& item : items) {
    if (!out.empty()) out += ", ";
    out += item;
  }
  return out;
}

// `ui-core unit --list`: one entry per unit the database declares, in its
// order, then one per ambiguous spelling, in byte order. The line form,
// "<id><TAB><field>...", is for grep and cut; --json writes one object each.
void write_list(Format format) {
  const std::shared_ptr<const units::Context> context = units::get_service()->context();
  Renderer renderer(format, standard_output());
  Result entry;
  for (const units::UnitId& id : context->declared_units()) {
    const units::Unit& unit = *context->find(id.view());
    const std::string base = units::to_raw_expr(unit.dimension).text();
    entry.clear();
    entry.text("id", id.str());
    entry.json("kind", "unit");
    entry.add({"names", unit.names, std::nullopt,
               unit.names.empty() ? "names:" : "names: " + joined(unit.names)});
    entry.json("base", base);
    entry.add({"scale", exact(unit.scale), std::nullopt,
               "base: 1 " + id.str() + " = " + exact_and_decimal(unit.scale) + " " + base});
    if (unit.affine()) {
      entry.add({"zero", to_string(unit.offset), std::nullopt,
                 "zero: " + exact_and_decimal(unit.offset) + " " + base});
    }
    entry.add({"prefixes", unit.prefix_symbols, std::nullopt,
               "prefixes: " + prefixes_text(*context, unit)});
    entry.add({"definition", unit.definition, std::nullopt, "definition: " + unit.definition});
    renderer.write_entry(entry);
  }
  std::vector<std::string> ambiguous;
  for (const auto& e : context->ambiguous()) ambiguous.push_back(e.first);
  std::sort(ambiguous.begin(), ambiguous.end());
  for (const std::string& spelling : ambiguous) {
    std::vector<std::string> readings;
    for (const units::UnitId& id : *context->ambiguity(spelling)) readings.push_back(id.str());
    entry.clear();
    entry.text("id", spelling);
    entry.json("kind", "ambiguous");
    entry.add({"readings", readings, std::nullopt, "ambiguous: " + joined(readings)});
    renderer.write_entry(entry);
  }
}

void setup_unit(CLI::App& app, CommandState& state) {
  struct Options {
    std::string to;
    bool nonaffine = false;
    bool list = false;
  };
  auto opts = state.fresh<Options>();
  CLI::App* cmd = app.add_subcommand(
      "unit",
      "Show unit expressions' canonical text, their conversion to another and their non-affine "
      "text, or list the unit database");
  auto io = add_inputs(
      cmd, state,
      {"expressions",
       "Unit expressions, e.g. kg*m^2/s^2, 'kg m/s\u00b2', N\u00b7m, \u00b5m, \u00b0C, km/h, "
       "kilometre/hour. A spelling with more than one reading in common use (gal, oz, cal, "
       "ton, yr) is refused with the spellings to write instead",
       "  ui-core unit degF --to degC\n"
       "  ui-core unit degC --nonaffine\n"
       "  ui-core unit --to Pa psi bar mmHg\n"
       "  ui-core unit 'kg m/s\u00b2' --to N\n"
       "  ui-core unit --json --file expressions.txt\n"
       "  ui-core unit --list\n"});
  CLI::Option* to_option =
      cmd->add_option("--to", opts->to, "Print the exact conversion to this unit expression");
  CLI::Option* nonaffine_option =
      cmd->add_flag("--nonaffine", opts->nonaffine,
                    "Convert without offsets (linear) and show the non-affine (delta) unit text");
  cmd->add_flag("--list", opts->list,
                "List the unit database: each unit's id, long names and aliases, size in base "
                "units, zero, prefixes and definition, then the ambiguous spellings (with --json "
                "one object each)")
      ->excludes(to_option)
      ->excludes(nonaffine_option);
  cmd->callback([opts, io, &state] {
    if (opts->list) {
      if (!io->args.empty() || !io->file.empty()) {
        throw CLI::ValidationError("--list", "lists the whole database and takes no expressions");
      }
      write_list(io->json ? Format::json : Format::line);
      return;
    }
    // The target is read once; an invalid one is bad usage, reported before
    // any input is looked at.
    std::optional<units::Expr> to;
    if (!opts->to.empty()) {
      to = read_option("--to", [&] {
        units::Expr target(from_arg(opts->to));
        if (!target.isValid()) {
          throw krel::MessageException(target.problem().value_or(units::Expr::invalidMessage()));
        }
        return target;
      });
    }
    const bool headings = io->args.size() > 1;
    state.exit_code = run_inputs(*io, [opts, &to, headings](const Input& input, Result& out) {
      const UnitReport r = work_out(input.text, to, opts->nonaffine);
      if (headings) out.report("input: " + std::string(input.bytes));
      add_report(r, out);
    });
  });
}

const Registration unit_registration{"unit", &setup_unit};

}  // namespace
}  // namespace ui_core_tool
