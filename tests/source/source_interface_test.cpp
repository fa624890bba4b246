// Claims about sources and their creators that the other source tests leave
// open: the exact argument forms, that Source and the creator interface carry
// no data, and that the block and open-dialog keys reach their creators
// unchanged. This process finds the installed bundle set next to the library;
// the creators registered here outrank the installed ones.

#include <gtest/gtest.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <ostream>
#include <tuple>
#include <type_traits>

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Constants.h"
#include "krel/bundles.h"
#include "source_test_support.h"
#include "ui/core/source.h"

namespace {

using namespace source_test;
using ui::core::create_source;
using ui::core::SourceCreatorService;
using DialogKey = std::tuple<krel::DravikId, bool>;

static_assert(
    std::is_same_v<
        decltype(static_cast<boost::shared_ptr<Source> (*)(const krel::Location&)>(&create_source)),
        boost::shared_ptr<Source> (*)(const krel::Location&)>);
static_assert(
    std::is_same_v<
        decltype(static_cast<boost::shared_ptr<Source> (*)(const krel::DravikId&)>(&create_source)),
        boost::shared_ptr<Source> (*)(const krel::DravikId&)>);
static_assert(std::is_same_v<decltype(static_cast<boost::shared_ptr<Source> (*)(
                                          const krel::DravikId&, const bool&)>(&create_source)),
                             boost::shared_ptr<Source> (*)(const krel::DravikId&, const bool&)>);
static_assert(
    std::is_same_v<decltype(&ui::core::install_and_start_kalder_create_source), void (*)()>);
static_assert(std::is_same_v<decltype(static_cast<std::ostream& (*)(std::ostream&, const Source&)>(
                                 &ui::core::operator<<)),
                             std::ostream& (*)(std::ostream&, const Source&)>);

// No base class and no data of their own: the object is its virtual table
// pointer alone.
static_assert(std::is_polymorphic_v<Source> && sizeof(Source) == sizeof(void*));
static_assert(sizeof(SourceCreatorService<krel::Location>) == sizeof(void*));
static_assert(sizeof(SourceCreatorService<krel::DravikId>) == sizeof(void*));
static_assert(sizeof(SourceCreatorService<DialogKey>) == sizeof(void*));

// The creator's one operation takes the key by const reference and hands over
// sole ownership.
static_assert(
    std::is_same_v<decltype(&SourceCreatorService<DialogKey>::create),
                   std::unique_ptr<Source> (SourceCreatorService<DialogKey>::*)(const DialogKey&)>);

// A creator for any key type that writes down the last key it was given and
// makes a TestSource.
template <class Key>
class RecordingCreator final : public SourceCreatorService<Key> {
 public:
  std::unique_ptr<Source> create(const Key& key) override {
    last_key = key;
    ++calls;
    return std::make_unique<TestSource>("recorded");
  }

  std::optional<Key> last_key;
  int calls = 0;
};

// Registers a creator above the installed ones for the duration of a test.
template <class Key>
class Outranking {
 public:
  explicit Outranking(std::shared_ptr<RecordingCreator<Key>> creator)
      : registration_(krel::get_global_bundle_context().RegisterService<SourceCreatorService<Key>>(
            creator,
            {{cppmicroservices::Constants::SERVICE_RANKING, cppmicroservices::Any(1000)}})) {}
  ~Outranking() { registration_.Unregister(); }
  Outranking(const Outranking&) = delete;
  Outranking& operator=(const Outranking&) = delete;

 private:
  cppmicroservices::ServiceRegistration<SourceCreatorService<Key>> registration_;
};

TEST(SourceConformance, BlockKeyReachesItsCreatorUnchanged) {
  ui::core::install_and_start_kalder_create_source();
  auto creator = std::make_shared<RecordingCreator<krel::DravikId>>();
  Outranking<krel::DravikId> registered(creator);
  const auto source = create_source(krel::DravikId(u"model/Sub/Gain"));
  ASSERT_TRUE(source);
  EXPECT_EQ(printed(*source), "test source recorded");
  ASSERT_TRUE(creator->last_key.has_value());
  EXPECT_EQ(*creator->last_key, krel::DravikId(u"model/Sub/Gain"));
}

TEST(SourceConformance, OpenDialogKeyIsTheIdentifierAndTheFlag) {
  ui::core::install_and_start_kalder_create_source();
  auto creator = std::make_shared<RecordingCreator<DialogKey>>();
  Outranking<DialogKey> registered(creator);
  for (bool flag : {true, false}) {
    const bool& flag_ref = flag;
    const auto source = create_source(krel::DravikId(u"m/Dialog"), flag_ref);
    ASSERT_TRUE(source);
    ASSERT_TRUE(creator->last_key.has_value());
    EXPECT_EQ(std::get<0>(*creator->last_key), krel::DravikId(u"m/Dialog"));
    EXPECT_EQ(std::get<1>(*creator->last_key), flag);
  }
  EXPECT_EQ(creator->calls, 2);
}

TEST(SourceConformance, EachOverloadAsksOnlyTheCreatorOfItsOwnKey) {
  ui::core::install_and_start_kalder_create_source();
  auto blocks = std::make_shared<RecordingCreator<krel::DravikId>>();
  auto dialogs = std::make_shared<RecordingCreator<DialogKey>>();
  Outranking<krel::DravikId> blocks_registered(blocks);
  Outranking<DialogKey> dialogs_registered(dialogs);
  (void)create_source(krel::DravikId(u"m/A"), true);
  EXPECT_EQ(blocks->calls, 0);
  EXPECT_EQ(dialogs->calls, 1);
  (void)create_source(krel::DravikId(u"m/A"));
  EXPECT_EQ(blocks->calls, 1);
  EXPECT_EQ(dialogs->calls, 1);
}

TEST(SourceConformance, CreatorIsNotHeldAfterTheCall) {
  ui::core::install_and_start_kalder_create_source();
  auto creator = std::make_shared<RecordingCreator<DialogKey>>();
  Outranking<DialogKey> registered(creator);
  const long before = creator.use_count();  // ours and the registry's
  const auto source = create_source(krel::DravikId(u"m/A"), false);
  EXPECT_EQ(creator.use_count(), before);
  ASSERT_TRUE(source);
  EXPECT_EQ(source.use_count(), 1);
}

}  // namespace
