#include "platform/linux/ProcessPreparation.h"

#include <signal.h>
#include <sys/resource.h>

namespace stavelin::platform {

void prepareProcess()
{
    constexpr rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::signal(SIGPIPE, SIG_IGN);
}

} // namespace stavelin::platform
