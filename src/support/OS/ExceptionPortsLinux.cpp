#include "support/OS/ExceptionPorts.h"

namespace quillstead::OS {

void detachExceptionPorts() {}

}  // namespace quillstead::OS
