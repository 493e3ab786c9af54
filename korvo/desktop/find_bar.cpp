#include "korvo/desktop/find_bar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace korvo {

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      label_(new QLabel),
      number_(new QLineEdit),
      enter_(new QPushButton),
      end_pick_(new QPushButton(QStringLiteral("Beenden (Esc)"))),
      escape_(new QAction(this)) {
  setAutoFillBackground(true);
  label_->setBuddy(number_);
  number_->setObjectName(QStringLiteral("find"));
  number_->setClearButtonEnabled(true);
  number_->setMaximumWidth(220);
  number_->setAccessibleName(QStringLiteral("Punktnummer"));
  enter_->setObjectName(QStringLiteral("find_button"));
  end_pick_->setObjectName(QStringLiteral("end_pick"));
  escape_->setShortcut(Qt::Key_Escape);
  addAction(escape_);
  auto* line = new QHBoxLayout(this);
  line->setContentsMargins(6, 3, 6, 3);
  line->addWidget(label_);
  line->addWidget(number_);
  line->addWidget(enter_);
  line->addWidget(end_pick_);
  line->addStretch(1);
  SetPicking(false);
  connect(number_, &QLineEdit::returnPressed, this, &FindBar::Enter);
  connect(enter_, &QPushButton::clicked, this, &FindBar::Enter);
  connect(end_pick_, &QPushButton::clicked, this, &FindBar::PickEnded);
  connect(escape_, &QAction::triggered, this, &FindBar::PickEnded);
}

void FindBar::SetPicking(bool picking) {
  label_->setText(picking ? QStringLiteral("Punkt wählen – in Karte oder Tabelle, oder N&ummer:")
                          : QStringLiteral("Punkt &suchen:"));
  enter_->setText(picking ? QStringLiteral("&Wählen") : QStringLiteral("&Zeigen"));
  end_pick_->setVisible(picking);
  escape_->setEnabled(picking);
  number_->clear();
  QPalette colours;
  if (picking) {
    colours.setColor(QPalette::Window, QColor(0xff, 0xe2, 0xb3));
    colours.setColor(QPalette::WindowText, QColor(0x2b, 0x2b, 0x2b));
  }
  setPalette(colours);
}

void FindBar::Begin() {
  number_->setFocus();
  number_->selectAll();
}

void FindBar::Enter() {
  const QString number = number_->text().trimmed();
  if (!number.isEmpty()) Q_EMIT Entered(number);
}

}  // namespace korvo
