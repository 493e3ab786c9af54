// The host's menus.
#pragma once

#include <string_view>

#include "korvo/host/front_end.h"

namespace korvo {

/// Null for a menu that the host does not have. Alive for the whole program.
const Menu* FindMenu(std::string_view name);

}  // namespace korvo
