// A second, deliberately naive reader and writer of the tree's two forms: whole texts in memory, every construct tried
// and rewound, plain recursion, exponential where the rules are. The real ones are compared with it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reference {

struct Node {
  enum Kind { kElement, kHeader, kMarkup };

  Kind kind = kElement;
  std::string name;
  std::string value;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<std::unique_ptr<Node>> children;

  void SetAttribute(const std::string& attribute, const std::string& text);
  std::string Attribute(const std::string& attribute) const;
};

struct Document {
  std::unique_ptr<Node> header;
  std::unique_ptr<Node> root;
};

/// The bytes of a file to a tree and back.
Document ReadXml(std::string_view bytes);
std::string WriteXml(const Document& document);
Document ReadIni(std::string_view bytes, bool free_keys);
std::string WriteIni(const Document& document);

std::string Utf8ToAnsi(const std::string& text);
std::string AnsiToUtf8(const std::string& text);

bool NeedsStaging(std::string_view bytes, bool scan_all);
std::string Staged(std::string_view bytes);

/// The bucket of a name of ASCII bytes.
int Bucket(std::string_view name);

}  // namespace reference
