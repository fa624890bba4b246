// concurrency_test.cpp - the library's values and lazy tables used from many threads
//
// Two kinds of test. The sharing tests hand one value (node path, subscript,
// element, object path, name) to several threads, which copy it, read it,
// hash it, change their own copies and destroy them, all at once; the shared
// value must come through unchanged and every thread must see the same
// answers. The first-use tests start all threads behind one latch so that
// their first calls of a lazily built table (the XML escape map, the shared
// empty element block, the service interface ids and the once-only bundle
// installation, the units service) overlap.
//
// Every test here has "Concurren" in its name (the suite is Concurrency), so
// the ThreadSanitizer run selects them with `ctest -R 'Thread|Concurren'`;
// TSan is what proves the counting and the once-only initialisation right.
// CTest runs each test in a process of its own, so each first-use test really
// races the first use; run all in one process, only the first one does.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "krel/location.h"
#include "ui/core/enumerations.h"
#include "ui/core/errors.h"
#include "ui/core/node_id.h"
#include "ui/core/node_path.h"
#include "ui/core/object_path.h"
#include "ui/core/object_path_element.h"
#include "ui/core/object_path_name.h"
#include "ui/core/object_path_subscript.h"
#include "ui/core/source.h"
#include "ui/core/text_utils.h"
#include "ui/core/unit_conversion.h"
#include "units2/core/expr.h"

namespace {

using ui::core::NodeId;
using ui::core::NodePath;
using ui::core::NodePath1;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;
using ui::core::ustring;

constexpr int thread_count = 4;
constexpr int rounds = 400;

// Runs body(thread index) on thread_count threads that all start together,
// and returns how many threads reported a mismatch.
int run_together(const std::function<bool(int)>& body) {
  std::latch start(thread_count);
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < thread_count; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      if (!body(t)) ++mismatches;
    });
  }
  for (std::thread& thread : threads) thread.join();
  return mismatches.load();
}

std::vector<ustring> id_texts(const ui::core::NodePathBase& path) {
  std::vector<ustring> texts;
  for (const NodeId& id : path.ids()) texts.push_back(id.ustring());
  return texts;
}

TEST(Concurrency, NodePathCopiesAreReadChangedAndDestroyedOnManyThreads) {
  const NodePath1 shared(u"Body//Frame/mass/x");
  const std::vector<ustring> expected = id_texts(shared);
  const NodePath tail(u"y/z");
  const int mismatches = run_together([&](int t) {
    bool ok = true;
    for (int i = 0; i < rounds; ++i) {
      NodePath1 copy = shared;  // shares the record
      ok = ok && copy.ustring() == u"Body//Frame/mass/x" && id_texts(copy) == expected;
      ok = ok && copy.shares_storage_with(shared);
      if ((i + t) % 2 == 0) {
        copy += tail;  // detaches from the shared record
      } else {
        copy.push_back(NodeId(u"w"));
      }
      ok = ok && copy.size() > shared.size() && !copy.shares_storage_with(shared);
      NodeId front = shared.front();  // copies of one identifier record
      ok = ok && front == copy.front() && front.shares_record_with(shared.front());
      ok = ok && ui::core::relpath(copy, shared).has_value();
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(id_texts(shared), expected);
}

TEST(Concurrency, SubscriptCopiesAndFirstHashesOnManyThreadsAgree) {
  // A fresh record: its cached hash is still 0, so the threads race to store it.
  const ObjectPathSubscript shared(u"//2, 3, 4");
  const ObjectPathSubscript equal(std::vector<unsigned long>{2, 3, 4});
  std::vector<std::size_t> hashes(thread_count);
  const int mismatches = run_together([&](int t) {
    bool ok = true;
    for (int i = 0; i < rounds; ++i) {
      ObjectPathElement element(shared);  // shares the subscript's record
      const std::size_t hash = ui::core::hash_value(element);
      if (i == 0) hashes[static_cast<std::size_t>(t)] = hash;
      ok = ok && hash == hashes[static_cast<std::size_t>(t)];
      ok = ok && element == ObjectPathElement(equal) && ui::core::compare(element, equal) == 0;
      ok = ok && ustring(shared) == u"//2, 3, 4" && shared.size() == 3 && shared(2) == 4;
      ObjectPathElement own = element;
      ui::core::strip_annotation_inplace(own);  // detaches this copy only
      ok = ok && own == element && ui::core::hash_value(own) == hash;
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
  for (const std::size_t h : hashes) EXPECT_EQ(h, ui::core::hash_value(ObjectPathElement(equal)));
}

TEST(Concurrency, ObjectPathsAndTheirElementsAreSharedAcrossThreads) {
  const ObjectPath shared = ui::core::to_object_path(u"a///1, 2/b//c/d");
  const ustring text = shared;
  const ObjectPath tail = ui::core::to_object_path(u"//7/e");
  std::vector<std::size_t> expected_hashes;
  for (const ObjectPathElement& e : ui::core::to_object_path(text)) {
    expected_hashes.push_back(ui::core::hash_value(e));
  }
  const int mismatches = run_together([&](int t) {
    bool ok = true;
    for (int i = 0; i < rounds; ++i) {
      ObjectPath copy = shared;
      ok = ok && copy.shares_storage_with(shared) && ustring(copy) == text;
      std::vector<std::size_t> hashes;
      for (const ObjectPathElement& e : copy) hashes.push_back(ui::core::hash_value(e));
      ok = ok && hashes == expected_hashes;
      if ((i + t) % 3 == 0) {
        copy /= tail;
      } else if ((i + t) % 3 == 1) {
        copy.push_back(ObjectPathElement(ObjectPathName(u"x")));
      } else {
        copy = copy / shared;
      }
      ok = ok && copy.size() > shared.size() && !copy.shares_storage_with(shared);
      ObjectPathElement first = shared[0];
      ok = ok && first == copy[0] && ui::core::to_string(first) == u"a";
      std::ostringstream out;
      out << shared;
      ok = ok && out.str() == "a///1, 2/b//c/d";
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(ustring(shared), text);
}

TEST(Concurrency, NamesShareTheirTextAcrossThreads) {
  const ObjectPathName shared(u"Gain\tfactor");
  const int mismatches = run_together([&](int) {
    bool ok = true;
    for (int i = 0; i < rounds; ++i) {
      const ObjectPathName copy = shared;
      const ObjectPathElement element(copy);
      ok = ok && ustring(copy.text()) == u"Gain factor" && element.as_name() != nullptr &&
           ui::core::compare(element, ObjectPathElement(shared)) == 0;
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
}

TEST(Concurrency, FirstEscapeXmlCallsRaceToBuildTheEscapeMap) {
  const int mismatches = run_together([](int t) {
    const ustring text = u"<a href='x'>" + ustring(static_cast<std::size_t>(t + 1), u'&') + u"\"";
    ustring expected = u"&lt;a href=&apos;x&apos;&gt;";
    for (int i = 0; i <= t; ++i) expected += u"&amp;";
    expected += u"&quot;";
    return ui::core::escape_xml(text) == expected;
  });
  EXPECT_EQ(mismatches, 0);
}

TEST(Concurrency, FirstReadsOfEmptyObjectPathsRaceForTheSharedEmptyBlock) {
  const int mismatches = run_together([](int) {
    const ObjectPath empty;
    const ObjectPath copy = empty;
    bool ok = empty.size() == 0 && empty.empty() && empty.begin() == empty.end();
    ok = ok && ustring(copy).empty() && copy == empty;
    const auto [path, rest] = ui::core::to_partial_path(u"/x");
    ok = ok && path.empty() && path.begin() == path.end() && rest == u"/x";
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
}

TEST(Concurrency, FirstCreateSourceCallsOfEveryKindRace) {
  // The three kinds look up three interface ids, each built on first use, and
  // all wait for the one installation of the bundle set.
  std::vector<std::string> printed(thread_count * 3);
  const int mismatches = run_together([&](int t) {
    const auto line = static_cast<std::uint32_t>(t + 1);
    const krel::DravikId block(u"model/block" + ustring(1, static_cast<char16_t>(u'0' + t)));
    const boost::shared_ptr<ui::core::Source> sources[] = {
        ui::core::create_source(krel::Location(u"f.model", line, 2)),
        ui::core::create_source(block),
        ui::core::create_source(block, true),
    };
    bool ok = true;
    for (std::size_t k = 0; k < 3; ++k) {
      ok = ok && sources[k] != nullptr;
      if (!sources[k]) continue;
      std::ostringstream out;
      out << *sources[k];
      printed[static_cast<std::size_t>(t) * 3 + k] = out.str();
    }
    if (!ok) return false;
    ok = sources[0]->kind() == ui::core::SourceKind::location &&
         sources[1]->kind() == ui::core::SourceKind::block &&
         sources[2]->kind() == ui::core::SourceKind::open_dialog && sources[2]->opens_dialog();
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
  for (int t = 0; t < thread_count; ++t) {
    EXPECT_EQ(printed[static_cast<std::size_t>(t) * 3], "f.model:" + std::to_string(t + 1) + ":2");
  }
}

TEST(Concurrency, FirstUnitConversionsRaceForTheUnitsService) {
  const int mismatches = run_together([](int t) {
    bool ok = true;
    for (int i = 0; i < 20; ++i) {
      const units2::core::Expr celsius(u"degC");
      ok = ok && ui::core::ps2dravik_nonaffine_unit_conversion(celsius, true) == u"deltadegC";
      ok = ok && ui::core::ps2dravik_nonaffine_unit_conversion(celsius, (i + t) % 2 == 0) ==
                     ((i + t) % 2 == 0 ? u"deltadegC" : u"degC");
      ok = ok && ui::core::ps2dravik_nonaffine_unit_conversion(units2::core::Expr(u"m/s"), true) ==
                     u"m/s";
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
}

TEST(Concurrency, RefusedInputsThrowTheirMessagesOnManyThreadsAtOnce) {
  // Building a message reads the catalogue; every thread must get its own
  // identifier and arguments.
  const int mismatches = run_together([](int t) {
    bool ok = true;
    for (int i = 0; i < 50; ++i) {
      const ustring bad = u"/bad" + ustring(static_cast<std::size_t>(t + 1), u'x');
      try {
        const NodePath path(bad);
        ok = false;
      } catch (const krel::MessageException& e) {
        const auto& args = e.message().id().arguments;
        ok = ok && ui::core::is_error(e, ui::core::ErrorId::InvalidNodePath) && args.size() == 1 &&
             std::get<2>(args[0]) == bad;
      }
      ok = ok && ui::core::to_user_string(ui::core::UnitConversionType::unknown).size() > 0;
      ok = ok && !ObjectPathSubscript::make(u"//0").has_value();
    }
    return ok;
  });
  EXPECT_EQ(mismatches, 0);
}

}  // namespace
