#include "korvo/desktop/enter_key.h"

#include <QAbstractItemView>
#include <QAction>
#include <utility>

#include "korvo/desktop/edge.h"

namespace korvo {

void OnEnter(QAbstractItemView* view, const Edge& edge, std::function<void(const QModelIndex&)> work) {
  auto* enter = new QAction(view);
  enter->setShortcuts({Qt::Key_Return, Qt::Key_Enter});
  enter->setShortcutContext(Qt::WidgetShortcut);
  view->addAction(enter);
  edge.Connect(enter, &QAction::triggered, view, [view, work = std::move(work)] {
    if (view->currentIndex().isValid()) work(view->currentIndex());
  });
}

}  // namespace korvo
