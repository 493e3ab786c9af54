// The frame of a NAS file: a copy of a template, into which the numbers of the order and the members go.
#pragma once

#include <memory>
#include <string>

#include "tree/node.h"

namespace pktaus {

class CTreeDocument;

class Frame {
 public:
  /// Begins a new file: its identifiers start at 1.
  Frame();
  ~Frame();

  /// Reads the template and sets the two numbers. Empty, or the message for the user where the template is not there or
  /// has no place for them.
  std::string Open(const std::string& template_path, const std::string& application_number,
                   const std::string& order_number);

  CTreeDocument* document() const { return document_.get(); }
  /// False where the template has no place for members.
  bool TakesMembers() const { return members_.parent() != nullptr; }
  /// Appends a member behind all others; null changes nothing.
  void Append(CTreeNode* member) { members_.Append(member); }

  /// Saves the file with the members of `count` points and gives the message for the user. Without a point nothing is
  /// saved.
  std::string Close(const std::string& output_path, int count);

 private:
  std::unique_ptr<CTreeDocument> document_;
  ChildAppender members_{nullptr};
};

/// What is said of a file with the members of `count` points.
std::string WrittenMessage(int count);

/// What is said where a file would hold no point.
inline constexpr const char* kNothingFound = "Fehler: keine passenden Daten gefunden";

}  // namespace pktaus
