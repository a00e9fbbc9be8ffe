#include "ordinary_user.h"

#include <grp.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace ordinary_user {

namespace {

constexpr uid_t kNobody = 65534;
constexpr const char* kStartedAgain = "QUARRYNET_TEST_HOME"; // the home folder, which the first start created

} // namespace

QString become(char* const* arguments)
{
    if (geteuid() != 0)
        return {};
    if (qEnvironmentVariableIsSet(kStartedAgain))
        return u"The tests still run as root after changing the user"_s;
    const QByteArray program = QFile::encodeName(QFileInfo(u"/proc/self/exe"_s).symLinkTarget());
    QByteArray home = QDir::tempPath().toLocal8Bit() + "/quarrynet-test-" + QByteArray(6, 'X');
    if (mkdtemp(home.data()) == nullptr || chown(home.constData(), kNobody, kNobody) != 0)
        return u"Cannot create a home folder for another user"_s;
    // A child process runs the tests, so that the parent can remove its home folder.
    const pid_t child = fork();
    if (child > 0) {
        int status = 0;
        waitpid(child, &status, 0);
        QDir(QString::fromLocal8Bit(home)).removeRecursively();
        _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 1);
    }
    if (child < 0 || setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0)
        return u"Cannot change the user"_s;
    for (const char* name : {kStartedAgain, "HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                             "XDG_CACHE_HOME", "XDG_STATE_HOME"})
        qputenv(name, home);
    // Starts the program again, because a process that changed its user may not inspect itself.
    execv(program.constData(), arguments);
    return u"These tests need an ordinary user, and other users cannot run "_s + QFile::decodeName(program);
}

bool mayMakeNamespaces()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(unshare(CLONE_NEWUSER) == 0 && unshare(CLONE_NEWPID | CLONE_NEWNET) == 0 ? 0 : 1);
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace ordinary_user
