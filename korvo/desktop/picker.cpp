#include "korvo/desktop/picker.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeView>
#include <algorithm>

#include "base/path.h"
#include "korvo/desktop/modal_guard.h"
#include "korvo/desktop/settings.h"
#include "korvo/desktop/shell.h"
#include "korvo/host/project.h"

namespace korvo {

namespace {

constexpr QSize kUsualSize(860, 520);  // with dates that can be read

QString FolderKey() { return QStringLiteral("ordner/letzter"); }
QString SizeKey() { return QStringLiteral("ordner/groesse"); }

QString FirstFolder() {
  QString last = Remembered().value(FolderKey()).toString();
  if (!last.isEmpty() && QDir(last).exists()) return last;
  return QString::fromStdString(path::ToDisk(ProjectFolder()));
}

/// Tells files by their being, not by what is in them: of some that look like files nothing ever comes.
class PlainIcons : public QFileIconProvider {
 public:
  QIcon icon(const QFileInfo& info) const override { return info.isDir() ? folder_ : file_; }
  QString type(const QFileInfo& info) const override {
    return info.isDir() ? QStringLiteral("Verzeichnis") : info.suffix().toUpper() + QStringLiteral("-Datei");
  }

 private:
  QIcon folder_ = QFileIconProvider::icon(Folder);
  QIcon file_ = QFileIconProvider::icon(File);
};

/// Sizes and days as in all windows; the toolkit's own are those of the system's language.
class GermanFacts : public QIdentityProxyModel {
 public:
  using QIdentityProxyModel::QIdentityProxyModel;

  QVariant data(const QModelIndex& index, int role) const override {
    enum Column { kSize = 1, kDay = 3 };
    const bool told = role == Qt::DisplayRole && (index.column() == kSize || index.column() == kDay);
    if (!told) return QIdentityProxyModel::data(index, role);
    const QFileInfo file = static_cast<QFileSystemModel*>(sourceModel())->fileInfo(mapToSource(index));
    if (index.column() == kDay) return QLocale().toString(file.lastModified(), QStringLiteral("dd.MM.yyyy HH:mm"));
    return file.isDir() ? QString() : QLocale().formattedDataSize(file.size(), 1, QLocale::DataSizeTraditionalFormat);
  }
};

}  // namespace

PickerIcons::PickerIcons() : icons(std::make_unique<PlainIcons>()) {}

PickerIcons::~PickerIcons() = default;

Picker::Picker(QWidget* parent, const QString& title) : QFileDialog(parent, title, FirstFolder()) {
  setOption(DontUseNativeDialog);
  setIconProvider(icons.get());
  setProxyModel(new GermanFacts(this));
  for (const QTreeView* files : findChildren<QTreeView*>()) {
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  }
  RestoreSize(this, SizeKey(), kUsualSize);
}

Picker::~Picker() { KeepSize(*this, SizeKey()); }

QString Picker::Ask(Waits& waits, ModalGuard& guard) {
  Waits::Wait wait(waits, [&] {
    guard.CloseAbove(*this);
    reject();
  });
  connect(this, &QDialog::finished, this, [&] { wait.Stop(); });
  // A click on one must not end the typing of a new name first: that would give it to the file.
  for (auto* button : findChild<QDialogButtonBox*>()->buttons()) button->setFocusPolicy(Qt::TabFocus);
  const ModalGuard::Hold hold(guard, *this);
  show();
  wait.Run();
  return result() == Accepted ? selectedFiles().value(0) : QString();
}

void Picker::accept() {
  const QString chosen = selectedFiles().value(0);
  const auto has = [&](const QString& ending) { return chosen.endsWith(ending, Qt::CaseInsensitive); };
  if (!endings.isEmpty() && !QFileInfo(chosen).isDir() && std::none_of(endings.begin(), endings.end(), has)) {
    // The toolkit itself leaves the field alone while the person is in it.
    auto* const name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name->setText(name->text() + QLatin1Char('.') + defaultSuffix());
  }
  QFileDialog::accept();
}

void Picker::done(int result) {
  if (result != Accepted) DropNewName();
  if (result != Accepted || !takes || takes(selectedFiles().value(0))) QFileDialog::done(result);
}

void Picker::DropNewName() {
  QWidget* const at = focusWidget();
  for (const auto* files : findChildren<QAbstractItemView*>()) {
    if (at == nullptr || at->parentWidget() != files->viewport()) continue;
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(at, &escape);
  }
}

void Picker::Remember(const QString& picked) {
  const QFileInfo facts(picked);
  Remembered().setValue(FolderKey(), facts.isDir() ? facts.absoluteFilePath() : facts.absolutePath());
}

}  // namespace korvo
