// Nodes of a document's tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tree/block_store.h"
#include "tree/kept_text.h"
#include "tree/name_table.h"

namespace pktaus {

class CTreeDocument;
class TextStream;

/// One attribute of a node. Read it through the node's list; change it with CTreeNode::SetAttribute.
struct CTreeAttribute {
  NameId name = kNoName;
  KeptText value;
  CTreeAttribute* next = nullptr;
};

/// A node: name, value, attributes in the order in which each was first set, children in order.
///
/// Nodes are made by their document, which owns their storage, linked or not: they live until the document dies or
/// loads a file. A node is linked at most once, and only into the document that made it.
class CTreeNode {
 public:
  CTreeNode(const CTreeNode&) = delete;
  CTreeNode& operator=(const CTreeNode&) = delete;

  NameId GetNameId() const { return name_; }
  /// A NUL stands behind the text, which lives as long as the document.
  std::string_view GetName() const;
  /// The name behind its last ':', or the whole name.
  std::string_view GetLocalName() const;

  /// Valid until the value is set again.
  std::string_view GetValue() const { return value_.get(); }
  void SetValue(std::string_view value);

  CTreeNode* GetFirstChild() const { return first_child_; }
  CTreeNode* GetNextSibling() const { return next_sibling_; }

  /// Appends at the end, which it walks to; null changes nothing.
  void AddChild(CTreeNode* child);
  /// Appends behind `last`, the present last child, or as the first where there is none.
  void AddChildAfter(CTreeNode* child, CTreeNode* last);

  /// First node of that name from `start` (inclusive) or from the first child on; null where there is none. Without
  /// `local_name` names are equal byte for byte. With it "name" finds that local name under any prefix, and "gml:name"
  /// finds gml:name as well as name.
  CTreeNode* FindChild(std::string_view name, bool local_name, CTreeNode* start = nullptr) const;
  /// First child whose name equals the key behind its two-character mark.
  CTreeNode* FindKey(std::string_view key) const;

  /// Gives a known attribute a new value where it stands, or appends a new one.
  void SetAttribute(std::string_view name, std::string_view value);
  /// Empty where the node has no such attribute. Valid until the attribute is set again.
  std::string_view GetAttribute(std::string_view name) const;
  const CTreeAttribute* GetFirstAttribute() const { return first_attribute_; }

  CTreeDocument* GetDocument() const { return static_cast<CTreeDocument*>(ObjectStore::OwnerOf(this)); }

  /// Writes the node with its subtree in the XML form, as the root of what is written.
  virtual void Write(TextStream* stream) const;

 protected:
  explicit CTreeNode(NameId name) : name_(name) {}
  virtual ~CTreeNode() = default;

 private:
  friend class CTreeDocument;
  friend class CTreeHeaderNode;
  friend class CTreeMarkupNode;
  friend class IniReader;
  friend class XmlReader;
  enum class Kind : std::uint8_t { kElement, kOther };

  // Little more than its links: a file has millions of them.
  NameId name_;
  Kind kind_ = Kind::kElement;
  KeptText value_;
  CTreeNode* first_child_ = nullptr;
  CTreeNode* next_sibling_ = nullptr;
  CTreeAttribute* first_attribute_ = nullptr;
};

/// Appends to the children of a node without a walk for each.
class ChildAppender {
 public:
  /// Behind the present children; null for a node that is never appended to.
  explicit ChildAppender(CTreeNode* parent);

  CTreeNode* parent() const { return parent_; }
  /// Null changes nothing.
  void Append(CTreeNode* child) {
    if (child == nullptr) return;
    parent_->AddChildAfter(child, last_);
    last_ = child;
  }

 private:
  CTreeNode* parent_;
  CTreeNode* last_ = nullptr;
};

/// The XML declaration: "?" with all that stands between the question marks as its value.
class CTreeHeaderNode final : public CTreeNode {
 public:
  void Write(TextStream* stream) const override;

 private:
  friend class CTreeDocument;
  explicit CTreeHeaderNode(NameId name) : CTreeNode(name) { kind_ = Kind::kOther; }
};

/// A comment ("--"), a marked section ("[") or another "<!" markup of an XML tree.
class CTreeMarkupNode final : public CTreeNode {
 public:
  void Write(TextStream* stream) const override;

 private:
  friend class CTreeDocument;
  explicit CTreeMarkupNode(NameId name) : CTreeNode(name) { kind_ = Kind::kOther; }
};

}  // namespace pktaus
