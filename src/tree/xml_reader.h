// Reads the XML form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tree/document.h"
#include "tree/scan_memo.h"
#include "tree/text_stream.h"

namespace pktaus {

/// Reads by trial: every construct is tried at the present position, and where it fails the stream goes back.
///
/// Elements are read with a stack of our own, so nesting costs no machine stack. What a construct at a position comes
/// to depends on nothing but the position. So whatever lies in front of the furthest position reached so far, and hence
/// may be read over and over, is remembered: children by position, with all that follow them in their list, and where
/// searches end. Values and attributes of such places are read in the end, for the nodes that are in the tree. All in
/// all each part of the file is read a fixed number of times.
class XmlReader {
 public:
  XmlReader(CTreeDocument* document, TextStream* stream) : document_(document), stream_(stream) {}

  /// Reads the rest of the stream into header and root of the document.
  void ReadFile();

 private:
  // One thing that stands in a child list, or nothing: the list's end.
  struct Item {
    CTreeNode* node = nullptr;
    std::string_view name;
    std::uint64_t start = 0;
    int levels = 0;        // elements that were open within one another while it was read, itself included
    bool is_old = false;   // starts in front of the frontier
    bool dropped = false;  // read, but never linked
    bool is_open = false;  // its start tag alone is read
  };
  // A child list from one of its items on. All lists that come to this item go on alike.
  struct ListRest {
    CTreeNode* first;
    CTreeNode* last;
    std::uint64_t end;
    int levels;
  };
  struct OpenNode {
    Item item;
    std::size_t first_kept;  // in kept_
    CTreeNode* last_child = nullptr;
  };
  // What a node still lacks.
  struct Lack {
    bool attributes = false;
    bool text = false;
    bool convert = false;
    std::uint64_t attributes_from = 0;
    std::uint64_t text_from = 0;
    std::uint64_t text_end = 0;
  };
  // The end of a tag, its '>' excluded.
  struct TagRun {
    std::uint64_t last;  // a search from here on, outside quotes, still ends at `end`
    std::uint64_t end;   // of the '>', or kNever
  };
  enum class Tag { kNone, kOpen, kClosed };
  enum class Want { kAny, kElement, kMarkup };

  void ReadHeader();
  void SkipDoctype();
  void SkipHighBytes();
  CTreeNode* ReadTop(Want want);

  void OpenItem(Want want);
  void OpenMarkup();
  void OpenNamed(bool markup);
  void NextItem();
  void AddItem();
  void EndList();
  void CloseNode();

  Tag ReadTagName(std::string_view* name, bool* has_attributes);
  Tag ReadAttributes(CTreeNode* node);
  Tag FindTagEnd();
  void SetAttribute(CTreeNode* node);
  template <typename IsPart>
  void SkipRun(ScanMemo* memo, IsPart is_part);
  void SkipSpace();
  void ReadText(CTreeNode* node);
  bool ReadEndTag(std::string_view name);
  void ReadComment(CTreeNode* node);
  std::string_view ReadToMark(bool comment);
  bool IsCommentMark(std::uint64_t* end);
  void ReadSection(CTreeNode* node);
  std::uint64_t FindSectionEnd();
  template <typename IsMark>
  ScanMemo::Found Search(ScanMemo* memo, IsMark is_mark);
  void SetText(CTreeNode* node, std::string_view text, bool convert);
  void FillLacks();

  CTreeDocument* document_;
  TextStream* stream_;
  bool stopped_ = false;  // too deep, or a name that cannot be kept: there will be no root

  Item item_;  // the one that is being read
  std::vector<OpenNode> open_;
  std::uint64_t frontier_ = 0;  // no item from here on has been tried
  std::vector<Item> kept_;      // of lists that are still being read
  std::unordered_map<std::uint64_t, ListRest> rests_;
  const ListRest* joined_ = nullptr;  // the list that is being read goes on with this

  ScanMemo spaces_;
  ScanMemo names_;
  ScanMemo slash_runs_;  // in names
  ScanMemo texts_;
  ScanMemo slashes_;
  ScanMemo comments_;
  std::uint64_t tag_frontier_ = 0;
  std::map<std::uint64_t, TagRun> tag_runs_;  // by the first position, outside quotes
  std::uint64_t section_frontier_ = 0;
  std::unordered_map<std::uint64_t, std::uint64_t> section_ends_;  // closing bracket, or kNever
  std::unordered_map<const CTreeNode*, Lack> lacks_;

  // Scratch.
  std::string name_spill_;
  std::string name_;
  std::string text_spill_;
  std::string mark_text_;
  std::string attribute_name_;
  std::string attribute_value_;
  std::size_t attribute_count_ = 0;
  CTreeAttribute* last_attribute_ = nullptr;
  std::unordered_map<NameId, CTreeAttribute*> attributes_;  // of a tag with many
};

}  // namespace pktaus
