// A tree of nodes with two surface forms: XML (NAS files) and ini (settings, catalogues).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tree/block_store.h"
#include "tree/name_table.h"
#include "tree/node.h"

namespace pktaus {

/// Levels of elements that may be open within one another while an XML file is read, the root included. A file that
/// opens more, whether or not they prove to be elements in the end, loads with a null root.
inline constexpr int kMaxDepth = 10000;

/// Why loading an XML file gave no root.
struct XmlFault {
  enum class Kind {
    kNone,       ///< there is a root
    kNotStaged,  ///< its copy could not be made; the last system error tells why, and there is no place
    kNotRead,    ///< a read of the system failed there
    kNoElement,  ///< no element begins where the root should
    kNotClosed,  ///< the closing tag of an element was expected there
    kTooDeep,    ///< more levels than kMaxDepth
    kName,       ///< a name that the name table refuses
    kTooOften,   ///< damaged so that it would have to be read more often than the reader's bound allows
  };
  Kind kind = Kind::kNone;
  std::uint64_t offset = 0;  ///< bytes from the begin, CR LF counted as one
  std::uint64_t line = 0;    ///< from 1; 0 where there is no place
};

/// Owner of a tree, of its names and of the storage of all its nodes. A new document has an XML header and no root.
class CTreeDocument {
 public:
  CTreeDocument();
  virtual ~CTreeDocument() = default;
  CTreeDocument(const CTreeDocument&) = delete;
  CTreeDocument& operator=(const CTreeDocument&) = delete;

  /// A node that is not linked yet; never null. A name that the table refuses gives a node without a name, and from
  /// then on every save of the document fails: a file with a wrong name is never written.
  CTreeNode* NewNode(std::string_view name);
  CTreeNode* NewTextNode(std::string_view name, std::string_view value);
  /// A comment ("--") or a marked section ("[").
  CTreeMarkupNode* NewMarkupNode(std::string_view name, std::string_view value);

  CTreeNode* GetRoot() const { return root_; }
  /// Makes the node the root in place of the present one, and its name the document's; null changes nothing.
  void SetRoot(CTreeNode* node);
  CTreeHeaderNode* GetHeader() const { return header_; }
  /// "GCPDocument", or the name of the node that SetRoot was given last.
  const std::string& GetName() const { return name_; }
  /// File last read or written in the XML form or read in the ini form (the copy's path where one was staged).
  const std::string& GetPath() const { return path_; }

  /// Reads an XML file; true if it could be opened, whatever it holds. What cannot be read as a tree gives a null root,
  /// as do names that the name table refuses and more levels than kMaxDepth. Header and nodes of before are gone then,
  /// names stay. `scan_all` goes to NeedsStaging.
  bool LoadXml(std::string_view path, bool scan_all);
  /// Why the last XML file gave no root.
  const XmlFault& GetXmlFault() const { return xml_fault_; }
  /// Reads an ini file; true if it could be opened and read to its end, else the document is unchanged. With
  /// `free_keys` a key in single quotes is a free key as one in double quotes always is.
  bool LoadIni(std::string_view path, bool free_keys);

  /// 0, or -1 where the file could not be made whole; what stood there before stands there then.
  int SaveXml(std::string_view path);
  int SaveIni(std::string_view path);

  /// The same forms from and to a stream that the caller opened and closes.
  void ReadXml(TextStream* stream);
  bool ReadIni(TextStream* stream, bool free_keys);
  void WriteXml(TextStream* stream) const;
  void WriteIni(TextStream* stream) const;

  NameId Intern(std::string_view name) { return names_.Intern(name); }
  std::string_view NameOf(NameId id) const { return names_.NameOf(id); }

 private:
  friend class CTreeNode;
  friend class IniReader;
  friend class XmlReader;

  // Of the nodes and of all that they hold.
  struct Storage {
    struct Mark {
      ObjectStore::Mark objects;
      BlockStore::Mark texts;
    };
    explicit Storage(CTreeDocument* document) : objects(document) {}
    Mark Used() const { return {objects.Used(), texts.Used()}; }
    void GoBack(const Mark& mark) {
      objects.GoBack(mark.objects);
      texts.GoBack(mark.texts);
    }
    ObjectStore objects;
    BlockStore texts;
  };

  /// Interns the name of a part of the tree; a refusal spoils the document.
  NameId NameFor(std::string_view name);
  void ForgetNodes();
  CTreeNode* MakeNode(NameId name);
  CTreeMarkupNode* MakeMarkup(NameId name);
  CTreeHeaderNode* MakeHeader();
  CTreeAttribute* MakeAttribute(NameId name, std::string_view value);
  KeptText KeepText(std::string_view text) { return {text, &storage_->texts}; }

  CTreeNode* root_ = nullptr;
  CTreeHeaderNode* header_ = nullptr;
  std::string name_ = "GCPDocument";
  std::string path_;
  CNameTable names_;
  std::unique_ptr<Storage> storage_;
  XmlFault xml_fault_;
  bool spoilt_ = false;  // a name was refused to a program
};

}  // namespace pktaus
