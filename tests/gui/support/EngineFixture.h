#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QMainWindow>
#include <QtTest>

#include "../PictureServer.h"
#include "platform/HtmlView.h"

/// Environment variables that a user may have and the engine must ignore. They are set before the engine starts.
inline constexpr std::array<std::pair<const char*, const char*>, 3> kHostileEnvironment = {
    {{"QTWEBENGINE_DISABLE_SANDBOX", ""},
     {"QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --single-process"},
     {"QTWEBENGINE_REMOTE_DEBUGGING", "0"}}};

/// A page whose first 100 pixels are a link.
inline constexpr const char* kPageWithALink =
    "<title>shown</title><body topmargin=0 leftmargin=0><a href=\"http://host/\""
    " style=\"display:block;height:100px\">link</a>";

/// Base of tests of the view with its plug-in, which is loaded late, as in the program. Tests observe a page from
/// outside, by its title, its colours and its requests to the server.
class EngineFixture : public QObject
{
    Q_OBJECT

public:
    /// Runs a test. If root starts it, runs it as an ordinary user, because root gets no engine.
    template <class Test>
    static int run(int argc, char** argv)
    {
        unable_ = unableToRun(argv);
        // The engine also reads options from the program's arguments.
        std::array<char*, 4> arguments = {argv[0], options_.data(), noSandbox_.data(), nullptr};
        int count = static_cast<int>(arguments.size()) - 1;
        QApplication application(count, arguments.data());
        Test test;
        return QTest::qExec(&test, argc, argv);
    }

protected slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    void write(const QString& name, const QByteArray& content);
    QString path(const QString& name) const { return folder_->filePath(name); }
    QByteArray address(const char* target) const { return server_->address(QString::fromLatin1(target)).toUtf8(); }
    void open(const QByteArray& page, const QString& name = QLatin1String("images.html"),
              const std::vector<quarrynet::GalleryPicture>& gallery = {});
    QWidget* engine() const;
    qint64 drawingProcess() const;
    QString title() const { return engine() ? engine()->property("title").toString() : QString(); }
    bool titleBecomes(const QString& expected);
    void expectReplacement(const QString& reason);
    void chooseTheLink();
    bool showsColor(Qt::GlobalColor color);
    void click(const QPoint& at, Qt::MouseButton button = Qt::LeftButton);

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<PictureServer> server_;
    std::unique_ptr<QMainWindow> window_;
    quarrynet::HtmlView* view_ = nullptr;
    std::vector<std::string> links_;

private:
    static QString unableToRun(char** argv);

    static inline QString unable_;
    static inline std::string options_ = "--webEngineArgs";
    static inline std::string noSandbox_ = "--no-sandbox";
};
