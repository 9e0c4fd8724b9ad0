#include "support/OS/ExceptionPorts.h"

#include <mach/mach.h>

namespace quillstead::OS {

namespace {

constexpr exception_mask_t faults =
    EXC_MASK_BAD_ACCESS | EXC_MASK_BAD_INSTRUCTION | EXC_MASK_ARITHMETIC | EXC_MASK_BREAKPOINT;
static_assert(faults == 0x4E);
static_assert(EXCEPTION_DEFAULT == 1);
static_assert(MACH_PORT_NULL == 0);
#ifdef __x86_64__
static_assert(THREAD_STATE_NONE == 13);  // flavours are numbered anew for each processor
#else
static_assert(THREAD_STATE_NONE == 5);
#endif

}  // namespace

void detachExceptionPorts() {
  task_set_exception_ports(mach_task_self(), faults, MACH_PORT_NULL, EXCEPTION_DEFAULT,
                           THREAD_STATE_NONE);
}

}  // namespace quillstead::OS
