#pragma once

#include <QtGlobal>

namespace quarrynet {

/// Tells a connection that was reset (RST, RFC 9293 section 3.5.2) from one that ended in an orderly way (FIN).
///
/// QTcpSocket reports both alike and has closed its descriptor by then, so this keeps a second one of the same
/// connection. It has to be forgotten for the connection to end.
class ResetWitness
{
public:
    ResetWitness() = default;
    ~ResetWitness() { forget(); }
    Q_DISABLE_COPY_MOVE(ResetWitness)

    /// Begins to watch a connected socket.
    void watch(qintptr descriptor);

    /// False when nothing is watched.
    bool sawReset() const;

    void forget();

private:
    qintptr descriptor_ = -1;
};

} // namespace quarrynet
