#include "WindowFixture.h"

#include <QFile>

bool WindowFixture::load()
{
    if (hosts.webSearch.empty())
        hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", service.port()};
    main_ = std::make_unique<quarrynet::Main>(
        quarrynet::Surroundings{hosts, *opener, folder().toStdString(), "http://help.example/", "http://home.example/",
                                "mailto:author@home.example", trustedCertificates, remembers,
                                [this](QWidget& window) { alerts += &window == main_.get(); }});
    control<quarrynet::HtmlView>("IMGViewer")->setEngineFolders(engineFolders);
    return main_->load();
}

void WindowFixture::start()
{
    QVERIFY(load());
    main_->show();
    activate();
}

void WindowFixture::activate()
{
    main_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(main_.get()));
}

void WindowFixture::writeSettings(const QByteArray& text)
{
    QFile file(settingsFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

void WindowFixture::useServiceAsProxy()
{
    hosts = {"web.example", "img.example", "down.example", "file.example", 80};
    writeSettings("[ProxySwitch]\nValue=on\n[ProxyHost]\nValue=127.0.0.1\n[ProxyPort]\nValue=" +
                  QByteArray::number(service.port()) + "\n");
}

QStringList WindowFixture::rows(const char* list)
{
    const QAbstractItemModel* model = control<QTreeView>(list)->model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model->columnCount(); ++column)
            cells.append(model->index(row, column).data().toString());
        rows.append(cells.join(u'|'));
    }
    return rows;
}

void WindowFixture::chooseTab(int tag)
{
    auto* strip = control<QTabBar>("TabStrip1");
    QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(tag - 1).center());
    QCOMPARE(strip->currentIndex(), tag - 1);
}

void WindowFixture::type(const char* field, const QString& text)
{
    auto* edit = control<QLineEdit>(field);
    edit->setFocus();
    edit->selectAll();
    if (text.isEmpty()) {
        QTest::keyClick(edit, Qt::Key_Delete);
    } else {
        for (const QChar character : text) {
            if (character.unicode() < 0x80)
                QTest::keyClick(edit, character.toLatin1());
            else
                edit->insert(character); // QTest knows ASCII keys only
        }
    }
    QCOMPARE(edit->text(), text);
}
