#include "entry/guard.h"

#include <memory>
#include <string>

#include "base/failure.h"
#include "entry/host/desktop.h"
#include "platform/fault.h"
#include "platform/file.h"
#include "platform/system.h"

namespace pktaus {

namespace {

constexpr std::size_t kErrorTextLimit = 1000;

std::string ErrorText(const CException& exception) { return exception.ErrorText().substr(0, kErrorTextLimit); }

void Show(const std::string& title, const std::string& text) { message_box(text, title, toolkit::kBoxInformation); }

/// The log is a text file with the line ends of all our text files. Where it cannot be written, the box says it all.
void Log(const std::string& title, const std::string& text) {
  std::string lines;
  for (const char c : title + '\n' + text + '\n') {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  platform::File file;
  platform::FileFacts facts;
  if (!file.Open(platform::TempFolder() + "strassedb.log", platform::OpenMode::kAppend)) return;
  if (file.Facts(&facts) && facts.kind_file) file.Write(lines.data(), lines.size());
}

/// Shows the exception that is being handled. `error` is the last system error at the time of the failure.
void ShowFailure(const std::string& place, int error) {
  try {
    throw;
  } catch (CDaoException* thrown) {
    const std::unique_ptr<CDaoException> exception(thrown);
    const std::string title = "CDaoException " + place;
    const std::string text = "CDaoException:\n\t" + ErrorText(*exception) + "\n\t" + std::to_string(exception->code) +
                             "\n\t" + exception->description + "\n\t" + exception->source;
    Log(title, text);
    Show(title, text);
  } catch (CException* thrown) {
    const std::unique_ptr<CException> exception(thrown);
    Show("CException " + place, "CException:\n\t" + ErrorText(*exception) + "\n");
  } catch (const CException& exception) {
    Show("Fehler Aufgetreten!", "CException:\n\t" + exception.ErrorText() + "\n");
  } catch (...) {
    if (error != 0) {
      Show("Fehler Aufgetreten", place + ":" + platform::SystemErrorText(error));
    } else {
      Show("Fehler Aufgetreten!", place + ":Unbekannter Fehler");
    }
  }
}

}  // namespace

void RunGuarded(const std::function<void()>& work, const char* file, int line) noexcept {
  platform::SetLastSystemError(0);
  try {
    platform::RunRaisingFaults(work);
  } catch (...) {
    const int error = platform::LastSystemError();
    try {
      platform::RunRaisingFaults([&] { ShowFailure(std::string(file) + ":" + std::to_string(line), error); });
    } catch (...) {
      // The front end itself cannot show a box: there is nobody left to tell.
    }
  }
}

}  // namespace pktaus
