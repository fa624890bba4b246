#include "units2/core/expr.h"

#include <algorithm>
#include <cassert>
#include <string>
#include <type_traits>
#include <vector>

#include "expr_impl.h"
#include "messages.h"
#include "units2/core/context.h"

namespace units2::core {
namespace detail {
namespace {

// Deepest nesting of parentheses; deeper text is refused instead of
// exhausting the stack.
constexpr int max_depth = 200;
// Digits of a written integer; 18 always fit in 64 bits.
constexpr std::size_t max_digits = 18;

struct Stop {
  std::size_t position;
};

// Characters the UTF-16 grammar reads besides ASCII (see expr.h).
constexpr char16_t micro_sign = 0x00B5;
constexpr char16_t greek_mu = 0x03BC;
constexpr char16_t greek_omega = 0x03A9;
constexpr char16_t ohm_sign = 0x2126;
constexpr char16_t degree_sign = 0x00B0;
constexpr char16_t celsius_sign = 0x2103;
constexpr char16_t fahrenheit_sign = 0x2109;
constexpr char16_t middle_dot = 0x00B7;
constexpr char16_t dot_operator = 0x22C5;
constexpr char16_t superscript_minus = 0x207B;
constexpr char16_t no_break_space = 0x00A0;
constexpr char16_t thin_space = 0x2009;
constexpr char16_t narrow_no_break_space = 0x202F;

// The value of a superscript digit, or -1.
constexpr int superscript_digit(char16_t c) {
  switch (c) {
    case 0x2070:
      return 0;
    case 0x00B9:
      return 1;
    case 0x00B2:
      return 2;
    case 0x00B3:
      return 3;
    default:
      return c >= 0x2074 && c <= 0x2079 ? c - 0x2070 : -1;
  }
}

template <class CharT>
class Parser {
 public:
  explicit Parser(std::basic_string_view<CharT> text) : text_(text) {}

  std::variant<Parsed, ParseFailure> run() {
    try {
      Factors result = expr();
      skip_blanks();
      if (pos_ != text_.size()) throw Stop{pos_};
      return Parsed{std::move(result), std::move(micro_)};
    } catch (const Stop& stop) {
      return ParseFailure{stop.position};
    }
  }

 private:
  // Only the UTF-16 parser, which reads what people type, knows the Unicode
  // synonyms; the database's definitions are ASCII.
  static constexpr bool unicode = std::is_same_v<CharT, char16_t>;

  static bool is_letter(CharT c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
  static bool is_digit(CharT c) { return c >= '0' && c <= '9'; }
  static bool is_id_char(CharT c) { return is_letter(c) || is_digit(c) || c == '_'; }
  static bool is_blank(CharT c) {
    if (c == CharT(' ') || c == CharT('\t')) return true;
    if constexpr (unicode) {
      return c == no_break_space || c == thin_space || c == narrow_no_break_space;
    }
    return false;
  }
  static bool is_micro(CharT c) {
    if constexpr (unicode) return c == micro_sign || c == greek_mu;
    return false;
  }
  static bool is_omega(CharT c) {
    if constexpr (unicode) return c == greek_omega || c == ohm_sign;
    return false;
  }
  // A character that begins a unit spelling of its own.
  static bool starts_unit(CharT c) {
    if (is_letter(c) || c == CharT('_')) return true;
    if constexpr (unicode) {
      return is_micro(c) || is_omega(c) || c == degree_sign || c == celsius_sign ||
             c == fahrenheit_sign;
    }
    return false;
  }
  static bool starts_primary(CharT c) {
    return starts_unit(c) || c == CharT('(') || c == CharT('1');
  }
  static bool is_times(CharT c) {
    if (c == CharT('*')) return true;
    if constexpr (unicode) return c == middle_dot || c == dot_operator;
    return false;
  }
  static bool starts_superscript(CharT c) {
    if constexpr (unicode) return c == superscript_minus || superscript_digit(c) >= 0;
    return false;
  }

  bool at_end() const { return pos_ >= text_.size(); }
  CharT peek(std::size_t ahead = 0) const {
    return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : CharT(0);
  }
  void skip_blanks() {
    while (!at_end() && is_blank(text_[pos_])) ++pos_;
  }
  void expect(char c) {
    skip_blanks();
    if (peek() != CharT(c)) throw Stop{pos_};
    ++pos_;
  }
  // "^" or "**"; consumed when present.
  bool take_power_operator() {
    if (peek() == CharT('^')) {
      pos_ += 1;
      return true;
    }
    if (peek() == CharT('*') && peek(1) == CharT('*')) {
      pos_ += 2;
      return true;
    }
    return false;
  }
  bool at_power() const {
    return peek() == CharT('^') || (peek() == CharT('*') && peek(1) == CharT('*')) ||
           starts_superscript(peek());
  }

  // Products and quotients, from the left. A product is "*", a middle dot,
  // or blanks between two factors ("N m"); all have the precedence of "/".
  Factors expr() {
    Factors result = term();
    while (true) {
      const std::size_t before = pos_;
      skip_blanks();
      const CharT op = peek();
      bool divide = false;
      if (op == CharT('/')) {
        divide = true;
        ++pos_;
      } else if (is_times(op)) {
        ++pos_;
      } else if (pos_ == before || !starts_primary(op)) {
        pos_ = before;
        return result;
      }
      const Factors next = term();
      if (divide) {
        result /= next;
      } else {
        result *= next;
      }
    }
  }

  Factors term() {
    Factors base = primary();
    const std::size_t after_primary = pos_;
    skip_blanks();
    Exponent power;
    if (take_power_operator()) {
      power = exponent();
    } else if (starts_superscript(peek())) {
      power = superscript_exponent();
    } else {
      pos_ = after_primary;
      return base;
    }
    const std::size_t after_power = pos_;
    skip_blanks();
    if (at_power()) throw Stop{pos_};  // one written power per primary
    pos_ = after_power;
    return base.pow(power);
  }

  Factors primary() {
    skip_blanks();
    const CharT c = peek();
    if (c == CharT('(')) {
      if (++depth_ > max_depth) throw Stop{pos_};
      ++pos_;
      Factors inner = expr();
      expect(')');
      --depth_;
      return inner;
    }
    if (c == CharT('1')) {
      ++pos_;
      if (!at_end() && (is_id_char(peek()) || starts_unit(peek()))) throw Stop{pos_};  // "12", "1m"
      return Factors();
    }
    if (starts_unit(c)) return Factors(UnitId(spelling()), Exponent(1));
    throw Stop{pos_};
  }

  // A unit spelling: letters, digits and "_" after a letter or "_"; in UTF-16
  // text also a micro sign in front of a symbol (um), an ohm sign at the end
  // (kOhm), and degC, degF, degR written with a degree sign or as one
  // character. An ohm or degree spelling ends the unit: "\u03a9m" is not "Ohmm".
  std::string spelling() {
    std::string id;
    bool micro = false;
    if constexpr (unicode) {
      const CharT c = peek();
      if (c == celsius_sign || c == fahrenheit_sign) {
        ++pos_;
        id = c == celsius_sign ? "degC" : "degF";
        end_of_unit();
        return id;
      }
      if (c == degree_sign) {
        // Only the temperature scales: an angle is written deg, so that
        // "\u00b0 C" (with a blank) is never read as degree times coulomb.
        ++pos_;
        const CharT scale = peek();
        if (scale != CharT('C') && scale != CharT('F') && scale != CharT('R')) throw Stop{pos_};
        ++pos_;
        id = "deg";
        id += static_cast<char>(scale);
        end_of_unit();
        return id;
      }
      if (is_micro(c)) {
        ++pos_;
        if (!is_letter(peek()) && !is_omega(peek())) throw Stop{pos_};
        id = "u";
        micro = true;
      }
    }
    while (!at_end() && is_id_char(peek())) id += static_cast<char>(text_[pos_++]);
    if (is_omega(peek())) {
      ++pos_;
      id += "Ohm";
      end_of_unit();
    }
    if (micro) micro_.emplace_back(id);
    return id;
  }

  void end_of_unit() const {
    if (!at_end() && (is_id_char(peek()) || starts_unit(peek()))) throw Stop{pos_};
  }

  Exponent exponent() {
    skip_blanks();
    if (peek() != CharT('(')) return Exponent(integer(true));
    ++pos_;
    skip_blanks();
    const ExponentValue numerator = integer(true);
    skip_blanks();
    ExponentValue denominator = 1;
    if (peek() == CharT('/')) {
      ++pos_;
      skip_blanks();
      const std::size_t at = pos_;
      denominator = integer(false);
      if (denominator == 0) throw Stop{at};
    }
    expect(')');
    return Exponent(numerator, denominator);
  }

  // m², s⁻¹: an integer written in superscript digits.
  Exponent superscript_exponent() {
    bool negative = false;
    if constexpr (unicode) {
      if (peek() == superscript_minus) {
        negative = true;
        ++pos_;
      }
    }
    const std::size_t start = pos_;
    ExponentValue value = 0;
    while (!at_end() && superscript_digit(static_cast<char16_t>(peek())) >= 0) {
      if (pos_ - start == max_digits) throw Stop{pos_};
      value = value * 10 + superscript_digit(static_cast<char16_t>(peek()));
      ++pos_;
    }
    if (pos_ == start) throw Stop{pos_};
    return Exponent(negative ? -value : value);
  }

  ExponentValue integer(bool signed_allowed) {
    bool negative = false;
    if (signed_allowed && (peek() == CharT('-') || peek() == CharT('+'))) {
      negative = peek() == CharT('-');
      ++pos_;
    }
    const std::size_t start = pos_;
    ExponentValue value = 0;
    while (!at_end() && is_digit(peek())) {
      if (pos_ - start == max_digits) throw Stop{pos_};
      value = value * 10 + static_cast<ExponentValue>(peek() - CharT('0'));
      ++pos_;
    }
    if (pos_ == start) throw Stop{pos_};
    return negative ? -value : value;
  }

  std::basic_string_view<CharT> text_;
  std::size_t pos_ = 0;
  int depth_ = 0;
  std::vector<UnitId> micro_;
};

}  // namespace

std::variant<Parsed, ParseFailure> parse_factors(std::u16string_view text) {
  return Parser<char16_t>(text).run();
}

std::variant<Parsed, ParseFailure> parse_factors(std::string_view text) {
  return Parser<char>(text).run();
}

std::variant<Reduced, MsgId> reduce(const Factors& factors, const UnitLookup& lookup,
                                    const krel::ustring& text) {
  Reduced out;
  for (const auto& [id, exponent] : factors) {
    const Unit* unit = lookup(id.view());
    if (unit == nullptr) return make_error(MessageId::UnknownUnit, text, id.view());
    if (unit->affine()) {
      if (factors.size() != 1 || !exponent.isOne())
        return make_error(MessageId::OffsetUnitNotAlone, text, id.view());
      out.offset = unit->offset;
    }
    out.dimension *= unit->dimension.pow(exponent);
    out.scale *= unit->scale.pow(exponent);
  }
  return out;
}

namespace {

std::shared_ptr<const Context> context_of(const ContextGetter& getter) {
  std::shared_ptr<const Context> context = getter();
  assert(context != nullptr && "a context getter gave no context");
  return context;
}

// "gal_US = 231 in^3, gal_UK = 4.54609 L": the units to write instead of an
// ambiguous spelling, each with what it is.
std::string readings_text(const Context& context, const std::vector<UnitId>& readings) {
  std::string out;
  for (const UnitId& id : readings) {
    if (!out.empty()) out += ", ";
    out.append(id.view());
    out += " = ";
    const Unit& unit = *context.find(id.view());
    const auto prefix = std::find_if(context.prefixes().begin(), context.prefixes().end(),
                                     [&unit](const Prefix& p) { return p.symbol == unit.prefix; });
    if (unit.prefix.empty() || prefix == context.prefixes().end()) {
      out += unit.definition;
    } else {
      // kcal_th = 1000 cal_th rather than "prefix k of cal_th".
      out += to_string(prefix->factor);
      out += ' ';
      out.append(id.view().substr(unit.prefix.size()));
    }
  }
  return out;
}

// The written factors with every spelling replaced by the id of the unit it
// names, or why a spelling names no unit. A spelling written with a micro
// sign must be the micro form of a unit: "\u00b5" + "nified_atomic_mass_unit"
// is not the long name that follows the "u".
std::variant<Factors, MsgId> canonical(const Factors& written, const std::vector<UnitId>& micro,
                                       const Context& context, const krel::ustring& text) {
  Factors out;
  for (const auto& [spelling, exponent] : written) {
    if (const auto* readings = context.ambiguity(spelling.view())) {
      return make_error(MessageId::AmbiguousUnit, text, spelling.view(),
                        readings_text(context, *readings));
    }
    const Unit* unit = context.lookup(spelling.view());
    if (unit != nullptr && std::find(micro.begin(), micro.end(), spelling) != micro.end() &&
        (unit->id != spelling || unit->prefix != "u")) {
      unit = nullptr;
    }
    if (unit == nullptr) {
      if (std::find(micro.begin(), micro.end(), spelling) == micro.end()) {
        return make_error(MessageId::UnknownUnit, text, spelling.view());
      }
      return make_error(MessageId::UnknownUnit, text,
                        "\u00b5" + std::string(spelling.view().substr(1)));
    }
    out *= Factors(unit->id, exponent);
  }
  return out;
}

// Fills rep from the written factors; `text` names the expression in messages.
void resolve(ExprRep& rep, const Factors& written, const std::vector<UnitId>& micro,
             const krel::ustring& text) {
  Factors factors;
  try {
    const Context& context = *rep.context;
    auto named = canonical(written, micro, context, text);
    if (auto* problem = std::get_if<MsgId>(&named)) {
      rep.problem.emplace(std::move(*problem));
      return;
    }
    factors = std::move(std::get<Factors>(named));
    auto result = reduce(
        factors, [&context](std::string_view id) { return context.find(id); }, text);
    if (auto* problem = std::get_if<MsgId>(&result)) {
      rep.problem.emplace(std::move(*problem));
      return;
    }
    rep.reduced = std::move(std::get<Reduced>(result));
  } catch (const krel::MessageException& e) {
    rep.problem.emplace(e.message());
    return;
  }
  rep.valid = true;
  const auto single = factors.singleton();
  rep.info.affine = single.has_value() && !rep.reduced.offset.isZero();
  rep.info.factors = std::move(factors);
}

}  // namespace
}  // namespace detail

std::shared_ptr<const Context> ContextGetter::operator()() const {
  return fixed_ != nullptr ? fixed_ : get_service()->context();
}

Expr::Expr(const krel::ustring& text) : Expr(ContextGetter(), text) {}

Expr::Expr(const ContextGetter& context, const krel::ustring& text)
    : rep_(krel::Cow<detail::ExprRep>::make()) {
  detail::ExprRep& rep = rep_.write();
  rep.context = detail::context_of(context);
  std::variant<detail::Parsed, detail::ParseFailure> parsed = detail::ParseFailure{0};
  try {
    parsed = detail::parse_factors(std::u16string_view(text));
  } catch (const krel::MessageException& e) {
    rep.problem.emplace(e.message());
    return;
  }
  if (const auto* failure = std::get_if<detail::ParseFailure>(&parsed)) {
    rep.problem.emplace(detail::make_error(detail::MessageId::SyntaxError, text,
                                           std::uint64_t{failure->position + 1}));
    return;
  }
  const detail::Parsed& written = std::get<detail::Parsed>(parsed);
  detail::resolve(rep, written.factors, written.micro, text);
}

Expr::Expr(const ContextGetter& context, const Factors& factors)
    : rep_(krel::Cow<detail::ExprRep>::make()) {
  detail::ExprRep& rep = rep_.write();
  rep.context = detail::context_of(context);
  detail::resolve(rep, factors, {}, to_raw_expr(factors));
}

Expr::Expr(krel::Cow<detail::ExprRep> rep) noexcept : rep_(std::move(rep)) {}
Expr::Expr(const Expr&) noexcept = default;
Expr::Expr(Expr&&) noexcept = default;
Expr& Expr::operator=(const Expr&) noexcept = default;
Expr& Expr::operator=(Expr&&) noexcept = default;
Expr::~Expr() = default;

bool Expr::isValid() const noexcept {
  return rep_.read().valid;
}

const ExprInfo& Expr::info() const noexcept {
  return rep_.read().info;
}

const std::optional<krel::Message>& Expr::problem() const noexcept {
  return rep_.read().problem;
}

const std::shared_ptr<const Context>& Expr::context() const noexcept {
  return rep_.read().context;
}

krel::Message Expr::invalidMessage() {
  return krel::Message(detail::make_error(detail::MessageId::InvalidExpression));
}

bool commensurate(const Expr& a, const Expr& b) noexcept {
  const detail::ExprRep& x = detail::ExprAccess::rep(a);
  const detail::ExprRep& y = detail::ExprAccess::rep(b);
  return x.valid && y.valid && x.reduced.dimension == y.reduced.dimension;
}

}  // namespace units2::core
