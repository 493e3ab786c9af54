#include "korvo/desktop/nas_window.h"

#include <QAbstractTableModel>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <set>

#include "korvo/desktop/edge.h"
#include "korvo/desktop/enter_key.h"
#include "korvo/desktop/settings.h"
#include "korvo/desktop/text.h"

namespace korvo {

namespace {

QString SizeKey() { return QStringLiteral("nas/groesse"); }

/// Names and identifiers are what the file makes them: with line breaks, or without an end.
QString Short(const QString& text) { return WithSigns(text.left(200)); }

}  // namespace

/// Members of one kind and class, or of all.
class NasModel : public QAbstractTableModel {
 public:
  enum Column { kKind, kType, kId, kKey, kPoint, kColumns };

  NasModel(const NasFile& file, const PointSet& points, QObject* parent)
      : QAbstractTableModel(parent), file_(file), points_(points) {
    FindPoints();
  }

  void FindPoints() {
    beginResetModel();
    point_of_ = PointsOf(file_, points_);
    endResetModel();
  }
  void Show(std::vector<std::size_t> members) {
    beginResetModel();
    rows_ = std::move(members);
    endResetModel();
  }
  const NasMember& MemberAt(int row) const { return file_.members()[rows_[static_cast<std::size_t>(row)]]; }
  int PointAt(int row) const { return point_of_[rows_[static_cast<std::size_t>(row)]]; }
  const std::vector<int>& points() const { return point_of_; }

  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
  }
  int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : kColumns; }

  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    const NasMember& member = MemberAt(index.row());
    switch (index.column()) {
      case kKind:
        return NameOf(member.kind);
      case kType:
        return Short(file_.types()[static_cast<std::size_t>(member.type)]);
      case kId:
        return Short(member.id);
      case kKey:
        return Short(member.point_key);
      default:
        return PointAt(index.row()) >= 0 ? AsLine(points_.Number(PointAt(index.row()))).trimmed() : QString();
    }
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    static const QString names[] = {QStringLiteral("Vorgang"), QStringLiteral("Klasse"), QStringLiteral("Kennung"),
                                    QStringLiteral("Punktkennung"), QStringLiteral("Punkt")};
    return names[section];
  }

 private:
  const NasFile& file_;
  const PointSet& points_;
  std::vector<int> point_of_;
  std::vector<std::size_t> rows_;
};

NasWindow::NasWindow(std::unique_ptr<NasFile> file, const PointSet& points, const Edge& edge, QWidget* parent)
    : QDialog(parent), file_(std::move(file)), points_(points), model_(new NasModel(*file_, points, this)) {
  setWindowTitle(QStringLiteral("NAS-Datei – ") + QFileInfo(file_->path()).fileName());
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowFlag(Qt::WindowMaximizeButtonHint);

  summary_ = new QLabel;
  summary_->setTextFormat(Qt::PlainText);
  summary_->setWordWrap(true);
  summary_->setTextInteractionFlags(Qt::TextSelectableByMouse);

  groups_ = new QListWidget;
  groups_->setObjectName(QStringLiteral("nas_groups"));
  groups_->setAccessibleName(QStringLiteral("Vorgänge und Klassen"));
  members_ = new QTableView;
  members_->setObjectName(QStringLiteral("nas_members"));
  members_->setAccessibleName(QStringLiteral("Objekte der Datei"));
  members_->setModel(model_);
  members_->setSelectionBehavior(QAbstractItemView::SelectRows);
  members_->setSelectionMode(QAbstractItemView::SingleSelection);
  members_->setTabKeyNavigation(false);
  members_->setWordWrap(false);
  members_->horizontalHeader()->setStretchLastSection(true);
  const int digit = members_->fontMetrics().horizontalAdvance(QLatin1Char('0'));
  constexpr int kCharacters[] = {10, 29, 19, 18, 16};
  for (int i = 0; i < NasModel::kColumns; ++i) members_->setColumnWidth(i, kCharacters[i] * digit);
  members_->verticalHeader()->setDefaultSectionSize(members_->fontMetrics().height() + 6);
  text_ = new QPlainTextEdit;
  text_->setObjectName(QStringLiteral("nas_text"));
  text_->setAccessibleName(QStringLiteral("Text des Objekts"));
  text_->setReadOnly(true);
  text_->setTabChangesFocus(true);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

  auto* right = new QSplitter(Qt::Vertical);
  right->addWidget(members_);
  right->addWidget(text_);
  right->setSizes({260, 340});
  right->setChildrenCollapsible(false);
  auto* across = new QSplitter;
  across->addWidget(groups_);
  across->addWidget(right);
  across->setStretchFactor(1, 1);
  across->setSizes({300, 880});
  across->setChildrenCollapsible(false);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  // Enter is for the objects.
  buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(summary_);
  layout->addWidget(across, 1);
  layout->addWidget(buttons);
  RestoreSize(this, SizeKey(), {1180, 740});

  std::map<std::pair<NasKind, int>, std::vector<std::size_t>> groups;
  std::vector<std::size_t> all(file_->members().size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    all[i] = i;
    groups[{file_->members()[i].kind, file_->members()[i].type}].push_back(i);
  }
  groups_->addItem(QStringLiteral("Alle Objekte (%1)").arg(all.size()));
  std::vector<std::vector<std::size_t>> lists = {all};
  for (auto& [key, list] : groups) {
    groups_->addItem(QStringLiteral("%1 %2 (%3)")
                         .arg(NameOf(key.first), Short(file_->types()[static_cast<std::size_t>(key.second)]),
                              QString::number(list.size())));
    lists.push_back(std::move(list));
  }
  connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
  edge.Connect(groups_, &QListWidget::currentRowChanged, this, [this, lists = std::move(lists)](int row) {
    if (row < 0) return;
    model_->Show(lists[static_cast<std::size_t>(row)]);
    if (model_->rowCount({}) > 0) {
      members_->selectRow(0);
    } else {
      text_->clear();
    }
  });
  edge.Connect(members_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
               [this](const QModelIndex& current, const QModelIndex& /*previous*/) {
                 ShowMember(current.isValid() ? current.row() : -1);
               });
  const auto choose = [this](const QModelIndex& index) {
    if (model_->PointAt(index.row()) >= 0) Q_EMIT PointChosen(model_->PointAt(index.row()));
  };
  edge.Connect(members_, &QAbstractItemView::clicked, this, choose);
  OnEnter(members_, edge, choose);
  groups_->setMinimumWidth(std::min(groups_->sizeHintForColumn(0) + 24, 420));
  groups_->setCurrentRow(0);
  ShowSummary();
  members_->setFocus();
}

NasWindow::~NasWindow() { KeepSize(*this, SizeKey()); }

std::vector<int> NasWindow::Points() const {
  std::set<int> found(model_->points().begin(), model_->points().end());
  found.erase(-1);
  return {found.begin(), found.end()};
}

void NasWindow::PointsRead() {
  model_->FindPoints();
  ShowSummary();
}

void NasWindow::ShowSummary() {
  const std::vector<int>& points = model_->points();
  QString text = QStringLiteral("Die Datei enthält keine NAS-Objekte (Einfügen, Ersetzen, Ändern, Löschen, Bestand).");
  if (!points.empty()) {
    text = QStringLiteral("Objekte: %1, davon zu Punkten des Projekts: %2.")
               .arg(points.size())
               .arg(std::count_if(points.begin(), points.end(), [](int point) { return point >= 0; }));
  }
  const std::size_t marked = Points().size();
  if (marked == 1) text += QStringLiteral(" Der Punkt ist in der Karte violett umringt.");
  if (marked > 1) text += QStringLiteral(" Die %1 Punkte sind in der Karte violett umringt.").arg(marked);
  if (!file_->trouble().isEmpty()) text += QLatin1Char('\n') + file_->trouble();
  summary_->setText(text);
  summary_->setToolTip(file_->path().toHtmlEscaped());
}

void NasWindow::ShowMember(int row) {
  constexpr qsizetype kMostShown = 2'000'000;
  if (row < 0 || row >= model_->rowCount({})) return text_->clear();
  const NasMember& member = model_->MemberAt(row);
  QString shown = file_->TextOf(member);
  if (shown.size() > kMostShown) shown = shown.left(kMostShown) + QStringLiteral("\n… (gekürzt)");
  text_->setPlainText(shown);
}

}  // namespace korvo
