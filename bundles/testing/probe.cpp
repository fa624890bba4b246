#include "probe.h"

#include <map>
#include <mutex>
#include <utility>

namespace bundle_probe {
namespace {

std::mutex mutex;
std::map<std::pair<Event, std::string>, int> counts;  // guarded by mutex

}  // namespace

void record(Event event, std::string_view bundle) {
  std::lock_guard lock(mutex);
  ++counts[{event, std::string(bundle)}];
}

int count(Event event, std::string_view bundle) {
  std::lock_guard lock(mutex);
  const auto it = counts.find({event, std::string(bundle)});
  return it == counts.end() ? 0 : it->second;
}

}  // namespace bundle_probe
