#include "units2/core/rational.h"

#include "messages.h"

namespace units2::core {

NonFiniteExponent::NonFiniteExponent()
    : krel::MessageException(
          krel::Message(detail::make_error(detail::MessageId::NonFiniteExponent))) {}

}  // namespace units2::core
