#include "korvo/host/lock.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include "base/text.h"
#include "platform/clock.h"
#include "platform/system.h"

namespace korvo {

using namespace text::literals;

namespace {

/// "benutzer@rechner, Prozess 4711, seit 02.03.2016 09:05".
std::string Holder() {
  std::array<char, 256> machine{};
  if (gethostname(machine.data(), machine.size() - 1) != 0) machine[0] = '?';
  const passwd* user = getpwuid(getuid());
  const platform::Clock& clock = platform::SystemClock();
  const platform::CivilTime now = clock.ToLocal(clock.Now());
  std::array<char, 512> line{};
  std::snprintf(line.data(), line.size(), "%.100s@%.255s, Prozess %ld, seit %02d.%02d.%04d %02d:%02d\n",
                user != nullptr ? user->pw_name : "?", machine.data(), static_cast<long>(getpid()), now.day, now.month,
                now.year, now.hour, now.minute);
  return line.data();
}

std::string FirstLine(platform::File& file) {
  std::array<char, 512> bytes{};
  const std::int64_t got = file.ReadAt(bytes.data(), bytes.size(), 0);
  const std::string all(bytes.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
  return all.substr(0, all.find('\n'));
}

}  // namespace

bool ProjectLock::Take(const std::string& table_on_disk, std::string* why) {
  Release();
  std::string path;
  bool open = platform::Files().RealPath(table_on_disk, &path);
  path.replace(path.rfind('/') + 1, std::string::npos, "korvo.sperre");
  open = open && file_.OpenOnDisk(path, platform::OpenMode::kLockFile);
  const int error = platform::LastSystemError();
  // A file that somebody else left behind may be locked without being written.
  if (!open && !file_.OpenOnDisk(path, platform::OpenMode::kRead)) {
    *why = std::string("Das Projekt kann nicht gesperrt werden: "_ansi) + platform::SystemErrorText(error);
    return false;
  }
  why->clear();
  if (!platform::Files().TryLock(file_.handle())) {
    if (platform::LastSystemError() != EWOULDBLOCK) {
      *why = kNoLocks;
      return true;
    }
    const std::string holder = FirstLine(file_);
    *why = std::string("Das Projekt ist schon geöffnet: "_ansi) +
           (holder.empty() ? "von wem, steht nicht in der Sperrdatei"_ansi : text::FromUtf8Lossy(holder)) + ".";
    file_.Close();
    return false;
  }
  // The line is for people alone; the lock holds without it.
  const std::string holder = Holder();
  if (platform::Files().Truncate(file_.handle(), 0)) file_.WriteAt(holder.data(), holder.size(), 0);
  return true;
}

void ProjectLock::Release() {
  if (!file_.IsOpen()) return;
  platform::Files().Truncate(file_.handle(), 0);
  file_.Close();
}

}  // namespace korvo
