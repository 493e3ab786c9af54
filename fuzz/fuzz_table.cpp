// Laws of the point table file, whatever its bytes are: a table that is refused stays byte for byte; one that is
// accepted keeps every live record and every field, and a second run changes nothing.
#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "store/schema.h"
#include "tests/support/faulty_files.h"

namespace {

void Check(bool holds, const char* law) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", law);
  abort();
}

// Thousands of small saves need not reach the disk.
class UnsyncedFiles : public support::FaultyFiles {
 public:
  UnsyncedFiles() : FaultyFiles([](int, const std::string&) { return 0; }) {}
  bool Sync(int) override { return true; }
  bool SyncFolder(const std::string&) override { return true; }
};

// A folder of its own for the table, gone at the end.
class TableFolder {
 public:
  TableFolder() { Check(mkdtemp(folder_) != nullptr, "a folder for the table"); }
  ~TableFolder() { std::filesystem::remove_all(folder_); }
  TableFolder(const TableFolder&) = delete;
  TableFolder& operator=(const TableFolder&) = delete;
  std::string path() const { return std::string(folder_) + "/punkte.dbf"; }

 private:
  char folder_[26] = "/tmp/pktaus_fuzz_XXXXXX";
};

std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A table as its header tells, read again in the plainest way.
struct Table {
  std::vector<std::string> fields;  // descriptors without name
  std::vector<std::string> records;
  std::size_t end = 0;  // of the last record

  explicit Table(std::string_view bytes) {
    const auto number = [&](std::size_t at) {
      return static_cast<unsigned char>(bytes[at]) + 256U * static_cast<unsigned char>(bytes[at + 1]);
    };
    for (std::size_t at = 32; bytes[at] != '\r'; at += 32) {
      fields.push_back(std::string{bytes[at + 11], bytes[at + 16], bytes[at + 17]});
    }
    end = number(8);
    const std::size_t size = number(10);
    for (; end + size <= bytes.size() && (bytes[end] == ' ' || bytes[end] == '*'); end += size) {
      if (bytes[end] == ' ') records.emplace_back(bytes.substr(end, size));
    }
  }
};

bool Extend(const std::string& path) {
  try {
    static_cast<void>(pktaus::schema_extend(path.c_str()));
    return true;
  } catch (const CException& failure) {
    Check(failure.ErrorText().find("punkte.dbf") != std::string::npos, "the failure names the file");
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UnsyncedFiles files;
  static const TableFolder folder;
  const std::string path = folder.path();
  const std::string before(reinterpret_cast<const char*>(data), size);
  std::ofstream(path, std::ios::binary) << before;

  const bool accepted = Extend(path);
  const std::string after = Bytes(path);
  if (!accepted) {
    Check(after == before, "a refused table is untouched");
    return 0;
  }
  const Table in(before);
  const Table out(after);
  Check(out.end + 1 == after.size() && after.back() == '\x1a', "one end mark, behind the records");
  Check(in.fields.size() <= out.fields.size() && std::equal(in.fields.begin(), in.fields.end(), out.fields.begin()),
        "fields keep place, type, width and decimals");
  Check(in.records.size() == out.records.size(), "as many live records");
  for (std::size_t i = 0; i < in.records.size(); ++i) {
    const std::string& record = out.records[i];
    Check(record.starts_with(in.records[i]), "bytes of a record are kept");
    Check(record.find_first_not_of(' ', in.records[i].size()) == std::string::npos, "added columns are blank");
  }
  Check(Extend(path) && Bytes(path) == after, "a second run changes nothing");
  return 0;
}
