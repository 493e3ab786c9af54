// The few facts about the process that the logic asks for.
#pragma once

#include <string>

namespace platform {

/// Folder for temporary files, in the form inside (Windows-1252), with its closing separator.
std::string TempFolder();

/// The user that this process works for, as a part of a file's name.
std::string OwnUser();

/// Full path of the library or program that holds this code, in the form inside.
std::string OwnLibraryPath();

/// Number of the last system error of this thread, 0 for none; and setting it.
int LastSystemError();
void SetLastSystemError(int error);

/// Text of a system error in Windows-1252, German where we know it.
std::string SystemErrorText(int error);

/// Keeps the last system error over a block whose failures mean nothing.
class KeepSystemError {
 public:
  KeepSystemError() : error_(LastSystemError()) {}
  ~KeepSystemError() { SetLastSystemError(error_); }
  KeepSystemError(const KeepSystemError&) = delete;
  KeepSystemError& operator=(const KeepSystemError&) = delete;

 private:
  int error_;
};

}  // namespace platform
