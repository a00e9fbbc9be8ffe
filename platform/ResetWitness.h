#pragma once

#include <QtGlobal>

namespace quarrynet {

/// Distinguishes a connection that was broken, mostly by a reset (RST, RFC 9293 section 3.5.2) from one that was closed
/// in order (FIN).
///
/// QTcpSocket reports both alike and has then already closed its descriptor, so this keeps a duplicate. The connection
/// ends only after forget().
class ResetWitness
{
public:
    ResetWitness() = default;
    ~ResetWitness() { forget(); }
    Q_DISABLE_COPY_MOVE(ResetWitness)

    /// Starts watching a connected socket.
    void watch(qintptr descriptor);

    /// Returns the WinSock number of the failure that broke the watched connection: 10054 for a reset, on Windows also
    /// 10053 for a connection that this side gave up, and others. Returns 0 if there was none or nothing is watched.
    int failure() const;

    void forget();

private:
    qintptr descriptor_ = -1;
};

} // namespace quarrynet
