#include "TB_FileTable.h"

#include "TB_Locked.h"

#include <map>
#include <unistd.h>
#include <utility>

namespace {

constexpr size_t MOST_FILES = 256;

struct Table {
  std::mutex mutex;
  std::map<int16_t, std::shared_ptr<TB_OpenFile>> files;
  int16_t last = 0; // reference given out
};

} // namespace

TB_OpenFile::~TB_OpenFile() {
  if (descriptor >= 0)
    close(descriptor);
}

int16_t TB_AddOpenFile(std::shared_ptr<TB_OpenFile> file) {
  const TB_Locked<Table> table;
  if (table->files.size() >= MOST_FILES)
    return 0;
  do
    table->last = static_cast<int16_t>(table->last % INT16_MAX + 1);
  while (table->files.contains(table->last));
  table->files[table->last] = std::move(file);
  return table->last;
}

std::shared_ptr<TB_OpenFile> TB_FindOpenFile(int16_t refNum) {
  const TB_Locked<Table> table;
  const auto found = table->files.find(refNum);
  return found != table->files.end() ? found->second : nullptr;
}

std::shared_ptr<TB_OpenFile> TB_RemoveOpenFile(int16_t refNum) {
  const TB_Locked<Table> table;
  auto removed = table->files.extract(refNum);
  return removed ? std::move(removed.mapped()) : nullptr;
}
