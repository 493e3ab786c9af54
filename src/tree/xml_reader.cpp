#include "tree/xml_reader.h"

#include <algorithm>

#include "tree/umlauts.h"

namespace pktaus {
namespace {

constexpr std::size_t kFewAttributes = 8;
constexpr std::string_view kDropped = "gmd:CI_ResponsibleParty";

struct Bytes {
  bool is[256]{};
  constexpr explicit Bytes(std::string_view bytes) {
    for (const char c : bytes) is[static_cast<unsigned char>(c)] = true;
  }
};
constexpr Bytes kNameStops("> \t\n/");
constexpr Bytes kAttributeStops("> \t\n/=\"");
constexpr Bytes kBrackets("[]");

bool IsSpace(int c) { return c == ' ' || c == '\t' || c == '\n'; }

std::string_view Trim(std::string_view text) {
  const auto is_space = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  return text;
}

}  // namespace

XmlFault XmlReader::ReadFile() {
  stream_->ReadUntil('<', &text_spill_);  // a byte order mark and the like
  ReadHeader();
  SkipDoctype();
  SkipHighBytes();
  while (ReadTop(Want::kMarkup) != nullptr) {
  }
  CTreeNode* root = ReadTop(Want::kElement);
  if (root != nullptr && !stream_->Failed()) {
    document_->root_ = root;
    return {};
  }
  if (stream_->Failed()) Stop(XmlFault::Kind::kNotRead);
  Blame(XmlFault::Kind::kNoElement, stream_->GetPosition());
  stream_->Seek(0);
  fault_.line = 1;
  while (stream_->GetPosition() < fault_.offset && stream_->Peek() >= 0) {
    fault_.line += stream_->Peek() == '\n' ? 1 : 0;
    stream_->Skip();
  }
  return fault_;
}

// An element that cannot be read makes those around it fail as well: the first one is where the file is wrong.
void XmlReader::Blame(XmlFault::Kind kind, std::uint64_t offset) {
  if (fault_.kind == XmlFault::Kind::kNone) fault_ = {kind, offset};
}

void XmlReader::Stop(XmlFault::Kind kind) {
  if (!stopped_) fault_ = {kind, stream_->GetPosition()};
  stopped_ = true;
}

void XmlReader::ReadHeader() {
  const std::uint64_t start = stream_->GetPosition();
  if (stream_->Accept("<?")) {
    document_->header_ = document_->MakeHeader();
    SetText(document_->header_, ReadToMark(false), true);
  } else {
    stream_->Seek(start);
  }
}

// Drops a DOCTYPE in its simple form, or a comment in its place.
void XmlReader::SkipDoctype() {
  const std::uint64_t start = stream_->GetPosition();
  std::string name = "--";
  Tag tag = Tag::kNone;
  SkipSpace();
  if (stream_->Accept("<!--")) {
    tag = Tag::kClosed;
    ReadToMark(true);
  } else if (stream_->Accept("<!") && stream_->Peek() != '[') {
    std::string_view read;
    bool has_attributes = false;
    tag = ReadTagName(&read, &has_attributes);
    name = read;
    if (name.starts_with('!') || name.starts_with('?')) tag = Tag::kNone;
    if (tag != Tag::kNone && has_attributes) tag = ReadAttributes(nullptr);
    if (tag == Tag::kOpen) stream_->ReadUntil('<', &text_spill_);
  }
  if (tag == Tag::kNone) {
    stream_->Seek(start);
    return;
  }
  // A closing tag directly behind it is used up, of whatever name. One further on must have the right name.
  const std::uint64_t behind = stream_->GetPosition();
  if (!stream_->Accept("<")) return;
  const bool directly = stream_->Peek() == '/';
  stream_->ReadUntil('/', &text_spill_);
  if (stream_->Peek() == '/') stream_->Skip();
  const bool same = stream_->ReadUntil('>', &text_spill_) == name && stream_->Peek() == '>';
  if (stream_->Peek() == '>') stream_->Skip();
  if (!same && !directly) stream_->Seek(behind);
}

void XmlReader::SkipHighBytes() {
  for (int c = stream_->Peek(); c == 0 || c >= 0x80; c = stream_->Peek()) stream_->Skip();
}

// What is wanted; null where it does not stand at the present position.
CTreeNode* XmlReader::ReadTop(Want want) {
  OpenItem(want);
  while (!stopped_) {
    if (item_.is_open) {
      const int next = stream_->Peek();
      if (next != '<' && !IsSpace(next)) {
        CloseNode();  // no children
        continue;
      }
      open_.push_back({item_});
      SkipSpace();
      OpenItem(Want::kAny);
    } else if (open_.empty()) {
      return item_.node;
    } else if (item_.node != nullptr) {
      AddItem();
      OpenItem(Want::kAny);
    } else {
      item_ = open_.back().item;
      open_.pop_back();
      CloseNode();
    }
  }
  return nullptr;
}

// Tries an element or a markup. Without a node the stream is back at the start.
void XmlReader::OpenItem(Want want) {
  item_ = {};
  item_.start = stream_->GetPosition();
  item_.used = document_->storage_->Used();
  SkipSpace();
  if (stream_->Peek() == '<') {
    stream_->Skip();
    const int c = stream_->Peek();
    if (c == '!' && want != Want::kElement) {
      stream_->Skip();
      OpenMarkup();
    } else if (c != '!' && c != '/' && c != '?' && want != Want::kMarkup) {
      OpenNamed(false);
    }
  }
  if (item_.node == nullptr) DropItem();
}

void XmlReader::OpenMarkup() {
  if (stream_->Accept("--")) {
    item_.node = document_->MakeMarkup(document_->Intern("--"));
    SetText(item_.node, ReadToMark(true), true);
  } else if (stream_->Accept("[")) {
    item_.node = document_->MakeMarkup(document_->Intern("["));
    ReadSection(item_.node);
  } else {
    OpenNamed(true);
  }
}

void XmlReader::OpenNamed(bool markup) {
  std::string_view name;
  bool has_attributes = false;
  Tag tag = ReadTagName(&name, &has_attributes);
  if (tag == Tag::kNone || (markup && !name.empty() && (name.front() == '!' || name.front() == '?'))) return;
  const NameId id = document_->Intern(name);
  if (id == kNoName) Stop(XmlFault::Kind::kName);
  item_.name = document_->NameOf(id);
  CTreeNode* node = markup ? document_->MakeMarkup(id) : document_->MakeNode(id);
  if (has_attributes) tag = ReadAttributes(node);
  if (tag == Tag::kNone) return;
  if (open_.size() >= static_cast<std::size_t>(kMaxDepth)) Stop(XmlFault::Kind::kTooDeep);
  item_.node = node;
  item_.is_open = tag == Tag::kOpen;
}

void XmlReader::AddItem() {
  if (item_.name == kDropped) return;
  OpenNode& parent = open_.back();
  parent.item.node->AddChildAfter(item_.node, parent.last_child);
  parent.last_child = item_.node;
}

// Reads value and closing tag of an open node. Without a closing tag the stream is back at its start.
void XmlReader::CloseNode() {
  item_.is_open = false;
  SetText(item_.node, stream_->ReadUntil('<', &text_spill_), true);
  const std::uint64_t text_end = stream_->GetPosition();
  if (ReadEndTag(item_.name)) return;
  Blame(XmlFault::Kind::kNotClosed, text_end);
  DropItem();
}

// Puts stream and memory back to where the item began. A file that makes this cost too much ends the load.
void XmlReader::DropItem() {
  item_.node = nullptr;
  document_->storage_->GoBack(item_.used);
  furthest_ = std::max(furthest_, stream_->GetPosition());
  if (stream_->ByteReads() > kMostReads * furthest_ + kFreeReads) Stop(XmlFault::Kind::kTooOften);
  stream_->Seek(item_.start);
}

// Reads a tag's name and what ends it. The name is valid until the next read.
XmlReader::Tag XmlReader::ReadTagName(std::string_view* name, bool* has_attributes) {
  *name = stream_->ReadUntil(kNameStops.is, &name_spill_);
  if (stream_->Peek() == '/') {
    name_ = *name;
    while (stream_->Peek() == '/') {
      stream_->SkipWhile([](int c) { return c == '/'; });
      if (stream_->Peek() == '>') {
        stream_->Skip();
        *name = name_;
        return Tag::kClosed;
      }
      name_ += stream_->ReadUntil(kNameStops.is, &name_spill_);
    }
    *name = name_;
  }
  const int stop = stream_->Peek();
  if (stop == '>') {
    stream_->Skip();
    return Tag::kOpen;
  }
  if (stop < 0 || name->empty()) return Tag::kNone;
  stream_->Skip();
  *has_attributes = true;
  return Tag::kOpen;
}

// Without a node they are read over.
XmlReader::Tag XmlReader::ReadAttributes(CTreeNode* node) {
  attribute_count_ = 0;
  last_attribute_ = nullptr;
  attributes_.clear();
  attribute_name_.clear();
  attribute_value_.clear();
  std::string* target = &attribute_name_;
  for (;;) {
    target->append(stream_->ReadUntil(kAttributeStops.is, &text_spill_));
    const int c = stream_->Peek();
    if (c < 0) return Tag::kNone;
    stream_->Skip();
    if (c == '=') {
      target = &attribute_value_;
    } else if (c == '"') {
      target->append(stream_->ReadUntil('"', &text_spill_));
      if (stream_->Peek() < 0) return Tag::kNone;
      stream_->Skip();
    } else if (c == '>' || (c == '/' && stream_->Peek() == '>')) {
      if (!attribute_name_.empty()) SetAttribute(node);
      if (c == '/') stream_->Skip();
      return c == '/' ? Tag::kClosed : Tag::kOpen;
    } else if (c == '/') {
      target->push_back('/');
    } else {
      SetAttribute(node);
      attribute_name_.clear();
      attribute_value_.clear();
      target = &attribute_name_;
    }
  }
}

void XmlReader::SetAttribute(CTreeNode* node) {
  if (node == nullptr) return;
  const NameId id = document_->Intern(attribute_name_);
  if (id == kNoName) {
    Stop(XmlFault::Kind::kName);
    return;
  }
  CTreeAttribute* known = nullptr;
  if (attribute_count_ <= kFewAttributes) {
    known = node->first_attribute_;
    while (known != nullptr && known->name != id) known = known->next;
  } else if (const auto found = attributes_.find(id); found != attributes_.end()) {
    known = found->second;
  }
  if (known != nullptr) {
    known->value = document_->KeepText(attribute_value_);
    return;
  }
  CTreeAttribute* made = document_->MakeAttribute(id, attribute_value_);
  (last_attribute_ == nullptr ? node->first_attribute_ : last_attribute_->next) = made;
  last_attribute_ = made;
  if (++attribute_count_ > kFewAttributes) {
    if (attributes_.empty()) {
      for (CTreeAttribute* a = node->first_attribute_; a != nullptr; a = a->next) attributes_[a->name] = a;
    }
    attributes_[id] = made;
  }
}

void XmlReader::SkipSpace() { stream_->SkipWhile(IsSpace); }

// The closing tag may stand behind anything that holds no '/'.
bool XmlReader::ReadEndTag(std::string_view name) {
  if (!stream_->Accept("<")) return false;
  stream_->ReadUntil('/', &text_spill_);
  if (stream_->Peek() < 0) return false;
  stream_->Skip();
  return stream_->Accept(name) && stream_->Accept(">");
}

// The text up to "?>" or "/>", or with `comment` up to "-->" as well, or up to the end of the file.
std::string_view XmlReader::ReadToMark(bool comment) {
  mark_text_.clear();
  for (;;) {
    mark_text_.append(stream_->ReadUntil('>', &text_spill_));
    if (stream_->Peek() < 0) return mark_text_;
    stream_->Skip();
    const std::string_view text = mark_text_;
    if (text.ends_with('/') || text.ends_with('?')) return text.substr(0, text.size() - 1);
    if (comment && text.ends_with("--")) return text.substr(0, text.size() - 2);
    mark_text_.push_back('>');
  }
}

// The text up to the bracket that closes the section, and one byte behind it, or up to the end of the file.
void XmlReader::ReadSection(CTreeNode* node) {
  mark_text_.clear();
  for (int depth = 1;;) {
    mark_text_.append(stream_->ReadUntil(kBrackets.is, &text_spill_));
    const int c = stream_->Peek();
    if (c >= 0) stream_->Skip();
    if (c == '[') ++depth;
    if (c < 0 || (c == ']' && --depth == 0)) {
      SetText(node, mark_text_, c < 0);
      break;
    }
    mark_text_.push_back(static_cast<char>(c));
  }
  if (stream_->Peek() >= 0) stream_->Skip();
}

void XmlReader::SetText(CTreeNode* node, std::string_view text, bool convert) {
  if (node->kind_ == CTreeNode::Kind::kElement) text = Trim(text);
  if (text.empty()) return;
  node->value_ = {text.size(), &document_->storage_->texts};
  if (convert) {
    node->value_.Cut(Utf8ToAnsi(text, node->value_.data()));
  } else {
    text.copy(node->value_.data(), text.size());
  }
}

void CTreeDocument::ReadXml(TextStream* stream) {
  ForgetNodes();
  xml_fault_ = XmlReader(this, stream).ReadFile();
}

}  // namespace pktaus
