#include "korvo/desktop/edge.h"

#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>

#include "korvo/desktop/text.h"
#include "platform/system.h"

namespace korvo {

namespace {

QString Reason() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return AsLine(platform::SystemErrorText(ENOMEM));
  } catch (const std::system_error& failure) {
    return AsLine(platform::SystemErrorText(failure.code().default_error_condition().value()));
  } catch (...) {
    return QStringLiteral("Unerwarteter Fehler.");
  }
}

}  // namespace

void Edge::Caught() const noexcept {
  try {
    caught_();
  } catch (...) {
    std::fputs("Korvo: Ausnahme in einem Fenster\n", stderr);
  }
}

QString FailureText() { return QStringLiteral("Das konnte nicht zu Ende geführt werden: ") + Reason(); }

}  // namespace korvo
