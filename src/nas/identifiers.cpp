#include "nas/identifiers.h"

#include <cstdio>

#include "platform/clock.h"
#include "tree/document.h"

namespace pktaus {
namespace {

constexpr const char* kOtherReason = "https://registry.gdi-de.org/codelist/de.adv-online.gid/AA_Anlassart/9999";

}  // namespace

const std::string id_prefix = "DE_";
std::int32_t id_counter = 1;
std::int32_t point_counter = 1;

std::string NewObjectId() {
  constexpr std::size_t kDigits = 13;
  const std::string digits = ToBase36(id_counter++);
  const std::size_t fill = digits.size() < kDigits ? kDigits - digits.size() : 0;
  return id_prefix + std::string(fill, '0') + digits;
}

std::string ToBase36(std::int32_t number) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[number % 36]);
    number /= 36;
  } while (number > 0);
  return text;
}

std::string NowStamp() {
  const platform::Clock& clock = platform::CurrentClock();
  const platform::CivilTime t = clock.ToLocal(clock.Now());
  char text[80];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", t.year, t.month, t.day, t.hour, t.minute,
                t.second);
  return text;
}

std::string DayText(std::int64_t seconds) {
  const platform::CivilTime t = platform::CurrentClock().ToLocal(seconds);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", t.year, t.month, t.day);
  return text;
}

CTreeNode* NewAnlassNode(CTreeDocument* document, std::string_view land) {
  if (land != kThuringia) return document->NewTextNode("anlass", "000000");
  CTreeNode* node = document->NewNode("anlass");
  node->SetAttribute("xlink:title", "Sonstiges");
  node->SetAttribute("xlink:href", kOtherReason);
  return node;
}

}  // namespace pktaus
