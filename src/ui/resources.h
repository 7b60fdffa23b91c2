#pragma once

namespace ferrowyn {

/// Makes the program's own drawings readable under ":/ferrowyn". Harmless to call again.
void loadResources();

}  // namespace ferrowyn
