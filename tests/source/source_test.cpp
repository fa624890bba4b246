#include "ui/core/source.h"

#include <gtest/gtest.h>

#include <boost/shared_ptr.hpp>

#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/ServiceInterface.h"
#include "expect_error.h"
#include "krel/bundles.h"
#include "source_test_support.h"
#include "value_checks.h"

// These tests find the bundle set kalder_ui_create_source where an
// installation has it: next to the library, in <build>/lib/ui_core/bundles.

namespace {

using namespace source_test;
using ui::core::create_source;
using ui::core::SourceCreatorService;

static_assert(std::is_abstract_v<Source>);
static_assert(std::has_virtual_destructor_v<Source>);
static_assert(std::is_abstract_v<SourceCreatorService<krel::Location>>);
static_assert(std::has_virtual_destructor_v<SourceCreatorService<krel::DravikId>>);
static_assert(std::is_same_v<decltype(create_source(krel::Location())), boost::shared_ptr<Source>>);
static_assert(
    std::is_same_v<decltype(create_source(krel::DravikId(), true)), boost::shared_ptr<Source>>);

const krel::Location plant(u"model/plant.model", 12, 5);
const krel::DravikId gain(u"model/Sub/Gain");

TEST(SourceCreatorService, InterfaceIdsAreTheDemangledTypeNames) {
  EXPECT_EQ(us_service_interface_iid<SourceCreatorService<krel::Location>>(),
            "ui::core::SourceCreatorService<krel::Location>");
  EXPECT_EQ(us_service_interface_iid<SourceCreatorService<krel::DravikId>>(),
            "ui::core::SourceCreatorService<krel::DravikId>");
  using DialogService = SourceCreatorService<std::tuple<krel::DravikId, bool>>;
  EXPECT_EQ(us_service_interface_iid<DialogService>(),
            cppmicroservices::detail::GetDemangledName(typeid(DialogService)));
  EXPECT_EQ(us_service_interface_iid<DialogService>().rfind(
                "ui::core::SourceCreatorService<std::tuple<krel::DravikId, bool>", 0),
            0u);
}

TEST(InstallAndStartKalderCreateSource, RegistersACreatorForEveryKindOfKey) {
  ui::core::install_and_start_kalder_create_source();
  ui::core::install_and_start_kalder_create_source();
  auto context = krel::get_global_bundle_context();
  EXPECT_TRUE(context.GetServiceReference<SourceCreatorService<krel::Location>>());
  EXPECT_TRUE(context.GetServiceReference<SourceCreatorService<krel::DravikId>>());
  EXPECT_TRUE(
      (context.GetServiceReference<SourceCreatorService<std::tuple<krel::DravikId, bool>>>()));
}

TEST(CreateSource, LocationSourcePrintsFileLineColumn) {
  const auto source = create_source(plant);
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "model/plant.model:12:5");
  EXPECT_EQ(source->kind(), SourceKind::location);
  EXPECT_EQ(source->location(), plant);
  EXPECT_EQ(source->block(), std::nullopt);
  EXPECT_FALSE(source->opens_dialog());
  EXPECT_EQ(source->description(), u"line 12, column 5 of model/plant.model");
}

TEST(CreateSource, BlockSourceNamesTheBlock) {
  const auto source = create_source(gain);
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "block model/Sub/Gain");
  EXPECT_EQ(source->kind(), SourceKind::block);
  EXPECT_EQ(source->block(), gain);
  EXPECT_EQ(source->location(), std::nullopt);
  EXPECT_FALSE(source->opens_dialog());
  EXPECT_EQ(source->description(), u"block model/Sub/Gain");
}

TEST(CreateSource, OpenDialogSourceKeepsTheFlag) {
  const auto opens = create_source(gain, true);
  const auto stays_closed = create_source(gain, false);
  ASSERT_TRUE(opens);
  ASSERT_TRUE(stays_closed);
  EXPECT_EQ(opens->kind(), SourceKind::open_dialog);
  EXPECT_TRUE(opens->opens_dialog());
  EXPECT_FALSE(stays_closed->opens_dialog());
  EXPECT_EQ(opens->block(), gain);
  EXPECT_EQ(printed(*opens), "dialog of block model/Sub/Gain");
  EXPECT_EQ(printed(*stays_closed), "block model/Sub/Gain, dialog closed");
}

TEST(CreateSource, KeyNamingNoPlaceGivesAnEmptyPointerWithoutError) {
  // The installed bundle makes no source for a location without a file or an
  // empty block id.
  boost::shared_ptr<Source> none;
  EXPECT_NO_THROW(none = create_source(krel::Location(u"", 1, 1)));
  EXPECT_FALSE(none);
  EXPECT_EQ(none.use_count(), 0);
  EXPECT_FALSE(create_source(krel::DravikId()));
  EXPECT_FALSE(create_source(krel::DravikId(), true));
}

TEST(Source, StreamInsertionWritesExactlyWhatPrintWrites) {
  for (const auto& source : {create_source(plant), create_source(gain), create_source(gain, true),
                             create_source(gain, false)}) {
    ASSERT_TRUE(source);
    std::ostringstream os;
    os << '[';
    std::ostream& returned = os << *source;
    os << ']';
    EXPECT_EQ(&returned, &os);
    EXPECT_EQ(os.str(), "[" + printed(*source) + "]");
  }
  TestSource tagged("x");
  std::ostringstream os;
  os << tagged;
  EXPECT_EQ(os.str(), "test source x");
}

TEST(Source, OpenAndHighlightTellTheNavigatorWhatToShow) {
  RecordingNavigator navigator;
  for (const auto& source : {create_source(plant), create_source(gain), create_source(gain, true),
                             create_source(gain, false)}) {
    ASSERT_TRUE(source);
    source->open(navigator);
    source->highlight(navigator);
  }
  EXPECT_EQ(
      navigator.calls,
      (std::vector<std::string>{"select model/plant.model:12:5", "highlight model/plant.model:12:5",
                                "select block model/Sub/Gain", "highlight block model/Sub/Gain",
                                "dialog model/Sub/Gain", "highlight block model/Sub/Gain",
                                "select block model/Sub/Gain", "highlight block model/Sub/Gain"}));
}

// Compares sources through the interface, for the shared value checks.
struct Compared {
  const Source* source;
  friend bool operator==(Compared a, Compared b) { return a.source->compare(*b.source) == 0; }
  friend bool operator!=(Compared a, Compared b) { return !(a == b); }
};

TEST(Source, CompareAndHashOrderByKindThenKey) {
  const auto by = [](Compared a, Compared b) { return a.source->compare(*b.source); };
  const auto hash = [](Compared a) { return a.source->hash(); };
  const auto early = create_source(krel::Location(u"a.model", 3, 9));
  const auto later_line = create_source(krel::Location(u"a.model", 4, 1));
  const auto later_column = create_source(krel::Location(u"a.model", 3, 10));
  const auto other_file = create_source(krel::Location(u"b.model", 1, 1));
  const auto same = create_source(krel::Location(u"a.model", 3, 9));
  const auto block_a = create_source(krel::DravikId(u"m/A"));
  const auto block_b = create_source(krel::DravikId(u"m/B"));
  const auto dialog_closed = create_source(krel::DravikId(u"m/A"), false);
  const auto dialog_open = create_source(krel::DravikId(u"m/A"), true);
  test_support::expect_consistent(Compared{early.get()}, Compared{same.get()}, 0, by, hash);
  test_support::expect_consistent(Compared{early.get()}, Compared{later_line.get()}, 1, by, hash);
  test_support::expect_consistent(Compared{early.get()}, Compared{later_column.get()}, 1, by, hash);
  test_support::expect_consistent(Compared{later_line.get()}, Compared{other_file.get()}, 1, by,
                                  hash);
  test_support::expect_consistent(Compared{other_file.get()}, Compared{block_a.get()}, 1, by, hash);
  test_support::expect_consistent(Compared{block_b.get()}, Compared{block_a.get()}, 2, by, hash);
  test_support::expect_consistent(Compared{block_b.get()}, Compared{dialog_closed.get()}, 1, by,
                                  hash);
  test_support::expect_consistent(Compared{dialog_closed.get()}, Compared{dialog_open.get()}, 1, by,
                                  hash);
}

TEST(Source, CloneIsIndependentAndEqual) {
  for (const auto& source :
       {create_source(plant), create_source(gain), create_source(gain, true)}) {
    ASSERT_TRUE(source);
    std::unique_ptr<Source> copy = source->clone();
    ASSERT_TRUE(copy);
    EXPECT_NE(copy.get(), source.get());
    EXPECT_EQ(copy->compare(*source), 0);
    EXPECT_EQ(copy->hash(), source->hash());
    EXPECT_EQ(printed(*copy), printed(*source));
  }
}

TEST(CreateSource, HighestRankingServiceMakesTheSource) {
  Registered low(std::make_shared<TestCreator>("low"), 10);
  Registered high(std::make_shared<TestCreator>("high"), 20);
  Registered middle(std::make_shared<TestCreator>("middle"), 15);
  const auto source = create_source(plant);
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "test source high");
  high.withdraw();
  EXPECT_EQ(printed(*create_source(plant)), "test source middle");
}

// The installed creators used to register with ranking 0 and, being first,
// won every tie against a creator an application registered later.
TEST(CreateSource, CreatorWithTheDefaultRankingOutranksTheInstalledOne) {
  ui::core::install_and_start_kalder_create_source();
  Registered mine(std::make_shared<TestCreator>("mine"), 0);
  EXPECT_EQ(printed(*create_source(plant)), "test source mine");
  mine.withdraw();
  EXPECT_EQ(printed(*create_source(plant)), "model/plant.model:12:5");
}

TEST(CreateSource, EqualRankingsUseTheFirstRegisteredService) {
  Registered first(std::make_shared<TestCreator>("first"), 30);
  Registered second(std::make_shared<TestCreator>("second"), 30);
  EXPECT_EQ(printed(*create_source(plant)), "test source first");
  first.withdraw();
  EXPECT_EQ(printed(*create_source(plant)), "test source second");
}

TEST(CreateSource, ServicePassesTheKeyOn) {
  auto creator = std::make_shared<TestCreator>("keyed");
  Registered registered(creator, 40);
  (void)create_source(krel::Location(u"dir/file.model", 7, 2));
  EXPECT_EQ(creator->last_key, krel::Location(u"dir/file.model", 7, 2));
}

TEST(CreateSource, EmptySourceFromTheServiceGivesAnEmptyPointer) {
  Registered nothing(std::make_shared<TestCreator>(""), 100);
  boost::shared_ptr<Source> source;
  EXPECT_NO_THROW(source = create_source(plant));
  EXPECT_FALSE(source);
  EXPECT_EQ(source.use_count(), 0);
}

TEST(CreateSource, ExceptionsOfTheServicePassThroughUnchanged) {
  auto creator = std::make_shared<TestCreator>("unused");
  creator->fails = [] { throw std::domain_error("the model is not loaded"); };
  Registered registered(creator, 100);
  try {
    (void)create_source(plant);
    FAIL() << "no exception";
  } catch (const std::domain_error& e) {
    EXPECT_STREQ(e.what(), "the model is not loaded");
  }
  EXPECT_EQ(creator.use_count(), 2) << "the kernel kept a reference to the service";
}

TEST(CreateSource, SourceOutlivesTheServiceAndIsDeletedThroughItsVirtualDestructor) {
  const int before = live_sources;
  auto creator = std::make_shared<TestCreator>("kept");
  std::weak_ptr<TestCreator> watch = creator;
  boost::shared_ptr<Source> source;
  {
    Registered registered(creator, 50);
    const long held_before = creator.use_count();  // the registry's and ours
    source = create_source(plant);
    EXPECT_EQ(creator.use_count(), held_before) << "the kernel kept a reference to the service";
  }
  creator.reset();
  EXPECT_TRUE(watch.expired()) << "the service object should be gone";
  ASSERT_TRUE(source);
  EXPECT_EQ(source.use_count(), 1);
  EXPECT_NE(boost::get_deleter<std::default_delete<Source>>(source), nullptr);
  EXPECT_EQ(live_sources, before + 1);
  EXPECT_EQ(printed(*source), "test source kept");
  boost::shared_ptr<Source> copy = source;
  source.reset();
  EXPECT_EQ(live_sources, before + 1);
  copy.reset();
  EXPECT_EQ(live_sources, before);
}

}  // namespace
