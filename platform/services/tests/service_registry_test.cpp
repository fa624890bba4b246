// Conformance tests of the service layer: interface ids, Any, the
// exceptions, registering, looking up and unregistering services, and
// contexts that are no longer valid.

#include "cppmicroservices/BundleContext.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"
#include "cppmicroservices/IllegalStateException.h"
#include "cppmicroservices/ServiceException.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"
#include "services_test_support.h"

namespace svc_test {

struct Clock {
  virtual ~Clock() = default;
  virtual int now() const = 0;
};

struct Timer {
  virtual ~Timer() = default;
  virtual int period() const = 0;
};

template <class T>
struct Box {
  virtual ~Box() = default;
};

struct Named {
  virtual ~Named() = default;
};

struct Unnamed {
  virtual ~Unnamed() = default;
};

struct Unused {
  virtual ~Unused() = default;
};

}  // namespace svc_test

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(svc_test::Named, "org.example.Named/1.0")
CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(svc_test::Unnamed, "")

namespace {

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::BadAnyCastException;
using cppmicroservices::BundleContext;
using cppmicroservices::Framework;
using cppmicroservices::FrameworkFactory;
using cppmicroservices::IllegalStateException;
using cppmicroservices::InterfaceMap;
using cppmicroservices::InterfaceMapConstPtr;
using cppmicroservices::ref_any_cast;
using cppmicroservices::ServiceException;
using cppmicroservices::ServiceProperties;
using cppmicroservices::ServiceReference;
using cppmicroservices::ServiceReferenceBase;
using cppmicroservices::ServiceReferenceU;
using cppmicroservices::ServiceRegistration;
using cppmicroservices::ServiceRegistrationU;
using svc_test::Clock;
using svc_test::Timer;

const char* const kInvalidContext = "The bundle context is no longer valid";
const char* const kInvalidReference =
    "Default constructed ServiceReference is not a valid input to GetService()";
const char* const kNoIdMacro =
    "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro";

// A clock that tells which one it is, and counts its live instances.
std::atomic<int> live_clocks{0};

class FixedClock : public Clock {
 public:
  explicit FixedClock(int value) : value_(value) { ++live_clocks; }
  ~FixedClock() override { --live_clocks; }
  int now() const override { return value_; }

 private:
  int value_;
};

// The interfaces are the first and second base, so the Timer part's address
// differs from the object's.
struct ClockAndTimer : Clock, Timer {
  int now() const override { return 42; }
  int period() const override { return 7; }
};

ServiceProperties ranked(int ranking) {
  return {{cppmicroservices::Constants::SERVICE_RANKING, Any(ranking)}};
}

void stop(Framework& framework) {
  framework.Stop();
  (void)framework.WaitForStop(std::chrono::milliseconds::zero());
}

// A started framework of its own for each test.
class Registry : public ::testing::Test {
 protected:
  Registry() : framework_(FrameworkFactory().NewFramework()) {
    framework_.Start();
    context_ = framework_.GetBundleContext();
  }
  ~Registry() override { stop(framework_); }

  // The value of the best clock; -1 when there is none.
  int current_clock() {
    auto ref = context_.GetServiceReference<Clock>();
    if (!ref) return -1;
    return context_.GetService(ref)->now();
  }

  Framework framework_;
  BundleContext context_;
};

// ------------------------------------------------------------ interface ids

TEST(ServiceInterface, DefaultIdIsTheDemangledTypeName) {
  EXPECT_EQ(us_service_interface_iid<svc_test::Clock>(), "svc_test::Clock");
  EXPECT_EQ(us_service_interface_iid<svc_test::Box<int>>(), "svc_test::Box<int>");
  EXPECT_EQ(cppmicroservices::detail::GetDemangledName(typeid(svc_test::Box<long>)),
            "svc_test::Box<long>");
}

TEST(ServiceInterface, DeclarationReplacesTheDefaultId) {
  EXPECT_EQ(us_service_interface_iid<svc_test::Named>(), "org.example.Named/1.0");
  EXPECT_EQ(us_service_interface_iid<void>(), "");
}

TEST(ServiceInterface, IdIsOneStringThatLivesOn) {
  static_assert(std::is_same_v<decltype(us_service_interface_iid<Clock>()), const std::string&>);
  static_assert(
      std::is_same_v<decltype(us_service_interface_iid<svc_test::Named>()), const std::string&>);
  EXPECT_EQ(&us_service_interface_iid<Clock>(), &us_service_interface_iid<Clock>());
  EXPECT_EQ(&us_service_interface_iid<svc_test::Named>(),
            &us_service_interface_iid<svc_test::Named>());
  EXPECT_EQ(&us_service_interface_iid<void>(), &us_service_interface_iid<void>());
}

TEST(ServiceInterface, InterfaceMapHoldsEachInterfacePartOfTheObject) {
  auto both = std::make_shared<ClockAndTimer>();
  InterfaceMapConstPtr map = cppmicroservices::MakeInterfaceMap<Clock, Timer>(both);
  ASSERT_EQ(map->size(), 2u);
  EXPECT_EQ(map->at("svc_test::Clock").get(), static_cast<Clock*>(both.get()));
  EXPECT_EQ(map->at("svc_test::Timer").get(), static_cast<Timer*>(both.get()));
  EXPECT_EQ(cppmicroservices::ExtractInterface<Timer>(map).get(), static_cast<Timer*>(both.get()));
  EXPECT_EQ(cppmicroservices::ExtractInterface<svc_test::Unused>(map), nullptr);
  EXPECT_EQ(cppmicroservices::ExtractInterface(map, "svc_test::Clock").get(),
            static_cast<void*>(static_cast<Clock*>(both.get())));
  EXPECT_NE(cppmicroservices::ExtractInterface(map, ""), nullptr);
  EXPECT_EQ(cppmicroservices::ExtractInterface(map, "other"), nullptr);
  EXPECT_EQ(cppmicroservices::ExtractInterface(InterfaceMapConstPtr(), "svc_test::Clock"), nullptr);
}

// ---------------------------------------------------------------------- Any

TEST(Any, HoldsAValueOfItsTypeOnly) {
  Any five(5);
  EXPECT_FALSE(five.Empty());
  EXPECT_EQ(five.Type(), typeid(int));
  EXPECT_EQ(any_cast<int>(five), 5);
  ASSERT_NE(any_cast<int>(&five), nullptr);
  EXPECT_EQ(*any_cast<int>(&five), 5);
  EXPECT_EQ(any_cast<long>(&five), nullptr);
  EXPECT_EQ(any_cast<int>(static_cast<Any*>(nullptr)), nullptr);
  ref_any_cast<int>(five) = 6;
  const Any& same = five;
  EXPECT_EQ(ref_any_cast<int>(same), 6);
  EXPECT_EQ(*any_cast<int>(&same), 6);
}

TEST(Any, DefaultHoldsNothing) {
  const Any empty;
  EXPECT_TRUE(empty.Empty());
  EXPECT_EQ(empty.Type(), typeid(void));
  EXPECT_EQ(empty.ToStringNoExcept(), "");
  EXPECT_THROW_TEXT(empty.ToString(), std::logic_error, "empty any");
}

TEST(Any, BadCastNamesBothTypes) {
  static_assert(std::is_base_of_v<std::bad_cast, BadAnyCastException>);
  const Any five(5);
  EXPECT_THROW_TEXT(any_cast<double>(five), BadAnyCastException,
                    "cppmicroservices::BadAnyCastException: any_cast: Failed to convert from "
                    "cppmicroservices::Any type int to target type double");
  EXPECT_THROW_TEXT(ref_any_cast<std::string>(five), BadAnyCastException,
                    "cppmicroservices::BadAnyCastException: ref_any_cast: Failed to convert from "
                    "cppmicroservices::Any type int to target type " +
                        cppmicroservices::detail::GetDemangledName(typeid(std::string)));
  EXPECT_THROW_TEXT(any_cast<int>(Any()), BadAnyCastException,
                    "cppmicroservices::BadAnyCastException: any_cast: Failed to convert from "
                    "cppmicroservices::Any type void to target type int");
  EXPECT_STREQ(BadAnyCastException().what(),
               "cppmicroservices::BadAnyCastException: failed conversion using "
               "cppmicroservices::any_cast");
  EXPECT_STREQ(BadAnyCastException("text").what(), "text");
}

TEST(Any, ComparesByTypeAndValue) {
  EXPECT_TRUE(Any(5) == 5);
  EXPECT_TRUE(Any(5) != 6);
  EXPECT_TRUE(Any(5) != 5L) << "another type is never equal";
  EXPECT_TRUE(Any(5) == Any(5));
  EXPECT_FALSE(Any(5) == Any(5L));
  EXPECT_TRUE(Any(std::string("a")) == std::string("a"));
}

TEST(Any, CopiesMovesAndSwapsTheHeldValue) {
  Any original(std::string("text"));
  Any copy = original;
  ref_any_cast<std::string>(copy) = "changed";
  EXPECT_EQ(any_cast<std::string>(original), "text");
  Any moved = std::move(original);
  EXPECT_EQ(any_cast<std::string>(moved), "text");
  Any other(1);
  other.Swap(moved);
  EXPECT_EQ(any_cast<std::string>(other), "text");
  EXPECT_EQ(any_cast<int>(moved), 1);
  other = 2.5;
  EXPECT_EQ(other.Type(), typeid(double));
}

TEST(Any, PrintsValuesAndContainers) {
  EXPECT_EQ(Any(5).ToString(), "5");
  EXPECT_EQ(Any(std::string("text")).ToString(), "text");
  EXPECT_EQ(Any(1.0 / 3).ToString(), "0.333333333333");
  EXPECT_EQ(Any(std::vector<int>{1, 2, 3}).ToString(), "[1,2,3]");
  EXPECT_EQ(Any(std::list<int>{4}).ToString(), "[4]");
  EXPECT_EQ(Any(std::set<int>{2, 1}).ToString(), "[1,2]");
  EXPECT_EQ(Any(std::map<std::string, int>{{"a", 1}, {"b", 2}}).ToString(), "{a : 1, b : 2}");
  EXPECT_EQ(Any(std::map<std::string, Any>{{"a", Any(1)}}).ToString(), "{a : 1}");
}

// ---------------------------------------------------- constants, exceptions

TEST(Constants, RankingIsAStringConstant) {
  static_assert(
      std::is_same_v<decltype(cppmicroservices::Constants::SERVICE_RANKING), const std::string>);
  EXPECT_EQ(cppmicroservices::Constants::SERVICE_RANKING, "service.ranking");
}

TEST(Exceptions, ServiceExceptionCarriesItsType) {
  static_assert(std::is_base_of_v<std::runtime_error, ServiceException>);
  static_assert(std::is_convertible_v<std::string, ServiceException>);
  static_assert(ServiceException::UNSPECIFIED == 0 && ServiceException::UNREGISTERED == 1 &&
                ServiceException::FACTORY_ERROR == 2 && ServiceException::FACTORY_EXCEPTION == 3 &&
                ServiceException::REMOTE == 5 && ServiceException::FACTORY_RECURSION == 6);
  const ServiceException plain("text");
  EXPECT_STREQ(plain.what(), "text");
  EXPECT_EQ(plain.GetType(), ServiceException::UNSPECIFIED);
  ServiceException copy(plain);
  copy = ServiceException("other", ServiceException::REMOTE);
  EXPECT_STREQ(copy.what(), "other");
  EXPECT_EQ(copy.GetType(), ServiceException::REMOTE);
}

TEST(Exceptions, IllegalStateExceptionIsAFinalRuntimeError) {
  static_assert(std::is_base_of_v<std::runtime_error, IllegalStateException>);
  static_assert(std::is_final_v<IllegalStateException>);
  static_assert(std::is_constructible_v<IllegalStateException, std::string>);
  static_assert(!std::is_convertible_v<std::string, IllegalStateException>);
  EXPECT_STREQ(IllegalStateException("text").what(), "text");
}

// ------------------------------------------------------ registering, finding

TEST_F(Registry, EmptyInterfaceIdIsRefused) {
  try {
    (void)context_.GetServiceReference<svc_test::Unnamed>();
    FAIL() << "no exception";
  } catch (const ServiceException& e) {
    EXPECT_STREQ(e.what(), kNoIdMacro);
    EXPECT_EQ(e.GetType(), ServiceException::UNSPECIFIED);
  }
  EXPECT_THROW_TEXT(
      context_.RegisterService<svc_test::Unnamed>(std::make_shared<svc_test::Unnamed>()),
      std::invalid_argument, "Can't register as null class");
}

TEST_F(Registry, NullServiceObjectIsRefused) {
  EXPECT_THROW_TEXT(context_.RegisterService<Clock>(std::shared_ptr<FixedClock>()),
                    std::invalid_argument, "Can't register as null class");
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

TEST_F(Registry, EmptyInterfaceMapIsRefused) {
  EXPECT_THROW_TEXT(context_.RegisterService(InterfaceMapConstPtr()), std::invalid_argument,
                    "Can't register empty InterfaceMap as a service");
  EXPECT_THROW_TEXT(context_.RegisterService(std::make_shared<const InterfaceMap>()),
                    std::invalid_argument, "Can't register empty InterfaceMap as a service");
}

TEST_F(Registry, PropertyNamesDifferingOnlyInCaseAreRefused) {
  const std::string text = services_test::thrown_text<std::runtime_error>([&] {
    (void)context_.RegisterService<Clock>(std::make_shared<FixedClock>(1),
                                          {{"color", Any(1)}, {"Color", Any(2)}});
  });
  // Which of the two is named depends on the map's order.
  EXPECT_TRUE(text == "Properties contain case variants of the key: color" ||
              text == "Properties contain case variants of the key: Color")
      << text;
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

TEST_F(Registry, DeclaredIdIsWhatProvidersAndUsersMeetUnder) {
  auto reg = context_.RegisterService<svc_test::Named>(std::make_shared<svc_test::Named>());
  auto ref = context_.GetServiceReference<svc_test::Named>();
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref.GetInterfaceId(), "org.example.Named/1.0");
  EXPECT_TRUE(context_.GetServiceReference("org.example.Named/1.0"));
}

TEST_F(Registry, EmptyIdFindsTheServiceRegisteredFirst) {
  EXPECT_FALSE(context_.GetServiceReference(""));
  auto first = context_.RegisterService<Timer>(std::make_shared<ClockAndTimer>());
  auto second = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(9));
  ServiceReferenceU any = context_.GetServiceReference("");
  EXPECT_TRUE(any);
  EXPECT_EQ(any.GetInterfaceId(), "");
  EXPECT_TRUE(ServiceReferenceBase(any) == ServiceReferenceBase(first.GetReference()));
  EXPECT_EQ(
      static_cast<Timer*>(context_.GetService(static_cast<const ServiceReferenceBase&>(any)).get())
          ->period(),
      7);
}

TEST_F(Registry, LookupWithoutAServiceGivesAReferenceToNone) {
  auto ref = context_.GetServiceReference<Clock>();
  EXPECT_FALSE(ref);
  EXPECT_EQ(ref.GetInterfaceId(), "");
  EXPECT_FALSE(context_.GetServiceReference("svc_test::Clock"));
  EXPECT_THROW_TEXT(context_.GetService(ref), std::invalid_argument, kInvalidReference);
  EXPECT_THROW_TEXT(context_.GetService(static_cast<const ServiceReferenceBase&>(ref)),
                    std::invalid_argument, kInvalidReference);
  EXPECT_THROW_TEXT(context_.GetService(ServiceReferenceU()), std::invalid_argument,
                    kInvalidReference);
}

TEST_F(Registry, GetServiceReturnsTheRegisteredObject) {
  auto clock = std::make_shared<FixedClock>(7);
  auto reg = context_.RegisterService<Clock>(clock);
  auto ref = context_.GetServiceReference<Clock>();
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref.GetInterfaceId(), "svc_test::Clock");
  std::shared_ptr<Clock> typed = context_.GetService(ref);
  EXPECT_EQ(typed.get(), clock.get());
  std::shared_ptr<void> untyped =
      context_.GetService(static_cast<const ServiceReferenceBase&>(ref));
  EXPECT_EQ(static_cast<Clock*>(untyped.get()), clock.get());
  EXPECT_EQ(typed->now(), 7);
}

TEST_F(Registry, HighestRankingWins) {
  auto low = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(1));
  auto high = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(5));
  auto middle = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(3));
  EXPECT_EQ(current_clock(), 2);
  high.Unregister();
  EXPECT_EQ(current_clock(), 3);
  middle.Unregister();
  EXPECT_EQ(current_clock(), 1);
}

TEST_F(Registry, EqualRankingsPreferTheFirstRegistered) {
  auto first = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(4));
  auto second = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(4));
  auto third = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(4));
  EXPECT_EQ(current_clock(), 1);
  first.Unregister();
  EXPECT_EQ(current_clock(), 2);
}

TEST_F(Registry, MissingRankingCountsAsZero) {
  auto none = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1));
  auto negative = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(-1));
  auto zero = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(0));
  EXPECT_EQ(current_clock(), 1);
  none.Unregister();
  EXPECT_EQ(current_clock(), 3);
  zero.Unregister();
  EXPECT_EQ(current_clock(), 2);
}

TEST_F(Registry, RankingNameIgnoresCase) {
  auto three = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(3));
  auto five = context_.RegisterService<Clock>(std::make_shared<FixedClock>(5),
                                              {{"Service.Ranking", Any(5)}});
  EXPECT_EQ(current_clock(), 5);
}

// With CppMicroServices a ranking that is not an int fails an assertion (or
// is undefined behaviour) once two services of one interface are compared;
// the built-in registry refuses it at registration, with the text
// CppMicroServices gives when properties are changed later. Only the
// built-in behaviour can be tested.
#ifndef SERVICES_TEST_CPPMICROSERVICES
TEST_F(Registry, RankingOfAnotherTypeIsRefused) {
  EXPECT_THROW_TEXT(context_.RegisterService<Clock>(std::make_shared<FixedClock>(1),
                                                    {{"service.ranking", Any(std::string("9"))}}),
                    std::invalid_argument,
                    "SERVICE_RANKING property has unexpected value type. "
                    "cppmicroservices::BadAnyCastException: any_cast: Failed to convert from "
                    "cppmicroservices::Any type " +
                        cppmicroservices::detail::GetDemangledName(typeid(std::string)) +
                        " to target type int");
  EXPECT_THROW((void)context_.RegisterService<Clock>(std::make_shared<FixedClock>(1),
                                                     {{"Service.Ranking", Any(2L)}}),
               std::invalid_argument);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}
#endif

TEST_F(Registry, UnregisteredServiceIsNoLongerFound) {
  auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1));
  auto ref = context_.GetServiceReference<Clock>();
  ASSERT_TRUE(ref);
  reg.Unregister();
  EXPECT_FALSE(ref);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
  EXPECT_THROW_TEXT(context_.GetService(ref), std::invalid_argument, kInvalidReference);
  EXPECT_THROW_TEXT(reg.Unregister(), std::logic_error, "Service is unregistered");
  EXPECT_THROW_TEXT(reg.GetReference(), std::logic_error, "Service is unregistered");
  EXPECT_TRUE(reg) << "a registration reads true once made";
}

TEST_F(Registry, EmptyRegistrationRefusesUse) {
  ServiceRegistration<Clock> empty;
  EXPECT_FALSE(empty);
  EXPECT_THROW_TEXT(empty.Unregister(), std::logic_error, "ServiceRegistrationBase object invalid");
  EXPECT_THROW_TEXT(empty.GetReference(), std::logic_error,
                    "ServiceRegistrationBase object invalid");
  auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1));
  EXPECT_TRUE(reg);
  reg = nullptr;
  EXPECT_FALSE(reg);
  EXPECT_TRUE(context_.GetServiceReference<Clock>()) << "forgetting a registration keeps it";
}

TEST_F(Registry, UnregisterReleasesOnlyTheFrameworksPointer) {
  const int before = live_clocks;
  auto clock = std::make_shared<FixedClock>(1);
  auto reg = context_.RegisterService<Clock>(clock);
  std::shared_ptr<Clock> held = context_.GetService(context_.GetServiceReference<Clock>());
  clock.reset();
  reg.Unregister();
  EXPECT_EQ(live_clocks, before + 1) << "a user's pointer keeps the object alive";
  EXPECT_EQ(held->now(), 1);
  held.reset();
  EXPECT_EQ(live_clocks, before);
}

TEST_F(Registry, OneObjectServesSeveralInterfaces) {
  auto both = std::make_shared<ClockAndTimer>();
  ServiceRegistration<Clock, Timer> reg = context_.RegisterService<Clock, Timer>(both);
  auto clock_ref = context_.GetServiceReference<Clock>();
  auto timer_ref = context_.GetServiceReference<Timer>();
  ASSERT_TRUE(clock_ref);
  ASSERT_TRUE(timer_ref);
  EXPECT_TRUE(ServiceReferenceBase(clock_ref) == ServiceReferenceBase(timer_ref))
      << "one registration";
  EXPECT_EQ(context_.GetService(clock_ref).get(), static_cast<Clock*>(both.get()));
  EXPECT_EQ(context_.GetService(timer_ref).get(), static_cast<Timer*>(both.get()));
  EXPECT_EQ(context_.GetService(timer_ref)->period(), 7);

  ServiceReference<Timer> from_reg = reg.GetReference<Timer>();
  EXPECT_EQ(from_reg.GetInterfaceId(), "svc_test::Timer");
  ServiceReference<Clock> first = reg.GetReference();
  EXPECT_EQ(first.GetInterfaceId(), "svc_test::Clock");
  EXPECT_EQ(reg.GetReference<Clock>().GetInterfaceId(), "svc_test::Clock");

  InterfaceMapConstPtr map = context_.GetService(ServiceReferenceU(clock_ref));
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(map->size(), 2u);
  EXPECT_EQ(map->at("svc_test::Timer").get(), static_cast<Timer*>(both.get()));

  reg.Unregister();
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
  EXPECT_FALSE(context_.GetServiceReference<Timer>());
}

TEST_F(Registry, InterfaceMapRegistersUnderEachId) {
  auto both = std::make_shared<ClockAndTimer>();
  ServiceRegistrationU reg =
      context_.RegisterService(cppmicroservices::MakeInterfaceMap<Clock, Timer>(both));
  EXPECT_EQ(context_.GetService(context_.GetServiceReference<Timer>()).get(),
            static_cast<Timer*>(both.get()));
  ServiceReferenceU untyped = context_.GetServiceReference("svc_test::Clock");
  EXPECT_EQ(untyped.GetInterfaceId(), "svc_test::Clock");
  EXPECT_EQ(context_.GetService(static_cast<const ServiceReferenceBase&>(untyped)).get(),
            static_cast<void*>(static_cast<Clock*>(both.get())));
  reg.Unregister();
  EXPECT_FALSE(untyped);
}

TEST_F(Registry, TypedReferenceKeepsOnlyAServiceOfItsInterface) {
  auto reg = context_.RegisterService<Clock, Timer>(std::make_shared<ClockAndTimer>());
  ServiceReferenceU untyped = context_.GetServiceReference("svc_test::Clock");
  ASSERT_TRUE(untyped);
  EXPECT_TRUE(untyped.IsConvertibleTo("svc_test::Timer"));
  EXPECT_FALSE(untyped.IsConvertibleTo("svc_test::Unused"));
  ServiceReference<Timer> timer(untyped);
  EXPECT_TRUE(timer);
  EXPECT_EQ(timer.GetInterfaceId(), "svc_test::Timer");
  EXPECT_EQ(context_.GetService(timer)->period(), 7);
  ServiceReference<svc_test::Unused> unused(untyped);
  EXPECT_FALSE(unused);
  EXPECT_EQ(unused.GetInterfaceId(), "");
  unused = untyped;
  EXPECT_FALSE(unused);
  timer = nullptr;
  EXPECT_FALSE(timer);
}

TEST_F(Registry, ReferencesCompareByRegistrationAndOrderByPreference) {
  auto low = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1), ranked(1));
  auto high = context_.RegisterService<Clock>(std::make_shared<FixedClock>(2), ranked(2));
  auto also_high = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), ranked(2));
  const ServiceReferenceBase low_ref = low.GetReference();
  const ServiceReferenceBase high_ref = high.GetReference();
  const ServiceReferenceBase also_high_ref = also_high.GetReference();
  EXPECT_TRUE(ServiceReferenceBase(context_.GetServiceReference<Clock>()) == high_ref);
  EXPECT_TRUE(ServiceReference<Clock>() == ServiceReference<Clock>());
  EXPECT_FALSE(low_ref == high_ref);
  EXPECT_TRUE(low_ref < high_ref);
  EXPECT_FALSE(high_ref < low_ref);
  EXPECT_TRUE(also_high_ref < high_ref) << "the later of equal rankings is less";
  EXPECT_TRUE(ServiceReferenceBase(ServiceReferenceU()) < low_ref);
  EXPECT_FALSE(low_ref < ServiceReferenceBase(ServiceReferenceU()));
  EXPECT_FALSE(high_ref < high_ref);

  EXPECT_TRUE(low == low);
  EXPECT_FALSE(low == high);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_TRUE(ServiceRegistration<Clock>() < low);
}

TEST_F(Registry, ContextsCompareAndReset) {
  BundleContext copy = context_;
  EXPECT_TRUE(copy == context_);
  EXPECT_FALSE(copy != context_);
  EXPECT_TRUE(context_ != BundleContext());
  EXPECT_TRUE(BundleContext() == BundleContext());
  EXPECT_TRUE(context_ < BundleContext());
  EXPECT_FALSE(BundleContext() < context_);
  copy = nullptr;
  EXPECT_FALSE(copy);
  EXPECT_TRUE(context_);
}

// ------------------------------------------------------- invalid contexts

// Every operation of `context`, which is not valid, throws IllegalStateException;
// `valid_ref` is a reference to a registered service.
void expect_refuses_use(BundleContext context, const ServiceReference<Clock>& valid_ref) {
  EXPECT_FALSE(context);
  EXPECT_THROW_TEXT(context.GetServiceReference<Clock>(), IllegalStateException, kInvalidContext);
  EXPECT_THROW_TEXT(context.GetServiceReference("svc_test::Clock"), IllegalStateException,
                    kInvalidContext);
  EXPECT_THROW_TEXT(context.RegisterService<Clock>(std::make_shared<FixedClock>(1)),
                    IllegalStateException, kInvalidContext);
  EXPECT_THROW_TEXT(context.RegisterService<Clock>(std::shared_ptr<FixedClock>()),
                    IllegalStateException, kInvalidContext);
  EXPECT_THROW_TEXT(context.GetService(valid_ref), IllegalStateException, kInvalidContext);
  EXPECT_THROW_TEXT(context.InstallBundles("/nonexistent/libnothing.so"), IllegalStateException,
                    kInvalidContext);
  EXPECT_THROW_TEXT(context.GetBundle(), IllegalStateException, kInvalidContext);
  // An invalid reference is refused first, whatever the context.
  EXPECT_THROW_TEXT(context.GetService(ServiceReference<Clock>()), std::invalid_argument,
                    kInvalidReference);
}

TEST_F(Registry, DefaultConstructedContextRefusesUse) {
  auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(1));
  expect_refuses_use(BundleContext(), context_.GetServiceReference<Clock>());
}

TEST(Framework, ContextOfAStoppedFrameworkRefusesUse) {
  Framework running = FrameworkFactory().NewFramework();
  running.Start();
  auto reg = running.GetBundleContext().RegisterService<Clock>(std::make_shared<FixedClock>(1));
  auto valid_ref = running.GetBundleContext().GetServiceReference<Clock>();

  Framework stopped = FrameworkFactory().NewFramework();
  stopped.Start();
  BundleContext stale = stopped.GetBundleContext();
  stop(stopped);
  expect_refuses_use(stale, valid_ref);
  stop(running);
}

// ------------------------------------------------------- user code, threads

// A service whose destructor uses the framework it was registered with.
class RegistryUsingClock : public Clock {
 public:
  RegistryUsingClock(BundleContext context, std::atomic<int>& seen)
      : context_(context), seen_(seen) {}
  ~RegistryUsingClock() override {
    auto successor = context_.RegisterService<Clock>(std::make_shared<FixedClock>(99));
    auto ref = context_.GetServiceReference<Clock>();
    seen_ = ref ? context_.GetService(ref)->now() : -1;
    successor.Unregister();
  }
  int now() const override { return 5; }

 private:
  BundleContext context_;
  std::atomic<int>& seen_;
};

TEST_F(Registry, ServiceDestructorMayUseTheFrameworkDuringUnregister) {
  std::atomic<int> seen{0};
  auto reg = context_.RegisterService<Clock>(std::make_shared<RegistryUsingClock>(context_, seen));
  EXPECT_TRUE(services_test::returns_without_deadlock([&] { reg.Unregister(); }));
  EXPECT_EQ(seen, 99);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

// A property value whose copy looks up a service: the framework copies
// properties before it takes a lock.
struct Inspecting {
  explicit Inspecting(BundleContext* c) : context(c) {}
  Inspecting(const Inspecting& other) : context(other.context) {
    if (context != nullptr) (void)context->GetServiceReference<Clock>();
  }
  Inspecting& operator=(const Inspecting&) = default;
  BundleContext* context;
};

// Any prints what it holds, so a property value needs operator<<.
std::ostream& operator<<(std::ostream& out, const Inspecting&) {
  return out << "inspecting";
}

TEST_F(Registry, CopyingAPropertyValueMayUseTheFramework) {
  ServiceProperties props{{"inspector", Any(Inspecting(nullptr))}};
  props.at("inspector") = Any(Inspecting(&context_));
  EXPECT_TRUE(services_test::returns_without_deadlock([&] {
    auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(3), props);
    reg.Unregister();
  }));
}

TEST(Framework, StopLeavesTheFrameworksOwnRegistrationsToTheirOwners) {
  Framework framework = FrameworkFactory().NewFramework();
  framework.Start();
  const int before = live_clocks;
  auto reg = framework.GetBundleContext().RegisterService<Clock>(std::make_shared<FixedClock>(1));
  auto ref = framework.GetBundleContext().GetServiceReference<Clock>();
  stop(framework);
  EXPECT_EQ(live_clocks, before + 1) << "the service is not unregistered by the stop";
  EXPECT_TRUE(ref);
  framework.Start();
  EXPECT_FALSE(framework.GetBundleContext().GetServiceReference<Clock>())
      << "the new run has no services";
  reg.Unregister();
  EXPECT_EQ(live_clocks, before);
  EXPECT_FALSE(ref);
  stop(framework);
}

TEST_F(Registry, ConcurrentRegistrationLookupAndWithdrawalAreSafe) {
  constexpr int threads = 4;
  constexpr int rounds = 500;
  std::atomic<int> wrong{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&, t] {
      for (int i = 0; i < rounds; ++i) {
        auto reg = context_.RegisterService<Clock>(std::make_shared<FixedClock>(t), ranked(t));
        auto ref = context_.GetServiceReference<Clock>();
        // Our own service is registered, so some service is always found,
        // though another thread may withdraw the one found at any moment.
        if (ref.GetInterfaceId() != "svc_test::Clock") ++wrong;
        try {
          auto service = context_.GetService(ref);
          if (service && (service->now() < 0 || service->now() >= threads)) ++wrong;
        } catch (const std::invalid_argument&) {
          // withdrawn between the lookup and GetService
        }
        reg.Unregister();
      }
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_FALSE(context_.GetServiceReference<Clock>());
}

}  // namespace
