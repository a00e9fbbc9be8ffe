#pragma once

/// Faults on purpose: a library that stands in front of the C library and makes one call fail.
///
/// A test that links it arms it around the operation under test and counts upward until the operation needs no call
/// that many: every call has failed once then. A program of its own is run with the library in LD_PRELOAD,
/// QUARRYNET_FAIL_AT (the number), QUARRYNET_FAIL_KINDS (the sum of the kinds; all when unset) and QUARRYNET_FAIL_MARK
/// (a file that is made when the call has failed; without that file afterwards nothing failed any more).
///
/// A call fails as a full disk, a worn-out one, a table without room or a lost connection would make it fail; what is
/// closed is closed all the same, and a connection that is lost carries nothing afterwards. Linux with glibc, and not
/// together with a sanitizer, which has its own allocator.
extern "C" {

enum QuarrynetFaultKind
{
    /// open, read, write, seek, state, synchronise, truncate, rename, remove, close; directory steps
    QuarrynetFileFaults = 1,
    /// malloc, calloc, realloc, and so operator new
    QuarrynetMemoryFaults = 2,
    /// socket, connect, accept, send, receive, also by read and write
    QuarrynetNetworkFaults = 4,
    /// what a socket is asked or told besides: its errors, names, options, bytes that wait, a second descriptor for it
    QuarrynetSocketStateFaults = 8,
    /// poll and ppoll
    QuarrynetWaitFaults = 16,
};

enum QuarrynetFaultError
{
    /// Each call fails with an error of its own.
    QuarrynetUsualError = 0,
    /// What is sent and received is one byte; other calls neither fail nor count.
    QuarrynetShortTransfer = -1,
};

/// From now on the `number`-th call (from 1) of these kinds fails, in any thread that is not spared, once.
void quarrynet_fail_at(long number, int kinds);

/// The errno of the calls that fail, or a QuarrynetFaultError.
void quarrynet_fail_with(int error);

/// The calls of the calling thread neither fail nor count: it is no part of what is tested.
void quarrynet_spare_this_thread();

/// Nothing fails any more. Whether the call was reached.
bool quarrynet_stop_failing();
}

namespace quarrynet {

/// Runs `operation` again and again; in each run one call more succeeds before one fails. `prepare` runs before, and
/// `judge` after it, without faults. Gives how many runs failed a call, or -1 when that would not end.
template <class Prepare, class Operation, class Judge>
long failEveryCall(int kinds, Prepare prepare, Operation operation, Judge judge)
{
    constexpr long kMostCalls = 1'000'000;
    for (long number = 1; number < kMostCalls; ++number) {
        prepare();
        quarrynet_fail_at(number, kinds);
        operation();
        const bool failed = quarrynet_stop_failing();
        judge(number, failed);
        if (!failed)
            return number - 1;
    }
    return -1;
}

} // namespace quarrynet
