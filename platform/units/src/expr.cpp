#include "units2/core/expr.h"

#include <cassert>
#include <string>

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

template <class CharT>
class Parser {
 public:
  explicit Parser(std::basic_string_view<CharT> text) : text_(text) {}

  std::variant<Factors, ParseFailure> run() {
    try {
      Factors result = expr();
      skip_blanks();
      if (pos_ != text_.size()) throw Stop{pos_};
      return result;
    } catch (const Stop& stop) {
      return ParseFailure{stop.position};
    }
  }

 private:
  static bool is_letter(CharT c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
  static bool is_digit(CharT c) { return c >= '0' && c <= '9'; }
  static bool is_id_char(CharT c) { return is_letter(c) || is_digit(c) || c == '_'; }

  bool at_end() const { return pos_ >= text_.size(); }
  CharT peek() const { return at_end() ? CharT(0) : text_[pos_]; }
  void skip_blanks() {
    while (!at_end() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
  }
  void expect(char c) {
    skip_blanks();
    if (peek() != CharT(c)) throw Stop{pos_};
    ++pos_;
  }

  Factors expr() {
    Factors result = term();
    while (true) {
      skip_blanks();
      const CharT op = peek();
      if (op != CharT('*') && op != CharT('/')) return result;
      ++pos_;
      const Factors next = term();
      if (op == CharT('*')) {
        result *= next;
      } else {
        result /= next;
      }
    }
  }

  Factors term() {
    Factors base = primary();
    skip_blanks();
    if (peek() != CharT('^')) return base;
    ++pos_;
    const Exponent power = exponent();
    skip_blanks();
    if (peek() == CharT('^')) throw Stop{pos_};  // one written power per primary
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
      if (!at_end() && is_id_char(peek())) throw Stop{pos_};  // "12", "1m"
      return Factors();
    }
    if (is_letter(c) || c == CharT('_')) {
      std::string id;
      while (!at_end() && is_id_char(peek())) id += static_cast<char>(text_[pos_++]);
      return Factors(UnitId(id), Exponent(1));
    }
    throw Stop{pos_};
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
};

}  // namespace

std::variant<Factors, ParseFailure> parse_factors(std::u16string_view text) {
  return Parser<char16_t>(text).run();
}

std::variant<Factors, ParseFailure> parse_factors(std::string_view text) {
  return Parser<char>(text).run();
}

std::variant<Reduced, MsgId> reduce(const Factors& factors, const UnitLookup& lookup,
                                    const krel::ustring& text) {
  Reduced out;
  for (const auto& [id, exponent] : factors) {
    const Unit* unit = lookup(id.view());
    if (unit == nullptr) return unknown_unit(text, id.view());
    if (unit->affine()) {
      if (factors.size() != 1 || !exponent.isOne()) return offset_unit_not_alone(text, id.view());
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

// Fills rep from factors; `text` names the expression in messages.
void resolve(ExprRep& rep, const Factors& factors, const krel::ustring& text) {
  try {
    const Context& context = *rep.context;
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
  rep.info.factors = factors;
  const auto single = factors.singleton();
  rep.info.affine = single.has_value() && !rep.reduced.offset.isZero();
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
  std::variant<Factors, detail::ParseFailure> parsed = detail::ParseFailure{0};
  try {
    parsed = detail::parse_factors(std::u16string_view(text));
  } catch (const krel::MessageException& e) {
    rep.problem.emplace(e.message());
    return;
  }
  if (const auto* failure = std::get_if<detail::ParseFailure>(&parsed)) {
    rep.problem.emplace(detail::syntax_error(text, failure->position + 1));
    return;
  }
  detail::resolve(rep, std::get<Factors>(parsed), text);
}

Expr::Expr(const ContextGetter& context, const Factors& factors)
    : rep_(krel::Cow<detail::ExprRep>::make()) {
  detail::ExprRep& rep = rep_.write();
  rep.context = detail::context_of(context);
  detail::resolve(rep, factors, to_raw_expr(factors));
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
  return krel::Message(detail::invalid_expression());
}

bool commensurate(const Expr& a, const Expr& b) noexcept {
  const detail::ExprRep& x = detail::ExprAccess::rep(a);
  const detail::ExprRep& y = detail::ExprAccess::rep(b);
  return x.valid && y.valid && x.reduced.dimension == y.reduced.dimension;
}

}  // namespace units2::core
