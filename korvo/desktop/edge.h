// The edge between the toolkit and the functions of the window that it calls.
#pragma once

#include <QObject>
#include <functional>
#include <type_traits>
#include <utility>

namespace korvo {

/// Nothing may be thrown through the toolkit's loops: what a function of the window throws is told to the person, and
/// the window goes on. What the plug-in is called for has an edge of its own (Waits::InPlugin).
class Edge {
 public:
  /// `tell` shows a text to the person.
  explicit Edge(std::function<void(const QString&)> tell) : tell_(std::move(tell)) {}
  Edge(const Edge&) = delete;
  Edge& operator=(const Edge&) = delete;

  template <class Work>
  void Run(const Work& work) const noexcept {
    try {
      work();
    } catch (...) {
      TellWhatIsThrown();
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
  void TellWhatIsThrown() const noexcept;

  std::function<void(const QString&)> tell_;
};

}  // namespace korvo
