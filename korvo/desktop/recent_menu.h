// A menu of the projects that were opened last and are still there.
#pragma once

#include <QMenu>

namespace korvo {

class RecentMenu : public QMenu {
  Q_OBJECT

 public:
  explicit RecentMenu(const QString& title, QWidget* parent = nullptr);

  /// `path` comes first from now on, also after the next start.
  void Remember(const QString& path);

 Q_SIGNALS:
  void Chosen(const QString& path);

 private:
  void Fill();
};

}  // namespace korvo
