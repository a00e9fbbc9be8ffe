#pragma once

#include <QtGlobal>

namespace quarrynet {

/// Distinguishes a connection that was reset (RST, RFC 9293 section 3.5.2) from one that was closed in order (FIN).
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

    /// Returns whether the watched connection was reset. Returns false when nothing is watched.
    bool sawReset() const;

    void forget();

private:
    qintptr descriptor_ = -1;
};

} // namespace quarrynet
