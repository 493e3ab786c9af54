#include "korvo/desktop/modal_guard.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QWindow>

namespace korvo {

namespace {

QWidget* WidgetOf(QObject* watched) {
  if (watched->isWidgetType()) return static_cast<QWidget*>(watched);
  const auto* window = watched->isWindowType() ? static_cast<QWindow*>(watched) : nullptr;
  return window != nullptr && window->handle() != nullptr ? QWidget::find(window->winId()) : nullptr;
}

bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Enter:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}

}  // namespace

ModalGuard::ModalGuard(QWidget& main) : main_(main) {
  soon_.setSingleShot(true);
  soon_.setInterval(0);
  connect(&soon_, &QTimer::timeout, this, [this] {
    if (front() != nullptr) BringToFront();
  });
}

ModalGuard::Hold::Hold(ModalGuard& guard, QDialog& window) : guard_(guard), window_(window) {
  window.setWindowModality(Qt::NonModal);
  guard.Push(window);
}

ModalGuard::Hold::~Hold() {
  window_.hide();
  guard_.Pop(window_);
}

void ModalGuard::Push(QDialog& window) {
  if (open_.empty()) qApp->installEventFilter(this);
  open_.push_back(&window);
}

void ModalGuard::Pop(QDialog& window) {
  if (std::erase(open_, &window) == 0) return;
  if (open_.empty()) qApp->removeEventFilter(this);
  // A person who has gone to another program stays there.
  if (QApplication::applicationState() == Qt::ApplicationActive) BringToFront();
}

void ModalGuard::CloseAbove(const QDialog& window) {
  // Not by a rejection: what asks may take it for a yes.
  while (!open_.empty() && open_.back() != &window && open_.back()->close()) continue;
}

bool ModalGuard::IsBehind(const QWidget& widget) const {
  for (const QWidget* at = &widget; at != nullptr; at = at->parentWidget()) {
    if (at == front()) return false;
  }
  return true;
}

void ModalGuard::BringToFront() {
  QWidget& front = open_.empty() ? main_ : *open_.back();
  front.raise();
  front.activateWindow();
}

bool ModalGuard::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type == QEvent::Polish) {
    auto* const dialog = qobject_cast<QDialog*>(watched);
    if (dialog == nullptr || !dialog->isModal()) return false;
    dialog->setWindowModality(Qt::NonModal);
    Push(*dialog);
    connect(dialog, &QDialog::finished, this, [this, dialog] { Pop(*dialog); });
    return false;
  }
  if (type != QEvent::Close && type != QEvent::WindowActivate && !IsInput(type)) return false;
  const QWidget* const widget = WidgetOf(watched);
  if (widget == nullptr || !IsBehind(*widget)) return false;
  // The toolkit leads all input to an open popup, which need not know to whom it belongs.
  if (IsInput(type) && QApplication::activePopupWidget() != nullptr) return false;
  const bool activated = type == QEvent::WindowActivate;
  if (activated ? widget->isWindow() : type == QEvent::MouseButtonPress) soon_.start();
  if (activated) return false;
  if (type == QEvent::Close && qobject_cast<const QDialog*>(widget) == nullptr) return false;
  // An override that is taken keeps the key from being a shortcut.
  event->setAccepted(type == QEvent::ShortcutOverride);
  return true;
}

}  // namespace korvo
