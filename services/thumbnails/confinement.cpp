#include "thumbnails/confinement.h"

#include <cerrno>
#include <grp.h>
#include <sys/resource.h>
#include <unistd.h>

#ifdef __linux__
#include <initializer_list>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#endif

namespace quarrynet::services {

namespace {

constexpr rlim_t kMaxMemory = rlim_t{1} << 30U;

bool giveUpRoot()
{
    if (::geteuid() != 0)
        return true;
    constexpr uid_t kNobody = 65534;
    return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

bool boundResources()
{
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // sanitizers reserve terabytes of address space
    const rlimit memory{kMaxMemory, kMaxMemory};
    if (::setrlimit(RLIMIT_AS, &memory) != 0)
        return false;
#endif
    const rlimit none{0, 0};
    return ::setrlimit(RLIMIT_CORE, &none) == 0 && ::setrlimit(RLIMIT_FSIZE, &none) == 0;
}

#ifdef __linux__

/// Makes every system call that is not listed here fail with EPERM, on all threads.
bool filterSystemCalls()
{
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ERRNO(EPERM));
    if (filter == nullptr)
        return false;
    bool made = seccomp_attr_set(filter, SCMP_FLTATR_CTL_TSYNC, 1) == 0;
    const auto allow = [&](int call) { made = made && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0; };
    const auto allowIf = [&](int call, const scmp_arg_cmp& condition) {
        made = made && seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 1, &condition) == 0;
    };
    for (const int call : {SCMP_SYS(read),
                           SCMP_SYS(readv),
                           SCMP_SYS(write),
                           SCMP_SYS(writev),
                           SCMP_SYS(lseek),
                           SCMP_SYS(close),
                           SCMP_SYS(poll),
                           SCMP_SYS(ppoll),
                           SCMP_SYS(eventfd2),
                           SCMP_SYS(munmap),
                           SCMP_SYS(mremap),
                           SCMP_SYS(madvise),
                           SCMP_SYS(brk),
                           SCMP_SYS(futex),
                           SCMP_SYS(set_robust_list),
                           SCMP_SYS(rseq),
                           SCMP_SYS(gettid),
                           SCMP_SYS(getpid),
                           SCMP_SYS(sched_yield),
                           SCMP_SYS(sched_getaffinity),
                           SCMP_SYS(clock_gettime),
                           SCMP_SYS(clock_getres),
                           SCMP_SYS(clock_nanosleep),
                           SCMP_SYS(nanosleep),
                           SCMP_SYS(gettimeofday),
                           SCMP_SYS(time),
                           SCMP_SYS(getrandom),
                           SCMP_SYS(getrusage),
                           SCMP_SYS(rt_sigaction),
                           SCMP_SYS(rt_sigprocmask),
                           SCMP_SYS(rt_sigreturn),
                           SCMP_SYS(sigaltstack),
                           SCMP_SYS(restart_syscall),
                           SCMP_SYS(exit),
                           SCMP_SYS(exit_group)})
        allow(call);
    // Reading a picture needs no executable memory.
    allowIf(SCMP_SYS(mmap), SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0));
    allowIf(SCMP_SYS(mprotect), SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0));
    // Allows threads, but no processes. A filter cannot see the flags of clone3(); without it the C library uses
    // clone().
    allowIf(SCMP_SYS(clone), SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD));
    made = made && seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0;
    allowIf(SCMP_SYS(prctl), SCMP_A0(SCMP_CMP_EQ, PR_SET_NAME));
    // Only for this process itself: its own limits and its own abort.
    allowIf(SCMP_SYS(prlimit64), SCMP_A0(SCMP_CMP_EQ, 0));
    allowIf(SCMP_SYS(tgkill), SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(::getpid())));
    made = made && seccomp_load(filter) == 0;
    seccomp_release(filter);
    return made;
}

#endif

} // namespace

bool confineProcess()
{
    if (!giveUpRoot() || !boundResources())
        return false;
#ifdef __linux__
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && filterSystemCalls();
#else
    return true;
#endif
}

} // namespace quarrynet::services
