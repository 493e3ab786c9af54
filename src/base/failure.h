// What the libraries below the plug-in throw, and the one failure of our own. Passed across the library's border.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

/// A failure of the framework or of a table file: a text for the surveyor, in Windows-1252. Thrown by value by our own
/// code, as a pointer by libraries below; who catches a pointer deletes it.
class CException {
 public:
  explicit CException(std::string text) : text_(std::move(text)) {}
  CException(const CException&) = default;
  CException(CException&&) = default;
  CException& operator=(const CException&) = default;
  CException& operator=(CException&&) = default;
  virtual ~CException() = default;

  /// Valid as long as the exception.
  const std::string& ErrorText() const { return text_; }

 private:
  std::string text_;
};

/// A failure of the database layer. Thrown as a pointer; who catches it deletes it.
class CDaoException : public CException {
 public:
  CDaoException(std::string text, std::int32_t its_code, std::string its_description, std::string its_source)
      : CException(std::move(text)),
        code(its_code),
        description(std::move(its_description)),
        source(std::move(its_source)) {}

  std::int32_t code;
  std::string description;
  std::string source;
};
