// A point table read once from front to back, with nothing around it.
//   peer_table walk FILE          parses the coordinates of all records
//   peer_table lookup FILE NAMES  finds the records of the point numbers in a flat hash of all
//   peer_table orders FILE        collects the orders by hash, labels the points of the largest
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

std::string_view Trimmed(const char* text, std::size_t width) {
  while (width > 0 && text[width - 1] == ' ') --width;
  return {text, width};
}

double Number(const char* text, std::size_t width) {
  const char* end = text + width;
  while (text != end && *text == ' ') ++text;
  double value = 0;
  std::from_chars(text, end, value);
  return value;
}

struct Field {
  std::size_t at = 0;
  std::size_t width = 0;
};

class Table {
 public:
  explicit Table(const char* path) : file_(std::fopen(path, "rb")) {
    unsigned char header[32];
    if (file_ == nullptr || std::fread(header, 1, sizeof header, file_) != sizeof header) std::exit(1);
    const std::size_t start = header[8] + 256U * header[9];
    size_ = header[10] + 256U * header[11];
    Field field{1, 0};
    unsigned char column[32];
    for (std::size_t at = 32; at + 32 < start && std::fread(column, 1, sizeof column, file_) == sizeof column;
         at += 32) {
      field.width = column[16];
      fields_[std::string(reinterpret_cast<const char*>(column), strnlen(reinterpret_cast<const char*>(column), 11))] =
          field;
      field.at += field.width;
    }
    std::fseek(file_, static_cast<long>(start), SEEK_SET);
  }

  Field field(const char* name) { return fields_[name]; }

  /// Calls `visit` with each record that is not deleted.
  template <typename Visit>
  void Walk(Visit visit) {
    std::vector<char> block(size_ * 1000);
    while (const std::size_t read = std::fread(block.data(), size_, 1000, file_)) {
      for (std::size_t i = 0; i < read; ++i) {
        if (block[i * size_] == ' ') visit(&block[i * size_]);
      }
    }
  }

 private:
  std::FILE* file_;
  std::size_t size_ = 0;
  std::unordered_map<std::string, Field> fields_;
};

struct Point {
  char number[16];
  double east, north, elev;
};

Point PointOf(const char* record) {
  Point point{{}, Number(record + 16, 14), Number(record + 30, 14), Number(record + 44, 10)};
  const std::string_view number = Trimmed(record + 1, 15);
  std::memcpy(point.number, number.data(), number.size());
  return point;
}

int Walk(const char* path) {
  double sum = 0;
  long records = 0;
  Table(path).Walk([&](const char* record) {
    const Point point = PointOf(record);
    sum += point.east + point.north + point.elev;
    ++records;
  });
  std::printf("%ld records, %.4f\n", records, sum);
  return 0;
}

int Lookup(const char* path, const char* names) {
  std::vector<Point> points;
  Table(path).Walk([&](const char* record) { points.push_back(PointOf(record)); });
  // Open addressing; 0 is a free place.
  std::size_t mask = 1;
  while (mask < 2 * points.size()) mask *= 2;
  std::vector<unsigned> places(mask--);
  const auto place_of = [&](std::string_view number) {
    std::size_t at = std::hash<std::string_view>{}(number)&mask;
    while (places[at] != 0 && number != points[places[at] - 1].number) at = (at + 1) & mask;
    return at;
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    unsigned& place = places[place_of(points[i].number)];
    if (place == 0) place = static_cast<unsigned>(i + 1);
  }
  std::ifstream file(names);
  long found = 0;
  double sum = 0;
  for (std::string name; std::getline(file, name);) {
    const unsigned place = places[place_of(name)];
    if (place == 0) continue;
    ++found;
    sum += points[place - 1].east;
  }
  std::printf("%ld found, east %.3f\n", found, sum);
  return 0;
}

int Orders(const char* path) {
  Table table(path);
  const Field auftrag = table.field("NE_AUFTRAG"), antrag = table.field("NE_ANTRAGN"), pkn = table.field("NE_PKN"),
              aktion = table.field("NE_AKTION");
  struct Entry {
    Point point;
    std::string label;
  };
  std::unordered_map<std::string, std::vector<Entry>> orders;
  table.Walk([&](const char* record) {
    const std::string_view order = Trimmed(record + auftrag.at, auftrag.width);
    if (order.empty() || Trimmed(record + antrag.at, antrag.width).empty()) return;
    const char* const kActions[] = {"Neupunkt ", "ersetzen ", "Loeschen "};
    Entry entry{PointOf(record), kActions[static_cast<int>(Number(record + aktion.at, aktion.width))]};
    entry.label.append(" ").append(Trimmed(record + pkn.at, pkn.width)).append(" - :").append(entry.point.number);
    orders[std::string(order)].push_back(std::move(entry));
  });
  std::size_t largest = 0;
  for (const auto& [order, entries] : orders) largest = std::max(largest, entries.size());
  std::printf("%zu of %zu orders\n", largest, orders.size());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view work = argc > 2 ? argv[1] : "";
  if (work == "walk") return Walk(argv[2]);
  if (work == "orders") return Orders(argv[2]);
  if (work == "lookup" && argc > 3) return Lookup(argv[2], argv[3]);
  return 2;
}
