#pragma once

/// Fault injection: a library that intercepts calls of the C library and makes one of them fail.
///
/// A test that links it arms it around the operation under test, with a number that grows by one until the operation
/// makes fewer calls; by then each call has failed once. Child processes get the library through LD_PRELOAD, the number
/// in QUARRYNET_FAIL_AT, the sum of the kinds in QUARRYNET_FAIL_KINDS (default: all), and in QUARRYNET_FAIL_MARK the
/// path of a file that is created when the call fails.
///
/// Calls fail as with a full or defective disk, a full table or a lost connection. A failing close() still closes, and
/// a lost connection transfers nothing more. Needs Linux with glibc, and no sanitizer, which has its own allocator.
extern "C" {

enum QuarrynetFaultKind
{
    /// open, read, write, seek, stat, chmod, chown, fsync, truncate, rename, unlink, mkdir, close, opendir, readdir
    QuarrynetFileFaults = 1,
    /// malloc, calloc, realloc, and thus operator new
    QuarrynetMemoryFaults = 2,
    /// socket, connect, accept, send and receive, also through read and write
    QuarrynetNetworkFaults = 4,
    /// other socket calls: options and errors, names, shutdown, pending bytes, duplication of the descriptor
    QuarrynetSocketStateFaults = 8,
    /// poll and ppoll
    QuarrynetWaitFaults = 16,
};

enum QuarrynetFaultError
{
    /// Each call fails with its typical error.
    QuarrynetUsualError = 0,
    /// The call sends or receives only one byte; other calls neither fail nor count.
    QuarrynetShortTransfer = -1,
};

/// Makes the `number`-th call from now (1-based) of these kinds fail once, in any thread that is not spared.
void quarrynet_fail_at(long number, int kinds);

/// Sets the errno of failing calls, or a QuarrynetFaultError.
void quarrynet_fail_with(int error);

/// Exempts the calling thread, which is not under test: its calls neither fail nor count.
void quarrynet_spare_this_thread();

/// Stops failing calls. Returns whether the call was reached.
bool quarrynet_stop_failing();
}

namespace quarrynet {

/// Runs `operation` repeatedly; each run makes the next call fail. `prepare` runs before it and `judge` after it,
/// without faults. Returns the number of runs in which a call failed, or -1 if the runs do not come to an end.
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

/// Calls `judge` with the number of the call that fails: with each number up to `eachUpTo`, then with numbers that grow
/// by one and a `step`-th each time, until it returns false. Returns the last number.
template <class Judge>
long failCallsUntil(long eachUpTo, long step, Judge judge)
{
    constexpr long kMostCalls = 1'000'000;
    long number = 1;
    while (number < kMostCalls && judge(number))
        number += number < eachUpTo ? 1 : 1 + number / step;
    return number;
}

} // namespace quarrynet
