#include "korvo/desktop/notice_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <utility>

namespace korvo {

NoticeBar::NoticeBar(Kind kind, QWidget* parent) : QFrame(parent) {
  setAutoFillBackground(true);
  setFrameShape(QFrame::StyledPanel);
  QPalette colours = palette();
  colours.setColor(QPalette::Window, kind == Kind::kWarning ? QColor(0xff, 0xf1, 0xcc) : QColor(0xdd, 0xf0, 0xe0));
  colours.setColor(QPalette::WindowText, QColor(0x2b, 0x2b, 0x2b));
  setPalette(colours);

  auto* icon = new QLabel;
  const auto standard = kind == Kind::kWarning ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
  icon->setPixmap(style()->standardIcon(standard).pixmap(18, 18));
  text_ = new QLabel;
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long word, as a path is one, must not widen the window.
  text_->setMinimumWidth(1);
  button_ = new QPushButton;
  auto* close = new QToolButton;
  close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAutoRaise(true);
  close->setToolTip(QStringLiteral("Hinweis schließen"));
  close->setAccessibleName(close->toolTip());
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 4, 4, 4);
  layout->addWidget(icon, 0, Qt::AlignTop);
  layout->addWidget(text_, 1);
  layout->addWidget(button_);
  layout->addWidget(close, 0, Qt::AlignTop);
  connect(close, &QToolButton::clicked, this, &QWidget::hide);
  connect(button_, &QPushButton::clicked, this, [this] {
    hide();
    if (work_) work_();
  });
  hide();
}

void NoticeBar::Show(const QString& text) {
  text_->setText(text);
  button_->hide();
  setVisible(!text.isEmpty());
}

void NoticeBar::Show(const QString& text, const QString& button, std::function<void()> work) {
  work_ = std::move(work);
  button_->setText(button);
  button_->setVisible(true);
  text_->setText(text);
  show();
}

}  // namespace korvo
