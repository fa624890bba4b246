// Copying and destroying the kernel's value types, next to a
// boost::intrusive_ptr (the cheapest shared handle) and a vector of four
// strings (what a path copied by value costs without sharing); and the hash of
// a subscript element once its record holds the cached value.

#include <benchmark/benchmark.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#include <string>
#include <vector>

#include "ui/core/node_path.h"
#include "ui/core/object_path.h"

namespace {

using ui::core::NodeId;
using ui::core::NodePath;
using ui::core::ObjectPath;
using ui::core::ObjectPathElement;
using ui::core::ObjectPathName;
using ui::core::ObjectPathSubscript;

// A handle is one pointer; an element is one pointer and its kind word.
static_assert(sizeof(NodeId) == sizeof(void*));
static_assert(sizeof(NodePath) == sizeof(void*));
static_assert(sizeof(ObjectPathSubscript) == sizeof(void*));
static_assert(sizeof(ObjectPathName) == sizeof(void*));
static_assert(sizeof(ObjectPath) == sizeof(void*));
static_assert(sizeof(ObjectPathElement) == sizeof(void*) + sizeof(std::size_t));

struct Counted : boost::intrusive_ref_counter<Counted, boost::thread_safe_counter> {
  int value = 0;
};

// One copy made and destroyed per iteration.
template <class T>
void copy_and_destroy(benchmark::State& state, const T& original) {
  for (auto _ : state) {
    T copy(original);
    benchmark::DoNotOptimize(&copy);
  }
  state.counters["sizeof"] = static_cast<double>(sizeof(T));
}

void Copy_intrusive_ptr(benchmark::State& state) {
  const boost::intrusive_ptr<Counted> p(new Counted);
  copy_and_destroy(state, p);
}
BENCHMARK(Copy_intrusive_ptr);

void Copy_vector4_u16string(benchmark::State& state) {
  const std::vector<std::u16string> v = {u"Controller", u"Gain", u"signal_out", u"value"};
  copy_and_destroy(state, v);
}
BENCHMARK(Copy_vector4_u16string);

void Copy_NodeId(benchmark::State& state) {
  copy_and_destroy(state, NodeId(u"Controller"));
}
BENCHMARK(Copy_NodeId);

void Copy_NodePath(benchmark::State& state) {
  copy_and_destroy(state, NodePath(u"Controller/Gain/signal_out/value"));
}
BENCHMARK(Copy_NodePath);

void Copy_ObjectPathSubscript(benchmark::State& state) {
  copy_and_destroy(state, ObjectPathSubscript({2, 3}));
}
BENCHMARK(Copy_ObjectPathSubscript);

void Copy_ObjectPathElement_name(benchmark::State& state) {
  copy_and_destroy(state, ObjectPathElement(ObjectPathName(u"Controller")));
}
BENCHMARK(Copy_ObjectPathElement_name);

void Copy_ObjectPathElement_subscript(benchmark::State& state) {
  copy_and_destroy(state, ObjectPathElement(ObjectPathSubscript({2, 3})));
}
BENCHMARK(Copy_ObjectPathElement_subscript);

void Copy_ObjectPath(benchmark::State& state) {
  copy_and_destroy(state, ui::core::to_object_path(u"Controller/Gain///2, 3/value"));
}
BENCHMARK(Copy_ObjectPath);

// Comparing two equal values built separately, so that no record is shared and
// every code unit is compared: a node path parsed twice against a vector of
// the same four strings built twice.
template <class T>
void compare_equal(benchmark::State& state, T a, T b) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(b);
    benchmark::DoNotOptimize(a == b);
  }
  if (!(a == b)) state.SkipWithError("the values are not equal");
}

void Equal_vector4_u16string(benchmark::State& state) {
  const auto make = [] {
    return std::vector<std::u16string>{u"Controller", u"Gain", u"signal_out", u"value"};
  };
  compare_equal(state, make(), make());
}
BENCHMARK(Equal_vector4_u16string);

void Equal_NodePath(benchmark::State& state) {
  const std::u16string text = u"Controller/Gain/signal_out/value";
  compare_equal(state, NodePath(text), NodePath(text));
}
BENCHMARK(Equal_NodePath);

void Hash_subscript_element_cached(benchmark::State& state) {
  const ObjectPathElement e(ObjectPathSubscript({2, 3, 4}));
  benchmark::DoNotOptimize(hash_value(e));  // the first call fills the cache
  for (auto _ : state) {
    benchmark::DoNotOptimize(hash_value(e));
  }
}
BENCHMARK(Hash_subscript_element_cached);

void Hash_name_element(benchmark::State& state) {
  const ObjectPathElement e(ObjectPathName(u"Controller"));
  for (auto _ : state) {
    benchmark::DoNotOptimize(hash_value(e));
  }
}
BENCHMARK(Hash_name_element);

}  // namespace
