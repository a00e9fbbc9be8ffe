#include "platform/ResetWitness.h"

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

namespace quarrynet {

#ifdef Q_OS_WIN

void ResetWitness::watch(qintptr descriptor)
{
    forget();
    WSAPROTOCOL_INFOW info;
    if (::WSADuplicateSocketW(static_cast<SOCKET>(descriptor), ::GetCurrentProcessId(), &info) == 0) {
        descriptor_ = static_cast<qintptr>(::WSASocketW(FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO,
                                                        &info, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
    }
}

int ResetWitness::failure() const
{
    if (descriptor_ == -1)
        return 0;
    const auto socket = static_cast<SOCKET>(descriptor_);
    char byte = 0;
    if (::recv(socket, &byte, 1, MSG_PEEK) == SOCKET_ERROR && ::WSAGetLastError() != WSAEWOULDBLOCK)
        return ::WSAGetLastError();
    // The toolkit's own read may have taken the error with it. After the peer's FIN alone, our direction is still open,
    // and sending nothing succeeds.
    return ::send(socket, &byte, 0, 0) == SOCKET_ERROR && ::WSAGetLastError() != WSAEWOULDBLOCK ? WSAECONNRESET : 0;
}

void ResetWitness::forget()
{
    if (descriptor_ != -1)
        ::closesocket(static_cast<SOCKET>(descriptor_));
    descriptor_ = -1;
}

#else

void ResetWitness::watch(qintptr descriptor)
{
    forget();
    // A child process started meanwhile must not keep the connection open.
    descriptor_ = ::fcntl(static_cast<int>(descriptor), F_DUPFD_CLOEXEC, 0);
}

int ResetWitness::failure() const
{
    constexpr int kConnectionReset = 10054;
    if (descriptor_ == -1)
        return 0;
    // After the peer's FIN alone, our own direction is still open; only a reset closes both.
    pollfd state = {static_cast<int>(descriptor_), POLLIN, 0};
    const bool reset = ::poll(&state, 1, 0) == 1 && (state.revents & (POLLHUP | POLLERR)) != 0;
    return reset ? kConnectionReset : 0;
}

void ResetWitness::forget()
{
    if (descriptor_ != -1)
        ::close(static_cast<int>(descriptor_));
    descriptor_ = -1;
}

#endif

} // namespace quarrynet
