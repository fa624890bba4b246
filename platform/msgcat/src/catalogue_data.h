// The catalogue data files as built into the library (private to msgcat).

#ifndef MSGCAT_SRC_CATALOGUE_DATA_H
#define MSGCAT_SRC_CATALOGUE_DATA_H

#include <string_view>
#include <vector>

namespace msgcat::detail {

struct DataFile {
  std::string_view name;  // "<language>/<file>", for error messages
  std::string_view text;  // UTF-8 contents
};

const std::vector<DataFile>& data_files();

}  // namespace msgcat::detail

#endif  // MSGCAT_SRC_CATALOGUE_DATA_H
