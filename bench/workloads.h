// Deterministic inputs for the benchmarks. Every generator draws from its own
// SplitMix64 stream with a fixed seed, so every run on every machine measures
// the same texts.

#ifndef UI_CORE_BENCH_WORKLOADS_H
#define UI_CORE_BENCH_WORKLOADS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// A small, fast, fully specified random stream (std::uniform_int_distribution
/// is not: its results differ between standard libraries).
class SplitMix64 {
 public:
  explicit SplitMix64(std::uint64_t seed) noexcept : state_(seed) {}
  std::uint64_t next() noexcept {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }
  /// Uniform in [lo, hi].
  std::size_t between(std::size_t lo, std::size_t hi) noexcept {
    return lo + static_cast<std::size_t>(next() % (hi - lo + 1));
  }
  /// True with probability percent / 100.
  bool percent(unsigned p) noexcept { return next() % 100 < p; }

 private:
  std::uint64_t state_;
};

/// `count` node path texts of 2 to 8 identifiers of 3 to 20 code units each;
/// 5 % of the identifiers hold an escaped separator "//".
std::vector<std::u16string> node_path_texts(std::size_t count = 100000);

/// One node path text of exactly `ids` identifiers (for the scaling runs).
std::u16string long_node_path_text(std::size_t ids);

/// `count` object path texts of 2 to 8 elements: names of 3 to 20 code units
/// (5 % with an escaped "/"), and after a name now and then (one element in
/// four) a subscript of 1 to 3 values ("//2, 14").
std::vector<std::u16string> object_path_texts(std::size_t count = 100000);

/// One object path text of exactly `elements` elements.
std::u16string long_object_path_text(std::size_t elements);

/// The same object path text as a JSON Pointer: each name one reference token
/// ("/" written "~1", "~" written "~0"), each subscript value one 0-based
/// array index token. UTF-8.
std::string json_pointer_text(const std::u16string& object_path_text);

/// 1 MiB of UTF-16 prose (512 Ki code units) with about one code unit in 200
/// that XML escaping replaces.
std::u16string xml_prose();

/// 1 MiB of UTF-16 markup with about one code unit in 8 that XML escaping
/// replaces.
std::u16string xml_markup();

/// UTF-16 to UTF-8 (the texts here hold no surrogates).
std::string to_utf8(const std::u16string& text);

/// `per_iteration` units of work times the iterations a benchmark ran, for
/// SetItemsProcessed and SetBytesProcessed.
[[nodiscard]] inline std::int64_t times_iterations(std::int64_t iterations,
                                                   std::size_t per_iteration) {
  return iterations * static_cast<std::int64_t>(per_iteration);
}

}  // namespace bench

#endif  // UI_CORE_BENCH_WORKLOADS_H
