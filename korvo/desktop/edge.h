// The edge between the toolkit and the functions of ours that it calls.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <type_traits>
#include <utility>

namespace korvo {

/// Nothing may be thrown through the toolkit's loops. The main window tells the person what its functions throw, and
/// goes on; a dialog ends, and what was thrown is raised behind its loop (Waits::AtEdge).
class Edge {
 public:
  /// `caught` is called while what was thrown is handled: `throw;` gives it again.
  explicit Edge(std::function<void()> caught) : caught_(std::move(caught)) {}
  Edge(const Edge&) = delete;
  Edge& operator=(const Edge&) = delete;

  template <class Work>
  void Run(const Work& work) const noexcept {
    try {
      work();
    } catch (...) {
      Caught();
    }
  }

  /// QObject::connect, with the edge around `work`, which takes what the signal gives, or nothing. The edge must
  /// outlive the connection.
  template <class Sender, class Of, class... Given, class Work>
  void Connect(Sender* sender, void (Of::*signal)(Given...), QObject* context, Work work) const {
    if constexpr (std::is_invocable_v<const Work&>) {
      QObject::connect(sender, signal, context, [this, work = std::move(work)] { Run(work); });
    } else {
      QObject::connect(sender, signal, context,
                       [this, work = std::move(work)](Given... given) { Run([&] { work(given...); }); });
    }
  }

 private:
  void Caught() const noexcept;

  std::function<void()> caught_;
};

/// What is being handled, for the person.
QString FailureText();

}  // namespace korvo
