#pragma once

namespace quillstead::OS {

/// Takes the process's faults (bad access, bad instruction, arithmetic, breakpoint) away from any
/// exception handler outside it, so that they arrive as signals. Systems without exception ports
/// deliver signals anyway; there it does nothing.
void detachExceptionPorts();

}  // namespace quillstead::OS
