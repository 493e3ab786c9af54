// Pickers of files and folders, which all look alike.
#pragma once

#include <QFileDialog>
#include <functional>
#include <memory>

class QFileIconProvider;

namespace korvo {

class ModalGuard;
class Waits;

/// What a picker needs longer than its base class lives.
struct PickerIcons {
  PickerIcons();
  ~PickerIcons();
  std::unique_ptr<QFileIconProvider> icons;
};

/// Begins in the folder that was remembered last, else in that of the project, and in the size of the last picker.
class Picker : private PickerIcons, public QFileDialog {
 public:
  Picker(QWidget* parent, const QString& title);
  ~Picker() override;

  /// Whether it takes what is chosen, where it is not to take all; it stays open where not.
  std::function<bool(const QString& chosen)> takes;

  /// A name with none of these endings gets the default suffix, also where it has another one or a point in it. Empty:
  /// one that has any suffix stays.
  QStringList endings;

  /// What the person picks; empty for nothing. Until then the guard keeps the person here.
  QString Ask(Waits& waits, ModalGuard& guard);
  /// The next picker begins there. For what could be opened or written.
  static void Remember(const QString& picked);

 protected:
  void accept() override;
  void done(int result) override;

 private:
  /// A new name of a file that is still being typed: the editor would give it to the file when it is hidden.
  void DropNewName();
};

}  // namespace korvo
