#include "bench/PlainWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <iostream>

#include "platform/application/Application.h"
#include "platform/qt/ControlWidget.h"

namespace {

struct Place {
    int left, top, width, height, textSize;
};

class Content : public QWidget {
  public:
    void Add(QWidget* widget, const Place& place) {
        widget->setParent(this);
        QFont font = widget->font();
        font.setPixelSize(place.textSize);
        widget->setFont(font);
        widget->setGeometry(place.left, place.top, place.width, place.height);
    }
    void AddLabel(const char* text, const Place& place) {
        auto* label = new QLabel(text);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        Add(label, place);
    }
    void AddPopup(const QStringList& rows, int selected, const Place& place) {
        auto* popup = new QComboBox;
        popup->addItems(rows);
        popup->setCurrentIndex(selected);
        Add(popup, place);
    }
};

void AddMenus(QMenuBar& bar) {
    QMenu* file = bar.addMenu("ファイル");
    file->addAction("終了")->setShortcut(QKeySequence("Ctrl+Q"));
    QMenu* edit = bar.addMenu("編集");
    edit->addAction("取り消す")->setShortcut(QKeySequence("Ctrl+Z"));
    edit->addSeparator();
    edit->addAction("カット")->setShortcut(QKeySequence("Ctrl+X"));
    edit->addAction("コピー")->setShortcut(QKeySequence("Ctrl+C"));
    edit->addAction("貼り付け")->setShortcut(QKeySequence("Ctrl+V"));
    edit->addAction("削除");
    edit->addSeparator();
    edit->addAction("すべてを選択")->setShortcut(QKeySequence("Ctrl+A"));
}

void AddTable(Content& content) {
    auto* table = new QTableWidget(1, 2);
    table->setHorizontalHeaderLabels({"File (-cf)", "Address(-ca)"});
    table->setItem(0, 1, new QTableWidgetItem("0x00000000"));
    table->verticalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    content.Add(table, {80, 134, 334, 70, 11});
}

// A control as the two windows are compared by: its kind, place, text and size of text.
template <class Kind>
void Describe(const QWidget& content, const char* kind, QStringList& controls) {
    for (const auto* control : content.findChildren<Kind*>(Qt::FindDirectChildrenOnly)) {
        const QRect place = control->geometry();
        QString text;
        if constexpr (requires { control->text(); }) text = control->text();
        controls << QString("%1 %2,%3 %4x%5 %6 %7")
                        .arg(kind)
                        .arg(place.left())
                        .arg(place.top())
                        .arg(place.width())
                        .arg(place.height())
                        .arg(control->font().pixelSize())
                        .arg(text);
    }
}

QStringList ControlsOf(const QWidget& content) {
    QStringList controls;
    Describe<QLabel>(content, "label", controls);
    Describe<QPushButton>(content, "button", controls);
    Describe<QCheckBox>(content, "check box", controls);
    Describe<QComboBox>(content, "popup", controls);
    Describe<QLineEdit>(content, "field", controls);
    Describe<QPlainTextEdit>(content, "text", controls);
    Describe<QTableView>(content, "list", controls);
    controls.sort();
    return controls;
}

}  // namespace

QMainWindow* PlainWindow() {
    auto* window = new QMainWindow;
    auto* content = new Content;
    window->setCentralWidget(content);
    AddMenus(*window->menuBar());

    content->AddLabel("ESP Tool: ", {0, 7, 75, 20, 11});
    content->AddLabel("Port (-cp): ", {0, 56, 75, 20, 11});
    content->AddLabel("Upload: ", {0, 134, 75, 20, 11});
    content->AddLabel("Install: ", {0, 208, 75, 20, 11});
    content->AddLabel("Reset (-cd): ", {0, 109, 75, 20, 11});
    content->AddLabel("Speed (-cb): ", {0, 81, 75, 20, 11});
    content->AddLabel("Address (-ca): ", {-87, -56, 75, 20, 11});

    content->Add(new QPushButton("Start"), {422, 290, 80, 20, 11});
    content->Add(new QPushButton("Select"), {422, 179, 80, 20, 11});
    content->Add(new QPushButton("Connect"), {350, -143, 80, 20, 11});
    content->Add(new QPushButton("Sccan"), {422, 57, 80, 20, 11});
    content->Add(new QPushButton("Select"), {422, 7, 80, 20, 11});
    content->Add(new QPushButton("Delete"), {422, 134, 80, 20, 11});

    content->AddPopup({"esptool.py", "esptool-ck"}, 1, {30, -143, 107, 20, 11});
    content->AddPopup({"2400", "4800", "7200", "9600", "14400", "19200", "28800", "38400", "57600",
                       "76800", "115200", "230400", "460800", "921600"},
                      10, {80, 82, 80, 20, 10});
    content->AddPopup({"5", "6", "7", "8"}, 3, {262, -109, 50, 20, 10});
    content->AddPopup({"No", "Odd", "Even"}, 0, {317, -109, 50, 20, 10});
    content->AddPopup({}, -1, {80, 56, 331, 20, 11});
    content->AddPopup({"1", "1.5", "2"}, 0, {372, -109, 50, 20, 10});

    content->Add(new QCheckBox("CTS"), {443, -123, 50, 20, 10});
    content->Add(new QCheckBox("DTR"), {443, -103, 50, 20, 10});
    content->Add(new QCheckBox("XON"), {443, -143, 50, 20, 10});
    content->Add(new QLineEdit("ck"), {80, 108, 80, 22, 11});
    content->Add(new QLineEdit("0x00000000"), {379, -54, 88, 22, 11});

    content->Add(new QPlainTextEdit("Install ...."), {0, 322, 512, 198, 11});
    content->Add(new QPlainTextEdit, {20, -77, 334, 45, 11});
    content->Add(new QPlainTextEdit, {80, 7, 334, 45, 11});
    content->Add(new QPlainTextEdit(" -vv -cd ck -cb 115200 "), {80, 208, 334, 108, 11});
    AddTable(*content);

    window->setWindowTitle("Quillstone");
    window->resize(512, 540 + window->menuBar()->sizeHint().height());
    return window;
}

void Compare(const Arguments&) {
    const auto window = EspWin::Instance();
    auto* plain = PlainWindow();
    plain->show();
    QApplication::processEvents();
    const QStringList ours = ControlsOf(*ContentOf(*window));
    const QStringList theirs = ControlsOf(*plain->centralWidget());
    if (ours != theirs)
        std::cerr << "The program's window:\n"
                  << qPrintable(ours.join('\n')) << "\nThe plain one in bench/PlainWindow.cpp:\n"
                  << qPrintable(theirs.join('\n')) << std::endl;
    Quit(ours == theirs ? 0 : 1);
}
