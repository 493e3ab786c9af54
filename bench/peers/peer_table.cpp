// peer_table FILE: reads a point table once from front to back and parses its numbers, with nothing around it.
#include <charconv>
#include <cstdio>
#include <vector>

namespace {

double Number(const char* text, int width) {
  const char* end = text + width;
  while (text != end && *text == ' ') ++text;
  double value = 0;
  std::from_chars(text, end, value);
  return value;
}

}  // namespace

int main(int argc, char** argv) {
  std::FILE* file = argc == 2 ? std::fopen(argv[1], "rb") : nullptr;
  unsigned char header[32];
  if (file == nullptr || std::fread(header, 1, sizeof header, file) != sizeof header) return 1;
  const unsigned start = header[8] + 256U * header[9];
  const unsigned size = header[10] + 256U * header[11];
  std::fseek(file, static_cast<long>(start), SEEK_SET);
  std::vector<char> block(std::size_t{size} * 1000);
  double east = 0;
  double north = 0;
  double elev = 0;
  long records = 0;
  while (std::size_t read = std::fread(block.data(), size, 1000, file)) {
    for (std::size_t i = 0; i < read; ++i) {
      const char* record = &block[i * size];
      if (*record != ' ') continue;
      east += Number(record + 16, 14);
      north += Number(record + 30, 14);
      elev += Number(record + 44, 10);
      ++records;
    }
  }
  std::fclose(file);
  std::printf("%ld records, %.4f %.4f %.5f\n", records, east, north, elev);
  return 0;
}
