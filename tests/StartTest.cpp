// The program itself, started where it gets no display.
#include <QProcess>

#include "Testing.h"

class StartTest : public QObject {
    Q_OBJECT
    QTemporaryDir mFolder;

  private slots:
    void SaysWhatIsMissing_data() {
        const auto row = Columns<QString, QString, QString>("variable", "value", "named");
        row("no display", "XDG_SESSION_TYPE", "tty", "neither WAYLAND_DISPLAY nor DISPLAY");
        row("no X server", "DISPLAY", ":7777", ":7777");
        row("no compositor, or no plugin", "WAYLAND_DISPLAY", "wayland-none", "ayland");
        row("no such plugin", "QT_QPA_PLATFORM", "none-such", "none-such");
        // An empty file stands for a library of the plugin. Must be the last row: none unsets it.
        QFile library(mFolder.filePath("libQt6XcbQpa.so.6"));
        QVERIFY(library.open(QIODevice::WriteOnly));
        row("a plugin that can't be loaded", "LD_LIBRARY_PATH", mFolder.path(), "plugin \"xcb\"");
    }
    void SaysWhatIsMissing() {
        const auto [variable, value, named] =
            Row<QString, QString, QString>("variable", "value", "named");
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) qunsetenv(name);
        qputenv("XDG_RUNTIME_DIR", QDir::tempPath().toUtf8());  // every session has one
        qputenv(variable.toUtf8(), value.toUtf8());
        QProcess program;
        program.start(QUILLSTONE_PROGRAM, QStringList());
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 1);
        const QByteArray words = program.readAllStandardError();
        QVERIFY2(words.startsWith("quillstone: ") && words.contains(named.toUtf8()), words);
        QCOMPARE(words.indexOf('\n'), words.size() - 1);  // one line
    }
};

QTEST_GUILESS_MAIN(StartTest)
#include "StartTest.moc"
