#include "tree/xml_reader.h"

#include <cstring>

#include "tree/umlauts.h"

namespace pktaus {
namespace {

constexpr std::uint64_t kNever = UINT64_MAX;
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

void XmlReader::ReadFile() {
  stream_->ReadUntil('<', &text_spill_);  // a byte order mark and the like
  ReadHeader();
  SkipDoctype();
  SkipHighBytes();
  while (ReadTop(Want::kMarkup) != nullptr) {
  }
  CTreeNode* root = ReadTop(Want::kElement);
  if (stopped_) root = nullptr;
  if (root != nullptr) {
    document_->root_ = root;
    FillLacks();
  }
  if (stopped_ || stream_->Failed()) document_->root_ = nullptr;
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
    CTreeNode* node = document_->MakeNode(document_->Intern(name));
    if (tag != Tag::kNone && has_attributes) tag = ReadAttributes(node);
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
      open_.push_back({item_, kept_.size()});
      SkipSpace();
      NextItem();
    } else if (open_.empty()) {
      return item_.node;
    } else if (item_.node != nullptr) {
      AddItem();
      NextItem();
    } else {
      EndList();
      item_ = open_.back().item;
      open_.pop_back();
      CloseNode();
    }
  }
  return nullptr;
}

// Tries an element or a markup. Without a node the stream is back at the start.
void XmlReader::OpenItem(Want want) {
  const std::uint64_t start = stream_->GetPosition();
  item_.node = nullptr;
  item_.start = start;
  item_.levels = 0;
  item_.is_old = start < frontier_;
  item_.dropped = item_.is_open = false;
  frontier_ = std::max(frontier_, start + 1);
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
  if (item_.node == nullptr) stream_->Seek(start);
}

void XmlReader::OpenMarkup() {
  if (stream_->Accept("--")) {
    item_.node = document_->MakeMarkup(document_->Intern("--"));
    ReadComment(item_.node);
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
  names_.MoveFrontier(stream_->GetPosition());
  if (tag == Tag::kNone || (markup && !name.empty() && (name.front() == '!' || name.front() == '?'))) return;
  const NameId id = document_->Intern(name);
  if (id == kNoName) stopped_ = true;
  item_.name = document_->NameOf(id);
  item_.dropped = item_.name == kDropped;
  CTreeNode* node = markup ? document_->MakeMarkup(id) : document_->MakeNode(id);
  if (has_attributes) {
    const std::uint64_t from = stream_->GetPosition();
    if (from >= tag_frontier_) {
      tag = ReadAttributes(node);
      tag_frontier_ = stream_->GetPosition();
    } else {
      tag = FindTagEnd();
      lacks_[node].attributes = true;
      lacks_[node].attributes_from = from;
    }
  }
  if (tag == Tag::kNone) return;
  if (open_.size() >= static_cast<std::size_t>(kMaxDepth)) stopped_ = true;
  item_.node = node;
  item_.is_open = tag == Tag::kOpen;
  item_.levels = 1;
}

// The next item of the list that is being read, or the end of the list. Where the rest of the list is known it joins.
void XmlReader::NextItem() {
  const std::uint64_t position = stream_->GetPosition();
  if (position < frontier_) {
    const auto known = rests_.find(position);
    if (known != rests_.end()) {
      joined_ = &known->second;
      item_ = {};
      return;
    }
  }
  OpenItem(Want::kAny);
}

void XmlReader::AddItem() {
  OpenNode& parent = open_.back();
  if (!item_.dropped) {
    parent.item.node->AddChildAfter(item_.node, parent.last_child);
    parent.last_child = item_.node;
  }
  parent.item.levels = std::max(parent.item.levels, 1 + item_.levels);
  if (item_.is_old || kept_.size() > parent.first_kept) kept_.push_back(item_);
}

// Ends the child list of the innermost open node and remembers it from each of its old items on.
void XmlReader::EndList() {
  OpenNode& parent = open_.back();
  ListRest rest{nullptr, nullptr, item_.start, item_.levels};
  if (joined_ != nullptr) {
    rest = *joined_;
    joined_ = nullptr;
    if (rest.first != nullptr) {
      parent.item.node->AddChildAfter(rest.first, parent.last_child);
      parent.last_child = rest.last;
    }
    if (open_.size() + static_cast<std::size_t>(rest.levels) > static_cast<std::size_t>(kMaxDepth)) stopped_ = true;
    stream_->Seek(rest.end);
  } else if (item_.is_old || kept_.size() > parent.first_kept) {
    rests_[item_.start] = rest;
  }
  parent.item.levels = std::max(parent.item.levels, 1 + rest.levels);
  rest.last = parent.last_child;
  for (; kept_.size() > parent.first_kept; kept_.pop_back()) {
    const Item& item = kept_.back();
    if (!item.dropped) rest.first = item.node;
    rest.levels = std::max(rest.levels, item.levels);
    rests_[item.start] = rest;
  }
}

// Reads value and closing tag of an open node. Without a closing tag the stream is back at its start.
void XmlReader::CloseNode() {
  item_.is_open = false;
  ReadText(item_.node);
  if (ReadEndTag(item_.name)) return;
  item_.node = nullptr;
  stream_->Seek(item_.start);
}

// Reads a tag's name and what ends it. The name is valid until the next read.
XmlReader::Tag XmlReader::ReadTagName(std::string_view* name, bool* has_attributes) {
  const std::uint64_t from = stream_->GetPosition();
  if (!names_.IsNew(from)) {
    const ScanMemo::Found found = Search(&names_, [this](std::uint64_t* end) {
      *end = stream_->GetPosition() + 1;
      return stream_->Peek() == '>' || IsSpace(stream_->Peek());
    });
    if (found.end == found.mark) return Tag::kNone;  // the file ends in the name
    stream_->Seek(from);
  }
  *name = stream_->ReadUntil(kNameStops.is, &name_spill_);
  if (stream_->Peek() == '/') {
    name_ = *name;
    while (stream_->Peek() == '/') {
      SkipRun(&slash_runs_, [](int c) { return c == '/'; });
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
  const NameId id = document_->Intern(attribute_name_);
  if (id == kNoName) {
    stopped_ = true;
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

// The end of a tag whose attributes begin here and are read later, if at all.
XmlReader::Tag XmlReader::FindTagEnd() {
  const std::uint64_t from = stream_->GetPosition();
  std::vector<std::pair<std::uint64_t, std::uint64_t>> runs;  // outside quotes: first and last position
  std::uint64_t end = kNever;
  for (bool ended = false; !ended;) {
    const std::uint64_t first = stream_->GetPosition();
    auto next = tag_runs_.upper_bound(first);
    if (next != tag_runs_.begin() && std::prev(next)->second.last >= first) {
      end = std::prev(next)->second.end;
      break;
    }
    const std::uint64_t known = next == tag_runs_.end() ? kNever : next->first;
    int c = stream_->Peek();
    for (; c >= 0 && c != '"' && c != '>' && stream_->GetPosition() < known; c = stream_->Peek()) stream_->Skip();
    const std::uint64_t last = stream_->GetPosition();
    if (last == known) {  // goes on with what is known from here on
      if (last > first) runs.emplace_back(first, last - 1);
      continue;
    }
    runs.emplace_back(first, last);
    if (c == '>') end = last;
    ended = c != '"';
    if (c != '"') continue;
    stream_->Skip();
    stream_->ReadUntil('"', &text_spill_);
    ended = stream_->Peek() < 0;
    if (!ended) stream_->Skip();
  }
  for (const auto& [first, last] : runs) tag_runs_[first] = {last, end};
  if (end == kNever) return Tag::kNone;
  stream_->Seek(end - 1);
  const bool closed = end > from && stream_->Peek() == '/';
  stream_->Seek(end + 1);
  return closed ? Tag::kClosed : Tag::kOpen;
}

// Goes to the first position from here on for which `is_mark` gives true and sets the end of the mark.
template <typename IsMark>
ScanMemo::Found XmlReader::Search(ScanMemo* memo, IsMark is_mark) {
  const std::uint64_t from = stream_->GetPosition();
  const ScanMemo::Found* known = memo->Find(from);
  if (known == nullptr) {
    const std::uint64_t limit = memo->NextKnown(from);
    std::uint64_t end = 0;
    while (stream_->GetPosition() < limit && stream_->Peek() >= 0 && !is_mark(&end)) stream_->Skip();
    const std::uint64_t at = stream_->GetPosition();
    if (at >= limit) {
      memo->Keep(from, *memo->Find(limit));
    } else {
      memo->Keep(from, {at, stream_->Peek() < 0 ? at : end});
    }
    known = memo->Find(from);
  }
  stream_->Seek(known->end);
  return *known;
}

template <typename IsPart>
void XmlReader::SkipRun(ScanMemo* memo, IsPart is_part) {
  if (memo->IsNew(stream_->GetPosition())) {
    stream_->SkipWhile(is_part);
    memo->MoveFrontier(stream_->GetPosition());
  } else if (is_part(stream_->Peek())) {
    Search(memo, [this, is_part](std::uint64_t* end) {
      *end = stream_->GetPosition();
      return !is_part(stream_->Peek());
    });
  }
}

void XmlReader::SkipSpace() { SkipRun(&spaces_, IsSpace); }

void XmlReader::ReadText(CTreeNode* node) {
  const std::uint64_t from = stream_->GetPosition();
  if (texts_.IsNew(from)) {
    const std::string_view text = stream_->ReadUntil('<', &text_spill_);
    SetText(node, text, true);
    texts_.MoveFrontier(stream_->GetPosition());
    return;
  }
  const ScanMemo::Found found = Search(&texts_, [this](std::uint64_t* end) {
    *end = stream_->GetPosition();
    return stream_->Peek() == '<';
  });
  if (found.mark == from) return;
  Lack& lack = lacks_[node];
  lack.text = lack.convert = true;
  lack.text_from = from;
  lack.text_end = found.mark;
}

// The closing tag may stand behind anything that holds no '/'.
bool XmlReader::ReadEndTag(std::string_view name) {
  if (!stream_->Accept("<")) return false;
  if (!stream_->Accept("/")) {
    const ScanMemo::Found found = Search(&slashes_, [this](std::uint64_t* end) {
      *end = stream_->GetPosition() + 1;
      return stream_->Peek() == '/';
    });
    if (found.end == found.mark) return false;
  }
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

bool XmlReader::IsCommentMark(std::uint64_t* end) {
  const int c = stream_->Peek();
  if (c != '/' && c != '?' && c != '-') return false;
  const std::uint64_t at = stream_->GetPosition();
  const bool is_mark = stream_->Accept("/>") || stream_->Accept("?>") || stream_->Accept("-->");
  *end = stream_->GetPosition();
  stream_->Seek(at);
  return is_mark;
}

void XmlReader::ReadComment(CTreeNode* node) {
  const std::uint64_t from = stream_->GetPosition();
  if (comments_.IsNew(from)) {
    SetText(node, ReadToMark(true), true);
    comments_.MoveFrontier(stream_->GetPosition());
    return;
  }
  const ScanMemo::Found found = Search(&comments_, [this](std::uint64_t* end) { return IsCommentMark(end); });
  Lack& lack = lacks_[node];
  lack.text = lack.convert = true;
  lack.text_from = from;
  lack.text_end = found.mark;
}

// The text up to the bracket that closes the section, and one byte behind it, or up to the end of the file.
void XmlReader::ReadSection(CTreeNode* node) {
  const std::uint64_t from = stream_->GetPosition();
  if (from < section_frontier_) {
    const std::uint64_t close = FindSectionEnd();
    Lack& lack = lacks_[node];
    lack.text = true;
    lack.convert = close == kNever;
    lack.text_from = from;
    lack.text_end = close;
    return;
  }
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
  section_frontier_ = stream_->GetPosition();
}

// Goes behind the end of the section that begins here, and learns the ends of all sections in it on the way.
std::uint64_t XmlReader::FindSectionEnd() {
  const std::uint64_t from = stream_->GetPosition();
  std::vector<std::pair<std::uint64_t, std::uint64_t>> open = {{from, 1}};  // begin, depth
  std::uint64_t depth = 1;
  int before = 0;
  int before_that = 0;
  if (section_ends_.contains(from)) open.clear();
  while (!open.empty() && stream_->Peek() >= 0) {
    const int c = stream_->Peek();
    const std::uint64_t at = stream_->GetPosition();
    stream_->Skip();
    if (c == ']' && depth-- == open.back().second) {
      section_ends_[open.back().first] = at;
      open.pop_back();
    } else if (c == '[') {
      ++depth;
      if (before == '!' && before_that == '<') {
        const auto known = section_ends_.find(at + 1);
        if (known == section_ends_.end()) {
          open.emplace_back(at + 1, depth);
        } else {
          --depth;
          stream_->Seek(known->second);
          if (known->second != kNever) stream_->Skip();
        }
      }
    }
    before_that = before;
    before = c;
  }
  for (const auto& section : open) section_ends_[section.first] = kNever;
  const std::uint64_t close = section_ends_[from];
  stream_->Seek(close);
  for (int i = 0; i < 2 && stream_->Peek() >= 0; ++i) stream_->Skip();
  return close;
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

// Reads the attributes and values that were passed over, for the nodes that are in the tree.
void XmlReader::FillLacks() {
  if (lacks_.empty()) return;
  std::vector<CTreeNode*> open = {document_->root_};
  while (!open.empty()) {
    CTreeNode* node = open.back();
    open.pop_back();
    if (node->next_sibling_ != nullptr) open.push_back(node->next_sibling_);
    if (node->first_child_ != nullptr) open.push_back(node->first_child_);
    const auto found = lacks_.find(node);
    if (found == lacks_.end()) continue;
    const Lack& lack = found->second;
    if (lack.attributes) {
      stream_->Seek(lack.attributes_from);
      ReadAttributes(node);
    }
    if (!lack.text) continue;
    stream_->Seek(lack.text_from);
    mark_text_.clear();
    for (; stream_->GetPosition() < lack.text_end && stream_->Peek() >= 0; stream_->Skip()) {
      mark_text_.push_back(static_cast<char>(stream_->Peek()));
    }
    SetText(node, mark_text_, lack.convert);
  }
}

void CTreeDocument::ReadXml(TextStream* stream) {
  ForgetNodes();
  XmlReader(this, stream).ReadFile();
}

}  // namespace pktaus
