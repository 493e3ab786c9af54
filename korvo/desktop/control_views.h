// One view for each kind of control: it shows what the control holds and tells what the person does to it.
#pragma once

#include <QLabel>
#include <QSet>
#include <QTabWidget>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "korvo/desktop/edge.h"
#include "toolkit/dialog.h"

namespace korvo {

/// Where a control stands: pages and page, 0 and 0 for the window itself.
using Place = std::pair<toolkit::ControlId, int>;
Place PlaceOf(const toolkit::Control& control);

/// Letters that press or reach a control together with Alt, each at most once among all that are in sight together.
class ShortcutLetters {
 public:
  /// The text as one line with one of its letters marked; without a mark where all of its letters are taken. `held` is
  /// the letter of the text before, which is given back, and becomes the one that is marked now.
  QString Mark(std::string_view ansi, const Place& place, QChar* held);

 private:
  bool IsTaken(QChar letter, const Place& place) const;

  std::map<Place, QSet<QChar>> taken_;
};

/// The widgets of one control. They bear the control's number as their object name and belong to their parent widget;
/// the view must not be used after them.
class ControlView {
 public:
  /// To the window; they must outlive the view.
  struct Ways {
    Edge edge;  ///< around what the toolkit calls
    std::function<void(const toolkit::Event&)> send;
  };

  explicit ControlView(const toolkit::Control& control) : control_(control) {}
  virtual ~ControlView() = default;
  ControlView(const ControlView&) = delete;
  ControlView& operator=(const ControlView&) = delete;

  const toolkit::Control& control() const { return control_; }
  /// What stands in the layout, and in front of it the label, which may be null.
  QWidget* widget() const { return widget_; }
  QLabel* label() const { return label_; }
  /// Whether it takes height that the window has to spare, and how much compared with others; 0 for not at all.
  virtual int Growth() const { return 0; }
  /// Whether it takes the width that its row has to spare.
  virtual bool IsWide() const { return true; }

  /// Its widgets that the keyboard comes to, in order.
  virtual std::vector<QWidget*> Stops() const { return {widget_}; }

  /// Whether the control holds what is shown: what is no value of its kind is shown alone.
  virtual bool IsHeld() const { return true; }
  /// Says beside what is not held what is wrong with it, and brings the keyboard there.
  virtual void PointOut() {}

  /// Brings the widgets up to what the control holds now, but for its captions.
  void Show();
  /// Brings its captions up to date. One that stays the same keeps its letter; those of a control that has not been
  /// visible yet take none.
  void ShowCaptions(ShortcutLetters* letters);

 protected:
  void SetWidget(QWidget* widget);
  void AddLabel(QWidget* parent);
  /// All that a letter can be marked in.
  virtual std::vector<std::string> Captions() const { return {control_.label()}; }
  virtual void ShowCaption(std::size_t which, const QString& marked);
  virtual void ShowContents() = 0;

 private:
  struct Caption {
    std::optional<std::string> shown;
    QChar letter;
  };
  const toolkit::Control& control_;
  QWidget* widget_ = nullptr;
  QLabel* label_ = nullptr;
  std::vector<Caption> captions_;
};

/// A sheet of pages; whoever lays the dialog out fills them.
class PagesView : public ControlView {
 public:
  PagesView(const toolkit::Pages& pages, QWidget* parent, const Ways& ways);
  int Growth() const override { return 1; }
  /// The page of that index from 0, which need not have a caption yet.
  QWidget* Page(int index);

 protected:
  std::vector<std::string> Captions() const override { return pages_.captions; }
  void ShowCaption(std::size_t which, const QString& marked) override;
  void ShowContents() override;

 private:
  const toolkit::Pages& pages_;
  QTabWidget* tabs_;
  std::vector<QWidget*> made_;
};

/// The view of any control, its widgets below `parent`.
std::unique_ptr<ControlView> MakeView(const toolkit::Control& control, QWidget* parent, const ControlView::Ways& ways);

}  // namespace korvo
