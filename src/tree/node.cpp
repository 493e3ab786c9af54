#include "tree/node.h"

#include <cstring>

#include "tree/document.h"

namespace pktaus {
namespace {

std::string_view LocalPart(std::string_view name) {
  const std::size_t colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// Whether a child's name answers a search by local name.
bool MatchesLocally(std::string_view wanted, std::string_view name) {
  if (LocalPart(name) != LocalPart(wanted)) return false;
  const bool any_prefix = wanted.find(':') == std::string_view::npos;
  const bool no_prefix = name.find(':') == std::string_view::npos;
  return any_prefix || no_prefix || name == wanted;
}

}  // namespace

std::string_view CTreeNode::GetName() const { return GetDocument()->NameOf(name_); }

std::string_view CTreeNode::GetLocalName() const { return LocalPart(GetName()); }

void CTreeNode::SetValue(std::string_view value) {
  if (value.size() > value_.size()) {
    value_ = GetDocument()->KeepText(value);
  } else if (!value.empty()) {
    // Its own memory is large enough; `value` may lie in it.
    std::memmove(value_.data(), value.data(), value.size());
    value_.Cut(value.size());
  } else {
    value_ = {};
  }
}

ChildAppender::ChildAppender(CTreeNode* parent) : parent_(parent) {
  CTreeNode* child = parent == nullptr ? nullptr : parent->GetFirstChild();
  for (; child != nullptr; child = child->GetNextSibling()) last_ = child;
}

void CTreeNode::AddChild(CTreeNode* child) { ChildAppender(this).Append(child); }

void CTreeNode::AddChildAfter(CTreeNode* child, CTreeNode* last) {
  if (first_child_ == nullptr) {
    first_child_ = child;
  } else {
    last->next_sibling_ = child;
  }
}

CTreeNode* CTreeNode::FindChild(std::string_view name, bool local_name, CTreeNode* start) const {
  CTreeNode* child = start == nullptr ? first_child_ : start;
  if (!local_name) {
    const NameId id = GetDocument()->Intern(name);
    while (child != nullptr && (child->name_ != id || id == kNoName)) child = child->next_sibling_;
    return child;
  }
  if (name.rfind(':') == 0) return nullptr;
  while (child != nullptr && !MatchesLocally(name, child->GetName())) child = child->next_sibling_;
  return child;
}

CTreeNode* CTreeNode::FindKey(std::string_view key) const {
  return FindChild(key.size() < 2 ? std::string_view() : key.substr(2), false);
}

void CTreeNode::SetAttribute(std::string_view name, std::string_view value) {
  const NameId id = GetDocument()->NameFor(name);
  if (id == kNoName) return;
  CTreeAttribute** link = &first_attribute_;
  while (*link != nullptr && (*link)->name != id) link = &(*link)->next;
  if (*link == nullptr) {
    *link = GetDocument()->MakeAttribute(id, value);
  } else {
    (*link)->value = GetDocument()->KeepText(value);
  }
}

std::string_view CTreeNode::GetAttribute(std::string_view name) const {
  const NameId id = GetDocument()->Intern(name);
  if (id == kNoName) return {};
  const CTreeAttribute* attribute = first_attribute_;
  while (attribute != nullptr && attribute->name != id) attribute = attribute->next;
  return attribute == nullptr ? std::string_view() : attribute->value.get();
}

}  // namespace pktaus
