// Measures the map beside a bare scene of the toolkit.
#pragma once

namespace korvo {

/// Prints the figures; 0, or 1 where they could not be taken.
int RunBench();

}  // namespace korvo
