#include <QApplication>
#include <QTabBar>

// The lower bound for the program: a window with five tabs.
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(608, 434);
    QTabBar tabs(&window);
    for (int i = 1; i <= 5; ++i)
        tabs.addTab(QStringLiteral("Tab %1").arg(i));
    window.show();
    return QApplication::exec();
}
