// What Enter and Return mean in a list or a table.
#pragma once

#include <QModelIndex>
#include <functional>

class QAbstractItemView;

namespace korvo {

class Edge;

/// `work` gets the current entry, where there is one. (The toolkit's `activated` comes with a single click in some
/// styles.) The edge must outlive the view.
void OnEnter(QAbstractItemView* view, const Edge& edge, std::function<void(const QModelIndex&)> work);

}  // namespace korvo
