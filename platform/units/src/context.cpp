#include "units2/core/context.h"

#include <cstdint>
#include <utility>

#include "expr_impl.h"
#include "messages.h"
#include "units_data.h"

namespace units2::core {

struct Context::Builder {
  std::string_view source;
  std::uint64_t line = 0;
  Context& context;
  // Units declared explicitly, in order, with their lines, for generating
  // prefixed forms.
  std::vector<std::pair<std::string, std::uint64_t>> declared;

  [[noreturn]] void fail(const std::string& reason) const {
    detail::throw_message(detail::invalid_database(source, line, reason));
  }

  static std::vector<std::string_view> fields(std::string_view text) {
    std::vector<std::string_view> out;
    std::size_t i = 0;
    while (i < text.size()) {
      while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r')) ++i;
      const std::size_t start = i;
      while (i < text.size() && text[i] != ' ' && text[i] != '\t' && text[i] != '\r') ++i;
      if (i > start) out.push_back(text.substr(start, i - start));
    }
    return out;
  }

  // Definitions refer to units declared above them; prefixed forms are
  // generated only once the whole file is read.
  const Unit* lookup(std::string_view id) const { return context.find(id); }

  Magnitude factor(std::string_view text) const {
    // number-or-pi { ("*" | "/") number-or-pi }, from the left.
    Magnitude out;
    char op = '*';
    std::size_t i = 0;
    while (true) {
      const std::size_t end = text.find_first_of("*/", i);
      const std::string_view item = text.substr(i, end == std::string_view::npos ? end : end - i);
      Magnitude value;
      if (item == "pi") {
        value = Magnitude::pi();
      } else {
        const auto number = parse_exact_number(item);
        if (!number || item.find('/') != std::string_view::npos) {
          fail("'" + std::string(text) + "' is not a factor");
        }
        if (number->isZero() || number->isNegative()) {
          fail("the factor '" + std::string(text) + "' is not positive");
        }
        value = Magnitude(*number);
      }
      if (op == '*') {
        out *= value;
      } else {
        out /= value;
      }
      if (end == std::string_view::npos) return out;
      op = text[end];
      i = end + 1;
    }
  }

  UnitId new_id(std::string_view text) const {
    const auto id = UnitId::make(text);
    if (!id) fail("'" + std::string(text) + "' is not a unit name");
    if (context.units_.count(std::string(text)) != 0) {
      fail("the unit '" + std::string(text) + "' is declared twice");
    }
    return *id;
  }

  void add(Unit unit) {
    declared.emplace_back(unit.id.str(), line);
    std::string key = unit.id.str();
    context.units_.emplace(std::move(key), std::move(unit));
  }

  void prefix(const std::vector<std::string_view>& f) {
    if (f.size() != 3) fail("expected: prefix <symbol> <factor>");
    for (char c : f[1]) {
      if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) {
        fail("the prefix '" + std::string(f[1]) + "' is not made of letters");
      }
    }
    for (const Prefix& p : context.prefixes_) {
      if (p.symbol == f[1]) fail("the prefix '" + std::string(f[1]) + "' is declared twice");
    }
    const Magnitude value = factor(f[2]);
    if (!value.is_rational()) fail("the factor of a prefix must be rational");
    context.prefixes_.push_back(Prefix{std::string(f[1]), value.rational_part()});
  }

  void base(const std::vector<std::string_view>& f) {
    if (f.size() < 3 || f.size() > 4 || (f.size() == 4 && f[3] != "prefixes")) {
      fail("expected: base <id> <quantity> [prefixes]");
    }
    Unit unit{new_id(f[1]),
              Factors(),
              Magnitude(),
              ConversionRational(),
              true,
              f.size() == 4,
              "base unit of " + std::string(f[2])};
    unit.dimension = Factors(unit.id, Exponent(1));
    context.bases_.push_back(BaseUnit{unit.id, std::string(f[2])});
    add(std::move(unit));
  }

  void unit(const std::vector<std::string_view>& f) {
    if (f.size() < 4)
      fail("expected: unit <id> <factor> <expression> [offset=<number>] [prefixes]");
    UnitId id = new_id(f[1]);
    const Magnitude scale = factor(f[2]);
    std::optional<ConversionRational> offset;
    std::string offset_text;
    bool prefixable = false;
    for (std::size_t i = 4; i < f.size(); ++i) {
      if (f[i] == "prefixes" && !prefixable) {
        prefixable = true;
      } else if (f[i].starts_with("offset=") && !offset) {
        offset_text = std::string(f[i]);
        offset = parse_exact_number(f[i].substr(7));
        if (!offset) fail("'" + std::string(f[i]) + "' is not an offset");
      } else {
        fail("unexpected '" + std::string(f[i]) + "'");
      }
    }

    const std::string expr_text(f[3]);
    const auto parsed = detail::parse_factors(std::string_view(expr_text));
    if (const auto* failure = std::get_if<detail::ParseFailure>(&parsed)) {
      fail("cannot read '" + expr_text + "' at position " + std::to_string(failure->position + 1));
    }
    const krel::ustring wide(expr_text.begin(), expr_text.end());
    auto result = detail::reduce(
        std::get<Factors>(parsed), [this](std::string_view name) { return lookup(name); }, wide);
    if (const auto* problem = std::get_if<detail::MsgId>(&result)) {
      fail("'" + expr_text + "' is not a valid expression here (" + problem->key +
           "); a definition may only use units declared above it");
    }
    const detail::Reduced& ref = std::get<detail::Reduced>(result);

    // One unit is `scale` units of the reference, and its zero lies at
    // `offset` units of the reference: base = ref.scale * (scale * x + offset) + ref.offset.
    Unit out{id,
             ref.dimension,
             scale * ref.scale,
             ref.offset,
             false,
             prefixable,
             std::string(f[2]) + " " + expr_text};
    if (offset && !offset->isZero()) {
      if (!ref.scale.is_rational()) fail("an offset needs a reference with a rational scale");
      out.offset += *offset * ref.scale.rational_part();
    }
    if (out.affine() && !out.scale.is_rational())
      fail("a unit with an offset needs a rational scale");
    if (out.affine() && prefixable) fail("a unit with an offset takes no prefixes");
    if (offset) out.definition += " " + offset_text;
    add(std::move(out));
  }

  // The prefix rule: every prefix with every prefixable unit, except where
  // the spelling is declared explicitly. Two generated forms with one
  // spelling would make the database ambiguous, and are refused.
  void generate_prefixed_forms() {
    UnitMap generated;
    for (const auto& [name, declared_at] : declared) {
      line = declared_at;
      const Unit& unit = context.units_.at(name);
      if (!unit.prefixable) continue;
      for (const Prefix& p : context.prefixes_) {
        const std::string id = p.symbol + name;
        if (context.units_.count(id) != 0) continue;
        if (const auto it = generated.find(id); it != generated.end()) {
          fail("the prefixed forms '" + it->second.definition + "' and 'prefix " + p.symbol +
               " of " + name + "' are both spelled '" + id + "'");
        }
        generated.emplace(
            id, Unit{UnitId(id), unit.dimension, Magnitude(p.factor) * unit.scale,
                     ConversionRational(), false, false, "prefix " + p.symbol + " of " + name});
      }
    }
    context.units_.insert(generated.begin(), generated.end());
  }

  void read(std::string_view data) {
    std::size_t start = 0;
    while (start <= data.size()) {
      ++line;
      std::size_t end = data.find('\n', start);
      if (end == std::string_view::npos) end = data.size();
      std::string_view text = data.substr(start, end - start);
      if (const auto hash = text.find('#'); hash != std::string_view::npos)
        text = text.substr(0, hash);
      const auto f = fields(text);
      if (!f.empty()) {
        if (f[0] == "prefix") {
          prefix(f);
        } else if (f[0] == "base") {
          base(f);
        } else if (f[0] == "unit") {
          unit(f);
        } else {
          fail("unknown declaration '" + std::string(f[0]) + "'");
        }
      }
      start = end + 1;
    }
    generate_prefixed_forms();
  }
};

std::shared_ptr<const Context> Context::parse(std::string_view data, std::string_view source) {
  std::shared_ptr<Context> context(new Context());
  Builder builder{source, 0, *context, {}};
  try {
    builder.read(data);
  } catch (const krel::MessageException& e) {
    // Numbers that leave their range (NonFiniteExponent, FactorTooLarge) are
    // reported at the line that produced them.
    if (e.message().id().key == "InvalidDatabase") throw;
    builder.fail("a number is out of range (" + e.message().id().key + ")");
  }
  return context;
}

std::shared_ptr<const Context> Context::builtin() {
  static const std::shared_ptr<const Context> context =
      parse(detail::builtin_unit_data(), detail::builtin_unit_data_name);
  return context;
}

const Unit* Context::find(std::string_view id) const {
  const auto it = units_.find(std::string(id));
  return it != units_.end() ? &it->second : nullptr;
}

std::shared_ptr<Service> get_service() {
  static const std::shared_ptr<Service> service = std::make_shared<Service>(Context::builtin());
  return service;
}

}  // namespace units2::core
