// cppmicroservices/Any.h - a value of any copyable type, as service properties hold
//
// An Any holds one value of a copyable type, or nothing. any_cast reads the
// value back as the type it holds, and only as that type: asking for another
// type throws BadAnyCastException (the forms taking an Any) or gives a null
// pointer (the forms taking an Any*). ref_any_cast gives a reference instead
// of a copy.
//
//   cppmicroservices::Any rank(5);
//   int r = cppmicroservices::any_cast<int>(rank);             // 5
//   const long* p = cppmicroservices::any_cast<long>(&rank);    // nullptr
//   (void)cppmicroservices::any_cast<std::string>(rank);        // throws BadAnyCastException
//   rank.ToString();                                            // "5"
//
// Every held value can be printed with ToString(), so a held type needs an
// operator<< for std::ostream; std::vector, std::list and std::set print as
// "[1,2,3]" and std::map as "{a : 1, b : 2}" (their elements need operator<<
// in turn), floating-point values with 12 significant digits, and a
// std::function as nothing.
//
// Ownership: a value; a copy copies the held object. Threads: like an int.

#ifndef CPPMICROSERVICES_ANY_H
#define CPPMICROSERVICES_ANY_H

#include <functional>
#include <ios>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace cppmicroservices {

class Any;

/// Writes the value `any` holds; throws std::logic_error when it holds none.
std::ostream& any_value_to_string(std::ostream& os, Any const& any);

/// A function object prints as nothing.
template <typename ReturnT, typename... Args>
std::ostream& any_value_to_string(std::ostream& os, std::function<ReturnT(Args...)> const&) {
  return os;
}

template <typename ValueType>
ValueType& ref_any_cast(Any& operand);
template <typename ValueType>
ValueType const& ref_any_cast(Any const& operand);

/// The significant digits a floating-point value is written with.
constexpr int DOUBLE_PRECISION = 12;

template <class T>
std::enable_if_t<!std::is_floating_point_v<T>, std::ostream&> any_value_to_string(std::ostream& os,
                                                                                  T const& val) {
  os << val;
  return os;
}

/// Writes `val` with DOUBLE_PRECISION digits and leaves the stream's
/// precision as it was, also when writing throws.
template <class T>
std::ostream& stream_floating_point(std::ostream& os, T const& val) {
  struct RestorePrecision {
    std::ostream& stream;
    std::streamsize precision;
    ~RestorePrecision() { stream.precision(precision); }
  } restore{os, os.precision()};
  os.precision(DOUBLE_PRECISION);
  os << val;
  return os;
}

template <class T>
std::enable_if_t<std::is_floating_point_v<T>, std::ostream&> any_value_to_string(std::ostream& os,
                                                                                 T const& val) {
  return stream_floating_point(os, val);
}

/// Writes the elements of [i1, i2) as "[a,b,c]".
template <typename Iterator>
std::ostream& container_to_string(std::ostream& os, Iterator i1, Iterator i2) {
  os << "[";
  for (Iterator i = i1; i != i2; ++i) {
    if (i != i1) os << ",";
    any_value_to_string(os, *i);
  }
  os << "]";
  return os;
}

template <class E>
std::ostream& any_value_to_string(std::ostream& os, std::vector<E> const& vec) {
  return container_to_string(os, vec.begin(), vec.end());
}

template <class E>
std::ostream& any_value_to_string(std::ostream& os, std::list<E> const& l) {
  return container_to_string(os, l.begin(), l.end());
}

template <class E>
std::ostream& any_value_to_string(std::ostream& os, std::set<E> const& s) {
  return container_to_string(os, s.begin(), s.end());
}

template <class M>
std::ostream& any_value_to_string(std::ostream& os, std::map<M, Any> const& m);

template <class K, class V>
std::ostream& any_value_to_string(std::ostream& os, std::map<K, V> const& m);

namespace detail {

/// Equality of two held values; a type without operator== never compares equal.
template <class T>
bool AnyValuesEqual(T const& lhs, T const& rhs) {
  if constexpr (requires { static_cast<bool>(lhs == rhs); }) {
    return static_cast<bool>(lhs == rhs);
  } else {
    return false;
  }
}

}  // namespace detail

/// Ownership: a value; a copy copies the held object. Threads: like an int.
class Any {
 public:
  /// Holds nothing.
  Any();

  /// Holds a copy of `value`.
  template <typename ValueType>
  Any(ValueType const& value) : _content(new Holder<ValueType>(value)) {}

  /// Holds `value`, moved in.
  template <typename ValueType,
            typename = std::enable_if_t<!std::is_same_v<Any, std::decay_t<ValueType>> &&
                                        !std::is_reference_v<ValueType>>>
  Any(ValueType&& value)
      : _content(new Holder<std::decay_t<ValueType>>(std::forward<ValueType>(value))) {}

  Any(Any const& other) : _content(other._content ? other._content->Clone() : nullptr) {}
  Any(Any&& other) noexcept : _content(std::move(other._content)) {}

  /// Exchanges the held values.
  Any& Swap(Any& rhs) {
    std::swap(_content, rhs._content);
    return *this;
  }

  /// True when this holds a ValueType equal to `val`.
  template <typename ValueType>
  bool operator==(ValueType const& val) const {
    if (Type() != typeid(ValueType)) return false;
    return detail::AnyValuesEqual(cppmicroservices::ref_any_cast<ValueType>(*this), val);
  }

  /// True when both hold equal values of one type, or both hold nothing.
  bool operator==(Any const& rhs) const {
    if (!rhs._content) return !_content;
    return rhs._content->IsHeldBy(*this);
  }

  template <typename ValueType>
  bool operator!=(ValueType const& val) const {
    return !operator==(val);
  }

  template <typename ValueType>
  Any& operator=(ValueType const& rhs) {
    Any(rhs).Swap(*this);
    return *this;
  }

  template <typename ValueType,
            typename = std::enable_if_t<!std::is_same_v<Any, std::decay_t<ValueType>> &&
                                        !std::is_reference_v<ValueType>>>
  Any& operator=(ValueType&& rhs) {
    _content = std::make_unique<Holder<std::decay_t<ValueType>>>(std::forward<ValueType>(rhs));
    return *this;
  }

  Any& operator=(Any const& rhs) {
    Any(rhs).Swap(*this);
    return *this;
  }

  Any& operator=(Any&& rhs) noexcept {
    _content = std::move(rhs._content);
    return *this;
  }

  /// True when this holds nothing.
  bool Empty() const { return !_content; }

  /// The held value as text (see the top of this file); throws
  /// std::logic_error("empty any") when this holds nothing.
  std::string ToString() const;

  /// The held value as text; empty when this holds nothing.
  std::string ToStringNoExcept() const;

  /// The type of the held value; typeid(void) when this holds nothing.
  std::type_info const& Type() const { return _content ? _content->Type() : typeid(void); }

 private:
  class Placeholder {
   public:
    virtual ~Placeholder() = default;
    virtual std::string ToString() const = 0;
    virtual std::type_info const& Type() const = 0;
    virtual std::unique_ptr<Placeholder> Clone() const = 0;
    // True when `other` holds a value equal to this one.
    virtual bool IsHeldBy(Any const& other) const = 0;
  };

  template <typename ValueType>
  class Holder : public Placeholder {
   public:
    Holder(ValueType const& value) : _held(value) {}
    Holder(ValueType&& value) : _held(std::move(value)) {}
    Holder& operator=(Holder const&) = delete;

    std::string ToString() const override {
      std::ostringstream text;
      any_value_to_string(text, _held);
      return text.str();
    }
    std::type_info const& Type() const override { return typeid(ValueType); }
    std::unique_ptr<Placeholder> Clone() const override { return std::make_unique<Holder>(_held); }
    bool IsHeldBy(Any const& other) const override { return other == _held; }

    ValueType _held;
  };

  template <typename ValueType>
  friend ValueType* any_cast(Any*);

  std::unique_ptr<Placeholder> _content;
};

/// What any_cast and ref_any_cast throw when the Any holds another type (or
/// nothing); what() names both types.
class BadAnyCastException : public std::bad_cast {
 public:
  BadAnyCastException(std::string msg = "") : std::bad_cast(), _msg(std::move(msg)) {}
  ~BadAnyCastException() override = default;

  char const* what() const noexcept override {
    return _msg.empty() ? "cppmicroservices::BadAnyCastException: "
                          "failed conversion using cppmicroservices::any_cast"
                        : _msg.c_str();
  }

 private:
  std::string _msg;
};

namespace detail {

/// Throws BadAnyCastException with the text "cppmicroservices::BadAnyCastException:
/// <funcName>: Failed to convert from cppmicroservices::Any type <source> to
/// target type <target>", the types by their demangled names.
void ThrowBadAnyCastException(std::string const& funcName, std::type_info const& source,
                              std::type_info const& target);

}  // namespace detail

/// The held value, or null when `operand` is null or holds another type.
template <typename ValueType>
ValueType* any_cast(Any* operand) {
  return operand && operand->Type() == typeid(ValueType)
             ? &static_cast<Any::Holder<ValueType>*>(operand->_content.get())->_held
             : nullptr;
}

template <typename ValueType>
ValueType const* any_cast(Any const* operand) {
  return any_cast<ValueType>(const_cast<Any*>(operand));
}

/// A copy of the held value; throws BadAnyCastException when it is of another type.
template <typename ValueType>
ValueType any_cast(Any const& operand) {
  ValueType const* result = any_cast<ValueType>(&operand);
  if (!result) {
    detail::ThrowBadAnyCastException(std::string("any_cast"), operand.Type(), typeid(ValueType));
  }
  return *result;
}

template <typename ValueType>
ValueType any_cast(Any& operand) {
  ValueType* result = any_cast<ValueType>(&operand);
  if (!result) {
    detail::ThrowBadAnyCastException(std::string("any_cast"), operand.Type(), typeid(ValueType));
  }
  return *result;
}

/// The held value itself; throws BadAnyCastException when it is of another type.
template <typename ValueType>
ValueType const& ref_any_cast(Any const& operand) {
  ValueType const* result = any_cast<ValueType>(&operand);
  if (!result) {
    detail::ThrowBadAnyCastException(std::string("ref_any_cast"), operand.Type(),
                                     typeid(ValueType));
  }
  return *result;
}

template <typename ValueType>
ValueType& ref_any_cast(Any& operand) {
  ValueType* result = any_cast<ValueType>(&operand);
  if (!result) {
    detail::ThrowBadAnyCastException(std::string("ref_any_cast"), operand.Type(),
                                     typeid(ValueType));
  }
  return *result;
}

template <class K>
std::ostream& any_value_to_string(std::ostream& os, std::map<K, Any> const& m) {
  os << "{";
  for (auto i = m.begin(); i != m.end(); ++i) {
    if (i != m.begin()) os << ", ";
    os << i->first << " : " << i->second.ToString();
  }
  os << "}";
  return os;
}

template <class K, class V>
std::ostream& any_value_to_string(std::ostream& os, std::map<K, V> const& m) {
  os << "{";
  for (auto i = m.begin(); i != m.end(); ++i) {
    if (i != m.begin()) os << ", ";
    os << i->first << " : " << i->second;
  }
  os << "}";
  return os;
}

}  // namespace cppmicroservices

#endif  // CPPMICROSERVICES_ANY_H
