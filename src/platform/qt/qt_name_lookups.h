#pragma once

namespace ferrowyn::name_lookups {

/// The toolkit looks names up on threads of its own, which it waits for only when what they use is gone: one that comes
/// back while the process ends takes it down with a crash. From now on, until `noteDone`, the process ends with its
/// exit status and all output, but without the destructors of static objects. Any thread.
void noteUnderWay();
/// Every lookup that was told of has come back.
void noteDone();

}  // namespace ferrowyn::name_lookups
