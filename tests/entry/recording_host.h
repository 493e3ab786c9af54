// A host that writes down what it is asked, and fails where a test wants it to.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "entry/host/host.h"

namespace recording {

struct Host {
  Host();
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// Operations with what tells them apart, in order; the binding of columns is one entry.
  std::vector<std::string> calls;
  /// Choices in the menu; none left: 0.
  std::deque<int> choices;
  /// Points that the person picks; none left: the picking ends.
  std::deque<std::string> picks;
  /// Runs behind the note of each call.
  std::function<void(const std::string& call)> on_call = [](const std::string&) {};

  HostTable points{};
  HostTable dba{};
  HostTable dbv{};
  int dbh = 0;
  HostState state{};
  HostState* state_pointer = &state;
};

}  // namespace recording
