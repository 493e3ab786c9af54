#include "fuzz/reference_tree.h"

#include <array>

namespace reference {
namespace {

constexpr int kEnd = -1;

bool IsWhite(int c) { return c == ' ' || c == '\t' || c == '\n'; }

/// A text with CR LF read as LF.
class Text {
 public:
  explicit Text(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (bytes.substr(i, 2) != "\r\n") text_ += bytes[i];
    }
  }
  int Get() { return position < text_.size() ? static_cast<unsigned char>(text_[position++]) : kEnd; }
  void Unget(int c) { position -= c == kEnd ? 0 : 1; }
  /// The first byte that is not white, read.
  int SkipWhite() {
    int c = Get();
    while (IsWhite(c)) c = Get();
    return c;
  }
  bool Take(std::string_view mark) {
    const bool there = text_.compare(position, mark.size(), mark) == 0;
    if (there) position += mark.size();
    return there;
  }
  /// A line with its LF, at most `most` bytes of it, as a text that a NUL ends; false at the end.
  bool Line(std::size_t most, std::string* line) {
    line->clear();
    for (int c = 0; line->size() < most && c != '\n' && (c = Get()) != kEnd;) *line += static_cast<char>(c);
    const bool read = !line->empty();
    *line = line->c_str();
    return read;
  }

  std::size_t position = 0;

 private:
  std::string text_;
};

std::string Trim(const std::string& text, const char* front, const char* back) {
  const std::size_t first = text.find_first_not_of(front);
  if (first == std::string::npos) return "";
  const std::size_t last = text.find_last_not_of(back);
  return last == std::string::npos || last < first ? "" : text.substr(first, last - first + 1);
}

enum class Tag { kFailed, kNameFollows, kAttributesFollow, kSelfClosed, kOpen };

Tag Closed(Node* node, const std::string& name) {
  node->name = name;
  return Tag::kSelfClosed;
}

/// The "<" and what decides the kind of tag.
Tag ReadTagStart(Node* node, Text* in, const std::string& mark) {
  if (in->SkipWhite() != '<') return Tag::kFailed;
  int c = in->Get();
  if (mark.empty()) {
    in->Unget(c);
    return c == '/' || c == '?' || c == '!' ? Tag::kFailed : Tag::kNameFollows;
  }
  if (c != mark[0]) return Tag::kFailed;
  if (c == '?') return Closed(node, "?");
  const std::size_t behind = in->position;
  c = in->Get();
  if (mark == "![") {
    if (c == '[') return Closed(node, "[");
  } else {
    if (c == '-' && in->Get() == '-') return Closed(node, "--");
    if (c == '[') return Tag::kFailed;
  }
  in->position = behind;
  return Tag::kNameFollows;
}

Tag ReadTagName(Node* node, Text* in) {
  std::string name;
  for (;;) {
    const int c = in->Get();
    if (c == kEnd || name[0] == '!' || name[0] == '?') return Tag::kFailed;
    if (c == '/') {
      if (!in->Take(">")) continue;
      in->position -= 2;
      return Closed(node, name);
    }
    if (IsWhite(c) && name.empty()) return Tag::kFailed;
    if (c == '>') in->Unget(c);
    if (c == '>' || IsWhite(c)) break;
    name += static_cast<char>(c);
  }
  node->name = name;
  return Tag::kAttributesFollow;
}

Tag ReadAttributes(Node* node, Text* in) {
  std::string name;
  std::string value;
  std::string* target = &name;
  bool quoted = false;
  for (;;) {
    const int c = in->Get();
    if (c == kEnd) return Tag::kFailed;
    const bool slash = !quoted && c == '/' && in->Take(">");
    if (slash || (!quoted && c == '>')) {
      if (slash) in->position -= 2;
      if (!name.empty()) node->SetAttribute(name, value);
      return slash ? Tag::kSelfClosed : Tag::kOpen;
    }
    if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && c == '=') {
      target = &value;
    } else if (!quoted && IsWhite(c)) {
      node->SetAttribute(name, value);
      name.clear();
      value.clear();
      target = &name;
    } else {
      *target += static_cast<char>(c);
    }
  }
}

/// What failed leaves the text where it began.
bool ReadStartTag(Node* node, Text* in, bool* self_closed, const std::string& mark) {
  const std::size_t start = in->position;
  Tag tag = ReadTagStart(node, in, mark);
  if (tag == Tag::kNameFollows) tag = ReadTagName(node, in);
  if (tag == Tag::kAttributesFollow) tag = ReadAttributes(node, in);
  if (tag == Tag::kFailed) in->position = start;
  *self_closed = tag == Tag::kSelfClosed;
  return tag != Tag::kFailed;
}

void ReadText(Node* node, Text* in, bool self_closed) {
  for (;;) {
    if (self_closed && (in->Take("/>") || in->Take("?>") || (node->name == "--" && in->Take("-->")))) break;
    const int c = in->Get();
    if (c == kEnd) break;
    if (!self_closed && c == '<') {
      in->Unget(c);
      break;
    }
    node->value += static_cast<char>(c);
  }
  node->value = Utf8ToAnsi(node->value);
}

/// Looks for the next "/" and compares the name behind it. A failure leaves the text where it began, but for a clean
/// "</" with another name or without an end.
bool ReadEndTag(const Node& node, Text* in) {
  const std::size_t start = in->position;
  int c = in->Get();
  bool clean = c == '<' || c == kEnd;
  if (c == '<') {
    while ((c = in->Get()) != '/' && c != kEnd) clean = false;
    std::string name;
    while (c != kEnd && (c = in->Get()) != '>') name += static_cast<char>(c);
    if (c == '>' && name == node.name) return true;
  }
  if (!clean) in->position = start;
  return false;
}

std::unique_ptr<Node> ReadElement(Text* in);
std::unique_ptr<Node> ReadMarkup(Text* in);

void ReadChildren(Node* node, Text* in) {
  in->Unget(in->SkipWhite());
  for (;;) {
    std::unique_ptr<Node> child = ReadElement(in);
    if (!child) child = ReadMarkup(in);
    if (!child) return;
    if (child->name != "gmd:CI_ResponsibleParty") node->children.push_back(std::move(child));
  }
}

std::unique_ptr<Node> ReadElement(Text* in) {
  auto node = std::make_unique<Node>();
  const std::size_t start = in->position;
  bool self_closed = false;
  if (!ReadStartTag(node.get(), in, &self_closed, "")) return nullptr;
  if (!self_closed) ReadChildren(node.get(), in);
  ReadText(node.get(), in, self_closed);
  node->value = Trim(node->value, " \t\n\r\f\v", " \t\n\r\f\v");
  if (self_closed || ReadEndTag(*node, in)) return node;
  in->position = start;
  return nullptr;
}

std::unique_ptr<Node> ReadMarkup(Text* in) {
  auto node = std::make_unique<Node>();
  node->kind = Node::kMarkup;
  const std::size_t start = in->position;
  bool self_closed = false;
  if (!ReadStartTag(node.get(), in, &self_closed, "!--")) {
    if (!ReadStartTag(node.get(), in, &self_closed, "![")) return nullptr;
    int depth = 1;
    for (int c = in->Get(); c != kEnd; c = in->Get()) {
      depth += c == '[' ? 1 : c == ']' ? -1 : 0;
      if (depth == 0) {
        in->Get();
        return node;
      }
      node->value += static_cast<char>(c);
    }
  }
  if (!self_closed) ReadChildren(node.get(), in);
  ReadText(node.get(), in, self_closed);
  if (self_closed || ReadEndTag(*node, in)) return node;
  in->position = start;
  return nullptr;
}

std::unique_ptr<Node> ReadHeader(Text* in) {
  auto node = std::make_unique<Node>();
  node->kind = Node::kHeader;
  bool self_closed = false;
  if (!ReadStartTag(node.get(), in, &self_closed, "?")) return nullptr;
  ReadText(node.get(), in, true);
  return node;
}

void SkipDoctype(Text* in) {
  Node node;
  bool self_closed = false;
  if (!ReadStartTag(&node, in, &self_closed, "!")) return;
  ReadText(&node, in, self_closed);
  ReadEndTag(node, in);
}

void SkipHighBytes(Text* in) {
  int c = in->Get();
  while (c == 0 || c >= 0x80) c = in->Get();
  in->Unget(c);
}

void WriteNode(const Node& node, std::size_t depth, std::string* out) {
  if (node.kind == Node::kHeader) {
    *out += "<" + node.name + node.value + node.name + ">\n";
    return;
  }
  if (node.kind == Node::kMarkup) {
    *out += "<!" + node.name + node.value + (node.name == "[" ? "]" : node.name) + ">\n";
    return;
  }
  *out += "<" + node.name;
  for (const auto& [name, value] : node.attributes) {
    if (!name.empty()) *out += " " + name + "=\"" + value + "\"";
  }
  *out += ">";
  for (const auto& child : node.children) {
    *out += "\n" + std::string(depth, '\t');
    WriteNode(*child, depth + 1, out);
  }
  *out += AnsiToUtf8(node.value) + "</" + node.name + ">";
}

/// The form on disk, where a line ends in CR LF.
std::string WithCrLf(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

struct Letter {
  char ansi;
  char second;  // behind 0xC3 in UTF-8
};
constexpr std::array<Letter, 7> kLetters = {{{'\xC4', '\x84'},
                                             {'\xD6', '\x96'},
                                             {'\xDC', '\x9C'},
                                             {'\xDF', '\x9F'},
                                             {'\xE4', '\xA4'},
                                             {'\xF6', '\xB6'},
                                             {'\xFC', '\xBC'}}};

std::string TrimIni(const std::string& text) { return Trim(text, " \t", " \t\n\r"); }

bool IsQuote(char c) { return c == '\'' || c == '"'; }

std::string StripQuotes(std::string text) {
  if (!text.empty() && IsQuote(text.front())) text.erase(0, 1);
  if (!text.empty() && IsQuote(text.back())) text.pop_back();
  return text;
}

std::string CutComment(const std::string& value, std::size_t from) {
  return from == std::string::npos ? value : TrimIni(value.substr(0, value.find('#', from)));
}

/// The value as the tree has it; `ref` gets how it was quoted.
std::string IniValue(const std::string& text, std::string* ref) {
  std::string value = TrimIni(text);
  const char first = value.empty() ? ' ' : value.front();
  if (!IsQuote(first)) {
    value = CutComment(value, 0);
    *ref = value.find_first_of("'\"") == std::string::npos ? "0" : "3";
    return value;
  }
  const std::size_t second = value.find('"', 1);
  value = CutComment(value, first == '\'' ? 0 : second);
  std::size_t quotes = 0;
  for (const char c : value) quotes += c == first;
  if (value.back() != first || quotes > 2) {
    *ref = "3";
    return value;
  }
  *ref = first == '\'' ? "1" : "2";
  return StripQuotes(value);
}

std::unique_ptr<Node> Named(const std::string& name) {
  auto node = std::make_unique<Node>();
  node->name = name;
  return node;
}

std::unique_ptr<Node> ReadIniSection(Text* in, bool free_keys) {
  constexpr std::size_t kMost = 999;
  std::string line;
  in->Line(kMost, &line);
  const std::size_t close = line.find(']');
  if (line[0] != '[' || close == std::string::npos) return nullptr;
  auto section = Named(line.substr(1, close - 1));
  section->children.push_back(Named("FREEDATA"));
  for (;;) {
    const std::size_t before = in->position;
    if (!in->Line(kMost, &line)) return section;
    if (line[0] == '[') {
      in->position = before;
      return section;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos || line.find('#') < equals) continue;
    const bool free = line[0] == '"' || (free_keys && line[0] == '\'');
    std::string name = StripQuotes(TrimIni(line.substr(0, equals)));
    for (char& c : name) {
      if (!free && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    auto key = Named(name);
    std::string ref;
    key->value = IniValue(line.substr(equals + 1), &ref);
    key->SetAttribute("REF", ref);
    (free ? section->children[0] : section)->children.push_back(std::move(key));
  }
}

}  // namespace

void Node::SetAttribute(const std::string& attribute, const std::string& text) {
  for (auto& [known, known_text] : attributes) {
    if (known == attribute) {
      known_text = text;
      return;
    }
  }
  attributes.emplace_back(attribute, text);
}

std::string Node::Attribute(const std::string& attribute) const {
  for (const auto& [known, text] : attributes) {
    if (known == attribute) return text;
  }
  return "";
}

Document ReadXml(std::string_view bytes) {
  Text in(bytes);
  int c = in.Get();
  while (c != '<' && c != kEnd) c = in.Get();
  in.Unget(c);
  Document document;
  document.header = ReadHeader(&in);
  SkipDoctype(&in);
  SkipHighBytes(&in);
  while (ReadMarkup(&in)) {
  }
  document.root = ReadElement(&in);
  return document;
}

std::string WriteXml(const Document& document) {
  std::string out;
  if (document.header) WriteNode(*document.header, 0, &out);
  if (document.root) WriteNode(*document.root, 0, &out);
  return WithCrLf(out);
}

Document ReadIni(std::string_view bytes, bool free_keys) {
  Text in(bytes);
  Document document;
  document.root = Named("INI");
  std::string line;
  for (std::size_t before = 0; in.Line(1999, &line); before = in.position) {
    if (line[0] != '[') continue;
    in.position = before;
    if (auto section = ReadIniSection(&in, free_keys)) document.root->children.push_back(std::move(section));
  }
  return document;
}

std::string WriteIni(const Document& document) {
  std::string out;
  for (const auto& section : document.root->children) {
    out += "[" + section->name + "]\n";
    for (const auto& key : section->children) {
      if (key->name == "FREEDATA") continue;
      const std::string ref = key->Attribute("REF");
      const std::string quote = ref == "0" ? "" : ref == "1" ? "'" : "\"";
      out += key->name + " = " + quote + key->value + quote + "\n";
    }
  }
  return WithCrLf(out);
}

std::string Utf8ToAnsi(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\xC3' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char second = text[++i];
    std::string letter = {'\xC3', second};  // no letter of the seven: both bytes stay
    for (const Letter& known : kLetters) {
      if (known.second == second) letter = known.ansi;
    }
    out += letter;
  }
  return out;
}

std::string AnsiToUtf8(const std::string& text) {
  std::string out;
  for (const char c : text) {
    std::string bytes(1, c);
    for (const Letter& known : kLetters) {
      if (known.ansi == c) bytes = {'\xC3', known.second};
    }
    out += bytes;
  }
  return out;
}

bool NeedsStaging(std::string_view bytes, bool scan_all) {
  bool saw_cr = false;
  for (const char c : bytes) {
    if (c == '\n' && !saw_cr) return true;
    if (c == '\n' && !scan_all) return false;
    if (c != '\n') saw_cr = c == '\r';
  }
  return false;
}

std::string Staged(std::string_view bytes) {
  std::string out;
  char before = 0;
  for (const char c : bytes) {
    if (c == '\n' && before != '\r') out += '\r';
    out += c;
    before = c;
  }
  return out;
}

int Bucket(std::string_view name) {
  int sum = 0;
  int weight = 1;
  for (const char c : name) {
    sum = (sum + static_cast<signed char>(c) * weight) % 32767;
    weight = (weight + 1) % 100;
  }
  return sum % 4711;
}

}  // namespace reference
