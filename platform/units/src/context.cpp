#include "units2/core/context.h"

#include <cassert>
#include <cstdint>
#include <optional>
#include <utility>

#include "expr_impl.h"
#include "messages.h"
#include "units_data.h"

namespace units2::core {
namespace {

// "a,b,c" cut at the commas. Empty pieces are kept for the caller to refuse.
std::vector<std::string_view> split_list(std::string_view text) {
  std::vector<std::string_view> out;
  std::size_t start = 0;
  while (true) {
    const std::size_t comma = text.find(',', start);
    out.push_back(text.substr(start, comma == std::string_view::npos ? comma : comma - start));
    if (comma == std::string_view::npos) return out;
    start = comma + 1;
  }
}

// True when a value in one unit is the same quantity in the other.
bool same_unit(const Unit& a, const Unit& b) {
  return a.dimension == b.dimension && a.scale == b.scale && a.offset == b.offset;
}

bool is_letters(std::string_view text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) return false;
  }
  return true;
}

}  // namespace

struct Context::Builder {
  Builder(std::string_view source_name, Context& target) : source(source_name), context(target) {}

  std::string_view source;
  std::uint64_t line = 0;
  Context& context;

  // A unit the data declares, with what its line says about prefixes and
  // long names; the prefixed forms are made once the whole file is read.
  struct Declared {
    std::string id;
    std::uint64_t line;
    bool all_prefixes;
    std::vector<std::string> listed_prefixes;
  };
  std::vector<Declared> declared;

  // A long name (from a names= list) or an alias line, in the order read.
  struct Spelling {
    std::string text;
    std::string target;
    bool long_name;
    std::uint64_t line;
  };
  std::vector<Spelling> spellings;

  struct Ambiguous {
    std::vector<std::string> spellings;
    std::vector<std::string> readings;
    std::uint64_t line;
  };
  std::vector<Ambiguous> ambiguous;

  // Every spelling the data declares (ids, long names, aliases, ambiguous
  // spellings) with the line that declares it.
  boost::unordered_map<std::string, std::uint64_t> claimed;

  [[noreturn]] void fail(const std::string& reason) const {
    detail::throw_error(detail::MessageId::InvalidDatabase, source, line, reason);
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

  // Records a spelling the data declares; each may be declared once.
  std::string claim(std::string_view text) {
    if (!UnitId::make(text)) fail("'" + std::string(text) + "' is not a unit name");
    std::string key(text);
    if (const auto it = claimed.find(key); it != claimed.end()) {
      fail("'" + key + "' is declared twice (first on line " + std::to_string(it->second) + ")");
    }
    claimed.emplace(key, line);
    return key;
  }

  // What a base or unit line says after its fixed fields.
  struct Options {
    bool has_prefixes = false;
    bool all_prefixes = false;
    std::vector<std::string> listed_prefixes;
    std::vector<std::string> names;
    std::optional<ConversionRational> offset;
    std::string offset_text;
  };

  // `id` is the unit's own id, which may also be its long name (bar, for
  // millibar).
  Options options(const std::vector<std::string_view>& f, std::size_t from, bool offset_allowed,
                  const UnitId& id) {
    Options out;
    bool named = false;
    for (std::size_t i = from; i < f.size(); ++i) {
      const std::string_view item = f[i];
      if (item == "prefixes" && !out.has_prefixes) {
        out.has_prefixes = true;
        out.all_prefixes = true;
      } else if (item.starts_with("prefixes=") && !out.has_prefixes) {
        out.has_prefixes = true;
        for (std::string_view symbol : split_list(item.substr(9))) {
          if (symbol.empty()) fail("'" + std::string(item) + "' has an empty prefix");
          out.listed_prefixes.emplace_back(symbol);
        }
      } else if (item.starts_with("names=") && !named) {
        named = true;
        for (std::string_view name : split_list(item.substr(6))) {
          out.names.push_back(name == id.view() ? std::string(name) : claim(name));
        }
      } else if (offset_allowed && item.starts_with("offset=") && !out.offset) {
        out.offset_text = std::string(item);
        out.offset = parse_exact_number(item.substr(7));
        if (!out.offset) fail("'" + std::string(item) + "' is not an offset");
      } else {
        fail("unexpected '" + std::string(item) + "'");
      }
    }
    return out;
  }

  void add(Unit unit, const Options& o) {
    declared.push_back(Declared{unit.id.str(), line, o.all_prefixes, o.listed_prefixes});
    for (const std::string& name : o.names) spellings.push_back({name, unit.id.str(), true, line});
    context.declared_.push_back(unit.id);
    std::string key = unit.id.str();
    context.units_.emplace(std::move(key), std::move(unit));
  }

  void prefix(const std::vector<std::string_view>& f) {
    if (f.size() != 3 && f.size() != 4) fail("expected: prefix <symbol> <factor> [<name>]");
    if (!is_letters(f[1])) fail("the prefix '" + std::string(f[1]) + "' is not made of letters");
    if (f.size() == 4 && !is_letters(f[3])) {
      fail("the prefix name '" + std::string(f[3]) + "' is not made of letters");
    }
    for (const Prefix& p : context.prefixes_) {
      if (p.symbol == f[1]) fail("the prefix '" + std::string(f[1]) + "' is declared twice");
      if (f.size() == 4 && p.name == f[3]) {
        fail("the prefix name '" + std::string(f[3]) + "' is declared twice");
      }
    }
    const Magnitude value = factor(f[2]);
    if (!value.is_rational()) fail("the factor of a prefix must be rational");
    context.prefixes_.push_back(Prefix{std::string(f[1]), value.rational_part(),
                                       f.size() == 4 ? std::string(f[3]) : std::string()});
  }

  void base(const std::vector<std::string_view>& f) {
    if (f.size() < 3) fail("expected: base <id> <quantity> [prefixes[=<list>]] [names=<list>]");
    const UnitId id(claim(f[1]));
    const Options o = options(f, 3, false, id);
    Unit unit{.id = id,
              .dimension = Factors(id, Exponent(1)),
              .scale = Magnitude(),
              .offset = ConversionRational(),
              .base = true,
              .prefixable = o.has_prefixes,
              .definition = "base unit of " + std::string(f[2]),
              .prefix_symbols = {},
              .prefix = {},
              .names = {}};
    context.bases_.push_back(BaseUnit{id, std::string(f[2])});
    add(std::move(unit), o);
  }

  void unit(const std::vector<std::string_view>& f) {
    if (f.size() < 4) {
      fail(
          "expected: unit <id> <factor> <expression> [offset=<number>] [prefixes[=<list>]] "
          "[names=<list>]");
    }
    const UnitId id(claim(f[1]));
    const Magnitude scale = factor(f[2]);
    const Options o = options(f, 4, true, id);

    const std::string expr_text(f[3]);
    const auto parsed = detail::parse_factors(std::string_view(expr_text));
    if (const auto* failure = std::get_if<detail::ParseFailure>(&parsed)) {
      fail("cannot read '" + expr_text + "' at position " + std::to_string(failure->position + 1));
    }
    const krel::ustring wide(expr_text.begin(), expr_text.end());
    auto result = detail::reduce(
        std::get<detail::Parsed>(parsed).factors,
        [this](std::string_view name) { return lookup(name); }, wide);
    if (const auto* problem = std::get_if<detail::MsgId>(&result)) {
      fail("'" + expr_text + "' is not a valid expression here (" + problem->key +
           "); a definition may only use the ids of units declared above it");
    }
    const detail::Reduced& ref = std::get<detail::Reduced>(result);

    // One unit is `scale` units of the reference, and its zero lies at
    // `offset` units of the reference: base = ref.scale * (scale * x + offset) + ref.offset.
    Unit out{.id = id,
             .dimension = ref.dimension,
             .scale = scale * ref.scale,
             .offset = ref.offset,
             .base = false,
             .prefixable = o.has_prefixes,
             .definition = std::string(f[2]) + " " + expr_text,
             .prefix_symbols = {},
             .prefix = {},
             .names = {}};
    if (o.offset && !o.offset->isZero()) {
      if (!ref.scale.is_rational()) fail("an offset needs a reference with a rational scale");
      out.offset += *o.offset * ref.scale.rational_part();
    }
    if (out.affine() && !out.scale.is_rational())
      fail("a unit with an offset needs a rational scale");
    if (out.affine() && o.has_prefixes) fail("a unit with an offset takes no prefixes");
    if (o.offset) out.definition += " " + o.offset_text;
    add(std::move(out), o);
  }

  void alias(const std::vector<std::string_view>& f) {
    if (f.size() != 3) fail("expected: alias <spelling> <id>");
    spellings.push_back({claim(f[1]), std::string(f[2]), false, line});
  }

  void ambiguity(const std::vector<std::string_view>& f) {
    if (f.size() < 4) fail("expected: ambiguous <spelling>[,<spelling>...] <id> <id> [<id>...]");
    Ambiguous entry{{}, {}, line};
    for (std::string_view spelling : split_list(f[1])) entry.spellings.push_back(claim(spelling));
    for (std::size_t i = 2; i < f.size(); ++i) entry.readings.emplace_back(f[i]);
    ambiguous.push_back(std::move(entry));
  }

  // Why a declared spelling may not also be a prefixed form.
  [[noreturn]] void fail_clash(const std::string& spelling, const Prefix& p,
                               const std::string& unit) const {
    fail("'" + spelling + "', declared on line " + std::to_string(claimed.at(spelling)) +
         ", is also prefix " + p.symbol + " of " + unit + "; list the prefixes of " + unit +
         " without " + p.symbol);
  }

  const Prefix& prefix_named(const std::string& symbol) const {
    for (const Prefix& p : context.prefixes_) {
      if (p.symbol == symbol) return p;
    }
    fail("'" + symbol + "' is not a declared prefix");
  }

  // The prefix rule: every prefix a unit takes makes a prefixed form. A
  // spelling the data declares is never taken over: unless it is the very
  // same unit (kg is k + g), the database is refused. Two generated forms
  // with one spelling are refused too.
  void generate_prefixed_forms() {
    UnitMap generated;
    for (const Declared& d : declared) {
      line = d.line;
      Unit& unit = context.units_.at(d.id);
      if (d.all_prefixes) {
        for (const Prefix& p : context.prefixes_) unit.prefix_symbols.push_back(p.symbol);
      } else {
        for (const std::string& symbol : d.listed_prefixes) {
          (void)prefix_named(symbol);
          for (const std::string& seen : unit.prefix_symbols) {
            if (seen == symbol) fail("the prefix '" + symbol + "' is listed twice");
          }
          unit.prefix_symbols.push_back(symbol);
        }
      }
      for (const std::string& symbol : unit.prefix_symbols) {
        const Prefix& p = prefix_named(symbol);
        std::string id = p.symbol + d.id;
        Unit form{.id = UnitId(id),
                  .dimension = unit.dimension,
                  .scale = Magnitude(p.factor) * unit.scale,
                  .offset = ConversionRational(),
                  .base = false,
                  .prefixable = false,
                  .definition = "prefix " + p.symbol + " of " + d.id,
                  .prefix_symbols = {},
                  .prefix = p.symbol,
                  .names = {}};
        if (const Unit* existing = context.find(id)) {
          if (same_unit(*existing, form)) continue;
          fail_clash(id, p, d.id);
        }
        if (claimed.count(id) != 0) fail_clash(id, p, d.id);
        if (const auto it = generated.find(id); it != generated.end()) {
          fail("the prefixed forms '" + it->second.definition + "' and 'prefix " + p.symbol +
               " of " + d.id + "' are both spelled '" + id + "'");
        }
        generated.emplace(std::move(id), std::move(form));
      }
    }
    context.units_.insert(generated.begin(), generated.end());
  }

  void add_alias(const std::string& spelling, const UnitId& target) {
    context.aliases_.emplace(spelling, target);
    context.units_.at(target.str()).names.push_back(spelling);
  }

  // Long names and aliases name the unit they are declared for; long names
  // of a prefixed unit also take the long prefixes (kilo + metre is the
  // long name of km).
  void add_spellings() {
    for (const Spelling& s : spellings) {
      line = s.line;
      if (s.text == s.target) continue;  // an id that is its own long name
      if (const Unit* taken = context.find(s.text)) {
        fail("'" + s.text + "' is also the prefixed form '" + taken->definition + "'");
      }
      const Unit* target = context.find(s.target);
      if (target == nullptr) fail("'" + s.target + "' is not the id of a unit");
      add_alias(s.text, target->id);
    }
    for (const Spelling& s : spellings) {
      if (!s.long_name) continue;
      line = s.line;
      const Unit& unit = context.units_.at(s.target);
      for (const std::string& symbol : unit.prefix_symbols) {
        const Prefix& p = prefix_named(symbol);
        if (p.name.empty()) continue;
        const std::string spelling = p.name + s.text;
        // The prefixed form exists: generated, or declared as the same unit.
        const UnitId target = context.find(p.symbol + s.target)->id;
        if (claimed.count(spelling) != 0) fail_clash(spelling, p, s.text);
        if (const Unit* taken = context.find(spelling)) {
          fail("'" + spelling + "', prefix " + p.name + " of " + s.text +
               ", is also the prefixed form '" + taken->definition + "'");
        }
        if (const auto it = context.aliases_.find(spelling); it != context.aliases_.end()) {
          if (it->second == target) continue;
          fail("'" + spelling + "' is the long name of both " + it->second.str() + " and " +
               target.str());
        }
        add_alias(spelling, target);
      }
    }
  }

  void add_ambiguous() {
    for (const Ambiguous& a : ambiguous) {
      line = a.line;
      std::vector<UnitId> readings;
      for (const std::string& reading : a.readings) {
        const Unit* unit = context.find(reading);
        if (unit == nullptr) fail("'" + reading + "' is not the id of a unit");
        readings.push_back(unit->id);
      }
      for (const std::string& spelling : a.spellings) {
        if (const Unit* taken = context.find(spelling)) {
          fail("'" + spelling + "' is also the prefixed form '" + taken->definition + "'");
        }
        if (context.aliases_.count(spelling) != 0) {
          fail("'" + spelling + "' is also a long name of " + context.aliases_.at(spelling).str());
        }
        context.ambiguous_.emplace(spelling, readings);
      }
    }
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
        } else if (f[0] == "alias") {
          alias(f);
        } else if (f[0] == "ambiguous") {
          ambiguity(f);
        } else {
          fail("unknown declaration '" + std::string(f[0]) + "'");
        }
      }
      start = end + 1;
    }
    generate_prefixed_forms();
    add_spellings();
    add_ambiguous();
  }
};

std::shared_ptr<const Context> Context::parse(std::string_view data, std::string_view source) {
  std::shared_ptr<Context> context(new Context());
  Builder builder(source, *context);
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

std::string_view Context::builtin_text() noexcept {
  return detail::builtin_unit_data();
}

const Unit* Context::find(std::string_view id) const {
  const auto it = units_.find(std::string(id));
  return it != units_.end() ? &it->second : nullptr;
}

const Unit* Context::lookup(std::string_view spelling) const {
  if (const Unit* unit = find(spelling)) return unit;
  const auto it = aliases_.find(std::string(spelling));
  return it != aliases_.end() ? find(it->second.view()) : nullptr;
}

const std::vector<UnitId>* Context::ambiguity(std::string_view spelling) const {
  const auto it = ambiguous_.find(std::string(spelling));
  return it != ambiguous_.end() ? &it->second : nullptr;
}

Service::Service(std::shared_ptr<const Context> context) : context_(std::move(context)) {
  assert(context_ != nullptr && "the units service needs a context");
}

std::shared_ptr<const Context> Service::context() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return context_;
}

std::shared_ptr<const Context> Service::set_context(std::shared_ptr<const Context> context) {
  assert(context != nullptr && "the units service needs a context");
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    context_.swap(context);
  }
  // The context replaced, released by the caller outside the lock.
  return context;
}

std::shared_ptr<Service> get_service() {
  static const std::shared_ptr<Service> service = std::make_shared<Service>(Context::builtin());
  return service;
}

}  // namespace units2::core
