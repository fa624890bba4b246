#include "units2/core/rational.h"

#include "messages.h"

namespace units2::core {

NonFiniteExponent::NonFiniteExponent()
    : krel::MessageException(krel::Message(detail::non_finite_exponent())) {}

}  // namespace units2::core
