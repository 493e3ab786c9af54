#include "korvo/desktop/shell.h"

#include <QApplication>
#include <QWidget>
#include <cstdio>
#include <utility>

namespace korvo {
namespace {

/// Work for the end of a block, also where it is left by a throw.
class AtEnd {
 public:
  explicit AtEnd(std::function<void()> work) : work_(std::move(work)) {}
  ~AtEnd() { work_(); }
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;

 private:
  std::function<void()> work_;
};

}  // namespace

Waits::Waits() {
  soon_.setSingleShot(true);
  soon_.setInterval(0);
  QObject::connect(&soon_, &QTimer::timeout, &soon_, [this] {
    if (!leaving_ || open_.empty()) return;
    QWidget* const popup = QApplication::activePopupWidget();
    if (popup == nullptr) return open_.back()->cancel_();
    // It may run a loop of its own, which has to end before those below it.
    popup->close();
    soon_.start();
  });
}

Waits::Wait::Wait(Waits& waits, std::function<void()> cancel)
    : waits_(waits), cancel_(std::move(cancel)), hosts_handlers_(waits.hosts_) {
  waits_.open_.push_back(this);
}

Waits::Wait::~Wait() {
  std::erase(waits_.open_, this);
  if (waits_.leaving_) waits_.soon_.start();
}

void Waits::Wait::Run() {
  if (!stopped_) {
    if (waits_.leaving_) waits_.soon_.start();
    loop_.exec();
    if (!stopped_) cancel_();
  }
  if (kept_ != nullptr) std::rethrow_exception(std::exchange(kept_, nullptr));
}

void Waits::Wait::Stop() {
  stopped_ = true;
  loop_.quit();
}

bool Waits::RunPlugin(const std::function<void()>& plugin) {
  if (plugin_runs_) return false;
  plugin_runs_ = true;
  leaving_ = false;
  {
    const AtEnd ended([this] { plugin_runs_ = false; });
    plugin();
  }
  return Left();
}

void Waits::Choose(int number) {
  if (menu_ == nullptr || open_.empty() || menu_ != open_.back()) return;
  choice_ = number;
  menu_->Stop();
}

void Waits::Pick(std::int32_t record) {
  if (pick_ == nullptr || open_.empty() || pick_ != open_.back()) return;
  picked_ = record;
  pick_->Stop();
}

bool Waits::Leave() {
  if (!plugin_runs_ && open_.empty()) return false;
  leaving_ = true;
  soon_.start();
  return true;
}

bool Waits::Left() { return !plugin_runs_ && open_.empty() && std::exchange(leaving_, false); }

int Waits::WaitForChoice(Shell& shell, const Menu& menu) {
  Wait wait(*this, [this] { Choose(0); });
  menu_ = &wait;
  choice_ = 0;
  const AtEnd ended([&] {
    menu_ = nullptr;
    shell.HideMenu();
  });
  shell.ShowMenu(menu);
  wait.Run();
  return choice_;
}

std::int32_t Waits::WaitForPick(Shell& shell) {
  Wait wait(*this, [this] { Pick(0); });
  pick_ = &wait;
  picked_ = 0;
  const AtEnd ended([&] {
    pick_ = nullptr;
    shell.EndPick();
  });
  shell.BeginPick();
  wait.Run();
  return picked_;
}

void Waits::AtEdge(const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (...) {
    if (open_.empty()) {
      std::fputs("Korvo: Ausnahme in einem Fenster\n", stderr);
      return;
    }
    open_.back()->kept_ = std::current_exception();
    open_.back()->Stop();
  }
}

void Waits::InPlugin(const std::function<void()>& work) noexcept {
  if (open_.empty()) return AtEdge(work);
  UnderHandlers& wait = open_.back()->hosts_handlers_;
  const UnderHandlers plugins(wait.before());
  platform::SetLastSystemError(wait.error());
  AtEdge(work);
  wait.set_error(platform::LastSystemError());
}

}  // namespace korvo
