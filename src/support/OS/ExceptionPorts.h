#pragma once

namespace quillstead::OS {

/// Detaches the process's exception ports, so that faults (bad access, bad instruction, arithmetic,
/// breakpoint) arrive as signals and not at a handler outside the process. Does nothing on systems
/// without exception ports.
void detachExceptionPorts();

}  // namespace quillstead::OS
