// The menu that the surveyor works from, and its commands.
#pragma once

namespace pktaus {

/// Binds the columns of the point table, loads the host's menu and carries out what the surveyor chooses until he
/// leaves it. The host's tables must be open.
void menu_loop();

}  // namespace pktaus
