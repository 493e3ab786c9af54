// Numbers as catalogue and settings files hold them.
#pragma once

#include <cstdint>
#include <string_view>

namespace pktaus {

/// The decimal integer at the start of a text, behind leading white space and with an optional sign; what stands behind
/// it does not matter. 0 where there is none; beyond int32 the nearest int32.
std::int32_t ReadNumber(std::string_view text);

}  // namespace pktaus
