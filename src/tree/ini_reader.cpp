// Reads the ini form.
#include <algorithm>
#include <string>

#include "tree/document.h"
#include "tree/text_stream.h"

namespace pktaus {

class IniReader {
 public:
  IniReader(CTreeDocument* document, TextStream* stream, bool free_keys)
      : document_(document), stream_(stream), free_keys_(free_keys) {}

  // Adds the sections of the rest of the stream to the root.
  void ReadFile(CTreeNode* root);

 private:
  CTreeNode* ReadIniSection();
  void ReadKey(std::string_view line, ChildAppender* keys, ChildAppender* free_keys);

  CTreeDocument* document_;
  TextStream* stream_;
  bool free_keys_;
  std::string key_;  // scratch
};

namespace {

constexpr std::size_t kSectionLine = 1000;  // longer lines arrive in pieces, each a line of its own
constexpr std::size_t kFileLine = 2000;
constexpr std::size_t kNone = std::string_view::npos;

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == kNone) text = {};
  if (!text.empty()) text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(" \t\n\r") + 1);
}

// A line as a text, which a NUL ends. False at the end of the file.
bool ReadLine(TextStream* stream, std::size_t size, std::string_view* line) {
  if (!stream->ReadLine(size, line)) return false;
  *line = line->substr(0, line->find('\0'));
  return true;
}

bool IsQuote(char c) { return c == '\'' || c == '"'; }

std::string_view StripQuotes(std::string_view text) {
  if (!text.empty() && IsQuote(text.front())) text.remove_prefix(1);
  if (!text.empty() && IsQuote(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view CutComment(std::string_view value, std::size_t from) {
  return Trim(value.substr(0, value.find('#', from)));
}

// Cuts the comment off a trimmed value and strips its quotes; gives "REF", the form that they had.
std::string_view TakeForm(std::string_view* value) {
  const char first = value->empty() ? '\0' : value->front();
  if (!IsQuote(first)) {
    *value = CutComment(*value, 0);
    return value->find_first_of("'\"") == kNone ? "0" : "3";
  }
  if (first == '\'') {
    *value = CutComment(*value, 0);
  } else if (const std::size_t second = value->find('"', 1); second != kNone) {
    *value = CutComment(*value, second + 1);
  }
  if (value->back() != first || std::count(value->begin(), value->end(), first) > 2) return "3";
  *value = StripQuotes(*value);
  return first == '\'' ? "1" : "2";
}

}  // namespace

void IniReader::ReadFile(CTreeNode* root) {
  ChildAppender sections(root);
  for (;;) {
    const std::uint64_t before = stream_->GetPosition();
    std::string_view line;
    if (!ReadLine(stream_, kFileLine, &line)) return;
    if (!line.starts_with('[')) continue;
    stream_->Seek(before);
    sections.Append(ReadIniSection());
  }
}

CTreeNode* IniReader::ReadIniSection() {
  std::string_view line;
  if (!ReadLine(stream_, kSectionLine, &line) || !line.starts_with('[')) return nullptr;
  const std::size_t end = line.find(']');
  if (end == kNone) return nullptr;
  const NameId name = document_->Intern(line.substr(1, end - 1));
  const NameId free_name = document_->Intern("FREEDATA");
  if (name == kNoName || free_name == kNoName) return nullptr;
  ChildAppender keys(document_->MakeNode(name));
  ChildAppender free_keys(document_->MakeNode(free_name));
  keys.Append(free_keys.parent());
  for (;;) {
    const std::uint64_t before = stream_->GetPosition();
    if (!ReadLine(stream_, kSectionLine, &line)) return keys.parent();
    if (line.starts_with('[')) {
      stream_->Seek(before);
      return keys.parent();
    }
    ReadKey(line, &keys, &free_keys);
  }
}

void IniReader::ReadKey(std::string_view line, ChildAppender* keys, ChildAppender* free_keys) {
  const std::size_t equal = line.find('=');
  if (equal == kNone || line.substr(0, equal).find('#') != kNone) return;
  const bool is_free = line.front() == '"' || (free_keys_ && line.front() == '\'');
  key_ = StripQuotes(Trim(line.substr(0, equal)));
  if (!is_free) {
    for (char& c : key_) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  std::string_view value = Trim(line.substr(equal + 1));
  const std::string_view form = TakeForm(&value);
  const NameId name = document_->Intern(key_);
  const NameId form_name = document_->Intern("REF");
  if (name == kNoName || form_name == kNoName) return;  // a key that no id can number is left out
  CTreeNode* key = document_->MakeNode(name);
  key->first_attribute_ = document_->MakeAttribute(form_name, form);
  key->SetValue(value);
  (is_free ? free_keys : keys)->Append(key);
}

bool CTreeDocument::ReadIni(TextStream* stream, bool free_keys) {
  std::unique_ptr<Storage> before = std::move(storage_);
  storage_ = std::make_unique<Storage>(this);
  const NameId name = names_.Intern("INI");
  CTreeNode* root = name == kNoName ? nullptr : MakeNode(name);
  if (root != nullptr) IniReader(this, stream, free_keys).ReadFile(root);
  if (stream->Failed()) {
    storage_ = std::move(before);
    return false;
  }
  header_ = nullptr;
  root_ = root;
  return true;
}

}  // namespace pktaus
