#include "platform/system.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "base/path.h"
#include "base/text.h"

namespace platform {
namespace {

using namespace text::literals;

std::string FindOwnLibraryPath() {
  static const char kHere = 0;  // an address inside this library or program
  Dl_info info{};
  const char* file = dladdr(&kHere, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
  char* real = realpath(file, nullptr);
  // A program found through PATH is known by its bare name alone.
  if (real == nullptr) real = realpath("/proc/self/exe", nullptr);
  if (real == nullptr) return {};
  const std::string disk = real;
  free(real);
  return text::FromUtf8Lossy(disk);
}

const std::string& OwnLibraryPathAtLoad() {
  static const std::string own = FindOwnLibraryPath();
  return own;
}

// Asked while the library is loaded, since the loader may know it by a path relative to the folder of that moment.
// Without memory it is asked again by whoever needs it: nothing can take an exception here.
[[maybe_unused]] const bool asked_at_load = [] {
  try {
    return !OwnLibraryPathAtLoad().empty();
  } catch (const std::bad_alloc&) {
    return false;
  }
}();

const char* GermanText(int error) {
  switch (error) {
    case EPERM:
      return "Der Vorgang ist nicht erlaubt."_ansi;
    case ENOENT:
      return "Das System kann die angegebene Datei nicht finden."_ansi;
    case EIO:
      return "Ein-/Ausgabefehler des Datenträgers."_ansi;
    case ENXIO:
    case ENODEV:
      return "Das Gerät ist nicht vorhanden."_ansi;
    case EAGAIN:
      return "Die Datei ist gesperrt."_ansi;
    case ENOMEM:
      return "Der Arbeitsspeicher reicht nicht aus."_ansi;
    case EACCES:
      return "Zugriff verweigert."_ansi;
    case EBUSY:
      return "Die Datei wird gerade verwendet."_ansi;
    case EEXIST:
      return "Die Datei ist bereits vorhanden."_ansi;
    case EXDEV:
      return "Die Datei kann nicht auf einen anderen Datenträger verschoben werden."_ansi;
    case ENOTDIR:
      return "Ein Teil des Pfads ist kein Ordner."_ansi;
    case EISDIR:
      return "Der Pfad bezeichnet einen Ordner, keine Datei."_ansi;
    case EINVAL:
      return "Ungültige Angabe."_ansi;
    case ENFILE:
    case EMFILE:
      return "Es sind zu viele Dateien geöffnet."_ansi;
    case ETXTBSY:
      return "Die Datei wird gerade als Programm ausgeführt."_ansi;
    case EFBIG:
      return "Die Datei ist zu groß."_ansi;
    case ENOSPC:
      return "Auf dem Datenträger ist kein Platz mehr frei."_ansi;
    case EDQUOT:
      return "Das Speicherkontingent ist erschöpft."_ansi;
    case EROFS:
      return "Der Datenträger ist schreibgeschützt."_ansi;
    case ENAMETOOLONG:
      return "Der Dateiname ist zu lang."_ansi;
    case ELOOP:
      return "Zu viele Verknüpfungen im Pfad."_ansi;
    case ENOLCK:
      return "Die Datei kann nicht gesperrt werden."_ansi;
    case ESTALE:
      return "Die Datei ist auf dem Server nicht mehr vorhanden."_ansi;
    default:
      return nullptr;
  }
}

}  // namespace

std::string TempFolder() {
  const char* set = getenv("TMPDIR");
  std::string folder = path::FromDisk(set != nullptr && *set != '\0' ? set : "/tmp").value_or("/tmp");
  if (folder.back() != path::kSeparator) folder += path::kSeparator;
  return folder;
}

std::string OwnUser() { return std::to_string(geteuid()); }

std::string OwnLibraryPath() { return OwnLibraryPathAtLoad(); }

int LastSystemError() { return errno; }

void SetLastSystemError(int error) { errno = error; }

std::string SystemErrorText(int error) {
  if (const char* german = GermanText(error)) return german;
  const KeepSystemError keep;
  return text::FromUtf8Lossy(std::strerror(error));
}

}  // namespace platform
