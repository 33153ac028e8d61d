// Plays the user of the built program. Qt loads this plugin into the program if the environment
// asks for it. QUILLSTONE_DRIVER holds the steps, separated by '|':
//   wait FILE        waits until the file exists
//   print content    prints the height of the window's content
//   print frame      prints the height of the window with its frame
//   print output     waits until the run has ended, and prints its text
//   close            closes the window
//   throw            throws an exception out of an event
// Any other step is a key, such as Ctrl+Q.
#include <QApplication>
#include <QFile>
#include <QGenericPlugin>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>
#include <stdexcept>

class Driver : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "Driver.json")

  public:
    QObject* create(const QString&, const QString&) override {
        auto* timer = new QTimer;
        connect(timer, &QTimer::timeout, this, &Driver::Step);
        timer->start(20);
        return timer;
    }

  private:
    void Step() {
        auto* window = qobject_cast<QMainWindow*>(QApplication::activeWindow());
        if (!window || mSteps.isEmpty()) return;
        if (mSteps[0].startsWith("wait ") && !QFile::exists(mSteps[0].mid(5))) return;
        const auto* start = window->findChild<QWidget*>("StartPB");
        if (mSteps[0] == "print output" && !start->isEnabled()) return;
        const QString step = mSteps.takeFirst();
        if (step == "throw") throw std::runtime_error("planted");
        if (step == "print content") qInfo("%d", window->centralWidget()->height());
        if (step == "print output")
            qInfo("%s", qPrintable(window->findChild<QPlainTextEdit*>("rEF")->toPlainText()));
        if (step == "print frame") qInfo("%d", window->frameGeometry().height());
        if (step == "close") window->close();
        if (step == "close" || step.contains(' ')) return;
        const QKeyCombination keys = QKeySequence(step)[0];
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : window, keys.key(), keys.keyboardModifiers());
    }

    QStringList mSteps = qEnvironmentVariable("QUILLSTONE_DRIVER").split('|');
};

#include "Driver.moc"
