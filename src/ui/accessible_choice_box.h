#pragma once

namespace ferrowyn {

/// Has assistive technology hear a `ChoiceBox` by its own name, with the chosen text as its value: the toolkit's answer
/// names it after what is chosen. Main thread, before the first one is asked for its interface.
void installChoiceBoxAccessibility();

}  // namespace ferrowyn
