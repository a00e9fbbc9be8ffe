#include <QLabel>
#include <QtTest>

#include "dialogs/Dialog.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

using namespace Qt::Literals::StringLiterals;
using quarrynet::Dialog;

class WaitBoxTest : public QObject
{
    Q_OBJECT

private slots:
    void saysWhatItWaitsFor();
    void personCannotCloseIt();
#ifdef Q_OS_WIN
    void systemMenuHasNoClose();
#endif
    void codeClosesIt();
    void secondLoadKeepsTheOneBox();
    void endOfTheProgramClosesIt_data();
    void endOfTheProgramClosesIt();
};

void WaitBoxTest::saysWhatItWaitsFor()
{
    Dialog dialog;
    QCOMPARE(dialog.objectName(), u"Dialog"_s);
    QCOMPARE(dialog.windowTitle(), u"Quarrynet"_s);
    QCOMPARE(dialog.findChild<QLabel*>(u"Label1"_s)->text(), u"Contacting download site...Please wait"_s);
    QVERIFY(!dialog.findChild<QLabel*>(u"Image1"_s)->pixmap().isNull());
    QVERIFY(!dialog.isVisible());
    dialog.load();
    QVERIFY(!dialog.isModal());
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        dialog.grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/wait_box.png"_s);
}

void WaitBoxTest::personCannotCloseIt()
{
    Dialog dialog;
    dialog.load();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(dialog.isVisible());
    QTest::keyClick(&dialog, Qt::Key_Return);
    QVERIFY(dialog.isVisible());
    QVERIFY(!dialog.close());
    QVERIFY(dialog.isVisible());
}

#ifdef Q_OS_WIN

void WaitBoxTest::systemMenuHasNoClose()
{
    if (QGuiApplication::platformName() != u"windows")
        QSKIP("Only a window of the system has a system menu");
    QWidget window;
    window.show();
    QDialog other(&window);
    other.show();
    Dialog dialog(&window);
    HMENU usual = ::GetSystemMenu(reinterpret_cast<HWND>(other.winId()), FALSE);
    const int entries = ::GetMenuItemCount(usual);
    QVERIFY(::GetMenuState(usual, SC_CLOSE, MF_BYCOMMAND) != UINT(-1));
    for (int times = 0; times < 2; ++times) {
        dialog.load();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const auto handle = reinterpret_cast<HWND>(dialog.winId());
        HMENU menu = ::GetSystemMenu(handle, FALSE);
        QCOMPARE(::GetMenuItemCount(menu), entries - 1);
        QCOMPARE(::GetMenuState(menu, SC_CLOSE, MF_BYCOMMAND), UINT(-1));
        QVERIFY(::GetMenuState(menu, SC_MOVE, MF_BYCOMMAND) != UINT(-1));
        // What Alt+F4, another program and the task bar send.
        for (const UINT message : {UINT(WM_SYSCOMMAND), UINT(WM_CLOSE)}) {
            ::SendMessageW(handle, message, message == WM_SYSCOMMAND ? SC_CLOSE : 0, 0);
            QCoreApplication::processEvents();
            QVERIFY(dialog.isVisible());
        }
        dialog.unload();
        QVERIFY(!dialog.isVisible());
    }
}

#endif

void WaitBoxTest::codeClosesIt()
{
    Dialog dialog;
    dialog.unload();
    dialog.load();
    QVERIFY(dialog.isVisible());
    dialog.unload();
    QVERIFY(!dialog.isVisible());
    dialog.unload();
    dialog.load();
    QVERIFY(dialog.isVisible());
}

void WaitBoxTest::secondLoadKeepsTheOneBox()
{
    QWidget window;
    window.show();
    Dialog dialog(&window);
    dialog.load();
    dialog.load();
    QVERIFY(dialog.isVisible());
    dialog.unload();
    QVERIFY(!dialog.isVisible());
}

void WaitBoxTest::endOfTheProgramClosesIt_data()
{
    QTest::addColumn<bool>("byWindow");
    QTest::newRow("its main window is closed") << true;
    QTest::newRow("it is told to quit") << false;
}

void WaitBoxTest::endOfTheProgramClosesIt()
{
    QFETCH(bool, byWindow);
    QWidget window;
    window.show();
    // A box without a window must not itself prevent the end of the program.
    Dialog dialog(byWindow ? &window : nullptr);
    dialog.load();
    QTimer::singleShot(0, &window, [&window, byWindow] {
        if (byWindow)
            window.close();
        else
            QCoreApplication::quit();
    });
    bool ended = true;
    QTimer watchdog;
    watchdog.setSingleShot(true);
    connect(&watchdog, &QTimer::timeout, &watchdog, [&ended] {
        ended = false;
        QCoreApplication::exit(1);
    });
    watchdog.start(std::chrono::seconds(10));
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(ended);
}

QTEST_MAIN(WaitBoxTest)
#include "wait_box_test.moc"
