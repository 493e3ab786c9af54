// The menu that the surveyor works from, and its commands.
#pragma once

namespace pktaus {

/// Binds the columns of the point table, loads the host's menu and carries out what the surveyor chooses until he
/// leaves it. The host's tables must be open. `extend_error`: what schema_extend gave.
void menu_loop(int extend_error);

}  // namespace pktaus
