// The frame of a NAS file: a copy of a template, into which the numbers of the order and the members go.
#pragma once

#include <memory>
#include <string>

namespace pktaus {

class CTreeDocument;
class CTreeNode;

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
  /// Where members are appended; null where the template has no such place.
  CTreeNode* transaction() const { return transaction_; }

  /// Saves the file with the members of `count` points and gives the message for the user. Without a point nothing is
  /// saved.
  std::string Close(const std::string& output_path, int count);

 private:
  std::unique_ptr<CTreeDocument> document_;
  CTreeNode* transaction_ = nullptr;
};

/// What is said of a file with the members of `count` points.
std::string WrittenMessage(int count);

/// What is said where a file would hold no point.
inline constexpr const char* kNothingFound = "Fehler: keine passenden Daten gefunden";

}  // namespace pktaus
