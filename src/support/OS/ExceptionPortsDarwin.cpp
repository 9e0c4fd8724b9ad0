#include "support/OS/ExceptionPorts.h"

#include <mach/mach.h>

namespace quillstead::OS {

void detachExceptionPorts() {
  constexpr exception_mask_t faults =
      EXC_MASK_BAD_ACCESS | EXC_MASK_BAD_INSTRUCTION | EXC_MASK_ARITHMETIC | EXC_MASK_BREAKPOINT;
  static_assert(faults == 0x4E && EXCEPTION_DEFAULT == 1 && THREAD_STATE_NONE == 5);
  task_set_exception_ports(mach_task_self(), faults, MACH_PORT_NULL, EXCEPTION_DEFAULT,
                           THREAD_STATE_NONE);
}

}  // namespace quillstead::OS
